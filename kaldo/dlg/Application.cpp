// The application object: the host profile behind the class library's
// profile calls.
#include "kxprofile.h"
#include "kxuiapp.h"

int CWinApp::GetProfileInt(const wchar_t* section, const wchar_t* entry, int defaultValue) const
{
    return kxGetProfileInt(section, entry, defaultValue);
}

bool CWinApp::WriteProfileInt(const wchar_t* section, const wchar_t* entry, int value) const
{
    return kxWriteProfileInt(section, entry, value);
}

std::wstring CWinApp::GetProfileString(const wchar_t* section, const wchar_t* entry, const wchar_t* defaultValue) const
{
    return kxGetProfileString(section, entry, defaultValue);
}

bool CWinApp::WriteProfileString(const wchar_t* section, const wchar_t* entry, const wchar_t* value) const
{
    return kxWriteProfileString(section, entry, value);
}

bool CWinApp::GetProfileBinary(const wchar_t* section, const wchar_t* entry, std::vector<unsigned char>& data) const
{
    return kxGetProfileBinary(section, entry, data);
}

bool CWinApp::WriteProfileBinary(const wchar_t* section, const wchar_t* entry,
                                 const std::vector<unsigned char>& data) const
{
    return kxWriteProfileBinary(section, entry, data);
}

CWinApp* AfxGetApp()
{
    // The object holds no state: the profile belongs to the running host.
    static CWinApp application;
    return &application;
}

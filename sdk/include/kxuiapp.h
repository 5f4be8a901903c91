// The application object of the host's user-interface class library: its
// profile of integer, string and binary values (the host's profile).
#pragma once

#include <string>
#include <vector>

class CWinApp {
public:
    int GetProfileInt(const wchar_t* section, const wchar_t* entry, int defaultValue) const;
    bool WriteProfileInt(const wchar_t* section, const wchar_t* entry, int value) const;
    std::wstring GetProfileString(const wchar_t* section, const wchar_t* entry, const wchar_t* defaultValue) const;
    bool WriteProfileString(const wchar_t* section, const wchar_t* entry, const wchar_t* value) const;
    // False when nothing is stored under the entry.
    bool GetProfileBinary(const wchar_t* section, const wchar_t* entry, std::vector<unsigned char>& data) const;
    bool WriteProfileBinary(const wchar_t* section, const wchar_t* entry, const std::vector<unsigned char>& data) const;
};

// The host's application object.
CWinApp* AfxGetApp();

// The host application's profile: named sections of integer, string and
// binary values that persist between sessions. Without a running host the
// reads return their defaults and the writes return false.
#pragma once

#include <string>
#include <vector>

int kxGetProfileInt(const wchar_t* section, const wchar_t* key, int defaultValue);
bool kxWriteProfileInt(const wchar_t* section, const wchar_t* key, int value);
std::wstring kxGetProfileString(const wchar_t* section, const wchar_t* key,
                                const wchar_t* defaultValue);
bool kxWriteProfileString(const wchar_t* section, const wchar_t* key, const wchar_t* value);
// False when nothing is stored under the key.
bool kxGetProfileBinary(const wchar_t* section, const wchar_t* key,
                        std::vector<unsigned char>& out);
bool kxWriteProfileBinary(const wchar_t* section, const wchar_t* key,
                          const std::vector<unsigned char>& value);

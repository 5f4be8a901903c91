// Host strings. Strings the host hands out (system-variable values,
// dictionary names) are allocated by the host and freed with kald_free;
// strings made with kxutNewString are freed with kxutDelBuffer.
#pragma once

#include <string>

// Frees a string the host handed out.
void kald_free(void* p);

// A new host string holding a copy of text (an empty string for null).
wchar_t* kxutNewString(const wchar_t* text);
// Replaces *buffer (freed first) by a copy of text.
void kxutUpdString(const wchar_t* text, wchar_t*& buffer);
// Frees *buffer and sets it to null.
void kxutDelBuffer(wchar_t*& buffer);

// Conversion between host (wide) strings and 8-bit text in the process's
// locale, through the C runtime's multibyte functions. Characters that cannot
// be converted become '?'.
std::string kxutToMultiByte(const std::wstring& text);
std::wstring kxutFromMultiByte(const std::string& text);

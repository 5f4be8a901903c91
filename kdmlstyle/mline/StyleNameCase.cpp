#include "mline/StyleNameCase.h"

#include "kxcrash.h"

#include <algorithm>
#include <cwctype>
#include <exception>

namespace kdml {

namespace {

// The tag under which a failed conversion is reported.
constexpr const wchar_t* kCaseFailureTag = L"KD_IRELEASE_THROW";

template <class Convert>
std::wstring convertedName(std::wstring_view name, Convert convert)
{
    try {
        std::wstring result(name);
        std::ranges::transform(result, result.begin(), [&](wchar_t c) { return static_cast<wchar_t>(convert(c)); });
        return result;
    } catch (const std::exception& error) {
        if (KxCrashRecorder* recorder = kaldGetCrashRecorder()) {
            const std::string what = error.what();
            recorder->receiveError(KdExceptionWithMsg(
                std::wstring(kCaseFailureTag) + L": " + std::wstring(what.begin(), what.end()), __FILE__, __LINE__));
        }
        return std::wstring(name);
    }
}

}  // namespace

std::wstring upperCaseStyleName(std::wstring_view name)
{
    return convertedName(name, [](wchar_t c) { return std::towupper(static_cast<std::wint_t>(c)); });
}

std::wstring lowerCaseStyleName(std::wstring_view name)
{
    return convertedName(name, [](wchar_t c) { return std::towlower(static_cast<std::wint_t>(c)); });
}

}  // namespace kdml

#include "styledlg/StyleNameRules.h"

#include "kxdb.h"
#include "kxuictrl.h"

#include <algorithm>
#include <string_view>

namespace kdml {

namespace {

// ASCII punctuation first, then the wide forms that input methods produce.
constexpr std::wstring_view kForbidden = L"~`!@#%^&*()=+[]\\{}|:;'\"<>?/,."
                                         L"\u00B7\uFF01\uFFE5\u2026\uFF08\uFF09\u2014"
                                         L"\u3010\u3011\u3001\uFF1B\uFF1A\u201C\u201D"
                                         L"\u2018\u2019\uFF1F\u300A\u300B\uFF0C\u3002";

// C0 and C1 controls and DEL: a name is shown in lists, transcripts and
// files as text.
bool hasControlCharacter(const std::wstring& name)
{
    return std::any_of(name.begin(), name.end(),
                       [](wchar_t c) { return (c >= 0 && c < 0x20) || (c >= 0x7F && c <= 0x9F); });
}

}  // namespace

bool hasForbiddenCharacter(const std::wstring& name)
{
    return name.find_first_of(kForbidden) != std::wstring::npos;
}

bool isAcceptableStyleName(const std::wstring& name, const CComboBox& existing)
{
    return !name.empty() && name.find(L' ') == std::wstring::npos && existing.FindStringExact(-1, name) < 0
           && !hasForbiddenCharacter(name) && !hasControlCharacter(name);
}

void addStyleNames(CComboBox& combo, KxDbObjectId dictionaryId)
{
    const KxDbObjectPtr<KxDbDictionary> dictionary(dictionaryId, KxDb::kForRead);
    if (!dictionary)
        return;
    for (auto it = dictionary->newIterator(); !it->done(); it->next())
        combo.AddString(it->name());
}

}  // namespace kdml

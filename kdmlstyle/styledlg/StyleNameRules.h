// The rules a new multiline style name must follow in the name dialogs: not
// empty, no space, no forbidden character, no control character, and not
// the name of an existing style (case ignored).
#pragma once

#include <string>
#include <vector>

class CComboBox;
class KxDbObjectId;

namespace kdml {

// Whether name holds one of the characters a style name may not hold.
bool hasForbiddenCharacter(const std::wstring& name);

// Whether name is acceptable beside the existing names listed in existing.
bool isAcceptableStyleName(const std::wstring& name, const CComboBox& existing);

// Adds the name of every style of the dictionary to combo, in the
// dictionary's order.
void addStyleNames(CComboBox& combo, KxDbObjectId dictionaryId);

}  // namespace kdml

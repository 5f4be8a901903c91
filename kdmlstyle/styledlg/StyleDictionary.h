// The working drawing's multiline-style dictionary as the style manager
// finds it: through the named-object dictionary and the host's dictionary
// search, by entity name and by object id.
#pragma once

#include "kxdbid.h"
#include "kxtypes.h"

#include <string>

namespace kdml {

struct StyleDictionary {
    kxds_name name = {0, 0};
    KxDbObjectId id;
};

// False when the drawing has no named-object dictionary or no style
// dictionary in it.
bool findStyleDictionary(StyleDictionary& found);

// The object id of the entry key in the dictionary named dictionary (null
// when there is none), found with the host's dictionary search.
KxDbObjectId searchDictionary(const kxds_name dictionary, const std::wstring& key);

// Removes the entry name from the dictionary and erases its object, so that
// nothing of it is left in the drawing. False when the dictionary does not
// open for write.
bool removeStyle(KxDbObjectId dictionaryId, const std::wstring& name);

}  // namespace kdml

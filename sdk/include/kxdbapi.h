// Free functions of the drawing database: entity names, dictionary search
// by name, result-buffer lists, linetype files and reserved names.
#pragma once

#include "kxdbid.h"
#include "kxtypes.h"

class KxDbDatabase;

// Entity names: the first word is the object id's serial number, the
// second 0.
Kald::ErrorStatus kxdbGetObjectId(KxDbObjectId& id, const kxds_name name);
Kald::ErrorStatus kxdbGetEntityName(kxds_name name, KxDbObjectId id);

// The named-object dictionary of the working drawing. RTNORM or RTERROR.
int kxdbNamedObjDict(kxds_name name);
// Looks key up (without case) in the dictionary named dict. Returns a new
// list (free with kxutRelRb) or null: -1 the entry's entity name, 0 its
// type name, 5 its handle (hexadecimal text), 3 the key as spelled. next
// is accepted for compatibility; a dictionary search always starts afresh.
kxresbuf* kxdbDictSearch(const kxds_name dict, const wchar_t* key, int next);

// Result buffers allocated by the host. Strings (RTSTR and the group
// codes 0-9, 100-109, 300-309, 1000) are host strings, freed with the list.
kxresbuf* kxutNewRb(int type);
int kxutRelRb(kxresbuf* list);
// Whether a result buffer of this type carries a string.
bool kxutRbHoldsString(int type);

// Loads linetypeName from a .lin file: fileName as given when it exists,
// else found in the host's Support folder. Names match without case.
// eFileNotFound, eKeyNotFound (not in the file), eInvalidInput (no name or
// database). A linetype the drawing already has is not read again: its id
// is returned with eOk. flag is accepted for compatibility.
Kald::ErrorStatus kxdbLoadLinetypeFromFile(const wchar_t* fileName, const wchar_t* linetypeName, KxDbObjectId& id,
                                           KxDbDatabase* db, int flag = 1);

// Reserved names: kind 0 "ByLayer", 1 "ByBlock", 3 "Continuous"; null
// for other kinds. localised: the name as users see it (this host shows
// the English names).
const wchar_t* kxdbGetReservedString(int kind, bool localised);

// Dictionaries: named entries that own database objects. Keys keep the
// spelling they were given but are looked up without regard to case.
// Entries whose object is erased are invisible: lookups miss them, counts
// and iterators skip them, and setAt may reuse their key.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "kxdbobject.h"

class KxDbDictionaryIterator;

namespace kaldo {
class DictionaryEntries;
}

class KxDbDictionary : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbDictionary)

    KxDbDictionary();
    ~KxDbDictionary() override;

    Kald::ErrorStatus getAt(const wchar_t* name, KxDbObjectId& id) const;
    // Opens the entry's object (closing is the caller's).
    Kald::ErrorStatus getAt(const wchar_t* name, KxDbObject*& obj, int mode) const;
    bool has(const wchar_t* name) const;
    bool has(KxDbObjectId id) const;
    int numEntries() const;

    // Puts obj under name. A new object is added to this dictionary's
    // database (which must exist). An entry of the same name (any case) is
    // replaced; its old object is erased. The key takes this spelling.
    Kald::ErrorStatus setAt(const wchar_t* name, KxDbObject* obj, KxDbObjectId& id);
    // Puts the object id names (of this dictionary's database) under name
    // without opening it, for a reader linking records it keeps unopened:
    // as setAt, but eDuplicateKey when the name's entry holds another live
    // object, and the object's owner is left to the caller.
    Kald::ErrorStatus setIdAt(const wchar_t* name, KxDbObjectId id);
    // Removes the entry; the object stays in the database, without owner.
    Kald::ErrorStatus remove(const wchar_t* name);
    Kald::ErrorStatus remove(const wchar_t* name, KxDbObjectId& id);
    Kald::ErrorStatus remove(KxDbObjectId id);
    // Renames an entry. eKeyNotFound when oldName is missing, eDuplicateKey
    // when newName names another entry; a change of case only is allowed.
    Kald::ErrorStatus setName(const wchar_t* oldName, const wchar_t* newName);
    // The key of id's entry as a host string (free with kald_free).
    Kald::ErrorStatus nameAt(KxDbObjectId id, wchar_t*& name) const;
    Kald::ErrorStatus nameAt(KxDbObjectId id, std::wstring& name) const;

    // Iterates the entries in key order (without case), skipping erased ones.
    std::unique_ptr<KxDbDictionaryIterator> newIterator() const;

    // Whether the dictionary owns its entries hard (files then write them
    // as owned references); off for a new dictionary.
    bool isTreatElementsAsHard() const { return m_hardOwner; }
    void setTreatElementsAsHard(bool on) { m_hardOwner = on; }

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    // The entries, names stored once (kaldo/db/DictionaryEntries.h).
    std::unique_ptr<kaldo::DictionaryEntries> m_entries;
    bool m_hardOwner = false;
};

class KxDbDictionaryIterator {
public:
    bool done() const;
    bool next();
    const wchar_t* name() const;
    KxDbObjectId objectId() const;
    Kald::ErrorStatus getObject(KxDbObject*& obj, int mode) const;

private:
    friend class KxDbDictionary;
    // The entries as they were when the iterator was made, in key order:
    // their objects, and their names packed one after another.
    KxDbDictionaryIterator(std::vector<KxDbObjectId> ids, std::string names, std::vector<std::size_t> nameEnds);
    // Steps past erased entries and unpacks the name of the one reached.
    void skipErased();

    std::vector<KxDbObjectId> m_ids;
    std::string m_names;
    std::vector<std::size_t> m_nameEnds;
    std::size_t m_pos = 0;
    std::wstring m_name;
};

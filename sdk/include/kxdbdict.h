// Dictionaries: named entries that own database objects. Keys keep the
// spelling they were given but are looked up without regard to case.
// Entries whose object is erased are invisible: lookups miss them, counts
// and iterators skip them, and setAt may reuse their key.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kxdbobject.h"

class KxDbDictionaryIterator;

class KxDbDictionary : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbDictionary)

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
    struct Entry {
        std::wstring name;  // as spelled
        KxDbObjectId id;
    };
    const Entry* find(const wchar_t* name) const;
    const Entry* find(KxDbObjectId id) const;

    // Puts an entry under key, replacing the key's old entry and the
    // object's entry under another key.
    void putEntry(const std::wstring& key, Entry entry);
    void eraseEntry(const std::wstring& key);

    std::map<std::wstring, Entry> m_entries;  // key: name folded to upper case
    std::unordered_map<KxDbObjectId, std::wstring> m_keys;  // each entry's key by its object
    bool m_hardOwner = false;
};

class KxDbDictionaryIterator {
public:
    struct Item {
        std::wstring name;
        KxDbObjectId id;
    };
    explicit KxDbDictionaryIterator(std::vector<Item> items);

    bool done() const;
    bool next();
    const wchar_t* name() const;
    KxDbObjectId objectId() const;
    Kald::ErrorStatus getObject(KxDbObject*& obj, int mode) const;

private:
    void skipErased();

    std::vector<Item> m_items;
    std::size_t m_pos = 0;
};

#include "kxdbdict.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"
#include "kxstring.h"

KX_RX_DEFINE_MEMBERS(KxDbDictionary, KxDbObject)

namespace {

bool isLive(KxDbObjectId id)
{
    const KxDbObject* obj = kaldo::lookupObject(id);
    return obj && !obj->isErased();
}

bool isEmptyName(const wchar_t* name)
{
    return !name || !*name;
}

}  // namespace

const KxDbDictionary::Entry* KxDbDictionary::find(const wchar_t* name) const
{
    if (isEmptyName(name))
        return nullptr;
    const auto it = m_entries.find(kaldo::foldName(name));
    return it != m_entries.end() && isLive(it->second.id) ? &it->second : nullptr;
}

const KxDbDictionary::Entry* KxDbDictionary::find(KxDbObjectId id) const
{
    const auto key = m_keys.find(id);
    return key != m_keys.end() && isLive(id) ? &m_entries.at(key->second) : nullptr;
}

void KxDbDictionary::putEntry(const std::wstring& key, Entry entry)
{
    if (const auto old = m_keys.find(entry.id); old != m_keys.end() && old->second != key)
        m_entries.erase(old->second);
    if (const auto old = m_entries.find(key); old != m_entries.end() && old->second.id != entry.id)
        m_keys.erase(old->second.id);
    m_keys[entry.id] = key;
    m_entries[key] = std::move(entry);
}

void KxDbDictionary::eraseEntry(const std::wstring& key)
{
    if (const auto it = m_entries.find(key); it != m_entries.end()) {
        m_keys.erase(it->second.id);
        m_entries.erase(it);
    }
}

Kald::ErrorStatus KxDbDictionary::getAt(const wchar_t* name, KxDbObjectId& id) const
{
    const Entry* entry = find(name);
    if (!entry) {
        id.setNull();
        return Kald::eKeyNotFound;
    }
    id = entry->id;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::getAt(const wchar_t* name, KxDbObject*& obj, int mode) const
{
    obj = nullptr;
    KxDbObjectId id;
    if (const Kald::ErrorStatus es = getAt(name, id); es != Kald::eOk)
        return es;
    return kxdbOpenObject(obj, id, mode);
}

bool KxDbDictionary::has(const wchar_t* name) const
{
    return find(name) != nullptr;
}

bool KxDbDictionary::has(KxDbObjectId id) const
{
    return find(id) != nullptr;
}

int KxDbDictionary::numEntries() const
{
    int n = 0;
    for (const auto& [key, entry] : m_entries)
        n += isLive(entry.id) ? 1 : 0;
    return n;
}

Kald::ErrorStatus KxDbDictionary::setAt(const wchar_t* name, KxDbObject* obj, KxDbObjectId& id)
{
    id.setNull();
    if (isEmptyName(name) || !obj || obj == this)
        return Kald::eInvalidInput;
    if (!database())
        return Kald::eNotApplicable;
    if (!obj->database()) {
        if (const Kald::ErrorStatus es = database()->addObject(obj); es != Kald::eOk)
            return es;
    } else if (obj->database() != database()) {
        return Kald::eInvalidInput;
    }
    kaldo::recordBeforeChange(*this);
    const std::wstring key = kaldo::foldName(name);
    if (const auto it = m_entries.find(key); it != m_entries.end() && it->second.id != obj->objectId()) {
        if (KxDbObject* old = kaldo::lookupObject(it->second.id); old && !old->isErased()) {
            KxDbObject* opened = nullptr;
            if (kxdbOpenObject(opened, old->objectId(), KxDb::kForWrite) == Kald::eOk) {
                opened->erase();
                opened->close();
            }
        }
    }
    putEntry(key, Entry{name, obj->objectId()});
    obj->setOwnerId(objectId());
    id = obj->objectId();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::remove(const wchar_t* name)
{
    KxDbObjectId id;
    return remove(name, id);
}

Kald::ErrorStatus KxDbDictionary::remove(const wchar_t* name, KxDbObjectId& id)
{
    id.setNull();
    const Entry* entry = find(name);
    if (!entry)
        return Kald::eKeyNotFound;
    id = entry->id;
    kaldo::recordBeforeChange(*this);
    eraseEntry(kaldo::foldName(name));
    if (KxDbObject* obj = kaldo::lookupObject(id); obj && obj->ownerId() == objectId())
        obj->setOwnerId(KxDbObjectId::kNull);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::remove(KxDbObjectId id)
{
    const Entry* entry = find(id);
    if (!entry)
        return Kald::eKeyNotFound;
    KxDbObjectId removed;
    return remove(entry->name.c_str(), removed);
}

Kald::ErrorStatus KxDbDictionary::setName(const wchar_t* oldName, const wchar_t* newName)
{
    if (isEmptyName(newName))
        return Kald::eInvalidInput;
    const Entry* entry = find(oldName);
    if (!entry)
        return Kald::eKeyNotFound;
    const std::wstring oldKey = kaldo::foldName(oldName);
    const std::wstring newKey = kaldo::foldName(newName);
    if (newKey != oldKey && find(newName))
        return Kald::eDuplicateKey;
    const KxDbObjectId id = entry->id;
    kaldo::recordBeforeChange(*this);
    eraseEntry(oldKey);
    putEntry(newKey, Entry{newName, id});
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::nameAt(KxDbObjectId id, std::wstring& name) const
{
    const Entry* entry = find(id);
    if (!entry)
        return Kald::eKeyNotFound;
    name = entry->name;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::nameAt(KxDbObjectId id, wchar_t*& name) const
{
    name = nullptr;
    std::wstring text;
    if (const Kald::ErrorStatus es = nameAt(id, text); es != Kald::eOk)
        return es;
    name = kxutNewString(text.c_str());
    return Kald::eOk;
}

std::unique_ptr<KxDbDictionaryIterator> KxDbDictionary::newIterator() const
{
    std::vector<KxDbDictionaryIterator::Item> items;
    for (const auto& [key, entry] : m_entries)
        items.push_back({entry.name, entry.id});
    return std::make_unique<KxDbDictionaryIterator>(std::move(items));
}

Kald::ErrorStatus KxDbDictionary::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    m_entries = static_cast<const KxDbDictionary*>(other)->m_entries;
    m_keys = static_cast<const KxDbDictionary*>(other)->m_keys;
    m_hardOwner = static_cast<const KxDbDictionary*>(other)->m_hardOwner;
    return Kald::eOk;
}

KxDbDictionaryIterator::KxDbDictionaryIterator(std::vector<Item> items) : m_items(std::move(items))
{
    skipErased();
}

void KxDbDictionaryIterator::skipErased()
{
    while (m_pos < m_items.size() && !isLive(m_items[m_pos].id))
        ++m_pos;
}

bool KxDbDictionaryIterator::done() const
{
    return m_pos >= m_items.size();
}

bool KxDbDictionaryIterator::next()
{
    if (done())
        return false;
    ++m_pos;
    skipErased();
    return !done();
}

const wchar_t* KxDbDictionaryIterator::name() const
{
    return done() ? nullptr : m_items[m_pos].name.c_str();
}

KxDbObjectId KxDbDictionaryIterator::objectId() const
{
    return done() ? KxDbObjectId::kNull : m_items[m_pos].id;
}

Kald::ErrorStatus KxDbDictionaryIterator::getObject(KxDbObject*& obj, int mode) const
{
    obj = nullptr;
    if (done())
        return Kald::eInvalidIndex;
    return kxdbOpenObject(obj, m_items[m_pos].id, mode);
}

#include "kxdbdict.h"

#include "kaldo/db/DictionaryEntries.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"
#include "kxstring.h"

KX_RX_DEFINE_MEMBERS(KxDbDictionary, KxDbObject)

namespace {

using kaldo::DictionaryEntries;

// Told by the registry, which knows a record kept unopened without making
// its object.
bool isLive(KxDbObjectId id)
{
    return kaldo::isRegisteredLive(id);
}

bool isEmptyName(const wchar_t* name)
{
    return !name || !*name;
}

// The entry of name or id whose object is live, or npos.
std::size_t liveEntry(const DictionaryEntries& entries, const wchar_t* name)
{
    if (isEmptyName(name))
        return DictionaryEntries::npos;
    const std::size_t entry = entries.find(name);
    return entry != DictionaryEntries::npos && isLive(entries.id(entry)) ? entry : DictionaryEntries::npos;
}

std::size_t liveEntry(const DictionaryEntries& entries, KxDbObjectId id)
{
    const std::size_t entry = entries.find(id);
    return entry != DictionaryEntries::npos && isLive(id) ? entry : DictionaryEntries::npos;
}

}  // namespace

KxDbDictionary::KxDbDictionary() : m_entries(std::make_unique<DictionaryEntries>()) {}

KxDbDictionary::~KxDbDictionary() = default;

Kald::ErrorStatus KxDbDictionary::getAt(const wchar_t* name, KxDbObjectId& id) const
{
    const std::size_t entry = liveEntry(*m_entries, name);
    if (entry == DictionaryEntries::npos) {
        id.setNull();
        return Kald::eKeyNotFound;
    }
    id = m_entries->id(entry);
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
    return liveEntry(*m_entries, name) != DictionaryEntries::npos;
}

bool KxDbDictionary::has(KxDbObjectId id) const
{
    return liveEntry(*m_entries, id) != DictionaryEntries::npos;
}

int KxDbDictionary::numEntries() const
{
    int n = 0;
    for (std::size_t entry = 0; entry < m_entries->size(); ++entry)
        n += isLive(m_entries->id(entry)) ? 1 : 0;
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
    if (const std::size_t entry = m_entries->find(name);
        entry != DictionaryEntries::npos && m_entries->id(entry) != obj->objectId()) {
        if (KxDbObject* old = kaldo::lookupObject(m_entries->id(entry)); old && !old->isErased()) {
            KxDbObject* opened = nullptr;
            if (kxdbOpenObject(opened, old->objectId(), KxDb::kForWrite) == Kald::eOk) {
                opened->erase();
                opened->close();
            }
        }
    }
    m_entries->put(name, obj->objectId());
    obj->setOwnerId(objectId());
    id = obj->objectId();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::setIdAt(const wchar_t* name, KxDbObjectId id)
{
    if (isEmptyName(name) || id.isNull() || id == objectId() || !database()
        || kaldo::registeredDatabase(id) != database())
        return Kald::eInvalidInput;
    if (const std::size_t entry = liveEntry(*m_entries, name);
        entry != DictionaryEntries::npos && m_entries->id(entry) != id)
        return Kald::eDuplicateKey;
    kaldo::recordBeforeChange(*this);
    m_entries->put(name, id);
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
    const std::size_t entry = liveEntry(*m_entries, name);
    if (entry == DictionaryEntries::npos)
        return Kald::eKeyNotFound;
    id = m_entries->id(entry);
    kaldo::recordBeforeChange(*this);
    m_entries->erase(entry);
    if (KxDbObject* obj = kaldo::lookupObject(id); obj && obj->ownerId() == objectId())
        obj->setOwnerId(KxDbObjectId::kNull);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::remove(KxDbObjectId id)
{
    const std::size_t entry = liveEntry(*m_entries, id);
    if (entry == DictionaryEntries::npos)
        return Kald::eKeyNotFound;
    KxDbObjectId removed;
    return remove(m_entries->name(entry).c_str(), removed);
}

Kald::ErrorStatus KxDbDictionary::setName(const wchar_t* oldName, const wchar_t* newName)
{
    if (isEmptyName(newName))
        return Kald::eInvalidInput;
    const std::size_t entry = liveEntry(*m_entries, oldName);
    if (entry == DictionaryEntries::npos)
        return Kald::eKeyNotFound;
    if (kaldo::foldName(newName) != kaldo::foldName(oldName) && has(newName))
        return Kald::eDuplicateKey;
    const KxDbObjectId id = m_entries->id(entry);
    kaldo::recordBeforeChange(*this);
    m_entries->erase(entry);
    m_entries->put(newName, id);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDictionary::nameAt(KxDbObjectId id, std::wstring& name) const
{
    const std::size_t entry = liveEntry(*m_entries, id);
    if (entry == DictionaryEntries::npos)
        return Kald::eKeyNotFound;
    name = m_entries->name(entry);
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
    const std::vector<std::size_t> order = m_entries->inNameOrder();
    std::vector<KxDbObjectId> ids;
    std::string names;
    std::vector<std::size_t> nameEnds;
    ids.reserve(order.size());
    nameEnds.reserve(order.size());
    for (const std::size_t entry : order) {
        ids.push_back(m_entries->id(entry));
        names += m_entries->packedName(entry);
        nameEnds.push_back(names.size());
    }
    return std::unique_ptr<KxDbDictionaryIterator>(
        new KxDbDictionaryIterator(std::move(ids), std::move(names), std::move(nameEnds)));
}

Kald::ErrorStatus KxDbDictionary::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    *m_entries = *static_cast<const KxDbDictionary*>(other)->m_entries;
    m_hardOwner = static_cast<const KxDbDictionary*>(other)->m_hardOwner;
    return Kald::eOk;
}

KxDbDictionaryIterator::KxDbDictionaryIterator(std::vector<KxDbObjectId> ids, std::string names,
                                               std::vector<std::size_t> nameEnds)
    : m_ids(std::move(ids)), m_names(std::move(names)), m_nameEnds(std::move(nameEnds))
{
    skipErased();
}

void KxDbDictionaryIterator::skipErased()
{
    while (m_pos < m_ids.size() && !isLive(m_ids[m_pos]))
        ++m_pos;
    if (done())
        return;
    const std::size_t start = m_pos == 0 ? 0 : m_nameEnds[m_pos - 1];
    m_name = DictionaryEntries::unpackName(std::string_view(m_names).substr(start, m_nameEnds[m_pos] - start));
}

bool KxDbDictionaryIterator::done() const
{
    return m_pos >= m_ids.size();
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
    return done() ? nullptr : m_name.c_str();
}

KxDbObjectId KxDbDictionaryIterator::objectId() const
{
    return done() ? KxDbObjectId::kNull : m_ids[m_pos];
}

Kald::ErrorStatus KxDbDictionaryIterator::getObject(KxDbObject*& obj, int mode) const
{
    obj = nullptr;
    if (done())
        return Kald::eInvalidIndex;
    return kxdbOpenObject(obj, m_ids[m_pos], mode);
}

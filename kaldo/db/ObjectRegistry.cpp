#include "kaldo/db/ObjectRegistry.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "kxdbobject.h"

namespace kaldo {
namespace {

// Serial numbers are given out in order, so the table is a list of pages
// of consecutive serials: a lookup is two loads, and objects made together
// (a drawing read from a file) sit together. A page goes away when its last
// object does, so a long run that makes and drops drawings keeps only the
// page list, a pointer per 4096 serials.
class Registry {
public:
    std::uint64_t add(KxDbObject* obj, KxDbDatabase* db)
    {
        const std::uint64_t serial = ++m_lastSerial;
        put(serial, obj, db);
        return serial;
    }

    void skipTo(std::uint64_t serial) { m_lastSerial = std::max(m_lastSerial, serial); }

    // serial was given out before and is free now.
    void put(std::uint64_t serial, KxDbObject* obj, KxDbDatabase* db)
    {
        const std::size_t index = pageOf(serial);
        if (index >= m_pages.size())
            m_pages.resize(index + 1);
        std::unique_ptr<Page>& page = m_pages[index];
        if (!page)
            page = std::make_unique<Page>();
        const std::size_t slot = slotOf(serial);
        page->slots[slot] = obj;
        page->classes[slot] = classIndex(obj->isA());
        page->erased[slot] = obj->isErased();
        page->databases[slot] = databaseIndex(db);
        ++page->live;
    }

    void remove(std::uint64_t serial)
    {
        const std::size_t index = pageOf(serial);
        if (index >= m_pages.size() || !m_pages[index])
            return;
        Page& page = *m_pages[index];
        KxDbObject*& slot = page.slots[slotOf(serial)];
        if (!slot)
            return;
        slot = nullptr;
        page.classes[slotOf(serial)] = kNoClass;
        if (--page.live == 0)
            m_pages[index].reset();
    }

    KxDbObject* find(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        return page ? page->slots[slotOf(serial)] : nullptr;
    }

    KxDbDatabase* databaseOf(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        if (!page || !page->slots[slotOf(serial)])
            return nullptr;
        return m_databases[page->databases[slotOf(serial)]];
    }

    KxDbObject* findOf(std::uint64_t serial, const KxDbDatabase* db) const
    {
        const Page* page = pageFor(serial);
        if (!page)
            return nullptr;
        KxDbObject* obj = page->slots[slotOf(serial)];
        return obj && m_databases[page->databases[slotOf(serial)]] == db ? obj : nullptr;
    }

    void forgetDatabase(KxDbDatabase* db)
    {
        const auto known = std::find(m_databases.begin(), m_databases.end(), db);
        if (known != m_databases.end())
            *known = nullptr;
        m_recentDatabase = kNoDatabase;
    }

    const KxRxClass* classOf(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        if (!page)
            return nullptr;
        const std::uint8_t index = page->classes[slotOf(serial)];
        if (index == kClassOfObject)
            return page->slots[slotOf(serial)]->isA();
        return index == kNoClass ? nullptr : m_classes[index - 1];
    }

    bool isLive(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        return page && page->slots[slotOf(serial)] && !page->erased[slotOf(serial)];
    }

    void setErased(std::uint64_t serial, bool erased)
    {
        const std::size_t index = pageOf(serial);
        if (index < m_pages.size() && m_pages[index] && m_pages[index]->slots[slotOf(serial)])
            m_pages[index]->erased[slotOf(serial)] = erased;
    }

private:
    static constexpr unsigned kPageBits = 12;
    static constexpr std::size_t kPageSlots = std::size_t(1) << kPageBits;
    // The class, the erased flag and the database sit beside the object
    // pointer, densely, so that a walk reads them in order instead of one
    // object after another, and an object need not hold its database.
    // A class is a byte: its place in m_classes, counted from 1; a program
    // of more classes than a byte numbers asks the object for the rest.
    static constexpr std::uint8_t kNoClass = 0;
    static constexpr std::uint8_t kClassOfObject = 255;
    struct Page {
        std::array<KxDbObject*, kPageSlots> slots{};
        std::array<std::uint8_t, kPageSlots> classes{};
        std::bitset<kPageSlots> erased;
        std::array<std::uint16_t, kPageSlots> databases{};
        std::size_t live = 0;
    };
    const Page* pageFor(std::uint64_t serial) const
    {
        const std::size_t index = pageOf(serial);
        return index < m_pages.size() ? m_pages[index].get() : nullptr;
    }
    static std::size_t pageOf(std::uint64_t serial) { return std::size_t(serial >> kPageBits); }
    static std::size_t slotOf(std::uint64_t serial) { return std::size_t(serial & ((1u << kPageBits) - 1)); }

    // A few classes are met again and again: each is remembered in a small
    // table by its address, before the list is searched.
    std::uint8_t classIndex(const KxRxClass* cls)
    {
        RecentClass& recent = m_recent[(reinterpret_cast<std::uintptr_t>(cls) >> 4) % m_recent.size()];
        if (recent.cls == cls)
            return recent.index;
        std::uint8_t index = kClassOfObject;
        if (const auto known = std::find(m_classes.begin(), m_classes.end(), cls); known != m_classes.end()) {
            index = std::uint8_t(known - m_classes.begin() + 1);
        } else if (m_classes.size() + 1 < kClassOfObject) {
            m_classes.push_back(cls);
            index = std::uint8_t(m_classes.size());
        }
        recent = RecentClass{cls, index};
        return index;
    }

    // A database is two bytes in the registry: its place in m_databases,
    // where the place of one that went is given to the next.
    std::uint16_t databaseIndex(KxDbDatabase* db)
    {
        if (m_recentDatabase < m_databases.size() && m_databases[m_recentDatabase] == db)
            return std::uint16_t(m_recentDatabase);
        auto place = std::find(m_databases.begin(), m_databases.end(), db);
        if (place == m_databases.end())
            place = std::find(m_databases.begin(), m_databases.end(), nullptr);
        if (place == m_databases.end()) {
            if (m_databases.size() > kMostDatabases)
                throw std::length_error("more drawings at once than the object registry numbers");
            place = m_databases.insert(m_databases.end(), nullptr);
        }
        *place = db;
        m_recentDatabase = std::size_t(place - m_databases.begin());
        return std::uint16_t(m_recentDatabase);
    }
    static constexpr std::size_t kMostDatabases = 0xFFFF;
    static constexpr std::size_t kNoDatabase = std::size_t(-1);

    std::uint64_t m_lastSerial = 0;
    std::vector<std::unique_ptr<Page>> m_pages;
    std::vector<const KxRxClass*> m_classes;
    struct RecentClass {
        const KxRxClass* cls = nullptr;
        std::uint8_t index = kNoClass;
    };
    std::array<RecentClass, 16> m_recent{};
    std::vector<KxDbDatabase*> m_databases;
    std::size_t m_recentDatabase = kNoDatabase;
};

Registry& registry()
{
    static Registry r;
    return r;
}

}  // namespace

KxDbObjectId registerObject(KxDbObject* obj, KxDbDatabase* db)
{
    return KxDbObjectId::fromOldId(registry().add(obj, db));
}

void skipSerialsTo(std::uint64_t serial)
{
    registry().skipTo(serial);
}

void registerObjectAs(KxDbObjectId id, KxDbObject* obj, KxDbDatabase* db)
{
    registry().put(id.asOldId(), obj, db);
}

void unregisterDatabase(KxDbDatabase* db)
{
    registry().forgetDatabase(db);
}

KxDbDatabase* registeredDatabase(KxDbObjectId id)
{
    return registry().databaseOf(id.asOldId());
}

KxDbObject* lookupObjectOf(KxDbObjectId id, const KxDbDatabase* db)
{
    return registry().findOf(id.asOldId(), db);
}

void unregisterObject(KxDbObjectId id)
{
    registry().remove(id.asOldId());
}

KxDbObject* lookupObject(KxDbObjectId id)
{
    return registry().find(id.asOldId());
}

const KxRxClass* registeredClass(KxDbObjectId id)
{
    return registry().classOf(id.asOldId());
}

bool isRegisteredLive(KxDbObjectId id)
{
    return registry().isLive(id.asOldId());
}

void setErased(KxDbObjectId id, bool erased)
{
    registry().setErased(id.asOldId(), erased);
}

}  // namespace kaldo

bool KxDbObjectId::isValid() const
{
    return kaldo::lookupObject(*this) != nullptr;
}

bool KxDbObjectId::isErased() const
{
    const KxDbObject* obj = kaldo::lookupObject(*this);
    return obj && obj->isErased();
}

KxDbDatabase* KxDbObjectId::database() const
{
    return kaldo::registeredDatabase(*this);
}

const KxRxClass* KxDbObjectId::objectClass() const
{
    return kaldo::registeredClass(*this);
}

#include "kaldo/db/ObjectRegistry.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bitset>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "kaldo/db/UnopenedRecords.h"
#include "kxdbdatabase.h"
#include "kxdbobject.h"

namespace kaldo {
namespace {

// Serial numbers are given out in order, so the table is a list of pages
// of consecutive serials: a lookup is two loads, and objects made together
// (a drawing read from a file) sit together. A page goes away when its last
// object does, so a long run that makes and drops drawings keeps only the
// page list, a pointer per 4096 serials. The slot of a record kept
// unopened holds its entry, shifted and tagged by the lowest bit, which no
// object's address has: the lookups that give an object make it first.
class Registry {
public:
    std::uint64_t add(KxDbObject* obj, KxDbDatabase* db)
    {
        const std::uint64_t serial = ++m_lastSerial;
        put(serial, obj, db);
        return serial;
    }

    std::uint64_t addUnopened(const KxRxClass* cls, std::uint64_t entry, KxDbDatabase* db)
    {
        const std::uint64_t serial = ++m_lastSerial;
        Page& page = pageToPut(serial);
        const std::size_t slot = slotOf(serial);
        page.slots[slot] = reinterpret_cast<KxDbObject*>(std::uintptr_t(entry << 1 | 1));
        page.classes[slot] = classIndex(cls);
        page.erased[slot] = false;
        page.databases[slot] = databaseIndex(db);
        ++page.live;
        return serial;
    }

    void setEntry(std::uint64_t serial, std::uint64_t entry)
    {
        pageToPut(serial).slots[slotOf(serial)] = reinterpret_cast<KxDbObject*>(std::uintptr_t(entry << 1 | 1));
    }
    void skipTo(std::uint64_t serial) { m_lastSerial = std::max(m_lastSerial, serial); }

    // serial was given out before and is free now, or names an unopened
    // record that obj was made from.
    void put(std::uint64_t serial, KxDbObject* obj, KxDbDatabase* db)
    {
        Page& page = pageToPut(serial);
        const std::size_t slot = slotOf(serial);
        if (!page.slots[slot])
            ++page.live;
        page.classes[slot] = classIndex(obj->isA());
        page.erased[slot] = obj->isErased();
        page.databases[slot] = databaseIndex(db);
        // Last, for a lookup on another thread that finds the object.
        std::atomic_ref<KxDbObject*>(page.slots[slot]).store(obj, std::memory_order_release);
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

    KxDbObject* find(std::uint64_t serial)
    {
        const Page* page = pageFor(serial);
        return page ? made(serial, *page) : nullptr;
    }

    bool holds(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        return page && page->slots[slotOf(serial)];
    }

    std::optional<std::uint64_t> unopenedEntry(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        if (!page || !isTagged(slotValue(*page, serial)))
            return std::nullopt;
        return std::uint64_t(slotValue(*page, serial) >> 1);
    }

    KxDbDatabase* databaseOf(std::uint64_t serial) const
    {
        const Page* page = pageFor(serial);
        if (!page || !page->slots[slotOf(serial)])
            return nullptr;
        return m_databases[page->databases[slotOf(serial)]];
    }

    KxDbObject* findOf(std::uint64_t serial, const KxDbDatabase* db)
    {
        const Page* page = pageFor(serial);
        if (!page || !page->slots[slotOf(serial)] || m_databases[page->databases[slotOf(serial)]] != db)
            return nullptr;
        return made(serial, *page);
    }

    void forgetDatabase(KxDbDatabase* db)
    {
        const auto known = std::find(m_databases.begin(), m_databases.end(), db);
        if (known != m_databases.end())
            *known = nullptr;
        m_recentDatabase = kNoDatabase;
    }

    const KxRxClass* classOf(std::uint64_t serial)
    {
        const Page* page = pageFor(serial);
        if (!page)
            return nullptr;
        const std::uint8_t index = page->classes[slotOf(serial)];
        if (index == kClassOfObject)
            return made(serial, *page)->isA();
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
    Page& pageToPut(std::uint64_t serial)
    {
        const std::size_t index = pageOf(serial);
        if (index >= m_pages.size())
            m_pages.resize(index + 1);
        std::unique_ptr<Page>& page = m_pages[index];
        if (!page)
            page = std::make_unique<Page>();
        return *page;
    }
    static std::uintptr_t slotValue(const Page& page, std::uint64_t serial)
    {
        return reinterpret_cast<std::uintptr_t>(std::atomic_ref<KxDbObject* const>(page.slots[slotOf(serial)]).load(
            std::memory_order_acquire));
    }
    static bool isTagged(std::uintptr_t value) { return value & 1; }
    // The object in the slot, made first when the slot names an unopened
    // record.
    KxDbObject* made(std::uint64_t serial, const Page& page)
    {
        const std::uintptr_t value = slotValue(page, serial);
        if (!isTagged(value))
            return reinterpret_cast<KxDbObject*>(value);
        KxDbDatabase* db = m_databases[page.databases[slotOf(serial)]];
        return db->unopenedRecords().make(KxDbObjectId::fromOldId(serial), std::uint64_t(value >> 1));
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

// Made before any code runs (constant initialization), so that a lookup
// reaches it without the guard a function's static would test each time.
constinit Registry theRegistry;

[[gnu::always_inline]] inline Registry& registry()
{
    return theRegistry;
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

KxDbObjectId registerUnopened(const KxRxClass* cls, std::uint64_t entry, KxDbDatabase* db)
{
    return KxDbObjectId::fromOldId(registry().addUnopened(cls, entry, db));
}

void setUnopenedEntry(KxDbObjectId id, std::uint64_t entry)
{
    registry().setEntry(id.asOldId(), entry);
}

bool isUnopened(KxDbObjectId id)
{
    return registry().unopenedEntry(id.asOldId()).has_value();
}

std::optional<std::uint64_t> unopenedEntry(KxDbObjectId id)
{
    return registry().unopenedEntry(id.asOldId());
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
    return kaldo::registry().holds(asOldId());
}

// A record kept unopened is never erased: erasing opens it.
bool KxDbObjectId::isErased() const
{
    if (kaldo::isUnopened(*this))
        return false;
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

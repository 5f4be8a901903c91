#include "kaldo/db/ObjectRegistry.h"

#include <array>
#include <memory>
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
    std::uint64_t add(KxDbObject* obj)
    {
        const std::uint64_t serial = ++m_lastSerial;
        const std::size_t index = pageOf(serial);
        if (index >= m_pages.size())
            m_pages.resize(index + 1);
        std::unique_ptr<Page>& page = m_pages[index];
        if (!page)
            page = std::make_unique<Page>();
        page->slots[slotOf(serial)] = obj;
        ++page->live;
        return serial;
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
        if (--page.live == 0)
            m_pages[index].reset();
    }

    KxDbObject* find(std::uint64_t serial) const
    {
        const std::size_t index = pageOf(serial);
        if (index >= m_pages.size() || !m_pages[index])
            return nullptr;
        return m_pages[index]->slots[slotOf(serial)];
    }

private:
    static constexpr unsigned kPageBits = 12;
    struct Page {
        std::array<KxDbObject*, std::size_t(1) << kPageBits> slots{};
        std::size_t live = 0;
    };
    static std::size_t pageOf(std::uint64_t serial) { return std::size_t(serial >> kPageBits); }
    static std::size_t slotOf(std::uint64_t serial) { return std::size_t(serial & ((1u << kPageBits) - 1)); }

    std::uint64_t m_lastSerial = 0;
    std::vector<std::unique_ptr<Page>> m_pages;
};

Registry& registry()
{
    static Registry r;
    return r;
}

}  // namespace

KxDbObjectId registerObject(KxDbObject* obj)
{
    return KxDbObjectId::fromOldId(registry().add(obj));
}

void unregisterObject(KxDbObjectId id)
{
    registry().remove(id.asOldId());
}

KxDbObject* lookupObject(KxDbObjectId id)
{
    return registry().find(id.asOldId());
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
    const KxDbObject* obj = kaldo::lookupObject(*this);
    return obj ? obj->database() : nullptr;
}

const KxRxClass* KxDbObjectId::objectClass() const
{
    const KxDbObject* obj = kaldo::lookupObject(*this);
    return obj ? obj->isA() : nullptr;
}

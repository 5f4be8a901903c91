#include "kaldo/db/HandleTable.h"

namespace kaldo {

void HandleTable::insert(std::uint64_t handle, KxDbObjectId id)
{
    if (handle == 0 || id.isNull())
        return;
    if (const std::uint64_t named = m_ids.exchange(handle, id.asOldId()); named != 0 && named != id.asOldId())
        m_handles.erase(named);
    if (const std::uint64_t held = m_handles.exchange(id.asOldId(), handle); held != 0 && held != handle)
        m_ids.erase(held);
}

bool HandleTable::insertNew(std::uint64_t handle, KxDbObjectId id)
{
    if (handle == 0 || id.isNull() || !m_ids.insertNew(handle, id.asOldId()))
        return false;
    if (const std::uint64_t held = m_handles.exchange(id.asOldId(), handle); held != 0 && held != handle)
        m_ids.erase(held);
    return true;
}

void HandleTable::erase(std::uint64_t handle)
{
    if (const std::uint64_t id = m_ids.find(handle); id != 0) {
        m_ids.erase(handle);
        m_handles.erase(id);
    }
}

}  // namespace kaldo

// The handles of a drawing's objects and the ids they name, both ways: an
// object keeps neither its handle nor a pointer to it, its database asks
// this table. Each way is a RunMap, so a drawing read from a file (handles
// in order, ids in order) costs a few runs, not a slot per object. Handles
// that records kept beside the objects hold (kept tables' records, records
// of runs) are reserved here, in a HandleSet: a run's records' handles far
// apart cost eight bytes each, close together well under one.
#pragma once

#include <cstdint>

#include "kaldo/db/HandleSet.h"
#include "kaldo/db/RunMap.h"
#include "kxdbid.h"

namespace kaldo {

class HandleTable {
public:
    // The id the handle names, or null.
    KxDbObjectId find(std::uint64_t handle) const { return KxDbObjectId::fromOldId(m_ids.find(handle)); }
    bool contains(std::uint64_t handle) const { return m_ids.find(handle) != 0; }
    // The handle of id, or 0.
    std::uint64_t handleOf(KxDbObjectId id) const { return m_handles.find(id.asOldId()); }
    // The run of ids (serials) with consecutive handles that holds id, or
    // one of count 0.
    RunMap::Run handleRunOf(KxDbObjectId id) const { return m_handles.runHolding(id.asOldId()); }
    // The greatest handle that names an id, or 0.
    std::uint64_t greatestHandle() const { return m_ids.greatestKey(); }
    // Names id (not null) by handle (not 0), in place of what the handle
    // named and of the handle id had before.
    void insert(std::uint64_t handle, KxDbObjectId id);
    // The same when the handle names nothing yet; false, with nothing
    // changed, when it does: one search where asking first took two.
    bool insertNew(std::uint64_t handle, KxDbObjectId id);
    void erase(std::uint64_t handle);
    // Whether the handle names an id or is reserved.
    bool isTaken(std::uint64_t handle) const { return contains(handle) || m_reserved.contains(handle); }
    void reserve(std::uint64_t handle) { m_reserved.insert(handle); }

private:
    RunMap m_ids;
    RunMap m_handles;
    HandleSet m_reserved;
};

}  // namespace kaldo

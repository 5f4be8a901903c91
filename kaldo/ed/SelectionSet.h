// The entities a command works on, each once, in the order they were
// chosen, and the windows that chose entities by area (STRETCH moves what
// lies in them). The command line fills one at "Select objects:"; a
// window may fill one before a command starts (see Editor::setImpliedSelection).
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kxdbid.h"

#include <cstddef>
#include <span>
#include <unordered_set>
#include <vector>

namespace kaldo {

class SelectionSet {
public:
    // Whether the entity was added (false when it was in already).
    bool add(KxDbObjectId id);
    // How many of the entities were in and are taken out.
    std::size_t remove(std::span<const KxDbObjectId> ids);
    bool contains(KxDbObjectId id) const { return m_members.contains(id); }

    const std::vector<KxDbObjectId>& ids() const { return m_ids; }
    std::size_t size() const { return m_ids.size(); }
    bool empty() const { return m_ids.empty(); }
    void clear();

    // World XY boxes of the windows given while selecting.
    const std::vector<Box>& windows() const { return m_windows; }
    void addWindow(const Box& window) { m_windows.push_back(window); }

    // The entities that are still in the drawing (not erased).
    SelectionSet withoutErased() const;

private:
    std::vector<KxDbObjectId> m_ids;
    std::unordered_set<KxDbObjectId> m_members;
    std::vector<Box> m_windows;
};

}  // namespace kaldo

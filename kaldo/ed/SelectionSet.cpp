#include "kaldo/ed/SelectionSet.h"

#include <algorithm>

namespace kaldo {

bool SelectionSet::add(KxDbObjectId id)
{
    if (!m_members.insert(id).second)
        return false;
    m_ids.push_back(id);
    return true;
}

std::size_t SelectionSet::remove(std::span<const KxDbObjectId> ids)
{
    std::size_t removed = 0;
    for (const KxDbObjectId& id : ids)
        removed += m_members.erase(id);
    if (removed > 0)
        std::erase_if(m_ids, [this](const KxDbObjectId& id) { return !m_members.contains(id); });
    return removed;
}

void SelectionSet::clear()
{
    m_ids.clear();
    m_members.clear();
    m_windows.clear();
}

SelectionSet SelectionSet::withoutErased() const
{
    SelectionSet kept;
    for (const KxDbObjectId& id : m_ids)
        if (id.isValid() && !id.isErased())
            kept.add(id);
    kept.m_windows = m_windows;
    return kept;
}

}  // namespace kaldo

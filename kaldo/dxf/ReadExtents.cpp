#include "kaldo/dxf/ReadExtents.h"

#include "kxdbdatabase.h"

namespace kaldo::dxf {

KnownExtents ReadExtents::known(const KxDbDatabase& db) const
{
    if (m_lost || (m_asked && m_space != db.modelSpaceId()))
        return {};
    return {m_box.extents(), &db, db.changeCount()};
}

}  // namespace kaldo::dxf

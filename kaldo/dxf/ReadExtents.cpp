#include "kaldo/dxf/ReadExtents.h"

#include "kxdbdatabase.h"
#include "kxdbmline.h"

namespace kaldo::dxf {

void ReadExtents::add(KxDbObjectId block, KxDbObjectId modelSpace, const KxDbEntity& entity)
{
    ExtentsBox* const box = boxFor(block, modelSpace);
    if (box && KxDbMline::cast(&entity))
        lose();
    else if (box)
        box->add(entity);
}

KnownExtents ReadExtents::known(const KxDbDatabase& db) const
{
    if (m_lost || (m_asked && m_space != db.modelSpaceId()))
        return {};
    return {m_box.extents(), &db, db.changeCount()};
}

}  // namespace kaldo::dxf

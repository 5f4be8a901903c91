#include "kaldo/db/StretchPreview.h"

#include "kxdbmline.h"

namespace kaldo {

namespace {

std::unique_ptr<KxDbEntity> copyOf(const KxDbEntity& entity)
{
    return std::unique_ptr<KxDbEntity>(static_cast<KxDbEntity*>(entity.clone().release()));
}

}  // namespace

StretchPreview::StretchPreview(const KxDbEntity& source, std::vector<int> indices)
    : m_source(copyOf(source)), m_copy(copyOf(source)), m_indices(std::move(indices))
{
}

StretchPreview::~StretchPreview() = default;

const KxDbEntity& StretchPreview::at(const KxGeVector3d& offset)
{
    if (auto* mline = KxDbMline::cast(m_copy.get())) {
        mline->stretchFrom(*KxDbMline::cast(m_source.get()), m_indices, offset);
        return *m_copy;
    }
    m_copy->copyFrom(m_source.get());
    m_copy->moveStretchPointsAt(m_indices, offset);
    return *m_copy;
}

}  // namespace kaldo

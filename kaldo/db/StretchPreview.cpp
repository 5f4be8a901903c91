#include "kaldo/db/StretchPreview.h"

#include "kxdbmline.h"

#include <algorithm>

namespace kaldo {

namespace {

std::unique_ptr<KxDbEntity> copyOf(const KxDbEntity& entity)
{
    return std::unique_ptr<KxDbEntity>(static_cast<KxDbEntity*>(entity.clone().release()));
}

// A stretch of vertices changes them, their neighbours and the vertices
// before those, and so the segments from two before the first to one
// after the last: vertices two either side of the moved ones hold them.
constexpr int kChangedReach = 2;

// The vertices around moved ones that follow one another (in a closed
// multiline, round its start), or nothing when the part would hold every
// vertex anyway.
std::vector<int> changedVertices(const KxDbMline& mline, std::vector<int> moved)
{
    const int n = mline.numVertices();
    std::ranges::sort(moved);
    moved.erase(std::unique(moved.begin(), moved.end()), moved.end());
    if (moved.empty() || moved.back() - moved.front() + 1 != int(moved.size()))
        return {};
    const bool closed = mline.closedMline() && n > 2;
    const int first = closed ? moved.front() - kChangedReach : std::max(0, moved.front() - kChangedReach);
    const int last = closed ? moved.back() + kChangedReach : std::min(n - 1, moved.back() + kChangedReach);
    if (last - first + 1 >= n)
        return {};
    std::vector<int> vertices;
    for (int v = first; v <= last; ++v)
        vertices.push_back((v + n) % n);
    return vertices;
}

}  // namespace

StretchPreview::StretchPreview(const KxDbEntity& source, std::vector<int> indices)
    : m_source(copyOf(source)), m_copy(copyOf(source)), m_indices(std::move(indices))
{
    const auto* mline = KxDbMline::cast(m_source.get());
    if (!mline)
        return;
    m_partVertices = changedVertices(*mline, m_indices);
    if (m_partVertices.empty())
        return;
    const int n = mline->numVertices();
    const bool cutAtStart = mline->closedMline() || m_partVertices.front() > 0;
    const bool cutAtEnd = mline->closedMline() || m_partVertices.back() < n - 1;
    // A copy keeps the source's layer, colour and linetype; its vertices
    // are set frame by frame.
    m_part.reset(static_cast<KxDbMline*>(mline->clone().release()));
    KxDbSystemInternals::getImpObject(m_part.get())
        ->setStoredProperties(mline->style(), mline->justification(), mline->scale(), mline->normal(), false,
                              cutAtStart || mline->supressStartCaps(), cutAtEnd || mline->supressEndCaps());
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

const KxDbEntity& StretchPreview::changedAt(const KxGeVector3d& offset)
{
    const KxDbEntity& copy = at(offset);
    if (!m_part)
        return copy;
    const auto& mline = *KxDbMline::cast(&copy);
    std::vector<KxDbMlineVertex> vertices;
    vertices.reserve(m_partVertices.size());
    KxDbMlineListStore lists;
    for (const int v : m_partVertices)
        vertices.push_back({mline.vertexAt(v), mline.axisAt(v), mline.miterAt(v), lists.add(mline.parametersAt(v))});
    KxDbSystemInternals::getImpObject(m_part.get())->setStoredVertices(std::move(vertices), lists);
    return *m_part;
}

}  // namespace kaldo

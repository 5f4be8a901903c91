#include "kxdbmline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "kaldo/db/FiniteValues.h"
#include "kaldo/db/MlineLayout.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kxdbdatabase.h"
#include "kxdbmlstyle.h"

KX_RX_DEFINE_MEMBERS(KxDbMline, KxDbEntity)

namespace {

using kaldo::finiteLists;
using kaldo::finiteVertex;
using kaldo::isFinite;

// The vertices at indices of vertices (those in range) hold numbers only,
// their lists in store too.
template <class Indices>
bool finiteAt(std::span<const KxDbMlineVertex> vertices, const KxDbMlineListStore& store, const Indices& indices)
{
    return std::ranges::all_of(indices, [&](std::size_t i) {
        return i >= vertices.size() || finiteVertex(vertices[i], store.at(vertices[i].lists));
    });
}

// Puts the vertices' lists, which lie in from, into to (emptied first):
// neighbours whose lists are equal bit for bit share them, and lists no
// vertex uses stay behind. to gets exactly the room it needs.
void copyLists(std::span<KxDbMlineVertex> vertices, const KxDbMlineListStore& from, KxDbMlineListStore& to)
{
    const auto sameAsBefore = [&](std::size_t i) {
        return i > 0 && (vertices[i].lists == vertices[i - 1].lists ||
                         from.at(vertices[i].lists).sameAs(from.at(vertices[i - 1].lists)));
    };
    std::vector<bool> shared(vertices.size());
    std::size_t values = 0;
    std::size_t ends = 0;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        shared[i] = sameAsBefore(i);
        if (!shared[i]) {
            values += from.at(vertices[i].lists).values().size();
            ends += 2 * std::size_t(vertices[i].lists.elements);
        }
    }
    to.clear();
    to.reserve(values, ends);
    for (std::size_t i = 0; i < vertices.size(); ++i)
        vertices[i].lists = shared[i] ? vertices[i - 1].lists : to.add(from.at(vertices[i].lists));
}

}  // namespace

Kald::ErrorStatus KxDbMlineImp::appendSegments(const KxGePoint3dArray& points)
{
    if (points.size() != m_mline.m_vertices.size() || !std::ranges::all_of(points, isFinite<KxGePoint3d>))
        return Kald::eInvalidInput;
    for (std::size_t i = 0; i < points.size(); ++i)
        m_mline.m_vertices[i].position = points[i];
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineImp::appendSeg(const KxGeVector3dArray& vectors, bool axes)
{
    if (vectors.size() != m_mline.m_vertices.size() || !std::ranges::all_of(vectors, isFinite<KxGeVector3d>))
        return Kald::eInvalidInput;
    for (std::size_t i = 0; i < vectors.size(); ++i)
        (axes ? m_mline.m_vertices[i].axis : m_mline.m_vertices[i].miter) = vectors[i];
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineImp::setStoredVertices(std::vector<KxDbMlineVertex> vertices,
                                                  const KxDbMlineListStore& lists)
{
    if (!std::ranges::all_of(vertices, [&](const KxDbMlineVertex& v) {
            return lists.holds(v.lists) && finiteVertex(v, lists.at(v.lists));
        }))
        return Kald::eInvalidInput;
    m_mline.m_vertices = std::move(vertices);
    copyLists(m_mline.m_vertices, lists, m_mline.m_lists);
    m_mline.m_bytesInUse = m_mline.m_lists.byteSize();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineImp::setStoredProperties(KxDbObjectId style, int justification, double scale,
                                                    const KxGeVector3d& normal, bool closed, bool supressStartCaps,
                                                    bool supressEndCaps)
{
    if (justification < Mline::kTop || justification > Mline::kBottom)
        return Kald::eOutOfRange;
    if (!std::isfinite(scale) || normal.length() <= kxGeTolerance)
        return Kald::eInvalidInput;
    m_mline.m_style = style;
    m_mline.m_justification = justification;
    m_mline.m_scale = scale;
    m_mline.m_normal = normal;
    m_mline.m_closed = closed;
    m_mline.m_supressStartCaps = supressStartCaps;
    m_mline.m_supressEndCaps = supressEndCaps;
    return Kald::eOk;
}

KxDbMlineImp* KxDbSystemInternals::getImpObject(KxDbObject* obj)
{
    KxDbMline* mline = KxDbMline::cast(obj);
    return mline ? &mline->m_imp : nullptr;
}

KxDbMline::KxDbMline() = default;
KxDbMline::~KxDbMline() = default;

namespace {

kaldo::MlineLayout layoutOf(const KxDbMline& mline)
{
    return kaldo::mlineLayout(KxDbMlineStyle::cast(kaldo::lookupObject(mline.style())), mline.scale(),
                              mline.justification(), mline.normal());
}

kaldo::VertexFrame frameAt(const kaldo::MlineLayout& layout, std::span<const KxDbMlineVertex> vertices, bool closed,
                           std::size_t v)
{
    return kaldo::frameAt(layout, [&](std::size_t i) { return vertices[i].position; }, vertices.size(), closed, v);
}

// Whether laying every vertex out anew gives numbers only.
bool layoutFinite(const kaldo::MlineLayout& layout, std::span<const KxDbMlineVertex> vertices, bool closed)
{
    for (std::size_t v = 0; v < vertices.size(); ++v)
        if (!kaldo::frameFinite(layout, frameAt(layout, vertices, closed, v)))
            return false;
    return true;
}

}  // namespace

template <class Restore>
Kald::ErrorStatus KxDbMline::rebuildAllOrRestore(Restore restore)
{
    // Checked before anything changes, so that nothing needs to be kept
    // for going back.
    if (!layoutFinite(layoutOf(*this), m_vertices, m_closed)) {
        restore();
        return Kald::eInvalidInput;
    }
    rebuildAll();
    dropUnusedLists();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::setStyle(KxDbObjectId style)
{
    if (!style.isNull() && !KxDbMlineStyle::cast(kaldo::lookupObject(style)))
        return Kald::eWrongObjectType;
    const KxDbObjectId old = std::exchange(m_style, style);
    return rebuildAllOrRestore([&] { m_style = old; });
}

Kald::ErrorStatus KxDbMline::setJustification(int justification)
{
    if (justification < Mline::kTop || justification > Mline::kBottom)
        return Kald::eOutOfRange;
    const int old = std::exchange(m_justification, justification);
    return rebuildAllOrRestore([&] { m_justification = old; });
}

Kald::ErrorStatus KxDbMline::setScale(double scale)
{
    if (!std::isfinite(scale))
        return Kald::eInvalidInput;
    const double old = std::exchange(m_scale, scale);
    return rebuildAllOrRestore([&] { m_scale = old; });
}

Kald::ErrorStatus KxDbMline::setNormal(const KxGeVector3d& normal)
{
    if (normal.length() <= kxGeTolerance || !isFinite(normal))
        return Kald::eInvalidInput;
    const KxGeVector3d old = std::exchange(m_normal, normalized(normal));
    return rebuildAllOrRestore([&] { m_normal = old; });
}

Kald::ErrorStatus KxDbMline::setClosedMline(bool closed)
{
    if (closed == m_closed)
        return Kald::eOk;
    m_closed = closed;
    // Only the ends change: the last vertex gains or loses its closing
    // segment, the first its bisecting miter.
    if (!m_vertices.empty()) {
        const std::size_t last = m_vertices.size() - 1;
        rebuild(std::array{last, std::size_t{0}}, std::array{last});
        dropUnusedLists();
    }
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::setSupressStartCaps(bool on)
{
    m_supressStartCaps = on;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::setSupressEndCaps(bool on)
{
    m_supressEndCaps = on;
    return Kald::eOk;
}

KxGePoint3d KxDbMline::vertexAt(int index) const
{
    return index >= 0 && index < numVertices() ? m_vertices[std::size_t(index)].position : KxGePoint3d();
}

KxGeVector3d KxDbMline::axisAt(int index) const
{
    return index >= 0 && index < numVertices() ? m_vertices[std::size_t(index)].axis : KxGeVector3d();
}

KxGeVector3d KxDbMline::miterAt(int index) const
{
    return index >= 0 && index < numVertices() ? m_vertices[std::size_t(index)].miter : KxGeVector3d();
}

Kald::ErrorStatus KxDbMline::appendSeg(const KxGePoint3d& point)
{
    m_vertices.push_back(Vertex{point, {}, {}, {}});
    // The new vertex, the one before it (no longer the end) and, when
    // closed, the first (its miter looks back at the new last vertex).
    const std::size_t last = m_vertices.size() - 1;
    const std::size_t before = last > 0 ? last - 1 : last;
    const std::array touched{before, last, std::size_t{0}};
    rebuild(touched, std::array{before, last});
    if (!finiteAt(m_vertices, m_lists, touched)) {
        KxGePoint3d dropped;
        removeLastSeg(dropped);
        return Kald::eInvalidInput;
    }
    dropUnusedLists();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::removeLastSeg(KxGePoint3d& lastPoint)
{
    if (m_vertices.empty())
        return Kald::eInvalidIndex;
    lastPoint = m_vertices.back().position;
    m_vertices.pop_back();
    if (m_vertices.size() <= 2)
        m_closed = false;
    if (!m_vertices.empty()) {
        const std::size_t last = m_vertices.size() - 1;
        rebuild(std::array{last, std::size_t{0}}, std::array{last});
    }
    dropUnusedLists();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::moveVertexAt(int index, const KxGePoint3d& point)
{
    const int n = numVertices();
    if (index < 0 || index >= n)
        return Kald::eInvalidIndex;
    const KxGePoint3d old = std::exchange(m_vertices[std::size_t(index)].position, point);
    // The vertex and its neighbours see the move; the segments on both
    // sides of it start their runs afresh.
    const auto at = std::size_t(index);
    const auto count = std::size_t(n);
    const std::size_t previous = at > 0 ? at - 1 : m_closed ? count - 1 : at;
    const std::size_t next = at + 1 < count ? at + 1 : m_closed ? 0 : at;
    const std::array touched{previous, at, next};
    const std::array fresh{at, previous};
    rebuild(touched, fresh);
    const bool finite = finiteAt(m_vertices, m_lists, touched);
    if (!finite) {
        m_vertices[at].position = old;
        rebuild(touched, fresh);
    }
    dropUnusedLists();
    return finite ? Kald::eOk : Kald::eInvalidInput;
}

Kald::ErrorStatus KxDbMline::getParametersAt(int index, KxArray& params) const
{
    params.removeAll();
    if (index < 0 || index >= numVertices())
        return Kald::eInvalidIndex;
    KxDbMlineVertexParams* record = KxDbMlineVertexParams::create();
    record->lists.assign(listsOf(m_vertices[std::size_t(index)]));
    params.append(record);
    return Kald::eOk;
}

KxDbMlineVertexLists KxDbMline::parametersAt(int index) const
{
    return index >= 0 && index < numVertices() ? listsOf(m_vertices[std::size_t(index)]) : KxDbMlineVertexLists();
}

Kald::ErrorStatus KxDbMline::setParametersAt(int index, const KxArray& params)
{
    if (index < 0 || index >= numVertices())
        return Kald::eInvalidIndex;
    const KxDbMlineVertexParams* record = KxDbMlineVertexParams::fromArray(params);
    if (!record || !finiteLists(record->lists.view()))
        return Kald::eInvalidInput;
    m_vertices[std::size_t(index)].lists = m_lists.add(record->lists.view());
    dropUnusedLists();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbMline*>(other);
    m_style = src->m_style;
    m_justification = src->m_justification;
    m_scale = src->m_scale;
    m_normal = src->m_normal;
    m_closed = src->m_closed;
    m_supressStartCaps = src->m_supressStartCaps;
    m_supressEndCaps = src->m_supressEndCaps;
    m_vertices = src->m_vertices;
    copyLists(m_vertices, src->m_lists, m_lists);
    m_bytesInUse = m_lists.byteSize();
    return Kald::eOk;
}

void KxDbMline::subSetDatabaseDefaults(KxDbDatabase* db)
{
    KxDbEntity::subSetDatabaseDefaults(db);
    m_style = db->cmlstyleID();
    m_justification = db->cmljust();
    m_scale = db->cmlscale();
    rebuildAll();
    dropUnusedLists();
}

void KxDbMline::rebuildAll()
{
    // Every vertex, in order (a list of indices: the clang of the fuzz build
    // cannot take libstdc++'s iota view).
    std::vector<std::size_t> every(m_vertices.size());
    std::iota(every.begin(), every.end(), std::size_t{0});
    rebuildVertices(every, [](std::size_t) { return true; });
}

void KxDbMline::dropUnusedLists()
{
    // Lists are added, never changed in place: dropping what no vertex uses
    // once it outweighs what they use keeps every edit's cost constant on
    // average.
    constexpr std::size_t kSlack = 4096;
    if (m_lists.byteSize() <= 2 * m_bytesInUse + kSlack)
        return;
    KxDbMlineListStore kept;
    copyLists(m_vertices, m_lists, kept);
    m_lists = std::move(kept);
    m_bytesInUse = m_lists.byteSize();
}

void KxDbMline::rebuild(std::span<const std::size_t> vertices, std::span<const std::size_t> freshVertices)
{
    std::vector<std::size_t> fresh(freshVertices.begin(), freshVertices.end());
    std::ranges::sort(fresh);
    rebuildVertices(vertices, [&](std::size_t v) { return std::ranges::binary_search(fresh, v); });
}

template <class Vertices, class IsFresh>
void KxDbMline::rebuildVertices(const Vertices& vertices, const IsFresh& isFresh)
{
    const std::size_t n = m_vertices.size();
    if (n == 0)
        return;
    const kaldo::MlineLayout layout = layoutOf(*this);

    // The lists made for the vertex before, which an equal one shares:
    // straight runs keep one set of lists, as they do when read from a file.
    KxDbMlineListSet lists;
    std::optional<KxDbMlineListsRef> madeBefore;
    std::size_t madeAt = n;
    for (const std::size_t v : vertices) {
        if (v >= n)
            continue;
        const kaldo::VertexFrame frame = frameAt(layout, m_vertices, m_closed, v);
        Vertex& vertex = m_vertices[v];
        vertex.axis = frame.axis;
        vertex.miter = frame.miter;

        const KxDbMlineVertexLists old = listsOf(vertex);
        const bool fresh = std::size_t(old.numElements()) != layout.offsets.size() || isFresh(v);
        if (fresh)
            lists.setNumElements(0);
        else
            lists.assign(old);
        lists.setNumElements(int(layout.offsets.size()));
        for (std::size_t e = 0; e < layout.offsets.size(); ++e) {
            const double entry0 = frame.entry0(layout, e);
            if (fresh) {
                const std::array whole{entry0, 0.0};
                lists.setElement(int(e), whole);
                lists.setAreaFill(int(e), whole);
            } else {
                lists.setEntry0(int(e), entry0);
            }
        }
        if (madeBefore && madeAt + 1 == v && lists.view().sameAs(m_lists.at(*madeBefore)))
            vertex.lists = *madeBefore;
        else if (!lists.view().sameAs(listsOf(vertex)))
            vertex.lists = m_lists.add(lists.view());
        madeBefore = vertex.lists;
        madeAt = v;
    }
}

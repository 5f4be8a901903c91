#include "kxdbmline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <numeric>
#include <span>
#include <utility>

#include "kaldo/db/EntityPlane.h"
#include "kaldo/db/FiniteValues.h"
#include "kaldo/db/MlineGeometry.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kxdbdatabase.h"
#include "kxdbmlstyle.h"

KX_RX_DEFINE_MEMBERS(KxDbMline, KxDbEntity)

namespace {

using kaldo::finiteLists;
using kaldo::finiteVertex;
using kaldo::isFinite;

template <class Vertices>
bool finiteGeometry(const Vertices& vertices)
{
    return std::ranges::all_of(vertices, [](const auto& v) { return finiteVertex(v); });
}

// The same for the vertices an edit rebuilt; the others did not change.
template <class Vertices>
bool finiteGeometry(const Vertices& vertices, std::span<const std::size_t> touched)
{
    return std::ranges::all_of(touched, [&](std::size_t i) { return i >= vertices.size() || finiteVertex(vertices[i]); });
}

// Whether two sets of lists hold the same values bit for bit (0 and -0 are
// written differently, so they differ here).
bool sameLists(const std::vector<KxDbMlineElementParams>& a, const std::vector<KxDbMlineElementParams>& b)
{
    const auto sameList = [](const std::vector<double>& x, const std::vector<double>& y) {
        return x.size() == y.size() && (x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0);
    };
    return std::ranges::equal(a, b, [&](const KxDbMlineElementParams& x, const KxDbMlineElementParams& y) {
        return sameList(x.element, y.element) && sameList(x.areaFill, y.areaFill);
    });
}

}  // namespace

KxDbMlineVertexParams* KxDbMlineVertexParams::create()
{
    return new KxDbMlineVertexParams;
}

KxDbMlineVertexParams* KxDbMlineVertexParams::fromArray(const KxArray& params)
{
    return params.isEmpty() ? nullptr : static_cast<KxDbMlineVertexParams*>(params.at(0));
}

void KxDbMlineVertexParams::release()
{
    if (--m_refs == 0)
        delete this;
}

KxDbMlineParamsPtr KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams* record)
{
    KxDbMlineParamsPtr ptr;
    ptr.m_record = record;
    return ptr;
}

KxDbMlineParamsPtr KxDbMlineParamsPtr::share(KxDbMlineVertexParams* record)
{
    if (record)
        record->addRef();
    return adopt(record);
}

KxDbMlineParamsPtr::KxDbMlineParamsPtr(const KxDbMlineParamsPtr& other) : m_record(other.m_record)
{
    if (m_record)
        m_record->addRef();
}

KxDbMlineParamsPtr& KxDbMlineParamsPtr::operator=(const KxDbMlineParamsPtr& other)
{
    KxDbMlineParamsPtr copy(other);
    std::swap(m_record, copy.m_record);
    return *this;
}

KxDbMlineParamsPtr::KxDbMlineParamsPtr(KxDbMlineParamsPtr&& other) noexcept : m_record(other.m_record)
{
    other.m_record = nullptr;
}

KxDbMlineParamsPtr& KxDbMlineParamsPtr::operator=(KxDbMlineParamsPtr&& other) noexcept
{
    std::swap(m_record, other.m_record);
    return *this;
}

KxDbMlineParamsPtr::~KxDbMlineParamsPtr()
{
    if (m_record)
        m_record->release();
}

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

bool KxDbMlineImp::appendSharingPrevious(const KxDbMlineStoredVertex& v)
{
    // Straight runs and repeated corners keep one record, not one each.
    if (m_mline.m_vertices.empty() || !sameLists(m_mline.m_vertices.back().params->elements, v.elements))
        return false;
    const KxDbMlineParamsPtr previous = m_mline.m_vertices.back().params;
    m_mline.m_vertices.push_back(KxDbMline::Vertex{v.position, v.axis, v.miter, previous});
    return true;
}

Kald::ErrorStatus KxDbMlineImp::setStoredVertices(std::vector<KxDbMlineVertex> vertices)
{
    if (!std::ranges::all_of(vertices, [](const KxDbMlineVertex& v) { return v.params && finiteVertex(v); }))
        return Kald::eInvalidInput;
    m_mline.m_vertices = std::move(vertices);
    return Kald::eOk;
}

void KxDbMlineImp::copyStoredVertices(std::span<const KxDbMlineStoredVertex> vertices)
{
    m_mline.m_vertices.clear();
    m_mline.m_vertices.reserve(vertices.size());
    for (const KxDbMlineStoredVertex& v : vertices) {
        if (appendSharingPrevious(v))
            continue;
        auto record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::create());
        record->elements = v.elements;
        m_mline.m_vertices.push_back(KxDbMline::Vertex{v.position, v.axis, v.miter, std::move(record)});
    }
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

template <class Restore>
Kald::ErrorStatus KxDbMline::rebuildAllOrRestore(Restore restore)
{
    // Rebuilding makes new records, so the copy keeps the old lists.
    std::vector<Vertex> before = m_vertices;
    rebuildAll();
    if (finiteGeometry(m_vertices))
        return Kald::eOk;
    m_vertices = std::move(before);
    restore();
    return Kald::eInvalidInput;
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
    if (!finiteGeometry(m_vertices, touched)) {
        KxGePoint3d dropped;
        removeLastSeg(dropped);
        return Kald::eInvalidInput;
    }
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
    if (!finiteGeometry(m_vertices, touched)) {
        m_vertices[at].position = old;
        rebuild(touched, fresh);
        return Kald::eInvalidInput;
    }
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMline::getParametersAt(int index, KxArray& params) const
{
    params.removeAll();
    if (index < 0 || index >= numVertices())
        return Kald::eInvalidIndex;
    KxDbMlineVertexParams* record = m_vertices[std::size_t(index)].params.get();
    record->addRef();
    params.append(record);
    return Kald::eOk;
}

const KxDbMlineVertexParams* KxDbMline::parametersAt(int index) const
{
    return index >= 0 && index < numVertices() ? m_vertices[std::size_t(index)].params.get() : nullptr;
}

Kald::ErrorStatus KxDbMline::setParametersAt(int index, const KxArray& params)
{
    if (index < 0 || index >= numVertices())
        return Kald::eInvalidIndex;
    KxDbMlineVertexParams* record = KxDbMlineVertexParams::fromArray(params);
    if (!record || !finiteLists(record->elements))
        return Kald::eInvalidInput;
    m_vertices[std::size_t(index)].params = KxDbMlineParamsPtr::share(record);
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
    // Records are shared, not copied: no record changes while a multiline
    // holds it (edits set a changed copy), so a copy (an undo step's, a
    // drag's) costs the vertices alone.
    m_vertices = src->m_vertices;
    return Kald::eOk;
}

void KxDbMline::subSetDatabaseDefaults(KxDbDatabase* db)
{
    KxDbEntity::subSetDatabaseDefaults(db);
    m_style = db->cmlstyleID();
    m_justification = db->cmljust();
    m_scale = db->cmlscale();
    rebuildAll();
}

void KxDbMline::rebuildAll()
{
    std::vector<std::size_t> all(m_vertices.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    rebuild(all, all);
}

void KxDbMline::rebuild(std::span<const std::size_t> vertices, std::span<const std::size_t> freshVertices)
{
    const std::size_t n = m_vertices.size();
    if (n == 0)
        return;
    const kaldo::EntityPlane plane(m_normal);
    const auto point = [&](std::size_t i) { return plane.toPlane(m_vertices[i].position); };

    const auto* style = KxDbMlineStyle::cast(kaldo::lookupObject(m_style));
    const std::vector<double> offsets =
        style ? kxdbMlineElementOffsets(*style, m_scale, m_justification) : std::vector<double>();
    const double startAngle = style ? style->startAngle() : std::numbers::pi / 2;
    const double endAngle = style ? style->endAngle() : std::numbers::pi / 2;

    // The record made for the vertex before, which an equal one shares:
    // straight runs keep one record, as they do when read from a file.
    KxDbMlineVertexParams* madeBefore = nullptr;
    std::size_t madeAt = n;
    for (const std::size_t v : vertices) {
        if (v >= n)
            continue;
        Vertex& vertex = m_vertices[v];
        const kaldo::VertexAngles a = kaldo::vertexAnglesAt(point, n, v, m_closed, startAngle, endAngle);
        vertex.axis = plane.toWorld(KxGeVector3d(std::cos(a.axis), std::sin(a.axis)));
        vertex.miter = plane.toWorld(KxGeVector3d(std::cos(a.miter), std::sin(a.miter)));

        // Lists are rewritten in a record of the multiline's own, so that a
        // reference a caller still holds keeps what it was given.
        const KxDbMlineVertexParams* old = vertex.params.get();
        auto record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::create());
        const bool fresh = !old || old->elements.size() != offsets.size() ||
                           std::find(freshVertices.begin(), freshVertices.end(), v) != freshVertices.end();
        if (!fresh)
            record->elements = old->elements;
        record->elements.resize(offsets.size());
        for (std::size_t e = 0; e < offsets.size(); ++e) {
            const double entry0 = kaldo::miterDistance(offsets[e], a.miter, a.axis);
            KxDbMlineElementParams& lists = record->elements[e];
            for (std::vector<double>* list : {&lists.areaFill, &lists.element}) {
                if (fresh || list->empty())
                    *list = {entry0, 0.0};
                else
                    list->front() = entry0;
            }
        }
        if (madeBefore && madeAt + 1 == v && sameLists(madeBefore->elements, record->elements)) {
            vertex.params = KxDbMlineParamsPtr::share(madeBefore);
        } else {
            vertex.params = std::move(record);
            madeBefore = vertex.params.get();
        }
        madeAt = v;
    }
}

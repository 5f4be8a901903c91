#include "kxdbents.h"

#include <cmath>

#include "kaldo/db/EntityPlane.h"

KX_RX_DEFINE_MEMBERS(KxDbLine, KxDbEntity)
KX_RX_DEFINE_MEMBERS(KxDbArc, KxDbEntity)
KX_RX_DEFINE_MEMBERS(KxDbCircle, KxDbEntity)
KX_RX_DEFINE_MEMBERS(KxDbPolyline, KxDbEntity)

namespace {

template <class Normal>
Kald::ErrorStatus checkedNormal(const KxGeVector3d& normal, Normal& out)
{
    if (normal.length() <= kxGeTolerance)
        return Kald::eInvalidInput;
    out = normalized(normal);
    return Kald::eOk;
}

}  // namespace

Kald::ErrorStatus KxDbLine::setStartPoint(const KxGePoint3d& point)
{
    m_start = point;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbLine::setEndPoint(const KxGePoint3d& point)
{
    m_end = point;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbLine::setNormal(const KxGeVector3d& normal)
{
    return checkedNormal(normal, m_normal);
}

Kald::ErrorStatus KxDbLine::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbLine*>(other);
    m_start = src->m_start;
    m_end = src->m_end;
    m_normal = src->m_normal;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbArc::setCenter(const KxGePoint3d& center)
{
    m_center = center;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbArc::setRadius(double radius)
{
    if (!(radius >= 0))
        return Kald::eInvalidInput;
    m_radius = radius;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbArc::setStartAngle(double radians)
{
    m_startAngle = radians;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbArc::setEndAngle(double radians)
{
    m_endAngle = radians;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbArc::setNormal(const KxGeVector3d& normal)
{
    return checkedNormal(normal, m_normal);
}

KxGePoint3d KxDbArc::startPoint() const
{
    const kaldo::EntityPlane plane(m_normal);
    return m_center + plane.toWorld(KxGeVector3d(std::cos(m_startAngle), std::sin(m_startAngle))) * m_radius;
}

KxGePoint3d KxDbArc::endPoint() const
{
    const kaldo::EntityPlane plane(m_normal);
    return m_center + plane.toWorld(KxGeVector3d(std::cos(m_endAngle), std::sin(m_endAngle))) * m_radius;
}

Kald::ErrorStatus KxDbArc::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbArc*>(other);
    m_center = src->m_center;
    m_normal = src->m_normal;
    m_radius = src->m_radius;
    m_startAngle = src->m_startAngle;
    m_endAngle = src->m_endAngle;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbCircle::setCenter(const KxGePoint3d& center)
{
    m_center = center;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbCircle::setRadius(double radius)
{
    if (!(radius >= 0))
        return Kald::eInvalidInput;
    m_radius = radius;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbCircle::setNormal(const KxGeVector3d& normal)
{
    return checkedNormal(normal, m_normal);
}

Kald::ErrorStatus KxDbCircle::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbCircle*>(other);
    m_center = src->m_center;
    m_normal = src->m_normal;
    m_radius = src->m_radius;
    return Kald::eOk;
}

KxGePoint3d KxDbPolyline::pointAt(int index) const
{
    if (index < 0 || index >= numVerts())
        return {};
    const Position& v = m_positions[std::size_t(index)];
    const kaldo::EntityPlane plane(m_normal);
    return plane.toWorld(KxGePoint3d(v.x, v.y, m_elevation));
}

KxDbPolyline::Vertex KxDbPolyline::vertexAt(int index) const
{
    const Position& p = m_positions[std::size_t(index)];
    if (!m_shapes)
        return Vertex{p.x, p.y};
    const Shape& s = (*m_shapes)[std::size_t(index)];
    return Vertex{p.x, p.y, s.startWidth, s.endWidth, s.bulge};
}

std::vector<KxDbPolyline::Vertex> KxDbPolyline::vertices() const
{
    std::vector<Vertex> all;
    all.reserve(m_positions.size());
    for (int i = 0; i < numVerts(); ++i)
        all.push_back(vertexAt(i));
    return all;
}

void KxDbPolyline::setVertices(const std::vector<Vertex>& vertices)
{
    m_positions.clear();
    m_shapes.reset();
    m_positions.reserve(vertices.size());
    for (const Vertex& v : vertices)
        addVertexAt(v);
    m_positions.shrink_to_fit();
    if (m_shapes)
        m_shapes->shrink_to_fit();
}

void KxDbPolyline::addVertexAt(const Vertex& vertex)
{
    m_positions.push_back({vertex.x, vertex.y});
    const bool shaped = vertex.startWidth != 0 || vertex.endWidth != 0 || vertex.bulge != 0;
    if (!m_shapes && !shaped)
        return;
    if (!m_shapes)
        m_shapes = std::make_unique<std::vector<Shape>>(m_positions.size() - 1);
    m_shapes->push_back({vertex.startWidth, vertex.endWidth, vertex.bulge});
}

std::size_t KxDbPolyline::vertexBytes() const
{
    return m_positions.size() * sizeof(Position) + (m_shapes ? m_shapes->size() * sizeof(Shape) : 0);
}

Kald::ErrorStatus KxDbPolyline::setNormal(const KxGeVector3d& normal)
{
    return checkedNormal(normal, m_normal);
}

Kald::ErrorStatus KxDbPolyline::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbPolyline*>(other);
    m_positions = src->m_positions;
    m_shapes = src->m_shapes ? std::make_unique<std::vector<Shape>>(*src->m_shapes) : nullptr;
    m_normal = src->m_normal;
    m_constantWidth = src->m_constantWidth;
    m_elevation = src->m_elevation;
    m_thickness = src->m_thickness;
    m_closed = src->m_closed;
    m_plinegen = src->m_plinegen;
    return Kald::eOk;
}

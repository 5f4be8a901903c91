#include "kxdbents.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "kaldo/db/EntityPlane.h"

KX_RX_DEFINE_MEMBERS(KxDbLine, KxDbEntity)
KX_RX_DEFINE_MEMBERS(KxDbArc, KxDbEntity)
KX_RX_DEFINE_MEMBERS(KxDbCircle, KxDbEntity)
KX_RX_DEFINE_MEMBERS(KxDbPolyline, KxDbEntity)

namespace {

// normal of unit length, or nothing for one too short to give a direction.
std::optional<KxGeVector3d> checkedNormal(const KxGeVector3d& normal)
{
    if (normal.length() <= kxGeTolerance)
        return std::nullopt;
    return normalized(normal);
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
    const std::optional<KxGeVector3d> unit = checkedNormal(normal);
    if (!unit)
        return Kald::eInvalidInput;
    setPlaneNormal(*unit);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbLine::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbLine*>(other);
    m_start = src->m_start;
    m_end = src->m_end;
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
    const std::optional<KxGeVector3d> unit = checkedNormal(normal);
    if (!unit)
        return Kald::eInvalidInput;
    setPlaneNormal(*unit);
    return Kald::eOk;
}

KxGePoint3d KxDbArc::startPoint() const
{
    const kaldo::EntityPlane plane(planeNormal());
    return m_center + plane.toWorld(KxGeVector3d(std::cos(m_startAngle), std::sin(m_startAngle))) * m_radius;
}

KxGePoint3d KxDbArc::endPoint() const
{
    const kaldo::EntityPlane plane(planeNormal());
    return m_center + plane.toWorld(KxGeVector3d(std::cos(m_endAngle), std::sin(m_endAngle))) * m_radius;
}

Kald::ErrorStatus KxDbArc::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbArc*>(other);
    m_center = src->m_center;
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
    const std::optional<KxGeVector3d> unit = checkedNormal(normal);
    if (!unit)
        return Kald::eInvalidInput;
    setPlaneNormal(*unit);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbCircle::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbCircle*>(other);
    m_center = src->m_center;
    m_radius = src->m_radius;
    return Kald::eOk;
}

KxGePoint3d KxDbPolyline::pointAt(int index) const
{
    if (index < 0 || index >= numVerts())
        return {};
    const Position& v = m_positions[std::size_t(index)];
    const kaldo::EntityPlane plane(planeNormal());
    return plane.toWorld(KxGePoint3d(v.x, v.y, elevation()));
}

std::vector<KxDbPolyline::Vertex> KxDbPolyline::vertices() const
{
    std::vector<Vertex> all;
    all.reserve(m_count);
    for (int i = 0; i < numVerts(); ++i)
        all.push_back(vertexAt(i));
    return all;
}

KxDbPolyline::~KxDbPolyline()
{
    freeRoom();
}

std::unique_ptr<KxDbPolyline> KxDbPolyline::withRoom(std::uint32_t count)
{
    std::unique_ptr<KxDbPolyline> pline(new (KxDbTrailingRoom{count * sizeof(Position)}) KxDbPolyline);
    pline->m_positions = reinterpret_cast<Position*>(reinterpret_cast<char*>(pline.get()) + sizeof(KxDbPolyline));
    pline->m_room = count;
    pline->m_roomInObject = true;
    return pline;
}

std::unique_ptr<KxDbObject> KxDbPolyline::clone() const
{
    std::unique_ptr<KxDbPolyline> copy = withRoom(m_count);
    copy->copyFrom(this);
    return copy;
}

void KxDbPolyline::freeRoom()
{
    if (!m_roomInObject)
        delete[] m_positions;
    m_positions = nullptr;
    m_room = 0;
    m_roomInObject = false;
}

void KxDbPolyline::reserve(std::uint32_t count)
{
    if (count <= m_room)
        return;
    auto* room = new Position[count];
    std::copy_n(m_positions, m_count, room);
    freeRoom();
    m_positions = room;
    m_room = count;
}

void KxDbPolyline::makeRoomFor(std::uint32_t count)
{
    m_count = 0;
    if (m_roomInObject && count <= m_room)
        return;
    freeRoom();
    reserve(count);
}

void KxDbPolyline::setVertices(const std::vector<Vertex>& vertices)
{
    if (m_shaping) {
        m_shaping->shapes.clear();
        dropShapingIfDefault();
    }
    const auto count = std::uint32_t(vertices.size());
    makeRoomFor(count);
    // The positions in one pass; shapes, as addVertexAt keeps them, from
    // the first vertex with a width or a bulge on (defaults before it).
    std::uint32_t firstShaped = count;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Vertex& v = vertices[i];
        m_positions[i] = {v.x, v.y};
        if (firstShaped == count && (v.startWidth != 0 || v.endWidth != 0 || v.bulge != 0))
            firstShaped = i;
    }
    m_count = count;
    if (firstShaped < count) {
        std::vector<Shape>& shapes = shapingForWrite().shapes;
        shapes.reserve(count);
        shapes.resize(firstShaped);
        for (std::uint32_t i = firstShaped; i < count; ++i)
            shapes.push_back({vertices[i].startWidth, vertices[i].endWidth, vertices[i].bulge});
    }
    if (m_shaping)
        m_shaping->shapes.shrink_to_fit();
}

void KxDbPolyline::addVertexAt(const Vertex& vertex)
{
    if (m_count == m_room)
        reserve(std::max<std::uint32_t>(4, m_room * 2));
    m_positions[m_count++] = {vertex.x, vertex.y};
    const bool shaped = vertex.startWidth != 0 || vertex.endWidth != 0 || vertex.bulge != 0;
    if ((!m_shaping || m_shaping->shapes.empty()) && !shaped)
        return;
    std::vector<Shape>& shapes = shapingForWrite().shapes;
    // The shapes take room as the positions do.
    if (shapes.capacity() < m_room)
        shapes.reserve(m_room);
    shapes.resize(m_count - 1);
    shapes.push_back({vertex.startWidth, vertex.endWidth, vertex.bulge});
}

KxDbPolyline::Shaping& KxDbPolyline::shapingForWrite()
{
    if (!m_shaping)
        m_shaping = std::make_unique<Shaping>();
    return *m_shaping;
}

void KxDbPolyline::dropShapingIfDefault()
{
    // -0 is kept: it is written back as read.
    const auto isZero = [](double value) { return value == 0 && !std::signbit(value); };
    if (m_shaping && m_shaping->shapes.empty() && isZero(m_shaping->constantWidth) && isZero(m_shaping->elevation)
        && isZero(m_shaping->thickness))
        m_shaping.reset();
}

void KxDbPolyline::setConstantWidth(double width)
{
    shapingForWrite().constantWidth = width;
    dropShapingIfDefault();
}

void KxDbPolyline::setElevation(double elevation)
{
    shapingForWrite().elevation = elevation;
    dropShapingIfDefault();
}

void KxDbPolyline::setThickness(double thickness)
{
    shapingForWrite().thickness = thickness;
    dropShapingIfDefault();
}

std::size_t KxDbPolyline::vertexBytes() const
{
    return m_count * sizeof(Position) + (m_shaping ? m_shaping->shapes.size() * sizeof(Shape) : 0);
}

Kald::ErrorStatus KxDbPolyline::setNormal(const KxGeVector3d& normal)
{
    const std::optional<KxGeVector3d> unit = checkedNormal(normal);
    if (!unit)
        return Kald::eInvalidInput;
    setPlaneNormal(*unit);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbPolyline::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbPolyline*>(other);
    makeRoomFor(src->m_count);
    std::copy_n(src->m_positions, src->m_count, m_positions);
    m_count = src->m_count;
    m_shaping = src->m_shaping ? std::make_unique<Shaping>(*src->m_shaping) : nullptr;
    m_closed = src->m_closed;
    m_plinegen = src->m_plinegen;
    return Kald::eOk;
}

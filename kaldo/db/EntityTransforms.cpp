// Transforms and stretches of lines, arcs, circles and polylines, and what
// every other kind of entity answers (nothing to transform). Multilines have
// theirs in MlineTransforms.cpp.
#include "kxdbents.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/db/FiniteValues.h"

namespace {

using kaldo::isFinite;

// A normal transformed as a direction; false when it does not stay a
// finite direction.
bool transformedNormal(const KxGeMatrix3d& m, const KxGeVector3d& normal, KxGeVector3d& out)
{
    const KxGeVector3d image = m * normal;
    if (!isFinite(image) || image.length() <= kxGeTolerance)
        return false;
    out = normalized(image);
    return true;
}

bool validIndices(std::span<const int> indices, int count)
{
    return std::ranges::all_of(indices, [count](int i) { return i >= 0 && i < count; });
}

// The stretch of an entity that its one stretch point moves whole.
Kald::ErrorStatus movedWhole(KxDbEntity& entity, std::span<const int> indices, const KxGeVector3d& offset)
{
    if (!validIndices(indices, 1))
        return Kald::eInvalidIndex;
    if (indices.empty())
        return Kald::eOk;
    return entity.transformBy(KxGeMatrix3d::translation(offset));
}

// A circle (or an arc's circle) under m, which keeps shapes: nothing when
// m flattens it or its image is no finite circle.
struct CircleImage {
    KxGePoint3d center;
    double radius = 0;
    KxGeVector3d normal;
};
std::optional<CircleImage> circleImage(const KxGeMatrix3d& m, const KxGePoint3d& center, double radius,
                                       const KxGeVector3d& normal)
{
    const double k = m.uniformScale();
    CircleImage image{m * center, radius * k, {}};
    if (k == 0 || !transformedNormal(m, normal, image.normal) || !isFinite(image.center) || !std::isfinite(image.radius))
        return std::nullopt;
    return image;
}

// The angle in plane of the image under m of the direction at angle in from.
double imageAngle(const KxGeMatrix3d& m, const kaldo::EntityPlane& from, const kaldo::EntityPlane& plane, double angle)
{
    const KxGeVector3d d = plane.toPlane(m * from.toWorld(KxGeVector3d(std::cos(angle), std::sin(angle))));
    return kaldo::wrappedAngle(std::atan2(d.y, d.x));
}

}  // namespace

Kald::ErrorStatus KxDbEntity::transformBy(const KxGeMatrix3d&)
{
    return Kald::eNotApplicable;
}

void KxDbEntity::getStretchPoints(std::vector<KxGePoint3d>& points) const
{
    points.clear();
}

Kald::ErrorStatus KxDbEntity::moveStretchPointsAt(std::span<const int>, const KxGeVector3d&)
{
    return Kald::eNotApplicable;
}

Kald::ErrorStatus KxDbLine::transformBy(const KxGeMatrix3d& m)
{
    KxGeVector3d normal;
    if (m.uniformScale() == 0 || !transformedNormal(m, planeNormal(), normal))
        return Kald::eInvalidInput;
    const KxGePoint3d start = m * m_start;
    const KxGePoint3d end = m * m_end;
    if (!isFinite(start) || !isFinite(end))
        return Kald::eInvalidInput;
    m_start = start;
    m_end = end;
    setPlaneNormal(normal);
    return Kald::eOk;
}

void KxDbLine::getStretchPoints(std::vector<KxGePoint3d>& points) const
{
    points = {m_start, m_end};
}

Kald::ErrorStatus KxDbLine::moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset)
{
    if (!validIndices(indices, 2))
        return Kald::eInvalidIndex;
    KxGePoint3d ends[2] = {m_start, m_end};
    for (const int i : indices)
        ends[i] = (i == 0 ? m_start : m_end) + offset;
    if (!isFinite(ends[0]) || !isFinite(ends[1]))
        return Kald::eInvalidInput;
    m_start = ends[0];
    m_end = ends[1];
    return Kald::eOk;
}

Kald::ErrorStatus KxDbArc::transformBy(const KxGeMatrix3d& m)
{
    const auto image = circleImage(m, m_center, m_radius, planeNormal());
    if (!image)
        return Kald::eInvalidInput;
    const kaldo::EntityPlane from(planeNormal());
    const kaldo::EntityPlane plane(image->normal);
    // A reflection runs the arc the other way round: it starts at the
    // image of its end.
    const double sweep = kaldo::arcSweep(m_startAngle, m_endAngle);
    const double start = imageAngle(m, from, plane, m.determinant() < 0 ? m_endAngle : m_startAngle);
    m_center = image->center;
    setPlaneNormal(image->normal);
    m_radius = image->radius;
    m_startAngle = start;
    m_endAngle = kaldo::wrappedAngle(start + sweep);
    return Kald::eOk;
}

void KxDbArc::getStretchPoints(std::vector<KxGePoint3d>& points) const
{
    points = {m_center};
}

Kald::ErrorStatus KxDbArc::moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset)
{
    return movedWhole(*this, indices, offset);
}

Kald::ErrorStatus KxDbCircle::transformBy(const KxGeMatrix3d& m)
{
    const auto image = circleImage(m, m_center, m_radius, planeNormal());
    if (!image)
        return Kald::eInvalidInput;
    m_center = image->center;
    setPlaneNormal(image->normal);
    m_radius = image->radius;
    return Kald::eOk;
}

void KxDbCircle::getStretchPoints(std::vector<KxGePoint3d>& points) const
{
    points = {m_center};
}

Kald::ErrorStatus KxDbCircle::moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset)
{
    return movedWhole(*this, indices, offset);
}

Kald::ErrorStatus KxDbPolyline::transformBy(const KxGeMatrix3d& m)
{
    const double k = m.uniformScale();
    KxGeVector3d normal;
    if (k == 0 || !transformedNormal(m, planeNormal(), normal))
        return Kald::eInvalidInput;
    const kaldo::EntityPlane plane(normal);
    const bool reflects = m.determinant() < 0;
    std::vector<Vertex> vertices = this->vertices();
    double elevation = this->elevation();
    for (int i = 0; i < numVerts(); ++i) {
        const KxGePoint3d p = plane.toPlane(m * pointAt(i));
        Vertex& v = vertices[std::size_t(i)];
        v.x = p.x;
        v.y = p.y;
        v.startWidth *= k;
        v.endWidth *= k;
        v.bulge = reflects ? -v.bulge : v.bulge;
        if (i == 0)
            elevation = p.z;
        if (!isFinite(p) || !std::isfinite(v.startWidth) || !std::isfinite(v.endWidth))
            return Kald::eInvalidInput;
    }
    if (vertices.empty())
        elevation = plane.toPlane(m * kaldo::EntityPlane(planeNormal()).toWorld(KxGePoint3d(0, 0, this->elevation()))).z;
    const double width = constantWidth() * k;
    const double thickness = this->thickness() * k;
    if (!std::isfinite(elevation) || !std::isfinite(width) || !std::isfinite(thickness))
        return Kald::eInvalidInput;
    setVertices(vertices);
    setPlaneNormal(normal);
    setElevation(elevation);
    setConstantWidth(width);
    setThickness(thickness);
    return Kald::eOk;
}

void KxDbPolyline::getStretchPoints(std::vector<KxGePoint3d>& points) const
{
    points.clear();
    for (int i = 0; i < numVerts(); ++i)
        points.push_back(pointAt(i));
}

Kald::ErrorStatus KxDbPolyline::moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset)
{
    if (!validIndices(indices, numVerts()))
        return Kald::eInvalidIndex;
    // The offset in the polyline's plane; a part along the normal would
    // take the vertex out of it.
    const kaldo::EntityPlane plane(planeNormal());
    const KxGeVector3d along = plane.toPlane(offset);
    std::vector<Position> moved;
    moved.reserve(indices.size());
    for (const int i : indices) {
        const Position& p = m_positions[std::size_t(i)];
        moved.push_back({p.x + along.x, p.y + along.y});
        if (!std::isfinite(moved.back().x) || !std::isfinite(moved.back().y))
            return Kald::eInvalidInput;
    }
    for (std::size_t n = 0; n < indices.size(); ++n)
        m_positions[std::size_t(indices[n])] = moved[n];
    return Kald::eOk;
}

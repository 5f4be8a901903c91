#include "kaldo/view/Scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kaldo/view/HugePages.h"

namespace kaldo::view {

void Bounds::add(const Point2& p)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y))
        return;
    if (empty) {
        minX = maxX = p.x;
        minY = maxY = p.y;
        empty = false;
        return;
    }
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
}

Scene::Scene() : m_patterns(1) {}

int Scene::pen(const Pen& pen)
{
    const auto [it, added] = m_penIndex.try_emplace(
        {pen.color.foreground, pen.color.rgb, pen.pattern}, static_cast<int>(m_pens.size()));
    if (added)
        m_pens.push_back(pen);
    return it->second;
}

int Scene::addPattern(LinePattern pattern)
{
    if (pattern.empty())
        return 0;
    const auto [it, added] = m_patternIndex.try_emplace(pattern, static_cast<int>(m_patterns.size()));
    if (added)
        m_patterns.push_back(std::move(pattern));
    return it->second;
}

void Scene::beginPolyline(int pen)
{
    m_openFirst = m_points.size();
    m_openPen = pen;
}

void Scene::addPoint(const Point2& p)
{
    m_points.push_back(p);
}

void Scene::endPolyline(bool closed)
{
    if (closed && m_points.size() - m_openFirst > 2) {
        const Point2& first = m_points[m_openFirst];
        if (m_points.back().x == first.x && m_points.back().y == first.y)
            m_points.pop_back();
    }
    const std::size_t count = m_points.size() - m_openFirst;
    if (count < 2) {
        m_points.resize(m_openFirst);
        return;
    }
    m_polylines.push_back({static_cast<std::uint32_t>(m_openFirst), static_cast<std::uint32_t>(count), m_openPen,
                           closed});
}

void Scene::addLine(const Point2& from, const Point2& to, int pen)
{
    beginPolyline(pen);
    addPoint(from);
    addPoint(to);
    endPolyline();
}

void Scene::endPolygon(const DrawColor& color)
{
    const std::size_t count = m_points.size() - m_openFirst;
    if (count < 3) {
        m_points.resize(m_openFirst);
        return;
    }
    m_polygons.push_back({static_cast<std::uint32_t>(m_openFirst), static_cast<std::uint32_t>(count), color});
}

void Scene::groupPolylines(std::uint32_t first, double width)
{
    const auto end = static_cast<std::uint32_t>(m_polylines.size());
    if (end - first > 1)
        m_groups.push_back({first, end, width});
}

Bounds Scene::bounds() const
{
    Bounds b;
    for (const Point2& p : m_points)
        b.add(p);
    for (const Arc& arc : m_arcs)
        addArcBounds(b, arc);
    return b;
}

void Scene::reserve(std::size_t points, std::size_t polylines)
{
    m_points.reserve(points);
    m_polylines.reserve(polylines);
    adviseHugePages(m_points.data(), m_points.capacity() * sizeof(Point2));
    adviseHugePages(m_polylines.data(), m_polylines.capacity() * sizeof(Polyline));
}

void addArcBounds(Bounds& bounds, const Arc& arc)
{
    const auto at = [&](double angle) {
        return Point2{arc.centre.x + arc.radius * std::cos(angle), arc.centre.y + arc.radius * std::sin(angle)};
    };
    const double sweep = std::clamp(arc.sweep, -2 * std::numbers::pi, 2 * std::numbers::pi);
    const double lo = std::min(arc.start, arc.start + sweep);
    const double hi = std::max(arc.start, arc.start + sweep);
    bounds.add(at(lo));
    bounds.add(at(hi));
    const double quarter = std::numbers::pi / 2;
    for (double q = std::ceil(lo / quarter) * quarter; q < hi; q += quarter)
        bounds.add(at(q));
}

}  // namespace kaldo::view

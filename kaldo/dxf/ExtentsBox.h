// The box that grows around entities by their defining points (vertices,
// centres with radii), in the order they are added: the header's extents.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "kaldo/db/EntityKinds.h"
#include "kaldo/dxf/Extents.h"

class KxDbEntity;

namespace kaldo::dxf {

class ExtentsBox {
public:
    // Lines, arcs, circles, polylines and multilines; other entities add
    // nothing.
    void add(const KxDbEntity& entity);
    // The same for an entity of the kind given, which the caller knows
    // (entityKind(entity)): the reader made it.
    void add(const KxDbEntity& entity, kaldo::EntityKind kind);
    // Extents stay finite: a point beyond the largest number (a circle that
    // reaches further) counts as lying at it, and one that is no number
    // counts not at all; the writer names the entity that holds one.
    // Inline, always: the reader adds every vertex it reads, the full pass
    // every vertex of the drawing, and a box kept in registers over a loop
    // of vertices costs a third of one called for each.
    [[gnu::always_inline]] void add(const KxGePoint3d& p)
    {
        constexpr double kLargest = std::numeric_limits<double>::max();
        // Finite points, nearly all, are taken as they are: one test each.
        if (std::abs(p.x) <= kLargest && std::abs(p.y) <= kLargest && std::abs(p.z) <= kLargest) {
            takeIn(p);
            return;
        }
        if (std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z))
            return;
        takeIn({std::clamp(p.x, -kLargest, kLargest), std::clamp(p.y, -kLargest, kLargest),
                std::clamp(p.z, -kLargest, kLargest)});
    }
    void add(const KxGePoint3d& center, double radius)
    {
        add(center + KxGeVector3d(radius, radius, radius));
        add(center - KxGeVector3d(radius, radius, radius));
    }
    // Takes in the box of entities that come after this box's: of equal
    // coordinates (0 and -0) the first stays, as when they are added one by
    // one. Inline, so that a box of a polyline's vertices made in a loop
    // stays in registers, its address taken nowhere.
    [[gnu::always_inline]] void add(const ExtentsBox& later)
    {
        m_min = {std::min(m_min.x, later.m_min.x), std::min(m_min.y, later.m_min.y), std::min(m_min.z, later.m_min.z)};
        m_max = {std::max(m_max.x, later.m_max.x), std::max(m_max.y, later.m_max.y), std::max(m_max.z, later.m_max.z)};
    }
    // The box of entities in their order, made apart from its caller so
    // that the box stays in registers (made inside a lambda that takes
    // chunks of entities, it stayed in memory and took 38 % more
    // instructions).
    static ExtentsBox of(std::span<const KxDbEntity* const> entities);

    // Of no entity with a point, the inverted box that files use to say
    // "empty": min 1e20, max -1e20.
    Extents extents() const { return {m_min, m_max}; }

private:
    [[gnu::always_inline]] void takeIn(const KxGePoint3d& q)
    {
        m_min = {std::min(m_min.x, q.x), std::min(m_min.y, q.y), std::min(m_min.z, q.z)};
        m_max = {std::max(m_max.x, q.x), std::max(m_max.y, q.y), std::max(m_max.z, q.z)};
    }
    // z apart, for points that share it: taking it once gives what
    // taking it with each point does.
    [[gnu::always_inline]] void takeInZ(double z)
    {
        m_min.z = std::min(m_min.z, z);
        m_max.z = std::max(m_max.z, z);
    }

    KxGePoint3d m_min{1e20, 1e20, 1e20};
    KxGePoint3d m_max{-1e20, -1e20, -1e20};
};

}  // namespace kaldo::dxf

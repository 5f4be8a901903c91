// The plane of an entity's normal and its coordinate system by the
// arbitrary-axis rule: for a normal N, the x axis is Wy x N when N lies
// within 1/64 of the world z axis (both |N.x| and |N.y| below 1/64), else
// Wz x N; the y axis is N x x. World and plane coordinates convert both ways.
// Most entities lie in the world's own plane (a normal of exactly +z, signs
// of zeros too): its axes are then the world's, and a point of finite
// coordinates converts without the products, to what they would give.
#pragma once

#include <cmath>

#include "kxtypes.h"

namespace kaldo {

class EntityPlane {
public:
    explicit EntityPlane(const KxGeVector3d& normal);

    const KxGeVector3d& xAxis() const { return m_x; }
    const KxGeVector3d& yAxis() const { return m_y; }
    const KxGeVector3d& normal() const { return m_z; }
    // Whether this is the world's own plane, where toWorld gives a finite
    // point itself, its zeros made positive.
    bool isWorld() const { return m_world; }

    KxGePoint3d toPlane(const KxGePoint3d& world) const;
    // Inline for the world's own plane: measuring a drawing converts every
    // vertex of its polylines.
    KxGePoint3d toWorld(const KxGePoint3d& plane) const
    {
        // Each coordinate is one product by 1 plus products by +0 and the
        // origin's +0: the coordinate itself, a zero made positive.
        if (m_world && std::isfinite(plane.x) && std::isfinite(plane.y) && std::isfinite(plane.z))
            return {plane.x + 0.0, plane.y + 0.0, plane.z + 0.0};
        return KxGePoint3d() + toWorld(KxGeVector3d(plane.x, plane.y, plane.z));
    }
    KxGeVector3d toPlane(const KxGeVector3d& world) const;
    KxGeVector3d toWorld(const KxGeVector3d& plane) const;

private:
    KxGeVector3d m_x, m_y, m_z;
    bool m_world = false;
};

}  // namespace kaldo

#include "kaldo/db/EntityPlane.h"

#include <cmath>

namespace kaldo {

namespace {

bool positiveZero(double value)
{
    return value == 0 && !std::signbit(value);
}

}  // namespace

EntityPlane::EntityPlane(const KxGeVector3d& normal)
{
    // The axes the rule gives the normal (+0, +0, 1), zeros positive.
    if (positiveZero(normal.x) && positiveZero(normal.y) && normal.z == 1) {
        m_x = {1, 0, 0};
        m_y = {0, 1, 0};
        m_z = {0, 0, 1};
        m_world = true;
        return;
    }
    m_z = normal.length() > kxGeTolerance ? normalized(normal) : KxGeVector3d(0, 0, 1);
    constexpr double kLimit = 1.0 / 64.0;
    const KxGeVector3d pole = std::abs(m_z.x) < kLimit && std::abs(m_z.y) < kLimit ? KxGeVector3d(0, 1, 0)
                                                                                   : KxGeVector3d(0, 0, 1);
    m_x = normalized(cross(pole, m_z));
    m_y = normalized(cross(m_z, m_x));
}

KxGeVector3d EntityPlane::toPlane(const KxGeVector3d& v) const
{
    return {dot(v, m_x), dot(v, m_y), dot(v, m_z)};
}

KxGeVector3d EntityPlane::toWorld(const KxGeVector3d& v) const
{
    return m_x * v.x + m_y * v.y + m_z * v.z;
}

KxGePoint3d EntityPlane::toPlane(const KxGePoint3d& p) const
{
    const KxGeVector3d v = toPlane(p - KxGePoint3d());
    return {v.x, v.y, v.z};
}

}  // namespace kaldo

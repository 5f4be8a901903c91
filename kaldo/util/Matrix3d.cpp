#include "kxgematrix.h"

#include <cmath>

KxGeMatrix3d KxGeMatrix3d::translation(const KxGeVector3d& offset)
{
    KxGeMatrix3d m;
    m.m_rows[0][3] = offset.x;
    m.m_rows[1][3] = offset.y;
    m.m_rows[2][3] = offset.z;
    return m;
}

KxGeMatrix3d KxGeMatrix3d::rotation(double angle, const KxGeVector3d& axis, const KxGePoint3d& centre)
{
    const KxGeVector3d u = normalized(axis);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1 - c;
    // Rodrigues' formula.
    const std::array<std::array<double, 3>, 3> linear{{
        {t * u.x * u.x + c, t * u.x * u.y - s * u.z, t * u.x * u.z + s * u.y},
        {t * u.x * u.y + s * u.z, t * u.y * u.y + c, t * u.y * u.z - s * u.x},
        {t * u.x * u.z - s * u.y, t * u.y * u.z + s * u.x, t * u.z * u.z + c},
    }};
    return aboutPoint(linear, centre);
}

KxGeMatrix3d KxGeMatrix3d::scaling(double factor, const KxGePoint3d& centre)
{
    return aboutPoint({{{factor, 0, 0}, {0, factor, 0}, {0, 0, factor}}}, centre);
}

KxGeMatrix3d KxGeMatrix3d::mirroring(const KxGePoint3d& point, const KxGeVector3d& normal)
{
    const KxGeVector3d n = normalized(normal);
    // I - 2 n n^T
    const std::array<std::array<double, 3>, 3> linear{{
        {1 - 2 * n.x * n.x, -2 * n.x * n.y, -2 * n.x * n.z},
        {-2 * n.y * n.x, 1 - 2 * n.y * n.y, -2 * n.y * n.z},
        {-2 * n.z * n.x, -2 * n.z * n.y, 1 - 2 * n.z * n.z},
    }};
    return aboutPoint(linear, point);
}

KxGeMatrix3d operator*(const KxGeMatrix3d& a, const KxGeMatrix3d& b)
{
    KxGeMatrix3d product;
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 4; ++c) {
            double sum = c == 3 ? a.m_rows[r][3] : 0.0;
            for (std::size_t k = 0; k < 3; ++k)
                sum += a.m_rows[r][k] * b.m_rows[k][c];
            product.m_rows[r][c] = sum;
        }
    }
    return product;
}

KxGePoint3d KxGeMatrix3d::operator*(const KxGePoint3d& p) const
{
    const auto row = [&](std::size_t r) {
        return m_rows[r][0] * p.x + m_rows[r][1] * p.y + m_rows[r][2] * p.z + m_rows[r][3];
    };
    return {row(0), row(1), row(2)};
}

KxGeVector3d KxGeMatrix3d::operator*(const KxGeVector3d& v) const
{
    const auto row = [&](std::size_t r) { return m_rows[r][0] * v.x + m_rows[r][1] * v.y + m_rows[r][2] * v.z; };
    return {row(0), row(1), row(2)};
}

double KxGeMatrix3d::determinant() const
{
    const auto& m = m_rows;
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0])
        + m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

double KxGeMatrix3d::uniformScale() const
{
    const KxGeVector3d x = *this * KxGeVector3d(1, 0, 0);
    const KxGeVector3d y = *this * KxGeVector3d(0, 1, 0);
    const KxGeVector3d z = *this * KxGeVector3d(0, 0, 1);
    const double k = x.length();
    if (!(k > 0) || !std::isfinite(k))
        return 0;
    const double slack = kxGeTolerance * k * k;
    const bool sameLength = std::abs(dot(y, y) - k * k) <= slack && std::abs(dot(z, z) - k * k) <= slack;
    const bool perpendicular =
        std::abs(dot(x, y)) <= slack && std::abs(dot(y, z)) <= slack && std::abs(dot(z, x)) <= slack;
    if (!sameLength || !perpendicular)
        return 0;
    return std::abs(k - 1) <= kxGeTolerance ? 1.0 : k;
}

bool KxGeMatrix3d::isIdentity() const
{
    return m_rows == KxGeMatrix3d().m_rows;
}

KxGeMatrix3d KxGeMatrix3d::aboutPoint(const std::array<std::array<double, 3>, 3>& linear,
                                      const KxGePoint3d& fixedPoint)
{
    KxGeMatrix3d m;
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c)
            m.m_rows[r][c] = linear[r][c];
        // p' = L (p - f) + f
        m.m_rows[r][3] = (r == 0 ? fixedPoint.x : r == 1 ? fixedPoint.y : fixedPoint.z)
            - (linear[r][0] * fixedPoint.x + linear[r][1] * fixedPoint.y + linear[r][2] * fixedPoint.z);
    }
    return m;
}

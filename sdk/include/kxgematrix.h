// Affine transformations of space: a linear part (three rows of three) and
// a translation. Points take both, vectors only the linear part.
#pragma once

#include "kxtypes.h"

#include <array>

class KxGeMatrix3d {
public:
    // The identity.
    KxGeMatrix3d() = default;

    static KxGeMatrix3d translation(const KxGeVector3d& offset);
    // A turn by angle (radians, counter-clockwise seen from where axis
    // points to) about the line through centre along axis (not null).
    static KxGeMatrix3d rotation(double angle, const KxGeVector3d& axis, const KxGePoint3d& centre);
    // The same size change in every direction, about centre.
    static KxGeMatrix3d scaling(double factor, const KxGePoint3d& centre);
    // The reflection in the plane through point with the normal normal
    // (not null).
    static KxGeMatrix3d mirroring(const KxGePoint3d& point, const KxGeVector3d& normal);

    // a * b transforms by b first, then by a.
    friend KxGeMatrix3d operator*(const KxGeMatrix3d& a, const KxGeMatrix3d& b);
    KxGePoint3d operator*(const KxGePoint3d& point) const;
    KxGeVector3d operator*(const KxGeVector3d& vector) const;

    // Row row, column column; column 3 is the translation.
    double entry(int row, int column) const { return m_rows[std::size_t(row)][std::size_t(column)]; }
    // The determinant of the linear part: negative for a reflection.
    double determinant() const;
    // The factor k when the linear part is k times a rotation or a
    // reflection (its columns perpendicular and of one length within the
    // tolerance, relative to that length; a k within the tolerance of 1 is
    // 1, so that turns and mirrors keep lengths exactly); 0 for a matrix
    // that changes shapes or flattens them.
    double uniformScale() const;
    bool isIdentity() const;

private:
    // The matrix with this linear part that keeps fixedPoint where it is.
    static KxGeMatrix3d aboutPoint(const std::array<std::array<double, 3>, 3>& linear, const KxGePoint3d& fixedPoint);

    std::array<std::array<double, 4>, 3> m_rows{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
};

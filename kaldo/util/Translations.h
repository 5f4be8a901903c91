// Matrices that only move points: what a translation's callers test for
// (a multiline moves its positions alone, the undo history keeps those).
#pragma once

#include "kxgematrix.h"

namespace kaldo {

// The offset a matrix adds to every point.
inline KxGeVector3d translationOf(const KxGeMatrix3d& m)
{
    return {m.entry(0, 3), m.entry(1, 3), m.entry(2, 3)};
}

// Whether the matrix's linear part is the identity, exactly.
inline bool isTranslation(const KxGeMatrix3d& m)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            if (m.entry(row, column) != (row == column ? 1.0 : 0.0))
                return false;
    return true;
}

}  // namespace kaldo

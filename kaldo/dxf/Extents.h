// The box of a drawing's model space that the header names ($EXTMIN,
// $EXTMAX), and the one a drawing's reader measured as it read it.
#pragma once

#include <cstdint>

#include "kxtypes.h"

class KxDbDatabase;

namespace kaldo::dxf {

struct Extents {
    KxGePoint3d min;
    KxGePoint3d max;
};

// The extents of a drawing as measured when it was read, which hold while
// the database has made no change since (its change count is the same);
// nothing is known for a drawing whose reader could not measure them all
// (database null).
struct KnownExtents {
    Extents extents;
    const KxDbDatabase* database = nullptr;
    std::uint64_t changes = 0;

    bool holdFor(const KxDbDatabase& db) const;
};

}  // namespace kaldo::dxf

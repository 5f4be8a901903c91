// What a drawing file holds that the database does not: header variables
// the host does not use, the classes section, the tables it does not model,
// the begin and end records of each block, and sections it does not know.
// Kept as read and written back unchanged.
#pragma once

#include <string>
#include <vector>

#include "kaldo/dxf/BlockEnds.h"
#include "kaldo/dxf/Extents.h"
#include "kxdbunmodelled.h"

namespace kaldo::dxf {

// Groups are kept packed one after another (KxDbPackedGroups), about the
// bytes the file spends on them, not an object per group.

struct KeptSections {
    std::string version;  // $ACADVER as read; empty for a new drawing
    std::string codePage;  // $DWGCODEPAGE as read; empty for a new drawing
    // The header variables the host does not use, each its name (group 9)
    // and its groups, in file order.
    KxDbPackedGroups header;
    bool hasClasses = false;
    KxDbPackedGroups classes;
    // Every table in file order, one list: a table's name, and the groups
    // of one kept whole (every table but LTYPE, LAYER and BLOCK_RECORD,
    // whose records are in the database) from after its name to its end
    // (kaldo/dxf/TablesSection.cpp reads and writes the list).
    KxDbPackedGroups tables;
    BlockEnds blockEnds;
    // The sections the host does not know, written after OBJECTS as read:
    // each "0 SECTION", "2" and its name, its groups and "0 ENDSEC".
    KxDbPackedGroups sections;
    // The header's extents as measured while the file was read, which the
    // writer takes while the drawing has not changed since.
    KnownExtents extents;
};

}  // namespace kaldo::dxf

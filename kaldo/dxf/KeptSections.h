// What a drawing file holds that the database does not: header variables
// the host does not use, the classes section, the tables it does not model,
// the begin and end records of each block, and sections it does not know.
// Kept as read and written back unchanged.
#pragma once

#include <string>
#include <vector>

#include "kaldo/dxf/BlockEnds.h"
#include "kxdbunmodelled.h"

namespace kaldo::dxf {

// Groups are kept packed one after another (KxDbPackedGroups), about the
// bytes the file spends on them, not an object per group.

// A table kept whole: its name and the groups between its head ("0 TABLE"
// and the name) and its end.
struct KeptBlock {
    std::string name;
    KxDbPackedGroups groups;
    // The handle given to a table whose head had none (written with its
    // owner and subclass before the groups); empty when it had one.
    std::string madeHandle;
};

struct KeptSections {
    std::string version;  // $ACADVER as read; empty for a new drawing
    std::string codePage;  // $DWGCODEPAGE as read; empty for a new drawing
    // The header variables the host does not use, each its name (group 9)
    // and its groups, in file order.
    KxDbPackedGroups header;
    bool hasClasses = false;
    KxDbPackedGroups classes;
    // Every table in file order by name; the unmodelled ones are in tables.
    std::vector<std::string> tableOrder;
    std::vector<KeptBlock> tables;
    BlockEnds blockEnds;
    // The sections the host does not know, written after OBJECTS as read:
    // each "0 SECTION", "2" and its name, its groups and "0 ENDSEC".
    KxDbPackedGroups sections;
};

}  // namespace kaldo::dxf

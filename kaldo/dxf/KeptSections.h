// What a drawing file holds that the database does not: header variables
// the host does not use, the classes section, the tables it does not model,
// the begin and end records of each block, and sections it does not know.
// Kept as read and written back unchanged.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kxdbobject.h"

namespace kaldo::dxf {

struct KeptHeaderVariable {
    std::string name;  // "$ANGBASE"
    std::vector<KxDbFileGroup> groups;
};

// A table or a section kept whole: its name and the groups between its head
// ("0 TABLE" / "0 SECTION" and the name) and its end.
struct KeptBlock {
    std::string name;
    std::vector<KxDbFileGroup> groups;
};

// The BLOCK and ENDBLK records of a block, kept as unmodelled objects.
struct BlockEnds {
    KxDbObjectId begin;
    KxDbObjectId end;
};

struct KeptSections {
    std::string version;  // $ACADVER as read; empty for a new drawing
    std::string codePage;  // $DWGCODEPAGE as read; empty for a new drawing
    std::vector<KeptHeaderVariable> header;
    bool hasClasses = false;
    std::vector<KxDbFileGroup> classes;
    // Every table in file order by name; the unmodelled ones are in tables.
    std::vector<std::string> tableOrder;
    std::vector<KeptBlock> tables;
    std::map<KxDbObjectId, BlockEnds> blockEnds;  // by block record
    std::vector<KeptBlock> sections;  // unknown sections, after OBJECTS
};

}  // namespace kaldo::dxf

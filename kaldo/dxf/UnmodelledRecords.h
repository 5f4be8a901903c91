// Records kept whole: their handle and owner are read for the database,
// every group is written back as read (the handle as the database has it).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kaldo/dxf/Record.h"
#include "kxdbunmodelled.h"

namespace kaldo::dxf {

class GroupWriter;

// The handle (first 5 or 105) and owner (first 330 outside reactor blocks)
// of a record; nothing is kept aside, the record keeps every group.
RecordBasics rawRecordBasics(const Record& record);

// owner, when not 0, is written after the handle if the record names no
// owner (an entity of an R12 file has none; the 2000 form needs it).
void writeUnmodelledRecord(GroupWriter& w, std::string_view kind, KxDbPackedGroupsView groups,
                           std::uint64_t handle, std::uint64_t owner = 0);

}  // namespace kaldo::dxf

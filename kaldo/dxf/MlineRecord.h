// MLINE records with every group: style handle (340) and name (2), scale,
// justification, flags (1 has vertices, 2 closed, 4 start caps suppressed,
// 8 end caps suppressed), counts, start point, normal, and per vertex its
// position, segment direction, miter direction and per element the element
// (74, 41) and area-fill (75, 42) parameter lists.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kaldo/dxf/Record.h"
#include "kxdbmline.h"

class KxDbDatabase;

namespace kaldo::dxf {

class GroupWriter;

// The style as the record names it: by handle, the name only a copy.
struct MlineStyleLink {
    std::uint64_t handle = 0;
    std::wstring name;
    long line = 0;
};

// Reads the record; groups it does not know go to other (layer, colour).
// The style is set once the objects are read (see resolveMlineStyles).
// The vertices' lists are collected in scratch, kept by the caller from
// record to record so that their room is reused.
KxDbMline* readMline(const Record& record, RecordBasics& basics, const std::function<bool(const Group&)>& other,
                     MlineStyleLink& style, KxDbMlineListStore& scratch);

// Writes from the AcDbMline subclass marker to the last vertex.
void writeMlineBody(GroupWriter& w, const KxDbDatabase& db, const KxDbMline& mline);

}  // namespace kaldo::dxf

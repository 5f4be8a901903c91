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

#include "kaldo/dxf/ExtentsBox.h"
#include "kaldo/dxf/Record.h"
#include "kxdbmline.h"

class KxDbDatabase;
class KxDbMlineStyle;

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

// What checking a record found, its vertices not kept: their count, and
// the number of elements every vertex lists (-1 when they list different
// numbers).
struct MlineOutline {
    std::size_t vertices = 0;
    long elements = 0;
};

// Checks the record as readMline reads it, giving the same errors, one
// vertex at a time in scratch, adding each vertex's position to positions
// (the box the multiline made from the record measures, ExtentsBox::add).
MlineOutline checkMline(const Record& record, RecordBasics& basics, const std::function<bool(const Group&)>& other,
                        MlineStyleLink& style, KxDbMlineListStore& scratch, ExtentsBox& positions);

// At least what the multiline the record lists takes as an object: the
// vertices its count (72) announces, which it must hold to be read, up to
// one a group, without their lists (0 vertices when the count is missing
// or no number).
std::size_t mlineObjectBytes(const Record& record);

// Whether the multiline of a record checked before, laid out anew in style
// (KxDbMline::setStyle), gives numbers only; two walks of the record, the
// vertices not kept.
bool layoutFinite(const Record& record, const KxDbMlineStyle& style);

// Writes from the AcDbMline subclass marker to the last vertex.
void writeMlineBody(GroupWriter& w, const KxDbDatabase& db, const KxDbMline& mline);

}  // namespace kaldo::dxf

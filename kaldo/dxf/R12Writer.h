// Writing a drawing in the R12 form (AC1009) for the oldest readers:
// header, the tables R12 has, the blocks and the entities of model and
// paper space, without handles, subclass markers, owners or objects.
// LINE, ARC and CIRCLE are written as they are, LWPOLYLINE as POLYLINE
// with VERTEX and SEQEND records; kept SOLID, POINT, old-form POLYLINE
// records, INSERT without attributes and TEXT in the STANDARD style keep
// their geometry. Every other kind is left out and counted. True colours
// become colour indices.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "kaldo/dxf/KeptSections.h"

class KxDbDatabase;

namespace kaldo::dxf {

// The colour index nearest to 0xRRGGBB.
using NearestColorIndex = int (*)(std::uint32_t rgb);

// Entities left out, by kind.
using LeftOutKinds = std::map<std::string, int>;

// Throws DxfError.
// kept gives the blocks' base points and flags.
LeftOutKinds writeDxfR12(int fd, const KxDbDatabase& db, const KeptSections& kept, NearestColorIndex nearestIndex);
// Writes atomically: the old file stays whole when anything fails.
LeftOutKinds saveDxfFileR12(const std::filesystem::path& path, const KxDbDatabase& db, const KeptSections& kept,
                            NearestColorIndex nearestIndex, bool replaceReadOnly = false);

}  // namespace kaldo::dxf

// Writing a drawing in the R12 form (AC1009) for the oldest readers:
// header, the tables R12 has, the layout blocks and the entities of model
// and paper space, without handles, subclass markers, owners or objects.
// LINE, ARC and CIRCLE are written as they are, LWPOLYLINE as POLYLINE
// with VERTEX and SEQEND records; kept SOLID and POINT records, and TEXT
// in the STANDARD style, keep their geometry. Every other kind is left
// out and counted. True colours become colour indices.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

class KxDbDatabase;

namespace kaldo::dxf {

// The colour index nearest to 0xRRGGBB.
using NearestColorIndex = int (*)(std::uint32_t rgb);

// Entities left out, by kind.
using LeftOutKinds = std::map<std::string, int>;

// Throws DxfError.
LeftOutKinds writeDxfR12(int fd, const KxDbDatabase& db, NearestColorIndex nearestIndex);
// Writes atomically: the old file stays whole when anything fails.
LeftOutKinds saveDxfFileR12(const std::filesystem::path& path, const KxDbDatabase& db, NearestColorIndex nearestIndex,
                            bool replaceReadOnly = false);

}  // namespace kaldo::dxf

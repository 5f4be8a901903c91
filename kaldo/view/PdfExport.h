// A plot as a PDF file: one page the size of the sheet as it lies, lines
// and fills as vectors, texts as text. The drawing may come in pieces
// (scenes of some of its entities each), painted one after the other, so
// that the whole drawing is never held as one scene. Fills and lines go
// into content streams of our own, deflated into temporary files as they
// are painted; texts go through Qt's PDF writer, whose page then takes
// the other streams under its own (PdfPageContents.h). The file goes to a
// temporary file beside the target, which then replaces the target through
// the host's checked, atomic file writing.
#pragma once

#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/Scene.h"
#include "kaldo/view/SheetPlacement.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

namespace kaldo::view {

// Calls paint once for each piece of a drawing, in the drawing's order.
using ScenePieces = std::function<void(const std::function<void(const Scene&)>& paint)>;

// Entities drawn into one piece of a plot: a few megabytes of scene for
// multilines, and few enough pieces that what each costs beside its
// entities does not show.
inline constexpr std::size_t kPlotPieceEntities = 4096;

// The extents of everything the pieces draw.
Bounds piecesExtents(const ScenePieces& pieces);

// Returns why the file could not be written, empty on success; title is
// the document's title.
std::string writePdf(const ScenePieces& pieces, const SheetPlacement& placement, const PlotLook& look,
                     const std::filesystem::path& file, const std::wstring& title);
// The same for a drawing in one scene.
std::string writePdf(const Scene& scene, const SheetPlacement& placement, const PlotLook& look,
                     const std::filesystem::path& file, const std::wstring& title);

}  // namespace kaldo::view

// A plot as a PDF file: one page the size of the sheet as it lies, lines
// and fills as vectors, texts as text (Qt's PDF writer). The page goes to
// a temporary file beside the target, which then replaces the target
// through the host's checked, atomic file writing. Qt's writer holds the
// page's content until the page ends.
#pragma once

#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/Scene.h"
#include "kaldo/view/SheetPlacement.h"

#include <filesystem>
#include <string>

namespace kaldo::view {

// Returns why the file could not be written, empty on success; title is
// the document's title.
std::string writePdf(const Scene& scene, const SheetPlacement& placement, const PlotLook& look,
                     const std::filesystem::path& file, const std::wstring& title);

}  // namespace kaldo::view

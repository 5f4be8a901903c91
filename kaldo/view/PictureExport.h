// Writes a drawing as a picture, SVG or PNG by the file's extension.
#pragma once

#include <filesystem>
#include <string>

#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/Picture.h"

class KxDbDatabase;

namespace kaldo::view {

// Returns why the picture could not be written, empty on success; a
// drawing that cannot be drawn (memory runs out) is such a reason. notes,
// when given, receives what the picture left out or drew coarsely;
// styles gives the fonts of text styles.
std::string exportPicture(const KxDbDatabase& db, const std::filesystem::path& file, const PictureOptions& options,
                          RenderNotes* notes = nullptr, const TextStyleFonts& styles = {});

}  // namespace kaldo::view

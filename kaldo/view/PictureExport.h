// Writes a drawing as a picture, SVG or PNG by the file's extension.
#pragma once

#include <filesystem>
#include <string>

#include "kaldo/view/Picture.h"

class KxDbDatabase;

namespace kaldo::view {

// Returns why the picture could not be written, empty on success.
std::string exportPicture(const KxDbDatabase& db, const std::filesystem::path& file, const PictureOptions& options);

}  // namespace kaldo::view

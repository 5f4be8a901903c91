// Writes a scene as an SVG picture: fills first, then the lines of each pen
// in one group carrying its colour and dash pattern.
#pragma once

#include <filesystem>
#include <string>

#include "kaldo/view/Picture.h"

namespace kaldo::view {

// The SVG document of a scene.
std::string svgDocument(const Scene& scene, const PictureOptions& options);

// Writes the document atomically; returns why it failed, empty on success.
std::string writeSvg(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options);

}  // namespace kaldo::view

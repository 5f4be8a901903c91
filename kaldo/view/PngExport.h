// Paints a scene on an offscreen image with Qt's painter (no display
// needed) and writes it as PNG.
#pragma once

#include <QImage>

#include <filesystem>
#include <string>

#include "kaldo/view/Picture.h"

namespace kaldo::view {

QImage paintScene(const Scene& scene, const PictureOptions& options);

// Writes the picture atomically; returns why it failed, empty on success.
std::string writePng(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options);

}  // namespace kaldo::view

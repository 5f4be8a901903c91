// Paints a scene on an offscreen image with Qt's painter (no display
// needed) and writes it as PNG.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRegion>

#include <filesystem>
#include <string>

#include "kaldo/view/Picture.h"

namespace kaldo::view {

// Paints a scene with painter as frame places it, drawing only the items
// that reach rows top to bottom - 1. The painter's clip, pen and brush are
// the caller's; pens and brushes are changed.
void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background, int top,
                int bottom);
// The same for the items that reach area (pixels).
void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background,
                const QRegion& area);

// Paints a scene over image, as frame places it, in horizontal bands of
// rows, each by a thread of its own; it comes out the same for any number
// of bands.
void paintScene(QImage& image, const Scene& scene, const PictureFrame& frame, Background background, int bands);
// A picture of the whole scene, painted in bands.
QImage paintScene(const Scene& scene, const PictureOptions& options, int bands);
// As many bands as the machine has processors, up to four.
QImage paintScene(const Scene& scene, const PictureOptions& options);

// Writes the picture atomically; returns why it failed, empty on success.
std::string writePng(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options);

}  // namespace kaldo::view

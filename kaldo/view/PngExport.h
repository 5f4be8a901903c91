// Paints a scene on an offscreen image with Qt's painter (no display
// needed) and writes it as PNG.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QRegion>

#include <atomic>
#include <filesystem>
#include <string>

#include "kaldo/view/Picture.h"

namespace kaldo::view {

class SceneIndex;

// How painting chooses what to look at and how finely it draws.
struct PaintDetail {
    // The scene's index: only the items near the painted area within the
    // frame are looked at (the painter must be clipped to the frame), which
    // paints the same pixels.
    const SceneIndex* index = nullptr;
    // Coarse: a continuous line's runs of segments shorter than a pixel are
    // drawn as one, a multiline narrower than a pixel by the elements of the
    // pen painted last only, and a line of text less than a few pixels high
    // as its box, so that a view of a whole large drawing costs less. Lines
    // longer than a pixel, of multilines wider than one, come out the same.
    // (Every picture draws an item smaller than a pixel as a dot.)
    bool coarse = false;
    // Once this is set, painting ends early and leaves the picture
    // unfinished (a painting that is no longer wanted).
    const std::atomic<bool>* stop = nullptr;
    // The scene's fill colours (fillColors), when a scene painted many
    // times keeps them.
    const FillColors* fillColors = nullptr;
};

// Paints a scene with painter as frame places it, drawing only the items
// that reach rows top to bottom - 1. The painter's clip, pen and brush are
// the caller's; pens and brushes are changed.
void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background, int top,
                int bottom, const PaintDetail& detail = {});
// The same for the items that reach area (pixels).
void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background,
                const QRegion& area, const PaintDetail& detail = {});

// Paints a scene over image, as frame places it, in horizontal bands of
// rows, each by a thread of its own; it comes out the same for any number
// of bands, and with or without the scene's index. What a band throws
// (std::bad_alloc) is thrown here once every band has ended.
void paintScene(QImage& image, const Scene& scene, const PictureFrame& frame, Background background, int bands,
                const PaintDetail& detail = {});
// A picture of the whole scene, painted in bands.
QImage paintScene(const Scene& scene, const PictureOptions& options, int bands);
// As many bands as the machine has processors, up to four.
QImage paintScene(const Scene& scene, const PictureOptions& options);

// The bytes of a PNG file of the whole scene, painted in bands: each
// band's thread deflates its rows once it has painted them, into its part
// of the file's image data.
QByteArray paintPng(const Scene& scene, const PictureOptions& options, int bands);

// Writes the picture atomically; returns why it failed, empty on success.
std::string writePng(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options);

}  // namespace kaldo::view

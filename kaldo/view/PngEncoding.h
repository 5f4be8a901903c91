// PNG encoding of a painted picture in parts: each part deflates a run of
// rows into one piece of the single zlib stream that a PNG's image data
// is, as parallel compressors do, so that threads can deflate the rows
// they painted, and a large picture is written in about half the time of
// one encoder.
#pragma once

#include <QByteArray>
#include <QImage>

#include <cstdint>
#include <span>

namespace kaldo::view {

// Rows of a picture deflated as one piece of its zlib stream, with the
// checksum and length of their scanlines.
struct PngPart {
    QByteArray deflated;
    std::uint32_t adler = 1;
    std::uint64_t length = 0;
};

// Rows first to end - 1 of image (RGB32) as PNG scanlines (no filter, 8-bit
// RGB) at the fastest compression level; the last part ends the stream,
// the others end on a byte boundary so that the next part follows on.
PngPart deflatePngRows(const QImage& image, int first, int end, bool last);

// The bytes of a PNG file of a picture of width × height pixels whose rows
// are parts, in order.
QByteArray assemblePng(int width, int height, std::span<const PngPart> parts);

// The bytes of a PNG file of image (RGB32: 8-bit RGB, no alpha), its two
// halves of rows deflated on two threads; every reader of PNG decodes the
// same pixels.
QByteArray encodePng(const QImage& image);

}  // namespace kaldo::view

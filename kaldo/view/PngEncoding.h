// PNG encoding of a painted picture on two threads: each half of the rows
// is deflated by a thread of its own into one part of the single zlib
// stream that a PNG's image data is, as parallel compressors do, so that
// a large picture is written in about half the time of one encoder.
#pragma once

#include <QByteArray>
#include <QImage>

namespace kaldo::view {

// The bytes of a PNG file of image (RGB32: 8-bit RGB, no alpha), at the
// fastest compression level; every reader of PNG decodes the same pixels.
QByteArray encodePng(const QImage& image);

}  // namespace kaldo::view

#include "kaldo/view/PngEncoding.h"

#include "kaldo/util/TwoThreads.h"

#include <zlib.h>

#include <array>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

namespace kaldo::view {

namespace {

// Below this many rows a second thread costs more than it saves.
constexpr int kRowsForTwoThreads = 64;

void appendBigEndian(QByteArray& bytes, std::uint32_t value)
{
    const char big[] = {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
    bytes.append(big, 4);
}

// A chunk: its length, type, data and the CRC of type and data.
void appendChunk(QByteArray& bytes, std::string_view type, const QByteArray& data)
{
    appendBigEndian(bytes, std::uint32_t(data.size()));
    const qsizetype typeAt = bytes.size();
    bytes.append(type.data(), qsizetype(type.size()));
    bytes.append(data);
    const auto* checked = reinterpret_cast<const Bytef*>(bytes.constData() + typeAt);
    appendBigEndian(bytes, std::uint32_t(crc32_z(crc32_z(0, nullptr, 0), checked, std::size_t(bytes.size() - typeAt))));
}

}  // namespace

PngPart deflatePngRows(const QImage& image, int first, int end, bool last)
{
    // The fastest level that still compresses: line art on a plain
    // background packs almost as well in a third of the time of the
    // default level.
    PngPart part;
    uLong adler = adler32_z(0, nullptr, 0);
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    const int width = image.width();
    std::vector<Bytef> scanline(1 + 3 * std::size_t(width));
    std::array<Bytef, 1 << 16> out;
    const auto run = [&](int flush) {
        do {
            stream.next_out = out.data();
            stream.avail_out = uInt(out.size());
            deflate(&stream, flush);
            part.deflated.append(reinterpret_cast<const char*>(out.data()), qsizetype(out.size() - stream.avail_out));
        } while (stream.avail_out == 0);
    };
    for (int y = first; y < end; ++y) {
        const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        Bytef* at = scanline.data();
        *at++ = 0;
        for (int x = 0; x < width; ++x) {
            *at++ = Bytef(qRed(pixels[x]));
            *at++ = Bytef(qGreen(pixels[x]));
            *at++ = Bytef(qBlue(pixels[x]));
        }
        adler = adler32_z(adler, scanline.data(), scanline.size());
        part.length += scanline.size();
        stream.next_in = scanline.data();
        stream.avail_in = uInt(scanline.size());
        run(Z_NO_FLUSH);
    }
    run(last ? Z_FINISH : Z_SYNC_FLUSH);
    deflateEnd(&stream);
    part.adler = std::uint32_t(adler);
    return part;
}

QByteArray assemblePng(int width, int height, std::span<const PngPart> parts)
{
    QByteArray png("\x89PNG\r\n\x1a\n", 8);
    QByteArray header;
    appendBigEndian(header, std::uint32_t(width));
    appendBigEndian(header, std::uint32_t(height));
    header.append("\x08\x02\x00\x00\x00", 5);  // 8 bits, RGB, deflate, no filter set, no interlace
    appendChunk(png, "IHDR", header);
    // The zlib stream: its header (deflate, 32K window, fastest level), the
    // parts, and the checksum of all the scanlines.
    QByteArray data("\x78\x01", 2);
    uLong adler = adler32_z(0, nullptr, 0);
    for (const PngPart& part : parts) {
        data.append(part.deflated);
        adler = adler32_combine(adler, part.adler, z_off_t(part.length));
    }
    appendBigEndian(data, std::uint32_t(adler));
    appendChunk(png, "IDAT", data);
    appendChunk(png, "IEND", {});
    return png;
}

QByteArray encodePng(const QImage& image)
{
    const QImage rgb = image.format() == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_RGB32);
    const int middle = rgb.height() / 2;
    std::array<PngPart, 2> parts;
    onTwoThreads(rgb.height() >= kRowsForTwoThreads, [&](int half) {
        parts[std::size_t(half)] =
            half == 0 ? deflatePngRows(rgb, 0, middle, false) : deflatePngRows(rgb, middle, rgb.height(), true);
    });
    return assemblePng(rgb.width(), rgb.height(), parts);
}

}  // namespace kaldo::view

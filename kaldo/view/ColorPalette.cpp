#include "kaldo/view/ColorPalette.h"

#include <QColor>

#include <array>

namespace kaldo::view {

namespace {

constexpr std::array<std::uint32_t, 10> kFirstColors = {
    0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF, 0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0,
};
constexpr std::array<std::uint32_t, 6> kGreys = {0x333333, 0x505050, 0x696969, 0x828282, 0xBEBEBE, 0xFFFFFF};

// Indices 10..249 run through 24 hues in steps of 15 degrees; within a hue,
// pairs of indices step down in brightness, the odd one of each pair paler.
std::uint32_t hueRowRgb(int index)
{
    constexpr std::array<int, 5> kValues = {255, 189, 129, 104, 79};
    const int hue = (index / 10 - 1) * 15;
    const int step = index % 10;
    const int saturation = step % 2 == 0 ? 255 : 85;
    const QColor c = QColor::fromHsv(hue, saturation, kValues[std::size_t(step / 2)]);
    return std::uint32_t(c.red()) << 16 | std::uint32_t(c.green()) << 8 | std::uint32_t(c.blue());
}

}  // namespace

std::uint32_t colorIndexRgb(int index)
{
    if (index >= 1 && index <= 9)
        return kFirstColors[std::size_t(index)];
    if (index >= 10 && index <= 249)
        return hueRowRgb(index);
    if (index >= 250 && index <= 255)
        return kGreys[std::size_t(index - 250)];
    return 0xFFFFFF;
}

int nearestColorIndex(std::uint32_t rgb)
{
    const auto part = [](std::uint32_t value, int shift) { return int(value >> shift & 0xFFu); };
    int nearest = 1;
    long least = -1;
    for (int index = 1; index <= 255; ++index) {
        if (index == 7)
            continue;
        const std::uint32_t candidate = colorIndexRgb(index);
        long distance = 0;
        for (const int shift : {16, 8, 0}) {
            const long d = part(rgb, shift) - part(candidate, shift);
            distance += d * d;
        }
        if (least < 0 || distance < least) {
            least = distance;
            nearest = index;
        }
    }
    return nearest;
}

DrawColor drawColor(const KxCmColor& color, const DrawColor& layerColor)
{
    if (color.isByLayer())
        return layerColor;
    if (color.isByColor())
        return DrawColor::fixed(std::uint32_t(color.red()) << 16 | std::uint32_t(color.green()) << 8 | color.blue());
    const int index = color.colorIndex();
    if (color.isByBlock() || index == 7 || index < 1 || index > 255)
        return DrawColor{};
    return DrawColor::fixed(colorIndexRgb(index));
}

}  // namespace kaldo::view

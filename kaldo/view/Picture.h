// How a scene is fitted into a picture of a given size, and what its
// colours and dash patterns become there. Shared by the exporters.
#pragma once

#include <cstdint>
#include <vector>

#include "kaldo/view/Scene.h"

namespace kaldo::view {

enum class Background { White, Dark };

struct PictureOptions {
    int size = 1600;  // longer side of the picture, in pixels
    Background background = Background::White;
};

// The picture's longer side is size pixels; the shorter one follows the
// drawing's proportions. The drawing is centred with a margin on every
// side; y grows downwards in pixels.
class PictureFrame {
public:
    PictureFrame(const Bounds& bounds, int size);
    // A window's view: width by height pixels showing centre (drawing
    // units) in the middle at scale pixels per unit.
    PictureFrame(int width, int height, double scale, const Point2& centre);

    int width() const { return m_width; }
    int height() const { return m_height; }
    double scale() const { return m_scale; }  // pixels per drawing unit
    double x(double worldX) const { return m_originX + worldX * m_scale; }
    double y(double worldY) const { return m_originY - worldY * m_scale; }
    double worldX(double x) const { return (x - m_originX) / m_scale; }
    double worldY(double y) const { return (m_originY - y) / m_scale; }
    // The map from drawing units to pixels.
    Affine pixels() const { return {m_scale, 0, 0, -m_scale, m_originX, m_originY}; }

private:
    int m_width = 0;
    int m_height = 0;
    double m_scale = 1;
    double m_originX = 0;
    double m_originY = 0;
};

std::uint32_t backgroundRgb(Background background);
// The drawing window's background, the one place that chooses it: dark
// behind model space, white (the paper) behind a layout.
constexpr Background windowBackground(bool modelSpace)
{
    return modelSpace ? Background::Dark : Background::White;
}
// 0xRRGGBB of a colour on this background.
std::uint32_t pictureRgb(const DrawColor& color, Background background);

// A dash pattern in pixels that starts with a dash and alternates dash and
// gap (an even count), and the distance into it at which each line starts.
// Empty for continuous lines and for patterns too fine to show at scale.
struct PixelDashes {
    std::vector<double> lengths;
    double offset = 0;
};
PixelDashes pixelDashes(const LinePattern& pattern, double scale);

// Indices of items (polylines or arcs) grouped by pen: those of pen p are
// order[starts[p]] .. order[starts[p + 1] - 1], in scene order. Only the
// items listed in chosen (in scene order) when it is given.
struct PenGroups {
    std::vector<std::uint32_t> starts;
    std::vector<std::uint32_t> order;
};
template <class Item>
PenGroups groupByPen(const std::vector<Item>& items, std::size_t penCount,
                     const std::vector<std::uint32_t>* chosen = nullptr)
{
    const std::size_t count = chosen ? chosen->size() : items.size();
    const auto itemAt = [&](std::size_t i) { return chosen ? (*chosen)[i] : static_cast<std::uint32_t>(i); };
    // Each item's pen is read once: chosen items lie apart in memory.
    std::vector<int> pens(count);
    for (std::size_t i = 0; i < count; ++i)
        pens[i] = items[itemAt(i)].pen;
    PenGroups groups;
    groups.starts.assign(penCount + 1, 0);
    for (const int pen : pens)
        ++groups.starts[std::size_t(pen) + 1];
    for (std::size_t p = 0; p < penCount; ++p)
        groups.starts[p + 1] += groups.starts[p];
    groups.order.resize(count);
    std::vector<std::uint32_t> next(groups.starts.begin(), groups.starts.end() - 1);
    for (std::size_t i = 0; i < count; ++i)
        groups.order[next[std::size_t(pens[i])]++] = itemAt(i);
    return groups;
}

// A polyline of the scene, or an instance (whose polylines of the pen are
// drawn at its place), or a fill of either.
struct SceneItem {
    std::uint32_t index = 0;
    bool instance = false;
};

// The polylines and instances of each pen: those drawing in pen p are
// order[starts[p]] .. order[starts[p + 1] - 1], in scene order (an
// instance of several pens is listed under each). Only the items listed in
// polylines and instances (in scene order) when they are given.
struct LineGroups {
    std::vector<std::uint32_t> starts;
    std::vector<SceneItem> order;
};
LineGroups groupLines(const Scene& scene, const std::vector<std::uint32_t>* polylines = nullptr,
                      const std::vector<std::uint32_t>* instances = nullptr);

// The distinct fill colours of a whole scene in order of first use, and
// which of them each fill and each instance paints in (an instance's each
// once, those of instance i as instanceColors[instanceStarts[i]] ..
// instanceColors[instanceStarts[i + 1] - 1]): worked out once for a scene
// that is painted many times.
struct FillColors {
    std::vector<DrawColor> colors;
    std::vector<std::uint32_t> polygonColors;
    std::vector<std::uint32_t> instanceStarts;
    std::vector<std::uint32_t> instanceColors;
};
FillColors fillColors(const Scene& scene);

// The scene's fills grouped by colour: the distinct colours of the whole
// scene in order of first use, and the fills of colors[c] as
// order[starts[c]] .. order[starts[c + 1] - 1], in scene order; an
// instance is listed under each colour of its fills. Only the fills and
// instances listed (in scene order) when they are given. colors, when
// given, are the scene's (fillColors).
struct FillGroups {
    std::vector<DrawColor> colors;
    std::vector<std::uint32_t> starts;
    std::vector<SceneItem> order;
};
FillGroups groupFills(const Scene& scene, const std::vector<std::uint32_t>* polygons = nullptr,
                      const std::vector<std::uint32_t>* instances = nullptr, const FillColors* colors = nullptr);

}  // namespace kaldo::view

#include "kaldo/view/Picture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace kaldo::view {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kBlack = 0x000000;
constexpr std::uint32_t kDark = 0x1E2329;

// The smallest dash or gap drawn, and the shortest pattern repeat that is
// still worth breaking a line for, in pixels.
constexpr double kMinimumDash = 1.0;
constexpr double kMinimumRepeat = 3.0;

int marginFor(int size)
{
    return std::max(2, size / 40);
}

}  // namespace

PictureFrame::PictureFrame(const Bounds& bounds, int size)
{
    const int margin = marginFor(size);
    const double spanX = bounds.empty ? 0.0 : bounds.maxX - bounds.minX;
    const double spanY = bounds.empty ? 0.0 : bounds.maxY - bounds.minY;
    const double longer = std::max(spanX, spanY);
    const double inner = size - 2.0 * margin;
    m_scale = longer > 0 ? inner / longer : 1.0;
    m_width = longer > 0 && spanX < spanY ? int(std::ceil(spanX * m_scale)) + 2 * margin : size;
    m_height = longer > 0 && spanY < spanX ? int(std::ceil(spanY * m_scale)) + 2 * margin : size;
    const double centreX = bounds.empty ? 0.0 : (bounds.minX + bounds.maxX) / 2;
    const double centreY = bounds.empty ? 0.0 : (bounds.minY + bounds.maxY) / 2;
    m_originX = m_width / 2.0 - centreX * m_scale;
    m_originY = m_height / 2.0 + centreY * m_scale;
}

PictureFrame::PictureFrame(int width, int height, double scale, const Point2& centre)
    : m_width(width), m_height(height), m_scale(scale), m_originX(width / 2.0 - centre.x * scale),
      m_originY(height / 2.0 + centre.y * scale)
{
}

std::uint32_t backgroundRgb(Background background)
{
    return background == Background::White ? kWhite : kDark;
}

std::uint32_t pictureRgb(const DrawColor& color, Background background)
{
    if (!color.foreground)
        return color.rgb;
    return background == Background::White ? kBlack : kWhite;
}

PixelDashes pixelDashes(const LinePattern& pattern, double scale)
{
    // Alternating runs, dash first: even indices are dashes, odd ones gaps.
    std::vector<double> runs;
    double leadingGap = 0;
    for (const double unit : pattern) {
        const bool dash = unit >= 0;
        const double pixels = std::max(kMinimumDash, std::abs(unit) * scale);
        if (runs.empty() && !dash) {
            leadingGap += pixels;
            continue;
        }
        const bool lastIsDash = runs.size() % 2 == 1;
        if (!runs.empty() && lastIsDash == dash)
            runs.back() += pixels;
        else
            runs.push_back(pixels);
    }
    // A gap at the front wraps round to the end: lines start inside it.
    if (leadingGap > 0 && !runs.empty()) {
        if (runs.size() % 2 == 0)
            runs.back() += leadingGap;
        else
            runs.push_back(leadingGap);
    }
    // A dash at the end joins the first one: lines start inside it.
    double offset = leadingGap > 0 ? std::accumulate(runs.begin(), runs.end(), 0.0) - leadingGap : 0.0;
    if (runs.size() % 2 == 1 && runs.size() > 1) {
        const double tail = runs.back();
        runs.pop_back();
        runs.front() += tail;
        offset = tail;
    }
    const double repeat = std::accumulate(runs.begin(), runs.end(), 0.0);
    if (runs.size() < 2 || repeat < kMinimumRepeat)
        return {};
    return {std::move(runs), offset};
}

namespace {

// Calls visit(item) for the polylines (or fills) and instances chosen, in
// scene order: an instance comes before the item it was added before.
template <class Visit>
void visitInOrder(std::size_t items, const std::vector<std::uint32_t>* chosenItems,
                  const std::vector<Instance>& all, const std::vector<std::uint32_t>* chosenInstances,
                  std::uint32_t Instance::*before, Visit&& visit)
{
    const std::size_t itemCount = chosenItems ? chosenItems->size() : items;
    const std::size_t instanceCount = chosenInstances ? chosenInstances->size() : all.size();
    const auto itemAt = [&](std::size_t i) { return chosenItems ? (*chosenItems)[i] : std::uint32_t(i); };
    const auto instanceAt = [&](std::size_t i) { return chosenInstances ? (*chosenInstances)[i] : std::uint32_t(i); };
    std::size_t next = 0;
    for (std::size_t i = 0; i <= itemCount; ++i) {
        const std::uint32_t item = i < itemCount ? itemAt(i) : std::numeric_limits<std::uint32_t>::max();
        for (; next < instanceCount && all[instanceAt(next)].*before <= item; ++next)
            visit(SceneItem{instanceAt(next), true});
        if (i < itemCount)
            visit(SceneItem{item, false});
    }
}

}  // namespace

LineGroups groupLines(const Scene& scene, const std::vector<std::uint32_t>* polylines,
                      const std::vector<std::uint32_t>* instances)
{
    // Each item's pens are read once (chosen items lie apart in memory),
    // then put in order.
    std::vector<std::pair<int, SceneItem>> taken;
    taken.reserve((polylines ? polylines->size() : scene.polylines().size())
                  + (instances ? instances->size() : scene.instances().size()));
    visitInOrder(scene.polylines().size(), polylines, scene.instances(), instances, &Instance::polylinesBefore,
                 [&](const SceneItem& item) {
                     if (!item.instance)
                         taken.emplace_back(scene.polylines()[item.index].pen, item);
                     else
                         scene.visitPens(scene.instances()[item.index], [&](int pen) { taken.emplace_back(pen, item); });
                 });
    LineGroups groups;
    groups.starts.assign(scene.pens().size() + 1, 0);
    for (const auto& [pen, item] : taken)
        ++groups.starts[std::size_t(pen) + 1];
    for (std::size_t p = 0; p + 1 < groups.starts.size(); ++p)
        groups.starts[p + 1] += groups.starts[p];
    groups.order.resize(groups.starts.back());
    std::vector<std::uint32_t> next(groups.starts.begin(), groups.starts.end() - 1);
    for (const auto& [pen, item] : taken)
        groups.order[next[std::size_t(pen)]++] = item;
    return groups;
}

FillColors fillColors(const Scene& scene)
{
    FillColors colors;
    std::map<std::pair<bool, std::uint32_t>, std::uint32_t> colorIndex;
    const auto indexOf = [&](const DrawColor& color) {
        const auto [it, added] =
            colorIndex.try_emplace({color.foreground, color.rgb}, static_cast<std::uint32_t>(colors.colors.size()));
        if (added)
            colors.colors.push_back(color);
        return it->second;
    };
    colors.polygonColors.resize(scene.polygons().size());
    colors.instanceStarts.assign(1, 0);
    // Colours in order of first use, fills and instances in scene order.
    visitInOrder(scene.polygons().size(), nullptr, scene.instances(), nullptr, &Instance::polygonsBefore,
                 [&](const SceneItem& item) {
                     if (!item.instance) {
                         colors.polygonColors[item.index] = indexOf(scene.polygons()[item.index].color);
                         return;
                     }
                     const Instance& instance = scene.instances()[item.index];
                     const auto first = colors.instanceColors.end() - colors.instanceColors.begin();
                     if (scene.shapes()[instance.shape].fills)
                         scene.visitFillColors(instance, [&](const DrawColor& color) {
                             const std::uint32_t c = indexOf(color);
                             if (std::find(colors.instanceColors.begin() + first, colors.instanceColors.end(), c)
                                 == colors.instanceColors.end())
                                 colors.instanceColors.push_back(c);
                         });
                     colors.instanceStarts.push_back(std::uint32_t(colors.instanceColors.size()));
                 });
    return colors;
}

FillGroups groupFills(const Scene& scene, const std::vector<std::uint32_t>* polygons,
                      const std::vector<std::uint32_t>* instances, const FillColors* colors)
{
    std::optional<FillColors> own;
    if (!colors)
        colors = &own.emplace(fillColors(scene));
    FillGroups groups;
    groups.colors = colors->colors;
    const auto visit = [&](auto&& take) {
        visitInOrder(scene.polygons().size(), polygons, scene.instances(), instances, &Instance::polygonsBefore,
                     [&](const SceneItem& item) {
                         if (!item.instance) {
                             take(colors->polygonColors[item.index], item);
                             return;
                         }
                         for (std::uint32_t c = colors->instanceStarts[item.index];
                              c < colors->instanceStarts[item.index + 1]; ++c)
                             take(colors->instanceColors[c], item);
                     });
    };
    groups.starts.assign(groups.colors.size() + 1, 0);
    visit([&](std::uint32_t c, const SceneItem&) { ++groups.starts[c + 1]; });
    for (std::size_t c = 0; c < groups.colors.size(); ++c)
        groups.starts[c + 1] += groups.starts[c];
    groups.order.resize(groups.starts.back());
    std::vector<std::uint32_t> next(groups.starts.begin(), groups.starts.end() - 1);
    visit([&](std::uint32_t c, const SceneItem& item) { groups.order[next[c]++] = item; });
    return groups;
}

}  // namespace kaldo::view

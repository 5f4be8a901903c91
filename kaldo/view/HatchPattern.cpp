#include "kaldo/view/HatchPattern.h"

#include <algorithm>
#include <cmath>

namespace kaldo::view {

namespace {

constexpr double kTolerance = 1e-10;
// A stretch that would break into more dashes than this is drawn whole: a
// pattern that fine shows as a line anyway.
constexpr double kMostDashes = 10000;

struct Direction {
    double x = 1, y = 0;
};

// The range of the loops' points along a direction.
std::pair<double, double> extentAlong(const std::vector<std::vector<Point2>>& loops, const Direction& d)
{
    double low = INFINITY, high = -INFINITY;
    for (const auto& loop : loops)
        for (const Point2& p : loop) {
            const double at = p.x * d.x + p.y * d.y;
            low = std::min(low, at);
            high = std::max(high, at);
        }
    return {low, high};
}

// The parameters along the line origin + t d where it crosses the loops'
// edges, sorted; an edge's lower end counts and its upper end does not,
// so that a vertex on the line counts once.
std::vector<double> crossings(const std::vector<std::vector<Point2>>& loops, const Point2& origin, const Direction& d)
{
    const Direction n{-d.y, d.x};
    std::vector<double> at;
    for (const auto& loop : loops) {
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const Point2& a = loop[i];
            const Point2& b = loop[(i + 1) % loop.size()];
            const double sa = (a.x - origin.x) * n.x + (a.y - origin.y) * n.y;
            const double sb = (b.x - origin.x) * n.x + (b.y - origin.y) * n.y;
            if ((sa < 0) == (sb < 0))
                continue;
            const double f = sa / (sa - sb);
            const Point2 p{a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f};
            at.push_back((p.x - origin.x) * d.x + (p.y - origin.y) * d.y);
        }
    }
    std::sort(at.begin(), at.end());
    return at;
}

// The dashes of one stretch [from, to] of a line, the pattern starting at
// the line's own point (t = 0).
void dashesWithin(double from, double to, const std::vector<double>& dashes, double period,
                  const std::function<void(double, double)>& dash)
{
    if (dashes.empty() || period <= kTolerance || (to - from) / period > kMostDashes) {
        dash(from, to);
        return;
    }
    double start = std::floor(from / period) * period;
    while (start < to) {
        for (const double d : dashes) {
            const double end = start + std::abs(d);
            if (d >= 0 && end >= from && start <= to)
                dash(std::max(start, from), std::min(end, to));
            start = end;
            if (start >= to)
                break;
        }
    }
}

}  // namespace

bool patternPieces(const std::vector<std::vector<Point2>>& loops, const std::vector<PatternFamily>& families,
                   std::size_t mostLines, const std::function<void(const Point2&, const Point2&)>& piece)
{
    struct Lines {
        const PatternFamily* family;
        Direction d;
        long first, last;
        double period;
    };
    std::vector<Lines> planned;
    double count = 0;
    for (const PatternFamily& family : families) {
        const Direction d{std::cos(family.angle), std::sin(family.angle)};
        const Direction n{-d.y, d.x};
        const double step = family.offset.x * n.x + family.offset.y * n.y;
        if (std::abs(step) <= kTolerance || !std::isfinite(step))
            continue;
        const auto [low, high] = extentAlong(loops, n);
        const double at = family.base.x * n.x + family.base.y * n.y;
        const double k0 = std::ceil((step > 0 ? low - at : high - at) / step);
        const double k1 = std::floor((step > 0 ? high - at : low - at) / step);
        if (!(k1 >= k0))
            continue;
        count += k1 - k0 + 1;
        if (count > double(mostLines))
            return false;
        double period = 0;
        for (const double dash : family.dashes)
            period += std::abs(dash);
        planned.push_back({&family, d, long(k0), long(k1), period});
    }
    if (planned.empty())
        return false;
    for (const Lines& lines : planned) {
        const PatternFamily& family = *lines.family;
        for (long k = lines.first; k <= lines.last; ++k) {
            const Point2 origin{family.base.x + double(k) * family.offset.x, family.base.y + double(k) * family.offset.y};
            const std::vector<double> at = crossings(loops, origin, lines.d);
            for (std::size_t i = 0; i + 1 < at.size(); i += 2)
                dashesWithin(at[i], at[i + 1], family.dashes, lines.period, [&](double from, double to) {
                    piece({origin.x + from * lines.d.x, origin.y + from * lines.d.y},
                          {origin.x + to * lines.d.x, origin.y + to * lines.d.y});
                });
        }
    }
    return true;
}

}  // namespace kaldo::view

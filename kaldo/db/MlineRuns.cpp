#include "kaldo/db/MlineRuns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "kxtypes.h"

namespace kaldo {

std::vector<double> refitRuns(std::span<const double> list, const SegmentChange& change)
{
    if (list.size() < 2 || (!change.startChanged && !change.endChanged && change.shift == 0))
        return {list.begin(), list.end()};
    const double tolerance = kxGeTolerance * std::max({1.0, std::abs(change.oldLength), std::abs(change.newLength)});
    const auto runs = list.subspan(1);
    // The old distances the new segment's ends stand at, within the old
    // segment: beyond an end that moved, the element goes on as it was
    // drawn at that end.
    const double from = change.startChanged ? std::max(change.shift, 0.0) : -std::numeric_limits<double>::infinity();
    const double to = change.endChanged ? std::min(change.newLength + change.shift, change.oldLength)
                                        : std::numeric_limits<double>::infinity();
    std::vector<double> refit{list.front()};
    if (change.startChanged) {
        const auto before = std::ranges::count_if(runs, [&](double t) { return t <= from + tolerance; });
        if (before % 2 == 1)
            refit.push_back(0.0);
    }
    for (const double t : runs) {
        if (change.startChanged && t <= from + tolerance)
            continue;
        if (change.endChanged && t >= to - tolerance)
            continue;
        refit.push_back(t - change.shift);
    }
    return refit;
}

}  // namespace kaldo

// Angles of arcs as the database stores them: radians, counter-clockwise
// about the arc's normal, from start to end.
#pragma once

#include <cmath>
#include <numbers>

namespace kaldo {

// The angle in [0, 2pi).
inline double wrappedAngle(double angle)
{
    constexpr double turn = 2 * std::numbers::pi;
    const double a = std::fmod(angle, turn);
    return a < 0 ? a + turn : a;
}

// The sweep from start to end, counter-clockwise, in (0, 2pi]: equal
// angles, or a difference that is no finite number, make a whole circle.
inline double arcSweep(double startAngle, double endAngle)
{
    constexpr double turn = 2 * std::numbers::pi;
    double sweep = std::fmod(endAngle - startAngle, turn);
    if (!std::isfinite(sweep))
        return turn;
    if (sweep <= 0)
        sweep += turn;
    return sweep;
}

}  // namespace kaldo

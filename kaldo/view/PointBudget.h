// The points that copies of blocks and the outlines of letters may add to
// one picture. Both multiply what a file holds (a block of a few bytes
// placed a million times, a letter drawn as dozens of points), so once the
// budget is spent they are drawn coarsely, as boxes. Everything else costs
// at most a fixed number of points per group it is drawn from.
#pragma once

#include <cstddef>

namespace kaldo::view {

class PointBudget {
public:
    // 64 MB of points: four thousand copies of a block of a thousand
    // points fit.
    static constexpr std::size_t kPicture = std::size_t(1) << 22;

    explicit PointBudget(std::size_t points = kPicture) : m_left(points) {}

    // Takes points from the budget; false, taking nothing, when fewer are
    // left (the budget then counts as spent).
    bool take(std::size_t points)
    {
        if (points > m_left) {
            m_spent = true;
            return false;
        }
        m_left -= points;
        return true;
    }
    std::size_t left() const { return m_left; }
    // Whether anything was drawn coarsely for want of points.
    bool spent() const { return m_spent; }
    void markSpent() { m_spent = true; }

private:
    std::size_t m_left;
    bool m_spent = false;
};

}  // namespace kaldo::view

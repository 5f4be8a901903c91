// The points that copies of blocks and the outlines of letters may add to
// one picture. Both multiply what a file holds (a block of a few bytes
// placed a million times, a letter drawn as dozens of points), so once the
// budget is spent they are drawn coarsely, as boxes. Everything else costs
// at most a fixed number of points per group it is drawn from.
#pragma once

#include <cstddef>
#include <vector>

namespace kaldo::view {

class PointBudget {
public:
    // 64 MB of points: four thousand copies of a block of a thousand
    // points fit.
    static constexpr std::size_t kPicture = std::size_t(1) << 22;

    explicit PointBudget(std::size_t points = kPicture) : m_left(points) {}

    // Takes points from the budget when at least least (and points) are
    // left; false, taking nothing, otherwise (the budget then counts as
    // spent).
    bool take(std::size_t points, std::size_t least = 0)
    {
        ++m_asked;
        const bool granted = points <= m_left && least <= m_left;
        if (m_keeping)
            m_questions.push_back({points, least, granted});
        if (granted)
            m_left -= points;
        else
            m_spent = true;
        return granted;
    }
    std::size_t left() const { return m_left; }
    // Whether anything was drawn coarsely for want of points.
    bool spent() const { return m_spent; }
    // How many times points were asked for so far.
    std::size_t asked() const { return m_asked; }

    // Keeps the questions asked from now on and their answers, so that
    // another budget can be asked them later (answersAlike).
    void keepQuestions() { m_keeping = true; }
    // Asks budget the questions kept here, in order; whether it answered
    // each as this one did.
    bool answersAlike(PointBudget& budget) const
    {
        for (const Question& question : m_questions)
            if (budget.take(question.points, question.least) != question.granted)
                return false;
        return true;
    }

private:
    struct Question {
        std::size_t points;
        std::size_t least;
        bool granted;
    };

    std::size_t m_left;
    std::size_t m_asked = 0;
    bool m_spent = false;
    bool m_keeping = false;
    std::vector<Question> m_questions;
};

}  // namespace kaldo::view

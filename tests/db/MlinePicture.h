// What a multiline draws (the renderer's pieces: runs, cap and joint lines,
// cap arcs, fill quadrilaterals) as points, so that tests can compare the
// picture of a transformed multiline with the picture of the original
// transformed point by point, by their own arithmetic.
#pragma once

#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/MlinePieces.h"
#include "kxdb.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

struct PicturePiece {
    std::string kind;                 // "run 0", "cap 2", "arc 1", "fill"
    std::vector<KxGePoint3d> points;  // run and cap ends; arc start, middle, end; fill corners
};

class MlinePicture : public kaldo::view::MlinePieceSink {
public:
    static std::vector<PicturePiece> of(const KxDbMline& mline)
    {
        MlinePicture sink(mline);
        const KxDbObjectPtr<KxDbMlineStyle> style(mline.style(), KxDb::kForRead);
        kaldo::view::MlinePieces().collect(mline, style.get(), sink);
        return std::move(sink.m_pieces);
    }

    void fill(const kaldo::view::MlineFill& fill) override
    {
        m_pieces.push_back({"fill", {fill.corners.begin(), fill.corners.end()}});
    }
    void run(const kaldo::view::MlineRun& run) override
    {
        m_pieces.push_back({"run " + std::to_string(run.element), {run.from, run.to}});
    }
    void capLine(const kaldo::view::MlineCapLine& line) override
    {
        m_pieces.push_back({"cap " + std::to_string(line.element), {line.from, line.to}});
    }
    void capArc(const kaldo::view::MlineCapArc& arc) override
    {
        const kaldo::EntityPlane plane(m_mline.normal());
        const auto at = [&](double a) { return arc.centre + plane.toWorld(KxGeVector3d(std::cos(a), std::sin(a))) * arc.radius; };
        m_pieces.push_back({"arc " + std::to_string(arc.element), {at(arc.start), at(arc.start + arc.sweep / 2), at(arc.start + arc.sweep)}});
    }

private:
    explicit MlinePicture(const KxDbMline& mline) : m_mline(mline) {}
    const KxDbMline& m_mline;
    std::vector<PicturePiece> m_pieces;
};

using PointMap = std::function<KxGePoint3d(const KxGePoint3d&)>;

inline std::vector<PicturePiece> mapped(std::vector<PicturePiece> pieces, const PointMap& map)
{
    for (PicturePiece& piece : pieces)
        for (KxGePoint3d& p : piece.points)
            p = map(p);
    return pieces;
}

inline bool samePoint(const KxGePoint3d& a, const KxGePoint3d& b, double tolerance)
{
    return distance(a, b) <= tolerance;
}

// Pieces match when they are of one kind and hold the same points: runs,
// caps and arcs with their ends either way round (an arc's middle where it
// was), fills as sets of corners.
inline bool samePiece(const PicturePiece& a, const PicturePiece& b, double tolerance)
{
    if (a.kind != b.kind || a.points.size() != b.points.size())
        return false;
    if (a.kind == "fill") {
        for (const KxGePoint3d& p : a.points)
            if (std::none_of(b.points.begin(), b.points.end(), [&](const KxGePoint3d& q) { return samePoint(p, q, tolerance); }))
                return false;
        return true;
    }
    const std::size_t last = a.points.size() - 1;
    for (std::size_t i = 1; i < last; ++i)
        if (!samePoint(a.points[i], b.points[i], tolerance))
            return false;
    return (samePoint(a.points.front(), b.points.front(), tolerance) && samePoint(a.points.back(), b.points.back(), tolerance))
        || (samePoint(a.points.front(), b.points.back(), tolerance) && samePoint(a.points.back(), b.points.front(), tolerance));
}

inline std::string describePiece(const PicturePiece& piece)
{
    std::ostringstream out;
    out << piece.kind;
    for (const KxGePoint3d& p : piece.points)
        out << " (" << p.x << ", " << p.y << ")";
    return out.str();
}

// Every expected piece is drawn, and nothing else.
inline ::testing::AssertionResult samePicture(const std::vector<PicturePiece>& expected,
                                              std::vector<PicturePiece> actual, double tolerance = 1e-10)
{
    for (const PicturePiece& piece : expected) {
        const auto found = std::find_if(actual.begin(), actual.end(),
                                        [&](const PicturePiece& p) { return samePiece(piece, p, tolerance); });
        if (found == actual.end())
            return ::testing::AssertionFailure() << "not drawn: " << describePiece(piece);
        actual.erase(found);
    }
    if (!actual.empty())
        return ::testing::AssertionFailure() << "drawn besides: " << describePiece(actual.front());
    return ::testing::AssertionSuccess();
}

#include "mledit/VertexEdit.h"

#include <algorithm>
#include <utility>

#include "KdCmdUtil.h"
#include "mledit/EditGeometry.h"
#include "mledit/ViewServices.h"

namespace kdml {


double signedDistanceToLine(const KxGePoint3d& point, const KxGePoint3d& a, const KxGePoint3d& b,
                            const KxGeVector3d& normal, KxGePoint3d* foot)
{
    double distance = 0;
    KxGePoint3d f;
    PtLnDist(point, a, b, &distance, &f);
    if (cross(point - f, b - f).z > 0)
        distance = -distance;
    if (normal.z < 0)
        distance = -distance;
    if (foot)
        *foot = f;
    return distance;
}

bool insertVertex(MlineShape& shape, int s, const KxGePoint3d& near)
{
    const int n = shape.size();
    if (s < 0 || n < 2 || s > n - 1 || (s == n - 1 && !shape.closed))
        return false;
    const KxGePoint3d a = shape.vertices[std::size_t(s)].position;
    const KxGePoint3d b = shape.vertices[std::size_t(shape.segmentEnd(s))].position;
    KxGePoint3d p;
    signedDistanceToLine(near, a, b, shape.normal, &p);
    if (std::any_of(shape.vertices.begin(), shape.vertices.end(),
                    [&p](const ShapeVertex& v) { return pointsEqual(v.position, p); }))
        return false;

    // The runs before the new vertex stay on segment s; those beyond it go
    // to the new segment, measured from the new vertex's element points,
    // which lie on the element lines where the square miter meets them.
    ShapeVertex added = shape.vertices[std::size_t(s)];
    added.position = p;
    for (int e = 0; e < shape.elementCount(); ++e) {
        const double cut = dot(p - shape.elementPoint(s, e), shape.segmentDirection(s, e));
        const std::span<const double> current = shape.runs(s, e);
        const std::vector<double> runs(current.begin(), current.end());
        std::vector<double> beyond = runs;
        shiftRuns(beyond, cut);
        added.lists = shape.withRuns(added.lists, e, beyond);
        shape.setRuns(s, e, runsBefore(runs, cut));
    }
    shape.vertices.insert(shape.vertices.begin() + s + 1, added);
    shape.refreshDirections(s + 1);
    return true;
}

bool removeVertex(MlineShape& shape, int k)
{
    const int n = shape.size();
    if (k < 0 || k >= n || !(n > 3 || (n == 3 && !shape.closed)))
        return false;
    const bool hasPrev = k > 0 || shape.closed;
    const bool hasNext = k < n - 1 || shape.closed;
    const int oldNext = (k + 1) % n;
    const std::vector<KxGePoint3d> nextBefore = hasNext ? shape.elementPoints(oldNext) : std::vector<KxGePoint3d>();
    shape.vertices.erase(shape.vertices.begin() + k);
    const int m = n - 1;
    const int prev = (k + m - 1) % m;
    const int next = k % m;
    if (hasPrev) {
        shape.refreshDirections(prev);
        shape.drawWholeSegment(prev);
    }
    if (hasNext) {
        shape.refreshDirections(next);
        if (next < m - 1 || shape.closed)
            shape.followElementPoints(next, nextBefore);
    }
    return true;
}

int findVertexNearPick(MlineEditContext& context, const MlinePick& pick)
{
    KxGePoint3d world = context.pickPoint;
    ucsToWcs(context.pickPoint, world);
    getPickTolerance(context.pickTolerance);
    const double tolerance = context.pickTolerance;
    const int n = pick.numVertices;
    // Display distance from the pick to the line through a and b.
    const auto withinBox = [&](const KxGePoint3d& a, const KxGePoint3d& b) {
        KxGePoint3d foot;
        PtLnDist(world, a, b, nullptr, &foot);
        return displayDistance(world, foot) < tolerance;
    };
    double best = 1e30;
    int result = -1;
    for (int i = 0; i + 1 < n; ++i) {
        for (const ElementLine& line : pick.elementLines) {
            const KxGePoint3d& a = line[std::size_t(i)];
            const KxGePoint3d& b = line[std::size_t(i + 1)];
            if (!withinBox(a, b))
                continue;
            const double dA = displayDistance(world, a);
            const double dB = displayDistance(world, b);
            if (dA < dB && dA < best) {
                best = dA;
                result = i;
            } else if (dB < best) {
                best = dB;
                result = i + 1;
            }
        }
    }
    if (result >= 0)
        return result;
    if (pick.closed && n > 1) {
        for (const ElementLine& line : pick.elementLines) {
            const KxGePoint3d& last = line[std::size_t(n - 1)];
            if (withinBox(last, line[0]))
                return displayDistance(world, line[0]) <= displayDistance(world, last) ? 0 : n - 1;
        }
    }
    return 0;
}

bool insertVertexAtPick(MlinePick& pick)
{
    std::optional<MlineShape> shape = readMlineShape(pick.mline);
    if (!shape || !insertVertex(*shape, pick.hitSegment, pick.hitPoint))
        return false;
    return writeMlineShape(pick.mline, std::move(*shape));
}

bool removeVertex(MlinePick& pick, int k)
{
    std::optional<MlineShape> shape = readMlineShape(pick.mline);
    if (!shape || !removeVertex(*shape, k))
        return false;
    return writeMlineShape(pick.mline, std::move(*shape));
}

}  // namespace kdml

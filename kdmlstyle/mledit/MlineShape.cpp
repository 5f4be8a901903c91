#include "mledit/MlineShape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "kxdbmlstyle.h"
#include "kxed.h"
#include "mledit/EditGeometry.h"
#include "mledit/MlineAccess.h"

namespace kdml {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// A plane direction of the entity system of normal, in world coordinates.
KxGeVector3d planeVectorInWorld(const KxGeVector3d& normal, const KxGeVector3d& planeVector)
{
    kxresbuf from;
    from.restype = RT3DPOINT;
    from.resval.rpoint[0] = normal.x;
    from.resval.rpoint[1] = normal.y;
    from.resval.rpoint[2] = normal.z;
    kxresbuf to;
    to.restype = RTSHORT;
    to.resval.rint = 0;
    const double in[3] = {planeVector.x, planeVector.y, planeVector.z};
    double out[3] = {};
    if (kxedTrans(in, &from, &to, 1, out) != RTNORM)
        return planeVector;
    return KxGeVector3d(out[0], out[1], out[2]);
}

// The distance along a miter at angle m to an element at perpendicular
// offset o from a segment at angle a; a miter along the segment is turned
// by 0.005 so that the distance stays finite.
double miterDistance(double offset, double miterAngle, double axisAngle)
{
    const double turn = miterAngle - axisAngle;
    return offset / std::sin(turn + (std::abs(turn) <= kEditTolerance ? 0.005 : 0.0));
}

}  // namespace

int MlineShape::segmentEnd(int segment) const
{
    return closed && segment == size() - 1 ? 0 : segment + 1;
}

KxGePoint3d MlineShape::elementPoint(int vertex, int element) const
{
    const ShapeVertex& v = vertices[std::size_t(vertex)];
    const std::span<const double> list = runs(vertex, element);
    return v.position + v.miter * (list.empty() ? 0.0 : list.front());
}

KxDbMlineListsRef MlineShape::withRuns(KxDbMlineListsRef from, int element, std::span<const double> runs)
{
    KxDbMlineListSet changed(lists.at(from));
    changed.setElement(element, runs);
    return lists.add(changed.view());
}

void MlineShape::setRuns(int vertex, int element, std::span<const double> runs)
{
    ShapeVertex& v = vertices[std::size_t(vertex)];
    v.lists = withRuns(v.lists, element, runs);
}

std::vector<KxGePoint3d> MlineShape::elementPoints(int vertex) const
{
    std::vector<KxGePoint3d> points;
    for (int e = 0; e < elementCount(); ++e)
        points.push_back(elementPoint(vertex, e));
    return points;
}

KxGeVector3d MlineShape::segmentDirection(int segment, int element) const
{
    const int end = segmentEnd(segment);
    if (end >= size())
        return vertices[std::size_t(segment)].axis;
    const KxGeVector3d d = elementPoint(end, element) - elementPoint(segment, element);
    return d.length() > kEditTolerance ? normalized(d) : vertices[std::size_t(segment)].axis;
}

void MlineShape::followElementPoints(int vertex, const std::vector<KxGePoint3d>& before)
{
    for (int e = 0; e < elementCount() && std::size_t(e) < before.size(); ++e) {
        const double delta = dot(elementPoint(vertex, e) - before[std::size_t(e)], vertices[std::size_t(vertex)].axis);
        editRuns(vertex, e, [delta](std::vector<double>& list) { shiftRuns(list, delta); });
    }
}

void MlineShape::drawWholeSegment(int vertex)
{
    KxDbMlineListSet whole(listsAt(vertex));
    for (int e = 0; e < whole.numElements(); ++e) {
        const std::span<const double> list = whole.element(e);
        whole.setElement(e, std::array{list.empty() ? 0.0 : list.front(), 0.0});
    }
    vertices[std::size_t(vertex)].lists = lists.add(whole.view());
}

double MlineShape::planeAngle(const KxGePoint3d& from, const KxGePoint3d& to) const
{
    const KxGeVector3d d = to - from;
    const double x = dot(d, xAxis);
    const double y = dot(d, yAxis);
    if (std::abs(x) <= kEditTolerance && std::abs(y) <= kEditTolerance)
        return 0.0;
    const double angle = std::atan2(y, x);
    return angle < 0 ? angle + kTurn : angle;
}

KxGeVector3d MlineShape::planeDirection(double angle) const
{
    return xAxis * std::cos(angle) + yAxis * std::sin(angle);
}

void MlineShape::refreshDirections(int v)
{
    const int n = size();
    if (v < 0 || v >= n || n < 2)
        return;
    const bool hasNext = v + 1 < n || closed;
    const int next = (v + 1) % n;
    const int prev = (v + n - 1) % n;
    ShapeVertex& vertex = vertices[std::size_t(v)];
    const KxGePoint3d& before = vertices[std::size_t(prev)].position;
    const double axis = hasNext ? planeAngle(vertex.position, vertices[std::size_t(next)].position)
                                : planeAngle(before, vertex.position);
    double miter = 0;
    if (!closed && v == 0)
        miter = axis + startAngle;
    else if (!closed && v == n - 1)
        miter = axis + endAngle;
    else
        miter = bisectorAngle(axis, planeAngle(vertex.position, before));
    vertex.axis = planeDirection(axis);
    vertex.miter = planeDirection(miter);
    KxDbMlineListSet refreshed(listsAt(v));
    for (int e = 0; e < refreshed.numElements() && std::size_t(e) < offsets.size(); ++e)
        refreshed.setEntry0(e, miterDistance(offsets[std::size_t(e)], miter, axis));
    vertex.lists = lists.add(refreshed.view());
}

std::optional<MlineShape> readMlineShape(const KxDbMline* mline, int first, int count)
{
    KxDbObjectPtr<KxDbMlineStyle> style;
    if (!openMlineStyle(mline, style))
        return std::nullopt;
    MlineShape shape;
    const int n = mline->numVertices();
    const int from = std::clamp(first, 0, n);
    const int to = count < 0 ? n : std::clamp(from + count, from, n);
    shape.vertices.reserve(std::size_t(to - from));
    // Neighbours that share their lists in the multiline share them here.
    for (int v = from; v < to; ++v) {
        const KxDbMlineVertexLists lists = mline->parametersAt(v);
        const bool shared = v > from && lists.sharesStorageWith(mline->parametersAt(v - 1));
        shape.vertices.push_back(ShapeVertex{mline->vertexAt(v), mline->axisAt(v), mline->miterAt(v),
                                             shared ? shape.vertices.back().lists : shape.lists.add(lists)});
    }
    shape.closed = mline->closedMline();
    shape.offsets = kxdbMlineElementOffsets(*style, mline->scale(), mline->justification());
    int elements = 0;
    getElementCount(mline, elements);
    shape.offsets.resize(std::size_t(elements), 0.0);
    shape.startAngle = style->startAngle();
    shape.endAngle = style->endAngle();
    shape.normal = normalized(mline->normal());
    shape.xAxis = planeVectorInWorld(shape.normal, KxGeVector3d(1, 0, 0));
    shape.yAxis = planeVectorInWorld(shape.normal, KxGeVector3d(0, 1, 0));
    return shape;
}

bool writeMlineShape(KxDbMline* mline, MlineShape&& shape)
{
    KxDbMlineImp* imp = KxDbSystemInternals::getImpObject(mline);
    if (!imp)
        return false;
    // The host refuses numbers that are not finite (an edit of a multiline
    // whose elements lie near the largest number): the multiline stays.
    if (imp->setStoredVertices(std::move(shape.vertices), shape.lists) != Kald::eOk) {
        kxutPrintf(L"\nThe multiline %llX is left as it was: the edit would give it numbers beyond the largest.\n",
                   static_cast<unsigned long long>(mline->handle()));
        return false;
    }
    return true;
}

double bisectorAngle(double a, double b)
{
    const double m = (a + b) / 2;
    if (std::abs(a - b) <= kEditTolerance)
        return m + std::numbers::pi / 2;
    return a > b ? m + std::numbers::pi : m;
}

std::vector<double> runsBefore(std::span<const double> list, double d)
{
    if (list.empty())
        return {};
    const auto end =
        std::find_if(list.begin() + 1, list.end(), [d](double v) { return v >= d - kEditTolerance; });
    return std::vector<double>(list.begin(), end);
}

void shiftRuns(std::vector<double>& list, double delta)
{
    if (list.size() < 2)
        return;
    const bool drawnFromStart = std::abs(list[1]) <= kEditTolerance;
    for (std::size_t i = 1; i < list.size(); ++i)
        if (!(i == 1 && drawnFromStart && delta < 0))
            list[i] -= delta;
    std::size_t behind = 1;
    while (behind < list.size() && list[behind] <= kEditTolerance)
        ++behind;
    const std::size_t removed = behind - 1;
    list.erase(list.begin() + 1, list.begin() + std::ptrdiff_t(behind));
    if (removed % 2 == 1)
        list.insert(list.begin() + 1, 0.0);
}

}  // namespace kdml

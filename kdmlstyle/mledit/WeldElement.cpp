#include "mledit/WeldElement.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "KdCmdUtil.h"
#include "mledit/EditGeometry.h"
#include "mledit/MlineAccess.h"
#include "mledit/ViewServices.h"

namespace kdml {

namespace {

// First index from 1 where the weld starts removing breaks.
int forwardStop(const std::vector<double>& list, double d, bool inGap, double t)
{
    for (std::size_t k = 1; k < list.size(); ++k) {
        const double v = list[k];
        if ((k == 1 && std::abs(d - v) <= kEditTolerance) || v > d || (inGap && equalWithin(v, d, t)))
            return int(k);
    }
    return int(list.size());
}

// Last index down to 1 up to which the weld removes breaks; 0 for none.
int backwardStop(const std::vector<double>& list, double d, bool drawn, double t)
{
    for (std::size_t k = list.size(); k-- > 1;)
        if (list[k] < d || (drawn && equalWithin(list[k], d, t)))
            return int(k);
    return 0;
}

// weldElementRuns on an element that gives its point and list at a vertex:
// only the vertices of the segments from one mark to the other are asked for.
template <class Element>
void weldRuns(Element& element, WeldMark a, WeldMark b, double t)
{
    const int nv = element.size();
    if (pointsEqual(a.point, b.point))
        return;
    if (a.segment > b.segment || (a.segment == b.segment && a.distance > b.distance))
        std::swap(a, b);
    WeldMark& p = a;
    WeldMark& q = b;
    if (p.segment + 1 < nv / 2 && pointsEqual(p.point, element.point(p.segment + 1))) {
        ++p.segment;
        p.distance = 0.0;
    }
    if (q.segment != 0 && pointsEqual(q.point, element.point(q.segment))) {
        --q.segment;
        q.distance = pointDistance(element.point(q.segment), q.point);
    }
    if (p.segment < 0 || q.segment >= nv || p.segment > q.segment)
        return;
    std::vector<double>& listP = element.list(p.segment);
    std::vector<double>& listQ = element.list(q.segment);
    if (listP.empty() || listQ.empty())
        return;
    const int i = forwardStop(listP, p.distance, runStateAt(listP, p.distance, true, t), t);
    const int j = backwardStop(listQ, q.distance, runStateAt(listQ, q.distance, false, t), t);

    if (p.segment == q.segment) {
        if (i <= j)
            listP.erase(listP.begin() + i, listP.begin() + j + 1);
        if (listP.size() == 1)
            listP.push_back(0.0);
        return;
    }
    listP.resize(std::size_t(i));
    if (listP.size() == 1)
        listP.push_back(0.0);
    if (j >= 1)
        listQ.erase(listQ.begin() + 1, listQ.begin() + j + 1);
    if (j % 2 == 1)
        listQ.insert(listQ.begin() + 1, 0.0);
    for (int u = p.segment + 1; u < q.segment; ++u) {
        std::vector<double>& list = element.list(u);
        list = {list.front(), 0.0};
    }
}

}  // namespace

void projectMarkForWeld(MlinePick& pick, int k)
{
    if (k == pick.hitElement) {
        pick.markPoint = pick.snapPoint;
        pick.markSegment = pick.hitSegment;
        pick.markDistance = pick.hitDistance;
        pick.markElement = k;
        return;
    }
    if (k < 0 || k >= int(pick.elementLines.size()))
        return;
    const int s = pick.hitSegment;
    const int s2 = pick.closed && s == pick.numVertices - 1 ? 0 : s + 1;
    const ElementLine& line = pick.elementLines[std::size_t(k)];
    const KxGePoint3d& start = line[std::size_t(s)];
    const KxGePoint3d& end = line[std::size_t(s2)];
    const double a = directionAngle(pick.hitPoint, pick.elementLines[std::size_t(pick.hitElement)][std::size_t(s)]);
    const KxGePoint3d across = pick.hitPoint + KxGeVector3d(10 * std::sin(a), -10 * std::cos(a), 0);
    KxGePoint3d x = pick.hitPoint;
    LineXline(pick.hitPoint, across, start, end, x);
    pick.markPoint = x;
    pick.markElement = k;
    pick.markSegment = s;
    if (anglesWithin(kxutAngle(start, x), kxutAngle(start, end), std::numbers::pi / 2) && !pointsEqual(x, start)) {
        pick.markDistance = pointDistance(x, start);
        const double length = pointDistance(start, end);
        if (!(pick.markDistance < length - kEditTolerance)) {
            pick.markDistance = length;
            pick.markPoint = end;
        }
    } else {
        pick.markDistance = 0.0;
        pick.markPoint = start;
    }
}

bool runStateAt(const std::vector<double>& list, double d, bool gap, double t)
{
    int count = 0;
    for (std::size_t k = 1; k < list.size(); ++k) {
        if (list[k] > d && !equalWithin(list[k], d, t))
            break;
        ++count;
    }
    return gap ? count % 2 == 0 : count % 2 == 1;
}

bool markRunState(const MlinePick& pick, bool gap, double t)
{
    std::vector<double> list;
    if (!pick.mline || !getElementParams(pick.mline, list, pick.markSegment, pick.markElement))
        return false;
    return runStateAt(list, pick.markDistance, gap, t);
}

void weldElementRuns(const ElementLine& line, ElementRuns& runs, WeldMark a, WeldMark b, double t)
{
    if (runs.size() != line.size())
        return;
    ElementLineRuns element{line, runs};
    weldRuns(element, a, b, t);
}

void weldElement(MlineEditContext& context, const MlinePick& a, const MlinePick& b)
{
    int elements = 0;
    const int e = a.markElement;
    if (!a.mline || !b.mline || !getElementCount(a.mline, elements) || e < 0 || e >= elements)
        return;
    getPickTolerance(context.pickTolerance);
    ElementListEdit element(a.mline, e);
    weldRuns(element, {a.markPoint, a.markDistance, a.markSegment}, {b.markPoint, b.markDistance, b.markSegment},
             context.pickTolerance);
    element.writeChanged();
}

}  // namespace kdml

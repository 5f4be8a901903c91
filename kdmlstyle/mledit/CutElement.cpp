#include "mledit/CutElement.h"

#include <cmath>
#include <utility>

#include "mledit/EditGeometry.h"
#include "mledit/MlineAccess.h"

namespace kdml {

namespace {

bool near(double a, double b)
{
    return std::abs(a - b) <= kEditTolerance;
}

// First index from 1 whose entry reaches d (within the tolerance); 1 when d
// is 0; the list's length when none does.
int forwardIndex(const std::vector<double>& list, double d)
{
    if (near(d, 0.0))
        return 1;
    for (std::size_t k = 1; k < list.size(); ++k)
        if (list[k] > d || near(list[k], d))
            return int(k);
    return int(list.size());
}

// Last index down to 1 whose entry is below d or within the tolerance of
// it; 0 when none is.
int backwardIndex(const std::vector<double>& list, double d)
{
    for (std::size_t k = list.size(); k-- > 1;)
        if (list[k] < d || near(list[k], d))
            return int(k);
    return 0;
}

void insertAt(std::vector<double>& list, int index, double value)
{
    list.insert(list.begin() + index, value);
}

void eraseRange(std::vector<double>& list, int from, int to)
{
    list.erase(list.begin() + from, list.begin() + to + 1);
}

// cutElementRuns on an element that gives its point and list at a vertex:
// only the vertices of the segments from P to Q are asked for.
template <class Element>
void cutRuns(Element& element, bool closed, KxGePoint3d p, int segP, KxGePoint3d q, int segQ)
{
    const int nv = element.size();
    const int segments = closed ? nv : nv - 1;
    if (pointsEqual(p, q) || nv < 2 || segP < 0 || segQ < 0 || segP >= segments || segQ >= segments)
        return;
    const auto at = [&](int v) { return element.point((v + nv) % nv); };
    double dP = pointDistance(at(segP), p);
    double dQ = pointDistance(at(segQ), q);

    bool swap = segQ < segP;
    if (segP == segQ) {
        const KxGeVector3d along = at(segP + 1) - at(segP);
        const bool pAhead = dot(p - at(segP), along) > kEditTolerance;
        const bool qBehind = dot(q - at(segP), along) < -kEditTolerance;
        swap = dQ < dP - kEditTolerance || (dP < dQ - kEditTolerance && pAhead && qBehind);
    }
    if (swap) {
        std::swap(p, q);
        std::swap(segP, segQ);
        std::swap(dP, dQ);
    }
    int s = segP;
    int t = segQ;
    // A start on the vertex that ends its segment starts the next one; an
    // end on the vertex that starts its segment ends the previous one.
    if (s + 1 < segments && pointsEqual(p, at(s + 1))) {
        ++s;
        dP = 0.0;
    }
    if (t > 0 && pointsEqual(q, at(t))) {
        --t;
        dQ = pointDistance(at(t), q);
    }
    if (s > t)
        return;

    const SegmentPosition posP = segmentPosition(p, at(s), at(s + 1));
    const SegmentPosition posQ = segmentPosition(q, at(t), at(t + 1));
    const bool pOut = posP == SegmentPosition::Outside;
    const bool qOut = posQ == SegmentPosition::Outside;
    if ((pOut && qOut) || (pOut && posQ == SegmentPosition::AtEnd) || (posP == SegmentPosition::AtEnd && qOut))
        return;

    std::vector<double>& listS = element.list(s);
    std::vector<double>& listT = element.list(t);
    if (listS.empty() || listT.empty())
        return;
    int kP = forwardIndex(listS, dP);
    int kQ = backwardIndex(listT, dQ);

    if (s != t) {
        listS.resize(std::size_t(kP));
        if (!pOut && !pointsEqual(p, at(s)))
            listS.push_back(dP);
        if (kQ >= 1)
            eraseRange(listT, 1, kQ);
        if (!qOut && !pointsEqual(q, at(t + 1)))
            insertAt(listT, 1, dQ);
        for (int u = s + 1; u < t; ++u)
            element.list(u).resize(1);
        return;
    }
    std::vector<double>& list = listS;
    if (pOut)
        kP = 1;
    const bool qAtStart = pointsEqual(q, at(t));
    if (!qOut && !qAtStart && kQ % 2 == 1 && !pointsEqual(q, at(t + 1)))
        insertAt(list, kQ + 1, dQ);
    if (!pOut && !qAtStart && kP % 2 == 0) {
        insertAt(list, kP, dP);
        ++kP;
        ++kQ;
    }
    if (kP <= kQ)
        eraseRange(list, kP, kQ);
}

}  // namespace

void cutElementRuns(const ElementLine& line, bool closed, ElementRuns& runs, KxGePoint3d p, int segP, KxGePoint3d q,
                    int segQ)
{
    if (runs.size() != line.size())
        return;
    ElementLineRuns element{line, runs};
    cutRuns(element, closed, p, segP, q, segQ);
}

void cutElement(MlinePick& pick, int e, const KxGePoint3d& p, int segP, const KxGePoint3d& q, int segQ)
{
    int elements = 0;
    if (!getElementCount(pick.mline, elements) || e < 0 || e >= elements)
        return;
    ElementListEdit element(pick.mline, e);
    cutRuns(element, pick.mline->closedMline(), p, segP, q, segQ);
    element.writeChanged();
}

}  // namespace kdml

#include "mledit/MlinePicking.h"

#include <algorithm>
#include <cwchar>
#include <functional>
#include <numbers>

#include "KdCmdUtil.h"
#include "kxdbapi.h"
#include "kxhost.h"
#include "mledit/EditGeometry.h"
#include "mledit/MlineAccess.h"
#include "mledit/ViewServices.h"

namespace kdml {

namespace {

constexpr unsigned kNotMultilineMessage = 4018;

// Opens the pick's multiline (or shares other's), fills its counts and
// element lines and sets the context's tolerance. Returns the pick point in
// world coordinates; false when no multiline could be opened.
bool openPick(MlineEditContext& context, MlinePick& pick, const kxds_name_t& name, const MlinePick* other,
              KxGePoint3d& world)
{
    world = context.pickPoint;
    ucsToWcs(context.pickPoint, world);
    pick.name = name;
    if (other && other->mline && sameEntity(*other, pick)) {
        pick.mline = other->mline;
    } else {
        KxDbObjectId id;
        pick.mline = nullptr;
        if (kxdbGetObjectId(id, name.id) == Kald::eOk)
            kxdbOpenObject(pick.mline, id, KxDb::kForRead);
    }
    if (!pick.mline)
        return false;
    loadPickGeometry(pick, pick.mline);
    getPickTolerance(context.pickTolerance);
    return pick.numVertices >= 2 && pick.numElements >= 1;
}

// Tries segment (i, to next) of every element, then - on a closed
// multiline - the closing segment; hit(i, next, e) decides and records.
void scanSegments(const MlinePick& pick, const std::function<bool(int, int, int)>& hit)
{
    const int n = pick.numVertices;
    for (int i = 0; i + 1 < n; ++i)
        for (int e = 0; e < pick.numElements; ++e)
            if (hit(i, i + 1, e))
                return;
    if (pick.closed)
        for (int e = 0; e < pick.numElements; ++e)
            if (hit(n - 1, 0, e))
                return;
}

bool withinHalfOpen(double f, double a, double b)
{
    return (a <= f && f < b) || (b < f && f <= a);
}

// Whether element e is drawn at distance d along segment i: an odd number
// of the run bounds (the entries after entry 0) are not above d. Entry 0 is
// the distance along the miter to the element line, no distance along the
// segment, so it takes no part, whatever the element's offset.
bool drawnAt(const MlinePick& pick, int i, int e, double d)
{
    std::vector<double> params;
    getElementParams(pick.mline, params, i, e);
    if (params.empty())
        return false;
    const auto firstAbove = std::find_if(params.begin() + 1, params.end(), [d](double v) { return v > d; });
    return (firstAbove - (params.begin() + 1)) % 2 == 1;
}

void setHit(MlinePick& pick, int segment, int element, const KxGePoint3d& point, double distance)
{
    pick.hitSegment = segment;
    pick.hitElement = element;
    pick.hitPoint = point;
    pick.hitDistance = distance;
}

// An open multiline picked off its runs: the pick goes to the end of
// element 0's line that lies within the tolerance along the line, else to
// the nearer end.
void snapToEnd(MlinePick& pick, const KxGePoint3d& world, double tolerance)
{
    const ElementLine& line = pick.elementLines.front();
    const int last = pick.numVertices - 1;
    KxGePoint3d foot;
    PtLnDist(world, line[0], line[1], nullptr, &foot);
    if (displayDistance(line[0], foot) < tolerance)
        return setHit(pick, 0, 0, line[0], 0.0);
    PtLnDist(world, line[last], line[last - 1], nullptr, &foot);
    if (displayDistance(line[last], foot) < tolerance)
        return setHit(pick, last - 1, 0, line[last], pointDistance(line[last], line[last - 1]));
    if (displayDistance(world, line[0]) <= displayDistance(world, line[last]))
        setHit(pick, 0, 0, line[0], 0.0);
    else
        setHit(pick, last - 1, 0, line[last], pointDistance(line[last], line[last - 1]));
}

// The weld pick's test of one coordinate: strictly inside the segment's
// extent, or at or beyond one of its ends and equal to it within t.
bool withinExtent(double f, double a, double b, double t)
{
    const double lo = std::min(a, b);
    const double hi = std::max(a, b);
    return (lo < f && f < hi) || (f <= lo && equalWithin(f, lo, t)) || (f >= hi && equalWithin(f, hi, t));
}

}  // namespace

void loadPickGeometry(MlinePick& pick, KxDbMline* mline)
{
    pick.mline = mline;
    pick.numVertices = mline->numVertices();
    pick.numElements = 0;
    getElementCount(mline, pick.numElements);
    pick.closed = mline->closedMline();
    getVertices(mline, pick.vertices);
    pick.elementLines = buildElementLines(mline);
    // Whatever a scan leaves must name a segment and an element that exist.
    pick.hitSegment = std::clamp(pick.hitSegment, 0, std::max(pick.numVertices - 2, 0));
    pick.hitElement = std::clamp(pick.hitElement, 0, std::max(pick.numElements - 1, 0));
}

bool isMultilineEntity(kxds_name_t& name)
{
    if (name.id[0] == 0)
        return false;
    KxDbObjectId id;
    KxDbObject* object = nullptr;
    if (kxdbGetObjectId(id, name.id) == Kald::eOk
        && kxdbOpenObjectOfClass(object, id, KxDb::kForRead, false, nullptr) == Kald::eOk) {
        const KxDbObjectPtr<KxDbObject> opened(object);
        if (opened->isA() == KxDbMline::desc() || opened->isA()->isDerivedFrom(KxDbMline::desc()))
            return true;
    }
    wchar_t message[KXED_TEXT_SIZE] = {};
    std::wcsncpy(message, kxmdKxResourceString(kNotMultilineMessage, L""), KXED_TEXT_SIZE - 1);
    kxutPrintf(L"%ls", message);
    name = kxds_name_t();
    return false;
}

void pickMultiline(MlineEditContext& context, MlinePick& pick, const kxds_name_t& name, const MlinePick* other)
{
    KxGePoint3d world;
    if (!openPick(context, pick, name, other, world))
        return;
    const double tolerance = context.pickTolerance;
    bool found = false;
    scanSegments(pick, [&](int i, int next, int e) {
        const KxGePoint3d& a = pick.elementLines[std::size_t(e)][std::size_t(i)];
        const KxGePoint3d& b = pick.elementLines[std::size_t(e)][std::size_t(next)];
        KxGePoint3d foot;
        PtLnDist(world, a, b, nullptr, &foot);
        if (!(withinHalfOpen(foot.x, a.x, b.x) || withinHalfOpen(foot.y, a.y, b.y))
            || !(displayDistance(world, foot) < tolerance))
            return false;
        const double d = pointDistance(a, foot);
        if (!drawnAt(pick, i, e, d))
            return false;
        setHit(pick, i, e, foot, d);
        found = true;
        return true;
    });
    if (!found && !pick.closed)
        snapToEnd(pick, world, tolerance);
    pick.markHit();
    context.pickName = kxds_name_t();
}

void pickMultilineForWeld(MlineEditContext& context, MlinePick& pick, const kxds_name_t& name,
                          const MlinePick* other)
{
    KxGePoint3d world;
    if (!openPick(context, pick, name, other, world))
        return;
    const double t = context.pickTolerance;
    pick.snapPoint = pick.hitPoint;
    scanSegments(pick, [&](int i, int next, int e) {
        const KxGePoint3d& a = pick.elementLines[std::size_t(e)][std::size_t(i)];
        const KxGePoint3d& b = pick.elementLines[std::size_t(e)][std::size_t(next)];
        KxGePoint3d foot;
        PtLnDist(world, a, b, nullptr, &foot);
        if (!withinExtent(foot.x, a.x, b.x, t) || !withinExtent(foot.y, a.y, b.y, t)
            || !(displayDistance(world, foot) < t))
            return false;
        pick.hitSegment = i;
        pick.hitElement = e;
        pick.hitPoint = foot;
        pick.snapPoint = foot;
        if (anglesWithin(kxutAngle(a, foot), kxutAngle(a, b), std::numbers::pi / 2) && !pointsEqual(foot, a)) {
            pick.hitDistance = pointDistance(foot, a);
            const double length = pointDistance(a, b);
            if (!(pick.hitDistance < length - kEditTolerance)) {
                pick.hitDistance = length;
                pick.snapPoint = b;
            }
        } else {
            pick.hitDistance = 0.0;
            pick.snapPoint = a;
        }
        return true;
    });
    pick.markPoint = pick.snapPoint;
    pick.markElement = pick.hitElement;
    pick.markSegment = pick.hitSegment;
    pick.markDistance = pick.hitDistance;
    context.pickName = kxds_name_t();
}

}  // namespace kdml

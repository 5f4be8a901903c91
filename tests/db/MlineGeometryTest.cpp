#include "MlineLists.h"
#include "TestMlines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <array>
#include <vector>

#include "kaldo/db/EntityPlane.h"
#include "kxdb.h"

namespace {

constexpr double kTol = 1e-9;

struct Drawing {
    KxDbDatabase db;

    // A style of the given offsets added to the drawing.
    KxDbObjectId addStyle(const wchar_t* name, std::initializer_list<double> offsets,
                          double startAngle = std::numbers::pi / 2, double endAngle = std::numbers::pi / 2)
    {
        return addTestStyle(db, name, offsets, startAngle, endAngle);
    }

    std::unique_ptr<KxDbMline> make(std::initializer_list<KxGePoint3d> points, int justification = Mline::kZero,
                                    double scale = 1.0, KxDbObjectId style = {})
    {
        return makeMline(db, style, points, justification, scale);
    }
};

std::vector<ElementLists> paramsAt(const KxDbMline& m, int v)
{
    KxArray array;
    EXPECT_EQ(m.getParametersAt(v, array), Kald::eOk);
    const auto record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(array));
    return listsOf(record->lists.view());
}

KxGePoint3d elementPoint(const KxDbMline& m, int v, int e)
{
    return m.vertexAt(v) + m.miterAt(v) * paramsAt(m, v)[std::size_t(e)].element[0];
}

// Signed perpendicular distance of p from the line a->b in the plane
// (positive to the left).
double leftOffset(const kaldo::EntityPlane& plane, const KxGePoint3d& a, const KxGePoint3d& b, const KxGePoint3d& p)
{
    const KxGePoint3d pa = plane.toPlane(a), pb = plane.toPlane(b), pp = plane.toPlane(p);
    const double dx = pb.x - pa.x, dy = pb.y - pa.y;
    return (dx * (pp.y - pa.y) - dy * (pp.x - pa.x)) / std::hypot(dx, dy);
}

// Every element point lies at its offset from both segments that meet there.
void expectElementsOnOffsetLines(const KxDbMline& m, const std::vector<double>& offsets)
{
    const kaldo::EntityPlane plane(m.normal());
    const int n = m.numVertices();
    for (int v = 0; v < n; ++v) {
        for (std::size_t e = 0; e < offsets.size(); ++e) {
            const KxGePoint3d p = elementPoint(m, v, int(e));
            if (v + 1 < n || m.closedMline()) {
                EXPECT_NEAR(leftOffset(plane, m.vertexAt(v), m.vertexAt((v + 1) % n), p), offsets[e], kTol)
                    << "vertex " << v << " element " << e << " outgoing";
            }
            if (v > 0 || m.closedMline()) {
                EXPECT_NEAR(leftOffset(plane, m.vertexAt((v + n - 1) % n), m.vertexAt(v), p), offsets[e], kTol)
                    << "vertex " << v << " element " << e << " incoming";
            }
        }
    }
}

void expectVector(const KxGeVector3d& v, double x, double y, double z = 0)
{
    EXPECT_NEAR(v.x, x, kTol);
    EXPECT_NEAR(v.y, y, kTol);
    EXPECT_NEAR(v.z, z, kTol);
}

}  // namespace

TEST(MlineGeometry, StraightLine)
{
    Drawing d;
    const auto mOwner = d.make({{0, 0, 0}, {10, 0, 0}, {20, 0, 0}});
    KxDbMline& m = *mOwner;
    ASSERT_EQ(m.numVertices(), 3);
    for (int v = 0; v < 3; ++v) {
        expectVector(m.axisAt(v), 1, 0);
        expectVector(m.miterAt(v), 0, 1);
        const auto params = paramsAt(m, v);
        ASSERT_EQ(params.size(), 2u);
        EXPECT_NEAR(params[0].element[0], 0.5, kTol);
        EXPECT_NEAR(params[1].element[0], -0.5, kTol);
        EXPECT_EQ(params[0].element.size(), 2u);
        EXPECT_EQ(params[0].element[1], 0.0);
        EXPECT_EQ(params[0].areaFill, params[0].element);
    }
    expectElementsOnOffsetLines(m, {0.5, -0.5});
}

TEST(MlineGeometry, TurnsBisectBothWays)
{
    Drawing d;
    const auto leftOwner = d.make({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    KxDbMline& left = *leftOwner;
    const double h = std::sqrt(0.5);
    expectVector(left.axisAt(1), 0, 1);
    expectVector(left.axisAt(2), 0, 1);  // the end keeps the previous axis
    expectVector(left.miterAt(1), -h, h);
    EXPECT_NEAR(paramsAt(left, 1)[0].element[0], 0.5 * std::sqrt(2.0), kTol);
    const KxGePoint3d inner = elementPoint(left, 1, 0);
    EXPECT_NEAR(inner.x, 9.5, kTol);
    EXPECT_NEAR(inner.y, 0.5, kTol);
    expectElementsOnOffsetLines(left, {0.5, -0.5});

    const auto rightOwner = d.make({{0, 0, 0}, {10, 0, 0}, {10, -10, 0}, {30, -12, 0}});
    KxDbMline& right = *rightOwner;
    expectVector(right.miterAt(1), h, h);
    expectElementsOnOffsetLines(right, {0.5, -0.5});
}

TEST(MlineGeometry, ClosedMultilineBisectsAtFirstAndLastVertex)
{
    Drawing d;
    const auto mOwner = d.make({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    KxDbMline& m = *mOwner;
    ASSERT_EQ(m.setClosedMline(true), Kald::eOk);
    const double h = std::sqrt(0.5);
    expectVector(m.miterAt(0), h, h);
    expectVector(m.miterAt(3), h, -h);
    expectVector(m.axisAt(3), 0, -1);  // the closing segment
    const KxGePoint3d p = elementPoint(m, 3, 0);
    EXPECT_NEAR(p.x, 0.5, kTol);
    EXPECT_NEAR(p.y, 9.5, kTol);
    expectElementsOnOffsetLines(m, {0.5, -0.5});

    KxGePoint3d last;
    ASSERT_EQ(m.removeLastSeg(last), Kald::eOk);
    EXPECT_EQ(last.y, 10.0);
    EXPECT_TRUE(m.closedMline());
    ASSERT_EQ(m.removeLastSeg(last), Kald::eOk);
    EXPECT_FALSE(m.closedMline());  // two vertices cannot stay closed
}

TEST(MlineGeometry, ScaleAndJustificationPlaceElements)
{
    Drawing d;
    const KxDbObjectId three = d.addStyle(L"THREE", {1.0, 0.2, -0.6});
    KxDbObjectPtr<KxDbMlineStyle> style(three, KxDb::kForRead);
    const std::vector<std::vector<double>> expected = {{0, -1.6, -3.2}, {1.6, 0, -1.6}, {3.2, 1.6, 0}};
    for (int just = 0; just < 3; ++just) {
        const std::vector<double> offsets = kxdbMlineElementOffsets(*style, 2.0, just);
        ASSERT_EQ(offsets.size(), 3u);
        // A negative scale turns every offset about the justification line.
        const std::vector<double> turned = kxdbMlineElementOffsets(*style, -2.0, just);
        ASSERT_EQ(turned.size(), 3u);
        for (std::size_t e = 0; e < 3; ++e) {
            EXPECT_NEAR(offsets[e], expected[std::size_t(just)][e], kTol) << "justification " << just;
            EXPECT_NEAR(turned[e], -expected[std::size_t(just)][e], kTol) << "justification " << just;
        }
    }
    style.close();

    for (int just = 0; just < 3; ++just) {
        const auto mOwner = d.make({{0, 0, 0}, {5, 5, 0}, {12, 3, 0}}, just, 2.0, three);
        KxDbMline& m = *mOwner;
        expectElementsOnOffsetLines(m, expected[std::size_t(just)]);
    }

    // Changing scale or justification afterwards rebuilds the same way.
    const auto mOwner = d.make({{0, 0, 0}, {5, 5, 0}, {12, 3, 0}}, Mline::kTop, 1.0, three);
    KxDbMline& m = *mOwner;
    m.setScale(2.0);
    m.setJustification(Mline::kBottom);
    expectElementsOnOffsetLines(m, expected[2]);
    m.setStyle(d.db.cmlstyleID());
    expectElementsOnOffsetLines(m, {2.0, 0.0});
}

TEST(MlineGeometry, PointsAndScalesThatOverflowAreRefused)
{
    Drawing d;
    const KxDbObjectId wide = d.addStyle(L"WIDE", {4.0, -4.0});
    const auto mOwner = d.make({{0, 0, 0}, {10, 0, 0}}, Mline::kZero, 1.0, wide);
    KxDbMline& m = *mOwner;
    // Lists of 4e308 keep the scale there was.
    EXPECT_EQ(m.setScale(1e308), Kald::eInvalidInput);
    EXPECT_EQ(m.scale(), 1.0);
    ASSERT_EQ(m.setScale(1e307), Kald::eOk);
    // A turn back so sharp that the miter of 4e307 overflows.
    EXPECT_EQ(m.appendSeg({0, 1e-3, 0}), Kald::eInvalidInput);
    ASSERT_EQ(m.appendSeg({10, 10, 0}), Kald::eOk);
    EXPECT_EQ(m.moveVertexAt(2, {0, 1e-3, 0}), Kald::eInvalidInput);
    ASSERT_EQ(m.numVertices(), 3);
    EXPECT_EQ(m.vertexAt(2).y, 10.0);
    ASSERT_EQ(d.db.setCmlstyleID(wide), Kald::eOk);
    EXPECT_EQ(d.db.setCmlscale(1e308), Kald::eOutOfRange);
    EXPECT_EQ(d.db.setCmlscale(1e307), Kald::eOk);
    for (int v = 0; v < m.numVertices(); ++v)
        for (const ElementLists& lists : paramsAt(m, v))
            EXPECT_TRUE(std::isfinite(lists.element[0])) << "vertex " << v;

    // A style whose elements lie further apart than the largest number, and
    // stored values that are not finite: refused, and the multiline keeps
    // what it had, to the bit.
    const KxDbObjectId huge = d.addStyle(L"HUGE", {1e308, 0.0, -1e308});
    const KxDbObjectId style = m.style();
    const std::vector<ElementLists> lists = paramsAt(m, 1);
    const KxGeVector3d miter = m.miterAt(1);
    EXPECT_EQ(m.setStyle(huge), Kald::eInvalidInput);
    EXPECT_EQ(m.style(), style);
    EXPECT_EQ(paramsAt(m, 1), lists);
    const double inf = std::numeric_limits<double>::infinity();
    KxArray changed;
    m.getParametersAt(1, changed);
    const auto record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(changed));
    record->lists.setAreaFill(1, std::array{record->lists.areaFill(1)[0], inf});
    EXPECT_EQ(m.setParametersAt(1, changed), Kald::eInvalidInput);
    KxDbMlineImp* imp = KxDbSystemInternals::getImpObject(&m);
    std::vector<KxDbMlineVertex> stored;
    KxDbMlineListStore storedLists;
    for (int v = 0; v < m.numVertices(); ++v)
        stored.push_back({m.vertexAt(v), m.axisAt(v), m.miterAt(v), storedLists.add(m.parametersAt(v))});
    stored[1].miter.x = inf;
    EXPECT_EQ(imp->setStoredVertices(stored, storedLists), Kald::eInvalidInput);
    stored[1].miter = miter;
    stored[2].lists.elements += 100;
    EXPECT_EQ(imp->setStoredVertices(stored, storedLists), Kald::eInvalidInput) << "lists beyond the store";
    stored[2].lists.elements -= 100;
    stored[2].lists = storedLists.add(record->lists.view());
    EXPECT_EQ(imp->setStoredVertices(stored, storedLists), Kald::eInvalidInput);
    EXPECT_EQ(imp->appendSegments({{0, 0, 0}, {inf, 0, 0}, {1, 1, 0}}), Kald::eInvalidInput);
    EXPECT_EQ(imp->appendSeg({{0, 0, 1}, {0, 0, 1}, {0, inf, 1}}, false), Kald::eInvalidInput);
    EXPECT_EQ(paramsAt(m, 1), lists);
    EXPECT_EQ(m.miterAt(1).x, miter.x);
    EXPECT_EQ(m.vertexAt(1).x, 10.0);
}

TEST(MlineGeometry, StylesHoldOnlyFiniteValuesAndAtMostTheirLimitOfElements)
{
    KxDbMlineStyle style;
    EXPECT_EQ(style.setStartAngle(std::numeric_limits<double>::infinity()), Kald::eInvalidInput);
    // Finite in radians, but not in degrees as files carry it.
    EXPECT_EQ(style.setEndAngle(1e308), Kald::eInvalidInput);
    EXPECT_EQ(style.startAngle(), std::numbers::pi / 2);
    EXPECT_EQ(style.endAngle(), std::numbers::pi / 2);
    ASSERT_EQ(style.setStartAngle(1e306), Kald::eOk);
    int index = 0;
    EXPECT_EQ(style.addElement(index, std::nan(""), KxCmColor(), {}), Kald::eInvalidInput);
    for (int e = 0; e < kxdbMaxMlineStyleElements; ++e)
        ASSERT_EQ(style.addElement(index, double(e), KxCmColor(), {}), Kald::eOk);
    EXPECT_EQ(style.addElement(index, 0.5, KxCmColor(), {}), Kald::eOutOfRange);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(style.setElement(0, -std::numeric_limits<double>::infinity(), KxCmColor(), {}), Kald::eInvalidInput);
    EXPECT_EQ(style.numElements(), kxdbMaxMlineStyleElements);
}

TEST(MlineGeometry, OpenEndsFollowCapAngles)
{
    Drawing d;
    const double endAngle = std::numbers::pi / 3;
    const KxDbObjectId style = d.addStyle(L"SLANTED", {0.5, -0.5}, std::numbers::pi / 2, endAngle);
    const auto mOwner = d.make({{0, 0, 0}, {10, 0, 0}}, Mline::kZero, 1.0, style);
    KxDbMline& m = *mOwner;
    expectVector(m.miterAt(0), 0, 1);
    expectVector(m.miterAt(1), std::cos(endAngle), std::sin(endAngle));
    EXPECT_NEAR(paramsAt(m, 1)[0].element[0], 0.5 / std::sin(endAngle), kTol);
    EXPECT_NEAR(paramsAt(m, 1)[1].element[0], -0.5 / std::sin(endAngle), kTol);

    // A cap angle of 0 would divide by zero: the small turn keeps it finite.
    const KxDbObjectId flat = d.addStyle(L"FLAT", {0.5, -0.5}, 0.0);
    const auto fOwner = d.make({{0, 0, 0}, {10, 0, 0}}, Mline::kZero, 1.0, flat);
    KxDbMline& f = *fOwner;
    EXPECT_NEAR(paramsAt(f, 0)[0].element[0], 0.5 / std::sin(0.005), kTol);
}

TEST(MlineGeometry, TiltedNormalWorksInItsPlane)
{
    Drawing d;
    const KxGeVector3d normal = normalized(KxGeVector3d(0, -1, 1));
    const kaldo::EntityPlane plane(normal);
    KxDbMline m;
    m.setDatabaseDefaults(&d.db);
    m.setJustification(Mline::kZero);
    m.setNormal(normal);
    for (const KxGePoint3d& p : {KxGePoint3d(0, 0, 2), KxGePoint3d(4, 0, 2), KxGePoint3d(4, 3, 2)})
        m.appendSeg(plane.toWorld(p));
    expectElementsOnOffsetLines(m, {0.5, -0.5});
    const KxGeVector3d axis = plane.toPlane(m.axisAt(1));
    EXPECT_NEAR(axis.x, 0, kTol);
    EXPECT_NEAR(axis.y, 1, kTol);
    EXPECT_NEAR(dot(m.miterAt(1), normal), 0, kTol);  // miters lie in the plane
    EXPECT_NEAR(plane.toPlane(elementPoint(m, 1, 0)).z, 2, kTol);
}

TEST(MlineGeometry, EditsKeepRunsOfUntouchedSegments)
{
    Drawing d;
    const auto mOwner = d.make({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {20, 10, 0}});
    KxDbMline& m = *mOwner;
    {
        KxArray array;
        m.getParametersAt(0, array);
        KxDbMlineVertexParams* record = KxDbMlineVertexParams::fromArray(array);
        EXPECT_EQ(record->refCount(), 1);  // ours alone: a copy of the vertex's lists
        record->lists.setElement(0, std::array{0.5, 1.0, 2.0, 4.0});
        ASSERT_EQ(m.setParametersAt(0, array), Kald::eOk);
        record->release();
    }
    const std::vector<double> runs{0.5, 1.0, 2.0, 4.0};
    m.moveVertexAt(3, {25, 12, 0});
    EXPECT_EQ(paramsAt(m, 0)[0].element, runs);
    KxGePoint3d last;
    m.removeLastSeg(last);
    EXPECT_EQ(last.x, 25.0);
    EXPECT_EQ(paramsAt(m, 0)[0].element, runs);
    m.appendSeg({30, 10, 0});
    EXPECT_EQ(paramsAt(m, 0)[0].element, runs);
    expectElementsOnOffsetLines(m, {0.5, -0.5});

    // Moving vertex 1 changes segment 0: its lists start afresh.
    m.moveVertexAt(1, {10, 2, 0});
    EXPECT_EQ(paramsAt(m, 0)[0].element.size(), 2u);
    expectElementsOnOffsetLines(m, {0.5, -0.5});
    EXPECT_EQ(m.moveVertexAt(9, {}), Kald::eInvalidIndex);
}

// An edit recomputes only the vertices it touches; after any sequence of
// moves, appends, removals and closings the multiline must equal one built
// afresh from its final points.
TEST(MlineGeometry, EditsAgreeWithBuildingAfresh)
{
    Drawing d;
    const KxDbObjectId style = d.addStyle(L"Three", {1.0, 0.25, -0.75}, std::numbers::pi / 3, 2.0);
    const auto edited = d.make({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, Mline::kTop, 2.0, style);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> coordinate(-50.0, 50.0);
    for (int step = 0; step < 400; ++step) {
        const int n = edited->numVertices();
        const KxGePoint3d somewhere(coordinate(random), coordinate(random), 0);
        switch (random() % 4) {
        case 0: edited->moveVertexAt(int(random() % unsigned(n)), somewhere); break;
        case 1: edited->appendSeg(somewhere); break;
        case 2:
            if (n > 3) {
                KxGePoint3d removed;
                edited->removeLastSeg(removed);
            }
            break;
        default: edited->setClosedMline(!edited->closedMline() && n > 2); break;
        }
        const auto afresh = d.make({}, Mline::kTop, 2.0, style);
        for (int v = 0; v < edited->numVertices(); ++v)
            afresh->appendSeg(edited->vertexAt(v));
        afresh->setClosedMline(edited->closedMline());
        for (int v = 0; v < edited->numVertices(); ++v) {
            SCOPED_TRACE(testing::Message() << "step " << step << " vertex " << v);
            const KxGeVector3d axis = afresh->axisAt(v), miter = afresh->miterAt(v);
            expectVector(edited->axisAt(v), axis.x, axis.y, axis.z);
            expectVector(edited->miterAt(v), miter.x, miter.y, miter.z);
            const auto want = paramsAt(*afresh, v), got = paramsAt(*edited, v);
            ASSERT_EQ(got.size(), want.size());
            for (std::size_t e = 0; e < want.size(); ++e) {
                ASSERT_EQ(got[e].element.size(), want[e].element.size());
                for (std::size_t k = 0; k < want[e].element.size(); ++k)
                    EXPECT_NEAR(got[e].element[k], want[e].element[k], 1e-10);
            }
        }
    }
}

TEST(MlineGeometry, CopiesAndRawAccess)
{
    Drawing d;
    const auto mOwner = d.make({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    KxDbMline& m = *mOwner;
    m.setSupressEndCaps(true);
    KxDbMline copy;
    ASSERT_EQ(copy.copyFrom(&m), Kald::eOk);
    EXPECT_EQ(copy.numVertices(), 3);
    EXPECT_TRUE(copy.supressEndCaps());
    EXPECT_EQ(copy.style(), m.style());
    KxDbLine line;
    EXPECT_EQ(copy.copyFrom(&line), Kald::eWrongObjectType);

    // A changed record set on the original does not reach the copy.
    KxArray array;
    m.getParametersAt(1, array);
    KxDbMlineVertexParams::fromArray(array)->lists.setElement(0, std::array{9.0});
    m.setParametersAt(1, array);
    KxDbMlineVertexParams::fromArray(array)->release();
    EXPECT_EQ(paramsAt(m, 1)[0].element, std::vector<double>{9.0});
    EXPECT_EQ(paramsAt(copy, 1)[0].element.size(), 2u);  // the copy has lists of its own

    KxDbMlineImp* imp = KxDbSystemInternals::getImpObject(&m);
    ASSERT_NE(imp, nullptr);
    EXPECT_EQ(KxDbSystemInternals::getImpObject(&line), nullptr);
    EXPECT_EQ(imp->appendSegments({{1, 1, 1}}), Kald::eInvalidInput);
    ASSERT_EQ(imp->appendSegments({{1, 1, 1}, {2, 2, 2}, {3, 3, 3}}), Kald::eOk);
    EXPECT_EQ(m.vertexAt(2).z, 3.0);
    expectVector(m.axisAt(0), 1, 0);  // nothing recomputed
    ASSERT_EQ(imp->appendSeg({{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}, false), Kald::eOk);
    expectVector(m.miterAt(1), 0, 0, 1);
    expectVector(m.axisAt(1), 0, 1);
}

// Interchange with an independent DXF reader (Debian's ezdxf, run by the
// system's Python): it reads what we write without complaint and with the
// same multiline geometry and flags, as our own reader does with every
// value; what it writes we read and save without loss.
#include "DxfText.h"
#include "MlineLists.h"
#include "TestMlines.h"
#include "TreePaths.h"

#include "kaldo/dxf/TablesSection.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <filesystem>

namespace {

// Runs one of the scripts beside this test; its standard output.
QByteArray runPython(const char* script, const QStringList& args)
{
    QProcess python;
    python.start("/usr/bin/python3", QStringList{sourceFile(std::filesystem::path("tests/dxf") / script)} + args);
    python.waitForFinished(120000);
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return python.readAllStandardOutput();
}

QJsonObject runPythonJson(const char* script, const QStringList& args)
{
    return QJsonDocument::fromJson(runPython(script, args)).object();
}

std::vector<double> numbers(const QJsonArray& array)
{
    std::vector<double> values;
    for (const QJsonValue& v : array)
        values.push_back(v.toDouble());
    return values;
}

void expectNear(const std::vector<double>& a, const std::vector<double>& b)
{
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        EXPECT_NEAR(a[i], b[i], 1e-12);
}

KxDbObjectId addStyle(KxDbDatabase& db, const wchar_t* name, std::initializer_list<double> offsets)
{
    return addTestStyle(db, name, offsets, std::numbers::pi / 2, std::numbers::pi / 2, [](KxDbMlineStyle& style) {
        style.setFilled(true);
        style.setStartRoundCap(true);
    });
}

}  // namespace

// Every modelled value, flag and handle that we write reads the same in
// ezdxf and in our own reader, and the file read back is written again to
// the same bytes.
TEST(DxfInterop, FilesWeWriteReadTheSameInEzdxfAndInOurReader)
{
    KxDbDatabase db;
    const KxDbObjectId four = addStyle(db, L"FOUR", {0.75, 0.25, -0.25, -0.75});
    db.setCmljust(2);
    db.setCmlscale(12.5);
    db.setMeasurement(1);
    db.setDimzin(8);
    // Each flag set on one multiline and clear on another; the last has no
    // vertices.
    std::vector<KxDbMline*> mlines;
    for (int i = 0; i < 5; ++i) {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        if (i % 2)
            mline->setStyle(four);
        mline->setScale(1 + i * 0.5);
        mline->setJustification(i % 3);
        if (i < 4)
            for (const KxGePoint3d& p : {KxGePoint3d(0, 0), KxGePoint3d(10, i), KxGePoint3d(12, 7), KxGePoint3d(-3, 5)})
                mline->appendSeg(p);
        mline->setClosedMline(i >= 2);
        mline->setSupressStartCaps(i % 2 || i == 4);
        mline->setSupressEndCaps(i == 1 || i >= 2);
        db.addToCurrentSpace(mline);
        mlines.push_back(mline);
        mline->close();
    }
    db.setCmlstyleID(four);
    // The other modelled entities, two in true colours.
    auto* arc = addEntity(db, new KxDbArc({1, 1, 0}, 2.5, 0.3, 2 * std::numbers::pi / 3));
    arc->upgradeOpen();
    KxCmColor orange;
    orange.setRGB(255, 128, 0);
    arc->setColor(orange);
    arc->close();
    auto* circle = addEntity(db, new KxDbCircle({-4, 5, 6}, 0.125));
    circle->upgradeOpen();
    circle->setNormal({0, 0.6, 0.8});
    circle->close();
    auto* line = addEntity(db, new KxDbLine({1.25, -2, 0.1}, {1e-7, 3e12, 0}));
    line->upgradeOpen();
    KxCmColor red;
    red.setRGB(200, 10, 30);
    line->setColor(red);
    line->close();
    auto* pline = new KxDbPolyline;
    pline->setVertices({{0, 0, 0.1, 0.2, 0.5}, {3, 0, 0, 0, 0}, {3, 3, 0, 0, -1}});
    pline->setClosed(true);
    pline->setElevation(2);
    addEntity(db, pline);
    // Broken runs as the editing tools leave them.
    KxArray params;
    mlines[1]->getParametersAt(1, params);
    KxDbMlineVertexParams* record = KxDbMlineVertexParams::fromArray(params);
    record->lists.setElement(2, std::array{record->lists.element(2)[0], 0.5, 2.5, 4.0});
    record->lists.setAreaFill(1, std::array{record->lists.areaFill(1)[0]});
    mlines[1]->setParametersAt(1, params);
    record->release();

    QTemporaryDir dir;
    const std::filesystem::path path = dir.filePath("ours.dxf").toStdString();
    kaldo::dxf::KeptSections kept;
    kaldo::dxf::saveDxfFile(path, db, kept);
    const QJsonObject result = runPythonJson("ezdxf_mlines.py", {QString::fromStdString(path.string())});
    EXPECT_EQ(result["errors"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    EXPECT_EQ(result["fixes"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    const QJsonArray read = result["mlines"].toArray();
    ASSERT_EQ(read.size(), 5);
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        const KxDbMline& ours = *mlines[std::size_t(i)];
        const QJsonObject theirs = read[i].toObject();
        EXPECT_EQ(theirs["handle"].toString().toStdWString(), ours.handleText());
        EXPECT_EQ(theirs["style"].toString(), i % 2 ? "FOUR" : "STANDARD");
        EXPECT_EQ(theirs["flags"].toInt(), (i < 4 ? 1 : 0) | (i >= 2 ? 2 : 0) | (i % 2 || i == 4 ? 4 : 0)
                                               | (i == 1 || i >= 2 ? 8 : 0));
        EXPECT_EQ(theirs["scale"].toDouble(), ours.scale());
        EXPECT_EQ(theirs["justification"].toInt(), ours.justification());
        const QJsonArray vertices = theirs["vertices"].toArray();
        ASSERT_EQ(vertices.size(), ours.numVertices());
        for (int v = 0; v < ours.numVertices(); ++v) {
            const QJsonObject vertex = vertices[v].toObject();
            const KxGePoint3d p = ours.vertexAt(v);
            const KxGeVector3d d = ours.axisAt(v), m = ours.miterAt(v);
            expectNear(numbers(vertex["location"].toArray()), {p.x, p.y, p.z});
            expectNear(numbers(vertex["direction"].toArray()), {d.x, d.y, d.z});
            expectNear(numbers(vertex["miter"].toArray()), {m.x, m.y, m.z});
            const auto& elements = listsOf(ours.parametersAt(v));
            ASSERT_EQ(vertex["element"].toArray().size(), qsizetype(elements.size()));
            for (std::size_t e = 0; e < elements.size(); ++e) {
                expectNear(numbers(vertex["element"].toArray()[qsizetype(e)].toArray()), elements[e].element);
                expectNear(numbers(vertex["fill"].toArray()[qsizetype(e)].toArray()), elements[e].areaFill);
            }
        }
    }
    EXPECT_EQ(result["cmlstyle"].toString(), "FOUR");

    // Our reader gives every value back to the bit.
    const std::string text = toDxfText(db, kept);
    kaldo::dxf::DxfDrawing back = fromDxfText(text);
    KxDbDatabase& db2 = *back.database;
    const auto same = [](const auto& a, const auto& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        const KxDbMline* a = mlines[std::size_t(i)];
        const KxDbMline* b = firstEntity<KxDbMline>(db2, i);
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->handle(), a->handle());
        EXPECT_EQ(b->closedMline(), a->closedMline());
        EXPECT_EQ(b->supressStartCaps(), a->supressStartCaps());
        EXPECT_EQ(b->supressEndCaps(), a->supressEndCaps());
        EXPECT_EQ(b->scale(), a->scale());
        EXPECT_EQ(b->justification(), a->justification());
        EXPECT_EQ(db2.peekObject(b->style())->handle(), db.peekObject(a->style())->handle());
        ASSERT_EQ(b->numVertices(), a->numVertices());
        for (int v = 0; v < a->numVertices(); ++v) {
            EXPECT_TRUE(same(b->vertexAt(v), a->vertexAt(v))) << v;
            EXPECT_TRUE(same(b->axisAt(v), a->axisAt(v))) << v;
            EXPECT_TRUE(same(b->miterAt(v), a->miterAt(v))) << v;
            EXPECT_EQ(listsOf(b->parametersAt(v)), listsOf(a->parametersAt(v))) << v;
        }
    }
    const auto* line2 = firstEntity<KxDbLine>(db2);
    ASSERT_NE(line2, nullptr);
    EXPECT_EQ(line2->handle(), line->handle());
    EXPECT_TRUE(same(line2->startPoint(), line->startPoint()));
    EXPECT_TRUE(same(line2->endPoint(), line->endPoint()));
    EXPECT_TRUE(line2->color() == red);
    const auto* arc2 = firstEntity<KxDbArc>(db2);
    ASSERT_NE(arc2, nullptr);
    EXPECT_NEAR(arc2->startAngle(), 0.3, 1e-13);
    EXPECT_NEAR(arc2->endAngle(), 2 * std::numbers::pi / 3, 1e-13);
    EXPECT_EQ(arc2->radius(), 2.5);
    EXPECT_TRUE(arc2->color() == orange);
    const auto* circle2 = firstEntity<KxDbCircle>(db2);
    ASSERT_NE(circle2, nullptr);
    EXPECT_TRUE(same(circle2->normal(), circle->normal()));
    EXPECT_TRUE(same(circle2->center(), circle->center()));
    EXPECT_EQ(circle2->radius(), 0.125);
    const auto* pline2 = firstEntity<KxDbPolyline>(db2);
    ASSERT_NE(pline2, nullptr);
    EXPECT_EQ(pline2->vertices(), pline->vertices());
    EXPECT_TRUE(pline2->isClosed());
    EXPECT_EQ(pline2->elevation(), 2);
    EXPECT_EQ(db2.peekObject(db2.cmlstyleID())->handle(), db.peekObject(four)->handle());
    EXPECT_EQ(db2.cmljust(), 2);
    EXPECT_EQ(db2.cmlscale(), 12.5);
    EXPECT_EQ(db2.measurement(), 1);
    EXPECT_EQ(db2.dimzin(), 8);
    EXPECT_EQ(db2.handseed(), db.handseed());
    EXPECT_EQ(toDxfText(back), text);
}

TEST(DxfInterop, FilesEzdxfWritesSurviveOurOpenAndSave)
{
    QTemporaryDir dir;
    const QString theirs = dir.filePath("theirs.dxf");
    const QString ours = dir.filePath("ours.dxf");
    runPython("ezdxf_write.py", {theirs});

    kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(theirs.toStdString());
    KxDbDatabase& db = *drawing.database;
    // The modelled entities are ours to work with; the others are kept.
    ASSERT_NE(firstEntity<KxDbMline>(db, 1), nullptr);
    const KxDbMline* closed = firstEntity<KxDbMline>(db);
    EXPECT_TRUE(closed->closedMline());
    EXPECT_EQ(listsOf(closed->parametersAt(0)).size(), 3u);
    EXPECT_TRUE(closed->color().isByColor());
    EXPECT_EQ(closed->color().color() & 0xFFFFFF, 0x336699u);
    EXPECT_NE(firstEntity<KxDbPolyline>(db), nullptr);
    EXPECT_NE(firstEntity<KxDbCircle>(db), nullptr);
    int unmodelled = 0;
    for (KxDbObjectId id : db.objectIds())
        unmodelled += KxDbUnmodelledEntity::cast(db.peekObject(id)) ? 1 : 0;
    EXPECT_GE(unmodelled, 4);  // text, spline, hatch, block reference, ...
    // The text styles' fonts, by name in capitals, for the renderer.
    const std::map<std::string, std::string> fonts = kaldo::dxf::textStyleFonts(drawing.kept);
    EXPECT_EQ(fonts.at("STANDARD"), "txt");
    EXPECT_EQ(fonts.at("OPENSANS"), "OpenSans-Regular.ttf");

    kaldo::dxf::saveDxfFile(ours.toStdString(), db, drawing.kept);
    const QJsonObject result = runPythonJson("ezdxf_compare.py", {theirs, ours});
    EXPECT_EQ(result["errors"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    EXPECT_EQ(result["fixes"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    EXPECT_EQ(result["differences"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    EXPECT_GT(result["records"].toInt(), 50);
}

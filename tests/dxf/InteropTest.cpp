// Interchange with an independent DXF reader (Debian's ezdxf, run by the
// system's Python): it reads what we write without complaint and with the
// same multiline geometry, and what it writes we read and save without loss.
#include "DxfText.h"
#include "TestMlines.h"
#include "MlineLists.h"

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
    python.start("/usr/bin/python3", QStringList{QString(KALDO_SOURCE_DIR "/tests/dxf/") + script} + args);
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

TEST(DxfInterop, FilesWeWriteReadTheSameInEzdxf)
{
    KxDbDatabase db;
    const KxDbObjectId four = addStyle(db, L"FOUR", {0.75, 0.25, -0.25, -0.75});
    std::vector<KxDbMline*> mlines;
    for (int i = 0; i < 4; ++i) {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        if (i % 2)
            mline->setStyle(four);
        mline->setScale(1 + i * 0.5);
        mline->setJustification(i % 3);
        for (const KxGePoint3d& p : {KxGePoint3d(0, 0), KxGePoint3d(10, i), KxGePoint3d(12, 7), KxGePoint3d(-3, 5)})
            mline->appendSeg(p);
        mline->setClosedMline(i >= 2);
        db.addToCurrentSpace(mline);
        mlines.push_back(mline);
        mline->close();
    }
    // The other modelled entities, one in a true colour.
    auto* arc = addEntity(db, new KxDbArc({1, 1, 0}, 2, 0.5, 2.5));
    arc->upgradeOpen();
    KxCmColor orange;
    orange.setRGB(255, 128, 0);
    arc->setColor(orange);
    arc->close();
    addEntity(db, new KxDbCircle({4, 4, 0}, 1.5));
    addEntity(db, new KxDbLine({0, 0, 0}, {7, 3, 0}));
    auto* pline = new KxDbPolyline;
    pline->setVertices({{0, 0, 0, 0, 0.5}, {3, 0, 0.1, 0.2, 0}, {3, 3, 0, 0, 0}});
    pline->setClosed(true);
    addEntity(db, pline);
    // Broken runs as the editing tools leave them.
    KxArray params;
    mlines[1]->getParametersAt(1, params);
    KxDbMlineVertexParams* record = KxDbMlineVertexParams::fromArray(params);
    record->lists.setElement(2, std::array{record->lists.element(2)[0], 0.5, 2.5, 4.0});
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
    ASSERT_EQ(read.size(), 4);
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const KxDbMline& ours = *mlines[std::size_t(i)];
        const QJsonObject theirs = read[i].toObject();
        EXPECT_EQ(theirs["handle"].toString().toStdWString(), ours.handleText());
        EXPECT_EQ(theirs["style"].toString(), i % 2 ? "FOUR" : "STANDARD");
        EXPECT_EQ(theirs["flags"].toInt(), 1 | (i >= 2 ? 2 : 0));
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

TEST(DxfInterop, OldVersionDrawingsAreReadAndSavedInTheCurrentOne)
{
    QTemporaryDir dir;
    const QString old = dir.filePath("old.dxf");
    runPython("ezdxf_write.py", {old, "R12"});
    kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(old.toStdString());
    KxDbDatabase& db = *drawing.database;
    const KxDbLine* line = firstEntity<KxDbLine>(db);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->endPoint().y, 4);
    EXPECT_NE(firstEntity<KxDbCircle>(db), nullptr);
    EXPECT_NE(firstEntity<KxDbUnmodelledEntity>(db), nullptr);
    KxDbDictionary* styles = nullptr;
    ASSERT_EQ(db.getMLStyleDictionary(styles, KxDb::kForRead), Kald::eOk);
    EXPECT_TRUE(styles->has(kxdbStandardStyleName));
    styles->close();

    const QString saved = dir.filePath("saved.dxf");
    kaldo::dxf::saveDxfFile(saved.toStdString(), db, drawing.kept);
    const QJsonObject result = runPythonJson("ezdxf_mlines.py", {saved});
    EXPECT_EQ(result["errors"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    EXPECT_EQ(result["fixes"].toArray().size(), 0) << QJsonDocument(result).toJson().toStdString();
    kaldo::dxf::DxfDrawing again = kaldo::dxf::readDxfFile(saved.toStdString());
    EXPECT_EQ(again.kept.version, "AC1015");
    EXPECT_EQ(firstEntity<KxDbLine>(*again.database)->handle(), line->handle());
}

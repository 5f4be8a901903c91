// EXPLODE through the real binary: the gallery's multilines (line, outer
// and inner arc caps, joints, fills, a dashed element across bends) and
// multilines after -MLEDIT's crosses, cuts and weld become lines, arcs and
// hatches that ezdxf reads without any multiline, audits clean and finds
// within the same extents, and that draw the same picture within a pixel;
// exploded copies saved by SAVEAS and --save-exploded hold the same, in
// 2000 and in R12 (fills as SOLIDs), whose copy read back draws the same
// picture; R12 copies keep what R12 holds and name what they leave out.
#include "EzdxfReport.h"
#include "FileText.h"
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QJsonArray>
#include <QStringList>

#include <cmath>
#include <sstream>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

std::string galleryText(const char* name)
{
    return fileText(sourceDir() / "docs/gallery" / name);
}

QString qs(const std::string& path)
{
    return QString::fromStdString(path);
}

// Runs kaldo with these arguments and exports the drawing as the picture
// the comparisons use.
int runAndExport(const KaldoProcess& kaldo, const QStringList& args, const std::string& picture)
{
    return kaldo.runScript("", args + QStringList{"--export", qs(picture), "--size", "1200"}).exitCode;
}

// The gallery's styles, then its caps drawn and saved as drawn; the saved
// drawing's text.
std::string drawnCaps(const KaldoProcess& kaldo, const std::string& drawn)
{
    kaldo.writeFile("gallery.mln", galleryText("gallery.mln"));
    EXPECT_EQ(kaldo.runScript(galleryText("caps.scr"), {"--save", qs(drawn)}).exitCode, 0);
    return fileText(drawn);
}

bool near(QRgb a, QRgb b)
{
    constexpr int kChannel = 40;
    return std::abs(qRed(a) - qRed(b)) <= kChannel && std::abs(qGreen(a) - qGreen(b)) <= kChannel &&
           std::abs(qBlue(a) - qBlue(b)) <= kChannel;
}

// Pixels of a whose colour appears nowhere within one pixel of the same
// place in b. Copies for other programs carry the dashes of dashed
// elements as lines, which the renderer draws a little otherwise than a
// dash pattern: with copies, pixels with more green than red (the
// gallery's dashed element, also where it meets the blue one) are left
// out.
enum class Dashes { Patterns, Lines };

int pixelsAloneIn(const QImage& a, const QImage& b, Dashes dashes = Dashes::Patterns)
{
    const auto dashed = [&](QRgb p) {
        return dashes == Dashes::Lines && qGreen(p) > qRed(p) + 40;
    };
    int alone = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            bool found = dashed(a.pixel(x, y));
            for (int dy = -1; dy <= 1 && !found; ++dy)
                for (int dx = -1; dx <= 1 && !found; ++dx)
                    found = b.valid(x + dx, y + dy) &&
                            (near(a.pixel(x, y), b.pixel(x + dx, y + dy)) || dashed(b.pixel(x + dx, y + dy)));
            alone += found ? 0 : 1;
        }
    }
    return alone;
}

// Both pictures show the same within a pixel, each of the other.
void expectSamePicture(const QImage& a, const QImage& b, const std::string& what, Dashes dashes = Dashes::Lines)
{
    ASSERT_FALSE(a.isNull()) << what;
    ASSERT_EQ(a.size(), b.size()) << what;
    EXPECT_EQ(pixelsAloneIn(a, b, dashes), 0) << what;
    EXPECT_EQ(pixelsAloneIn(b, a, dashes), 0) << what;
}

// The reader finds both drawings within the same extents.
void expectSameExtents(const EzdxfReport& from, const EzdxfReport& to, const std::string& what)
{
    const QJsonArray a = from.file["extents"].toArray(), b = to.file["extents"].toArray();
    ASSERT_EQ(a.size(), 4) << what;
    ASSERT_EQ(b.size(), 4) << what;
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(a[i].toDouble(), b[i].toDouble(), 1e-9) << what << " extent " << i;
}

// What EXPLODE's looks become in a copy: dashed element runs are
// continuous lines.
QStringList copiedLooks(const QJsonArray& looks)
{
    QStringList copied;
    for (const QJsonValue look : looks) {
        const QString text = look.toString().replace(" DASHED", " Continuous");
        if (!copied.contains(text))
            copied << text;
    }
    copied.sort();
    return copied;
}

struct Drawn {
    EzdxfReport report;
    QImage picture;
    std::string transcript;
};

Drawn runAndRead(const KaldoProcess& kaldo, const std::string& script, const std::string& name,
                 const QStringList& extraArgs = {})
{
    const std::string dxf = (kaldo.dir() / (name + ".dxf")).string();
    const std::string png = (kaldo.dir() / (name + ".png")).string();
    const KaldoRun run =
        kaldo.runScript(script, QStringList{"--save", qs(dxf), "--export", qs(png), "--size", "1200"} + extraArgs);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return {readWithEzdxf(dxf, "ezdxf_explode.py"), QImage(qs(png)), run.out};
}

// Explodes a gallery script's multilines, picked at the given points, and
// compares the drawing before and after.
void expectSameDrawing(const char* gallery, const std::vector<std::string>& picks, int filled)
{
    KaldoProcess kaldo;
    kaldo.writeFile("gallery.mln", galleryText("gallery.mln"));
    const std::string drawing = galleryText(gallery);
    ASSERT_FALSE(drawing.empty());
    std::ostringstream explode;
    explode << "EXPLODE\n";
    for (const std::string& pick : picks)
        explode << pick << "\n";
    // The first pick again, in another EXPLODE, finds a piece now.
    explode << "\nEXPLODE\n" << picks.front() << "\n\n";

    // Exploded copies by SAVEAS and --save-exploded, in 2000 (Enter) and
    // R12, leave the drawing its multilines.
    const std::string copy = (kaldo.dir() / "copy.dxf").string();
    const std::string option = (kaldo.dir() / "option.dxf").string();
    const std::string copyR12 = (kaldo.dir() / "copy-r12.dxf").string();
    const std::string optionR12 = (kaldo.dir() / "option-r12.dxf").string();
    const Drawn before =
        runAndRead(kaldo, drawing + "SAVEAS\nE\n\n" + copy + "\nSAVEAS\nExploded\nr12\n" + copyR12 + "\n",
                   "before",
                   {"--save-exploded", qs(option), "--save-exploded-r12", qs(optionR12)});
    const Drawn after = runAndRead(kaldo, drawing + explode.str(), "after");
    EXPECT_THAT(before.transcript, HasSubstr("with " + std::to_string(picks.size()) + " multilines exploded."));
    // The prompt names its keyword, chosen by its capital as keywords are.
    EXPECT_THAT(before.transcript, HasSubstr("Enter file name or [Exploded] <Drawing1.dxf>: E\n"));
    EXPECT_FALSE(std::filesystem::exists(kaldo.dir() / "E.dxf"));
    EXPECT_THAT(before.transcript, Not(HasSubstr("Left out")));
    for (const std::string& file : {copy, option, copyR12, optionR12}) {
        const EzdxfReport report = readWithEzdxf(file, "ezdxf_explode.py");
        ASSERT_TRUE(report.ran) << report.problem;
        const bool r12 = file == copyR12 || file == optionR12;
        EXPECT_EQ(report.file["version"].toString(), r12 ? "AC1009" : "AC1015") << file;
        EXPECT_EQ(auditFindings(report), "") << file;
        EXPECT_EQ(report.file["extents"], after.report.file["extents"]) << file;
        // The copies hold the pieces EXPLODE makes, dashed runs as more,
        // continuous lines; R12 has no HATCH: the fill is a SOLID per
        // quadrilateral, in the hatch's look.
        QJsonObject kinds = report.file["kinds"].toObject();
        QJsonObject expectedKinds = after.report.file["kinds"].toObject();
        EXPECT_GT(kinds["LINE"].toInt(), expectedKinds["LINE"].toInt()) << file;
        kinds.remove("LINE");
        expectedKinds.remove("LINE");
        if (r12) {
            EXPECT_EQ(kinds.contains("SOLID"), filled > 0) << file;
            EXPECT_GE(kinds["SOLID"].toInt(), filled) << file;
            kinds.remove("SOLID");
            expectedKinds.remove("HATCH");
        }
        EXPECT_EQ(kinds, expectedKinds) << file;
        QJsonArray looks;
        for (const QJsonValue look : report.file["looks"].toArray()) {
            EXPECT_FALSE(look.toString().contains("DASHED")) << file;
            looks.append(look.toString().replace("SOLID ", "HATCH "));
        }
        EXPECT_EQ(copiedLooks(looks), copiedLooks(after.report.file["looks"].toArray())) << file;
    }
    const std::string backPicture = (kaldo.dir() / "r12.png").string();
    ASSERT_EQ(runAndExport(kaldo, {qs(optionR12)}, backPicture), 0);
    EXPECT_THAT(after.transcript, HasSubstr("\n1 found\nSelect objects: \nNot changed: 1 "));
    EXPECT_THAT(after.transcript, HasSubstr("\n" + std::to_string(picks.size()) + " exploded."));

    ASSERT_TRUE(before.report.ran) << before.report.problem;
    ASSERT_TRUE(after.report.ran) << after.report.problem;
    EXPECT_EQ(auditFindings(after.report), "") << gallery;
    const QJsonObject kinds = after.report.file["kinds"].toObject();
    EXPECT_EQ(before.report.file["kinds"].toObject()["MLINE"].toInt(), int(picks.size()));
    EXPECT_FALSE(kinds.contains("MLINE"));
    EXPECT_GT(kinds["LINE"].toInt(), 0);
    EXPECT_EQ(kinds["HATCH"].toInt(), filled);
    expectSameExtents(before.report, after.report, gallery);
    expectSamePicture(before.picture, after.picture, gallery, Dashes::Patterns);
    expectSamePicture(before.picture, QImage(qs(backPicture)), std::string(gallery) + " in R12");
}

// Replaces every occurrence of what in text.
std::string replacedAll(std::string text, const std::string& what, const std::string& with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

}  // namespace

TEST(ExplodeSession, GalleryCapsJointsFillsAndEditedMultilinesDrawTheSameExploded)
{
    // Four rows of eight styles: caps alone, filled, with joints, both.
    std::vector<std::string> caps;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 8; ++column)
            caps.push_back(std::to_string(13 * column + 2.5) + "," + std::to_string(-9 * row + 0.75));
    expectSameDrawing("caps.scr", caps, 16);

    // Crosses, a single cut, cuts all and a weld.
    expectSameDrawing("gaps.scr",
                      {"2,0.75", "10.75,-5", "28,0.75", "36.75,-5", "54,0.75", "62.75,-5", "2,-13.25", "28,-13.25",
                       "54,-13.25"},
                      0);
}

TEST(ExplodeSession, MultilinesSeenFromBelowExplodeIntoTheSameArcs)
{
    // The gallery's caps with every multiline's normal turned to -Z: arc
    // caps are measured in the plane seen from below; the R12 copy's
    // solids fill the same quadrilaterals.
    KaldoProcess kaldo;
    const std::string drawn = (kaldo.dir() / "drawn.dxf").string();
    const std::string text = drawnCaps(kaldo, drawn);
    const std::string below = replacedAll(text, "210\n0\n220\n0\n230\n1\n", "210\n0\n220\n0\n230\n-1\n");
    ASSERT_NE(below, text);
    const std::string flipped = kaldo.writeFile("below.dxf", below).string();
    const std::string exploded = (kaldo.dir() / "exploded.dxf").string();
    const std::string explodedR12 = (kaldo.dir() / "exploded-r12.dxf").string();
    const std::string before = (kaldo.dir() / "below.png").string();
    const std::string after = (kaldo.dir() / "exploded.png").string();
    const std::string afterR12 = (kaldo.dir() / "exploded-r12.png").string();
    ASSERT_EQ(runAndExport(kaldo, {qs(flipped), "--save-exploded", qs(exploded), "--save-exploded-r12", qs(explodedR12)},
                           before),
              0);
    for (const auto& [file, picture] : {std::pair{exploded, after}, {explodedR12, afterR12}})
        ASSERT_EQ(runAndExport(kaldo, {qs(file)}, picture), 0);
    // ezdxf places the vertices of a multiline seen from below otherwise
    // (as plane coordinates): the extents come from the drawing as drawn.
    const EzdxfReport from = readWithEzdxf(drawn, "ezdxf_explode.py");
    const EzdxfReport to = readWithEzdxf(exploded, "ezdxf_explode.py");
    ASSERT_TRUE(from.ran && to.ran) << from.problem << to.problem;
    EXPECT_EQ(auditFindings(to), "");
    EXPECT_EQ(to.file["kinds"].toObject()["ARC"].toInt(), 128);
    expectSameExtents(from, to, "below");
    for (const std::string& picture : {after, afterR12})
        expectSamePicture(QImage(qs(before)), QImage(qs(picture)), picture);
}

TEST(ExplodeSession, R12CopiesKeepWhatR12HoldsAndSayWhatTheyLeaveOut)
{
    // The gallery's caps with a bulged polyline, a line in a true colour,
    // a text, a circle and a block reference, which R12 holds; then with
    // two MTEXTs, an ELLIPSE and a block reference with an attribute,
    // which it does not.
    KaldoProcess kaldo;
    const std::string drawn = (kaldo.dir() / "drawn.dxf").string();
    const std::string text = drawnCaps(kaldo, drawn);
    const std::string entities = "\nENTITIES\n";
    const std::string blockRecords = "AcDbBlockTableRecord\n  2\n*Paper_Space\n";
    const std::string blocks = "\nBLOCKS\n";
    ASSERT_NE(text.find(entities), std::string::npos);
    ASSERT_NE(text.find(blockRecords), std::string::npos);
    ASSERT_NE(text.find(blocks), std::string::npos);
    const std::string markRecord =
        "0\nBLOCK_RECORD\n5\nF00\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\nMARK\n";
    const std::string markBlock =
        "0\nBLOCK\n5\nF01\n330\nF00\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\nMARK\n70\n0\n10\n1\n20\n1\n"
        "30\n0\n3\nMARK\n1\n\n"
        "0\nCIRCLE\n5\nF02\n330\nF00\n100\nAcDbEntity\n8\n0\n100\nAcDbCircle\n10\n1\n20\n1\n40\n1\n"
        "0\nLINE\n5\nF03\n330\nF00\n100\nAcDbEntity\n8\n0\n62\n1\n100\nAcDbLine\n10\n0\n20\n1\n11\n2\n21\n1\n"
        "0\nENDBLK\n5\nF04\n330\nF00\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n";
    const std::string held =
        "0\nLWPOLYLINE\n100\nAcDbEntity\n8\n0\n62\n3\n100\nAcDbPolyline\n90\n3\n70\n1\n10\n0\n20\n10\n10\n10\n20\n10\n"
        "42\n0.5\n10\n10\n20\n16\n"
        "0\nLINE\n100\nAcDbEntity\n8\n0\n62\n5\n420\n33023\n100\nAcDbLine\n10\n20\n20\n10\n11\n30\n21\n18\n"
        "0\nTEXT\n100\nAcDbEntity\n8\n0\n62\n1\n100\nAcDbText\n10\n40\n20\n12\n40\n2\n1\nR12\n100\nAcDbText\n"
        "0\nCIRCLE\n100\nAcDbEntity\n8\n0\n100\nAcDbCircle\n10\n60\n20\n15\n40\n3\n"
        "0\nINSERT\n5\nF05\n330\n9\n100\nAcDbEntity\n8\n0\n62\n2\n100\nAcDbBlockReference\n2\nMARK\n10\n80\n20\n15\n"
        "41\n2\n42\n2\n50\n30\n";
    const std::string unheld =
        "0\nMTEXT\n100\nAcDbEntity\n8\n0\n100\nAcDbMText\n10\n70\n20\n12\n40\n2\n1\nkept\n"
        "0\nMTEXT\n100\nAcDbEntity\n8\n0\n100\nAcDbMText\n10\n70\n20\n16\n40\n2\n1\nout\n"
        "0\nELLIPSE\n100\nAcDbEntity\n8\n0\n100\nAcDbEllipse\n10\n85\n20\n15\n30\n0\n11\n3\n21\n0\n31\n0\n40\n0.5\n"
        "41\n0\n42\n6.283185307179586\n"
        "0\nINSERT\n5\nF06\n330\n9\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n66\n1\n2\nMARK\n10\n90\n20\n15\n"
        "0\nATTRIB\n5\nF07\n330\nF06\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n90\n20\n15\n40\n1\n1\nA\n"
        "100\nAcDbAttribute\n2\nTAG\n70\n0\n0\nSEQEND\n5\nF08\n330\nF06\n100\nAcDbEntity\n8\n0\n";
    const auto withExtras = [&](const std::string& extras) {
        std::string changed = text;
        changed.insert(changed.find(entities) + entities.size(), extras);
        changed.insert(changed.find(blocks) + blocks.size(), markBlock);
        changed.insert(changed.find(blockRecords) + blockRecords.size(), markRecord);
        return changed;
    };
    const std::string holdable = kaldo.writeFile("holdable.dxf", withExtras(held)).string();
    const std::string mixed = kaldo.writeFile("mixed.dxf", withExtras(held + unheld)).string();

    const std::string r12 = (kaldo.dir() / "holdable-r12.dxf").string();
    const std::string original = (kaldo.dir() / "holdable.png").string();
    const std::string readBack = (kaldo.dir() / "holdable-r12.png").string();
    const KaldoRun saved = kaldo.runScript(
        "", {qs(holdable), "--save-exploded-r12", qs(r12), "--export", qs(original), "--size", "1200"});
    ASSERT_EQ(saved.exitCode, 0) << saved.err;
    EXPECT_THAT(saved.out, Not(HasSubstr("Left out")));
    ASSERT_EQ(runAndExport(kaldo, {qs(r12)}, readBack), 0);
    const EzdxfReport from = readWithEzdxf(holdable, "ezdxf_explode.py");
    const EzdxfReport to = readWithEzdxf(r12, "ezdxf_explode.py");
    ASSERT_TRUE(from.ran && to.ran) << from.problem << to.problem;
    EXPECT_EQ(to.file["version"].toString(), "AC1009");
    EXPECT_EQ(auditFindings(to), "");
    const QJsonObject kinds = to.file["kinds"].toObject();
    EXPECT_EQ(kinds["POLYLINE"].toInt(), 1);
    EXPECT_EQ(kinds["TEXT"].toInt(), 1);
    EXPECT_EQ(kinds["CIRCLE"].toInt(), 1);
    EXPECT_EQ(kinds["INSERT"].toInt(), 1);
    EXPECT_EQ(kinds["SOLID"].toInt(), 32);
    // 0x0080FF is the colour of index 150 to within a step.
    EXPECT_TRUE(to.file["looks"].toArray().contains("LINE 0 150 BYLAYER")) << to.file["looks"].toArray().size();
    expectSameExtents(from, to, "R12");
    expectSamePicture(QImage(qs(original)), QImage(qs(readBack)), "R12");

    // What R12 cannot hold is left out and named once, by SAVEAS as by the
    // option.
    const std::string copy = (kaldo.dir() / "mixed-r12.dxf").string();
    const std::string option = (kaldo.dir() / "mixed-option-r12.dxf").string();
    const KaldoRun mixedRun =
        kaldo.runScript("SAVEAS\nEXPLODED\nR12\n" + copy + "\n", {qs(mixed), "--save-exploded-r12", qs(option)});
    ASSERT_EQ(mixedRun.exitCode, 0) << mixedRun.err;
    const QString leftOut = "Left out of the R12 copy, which cannot hold them: 1 ELLIPSE, 1 INSERT, 2 MTEXT.";
    EXPECT_EQ(qs(mixedRun.out).count(leftOut), 2) << mixedRun.out;
    for (const std::string& path : {copy, option}) {
        const EzdxfReport report = readWithEzdxf(path, "ezdxf_explode.py");
        ASSERT_TRUE(report.ran) << report.problem;
        EXPECT_EQ(auditFindings(report), "") << path;
        EXPECT_EQ(report.file["kinds"], to.file["kinds"]) << path;
    }
}

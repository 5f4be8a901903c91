// EXPLODE through the real binary: the gallery's multilines (line, outer
// and inner arc caps, joints, fills, a dashed element across bends) and
// multilines after -MLEDIT's crosses, cuts and weld become lines, arcs and
// hatches that ezdxf reads without any multiline, audits clean and finds
// within the same extents, and that draw the same picture within a pixel;
// exploded copies saved by SAVEAS and --save-exploded hold the same.
#include "EzdxfReport.h"
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QJsonArray>

#include <cmath>
#include <sstream>

using ::testing::HasSubstr;

namespace {

std::string galleryScript(const char* name)
{
    QFile file(QStringLiteral(KALDO_SOURCE_DIR "/docs/gallery/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

bool near(QRgb a, QRgb b)
{
    constexpr int kChannel = 40;
    return std::abs(qRed(a) - qRed(b)) <= kChannel && std::abs(qGreen(a) - qGreen(b)) <= kChannel &&
           std::abs(qBlue(a) - qBlue(b)) <= kChannel;
}

// Pixels of a whose colour appears nowhere within one pixel of the same
// place in b.
int pixelsAloneIn(const QImage& a, const QImage& b)
{
    int alone = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            bool found = false;
            for (int dy = -1; dy <= 1 && !found; ++dy)
                for (int dx = -1; dx <= 1 && !found; ++dx)
                    found = b.valid(x + dx, y + dy) && near(a.pixel(x, y), b.pixel(x + dx, y + dy));
            alone += found ? 0 : 1;
        }
    }
    return alone;
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
    const KaldoRun run = kaldo.runScript(script, QStringList{"--save", QString::fromStdString(dxf), "--export",
                                                             QString::fromStdString(png), "--size", "1200"} +
                                                     extraArgs);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return {readWithEzdxf(dxf, "ezdxf_explode.py"), QImage(QString::fromStdString(png)), run.out};
}

// Explodes a gallery script's multilines, picked at the given points, and
// compares the drawing before and after.
void expectSameDrawing(const char* gallery, const std::vector<std::string>& picks, int filled)
{
    KaldoProcess kaldo;
    kaldo.writeFile("gallery.mln", [] {
        QFile file(QStringLiteral(KALDO_SOURCE_DIR "/docs/gallery/gallery.mln"));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }());
    const std::string drawing = galleryScript(gallery);
    ASSERT_FALSE(drawing.empty());
    std::ostringstream explode;
    explode << "EXPLODE\n";
    for (const std::string& pick : picks)
        explode << pick << "\n";
    // The first pick again finds a line now.
    explode << picks.front() << "\n\n";

    // Exploded copies by SAVEAS and --save-exploded leave the drawing its
    // multilines.
    const std::string copy = (kaldo.dir() / "copy.dxf").string();
    const std::string option = (kaldo.dir() / "option.dxf").string();
    const Drawn before = runAndRead(kaldo, drawing + "SAVEAS\nExploded\n" + copy + "\n", "before",
                                    {"--save-exploded", QString::fromStdString(option)});
    const Drawn after = runAndRead(kaldo, drawing + explode.str(), "after");
    EXPECT_THAT(before.transcript, HasSubstr("with " + std::to_string(picks.size()) + " multilines exploded."));
    for (const std::string& file : {copy, option}) {
        const EzdxfReport report = readWithEzdxf(file, "ezdxf_explode.py");
        ASSERT_TRUE(report.ran) << report.problem;
        EXPECT_TRUE(report.file["errors"].toArray().isEmpty()) << file;
        EXPECT_TRUE(report.file["fixes"].toArray().isEmpty()) << file;
        EXPECT_EQ(report.file["kinds"], after.report.file["kinds"]) << file;
        EXPECT_EQ(report.file["looks"], after.report.file["looks"]) << file;
        EXPECT_EQ(report.file["extents"], after.report.file["extents"]) << file;
    }
    EXPECT_THAT(after.transcript, HasSubstr("Not a multiline."));
    EXPECT_THAT(after.transcript, HasSubstr("\n" + std::to_string(picks.size()) + " exploded."));

    ASSERT_TRUE(before.report.ran) << before.report.problem;
    ASSERT_TRUE(after.report.ran) << after.report.problem;
    EXPECT_TRUE(after.report.file["errors"].toArray().isEmpty()) << gallery;
    EXPECT_TRUE(after.report.file["fixes"].toArray().isEmpty()) << gallery;
    const QJsonObject kinds = after.report.file["kinds"].toObject();
    EXPECT_EQ(before.report.file["kinds"].toObject()["MLINE"].toInt(), int(picks.size()));
    EXPECT_FALSE(kinds.contains("MLINE"));
    EXPECT_GT(kinds["LINE"].toInt(), 0);
    EXPECT_EQ(kinds["HATCH"].toInt(), filled);
    const QJsonArray from = before.report.file["extents"].toArray();
    const QJsonArray to = after.report.file["extents"].toArray();
    ASSERT_EQ(from.size(), 4);
    ASSERT_EQ(to.size(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(from[i].toDouble(), to[i].toDouble(), 1e-9) << gallery << " extent " << i;

    ASSERT_FALSE(before.picture.isNull());
    ASSERT_EQ(before.picture.size(), after.picture.size());
    EXPECT_EQ(pixelsAloneIn(before.picture, after.picture), 0) << gallery;
    EXPECT_EQ(pixelsAloneIn(after.picture, before.picture), 0) << gallery;
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
    // caps are measured in the plane seen from below.
    KaldoProcess kaldo;
    const std::string drawn = (kaldo.dir() / "drawn.dxf").string();
    kaldo.writeFile("gallery.mln", [] {
        QFile file(QStringLiteral(KALDO_SOURCE_DIR "/docs/gallery/gallery.mln"));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }());
    ASSERT_EQ(kaldo.runScript(galleryScript("caps.scr"), {"--save", QString::fromStdString(drawn)}).exitCode, 0);
    QFile file(QString::fromStdString(drawn));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string text = file.readAll().toStdString();
    const std::string below = replacedAll(text, "210\n0\n220\n0\n230\n1\n", "210\n0\n220\n0\n230\n-1\n");
    ASSERT_NE(below, text);
    const std::string flipped = kaldo.writeFile("below.dxf", below).string();
    const std::string exploded = (kaldo.dir() / "exploded.dxf").string();
    const std::string before = (kaldo.dir() / "below.png").string();
    const std::string after = (kaldo.dir() / "exploded.png").string();
    ASSERT_EQ(kaldo.runScript("", {QString::fromStdString(flipped), "--save-exploded", QString::fromStdString(exploded),
                                   "--export", QString::fromStdString(before), "--size", "1200"})
                  .exitCode,
              0);
    ASSERT_EQ(kaldo.runScript("", {QString::fromStdString(exploded), "--export", QString::fromStdString(after),
                                   "--size", "1200"})
                  .exitCode,
              0);
    // ezdxf places the vertices of a multiline seen from below otherwise
    // (as plane coordinates): the extents come from the drawing as drawn.
    const EzdxfReport from = readWithEzdxf(drawn, "ezdxf_explode.py");
    const EzdxfReport to = readWithEzdxf(exploded, "ezdxf_explode.py");
    ASSERT_TRUE(from.ran && to.ran) << from.problem << to.problem;
    EXPECT_TRUE(to.file["errors"].toArray().isEmpty());
    EXPECT_TRUE(to.file["fixes"].toArray().isEmpty());
    EXPECT_EQ(to.file["kinds"].toObject()["ARC"].toInt(), 128);
    const QJsonArray a = from.file["extents"].toArray(), b = to.file["extents"].toArray();
    ASSERT_EQ(a.size(), 4);
    ASSERT_EQ(b.size(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(a[i].toDouble(), b[i].toDouble(), 1e-9) << "extent " << i;
    const QImage first(QString::fromStdString(before)), second(QString::fromStdString(after));
    ASSERT_FALSE(first.isNull());
    ASSERT_EQ(first.size(), second.size());
    EXPECT_EQ(pixelsAloneIn(first, second), 0);
    EXPECT_EQ(pixelsAloneIn(second, first), 0);
}

// The style manager driven through the real binary: a style is created with
// three elements and caps, modified, set current, renamed, drawn with,
// saved to a new and to an existing .mln file, refused deletion while in
// use, and loaded into a new drawing where every property comes back; the
// preview's background follows the space the drawing shows.
#include "EzdxfReport.h"
#include "FileText.h"
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>


using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// The file's text with its line ends made plain.
std::string plainText(const std::filesystem::path& path)
{
    std::string lines = fileText(path);
    std::erase(lines, '\r');
    return lines;
}

// The multiline styles of a saved drawing as ezdxf reads them.
QJsonObject stylesRead(const std::filesystem::path& dxf)
{
    QProcess python;
    python.start("/usr/bin/python3",
                 {sourceFile("tests/e2e/ezdxf_mlstyles.py"), QString::fromStdString(dxf.string())});
    python.waitForFinished(120000);
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

// The window's background behind model space.
const QColor kModelSpaceBackground(0x1E, 0x23, 0x29);

int pixelsOf(const std::filesystem::path& picture, const QColor& color)
{
    const QImage image(QString::fromStdString(picture.string()));
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += image.pixelColor(x, y) == color;
    return n;
}

}  // namespace

TEST(StyleManagerSession, CreateModifyRenameSaveLoadAndDelete)
{
    KaldoProcess kaldo;
    const std::filesystem::path newMln = kaldo.dir() / "new.mln";
    const std::filesystem::path sharedMln = kaldo.writeFile(
        "shared.mln", "MLSTYLE\r\n2\r\n OTHER\r\n70\r\n 0\r\n3\r\n kept\r\n71\r\n 1\r\n49\r\n 0\r\n0\r\n"
                      "MLSTYLE\r\n2\r\n BRICK\r\n70\r\n 0\r\n3\r\n old\r\n71\r\n 1\r\n49\r\n 0\r\n0\r\n");
    const std::filesystem::path drawn = kaldo.dir() / "drawn.dxf";
    const std::filesystem::path loaded = kaldo.dir() / "loaded.dxf";
    const std::filesystem::path paperPicture = kaldo.dir() / "paper.png";
    const std::filesystem::path modelPicture = kaldo.dir() / "model.png";

    // New WALL from STANDARD: a third element at 0.25 in red, a start line
    // cap at 45 degrees, an end outer arc, a description. Then Modify fills
    // it; set current; renamed BRICK; saved to a new and an existing file.
    const std::string create =
        "MLSTYLE\nCLICK 1028\nTEXT 1035 WALL\nCLICK 1\n"
        "CLICK 1051\nTEXT 1050 0.25\nSELECT 1049 Red\nCLICK 1038\nCLICK 1042\nTEXT 1044 45\nTEXT 1037 A wall\n"
        "CLICK 1\n"
        "CLICK 1029\nCLICK 1054\nCLICK 1\n"
        "CLICK 1026\nCLICK 1030\nTEXT 1060 BRICK\nCLICK 1\n"
        "CLICK 1033\n" + newMln.string() + "\nCLICK 1033\n" + sharedMln.string() + "\nCLICK 1\n"
        "MLINE\n0,0\n100,0\n\n"
        // In use now: no Rename, Delete or Modify. A style made and deleted
        // (No first, then Yes) leaves nothing behind. A layout is shown:
        // the preview takes the paper's background.
        "TILEMODE\n0\n"
        "MLSTYLE\nSELECT 1021 BRICK\nSHOW\nGRAB " + paperPicture.string() + "\nCLICK 1031\n"
        "CLICK 1028\nTEXT 1035 TEMP\nCLICK 1\nCLICK 1\nCLICK 1031\nCLICK 7\nCLICK 1031\nCLICK 6\nSHOW\nCLICK 1\n";
    KaldoRun run = kaldo.runScript(create, {"--save", QString::fromStdString(drawn.string())});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Style = BRICK"));
    EXPECT_THAT(run.out, HasSubstr("  1029 button disabled \"Modify...\"\n  1030 button disabled \"Rename\"\n"
                                   "  1031 button disabled \"Delete\"\n"));
    EXPECT_THAT(run.out, HasSubstr("Dialog action refused: CLICK 1031"));
    EXPECT_EQ(QString::fromStdString(run.out).count("Message: Delete the multiline style \"TEMP\"?"), 2) << run.out;
    EXPECT_THAT(run.out, HasSubstr("    0: BRICK\n    1: STANDARD\n  1026"));

    const EzdxfReport report = readWithEzdxf(drawn.string());
    ASSERT_TRUE(report.ran) << report.problem;
    EXPECT_EQ(auditFindings(report), "");
    EXPECT_EQ(report.file["cmlstyle"].toString(), "BRICK");
    EXPECT_THAT(plainText(drawn), HasSubstr("$TILEMODE\n 70\n0\n"));
    const KaldoRun reopened = kaldo.runScript("TILEMODE\n\n", {QString::fromStdString(drawn.string())});
    EXPECT_THAT(reopened.out, HasSubstr("Enter new value for TILEMODE <0>: \n")) << "read back with the drawing";
    ASSERT_EQ(report.file["mlines"].toArray().size(), 1);
    EXPECT_EQ(report.file["mlines"][0]["style"].toString(), "BRICK");
    EXPECT_EQ(report.file["mlines"][0]["vertices"][0]["element"].toArray().size(), 3);

    const QJsonObject styles = stylesRead(drawn);
    EXPECT_FALSE(styles.contains("TEMP"));
    const QJsonObject brick = styles["BRICK"].toObject();
    EXPECT_EQ(brick["description"].toString(), "A wall");
    EXPECT_EQ(brick["flags"].toInt(), 0x1 | 0x10 | 0x400);
    EXPECT_NEAR(brick["start_angle"].toDouble(), 45.0, 1e-10);
    EXPECT_NEAR(brick["end_angle"].toDouble(), 90.0, 1e-10);
    const QJsonArray elements = brick["elements"].toArray();
    ASSERT_EQ(elements.size(), 3);
    const double offsets[] = {0.5, 0.25, -0.5};
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(elements[i][0].toDouble(), offsets[i], 1e-10) << i;
    EXPECT_EQ(elements[1][1].toInt(), 1) << "the added element is red";
    EXPECT_EQ(elements[0][1].toInt(), 256);

    // A new file holds the style alone; the existing one keeps OTHER and
    // has its BRICK replaced.
    const std::string written = plainText(newMln);
    EXPECT_EQ(QString::fromStdString(written).count("MLSTYLE\n"), 1);
    EXPECT_THAT(written, HasSubstr("2\n BRICK\n70\n 1041\n3\n A wall\n"));
    const std::string merged = plainText(sharedMln);
    EXPECT_THAT(merged, HasSubstr("2\n OTHER\n70\n 0\n3\n kept\n"));
    EXPECT_EQ(QString::fromStdString(merged).count("BRICK"), 1);
    EXPECT_THAT(merged, Not(HasSubstr("old")));

    // Loaded into a new drawing through the File button: every property
    // as it was; the selection moves to STANDARD.
    const std::string load = "MLSTYLE\nCLICK 1032\nCLICK 1056\n" + newMln.string()
                             + "\nSELECT 1058 BRICK\nCLICK 1\nSHOW\nGRAB " + modelPicture.string() + "\nCLICK 1\n";
    run = kaldo.runScript(load, {"--save", QString::fromStdString(loaded.string())});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Dialog 108 closed: OK"));
    EXPECT_THAT(run.out, HasSubstr("selected 1\n    0: BRICK\n    1: STANDARD\n"));
    EXPECT_EQ(stylesRead(loaded)["BRICK"].toObject(), brick);
    EXPECT_THAT(plainText(loaded), Not(HasSubstr("$TILEMODE"))) << "model space shown is not written";

    // The preview's background is the drawing window's: dark behind model
    // space, none of it behind a layout.
    EXPECT_GT(pixelsOf(modelPicture, kModelSpaceBackground), 1000);
    EXPECT_EQ(pixelsOf(paperPicture, kModelSpaceBackground), 0);
}

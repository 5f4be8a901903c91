// Styles loaded from a .mln file by MLINE go through a saved drawing whole:
// the current style as MLINE wrote it, colour-book colours, a style without
// elements; the saved file passes ezdxf's audit and saves again unchanged.
#include "EzdxfReport.h"
#include "FileText.h"
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>

#include <string>

using ::testing::HasSubstr;

namespace {

// A filled brick wall whose fill and first element carry colour-book
// names, and a style without elements.
const char* const kWalls = "MLSTYLE\n2\n Wall_4In\n70\n 1\n3\n Brick\n62\n 5\n420\n 16711680\n430\n"
                           " KALDO BRICKS$BRICK RED\n51\n 90\n52\n 90\n71\n 2\n49\n 2.0\n62\n 1\n420\n 255\n430\n"
                           " KALDO BRICKS$MORTAR\n6\n BYLAYER\n49\n -2.0\n62\n 256\n6\n BYLAYER\n0\n"
                           "MLSTYLE\n2\n EMPTY\n70\n 0\n3\n nothing\n62\n 256\n51\n 90\n52\n 90\n71\n 0\n0\n";

}  // namespace

TEST(StyleFileSession, LoadedStylesSurviveSaveAndReopen)
{
    KaldoProcess kaldo;
    const std::string mln = kaldo.writeFile("walls.mln", kWalls).string();
    const std::filesystem::path first = kaldo.dir() / "first.dxf";
    const std::filesystem::path second = kaldo.dir() / "second.dxf";
    KaldoRun run = kaldo.runScript("MLINE\nST\nWall_4In\n" + mln + "\nS\nabc\n2\n0,0\n100,0\n\nMLINE\n\n"
                                   "MLINE\nST\nempty\n" + mln + "\n0,20\n100,20\n\n",
                                   {"--save", QString::fromStdString(first.string())});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // Standard error carries the program's own messages only.
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("abc\nRequires a number.\nEnter mline scale <1.0000> :2\n"));
    // The variable keeps the name as MLINE wrote it, upper case.
    EXPECT_THAT(run.out, HasSubstr("Command: MLINE\nCurrent settings: Justification = Top, Scale = 2.0000, "
                                   "Style = WALL_4IN\n"));

    const std::string saved = fileText(first);
    EXPECT_THAT(saved, HasSubstr("\n 62\n1\n420\n16711680\n430\nKALDO BRICKS$BRICK RED\n"));
    EXPECT_THAT(saved, HasSubstr("\n 62\n5\n420\n255\n430\nKALDO BRICKS$MORTAR\n"));
    const EzdxfReport report = readWithEzdxf(first.string());
    ASSERT_TRUE(report.ran) << report.problem;
    EXPECT_EQ(auditFindings(report), "") << saved;
    EXPECT_EQ(report.file["cmlstyle"].toString(), "EMPTY");
    ASSERT_EQ(report.file["mlines"].toArray().size(), 2);

    // Reopened, the drawing saves to the same bytes.
    run = kaldo.runScript("", {QString::fromStdString(first.string()), "--save", QString::fromStdString(second.string())});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(fileText(second), saved);
}

// Input meant to break the host, typed or read: numbers that overflow,
// overlong lines, control characters, files that are no files, odd line
// ends, drawings that would keep the renderer busy for ever. Each gets a
// message; the session goes on and nothing broken reaches a saved file,
// a picture or the terminal.
#include "FileText.h"
#include "KaldoProcess.h"
#include "MlnText.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>

#include <string>

#include <sys/stat.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// Whether text holds a C1 control (U+0080 to U+009F) in UTF-8.
bool holdsC1Control(const std::string& text)
{
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
        if (static_cast<unsigned char>(text[i]) == 0xC2 && static_cast<unsigned char>(text[i + 1]) >= 0x80
            && static_cast<unsigned char>(text[i + 1]) <= 0x9F)
            return true;
    return false;
}

}  // namespace

// Numbers that overflow are refused; one too large to read in full is
// written in scientific form, by the module's texts as by the host's
// variables, in every linear unit.
TEST(HostileInputSession, NumbersThatOverflowAreRefusedAndHugeOnesWrittenReadably)
{
    KaldoProcess kaldo;
    const std::filesystem::path saved = kaldo.dir() / "saved.dxf";
    const KaldoRun run = kaldo.runScript("LINE\n1e308,0\n@1e308,0\n@1,0\n\nLINE\n0,0\n@1e308<45\n^C\n"
                                         "SETVAR\nANGBASE\n1e309\n"
                                         "MLINE\nS\n1e308\nS\n^C\n^C\nCMLSCALE\n\nLUNITS\n4\nCMLSCALE\n\n",
                                         {"--save", QString::fromStdString(saved.string())});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("@1e308,0\nInvalid point.\nSpecify next point or [Undo]: @1,0\n"));
    EXPECT_THAT(run.out, HasSubstr("ANGBASE cannot be set to \"1e309\""));
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(fileText(saved), HasSubstr("\n 11\n1e+308\n"));
    EXPECT_THAT(fileText(saved), Not(HasSubstr("inf")));
    EXPECT_THAT(run.out, HasSubstr("Scale = 1.0000E+308, Style = STANDARD\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter mline scale <1.0000E+308> :*Cancel*\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <1.0000E+308>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <1.0000E+308>: \nCommand: LUNITS"));
    EXPECT_THAT(run.out, Not(::testing::ContainsRegex("[0-9]{20}")));
}

TEST(HostileInputSession, LongAndOddInput)
{
    KaldoProcess kaldo;
    const std::string support = stagedPaths().supportDir.string();
    // A script line beyond 64 KiB is left out with a message, once; a
    // control character is shown, never sent to the terminal.
    const std::string control = "\x1b[31m";
    const std::string bad = kaldo.writeFile("bad.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\n" + control
                                                           + "\n  0\nENDSEC\n  0\nEOF\n").string();
    KaldoRun run = kaldo.runScript("LINE\n" + std::string(100000, '7') + "\n" + control + "\nOPEN\n" + bad + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Specify first point: \nLine 2 of the input is longer than 65536 characters; "
                                   "it is left out.\n*Cancel*\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("7777")));
    EXPECT_THAT(run.out, HasSubstr("Command: ^[[31m\n"));
    EXPECT_THAT(run.out, HasSubstr("group 10 needs a number, not \"\\x1B[31m\"."));
    EXPECT_THAT(run.out, Not(HasSubstr("\x1b")));

    // A FIFO or a folder named as the drawing, the script or the profile is
    // refused at once.
    const QString fifo = QString::fromStdString((kaldo.dir() / "pipe.dxf").string());
    ASSERT_EQ(mkfifo(fifo.toLocal8Bit().constData(), 0644), 0);
    run = kaldo.runScript("", {fifo});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("pipe.dxf': it is a FIFO, not a regular file."));
    const QString script = QString::fromStdString(kaldo.writeFile("empty.scr", "").string());
    for (const QStringList& args : {QStringList{"--script", fifo}, QStringList{"--script", script, "--profile", fifo}}) {
        run = kaldo.runArgs(args);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_THAT(run.err, HasSubstr("cannot read '" + fifo.toStdString() + "': it is a FIFO, not a regular file."));
    }
    run = kaldo.runScript("", {QString::fromStdString(kaldo.dir().string())});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("': it is a folder."));

    // A byte order mark and lines ended by carriage returns alone.
    const std::string text = "\xEF\xBB\xBF  0\rSECTION\r  2\rENTITIES\r  0\rLINE\r  8\r0\r 10\r1\r 20\r2\r 30\r0\r"
                             " 11\r3\r 21\r4\r 31\r0\r  0\rENDSEC\r  0\rEOF\r";
    const std::string old = kaldo.writeFile("old-mac.dxf", text).string();
    run = kaldo.runScript("LIST\n2,3\n\n", {QString::fromStdString(old)});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("to point: X=3.0000  Y=4.0000"));
}

// C1 controls (here CSI, U+009B) from a script, a style file and a file
// name reach neither standard output nor standard error: in the command
// echo, messages, the style listing and LIST they show as M-^X, as C0
// controls show as ^X.
TEST(HostileInputSession, C1ControlsAreShownNotSent)
{
    KaldoProcess kaldo;
    kaldo.setEnv("LC_ALL", "C.UTF-8");
    const std::string csi = "\u009B";
    kaldo.writeFile("walls.mln", mlnStyleBlock("WALL" + csi + "1", "Brick " + csi + "31m wall", {0.5, -0.5}));
    // A version whose strings are UTF-8, so that the reader meets U+009B.
    const std::string bad = kaldo.writeFile("bad.dxf", "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1021\n"
                                                       "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\n"
                                                           + csi + "31m\n  0\nENDSEC\n  0\nEOF\n").string();
    KaldoRun run = kaldo.runScript(csi + "2J\nMLINE\nST\nWall" + csi + "1\nwalls\nST\n?\n\n0,0\n10,0\n\nLIST\n5,0.5\n\n"
                                   "OPEN\n" + bad + "\nNo\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Command: M-^[2J\nUnknown command \"M-^[2J\"."));
    EXPECT_THAT(run.out, ::testing::ContainsRegex("\nwallM-\\^\\[1 +Brick M-\\^\\[31m wall\n"));
    EXPECT_THAT(run.out, HasSubstr("  style: wallM-^[1  "));
    EXPECT_THAT(run.out, HasSubstr("group 10 needs a number, not \"M-^[31m\"."));
    EXPECT_FALSE(holdsC1Control(run.out)) << run.out;
    EXPECT_FALSE(holdsC1Control(run.err)) << run.err;

    const std::string missing = (kaldo.dir() / ("gone" + csi + ".dxf")).string();
    run = kaldo.runScript("", {QString::fromStdString(missing)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("goneM-^[.dxf"));
    EXPECT_FALSE(holdsC1Control(run.err)) << run.err;
}

TEST(HostileInputSession, DrawingsMadeToBreakTheRendererAreExportedWithBoundedWork)
{
    // Each drawing of tests/data/render as PNG and SVG: the transcript
    // names what the picture drew once or coarsely or left out, and the
    // picture shows the rest.
    struct Drawing {
        const char* name;
        const char* said;
    };
    const Drawing drawings[] = {
        {"block-inserts-itself", "Blocks that contain themselves, drawn once in the picture: LOOP.\n"},
        {"nested-insert-fan",
         "Drawn as boxes in the picture beyond 4194304 points: copies of blocks and lines of text.\n"},
        {"ellipse-huge-sweep", "Not drawn in the picture: ELLIPSE.\n"},
        {"spline-degree-1200", ""},
        {"hatch-claims-huge-counts", ""},
    };
    KaldoProcess kaldo;
    for (const Drawing& drawing : drawings) {
        const QString dxf = sourceFile("tests/data/render/%1.dxf").arg(drawing.name);
        const QString png = QString::fromStdString((kaldo.dir() / drawing.name).string()) + ".png";
        KaldoRun run = kaldo.runScript("", {dxf, "--export", png, "--size", "300"});
        ASSERT_EQ(run.exitCode, 0) << drawing.name << run.err;
        EXPECT_EQ(run.err, "") << drawing.name;
        EXPECT_THAT(run.out, HasSubstr(drawing.said)) << drawing.name;
        const QImage image(png);
        ASSERT_FALSE(image.isNull()) << drawing.name;
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                drawn += image.pixel(x, y) != qRgb(255, 255, 255);
        EXPECT_GT(drawn, 100) << drawing.name;

        const QString svg = QString::fromStdString((kaldo.dir() / drawing.name).string()) + ".svg";
        run = kaldo.runScript("", {dxf, "--export", svg});
        ASSERT_EQ(run.exitCode, 0) << drawing.name << run.err;
        EXPECT_THAT(run.out, HasSubstr(drawing.said)) << drawing.name;
        EXPECT_THAT(fileText(svg.toStdString()), ::testing::ContainsRegex("<(polyline|polygon|path fill-rule)")) << drawing.name;
    }
}

// Input meant to break the host, typed or read: numbers that overflow,
// overlong lines, control characters, files that are no files, odd line
// ends. Each gets a message; the session goes on and nothing broken
// reaches a saved file or the terminal.
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include <sys/stat.h>

using ::testing::HasSubstr;
using ::testing::Not;

TEST(HostileInputSession, NumbersThatOverflowAreRefused)
{
    KaldoProcess kaldo;
    const std::string nan = kaldo.writeFile("nan.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\nnan\n"
                                                       "  0\nENDSEC\n  0\nEOF\n").string();
    const std::filesystem::path saved = kaldo.dir() / "saved.dxf";
    const KaldoRun run = kaldo.runScript("LINE\n1e308,0\n@1e308,0\n@1,0\n\nLINE\n0,0\n@1e308<45\n^C\n"
                                         "SETVAR\nANGBASE\n1e308\nOPEN\n" + nan + "\n",
                                         {"--save", QString::fromStdString(saved.string())});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("@1e308,0\nInvalid point.\nSpecify next point or [Undo]: @1,0\n"));
    EXPECT_THAT(run.out, HasSubstr("ANGBASE cannot be set to \"1e308\""));
    EXPECT_THAT(run.out, HasSubstr("Cannot open the drawing: nan.dxf, line 8: group 10 needs a number, not \"nan\"."));
    EXPECT_EQ(run.err, "");
    std::ifstream in(saved);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_THAT(text, HasSubstr("\n 11\n1e+308\n"));
    EXPECT_THAT(text, Not(HasSubstr("inf")));
}

TEST(HostileInputSession, LongAndOddInput)
{
    KaldoProcess kaldo;
    const std::string support = KALDO_STAGE_DIR "/share/kaldo/Support";
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

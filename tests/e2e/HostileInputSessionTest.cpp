// Input meant to break the host, typed or read: numbers that overflow,
// files that claim more than they hold. Each gets a message; the session
// goes on and nothing broken reaches a saved file.
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

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

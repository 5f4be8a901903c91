// System variables through SETVAR and through their names typed as
// commands: every value type round trips and "?" lists it, Enter keeps a
// value, bad values are refused with a message and change nothing. Reals
// and points show in the drawing's units (four decimals by default).
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::HasSubstr;
using ::testing::Not;

TEST(SetvarSession, EveryTypeRoundTripsAndIsListed)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "SETVAR\nCMLJUST\n2\nCMLJUST\n\n"
        "SETVAR\ncmlscale\n2.5\nCMLSCALE\n\n"
        "SETVAR\nCMLSTYLE\nStandard\nCMLSTYLE\n\n"
        "SETVAR\nLASTPOINT\n1.5,-2,3\nLASTPOINT\n\n"
        "PICKBOX\n7\nSETVAR\nPICKBOX\n\nSETVAR\n?\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Enter variable name or [?]: CMLJUST\nEnter new value for CMLJUST <0>: 2\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLJUST <2>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <1.0000>: 2.5\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <2.5000>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSTYLE <STANDARD>: Standard\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LASTPOINT <1.5000,-2.0000,3.0000>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for PICKBOX <3>: 7\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for PICKBOX <7>: \n"));
    EXPECT_THAT(run.out, Not(HasSubstr("cannot be set")));
    // "?" lists every variable with the value it holds now.
    for (const char* line : {"CMLJUST             2\n", "CMLSCALE            2.5000\n",
                             "CMLSTYLE            Standard\n", "LISPCOMMANDHASMORE  1\n", "PICKBOX             7\n",
                             "UCSYDIR             0.0000,1.0000,0.0000\n"})
        EXPECT_THAT(run.out, HasSubstr(line));
}

TEST(SetvarSession, BadValuesAreRefusedAndChangeNothing)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "CMLJUST\n3\nCMLJUST\n1.5\nCMLSCALE\nbig\nCMLSTYLE\nNOSUCHSTYLE\nLASTPOINT\nhere\n"
        "LISPCOMMANDHASMORE\n0\nUCSXDIR\n0,1,0\nSETVAR\nNOSUCHVAR\n"
        "CMLJUST\n\nCMLSCALE\n\nCMLSTYLE\n\nLISPCOMMANDHASMORE\n\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("CMLJUST cannot be set to \"3\"; it keeps 0."));
    EXPECT_THAT(run.out, HasSubstr("CMLJUST cannot be set to \"1.5\"; it keeps 0."));
    EXPECT_THAT(run.out, HasSubstr("CMLSCALE cannot be set to \"big\"; it keeps 1.0000."));
    EXPECT_THAT(run.out, HasSubstr("CMLSTYLE cannot be set to \"NOSUCHSTYLE\"; it keeps STANDARD."));
    EXPECT_THAT(run.out, HasSubstr("LASTPOINT cannot be set to \"here\"; it keeps 0.0000,0.0000,0.0000."));
    // Read-only variables: a script feeds input, and the UCS decides its axes.
    EXPECT_THAT(run.out, HasSubstr("LISPCOMMANDHASMORE cannot be set to \"0\"; it keeps 1."));
    EXPECT_THAT(run.out, HasSubstr("UCSXDIR cannot be set to \"0,1,0\"; it keeps 1.0000,0.0000,0.0000."));
    EXPECT_THAT(run.out, HasSubstr("Unknown variable name \"NOSUCHVAR\"."));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLJUST <0>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <1.0000>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSTYLE <STANDARD>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LISPCOMMANDHASMORE <1>: \n"));
}

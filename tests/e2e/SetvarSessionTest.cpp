// System variables through SETVAR and through their names typed as
// commands: every value type round trips and "?" lists it, Enter keeps a
// value, bad values are refused with a message and change nothing. Reals
// and points show in the drawing's units (four decimals by default).
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::HasSubstr;

TEST(SetvarSession, EveryTypeRoundTripsIsListedAndBadValuesChangeNothing)
{
    KaldoProcess kaldo;
    // Bad values first, against the defaults, then a good value of each type.
    const KaldoRun run = kaldo.runScript(
        "CMLJUST\n3\nCMLJUST\n1.5\nCMLSCALE\nbig\nCMLSTYLE\nNOSUCHSTYLE\nLASTPOINT\nhere\n"
        "LISPCOMMANDHASMORE\n0\nUCSXDIR\n0,1,0\nSETVAR\nNOSUCHVAR\n"
        "CMLJUST\n\nCMLSCALE\n\nCMLSTYLE\n\nLISPCOMMANDHASMORE\n\n"
        "SETVAR\nCMLJUST\n2\nCMLJUST\n\n"
        "SETVAR\ncmlscale\n2.5\nCMLSCALE\n\n"
        "SETVAR\nCMLSTYLE\nStandard\nCMLSTYLE\n\n"
        "SETVAR\nLASTPOINT\n1.5,-2,3\nLASTPOINT\n\n"
        "PICKBOX\n7\nSETVAR\nPICKBOX\n\nSETVAR\n?\n");
    EXPECT_EQ(run.exitCode, 0);
    for (const char* shown : {
             "CMLJUST cannot be set to \"3\"; it keeps 0.", "CMLJUST cannot be set to \"1.5\"; it keeps 0.",
             "CMLSCALE cannot be set to \"big\"; it keeps 1.0000.",
             "CMLSTYLE cannot be set to \"NOSUCHSTYLE\"; it keeps STANDARD.",
             "LASTPOINT cannot be set to \"here\"; it keeps 0.0000,0.0000,0.0000.",
             // Read-only variables: a script feeds input, and the UCS decides its axes.
             "LISPCOMMANDHASMORE cannot be set to \"0\"; it keeps 1.",
             "UCSXDIR cannot be set to \"0,1,0\"; it keeps 1.0000,0.0000,0.0000.",
             "Unknown variable name \"NOSUCHVAR\".",
             // Enter keeps the value after a refusal, and after a change.
             "Enter new value for CMLJUST <0>: \n", "Enter new value for CMLSCALE <1.0000>: \n",
             "Enter new value for CMLSTYLE <STANDARD>: \n", "Enter new value for LISPCOMMANDHASMORE <1>: \n",
             "Enter variable name or [?]: CMLJUST\nEnter new value for CMLJUST <0>: 2\n",
             "Enter new value for CMLJUST <2>: \n", "Enter new value for CMLSCALE <1.0000>: 2.5\n",
             "Enter new value for CMLSCALE <2.5000>: \n", "Enter new value for CMLSTYLE <STANDARD>: Standard\n",
             "Enter new value for LASTPOINT <1.5000,-2.0000,3.0000>: \n", "Enter new value for PICKBOX <3>: 7\n",
             "Enter new value for PICKBOX <7>: \n",
             // "?" lists every variable with the value it holds now.
             "CMLJUST             2\n", "CMLSCALE            2.5000\n", "CMLSTYLE            Standard\n",
             "LISPCOMMANDHASMORE  1\n", "PICKBOX             7\n", "UCSYDIR             0.0000,1.0000,0.0000\n"})
        EXPECT_THAT(run.out, HasSubstr(shown));
    // The seven refusals above, and none of the good values.
    EXPECT_EQ(QString::fromStdString(run.out).count("cannot be set"), 7);
}

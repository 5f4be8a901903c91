// The module in a real session: loaded at start, its commands registered by
// global and local names, unloaded and loaded again by command, and silent
// when its command-time resource library cannot be found.
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const char* const moduleListing = "Group KALDO_KDMLSTYLEGROUP:\n"
                                  "  _MLSTYLE              MLSTYLE\n"
                                  "  _MLEDIT               MLEDIT\n"
                                  "  _-MLEDIT              -MLEDIT\n"
                                  "  _MLINE                MLINE\n";

}  // namespace

TEST(ModuleSession, CommandsRegisteredAtStartRunByEitherName)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript("COMMANDS\n_MLINE\n\nmline\n\n_mline\n\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Group KALDO_HOSTCOMMANDS:\n  _SETVAR"));
    EXPECT_THAT(run.out, HasSubstr(moduleListing));
    EXPECT_THAT(run.out, Not(HasSubstr("Unknown command")));
    // Each run of MLINE shows its settings and ends on Enter.
    const std::string started = "\nCurrent settings: Justification = Top, Scale = 1.0000, Style = STANDARD\n"
                                "Specify start point or [Justification/Scale/STyle]: \n";
    EXPECT_THAT(run.out, HasSubstr("Command: _MLINE" + started + "Command: mline" + started + "Command: _mline" + started
                                   + "Command: "));
    EXPECT_TRUE(run.err.find("KdMLStyle") == std::string::npos) << run.err;
}

TEST(ModuleSession, UnloadRemovesTheGroupAndLoadBringsItBack)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "APPUNLOAD\nKdMLStyle\nCOMMANDS\nMLINE\n_MLINE\n"
        "APPUNLOAD\nKdMLStyle\n"
        "APPLOAD\nKdMLStyle\nCOMMANDS\nMLINE\n");
    EXPECT_EQ(run.exitCode, 0);
    const std::size_t reload = run.out.find("Command: APPLOAD");
    ASSERT_NE(reload, std::string::npos);
    const std::string unloaded = run.out.substr(0, reload);
    const std::string reloaded = run.out.substr(reload);

    EXPECT_THAT(unloaded, HasSubstr("Module \"KdMLStyle\" unloaded."));
    EXPECT_THAT(unloaded, Not(HasSubstr("KALDO_KDMLSTYLEGROUP")));
    EXPECT_THAT(unloaded, HasSubstr("Unknown command \"MLINE\"."));
    EXPECT_THAT(unloaded, HasSubstr("Unknown command \"_MLINE\"."));
    // A second unload finds nothing to unload.
    const std::string done = "Module \"KdMLStyle\" unloaded.";
    EXPECT_EQ(unloaded.find(done, unloaded.find(done) + 1), std::string::npos);

    EXPECT_THAT(reloaded, HasSubstr("Module \"KdMLStyle\" loaded."));
    EXPECT_THAT(reloaded, HasSubstr(moduleListing));
    EXPECT_THAT(reloaded, Not(HasSubstr("Unknown command")));
}

TEST(ModuleSession, NoModulesThenLoadByPath)
{
    KaldoProcess kaldo;
    const KaldoRun bare = kaldo.runScript("COMMANDS\nMLINE\n", {"--no-modules"});
    EXPECT_THAT(bare.out, Not(HasSubstr("KALDO_KDMLSTYLEGROUP")));
    EXPECT_THAT(bare.out, HasSubstr("Unknown command \"MLINE\"."));

    const QString module = QString::fromStdString((stagedPaths().modulesDir / "KdMLStyle.krx").string());
    const KaldoRun loaded = kaldo.runScript("COMMANDS\n", {"--no-modules", "--load", module});
    EXPECT_EQ(loaded.exitCode, 0);
    EXPECT_THAT(loaded.out, HasSubstr(moduleListing));

    // A module given with --load is not loaded a second time from the
    // modules folder.
    const KaldoRun both = kaldo.runScript("COMMANDS\n", {"--load", "KdMLStyle"});
    EXPECT_EQ(both.exitCode, 0);
    EXPECT_THAT(both.out, HasSubstr(moduleListing));
    EXPECT_EQ(both.err.find("KdMLStyle"), std::string::npos) << both.err;

    const KaldoRun missing = kaldo.runScript("APPLOAD\nNoSuchModule\nCOMMANDS\n", {"--no-modules"});
    EXPECT_THAT(missing.out, HasSubstr("Cannot find module \"NoSuchModule\"."));
    EXPECT_THAT(missing.out, Not(HasSubstr("KALDO_KDMLSTYLEGROUP")));
}

TEST(ModuleSession, MissingResourceLibrarySilencesTheCommands)
{
    // The dynamic loader's search log shows which library each command asks
    // for; the transcript shows that the commands said nothing.
    KaldoProcess kaldo;
    kaldo.setEnv("LD_DEBUG", "libs");
    kaldo.setEnv("KALDO_PRODUCT_PRENAME", "Zq");
    const KaldoRun run = kaldo.runScript("_MLINE\n_MLSTYLE\nLINE\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.err, HasSubstr("find library=ZqMLStyleRes.so"));
    EXPECT_THAT(run.out, HasSubstr("Command: _MLINE\nCommand: _MLSTYLE\nCommand: LINE\nSpecify first point: "));
}

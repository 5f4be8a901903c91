// The kaldo executable's command line: options, exit codes, where the
// script comes from and what happens when a named file is missing; the
// tunables it restarts with.
#include "KaldoProcess.h"
#include "TreePaths.h"
#include "kaldo/launch/HeapPages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <filesystem>
#include <optional>

using ::testing::HasSubstr;
using ::testing::Not;

TEST(KaldoUsage, HelpVersionAndBadUsage)
{
    KaldoProcess kaldo;
    const KaldoRun help = kaldo.runArgs({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* option : {"--script", "--profile", "--support", "--crash-dir", "--load", "--no-modules", "--plot",
                               "--paper", "--orientation", "--plot-scale"})
        EXPECT_THAT(help.out, HasSubstr(option));
    // The program by its name, not the folder it was built in; the window
    // is there.
    EXPECT_THAT(help.out, HasSubstr("Usage: kaldo [options] [DRAWING]"));
    EXPECT_THAT(help.out, Not(HasSubstr("/bin/kaldo")));
    EXPECT_THAT(help.out, HasSubstr("the drawing window opens"));
    EXPECT_THAT(help.out, Not(HasSubstr("comes later")));

    const KaldoRun version = kaldo.runArgs({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_THAT(version.out, HasSubstr("kaldo 0."));

    const KaldoRun unknown = kaldo.runArgs({"--frobnicate"});
    EXPECT_EQ(unknown.exitCode, 64);
    EXPECT_THAT(unknown.err, HasSubstr("frobnicate"));

    const KaldoRun missingValue = kaldo.runArgs({"--script"});
    EXPECT_EQ(missingValue.exitCode, 64);

    const KaldoRun stray = kaldo.runArgs({"one.dxf", "two.dxf"});
    EXPECT_EQ(stray.exitCode, 64);
    EXPECT_THAT(stray.err, HasSubstr("two.dxf"));

    for (const QStringList& bad :
         {QStringList{"--export", "picture.jpg"}, QStringList{"--size", "9"}, QStringList{"--size", "big"},
          QStringList{"--background", "pink"}, QStringList{"--plot", "sheet.png"}, QStringList{"--paper", "A4"},
          QStringList{"--paper", "A9", "--plot", "x.pdf"}, QStringList{"--orientation", "sideways", "--plot", "x.pdf"},
          QStringList{"--plot-scale", "1:0", "--plot", "x.pdf"}}) {
        const KaldoRun refused = kaldo.runArgs(bad);
        EXPECT_EQ(refused.exitCode, 64) << bad.join(' ').toStdString();
        EXPECT_THAT(refused.err, HasSubstr(bad.first().toStdString())) << bad.join(' ').toStdString();
    }
}

TEST(KaldoUsage, MissingFilesGiveAMessageAndExitCodeTwo)
{
    KaldoProcess kaldo;
    const KaldoRun noScript = kaldo.runArgs({"--script", "no-such.scr", "--support", stagedSupport()});
    EXPECT_EQ(noScript.exitCode, 2);
    EXPECT_THAT(noScript.err, HasSubstr("no-such.scr"));
    EXPECT_TRUE(noScript.out.empty());

    const auto script = kaldo.writeFile("ok.scr", "LINE\n");
    const QString scriptArg = QString::fromStdString(script.string());
    // A profile that does not exist yet is made, in a new folder too, as a
    // first run makes the default one; one that cannot be made is refused.
    const KaldoRun newProfile =
        kaldo.runArgs({"--script", scriptArg, "--support", stagedSupport(), "--profile", "new/first.ini"});
    EXPECT_EQ(newProfile.exitCode, 0) << newProfile.err;
    EXPECT_TRUE(std::filesystem::is_regular_file(kaldo.dir() / "new" / "first.ini"));
    const KaldoRun noProfile =
        kaldo.runArgs({"--script", scriptArg, "--support", stagedSupport(), "--profile", "ok.scr/under-a-file.ini"});
    EXPECT_EQ(noProfile.exitCode, 2);
    EXPECT_THAT(noProfile.err, HasSubstr("cannot create the profile 'ok.scr/under-a-file.ini'"));

    const KaldoRun noSupport = kaldo.runArgs({"--script", scriptArg, "--support", "no-such-folder"});
    EXPECT_EQ(noSupport.exitCode, 2);
    EXPECT_THAT(noSupport.err, HasSubstr("no-such-folder"));

    const KaldoRun noModule =
        kaldo.runArgs({"--script", scriptArg, "--support", stagedSupport(), "--load", "nope.krx"});
    EXPECT_EQ(noModule.exitCode, 2);
    EXPECT_THAT(noModule.err, HasSubstr("nope.krx"));
}

TEST(KaldoUsage, ScriptFromStandardInputAndEndOfScript)
{
    KaldoProcess kaldo;
    const KaldoRun piped = kaldo.runArgs({"--script", "-", "--support", stagedSupport()}, "FOO\nLINE\n0,0\n");
    EXPECT_EQ(piped.exitCode, 0);
    EXPECT_THAT(piped.out, HasSubstr("Command: FOO\nUnknown command \"FOO\"."));
    EXPECT_THAT(piped.out, HasSubstr("Specify first point: 0,0\nSpecify next point"));

    // Without --script the commands come from standard input too, with a
    // note on standard error.
    const KaldoRun plain = kaldo.runArgs({"--support", stagedSupport()}, "LINE\n");
    EXPECT_EQ(plain.exitCode, 0);
    EXPECT_THAT(plain.out, HasSubstr("Command: LINE\nSpecify first point: "));
    EXPECT_THAT(plain.err, HasSubstr("standard input"));

    // A program feeding standard input counts as a script; a person typing
    // at a terminal does not, so that file dialogs can open.
    const char* const askHasMore = "SETVAR\nLISPCOMMANDHASMORE\n\nQUIT\n";
    EXPECT_THAT(kaldo.runArgs({"--support", stagedSupport()}, askHasMore).out, HasSubstr("LISPCOMMANDHASMORE <1>"));
    const KaldoRun typed = kaldo.runInTerminal({"--support", stagedSupport()}, askHasMore);
    EXPECT_EQ(typed.exitCode, 0);
    EXPECT_THAT(typed.out, HasSubstr("LISPCOMMANDHASMORE <0>"));

    // QUIT ends the session before the rest of the script.
    const KaldoRun quit = kaldo.runScript("QUIT\nLINE\n");
    EXPECT_EQ(quit.exitCode, 0);
    EXPECT_THAT(quit.out, Not(HasSubstr("LINE")));
    const KaldoRun exit = kaldo.runScript("exit\nLINE\n");
    EXPECT_THAT(exit.out, Not(HasSubstr("LINE")));
}

namespace {

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

// The GLIBC_TUNABLES of a kaldo started with these (none: unset), these
// arguments and this library preloaded, and taking commands or a script from
// standard input, read from the running process once it asks for a command;
// "-" when it has none.
std::string runningTunables(const std::optional<QString>& tunables, const QStringList& arguments = {},
                            const QString& preloaded = {})
{
    QTemporaryDir dir;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.remove("GLIBC_TUNABLES");
    if (tunables)
        env.insert("GLIBC_TUNABLES", *tunables);
    env.insert("LD_PRELOAD", preloaded);
    // A sanitized build refuses a library loaded before its runtime.
    env.insert("ASAN_OPTIONS", env.value("ASAN_OPTIONS") + ":verify_asan_link_order=0");
    QProcess kaldo;
    kaldo.setProcessEnvironment(env);
    kaldo.start(QString::fromStdString((stageDir() / "bin/kaldo").string()),
                QStringList{"--support", stagedSupport(), "--profile", dir.filePath("kaldo.ini"), "--crash-dir",
                            dir.filePath("crash")} + arguments);
    QByteArray out;
    while (!out.contains("Command:") && kaldo.waitForReadyRead(30000))
        out += kaldo.readAllStandardOutput();
    const QByteArray environ = fileBytes(QString("/proc/%1/environ").arg(kaldo.processId()));
    kaldo.write("QUIT\n");
    kaldo.closeWriteChannel();
    kaldo.waitForFinished(30000);
    EXPECT_EQ(kaldo.exitCode(), 0);
    for (const QByteArray& variable : environ.split('\0')) {
        if (variable.startsWith("GLIBC_TUNABLES="))
            return variable.mid(variable.indexOf('=') + 1).toStdString();
    }
    return "-";
}

}  // namespace

TEST(KaldoUsage, HeapAsksForHugePagesWhereTheSystemGrantsThemOnRequest)
{
    const std::string onRequest = "always [madvise] never\n";
    EXPECT_EQ(kaldo::hugeHeapPageTunables("", onRequest), "glibc.malloc.hugetlb=1");
    EXPECT_EQ(kaldo::hugeHeapPageTunables("glibc.malloc.check=0", onRequest),
              "glibc.malloc.check=0:glibc.malloc.hugetlb=1");
    // A user's own choice stands; so does a system that grants huge pages to
    // all memory, or to none.
    EXPECT_EQ(kaldo::hugeHeapPageTunables("glibc.malloc.hugetlb=0", onRequest), std::nullopt);
    for (const char* systemMode : {"[always] madvise never\n", "always madvise [never]\n", ""})
        EXPECT_EQ(kaldo::hugeHeapPageTunables("", systemMode), std::nullopt) << systemMode;

    // The real program restarts itself with them, keeping its arguments,
    // whatever it runs; a restarted one, or one told otherwise, does not
    // again, nor one whose heap may come from a preloaded library.
    const std::optional<std::string> expected =
        kaldo::hugeHeapPageTunables("", fileBytes("/sys/kernel/mm/transparent_hugepage/enabled").toStdString());
    EXPECT_EQ(runningTunables(std::nullopt), expected.value_or("-"));
    EXPECT_EQ(runningTunables(std::nullopt, {"--script", "-"}), expected.value_or("-"));
    EXPECT_EQ(runningTunables("glibc.malloc.hugetlb=0"), "glibc.malloc.hugetlb=0");
    EXPECT_EQ(runningTunables(std::nullopt, {}, "libm.so.6"), "-");
}

#include "KaldoProcess.h"

#include "TreePaths.h"
#include "dxf/ReopenProperty.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <csignal>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {
// The exit code of a run whose limits could not be set.
constexpr int kChildSetUpFailed = 125;
QString kaldoProgram()
{
    return QString::fromStdString((stageDir() / "bin/kaldo").string());
}
}  // namespace

KaldoProcess::KaldoProcess()
    : dir_(temp_.path().toStdString()), env_(QProcessEnvironment::systemEnvironment())
{
    if (!temp_.isValid())
        throw std::runtime_error("cannot create a temporary folder");
    env_.insert("QT_QPA_PLATFORM", "offscreen");
    env_.insert("XDG_CONFIG_HOME", QString::fromStdString((dir_ / "config").string()));
    env_.insert("XDG_STATE_HOME", QString::fromStdString((dir_ / "state").string()));
    writeFile("kaldo.ini", "[Settings]\n");
}

KaldoProcess::~KaldoProcess()
{
    const std::filesystem::path reopened = dir_ / "reopened";
    std::filesystem::create_directory(reopened);
    std::vector<std::filesystem::path> saved;
    std::map<std::filesystem::path, std::filesystem::path> sources;
    for (const std::filesystem::path& drawing : drawingsUnder(dir_)) {
        if (drawing.parent_path() == reopened)
            continue;
        const std::filesystem::path copy =
            reopened / (std::to_string(saved.size()) + "-" + drawing.filename().string());
        bool opened = false;
        const std::string problem = reopenProblem(drawing, copy, opened);
        if (!problem.empty() && (opened || !written_.contains(drawing)))
            ADD_FAILURE() << drawing.filename() << ": " << problem;
        if (opened) {
            saved.push_back(copy);
            sources[copy] = drawing.filename();
        }
    }
    for (const auto& [copy, findings] : ezdxfAuditFindings(saved))
        if (!findings.empty())
            ADD_FAILURE() << sources[copy] << " saved again, ezdxf's audit finds: " << findings;
}

std::filesystem::path KaldoProcess::writeFile(const std::string& name, const std::string& text) const
{
    const std::filesystem::path path = dir_ / name;
    std::ofstream(path, std::ios::binary) << text;
    written_.insert(path);
    return path;
}

KaldoRun KaldoProcess::runArgs(const QStringList& args, const std::string& standardInput) const
{
    return run(kaldoProgram(), args, standardInput);
}

KaldoRun KaldoProcess::runInTerminal(const QStringList& args, const std::string& typed) const
{
    return run("/usr/bin/python3", QStringList{sourceFile("tests/e2e/run_in_terminal.py"), kaldoProgram()} + args,
               typed);
}

KaldoRun KaldoProcess::run(const QString& program, const QStringList& args, const std::string& standardInput) const
{
    QProcess process;
    process.setProcessEnvironment(env_);
    process.setChildProcessModifier([sizeLimit = fileSizeLimit_, keepToPermissions = keepToPermissions_] {
        if (sizeLimit >= 0) {
            const rlimit limit{rlim_t(sizeLimit), rlim_t(sizeLimit)};
            std::signal(SIGXFSZ, SIG_IGN);
            if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
                ::_exit(kChildSetUpFailed);
        }
        // Root's override of read, write and search permissions leaves the
        // bounding set, so the program run keeps to the files' modes.
        if (keepToPermissions && ::geteuid() == 0
            && (::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) != 0
                || ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) != 0))
            ::_exit(kChildSetUpFailed);
    });
    process.setWorkingDirectory(temp_.path());
    process.start(program, args);
    if (!process.waitForStarted())
        return {};
    process.write(standardInput.data(), static_cast<qint64>(standardInput.size()));
    process.closeWriteChannel();
    process.waitForFinished(-1);
    KaldoRun run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput().toStdString();
    run.err = process.readAllStandardError().toStdString();
    return run;
}

KaldoRun KaldoProcess::runScript(const std::string& script, const QStringList& extraArgs) const
{
    const std::filesystem::path file = writeFile("session.scr", script);
    QStringList args{"--script", QString::fromStdString(file.string()),
                     "--profile", QString::fromStdString((dir_ / "kaldo.ini").string()),
                     "--crash-dir", QString::fromStdString((dir_ / "crash").string()),
                     "--support", stagedSupport()};
    return runArgs(args + extraArgs);
}

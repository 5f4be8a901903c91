#include "KaldoProcess.h"

#include <QProcess>

#include <fstream>
#include <stdexcept>

namespace {
const QString kaldoBinary = QStringLiteral(KALDO_STAGE_DIR "/bin/kaldo");
const QString stagedSupport = QStringLiteral(KALDO_STAGE_DIR "/share/kaldo/Support");
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

std::filesystem::path KaldoProcess::writeFile(const std::string& name, const std::string& text) const
{
    const std::filesystem::path path = dir_ / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

KaldoRun KaldoProcess::runArgs(const QStringList& args, const std::string& standardInput) const
{
    return run(kaldoBinary, args, standardInput);
}

KaldoRun KaldoProcess::runInTerminal(const QStringList& args, const std::string& typed) const
{
    return run("/usr/bin/python3", QStringList{KALDO_SOURCE_DIR "/tests/e2e/run_in_terminal.py", kaldoBinary} + args,
               typed);
}

KaldoRun KaldoProcess::run(const QString& program, const QStringList& args, const std::string& standardInput) const
{
    QProcess process;
    process.setProcessEnvironment(env_);
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
                     "--support", stagedSupport};
    return runArgs(args + extraArgs);
}

// Runs the staged kaldo binary on a script in a private temporary folder
// (its own profile and crash folder) and collects what it printed. When it
// goes, every drawing left in the folder is checked: one that kaldo wrote
// must open, and every one that opens must save into a file that kaldo
// opens again to the same bytes and that ezdxf reads with nothing for its
// audit to find; a drawing that does not is a failure of the test.
#pragma once

#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <filesystem>
#include <set>
#include <string>

struct KaldoRun {
    int exitCode = -1;
    std::string out;
    std::string err;
};

class KaldoProcess {
public:
    KaldoProcess();
    ~KaldoProcess();
    KaldoProcess(const KaldoProcess&) = delete;
    KaldoProcess& operator=(const KaldoProcess&) = delete;

    const std::filesystem::path& dir() const { return dir_; }
    // Writes text into a file of the temporary folder and returns its path.
    std::filesystem::path writeFile(const std::string& name, const std::string& text) const;

    // Runs kaldo with exactly these arguments.
    KaldoRun runArgs(const QStringList& args, const std::string& standardInput = {}) const;
    // Runs kaldo with a terminal as its standard input, into which the input
    // is typed; out holds everything written to the terminal.
    KaldoRun runInTerminal(const QStringList& args, const std::string& typed) const;
    // Runs a script with the folder's profile and crash folder, the staged
    // Support folder and modules, and any further arguments.
    KaldoRun runScript(const std::string& script, const QStringList& extraArgs = {}) const;

    void setEnv(const QString& name, const QString& value) { env_.insert(name, value); }
    // Later runs may write no file beyond bytes: a write past it fails as on
    // a full disk (the signal the limit raises is ignored).
    void limitFileSize(long bytes) { fileSizeLimit_ = bytes; }
    // Later runs keep to file permissions even when started by root, as any
    // user's runs do (root's power to override them is dropped).
    void keepToFilePermissions() { keepToPermissions_ = true; }

private:
    KaldoRun run(const QString& program, const QStringList& args, const std::string& standardInput) const;

    QTemporaryDir temp_;
    std::filesystem::path dir_;
    // The files the test wrote (writeFile), which kaldo need not open.
    mutable std::set<std::filesystem::path> written_;
    QProcessEnvironment env_;
    long fileSizeLimit_ = -1;
    bool keepToPermissions_ = false;
};

// Keeps each fault or error report as a folder in the crash folder:
// report.txt (time, message lines, source locations, attachment notes) and
// copies of the attached files. Writing a report never throws.
#pragma once

#include "kxcrash.h"

#include <filesystem>
#include <functional>

namespace kaldo {

class CrashRecorder : public KxCrashRecorder {
public:
    // Headless runs answer modal dialogs through a driver instead of exec():
    // it acts on the dialog and returns its modal result.
    using DialogDriver = std::function<int(QDialog&)>;

    explicit CrashRecorder(std::filesystem::path crashDir);

    void setGuardEnabled(bool enabled) { guardEnabled_ = enabled; }
    void setDialogDriver(DialogDriver driver) { driver_ = std::move(driver); }
    const std::filesystem::path& crashDir() const { return crashDir_; }
    // The folder of the latest report, empty before the first.
    const std::filesystem::path& latestReport() const { return latest_; }

    bool runModal(QDialog* dialog, int* modalResult) override;
    int runModalFallback(QDialog* dialog) override;
    void receiveError(const KdErrorStatus& error) override;
    void receiveError(const KdExceptionWithMsg& error) override;
    void recordFault(int code, const void* context, const char* sourceLocation, int line) override;
    void logMessage(const wchar_t* message) override;
    void attachFile(const wchar_t* path, const wchar_t* note) override;

    // Starts a new report with a first line of text.
    void report(const std::string& text);

private:
    int exec(QDialog& dialog);
    void startReport();
    void appendLine(const std::string& line);

    std::filesystem::path crashDir_;
    std::filesystem::path latest_;
    DialogDriver driver_;
    bool guardEnabled_ = true;
    int reportsWritten_ = 0;
};

}  // namespace kaldo

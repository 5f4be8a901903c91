// Keeps each fault or error report as a folder in the crash folder:
// report.txt (time, message lines, source locations, attachment notes) and
// copies of the attached files. Writing a report never throws.
#pragma once

#include "kxcrash.h"

#include <filesystem>

namespace kaldo {

class CrashRecorder : public KxCrashRecorder {
public:
    explicit CrashRecorder(std::filesystem::path crashDir);

    void setGuardEnabled(bool enabled) { guardEnabled_ = enabled; }
    const std::filesystem::path& crashDir() const { return crashDir_; }
    // The folder of the latest report, empty before the first.
    const std::filesystem::path& latestReport() const { return latest_; }

    bool runModal(CDialog* dialog, int* modalResult) override;
    int runModalFallback(CDialog* dialog) override;
    void receiveError(const KdErrorStatus& error) override;
    void receiveError(const KdExceptionWithMsg& error) override;
    void recordFault(int code, const void* context, const char* sourceLocation, int line) override;
    void logMessage(const wchar_t* message) override;
    void attachFile(const wchar_t* path, const wchar_t* note) override;

    // Starts a new report with a first line of text.
    void report(const std::string& text);

private:
    void startReport();
    void appendLine(const std::string& line);

    std::filesystem::path crashDir_;
    std::filesystem::path latest_;
    bool guardEnabled_ = true;
    int reportsWritten_ = 0;
};

}  // namespace kaldo

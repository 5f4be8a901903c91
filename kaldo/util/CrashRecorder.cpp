#include "kaldo/util/CrashRecorder.h"

#include "kaldo/core/Host.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"
#include "kaldo/util/TerminalText.h"
#include "kxstring.h"

#include "kxuidialog.h"

#include <cstdio>
#include <ctime>
#include <fstream>

namespace kaldo {

namespace {

std::string timeStamp(const char* pattern)
{
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char text[64];
    std::strftime(text, sizeof text, pattern, &utc);
    return text;
}

std::string at(const char* file, int line)
{
    return std::string(" at ") + (file && *file ? file : "?") + ":" + std::to_string(line);
}

}  // namespace

CrashRecorder::CrashRecorder(std::filesystem::path crashDir) : crashDir_(std::move(crashDir)) {}

bool CrashRecorder::runModal(CDialog* dialog, int* modalResult)
{
    if (!guardEnabled_ || !dialog)
        return false;
    int result = IDCANCEL;
    try {
        result = dialog->DoModal();
    } catch (const KdErrorStatus& error) {
        receiveError(error);
    } catch (const KdExceptionWithMsg& error) {
        receiveError(error);
    } catch (const std::exception& error) {
        report(std::string("Unhandled error in a dialog: ") + error.what());
    } catch (...) {
        report("Unhandled error of unknown kind in a dialog");
    }
    if (modalResult)
        *modalResult = result;
    return true;
}

int CrashRecorder::runModalFallback(CDialog* dialog)
{
    return dialog ? dialog->DoModal() : IDCANCEL;
}

void CrashRecorder::receiveError(const KdErrorStatus& error)
{
    report("Error status " + std::to_string(static_cast<int>(error.status())) +
           at(error.file(), error.line()));
}

void CrashRecorder::receiveError(const KdExceptionWithMsg& error)
{
    report("Error: " + kxutToMultiByte(error.message()) + at(error.file(), error.line()));
}

void CrashRecorder::recordFault(int code, const void* context, const char* sourceLocation, int line)
{
    char hex[16];
    std::snprintf(hex, sizeof hex, "0x%08x", static_cast<unsigned>(code));
    report(std::string("Fault ") + hex + at(sourceLocation, line) +
           (context ? " (machine context recorded)" : ""));
}

void CrashRecorder::logMessage(const wchar_t* message)
{
    if (latest_.empty())
        startReport();
    appendLine("Message: " + kxutToMultiByte(message ? message : L""));
}

void CrashRecorder::attachFile(const wchar_t* path, const wchar_t* note)
{
    if (latest_.empty())
        startReport();
    const std::filesystem::path source = kxutToMultiByte(path ? path : L"");
    std::string problem;
    try {
        replaceFile(latest_ / source.filename(), readFile(source));
    } catch (const FileError& e) {
        problem = " (could not be copied: " + std::string(e.what()) + ")";
    }
    appendLine("Attached: " + source.string() + problem + " -- " + kxutToMultiByte(note ? note : L""));
}

void CrashRecorder::report(const std::string& text)
{
    startReport();
    appendLine(text);
}

void CrashRecorder::startReport()
{
    const std::string stamp = timeStamp("%Y%m%d-%H%M%S");
    std::error_code ec;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const std::filesystem::path dir =
            crashDir_ / ("report-" + stamp + "-" + std::to_string(++reportsWritten_));
        if (std::filesystem::create_directories(dir, ec)) {
            latest_ = dir;
            appendLine("Report written " + timeStamp("%Y-%m-%d %H:%M:%S") + " UTC");
            return;
        }
        if (ec)
            break;
    }
    // The crash folder cannot be written: keep the report on standard error.
    latest_.clear();
    std::fprintf(stderr, "kaldo: cannot write a crash report in %s\n", terminalText(crashDir_.string()).c_str());
}

void CrashRecorder::appendLine(const std::string& line)
{
    if (latest_.empty()) {
        std::fprintf(stderr, "kaldo: crash report: %s\n", terminalText(line).c_str());
        return;
    }
    std::ofstream(latest_ / "report.txt", std::ios::app) << line << '\n';
}

}  // namespace kaldo

KxCrashRecorder* kaldGetCrashRecorder()
{
    return kaldo::host().crashRecorder;
}

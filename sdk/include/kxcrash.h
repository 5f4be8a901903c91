// The host's crash recorder: runs modal dialogs under a guard, receives the
// error objects modules throw, and keeps fault reports with attached files.
// It never stops the host.
#pragma once

#include "kxtypes.h"

#include <exception>
#include <string>

class CDialog;

// A database result that a module raises as an error.
class KdErrorStatus {
public:
    KdErrorStatus(Kald::ErrorStatus status, const char* file, int line)
        : status_(status), file_(file ? file : ""), line_(line) {}
    Kald::ErrorStatus status() const { return status_; }
    const char* file() const { return file_; }
    int line() const { return line_; }

private:
    Kald::ErrorStatus status_;
    const char* file_;
    int line_;
};

// An error with a message text that a module raises.
class KdExceptionWithMsg : public std::exception {
public:
    KdExceptionWithMsg(std::wstring message, const char* file, int line)
        : message_(std::move(message)), file_(file ? file : ""), line_(line) {}
    const std::wstring& message() const { return message_; }
    const char* file() const { return file_; }
    int line() const { return line_; }
    const char* what() const noexcept override { return "KdExceptionWithMsg"; }

private:
    std::wstring message_;
    const char* file_;
    int line_;
};

class KxCrashRecorder {
public:
    virtual ~KxCrashRecorder() = default;

    // Runs the dialog modally (DoModal) under the guard; stores the modal
    // result in *modalResult when given. An error thrown inside the dialog
    // becomes a report and the run counts as cancelled. Returns false when
    // it did not run the dialog (the guard is switched off); the caller then
    // uses runModalFallback.
    virtual bool runModal(CDialog* dialog, int* modalResult) = 0;
    // Runs the dialog modally without the guard and returns its result.
    virtual int runModalFallback(CDialog* dialog) = 0;

    // Error objects a module caught and hands over; each becomes a report.
    virtual void receiveError(const KdErrorStatus& error) = 0;
    virtual void receiveError(const KdExceptionWithMsg& error) = 0;

    // A fault caught by a module's guard: starts a new report with the fault
    // code, the place in the source and the machine context (may be null).
    virtual void recordFault(int code, const void* context, const char* sourceLocation, int line) = 0;
    // Adds a message to the latest report (starting one when there is none).
    virtual void logMessage(const wchar_t* message) = 0;
    // Copies a file into the latest report, with a note on why it matters.
    virtual void attachFile(const wchar_t* path, const wchar_t* note) = 0;
};

// The running host's recorder, or null.
KxCrashRecorder* kaldGetCrashRecorder();

// Named files read and written through the host's checks: a file is opened
// without waiting and must be a regular file (folders, devices, FIFOs and
// sockets are refused), a failed read is never taken for the end of the
// file, and every byte written is checked. Messages name the file.
#pragma once

#include <cstddef>
#include <string>

// Reads a named file from its start.
class KxFileReader {
public:
    explicit KxFileReader(const wchar_t* path);
    ~KxFileReader();
    KxFileReader(const KxFileReader&) = delete;
    KxFileReader& operator=(const KxFileReader&) = delete;

    bool isOpen() const { return fd_ >= 0; }
    // Nothing stands at the path (a file yet to be made).
    bool isMissing() const { return missing_; }
    // Reads up to size bytes into buffer: the number read, 0 at the end of
    // the file, -1 when the read failed. Allocates nothing and takes no lock.
    long read(char* buffer, std::size_t size);
    // Why the file could not be opened or read; empty while nothing failed.
    std::wstring problem() const;

private:
    std::wstring path_;
    std::wstring openProblem_;
    int fd_ = -1;
    int readError_ = 0;
    bool missing_ = false;
};

// Makes the file at path (created when missing) hold exactly content,
// written in place: its mode, owner and links stay. Room is taken before a
// byte changes and a failed write puts the old text back. False, with
// problem set, when the file is no regular file or cannot be written.
bool kxutWriteFileInPlace(const wchar_t* path, const std::string& content, std::wstring& problem);

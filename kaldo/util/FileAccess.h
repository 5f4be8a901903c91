// The one way the host reads and writes bytes of named files. A named file
// is opened without waiting (a FIFO without a writer cannot block) and must
// be a regular file: folders, devices, FIFOs and sockets are refused with a
// message naming the file. A failed read is an error, never the end of the
// file; every byte written is checked, so a short write or a full disk is
// reported.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kaldo {

// Why a named file cannot be read or written; the message names the file.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// An open descriptor, closed when it goes.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int release()
    {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }

private:
    int fd_ = -1;
};

// "it is a folder", "it is a FIFO", ... for a mode that is not a regular
// file; empty for a regular file.
std::string notRegularReason(mode_t mode);

// "cannot <verb> '<path>': <reason>." (no second full stop after a reason
// that ends a sentence already)
std::string fileMessage(std::string_view verb, const std::filesystem::path& path, std::string_view reason);

// Opens path for reading. Throws FileError when it cannot be opened or is
// no regular file. The descriptor blocks on reads as usual.
FileDescriptor openForReading(const std::filesystem::path& path);

// Opens path with flags (O_WRONLY or O_RDWR, O_CREAT...) the same way:
// what stands at the path is looked at before it is opened, so that no
// device is ever opened, and again after. Throws FileError.
FileDescriptor openRegularFile(const std::filesystem::path& path, int flags, mode_t mode = 0666);

// Reads up to size bytes, retrying interrupted reads: the number read, 0 at
// the end of the file, -1 (errno set) when the read failed. Allocates
// nothing.
long readSome(int fd, char* buffer, std::size_t size);

// Reads everything from fd to the end; a failed read throws FileError
// naming path.
std::string readAll(int fd, const std::filesystem::path& path);

// The whole file. Throws FileError.
std::string readFile(const std::filesystem::path& path);

// Writes every byte of bytes to fd at its position. Throws FileError with
// the reason alone (the caller names the file) when a write fails or makes
// no progress.
void writeAll(int fd, std::string_view bytes);

// Writes bytes as writeAll does, to a file written once from its start to
// its end and synced when whole (a save's temporary): each time its end
// passes a multiple of 8 MB, the system starts writing those 8 MB to disk,
// and the 8 MB before them, waited for, leave the system's memory. So a
// large file does not fill memory with pages waiting for the disk, whose
// new pages cost the writes more than the text's making (937 MB took 9.9 s
// and 3.5 s of system time, now 1.5 s and 0.45 s), and its sync finds
// little left to write. A descriptor without such pages (a pipe) is
// written as writeAll does.
void writeAllStreamed(int fd, std::string_view bytes);

}  // namespace kaldo

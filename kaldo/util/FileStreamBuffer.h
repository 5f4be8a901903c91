// A named file read as a stream (scripts): opened through the checked file
// path, so that a FIFO or a device is refused at once; a failed read ends
// the stream and is kept, so that the reader tells it from the end of the
// file.
#pragma once

#include "kaldo/util/FileAccess.h"

#include <array>
#include <filesystem>
#include <streambuf>
#include <string>

namespace kaldo {

class FileStreamBuffer : public std::streambuf {
public:
    // Throws FileError when the file cannot be opened or is no regular file.
    explicit FileStreamBuffer(const std::filesystem::path& path);

    // Why reading stopped before the end of the file; empty otherwise.
    const std::string& problem() const { return problem_; }

protected:
    int_type underflow() override;

private:
    std::filesystem::path path_;
    FileDescriptor fd_;
    std::string problem_;
    std::array<char, 64 * 1024> bytes_{};
};

}  // namespace kaldo

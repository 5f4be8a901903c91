// Lines of a .mln file, read as a text stream of wide characters would read
// them into a buffer of 2049 characters with a read limit of 2048: CR LF and
// a bare LF end a line, bytes become wide characters through the process's
// multibyte conversion (a byte that starts no valid character becomes '?'),
// at most 2047 characters are taken a time so that a longer line comes out
// as several, the first line feed of what was read is cut, and the text
// ends at the first NUL.
//
// Reading a line allocates nothing and takes no lock, so it may run inside
// a FaultGuard step; the object itself is made outside one.
#pragma once

#include <cstddef>
#include <cwchar>
#include <string>

#include "kxfile.h"

namespace kdml {

// The size of a line buffer, in wide characters.
inline constexpr std::size_t kMlnLineBufferSize = 2049;

class MlnLineSource {
public:
    // Opens path for reading through the host's checked file access;
    // isOpen() tells whether that worked.
    explicit MlnLineSource(const wchar_t* path);
    MlnLineSource(const MlnLineSource&) = delete;
    MlnLineSource& operator=(const MlnLineSource&) = delete;

    bool isOpen() const { return file_.isOpen(); }
    // Nothing stands at the path.
    bool isMissing() const { return file_.isMissing(); }

    // Reads the next line. False when nothing could be read: the end of the
    // file was reached before, or the read failed (failed() tells).
    bool next();
    // The line last read, NUL-terminated; valid until the next read.
    const wchar_t* line() const { return line_; }
    std::size_t length() const { return length_; }
    // True once a read has run into the end of the file.
    bool atEnd() const { return atEnd_; }
    // True once a read of the file has failed: what follows is unknown.
    bool failed() const { return failed_; }
    // Why the file could not be opened or read whole, naming it; empty while
    // nothing failed.
    std::wstring problem() const { return file_.problem(); }

private:
    bool refill();
    bool nextCharacter(wchar_t& c);

    static constexpr std::size_t kByteBufferSize = 64 * 1024;

    KxFileReader file_;
    bool atEnd_ = false;
    bool failed_ = false;
    std::size_t pos_ = 0;
    std::size_t size_ = 0;
    std::size_t length_ = 0;
    char bytes_[kByteBufferSize];
    wchar_t line_[kMlnLineBufferSize];
};

}  // namespace kdml

// A drawing file that cannot be read or written: the message names the
// line of the file where reading stopped (0 when no line is to blame).
#pragma once

#include <stdexcept>
#include <string>

namespace kaldo::dxf {

class DxfError : public std::runtime_error {
public:
    DxfError(long line, const std::string& what)
        : std::runtime_error(line > 0 ? "line " + std::to_string(line) + ": " + what : what), line_(line)
    {
    }
    // The same error, its message led by the file's name.
    static DxfError inFile(const std::string& file, const DxfError& error)
    {
        return DxfError(error.line_, file + ", " + error.what(), Preformatted{});
    }
    long line() const { return line_; }

private:
    struct Preformatted {};
    DxfError(long line, const std::string& message, Preformatted) : std::runtime_error(message), line_(line) {}
    long line_;
};

}  // namespace kaldo::dxf

// A drawing file that cannot be read or written: the message names the
// line of the file where reading stopped (0 when no line is to blame).
#pragma once

#include <stdexcept>
#include <string>

namespace kaldo::dxf {

class DxfError : public std::runtime_error {
public:
    // Control characters in what (quoted from a file) are shown escaped, so
    // that no file can send a terminal its control sequences.
    DxfError(long line, const std::string& what)
        : std::runtime_error(line > 0 ? "line " + std::to_string(line) + ": " + escaped(what) : escaped(what)),
          line_(line)
    {
    }
    // The same error, its message led by the file's name.
    static DxfError inFile(const std::string& file, const DxfError& error)
    {
        return DxfError(error.line_, file + ", " + error.what(), Preformatted{});
    }
    long line() const { return line_; }

private:
    static std::string escaped(const std::string& text)
    {
        static constexpr char kHex[] = "0123456789ABCDEF";
        std::string out;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x20 || byte == 0x7F)
                out += std::string("\\x") + kHex[byte >> 4] + kHex[byte & 0xF];
            else
                out += c;
        }
        return out;
    }

    struct Preformatted {};
    DxfError(long line, const std::string& message, Preformatted) : std::runtime_error(message), line_(line) {}
    long line_;
};

}  // namespace kaldo::dxf

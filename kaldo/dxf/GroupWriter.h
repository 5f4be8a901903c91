// Writes groups of an ASCII drawing file into a buffer that goes to the
// file descriptor in large blocks. Numbers are written in their shortest
// form that reads back to the same value.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "kxtypes.h"

namespace kaldo::dxf {

class GroupWriter {
public:
    // Writes to fd (not owned); flush() or the destructor's caller must
    // flush. Errors are thrown as DxfError with the system's reason.
    explicit GroupWriter(int fd);
    GroupWriter(const GroupWriter&) = delete;
    GroupWriter& operator=(const GroupWriter&) = delete;

    void text(int code, std::string_view value);
    void wide(int code, const std::wstring& value);
    void real(int code, double value);
    void integer(int code, std::int64_t value);
    void handle(int code, std::uint64_t value);
    // An angle given in radians, written in degrees to 15 significant
    // digits, so that whole degrees read back whole.
    void degrees(int code, double radians);
    // A point or vector as three groups: code, code + 10, code + 20.
    void point(int code, double x, double y, double z);
    void point(int code, const KxGePoint3d& p) { point(code, p.x, p.y, p.z); }
    void vector(int code, const KxGeVector3d& v) { point(code, v.x, v.y, v.z); }

    void flush();

private:
    void code(int code);
    void ensure(std::size_t bytes);
    void raw(std::string_view bytes);

    int fd_;
    std::string buffer_;
    std::size_t used_ = 0;
    // The last real written in its shortest form, by its bits, and its text.
    std::uint64_t lastReal_ = 0;
    std::array<char, 32> lastRealText_{};
    std::size_t lastRealLength_ = 0;
};

}  // namespace kaldo::dxf

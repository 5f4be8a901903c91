// Whole numbers written seven bits a byte, lowest first, the high bit set
// on every byte but the last: small numbers take one byte. Records kept
// packed use them for lengths, places and handle steps.
#pragma once

#include <cstdint>
#include <string>

namespace kaldo {

// Appends number in at least width bytes (leading bytes carrying no bits,
// so that the number can later be written over in place).
inline void appendVarNumber(std::string& bytes, std::uint64_t number, int width = 1)
{
    for (; number >= 0x80 || width > 1; number >>= 7, --width)
        bytes.push_back(char((number & 0x7F) | 0x80));
    bytes.push_back(char(number));
}

// Reads a number appendVarNumber wrote at `at` and steps past it.
inline std::uint64_t takeVarNumber(const char*& at)
{
    std::uint64_t number = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*at++);
        number |= std::uint64_t(byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return number;
    }
}

}  // namespace kaldo

// Texts of reals below 10^5 of up to three decimals, and of reals from 1
// up to 2^52 in magnitude, made in whole-number arithmetic that is exact
// (the value's significand times a power of ten) instead of
// std::to_chars's general search, giving the same texts. They may
// overwrite bytes after the text they write, up to 34 bytes from out: out
// needs room for that many.
#pragma once

namespace kaldo::dxf {

// Writes at out the text std::to_chars(out, end, value) gives, for a value
// below 10^5 in magnitude that is a whole number of thousandths (-0 as
// "-0"), as most of a drawing's values are; returns the end of the text,
// or nullptr, with nothing written, for other values.
char* writeFewDecimals(double value, char* out);

// Writes at out the text std::to_chars(out, end, value) gives, for a value
// that is not whole and lies from 1 up to 2^52 in magnitude; returns the
// end of the text, or nullptr, with nothing written, for other values and
// for the rare value that lies halfway between two texts.
char* writeShortestDecimal(double value, char* out);

// Writes at out the text std::to_chars(out, end, value,
// std::chars_format::general, 15) gives, for a value from 1 up to 2^52 in
// magnitude; returns the end of the text, or nullptr, with nothing
// written, for other values, for those that round up to 10^15 and for the
// rare value that lies halfway between two texts.
char* writeFifteenDigits(double value, char* out);

}  // namespace kaldo::dxf

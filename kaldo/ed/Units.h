// Distances and angles as the command line writes and reads them.
//
// Linear units: 1 scientific, 2 decimal, 3 engineering (feet and decimal
// inches), 4 architectural (feet and fractional inches), 5 fractional. For
// units 3 and 4 the value is in inches. Precision is the number of decimals,
// or for fractions the power of two of the denominator (3 -> 1/8).
// Angular units: 0 decimal degrees, 1 degrees/minutes/seconds, 2 grads,
// 3 radians, 4 surveyor's bearings. Angles are radians, counter-clockwise
// from the X axis, and written in [0, 360) degrees.
// Zero suppression (DIMZIN): bit 4 drops a leading zero ("0.5" -> ".5"),
// bit 8 trailing zeros ("1.5000" -> "1.5", "2.0000" -> "2"); for feet and
// inches the low two bits choose which zero feet or inches are shown
// (0 drops both, 1 keeps both, 2 keeps zero feet, 3 keeps zero inches).
// A value of kLargestPlainNumber or more (inches for units 3 to 5) is
// written as unit 1 writes it, whatever the unit; units 3 to 5 switch
// sooner when the value counted in steps of their precision passes 9e15.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kaldo {

// Values of this magnitude and beyond are written in scientific form in
// every linear unit ("1.0000E+15"): a double holds no more than 15 or 16
// significant digits, so longer whole parts would show noise.
constexpr double kLargestPlainNumber = 1e15;

std::wstring formatDistance(double value, int unit, int precision, int dimzin);
std::wstring formatAngle(double radians, int unit, int precision, int dimzin);

// An angle typed in unit: a plain number is read in that unit (degrees for
// 0, 1 and 4); a suffix overrides it: "d" (with optional minutes ' and
// seconds "), "g" grads, "r" radians; a bearing "N 45d E" is accepted in
// every unit. Nothing for text that is no angle.
std::optional<double> parseAngle(std::wstring_view text, int unit);

}  // namespace kaldo

// Distances and angles as text, in the units of the drawing.
//
// Linear units (LUNITS): 1 scientific, 2 decimal, 3 engineering, 4
// architectural, 5 fractional; angular units (AUNITS): 0 degrees, 1
// degrees/minutes/seconds, 2 grads, 3 radians, 4 surveyor's bearings. -1 for
// a unit or precision means the current system variable (LUNITS, LUPREC,
// AUNITS, AUPREC). DIMZIN suppresses leading (bit 4) and trailing (bit 8)
// zeros. out must hold KXED_NUMBER_SIZE characters.
#pragma once

#include <cstddef>

constexpr std::size_t KXED_NUMBER_SIZE = 132;

int kxdbRToS(double value, int unit, int precision, wchar_t* out);
int kxdbAngToS(double radians, int unit, int precision, wchar_t* out);
// Reads an angle written in unit (or any form with a d, g or r suffix, or a
// bearing) into radians. RTNORM, or RTERROR for text that is no angle.
int kxdbAngToF(const wchar_t* text, int unit, double* out);

// The kaldo program lives in a library of its own, which the launcher
// (kaldo/main.cpp) loads once the process has the heap it wants: the
// launcher loads no Qt, so that restarting it costs next to nothing.
#pragma once

// The library, found by the launcher's run path, and its entry point, called
// as main would be.
namespace kaldo {
inline constexpr char kProgramLibrary[] = "libkaldoprogram.so";
inline constexpr char kProgramEntry[] = "kaldoRunProgram";
}  // namespace kaldo

extern "C" __attribute__((visibility("default"))) int kaldoRunProgram(int argc, char** argv);

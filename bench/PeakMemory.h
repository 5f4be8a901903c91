// This process's peak resident memory, measured afresh for each piece of
// work a benchmark times (Linux).
#pragma once

#include <malloc.h>

#include <fstream>
#include <string>

// Starts measuring the peak afresh (clear_refs 5 resets the high-water
// mark), after giving back what earlier work freed, so that the peak is
// that of the work that follows.
inline void resetPeakMemory()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

// The peak resident memory since the last reset, in megabytes.
inline double peakMegabytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stod(line.substr(6)) / 1024.0;
    return 0;
}

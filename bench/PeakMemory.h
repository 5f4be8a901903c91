// This process's peak resident memory, measured afresh for one piece of
// work a benchmark times (Linux).
#pragma once

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <string>

// Starts measuring the peak afresh (clear_refs 5 resets the high-water
// mark), after giving back what earlier work freed, so that the peak is
// the next work's own.
inline void resetPeakMemory()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

// A line of /proc/self/status in kilobytes ("VmHWM:", "VmRSS:"), in
// megabytes.
inline double statusMegabytes(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key, 0) == 0)
            return std::stod(line.substr(key.size())) / 1024.0;
    return 0;
}

// The peak resident memory since the last reset, in megabytes.
inline double peakMegabytes()
{
    return statusMegabytes("VmHWM:");
}

// The resident memory now, in megabytes.
inline double residentMegabytes()
{
    return statusMegabytes("VmRSS:");
}

// Runs work once per iteration of state; returns the largest peak any
// iteration reached, each measured afresh, in megabytes.
template <class Work>
double largestPeakOfEach(benchmark::State& state, Work&& work)
{
    double peak = 0;
    for (auto _ : state) {
        resetPeakMemory();
        work();
        peak = std::max(peak, peakMegabytes());
    }
    return peak;
}

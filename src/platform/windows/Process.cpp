#include "platform/Platform.h"

#include <windows.h>

#include <psapi.h>

namespace dunx::platform {

namespace {

double seconds(const FILETIME& time) {
    // FILETIME counts 100-nanosecond intervals.
    const ULONGLONG ticks =
        (static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return static_cast<double>(ticks) / 1e7;
}

} // namespace

bool ProcessCpuTimes(double& kernelSeconds, double& userSeconds) {
    FILETIME creation, exit, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &creation, &exit, &kernel, &user))
        return false;
    kernelSeconds = seconds(kernel);
    userSeconds = seconds(user);
    return true;
}

bool ProcessMemory(unsigned long long& peakBytes, unsigned long long& currentBytes) {
    // The working set is what Windows calls the resident memory.
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters))
        return false;
    peakBytes = counters.PeakWorkingSetSize;
    currentBytes = counters.WorkingSetSize;
    return true;
}

} // namespace dunx::platform

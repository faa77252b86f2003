#include "platform/Platform.h"

#include <cstdio>
#include <cstring>

#include <sys/resource.h>
#include <unistd.h>

namespace dunx::platform {

namespace {

double seconds(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

} // namespace

bool ProcessCpuTimes(double& kernelSeconds, double& userSeconds) {
    rusage usage{};
    if (getrusage(RUSAGE_SELF, &usage) != 0)
        return false;
    kernelSeconds = seconds(usage.ru_stime);
    userSeconds = seconds(usage.ru_utime);
    return true;
}

bool ProcessMemory(unsigned long long& peakBytes, unsigned long long& currentBytes) {
    // /proc/self/status has both figures in kB ("VmHWM" peak, "VmRSS" current).
    std::FILE* status = std::fopen("/proc/self/status", "r");
    if (!status)
        return false;
    unsigned long long peak = 0, current = 0;
    bool havePeak = false, haveCurrent = false;
    char line[256];
    while (std::fgets(line, sizeof line, status)) {
        unsigned long long kilobytes = 0;
        if (std::sscanf(line, "VmHWM: %llu kB", &kilobytes) == 1)
            peak = kilobytes * 1024, havePeak = true;
        else if (std::sscanf(line, "VmRSS: %llu kB", &kilobytes) == 1)
            current = kilobytes * 1024, haveCurrent = true;
    }
    std::fclose(status);
    if (!havePeak || !haveCurrent)
        return false;
    peakBytes = peak;
    currentBytes = current;
    return true;
}

} // namespace dunx::platform

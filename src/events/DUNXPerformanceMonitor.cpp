#include <dunx/DUNXTimingLogger.h>

#include <dunx/DUNXTrace.h>

#include "platform/Platform.h"

namespace {

constexpr double kBytesPerMegabyte = 1024.0 * 1024.0;

} // namespace

DUNXProcessPerformanceMonitor::DUNXProcessPerformanceMonitor() = default;

DUNXProcessPerformanceMonitor::~DUNXProcessPerformanceMonitor() = default;

void DUNXProcessPerformanceMonitor::PrintMemoryReport() {
    unsigned long long peak = 0, current = 0;
    if (GetResidentMemory(peak, current).IsFailure()) {
        DUNXInfo::Printf("%50s = unavailable", "Resident Memory");
        return;
    }
    DUNXInfo::Printf("%50s = %10.1f MB", "Peak Resident Memory",
                     static_cast<double>(peak) / kBytesPerMegabyte);
    DUNXInfo::Printf("%50s = %10.1f MB", "Current Resident Memory",
                     static_cast<double>(current) / kBytesPerMegabyte);
}

DUNIResult DUNXProcessPerformanceMonitor::GetCpuTimes(double& kernelSeconds, double& userSeconds) {
    return dunx::platform::ProcessCpuTimes(kernelSeconds, userSeconds) ? DUNI_S_SUCCESS
                                                                       : DUNI_E_FAIL;
}

DUNIResult DUNXProcessPerformanceMonitor::PrintStatistics() {
    double kernel = 0.0, user = 0.0;
    const DUNIResult result = GetCpuTimes(kernel, user);
    if (result.IsSuccess()) {
        DUNXInfo::Printf("%50s = %10.4f seconds", "Kernel CPU Time", kernel);
        DUNXInfo::Printf("%50s = %10.4f seconds", "User CPU Time", user);
        DUNXInfo::Printf("%50s = %10.4f seconds", "Process total CPU Time", kernel + user);
    } else {
        DUNXInfo::Printf("%50s = unavailable", "Process total CPU Time");
    }
    PrintMemoryReport();
    return result;
}

DUNIResult
DUNXProcessPerformanceMonitor::GetResidentMemory(unsigned long long& peakBytes,
                                                 unsigned long long& currentBytes) const {
    return dunx::platform::ProcessMemory(peakBytes, currentBytes) ? DUNI_S_SUCCESS : DUNI_E_FAIL;
}

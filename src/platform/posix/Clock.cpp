#include "platform/Platform.h"

#include <ctime>

namespace dunx::platform {

namespace {

long long monotonicMilliseconds() {
    return MonotonicNanoseconds() / 1000000;
}

} // namespace

long long MonotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

long ElapsedMilliseconds() {
    static const long long start = monotonicMilliseconds();
    return static_cast<long>(monotonicMilliseconds() - start);
}

long long CurrentTime() {
    return static_cast<long long>(std::time(nullptr));
}

} // namespace dunx::platform

#include "platform/Platform.h"

#include <ctime>

namespace dunx::platform {

namespace {

long long monotonicMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

} // namespace

long ElapsedMilliseconds() {
    static const long long start = monotonicMilliseconds();
    return static_cast<long>(monotonicMilliseconds() - start);
}

long long CurrentTime() {
    return static_cast<long long>(std::time(nullptr));
}

} // namespace dunx::platform

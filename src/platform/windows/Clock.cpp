#include "platform/Platform.h"

#include <ctime>

#include <windows.h>

namespace dunx::platform {

long ElapsedMilliseconds() {
    // The Windows runtime's clock() is already elapsed wall time in
    // milliseconds (CLOCKS_PER_SEC is 1000), counted from the process start.
    return static_cast<long>(std::clock());
}

long long MonotonicNanoseconds() {
    static const long long frequency = [] {
        LARGE_INTEGER value;
        QueryPerformanceFrequency(&value); // never fails from Windows XP on
        return static_cast<long long>(value.QuadPart);
    }();
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    // Whole seconds and the remainder apart, so that the product cannot overflow.
    const long long ticks = static_cast<long long>(now.QuadPart);
    return ticks / frequency * 1000000000LL + ticks % frequency * 1000000000LL / frequency;
}

long long CurrentTime() {
    return static_cast<long long>(_time64(nullptr));
}

} // namespace dunx::platform

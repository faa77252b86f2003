#include "platform/Platform.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace dunx::platform {

char** EnvironmentBlock() {
    return environ;
}

bool SetEnvironmentVariable(const char* name, const char* value) {
    // setenv copies both texts, unlike putenv, which would keep the caller's buffer.
    if (!name || !*name || std::strchr(name, '='))
        return false;
    return ::setenv(name, value ? value : "", 1) == 0;
}

} // namespace dunx::platform

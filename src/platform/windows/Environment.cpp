#include "platform/Platform.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include <stdlib.h>

namespace dunx::platform {

char** EnvironmentBlock() {
    return _environ;
}

bool SetEnvironmentVariable(const char* name, const char* value) {
    // _putenv copies its argument, so the text may go when the call returns.
    // The runtime removes a variable given an empty value.
    if (!name || !*name || std::strchr(name, '='))
        return false;
    const std::string assignment = std::string(name) + '=' + (value ? value : "");
    return _putenv(assignment.c_str()) == 0;
}

} // namespace dunx::platform

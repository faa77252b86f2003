#include "platform/Platform.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <unistd.h>

namespace dunx::platform {

std::FILE* OpenFile(const char* path, const char* mode) {
    if (!path || !*path || !mode)
        return nullptr;
    std::string native(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return std::fopen(native.c_str(), mode);
}

long WriteDescriptor(int fd, const char* data, std::size_t size) {
    std::size_t written = 0;
    while (written < size) {
        const ssize_t n = ::write(fd, data + written, size - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return written > 0 ? static_cast<long>(written) : -1;
        written += static_cast<std::size_t>(n);
    }
    return static_cast<long>(written);
}

long ReadDescriptor(int fd, char* data, std::size_t size) {
    for (;;) {
        const ssize_t n = ::read(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        return static_cast<long>(n);
    }
}

} // namespace dunx::platform

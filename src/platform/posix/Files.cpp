#include "platform/Platform.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace dunx::platform {

namespace {

// The library keeps '\' in its paths; the system wants '/'.
std::string nativePath(const char* path) {
    std::string native(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

} // namespace

std::FILE* OpenFile(const char* path, const char* mode) {
    if (!path || !*path || !mode)
        return nullptr;
    return std::fopen(nativePath(path).c_str(), mode);
}

bool CanReadFile(const char* path) {
    std::FILE* file = OpenFile(path, "r");
    if (!file)
        return false;
    struct stat info {};
    const bool isFolder = fstat(fileno(file), &info) == 0 && S_ISDIR(info.st_mode);
    std::fclose(file);
    return !isFolder;
}

bool ModificationTime(const char* path, long long& time) {
    struct stat info {};
    if (!path || !*path || ::stat(nativePath(path).c_str(), &info) != 0)
        return false;
    time = static_cast<long long>(info.st_mtime);
    return true;
}

bool RemoveFile(const char* path) {
    return path && *path && std::remove(nativePath(path).c_str()) == 0;
}

std::string CurrentDirectory(std::size_t capacity) {
    std::string buffer(capacity, '\0');
    if (capacity == 0 || !::getcwd(&buffer[0], capacity))
        return std::string();
    buffer.resize(buffer.find('\0'));
    return buffer;
}

std::string UniqueFileName(const char* directory, const char* prefix) {
    static const char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = std::string(directory ? directory : "") + (prefix ? prefix : "");
        for (int i = 0; i < 6; ++i)
            name += kLetters[random() % (sizeof kLetters - 1)];
        struct stat info {};
        if (::lstat(nativePath(name.c_str()).c_str(), &info) != 0 && errno == ENOENT)
            return name;
    }
    return std::string();
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

void CloseDescriptor(int fd) {
    ::close(fd);
}

long ReadDescriptor(int fd, char* data, std::size_t size) {
    for (;;) {
        const ssize_t n = ::read(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        return static_cast<long>(n);
    }
}

int DescriptorOf(std::FILE* file) {
    return file ? ::fileno(file) : -1;
}

} // namespace dunx::platform

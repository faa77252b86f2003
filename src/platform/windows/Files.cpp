#include "platform/Platform.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <string>

#include <io.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <wchar.h>

namespace dunx::platform {

namespace {

// The wide runtime calls take the path as the current C locale reads it, so
// the text keeps its backslashes and any character the locale knows. False
// when the locale cannot read `text`.
bool widen(const char* text, std::wstring& wide) {
    std::mbstate_t state{};
    const char* source = text;
    const std::size_t count = std::mbsrtowcs(nullptr, &source, 0, &state);
    if (count == static_cast<std::size_t>(-1))
        return false;
    wide.assign(count, L'\0');
    source = text;
    state = std::mbstate_t{};
    std::mbsrtowcs(&wide[0], &source, count, &state);
    return true;
}

bool isFolder(std::FILE* file) {
    struct _stat64i32 info {};
    return _fstat64i32(_fileno(file), &info) == 0 && (info.st_mode & _S_IFDIR) != 0;
}

} // namespace

std::FILE* OpenFile(const char* path, const char* mode) {
    std::wstring widePath, wideMode;
    if (!path || !*path || !mode || !widen(path, widePath) || !widen(mode, wideMode))
        return nullptr;
    return _wfopen(widePath.c_str(), wideMode.c_str());
}

bool CanReadFile(const char* path) {
    // _wfopen already refuses a folder; the check stays for runtimes that do not.
    std::FILE* file = OpenFile(path, "r");
    if (!file)
        return false;
    const bool folder = isFolder(file);
    std::fclose(file);
    return !folder;
}

bool ModificationTime(const char* path, long long& time) {
    struct _stat64i32 info {};
    if (!path || !*path || _stat64i32(path, &info) != 0)
        return false;
    time = static_cast<long long>(info.st_mtime);
    return true;
}

bool RemoveFile(const char* path) {
    std::wstring wide;
    return path && *path && widen(path, wide) && _wremove(wide.c_str()) == 0;
}

std::string CurrentDirectory(std::size_t capacity) {
    if (capacity == 0)
        return std::string();
    std::wstring wide(capacity, L'\0');
    if (!_wgetcwd(&wide[0], static_cast<int>(capacity)))
        return std::string();
    wide.resize(wide.find(L'\0'));
    std::string narrow(capacity, '\0');
    const std::size_t size = std::wcstombs(&narrow[0], wide.c_str(), capacity);
    if (size == static_cast<std::size_t>(-1) || size >= capacity)
        return std::string();
    narrow.resize(size);
    return narrow;
}

std::string UniqueFileName(const char* directory, const char* prefix) {
    // The runtime picks the folder (TMP when that names one, else `directory`)
    // and the form of the name; it creates nothing.
    char* name = _tempnam(directory, prefix);
    if (!name)
        return std::string();
    std::string result(name);
    std::free(name);
    return result;
}

long WriteDescriptor(int fd, const char* data, std::size_t size) {
    std::size_t written = 0;
    while (written < size) {
        // _write takes an unsigned int count: large buffers go in pieces.
        const std::size_t piece = std::min<std::size_t>(size - written, 1u << 30);
        const int n = _write(fd, data + written, static_cast<unsigned int>(piece));
        if (n <= 0)
            return written > 0 ? static_cast<long>(written) : -1;
        written += static_cast<std::size_t>(n);
    }
    return static_cast<long>(written);
}

void CloseDescriptor(int fd) {
    _close(fd);
}

long ReadDescriptor(int fd, char* data, std::size_t size) {
    const std::size_t piece = std::min<std::size_t>(size, 1u << 30);
    return static_cast<long>(_read(fd, data, static_cast<unsigned int>(piece)));
}

int DescriptorOf(std::FILE* file) {
    return file ? _fileno(file) : -1;
}

} // namespace dunx::platform

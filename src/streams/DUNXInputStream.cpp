#include <dunx/DUNXInputStream.h>

#include "platform/Platform.h"

#include <algorithm>
#include <cstring>

DUNXInputStream::~DUNXInputStream() = default;

DUNXMemoryInputStream::DUNXMemoryInputStream(const char* data, int size)
    : m_Data(data), m_Size(data && size > 0 ? size : 0) {}

DUNXMemoryInputStream::~DUNXMemoryInputStream() = default;

int DUNXMemoryInputStream::read(char* const buffer, int count) {
    if (count <= 0)
        return 0;
    if (!buffer)
        return -1;
    const int n = std::min(count, m_Size - m_Position);
    if (n > 0) {
        std::memcpy(buffer, m_Data + m_Position, static_cast<std::size_t>(n));
        m_Position += n;
    }
    return n;
}

DUNXFileInputStream::DUNXFileInputStream(const char* path)
    : m_File(dunx::platform::OpenFile(path, "rb")), m_OwnsFile(m_File != nullptr) {}

DUNXFileInputStream::DUNXFileInputStream(std::FILE* file) : m_File(file) {}

DUNXFileInputStream::DUNXFileInputStream(int fd) : m_Descriptor(fd >= 0 ? fd : -1) {}

DUNXFileInputStream::~DUNXFileInputStream() {
    if (m_OwnsFile)
        std::fclose(m_File);
}

int DUNXFileInputStream::read(char* const buffer, int count) {
    if (count <= 0)
        return 0;
    if (!buffer || !IsOpen())
        return -1;
    if (m_Descriptor >= 0)
        return static_cast<int>(
            dunx::platform::ReadDescriptor(m_Descriptor, buffer, static_cast<std::size_t>(count)));
    const std::size_t n = std::fread(buffer, 1, static_cast<std::size_t>(count), m_File);
    if (n == 0 && std::ferror(m_File))
        return -1;
    return static_cast<int>(n);
}

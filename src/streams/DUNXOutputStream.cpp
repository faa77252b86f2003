#include <dunx/DUNXOutputStream.h>

#include "platform/Platform.h"

DUNXOutputStream::~DUNXOutputStream() = default;

int DUNXOutputStream::flush() {
    return 0;
}

DUNXFileOutputStream::DUNXFileOutputStream(const char* path, bool append)
    : m_File(dunx::platform::OpenFile(path, append ? "ab" : "wb")), m_OwnsFile(m_File != nullptr) {}

DUNXFileOutputStream::DUNXFileOutputStream(std::FILE* file) : m_File(file) {}

DUNXFileOutputStream::DUNXFileOutputStream(int fd) : m_Descriptor(fd >= 0 ? fd : -1) {}

DUNXFileOutputStream::DUNXFileOutputStream(const DUNXFileHandle& file) : m_Keep(file) {
    if (!file.IsValid())
        return;
    if (file->GetDescriptor() >= 0) {
        m_Descriptor = file->GetDescriptor();
    } else {
        const char* path = file->GetFilePath();
        m_File = dunx::platform::OpenFile(path, "wb");
        m_OwnsFile = m_File != nullptr;
    }
}

DUNXFileOutputStream::~DUNXFileOutputStream() {
    if (m_OwnsFile)
        std::fclose(m_File);
}

int DUNXFileOutputStream::write(const char* buffer, int count) {
    if (count <= 0)
        return 0;
    if (!buffer || !IsOpen())
        return -1;
    if (m_Descriptor >= 0)
        return static_cast<int>(
            dunx::platform::WriteDescriptor(m_Descriptor, buffer, static_cast<std::size_t>(count)));
    const std::size_t n = std::fwrite(buffer, 1, static_cast<std::size_t>(count), m_File);
    return n == 0 ? -1 : static_cast<int>(n);
}

int DUNXFileOutputStream::flush() {
    if (!m_File)
        return m_Descriptor >= 0 ? 0 : -1;
    return std::fflush(m_File) == 0 ? 0 : -1;
}

DUNXStringOutputStream::DUNXStringOutputStream() = default;

DUNXStringOutputStream::~DUNXStringOutputStream() = default;

int DUNXStringOutputStream::write(const char* buffer, int count) {
    if (count <= 0)
        return 0;
    if (!buffer)
        return -1;
    m_Text.append(buffer, static_cast<std::size_t>(count));
    return count;
}

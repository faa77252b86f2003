#include <dunx/DUNXFile.h>

#include "platform/Platform.h"

#include <cstdio>

DUNXFile::DUNXFile(const DUNXFilePath& path) : m_Path(path) {}

DUNXFile::DUNXFile(int descriptor, const char* mode, bool closeWithFile)
    : m_Descriptor(descriptor >= 0 ? descriptor : -1), m_CloseWithFile(closeWithFile) {
    std::snprintf(m_Mode, sizeof m_Mode, "%s", mode ? mode : "r");
}

DUNXFile::~DUNXFile() {
    if (m_CloseWithFile && m_Descriptor >= 0)
        dunx::platform::CloseDescriptor(m_Descriptor);
}

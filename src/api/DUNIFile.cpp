#include <dunx/DUNIFile.h>

#include "platform/Platform.h"

DUNIFileImpl::DUNIFileImpl(const DUNXFilePath& path)
    : DUNIObjectImpl("DUNIFile"), m_File(new DUNXFile(path)) {}

DUNIFileImpl::DUNIFileImpl(int descriptor, const char* mode)
    : DUNIObjectImpl("DUNIFile"), m_File(new DUNXFile(descriptor, mode)) {}

DUNIFileImpl::~DUNIFileImpl() = default;

bool DUNIFileImpl::HasPath() const {
    return m_File->GetFilePath().IsValid();
}

DUNIResult DUNIFileImpl::GetPath(DUNXFilePath& path) const {
    if (!HasPath())
        return DUNI_E_FAIL;
    path = m_File->GetFilePath();
    return DUNI_S_SUCCESS;
}

DUNIFile::DUNIFile(const char* path) : DUNIObject("DUNIFile") {
    if (path)
        SetData(new DUNIFileImpl(DUNXFilePath(path)));
}

DUNIFile::DUNIFile(const unsigned short* path) : DUNIObject("DUNIFile") {
    if (path)
        SetData(new DUNIFileImpl(DUNXFilePath(path)));
}

DUNIFile::DUNIFile(int descriptor) : DUNIObject("DUNIFile") {
    SetData(new DUNIFileImpl(descriptor, "r"));
}

DUNIFile::DUNIFile(std::FILE* file, const char* mode) : DUNIObject("DUNIFile") {
    if (file)
        SetData(new DUNIFileImpl(dunx::platform::DescriptorOf(file), mode));
}

DUNIFile& DUNIFile::operator=(const DUNIFile& other) = default;

DUNIFile::~DUNIFile() = default;

DUNIFileImpl* DUNIFile::GetFileImpl() const {
    return static_cast<DUNIFileImpl*>(GetImpl());
}

// DUNIFile: the public file object, over the library's counted files.
#pragma once

#include <dunx/DUNIObject.h>
#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXFile.h>
#include <dunx/DUNXFilePath.h>

#include <cstdio>

/// The implementation of a public file: a `DUNXFileHandle`. Type name "DUNIFile".
class DUNX_EXPORT DUNIFileImpl : public DUNIObjectImpl {
public:
    /// The file at `path` (nothing is opened).
    explicit DUNIFileImpl(const DUNXFilePath& path);
    /// The open descriptor `descriptor` in C `fopen` `mode` (null: "r"), not closed here.
    explicit DUNIFileImpl(int descriptor, const char* mode = nullptr);
    ~DUNIFileImpl() override;
    /// The file.
    DUNXFileHandle GetFile() const { return m_File; }
    /// True when the file is known by a path.
    bool HasPath() const;
    /// Copies the path into `path`; `DUNI_E_FAIL` (and `path` untouched) for a
    /// file known by descriptor.
    DUNIResult GetPath(DUNXFilePath& path) const;

private:
    DUNXFileHandle m_File;
};

/// A file handed through the public interface. A null path gives an object
/// without implementation (`IsValid` false). Copy construction is uncounted
/// (see `DUNIObject`).
class DUNX_EXPORT DUNIFile : public DUNIObject {
public:
    /// The file at narrow `path`; null: invalid.
    explicit DUNIFile(const char* path);
    /// The file at UTF-16 `path`; null: invalid.
    explicit DUNIFile(const unsigned short* path);
    /// The open descriptor `descriptor` (read mode; not closed here).
    explicit DUNIFile(int descriptor);
    /// The open C file `file` in `mode` (null: "r"); neither closed nor
    /// flushed here. A null `file`: invalid.
    DUNIFile(std::FILE* file, const char* mode);
    DUNIFile(const DUNIFile& other) = default;
    DUNIFile& operator=(const DUNIFile& other);
    ~DUNIFile() override;

    /// The implementation, or null for an invalid file.
    DUNIFileImpl* GetFileImpl() const;
};

// DUNXFile: a counted file object over a path or an open descriptor.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXFilePath.h>
#include <dunx/DUNXReferenceCount.h>

/// A file known by its path, or an open descriptor such as 1 or 2 for the
/// console. Counted: hold it in a `DUNXFileHandle`. A descriptor is closed
/// with the object only when it was handed over with `closeWithFile`.
class DUNX_EXPORT DUNXFile : public DUNXReferenceCount {
public:
    /// The file at `path` (nothing is opened).
    explicit DUNXFile(const DUNXFilePath& path);
    /// The open descriptor `descriptor`, written or read in C `fopen` `mode`
    /// ("w", "r", ...; null is taken as "r"). Closed with the object only when
    /// `closeWithFile` is true; never for a negative descriptor.
    DUNXFile(int descriptor, const char* mode, bool closeWithFile = false);
    /// Closes an owned descriptor.
    ~DUNXFile() override;
    DUNXFile(const DUNXFile&) = delete;
    DUNXFile& operator=(const DUNXFile&) = delete;

    /// The path (empty for a descriptor).
    const DUNXFilePath& GetFilePath() const { return m_Path; }
    /// The descriptor, or -1 for a file known by path.
    int GetDescriptor() const { return m_Descriptor; }
    /// The mode given with the descriptor ("" for a file known by path).
    const char* GetMode() const { return m_Mode; }

private:
    DUNXFilePath m_Path;
    int m_Descriptor = -1;
    char m_Mode[8] = {};
    bool m_CloseWithFile = false;
};

/// Holds a `DUNXFile`; the last handle deletes it.
class DUNXFileHandle : public DUNXTypedHandle<DUNXFile> {
public:
    using DUNXTypedHandle<DUNXFile>::DUNXTypedHandle;
};

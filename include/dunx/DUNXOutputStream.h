// Byte output streams: the abstract sink and its file and string forms.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXFile.h>

#include <cstdio>
#include <string>

/// A sink for bytes. Faults are reported by return values, never thrown.
class DUNX_EXPORT DUNXOutputStream {
public:
    virtual ~DUNXOutputStream();
    /// Writes `count` bytes from `buffer`; returns how many were accepted:
    /// `count` on success, fewer or -1 on a fault (a closed stream, a full
    /// disk, a null `buffer`); 0 when `count` <= 0.
    virtual int write(const char* buffer, int count) = 0;
    /// Pushes buffered bytes to their destination; 0 on success, -1 on a fault.
    /// Nothing to do in streams that do not buffer.
    virtual int flush();
};

/// Writes to a file: one it opens by path (flushed and closed by the
/// destructor), a `FILE*` it borrows, or a descriptor it borrows such as 1 or 2
/// for the console (written unbuffered). Borrowed files and descriptors are
/// never closed, and a borrowed `FILE*` is not touched by the destructor, so
/// the stream may outlive its owner's `fclose`.
class DUNX_EXPORT DUNXFileOutputStream : public DUNXOutputStream {
public:
    /// Opens `path` for binary writing, truncating it, or appending when
    /// `append` is true ('\' is taken as '/'); `IsOpen()` tells whether that worked.
    explicit DUNXFileOutputStream(const char* path, bool append = false);
    /// Writes through `file`, which the caller keeps open and closes; null gives
    /// a closed stream.
    explicit DUNXFileOutputStream(std::FILE* file);
    /// Writes to descriptor `fd`; a negative descriptor gives a closed stream.
    explicit DUNXFileOutputStream(int fd);
    /// Writes to `file`, kept alive by the stream: to its descriptor when it has
    /// one (closed only as the file says), else to its path, opened as by the
    /// path constructor. An empty handle gives a closed stream.
    explicit DUNXFileOutputStream(const DUNXFileHandle& file);
    /// Closes the file only when the stream opened it.
    ~DUNXFileOutputStream() override;
    DUNXFileOutputStream(const DUNXFileOutputStream&) = delete;
    DUNXFileOutputStream& operator=(const DUNXFileOutputStream&) = delete;

    int write(const char* buffer, int count) override;
    /// Flushes a file the stream writes through; 0 on success, -1 on a fault.
    int flush() override;
    /// True when the stream has somewhere to write.
    bool IsOpen() const { return m_File || m_Descriptor >= 0; }

private:
    std::FILE* m_File = nullptr;
    bool m_OwnsFile = false;
    int m_Descriptor = -1;
    DUNXFileHandle m_Keep; // the file object written through, if any
};

/// Collects everything written, for tests, messages and in-memory reports.
class DUNX_EXPORT DUNXStringOutputStream : public DUNXOutputStream {
public:
    DUNXStringOutputStream();
    ~DUNXStringOutputStream() override;
    int write(const char* buffer, int count) override;
    /// Everything written so far, 0-terminated; valid until the next write or `Clear`.
    const char* GetText() const { return m_Text.c_str(); }
    /// Number of bytes written so far (embedded 0 bytes included).
    int GetLength() const { return static_cast<int>(m_Text.size()); }
    /// Forgets everything written.
    void Clear() { m_Text.clear(); }

private:
    std::string m_Text;
};

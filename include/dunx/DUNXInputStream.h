// Byte input streams: the abstract source and its memory and file forms.
#pragma once

#include <dunx/DUNXExport.h>

#include <cstdio>

/// A source of bytes. Faults are reported by return values, never thrown.
class DUNX_EXPORT DUNXInputStream {
public:
    virtual ~DUNXInputStream();
    /// Copies up to `count` bytes into `buffer`; returns how many were
    /// delivered: fewer at the end of the data, 0 when there is none left or
    /// `count` <= 0, and -1 on a read fault, a closed stream or a null `buffer`.
    virtual int read(char* const buffer, int count) = 0;
};

/// Reads from bytes the caller keeps alive; the stream does not copy or own them.
class DUNX_EXPORT DUNXMemoryInputStream : public DUNXInputStream {
public:
    /// Reads `size` bytes from `data`; null `data` or a negative size reads as empty.
    DUNXMemoryInputStream(const char* data, int size);
    ~DUNXMemoryInputStream() override;
    int read(char* const buffer, int count) override;
    /// Bytes delivered so far.
    int GetPosition() const { return m_Position; }
    /// Bytes not yet delivered.
    int GetRemaining() const { return m_Size - m_Position; }

private:
    const char* m_Data;
    int m_Size;
    int m_Position = 0;
};

/// Reads from a file: one it opens by path (and closes), a `FILE*` it borrows
/// (never closed, never touched by the destructor), or a descriptor it borrows
/// (never closed).
class DUNX_EXPORT DUNXFileInputStream : public DUNXInputStream {
public:
    /// Opens `path` for binary reading ('\' is taken as '/'); `IsOpen()` tells
    /// whether that worked.
    explicit DUNXFileInputStream(const char* path);
    /// Reads through `file`, which the caller keeps open and closes; null gives
    /// a closed stream.
    explicit DUNXFileInputStream(std::FILE* file);
    /// Reads from descriptor `fd` (e.g. 0); a negative descriptor gives a closed stream.
    explicit DUNXFileInputStream(int fd);
    /// Closes the file only when the stream opened it.
    ~DUNXFileInputStream() override;
    DUNXFileInputStream(const DUNXFileInputStream&) = delete;
    DUNXFileInputStream& operator=(const DUNXFileInputStream&) = delete;

    int read(char* const buffer, int count) override;
    /// True when the stream has something to read from.
    bool IsOpen() const { return m_File || m_Descriptor >= 0; }

private:
    std::FILE* m_File = nullptr;
    bool m_OwnsFile = false;
    int m_Descriptor = -1;
};

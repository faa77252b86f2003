// The few operating-system calls of the driver and its translator, one
// implementation folder per system (posix/, windows/), picked by CMake.
#pragma once

#include <string>

namespace dunx::driver::system {

/// The ending of a translator module's file name: ".so", or ".dll" on Windows.
extern const char* const kModuleSuffix;

/// The characters that separate folders in a path: "/", or "/\\" on Windows.
extern const char* const kPathSeparators;

/// True when `path` does not depend on the current folder: "/x"; on Windows
/// also "C:\x", "C:/x" and "\\server\share".
bool IsAbsolutePath(const std::string& path);

/// The path of the running program; "" when the system cannot tell.
std::string ProgramPath();

/// `path` made absolute, with links and "." and ".." resolved where the
/// system does that; `path` itself when it cannot be resolved.
std::string ResolvedPath(const std::string& path);

/// Makes the folder `folder` (its parent must exist). True when it was made or
/// already exists; false with errno set otherwise.
bool MakeFolder(const std::string& folder);

/// True when this user may create and delete files in `folder`; false with
/// errno set otherwise.
bool CanWriteInFolder(const std::string& folder);

/// What identifies a file and its content on disk, to tell whether a failed
/// write touched it and whether two paths name one file.
struct FileStamp {
    bool exists = false;
    unsigned long long volume = 0;     ///< device or volume serial number
    unsigned long long index = 0;      ///< inode or file index on that volume
    unsigned long long size = 0;       ///< bytes
    long long modifiedNanoseconds = 0; ///< last write, since 1970 (Linux) or 1601 (Windows)

    /// True when both name one existing file.
    bool SameFileAs(const FileStamp& other) const {
        return exists && other.exists && volume == other.volume && index == other.index;
    }
    /// True when both describe the same state of the same file, or both no file.
    bool operator==(const FileStamp& other) const {
        return exists == other.exists && volume == other.volume && index == other.index &&
               size == other.size && modifiedNanoseconds == other.modifiedNanoseconds;
    }
};

/// The stamp of `path`; `exists` false when it cannot be examined.
FileStamp StampOf(const std::string& path);

/// Creates the new file `path` for writing in binary mode, failing when it
/// exists; the descriptor is not inherited by child processes. -1 with errno
/// set on failure.
int CreateNewFile(const std::string& path);

/// Moves the file `from` to `to`, replacing a file `to`; false with errno set.
bool MoveIntoPlace(const std::string& from, const std::string& to);

/// This process's number, to make names no other process uses.
long ProcessId();

/// Enters a folder and goes back to the previous one: Leave, or the destructor.
class FolderVisit {
public:
    FolderVisit() = default;
    ~FolderVisit();
    FolderVisit(const FolderVisit&) = delete;
    FolderVisit& operator=(const FolderVisit&) = delete;

    /// Enters `folder`; false (and nothing changed) when it cannot.
    bool Enter(const std::string& folder);
    /// Returns to the folder that was current before Enter; false with errno
    /// set when it cannot. Does nothing when no Enter succeeded.
    bool Leave();

private:
    int m_Previous = -1;        // POSIX: a descriptor of the previous folder
    std::string m_PreviousPath; // Windows: the previous folder's path
    bool m_Inside = false;
};

} // namespace dunx::driver::system

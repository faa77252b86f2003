#include "System.h"

#include <cerrno>
#include <cstdlib>
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>

#include <windows.h>

namespace dunx::driver::system {

const char* const kModuleSuffix = ".dll";
const char* const kPathSeparators = "/\\";

namespace {

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// errno for the Windows error of the last failed call, for the driver's messages.
int errnoOf(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return EACCES;
    case ERROR_DISK_FULL:
        return ENOSPC;
    default:
        return EIO;
    }
}

} // namespace

bool IsAbsolutePath(const std::string& path) {
    if (!path.empty() && isSeparator(path[0]))
        return true;
    return path.size() > 2 && path[1] == ':' && isSeparator(path[2]);
}

std::string ProgramPath() {
    char buffer[MAX_PATH * 4];
    const DWORD length = GetModuleFileNameA(nullptr, buffer, sizeof buffer);
    return length > 0 && length < sizeof buffer ? std::string(buffer, length) : std::string();
}

std::string ResolvedPath(const std::string& path) {
    char resolved[MAX_PATH * 4];
    return _fullpath(resolved, path.c_str(), sizeof resolved) ? resolved : path;
}

bool MakeFolder(const std::string& folder) {
    return _mkdir(folder.c_str()) == 0 || errno == EEXIST;
}

bool CanWriteInFolder(const std::string& folder) {
    // Windows has no search permission on folders; a read-only folder is writable all the same.
    return _access(folder.c_str(), 0) == 0;
}

FileStamp StampOf(const std::string& path) {
    FileStamp stamp;
    // Opening for no access at all reads the attributes of files and folders
    // alike, even of a file that another program holds open.
    HANDLE file =
        CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return stamp;
    BY_HANDLE_FILE_INFORMATION info;
    if (GetFileInformationByHandle(file, &info)) {
        stamp.exists = true;
        stamp.volume = info.dwVolumeSerialNumber;
        stamp.index =
            (static_cast<unsigned long long>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
        stamp.size =
            (static_cast<unsigned long long>(info.nFileSizeHigh) << 32) | info.nFileSizeLow;
        const unsigned long long ticks =
            (static_cast<unsigned long long>(info.ftLastWriteTime.dwHighDateTime) << 32) |
            info.ftLastWriteTime.dwLowDateTime;
        stamp.modifiedNanoseconds = static_cast<long long>(ticks) * 100; // 100 ns ticks
    }
    CloseHandle(file);
    return stamp;
}

int CreateNewFile(const std::string& path) {
    // Binary: the runtime's text mode would turn each "\n" into "\r\n".
    return _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                 _S_IREAD | _S_IWRITE);
}

bool MoveIntoPlace(const std::string& from, const std::string& to) {
    // rename() refuses an existing target here.
    if (MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING))
        return true;
    errno = errnoOf(GetLastError());
    return false;
}

long ProcessId() {
    return static_cast<long>(_getpid());
}

FolderVisit::~FolderVisit() {
    Leave();
}

bool FolderVisit::Enter(const std::string& folder) {
    char* previous = _getcwd(nullptr, 0);
    if (!previous)
        return false;
    m_PreviousPath = previous;
    std::free(previous);
    if (_chdir(folder.c_str()) != 0)
        return false;
    m_Inside = true;
    return true;
}

bool FolderVisit::Leave() {
    if (!m_Inside)
        return true;
    m_Inside = false;
    return _chdir(m_PreviousPath.c_str()) == 0;
}

} // namespace dunx::driver::system

#include "System.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dunx::driver::system {

const char* const kModuleSuffix = ".so";
const char* const kPathSeparators = "/";

bool IsAbsolutePath(const std::string& path) {
    return !path.empty() && path[0] == '/';
}

std::string ProgramPath() {
    char buffer[4096];
    const ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    return length > 0 ? std::string(buffer, static_cast<std::size_t>(length)) : std::string();
}

std::string ResolvedPath(const std::string& path) {
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) ? resolved : path;
}

bool MakeFolder(const std::string& folder) {
    return ::mkdir(folder.c_str(), 0777) == 0 || errno == EEXIST;
}

bool CanWriteInFolder(const std::string& folder) {
    return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

FileStamp StampOf(const std::string& path) {
    FileStamp stamp;
    struct stat info;
    if (::stat(path.c_str(), &info) == 0) {
        stamp.exists = true;
        stamp.volume = static_cast<unsigned long long>(info.st_dev);
        stamp.index = static_cast<unsigned long long>(info.st_ino);
        stamp.size = static_cast<unsigned long long>(info.st_size);
        stamp.modifiedNanoseconds =
            static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec;
    }
    return stamp;
}

int CreateNewFile(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

bool MoveIntoPlace(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

long ProcessId() {
    return static_cast<long>(::getpid());
}

FolderVisit::~FolderVisit() {
    Leave();
}

bool FolderVisit::Enter(const std::string& folder) {
    // A descriptor finds the way back even when the folder is renamed meanwhile.
    const int previous = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (previous < 0)
        return false;
    if (::chdir(folder.c_str()) != 0) {
        ::close(previous);
        return false;
    }
    m_Previous = previous;
    m_Inside = true;
    return true;
}

bool FolderVisit::Leave() {
    if (!m_Inside)
        return true;
    m_Inside = false;
    const bool back = ::fchdir(m_Previous) == 0;
    const int error = errno;
    ::close(m_Previous);
    m_Previous = -1;
    errno = error;
    return back;
}

} // namespace dunx::driver::system

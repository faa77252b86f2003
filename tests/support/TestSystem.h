// TestSystem: the few operating-system calls that the tests make themselves, with one branch per
// system here, so that the tests read the same on Linux and on Windows.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>

#ifdef _WIN32
#include <direct.h>
#include <io.h>
#include <sys/utime.h>
#else
#include <csignal>
#include <thread>
#include <utility>

#include <pthread.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#endif

namespace dunx::test {

#ifdef _WIN32
/// True when the tests run on Windows, for the cases that exist on one system only.
constexpr bool kWindows = true;
#else
constexpr bool kWindows = false;
#endif

/// True when `fd` is an open descriptor of this process.
inline bool IsDescriptorOpen(int fd) {
#ifdef _WIN32
    return _get_osfhandle(fd) != -1;
#else
    return ::fcntl(fd, F_GETFD) != -1;
#endif
}

/// A descriptor number far above those that opens reuse, closed again: a descriptor that is
/// certainly not open.
inline int ClosedDescriptor() {
#ifdef _WIN32
    const int fd = _dup2(2, 900) == 0 ? 900 : -1;
#else
    const int fd = ::fcntl(2, F_DUPFD, 900);
#endif
    ::close(fd);
    return fd;
}

/// Opens `path` with the `open` flags `flags`, in binary mode where the system has a text mode.
inline int OpenDescriptor(const std::string& path, int flags) {
#ifdef _WIN32
    return _open(path.c_str(), flags | _O_BINARY);
#else
    return ::open(path.c_str(), flags);
#endif
}

/// Makes the folder `path` (private to this user where the system knows modes); true on success.
inline bool MakeFolder(const std::string& path) {
#ifdef _WIN32
    return _mkdir(path.c_str()) == 0;
#else
    return ::mkdir(path.c_str(), 0700) == 0;
#endif
}

/// Sets the access and modification times of `file` to `seconds` since 1970; true on success.
inline bool SetModificationTime(const std::string& file, long long seconds) {
#ifdef _WIN32
    __utimbuf64 times{seconds, seconds};
    return _utime64(file.c_str(), &times) == 0;
#else
    const timeval times[2] = {{static_cast<time_t>(seconds), 0}, {static_cast<time_t>(seconds), 0}};
    return ::utimes(file.c_str(), times) == 0;
#endif
}

/// Sets the environment variable `name` to `value`, or removes it when `value` is null. Windows
/// cannot hold an empty value: "" removes the variable there too.
inline void SetVariable(const char* name, const char* value) {
#ifdef _WIN32
    _putenv_s(name, value ? value : "");
#else
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
#endif
}

/// Makes a fresh folder "<base>/<prefix>XXXXXX" and returns its path; "" on failure.
inline std::string MakeUniqueFolder(const std::string& base, const std::string& prefix) {
    std::string path = base + '/' + prefix + "XXXXXX";
#ifdef _WIN32
    if (_mktemp_s(&path[0], path.size() + 1) != 0 || _mkdir(path.c_str()) != 0)
        return std::string();
#else
    if (!::mkdtemp(&path[0]))
        return std::string();
#endif
    return path;
}

/// Makes a pipe, `fds[0]` its read end and `fds[1]` its write end, whose writes take what fits and
/// never wait; false where the system has no such pipe (Windows).
inline bool MakeNonBlockingPipe(int fds[2]) {
#ifdef _WIN32
    (void)fds;
    return false;
#else
    return ::pipe(fds) == 0 && ::fcntl(fds[1], F_SETFL, O_NONBLOCK) == 0;
#endif
}

/// Reads up to `size` bytes of `fd` from `offset` on; the bytes read, or -1.
inline long ReadAt(int fd, char* data, std::size_t size, long long offset) {
#ifdef _WIN32
    if (_lseeki64(fd, offset, SEEK_SET) != offset)
        return -1;
    return _read(fd, data, static_cast<unsigned>(size));
#else
    return static_cast<long>(::pread(fd, data, size, static_cast<off_t>(offset)));
#endif
}

#ifndef _WIN32
/// While it lives, SIGALRM arrives every `microseconds` with a handler that does nothing and
/// without SA_RESTART, so that a read or write waiting in the test's thread ends early: with
/// EINTR before any byte moved, with a short count after. POSIX only.
class ScopedAlarms {
public:
    explicit ScopedAlarms(long microseconds) {
        struct sigaction quiet = {};
        quiet.sa_handler = [](int) {};
        sigemptyset(&quiet.sa_mask);
        ::sigaction(SIGALRM, &quiet, &m_Previous);
        const itimerval every = {{0, microseconds}, {0, microseconds}};
        ::setitimer(ITIMER_REAL, &every, nullptr);
    }
    ~ScopedAlarms() {
        const itimerval stop = {};
        ::setitimer(ITIMER_REAL, &stop, nullptr);
        // An alarm still pending (valgrind delivers them late) is discarded by ignoring the
        // signal, before the previous action, usually the default that ends the process, returns.
        struct sigaction ignore = {};
        ignore.sa_handler = SIG_IGN;
        sigemptyset(&ignore.sa_mask);
        ::sigaction(SIGALRM, &ignore, nullptr);
        ::sigaction(SIGALRM, &m_Previous, nullptr);
    }
    ScopedAlarms(const ScopedAlarms&) = delete;
    ScopedAlarms& operator=(const ScopedAlarms&) = delete;

private:
    struct sigaction m_Previous = {};
};

/// Runs `work` on a thread of its own that never receives SIGALRM, so that the alarms of a
/// ScopedAlarms reach the test's thread alone.
template <class Work> std::thread ThreadWithoutAlarms(Work work) {
    sigset_t alarm, mask;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    ::pthread_sigmask(SIG_BLOCK, &alarm, &mask); // the new thread inherits the block
    std::thread thread(std::move(work));
    ::pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    return thread;
}
#endif

} // namespace dunx::test

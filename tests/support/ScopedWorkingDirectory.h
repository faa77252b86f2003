// ScopedWorkingDirectory: changes the working directory for the life of one object.
#pragma once

#include <stdexcept>
#include <string>

#include <limits.h>
#include <unistd.h>

namespace dunx::test {

/// Enters `path` and goes back to the previous working directory on
/// destruction, also when a test leaves its scope through an exception. For
/// code that writes files with fixed names into the current folder.
///
///     dunx::test::TempDir dir;
///     dunx::test::ScopedWorkingDirectory inside(dir.path());
class ScopedWorkingDirectory {
public:
    explicit ScopedWorkingDirectory(const std::string& path) {
        char previous[PATH_MAX];
        if (!::getcwd(previous, sizeof previous))
            throw std::runtime_error("ScopedWorkingDirectory: no current directory");
        m_Previous = previous;
        if (::chdir(path.c_str()) != 0)
            throw std::runtime_error("ScopedWorkingDirectory: cannot enter " + path);
    }
    ~ScopedWorkingDirectory() {
        if (::chdir(m_Previous.c_str()) != 0) {
            // Nothing sensible is left to do in a destructor; later tests will notice.
        }
    }
    ScopedWorkingDirectory(const ScopedWorkingDirectory&) = delete;
    ScopedWorkingDirectory& operator=(const ScopedWorkingDirectory&) = delete;

private:
    std::string m_Previous;
};

} // namespace dunx::test

// ScopedWorkingDirectory: enters `path` and goes back on destruction, even through an exception.
#pragma once

#include <filesystem>
#include <string>

namespace dunx::test {

class ScopedWorkingDirectory {
public:
    explicit ScopedWorkingDirectory(const std::string& path)
        : m_Previous(std::filesystem::current_path().string()) {
        std::filesystem::current_path(path); // throws when it cannot enter
    }
    ~ScopedWorkingDirectory() {
        std::error_code ignored; // nothing sensible is left to do in a destructor
        std::filesystem::current_path(m_Previous, ignored);
    }
    ScopedWorkingDirectory(const ScopedWorkingDirectory&) = delete;
    ScopedWorkingDirectory& operator=(const ScopedWorkingDirectory&) = delete;

private:
    std::string m_Previous;
};

} // namespace dunx::test

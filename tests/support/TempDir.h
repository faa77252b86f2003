// TempDir: a fresh directory in the system's folder of temporary files ($TMPDIR or /tmp; TEMP on
// Windows) for one test's files, removed with them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "support/TestSystem.h"

namespace dunx::test {

class TempDir {
public:
    TempDir() {
        std::string base = std::filesystem::temp_directory_path().string();
        while (base.size() > 1 && (base.back() == '/' || base.back() == '\\'))
            base.pop_back();
        m_Path = MakeUniqueFolder(base, "dunx-test-");
        if (m_Path.empty())
            throw std::runtime_error("TempDir: cannot make a folder in " + base);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_Path; } ///< without a trailing '/'
    std::string file(const std::string& name) const { return m_Path + '/' + name; }
    /// Replaces the file `name` with exactly `bytes`.
    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream out(file(name), std::ios::binary | std::ios::trunc);
        if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
            throw std::runtime_error("TempDir: cannot write " + file(name));
    }
    /// The whole content of the file `name`; "" when it cannot be read.
    std::string read(const std::string& name) const {
        std::ifstream in(file(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::string m_Path;
};

} // namespace dunx::test

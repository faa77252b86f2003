// TempDir: a private directory for the files one test makes, removed afterwards.
#pragma once

#include <string>

namespace dunx::test {

/// Makes a fresh directory under $TMPDIR (or /tmp) and removes it with all its
/// contents on destruction, so tests that write files never see each other's.
///
///     dunx::test::TempDir dir;
///     dir.write("in.bin", std::string("a\0b", 3));
///     DUNXFileInputStream in(dir.file("in.bin").c_str());
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The directory, without a trailing '/'.
    const std::string& path() const { return m_Path; }
    /// `name` inside the directory.
    std::string file(const std::string& name) const { return m_Path + '/' + name; }
    /// Replaces the file `name` with exactly `bytes`.
    void write(const std::string& name, const std::string& bytes) const;
    /// The whole content of the file `name`; "" when it cannot be read.
    std::string read(const std::string& name) const;

private:
    std::string m_Path;
};

} // namespace dunx::test

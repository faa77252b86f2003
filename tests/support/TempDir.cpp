#include "support/TempDir.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include <unistd.h>

namespace dunx::test {

TempDir::TempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/dunx-test-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    if (!::mkdtemp(name.data()))
        throw std::runtime_error("TempDir: cannot make " + pattern);
    m_Path = name.data();
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
}

void TempDir::write(const std::string& name, const std::string& bytes) const {
    std::ofstream out(file(name), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush())
        throw std::runtime_error("TempDir: cannot write " + file(name));
}

std::string TempDir::read(const std::string& name) const {
    std::ifstream in(file(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace dunx::test

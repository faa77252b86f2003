// TempFolder: one scratch folder per fuzz process, for readers that take a path.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace dunx::fuzz {

inline const std::string& TempFolder() {
    static const std::string folder = [] {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "dunx-fuzz-XXXXXX").string();
        if (!::mkdtemp(pattern.data()))
            std::abort();
        return pattern;
    }();
    return folder;
}

/// Replaces the file `name` in the scratch folder with `bytes`; its path.
inline std::string WriteFile(const std::string& name, const std::string& bytes) {
    const std::string path = TempFolder() + "/" + name;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file || std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
        std::abort();
    std::fclose(file);
    return path;
}

} // namespace dunx::fuzz

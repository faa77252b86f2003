// Owned copies of narrow names, shared by the classes that keep one.
#pragma once

#include <cstring>
#include <memory>

namespace dunx::internal {

/// A private copy of `text`, or null when `text` is null or empty.
inline std::unique_ptr<char[]> CopyName(const char* text) {
    if (!text || !*text)
        return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    auto copy = std::make_unique<char[]>(size);
    std::memcpy(copy.get(), text, size);
    return copy;
}

} // namespace dunx::internal

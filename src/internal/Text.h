// Small text helpers shared by several subsystems.
#pragma once

#include <dunx/DUNXString.h>

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

/// The narrow rendering of `text`, or "" for the null string.
inline const char* NarrowOrEmpty(const DUNXString& text) {
    const char* narrow = text;
    return narrow ? narrow : "";
}

/// 1 for the words Yes, True and On, 0 for No, False and Off (any case), -1
/// for any other text.
int WordValue(const DUNXString& text);

/// Reads `text` as a whole decimal integer within int range, with optional
/// blanks around it and an optional sign. False (and `value` untouched) otherwise.
bool ParseWholeInt(const char* text, int& value);

/// Reads `text` as a whole finite decimal number (optional sign, fraction and
/// exponent; no hex, inf or nan), with optional blanks around it, in any
/// locale. False (and `value` untouched) otherwise.
bool ParseWholeDouble(const char* text, double& value);

} // namespace dunx::internal

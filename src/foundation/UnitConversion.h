// Conversion between narrow text in the current C locale and 16-bit units.
// wchar_t is 32 bits here, so characters are converted one at a time
// (mbrtowc / wcrtomb) and split into or joined from surrogate pairs; the
// results are those of mbstowcs / wcstombs applied to 16-bit text.
#pragma once

#include <cstddef>

namespace dunx::internal {

/// Number of units `text` converts to, or -1 when the locale cannot convert it.
int CountUnits(const char* text);

/// Converts `text` into `out`, which has room for `CountUnits(text)` units
/// (no terminator is written). Call only when `CountUnits` succeeded.
void DecodeUnits(const char* text, unsigned short* out);

/// As wcstombs: converts the 0-terminated `units` into at most `limit` bytes
/// at `out` (no terminator), stopping before a character that would not fit.
/// A null `out` counts the bytes of the whole text. Returns the bytes written
/// (or counted), or -1 when a character cannot be converted (a lone surrogate
/// included).
long EncodeUnits(const unsigned short* units, char* out, std::size_t limit);

} // namespace dunx::internal

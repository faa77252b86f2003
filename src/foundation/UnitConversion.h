// Conversion between narrow text in the current C locale and 16-bit units.
// Where wchar_t is 32 bits (Linux), characters are converted one at a time
// (mbrtowc / wcrtomb) and split into or joined from surrogate pairs; where it
// is 16 bits (Windows), the runtime's own UTF-16 is taken as it comes. The
// results are those of mbstowcs / wcstombs applied to 16-bit text.
#pragma once

#include <cstddef>

namespace dunx::internal {

/// Number of units `text` converts to, or -1 when the locale cannot convert it.
int CountUnits(const char* text);

/// Converts `text` into `out`, which has room for `CountUnits(text)` units
/// (no terminator is written). Call only when `CountUnits` succeeded.
void DecodeUnits(const char* text, unsigned short* out);

/// Converts the first `size` bytes of `text`, when they are all ASCII, into
/// `out` (room for `size` units) and returns true; returns false at once
/// otherwise. ASCII reads the same in every locale this runtime supports.
bool WidenAscii(const char* text, std::size_t size, unsigned short* out);

/// True when the current locale reads narrow text as UTF-8, so that
/// `DecodeUtf8` gives what `CountUnits` and `DecodeUnits` would.
bool LocaleReadsUtf8();

/// Decodes the first `size` bytes of `text` as well-formed UTF-8 into `out`
/// (room for `size` units), characters above U+FFFF as surrogate pairs.
/// Returns the number of units, or -1 for anything that is not well-formed
/// UTF-8 (overlong forms, surrogates, code points above U+10FFFF, truncated
/// sequences), exactly where the UTF-8 locale refuses the text.
int DecodeUtf8(const char* text, std::size_t size, unsigned short* out);

/// As wcstombs: converts the 0-terminated `units` into at most `limit` bytes
/// at `out` (no terminator), stopping before a character that would not fit.
/// A null `out` counts the bytes of the whole text. Returns the bytes written
/// (or counted), or -1 when a character cannot be converted (a lone surrogate
/// included).
long EncodeUnits(const unsigned short* units, char* out, std::size_t limit);

} // namespace dunx::internal

// The one place where diagnostic texts are formatted into the library's
// 1,024-byte message buffers, so that no message can run past them.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string>

namespace dunx::internal {

/// Size of every message buffer, terminator included.
constexpr int kMessageBufferSize = 1024;

/// A message buffer that starts as the empty text. Only the bytes up to the
/// terminator are ever read, and every writer terminates what it writes, so
/// the rest is left unfilled: clearing 1 KB per message would cost more than
/// formatting a short one.
struct MessageBuffer {
    MessageBuffer() { text[0] = '\0'; }
    char text[kMessageBufferSize];
};

/// The length of `text`, but no more than `limit`: no byte past the limit is
/// read, so `text` need not be terminated within it.
inline std::size_t BoundedLength(const char* text, std::size_t limit) {
    const void* end = std::memchr(text, '\0', limit);
    return end ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : limit;
}

/// vsnprintf of `format` into the `size` bytes at `buffer` (at least 1): text
/// longer than `size` - 1 bytes is cut there, and the result is always
/// terminated. A null `format`, or a format vsnprintf fails on, leaves "".
/// Returns the length of the text, up to its first zero byte (a "%c" of 0
/// ends it early, as it does for every reader of the text).
///
/// The commonest conversions, "%d %i %u %ld %li %lu %s %c %%" without flags,
/// width or precision, are formatted here, byte for byte as vsnprintf would,
/// since the C library's general machinery costs more than the rest of a
/// short diagnostic line; any other conversion hands the whole format to
/// vsnprintf.
std::size_t FormatMessage(char* buffer, std::size_t size, const char* format, va_list args);

/// `FormatMessage` into a message buffer: longer text is cut to 1,023 bytes.
inline std::size_t FormatMessage(MessageBuffer& buffer, const char* format, va_list args) {
    return FormatMessage(buffer.text, sizeof buffer.text, format, args);
}

/// Reads `text` as a printf format given no arguments, without the danger:
/// "%%" becomes "%", and any other conversion is copied as it stands instead
/// of reading an argument that was never passed. Cut to 1,023 bytes.
void FormatWithoutArguments(MessageBuffer& buffer, const char* text);

/// The same reading of `text`, without a length limit (null gives "").
std::string FormatWithoutArguments(const char* text);

} // namespace dunx::internal

// The one place where diagnostic texts are formatted into the library's
// 1,024-byte message buffers, so that no message can run past them.
#pragma once

#include <cstdarg>
#include <string>

namespace dunx::internal {

/// Size of every message buffer, terminator included.
constexpr int kMessageBufferSize = 1024;

/// A zero-filled message buffer.
struct MessageBuffer {
    char text[kMessageBufferSize] = {};
};

/// vsnprintf of `format` into `buffer`: longer text is cut to 1,023 bytes.
/// A null `format` leaves the buffer empty.
void FormatMessage(MessageBuffer& buffer, const char* format, va_list args);

/// Reads `text` as a printf format given no arguments, without the danger:
/// "%%" becomes "%", and any other conversion is copied as it stands instead
/// of reading an argument that was never passed. Cut to 1,023 bytes.
void FormatWithoutArguments(MessageBuffer& buffer, const char* text);

/// The same reading of `text`, without a length limit (null gives "").
std::string FormatWithoutArguments(const char* text);

} // namespace dunx::internal

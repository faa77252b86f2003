#include "internal/MessageFormat.h"

#include <cstdio>

namespace dunx::internal {

void FormatMessage(MessageBuffer& buffer, const char* format, va_list args) {
    buffer.text[0] = '\0';
    if (!format)
        return;
    if (std::vsnprintf(buffer.text, sizeof buffer.text, format, args) < 0)
        buffer.text[0] = '\0';
}

void FormatWithoutArguments(MessageBuffer& buffer, const char* text) {
    int out = 0;
    for (const char* p = text; p && *p && out < kMessageBufferSize - 1; ++p) {
        if (p[0] == '%' && p[1] == '%')
            ++p;
        buffer.text[out++] = *p;
    }
    buffer.text[out] = '\0';
}

} // namespace dunx::internal

#include "internal/MessageFormat.h"

#include <algorithm>
#include <cstdio>

namespace dunx::internal {

void FormatMessage(MessageBuffer& buffer, const char* format, va_list args) {
    buffer.text[0] = '\0';
    if (!format)
        return;
    if (std::vsnprintf(buffer.text, sizeof buffer.text, format, args) < 0)
        buffer.text[0] = '\0';
}

std::string FormatWithoutArguments(const char* text) {
    std::string result;
    for (const char* p = text; p && *p; ++p) {
        if (p[0] == '%' && p[1] == '%')
            ++p;
        result += *p;
    }
    return result;
}

void FormatWithoutArguments(MessageBuffer& buffer, const char* text) {
    const std::string result = FormatWithoutArguments(text);
    const std::size_t length = std::min(result.size(), sizeof buffer.text - 1);
    result.copy(buffer.text, length);
    buffer.text[length] = '\0';
}

} // namespace dunx::internal

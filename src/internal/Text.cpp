#include "internal/Text.h"

#include <charconv>
#include <cmath>

namespace dunx::internal {

namespace {

// Narrows [first, last) to the text between blanks; false when it is empty or
// holds a character outside `allowed`. A leading '+' is skipped, as from_chars
// takes none.
bool numberBody(const char* text, const char* allowed, const char*& first, const char*& last) {
    if (!text)
        return false;
    first = text + std::strspn(text, " \t");
    last = first + std::strlen(first);
    while (last > first && (last[-1] == ' ' || last[-1] == '\t'))
        --last;
    if (first == last || std::strspn(first, allowed) < static_cast<std::size_t>(last - first))
        return false;
    if (*first == '+')
        ++first;
    return first < last && *first != '+' && !(first > text && first[-1] == '+' && *first == '-');
}

} // namespace

int WordValue(const DUNXString& text) {
    if (text.equalsIgnoreCase(DUNXString::DUNX_YES) ||
        text.equalsIgnoreCase(DUNXString::DUNX_TRUE) || text.equalsIgnoreCase(DUNXString::DUNX_ON))
        return 1;
    if (text.equalsIgnoreCase(DUNXString::DUNX_NO) ||
        text.equalsIgnoreCase(DUNXString::DUNX_FALSE) ||
        text.equalsIgnoreCase(DUNXString::DUNX_OFF))
        return 0;
    return -1;
}

bool ParseWholeInt(const char* text, int& value) {
    const char *first, *last;
    if (!numberBody(text, "+-0123456789", first, last))
        return false;
    int number = 0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || end != last)
        return false;
    value = number;
    return true;
}

bool ParseWholeDouble(const char* text, double& value) {
    const char *first, *last;
    if (!numberBody(text, "+-0123456789.eE", first, last))
        return false;
    double number = 0.0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || end != last || !std::isfinite(number))
        return false;
    value = number;
    return true;
}

} // namespace dunx::internal

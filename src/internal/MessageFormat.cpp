#include "internal/MessageFormat.h"

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstdio>

namespace dunx::internal {

namespace {

// Collects output as vsnprintf does into a buffer of `size` bytes: what does
// not fit is dropped but still counted, since the C library fails a call
// whose whole text would pass INT_MAX bytes.
class CutOutput {
public:
    CutOutput(char* buffer, std::size_t size) : m_Next(buffer), m_Room(size - 1) {}

    void put(const char* text, std::size_t length) {
        const std::size_t kept = std::min(length, m_Room);
        if (kept > 0)
            std::memcpy(m_Next, text, kept);
        m_Next += kept;
        m_Room -= kept;
        m_Total += length;
    }
    void put(char c) { put(&c, 1); }

    // Room for `length` bytes written in place by the caller, or null when
    // they would not all fit (the caller then puts them, to be cut).
    char* reserve(std::size_t length) {
        if (m_Room < length)
            return nullptr;
        char* const at = m_Next;
        m_Next += length;
        m_Room -= length;
        m_Total += length;
        return at;
    }

    // Terminates the text; false when vsnprintf would have failed on it, its
    // whole length passing INT_MAX.
    bool finish() {
        *m_Next = '\0';
        return m_Total <= static_cast<std::size_t>(INT_MAX);
    }
    std::size_t kept(const char* buffer) const { return static_cast<std::size_t>(m_Next - buffer); }

private:
    char* m_Next;
    std::size_t m_Room;
    std::size_t m_Total = 0;
};

// "00" to "99": two digits per division, half the dependent divisions of a
// digit at a time, which is what a long number costs.
constexpr char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233"
    "34353637383940414243444546474849505152535455565758596061626364656667"
    "6869707172737475767778798081828384858687888990919293949596979899";

std::size_t decimalDigits(unsigned long value) {
    std::size_t count = 1;
    for (;;) {
        if (value < 10)
            return count;
        if (value < 100)
            return count + 1;
        if (value < 1000)
            return count + 2;
        if (value < 10000)
            return count + 3;
        value /= 10000;
        count += 4;
    }
}

void putDecimal(CutOutput& out, unsigned long magnitude, bool negative) {
    // Written straight into the output when it fits: digits stored a byte
    // or two at a time and then copied on as one block stall the copy.
    const std::size_t length = decimalDigits(magnitude) + (negative ? 1 : 0);
    char local[24]; // 20 digits of a 64-bit number and a sign
    char* const inPlace = out.reserve(length);
    char* const start = inPlace ? inPlace : local;
    char* next = start + length;
    while (magnitude >= 100) {
        const unsigned long pair = magnitude % 100 * 2;
        magnitude /= 100;
        *--next = kDigitPairs[pair + 1];
        *--next = kDigitPairs[pair];
    }
    if (magnitude >= 10) {
        *--next = kDigitPairs[magnitude * 2 + 1];
        *--next = kDigitPairs[magnitude * 2];
    } else {
        *--next = static_cast<char>('0' + magnitude);
    }
    if (negative)
        *start = '-';
    if (!inPlace)
        out.put(local, length);
}

void putSigned(CutOutput& out, long value) {
    // The magnitude in unsigned arithmetic, so that LONG_MIN has one too.
    const unsigned long magnitude =
        value < 0 ? 0UL - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
    putDecimal(out, magnitude, value < 0);
}

// The conversion starting at `start` (just past its '%') when it is one of
// the common ones, else null; `isLong` tells whether it reads a long.
const char* commonConversion(const char* start, bool& isLong) {
    isLong = *start == 'l';
    if (isLong)
        ++start;
    switch (*start) {
    case 'd':
    case 'i':
    case 'u':
        return start;
    case 's':
    case 'c':
    case '%':
        return isLong ? nullptr : start;
    default:
        return nullptr;
    }
}

// True when every conversion of `format` is a common one. Decided before any
// argument is read, since a va_list cannot be rewound without a copy, and
// copying one the caller has just started stalls on its fresh stores.
bool hasOnlyCommonConversions(const char* format) {
    // A plain loop: diagnostic formats are short, and strchr's call and set-up
    // cost more than the scan itself.
    bool isLong = false;
    for (const char* p = format; *p != '\0'; ++p) {
        if (*p == '%') {
            p = commonConversion(p + 1, isLong);
            if (!p)
                return false;
        }
    }
    return true;
}

// Formats `format`, whose conversions are all common ones. Tells whether a
// "%c" was formatted (its byte may be a zero, which ends the text early).
bool formatCommon(CutOutput& out, const char* format, va_list args) {
    bool sawCharacter = false;
    bool isLong = false;
    const char* p = format;
    for (;;) {
        const char* literal = p;
        while (*p != '\0' && *p != '%')
            ++p;
        out.put(literal, static_cast<std::size_t>(p - literal));
        if (*p == '\0')
            return sawCharacter;
        p = commonConversion(p + 1, isLong);
        switch (*p) {
        case 'd':
        case 'i':
            putSigned(out, isLong ? va_arg(args, long) : va_arg(args, int));
            break;
        case 'u':
            putDecimal(out, isLong ? va_arg(args, unsigned long) : va_arg(args, unsigned int),
                       false);
            break;
        case 's': {
            const char* text = va_arg(args, const char*);
            if (!text)
                text = "(null)"; // the C library's text for a null pointer
            out.put(text, std::strlen(text));
            break;
        }
        case 'c':
            out.put(static_cast<char>(static_cast<unsigned char>(va_arg(args, int))));
            sawCharacter = true;
            break;
        default: // '%'
            out.put('%');
            break;
        }
        ++p;
    }
}

} // namespace

std::size_t FormatMessage(char* buffer, std::size_t size, const char* format, va_list args) {
    assert(buffer && size > 0 && "a formatted message needs room for its terminator");
    buffer[0] = '\0';
    if (!format)
        return 0;
    if (hasOnlyCommonConversions(format)) {
        CutOutput out(buffer, size);
        const bool sawCharacter = formatCommon(out, format, args);
        if (!out.finish()) {
            buffer[0] = '\0';
            return 0;
        }
        return sawCharacter ? std::strlen(buffer) : out.kept(buffer);
    }
    if (std::vsnprintf(buffer, size, format, args) < 0) {
        buffer[0] = '\0';
        return 0;
    }
    return std::strlen(buffer);
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

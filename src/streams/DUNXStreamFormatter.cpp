#include <dunx/DUNXStreamFormatter.h>

#include <dunx/DUNXOutputStream.h>

#include "streams/PrintfFormat.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

using dunx::internal::ParsePrintfFormat;
using dunx::internal::PrintfArgument;

namespace {

constexpr int kSharedFormatBufferSize = 1024;
constexpr char kMarginBlanks[] = "    ";

// printf of one value, however long the result.
template <class... Args> std::string formatValue(const char* format, Args... args) {
    char fixed[128];
    const int n = std::snprintf(fixed, sizeof fixed, format, args...);
    if (n < 0)
        return std::string();
    if (static_cast<std::size_t>(n) < sizeof fixed)
        return std::string(fixed, static_cast<std::size_t>(n));
    std::string text(static_cast<std::size_t>(n) + 1, '\0');
    std::snprintf(&text[0], text.size(), format, args...);
    text.resize(static_cast<std::size_t>(n));
    return text;
}

// Drops the trailing zeros of the last fixed-point fraction in `text`, and its
// point when nothing remains: "2.500000" => "2.5", "[2.50]" => "[2.5]", "3.000" => "3".
// Exponent forms, whole numbers after a literal '.' ("v.10") and texts without
// digits are left alone.
void dropTrailingZeros(std::string& text) {
    const std::size_t last = text.find_last_of("0123456789");
    if (last == std::string::npos)
        return;
    std::size_t point = last;
    while (point > 0 && text[point - 1] >= '0' && text[point - 1] <= '9')
        --point;
    if (point < 2 || text[point - 1] != '.' || text[point - 2] < '0' || text[point - 2] > '9')
        return;
    const std::size_t after = last + 1;
    if (after < text.size() && (text[after] == 'e' || text[after] == 'E'))
        return;
    --point; // at the '.'
    std::size_t end = after;
    while (end > point + 1 && text[end - 1] == '0')
        --end;
    if (end == point + 1)
        --end;
    text.erase(end, after - end);
}

} // namespace

DUNXStreamFormatter::DUNXStreamFormatter(DUNXOutputStream* stream) : m_Stream(stream) {
    resetFormat();
}

DUNXStreamFormatter::~DUNXStreamFormatter() = default;

void DUNXStreamFormatter::decrementMargin() {
    if (m_Margin > 0)
        --m_Margin;
}

void DUNXStreamFormatter::setMargin(int level) {
    m_Margin = level > 0 ? level : 0;
}

void DUNXStreamFormatter::resetFormat() {
    setIntFormat("%d");
    setUnsignedFormat("%u");
    setLongFormat("%ld");
    // Prints the number followed by the letter l; kept as it always was.
    setUnsignedLongFormat("%ul");
    setDoubleFormat("%lf");
    m_TrailingZeroMode = 0;
}

bool DUNXStreamFormatter::setNumberFormat(NumberFormat& target, const char* format, bool floating,
                                          int stars) {
    const auto found = ParsePrintfFormat(format);
    const bool isFloating =
        found.argument == PrintfArgument::Double || found.argument == PrintfArgument::LongDouble;
    if (found.argument == PrintfArgument::Unfit || isFloating != floating || found.stars != stars)
        return false;
    target.text = format;
    target.kind = static_cast<int>(found.argument);
    if (!floating) {
        const auto at = static_cast<std::size_t>(found.lengthStart);
        target.wide = target.text;
        target.wide.replace(at, static_cast<std::size_t>(found.lengthSize), "ll");
    }
    return true;
}

bool DUNXStreamFormatter::setIntFormat(const char* format) {
    return setNumberFormat(m_IntFormat, format, false, 0);
}

bool DUNXStreamFormatter::setUnsignedFormat(const char* format) {
    return setNumberFormat(m_UnsignedFormat, format, false, 0);
}

bool DUNXStreamFormatter::setLongFormat(const char* format) {
    return setNumberFormat(m_LongFormat, format, false, 0);
}

bool DUNXStreamFormatter::setUnsignedLongFormat(const char* format) {
    return setNumberFormat(m_UnsignedLongFormat, format, false, 0);
}

bool DUNXStreamFormatter::setDoubleFormat(const char* format, bool usePrecision, int precision) {
    if (!setNumberFormat(m_DoubleFormat, format, true, usePrecision ? 1 : 0))
        return false;
    m_UsePrecision = usePrecision;
    m_Precision = precision;
    return true;
}

void DUNXStreamFormatter::setLineEnd(const char* lineEnd) {
    m_LineEnd = lineEnd ? lineEnd : "";
}

void DUNXStreamFormatter::write(const char* text, int length) {
    if (!m_Stream || length <= 0)
        return;
    if (m_Stream->write(text, length) != length)
        m_WriteFault = true;
}

namespace {

// Bytes of the argument that each integer conversion reads.
std::size_t argumentSize(PrintfArgument argument) {
    switch (argument) {
    case PrintfArgument::Int:
    case PrintfArgument::UInt:
        return sizeof(int);
    case PrintfArgument::Long:
    case PrintfArgument::ULong:
        return sizeof(long);
    default:
        return sizeof(long long);
    }
}

} // namespace

template <class T> void DUNXStreamFormatter::printInteger(const NumberFormat& format, T value) {
    const auto kind = static_cast<PrintfArgument>(format.kind);
    const bool isSigned = kind == PrintfArgument::Int || kind == PrintfArgument::Long ||
                          kind == PrintfArgument::LongLong;
    std::string text;
    if (sizeof(T) > argumentSize(kind)) {
        // A value wider than the conversion is printed whole, the conversion
        // widened: "%ul" prints a 64-bit unsigned long followed by 'l'.
        const char* f = format.wide.c_str();
        text = isSigned ? formatValue(f, static_cast<long long>(value))
                        : formatValue(f, static_cast<unsigned long long>(value));
    } else {
        // Otherwise the value is converted to the type the conversion reads, as
        // printf would take it from a caller who passed that type.
        const char* f = format.text.c_str();
        switch (kind) {
        case PrintfArgument::Int:
            text = formatValue(f, static_cast<int>(value));
            break;
        case PrintfArgument::UInt:
            text = formatValue(f, static_cast<unsigned>(value));
            break;
        case PrintfArgument::Long:
            text = formatValue(f, static_cast<long>(value));
            break;
        case PrintfArgument::ULong:
            text = formatValue(f, static_cast<unsigned long>(value));
            break;
        case PrintfArgument::LongLong:
            text = formatValue(f, static_cast<long long>(value));
            break;
        case PrintfArgument::ULongLong:
            text = formatValue(f, static_cast<unsigned long long>(value));
            break;
        default:
            return; // integer formats are checked when set
        }
    }
    write(text.data(), static_cast<int>(text.size()));
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(char c) {
    write(&c, 1);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(int value) {
    printInteger(m_IntFormat, value);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(unsigned value) {
    printInteger(m_UnsignedFormat, value);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(long value) {
    printInteger(m_LongFormat, value);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(unsigned long value) {
    printInteger(m_UnsignedLongFormat, value);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(long long value) {
    printInteger(m_LongFormat, value);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(unsigned long long value) {
    printInteger(m_UnsignedLongFormat, value);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(double value) {
    const char* f = m_DoubleFormat.text.c_str();
    const bool isLong =
        static_cast<PrintfArgument>(m_DoubleFormat.kind) == PrintfArgument::LongDouble;
    std::string text;
    if (m_UsePrecision)
        text = isLong ? formatValue(f, m_Precision, static_cast<long double>(value))
                      : formatValue(f, m_Precision, value);
    else
        text = isLong ? formatValue(f, static_cast<long double>(value)) : formatValue(f, value);
    if (m_TrailingZeroMode == 1)
        dropTrailingZeros(text);
    write(text.data(), static_cast<int>(text.size()));
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(const char* text) {
    if (!text)
        text = "(null)";
    write(text, static_cast<int>(std::strlen(text)));
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(const void* pointer) {
    const std::string text = formatValue("%p", pointer);
    write(text.data(), static_cast<int>(text.size()));
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(const DUNXString& text) {
    if (const char* narrow = text)
        write(narrow, static_cast<int>(std::strlen(narrow)));
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(const DUNXMargin&) {
    for (int i = 0; i < m_Margin; ++i)
        write(kMarginBlanks, 4);
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(const DUNXLineEnd&) {
    write(m_LineEnd.data(), static_cast<int>(m_LineEnd.size()));
    return *this;
}

DUNXStreamFormatter& DUNXStreamFormatter::operator<<(const DUNXFormattedText& text) {
    return *this << text.text;
}

DUNXFormattedText DUNXStreamFormatter::format(const char* format, ...) {
    // One buffer for the whole process, overwritten by the next call.
    static char shared[kSharedFormatBufferSize];
    shared[0] = '\0';
    if (format) {
        va_list args;
        va_start(args, format);
        if (std::vsnprintf(shared, sizeof shared, format, args) < 0)
            shared[0] = '\0';
        va_end(args);
    }
    return DUNXFormattedText{shared};
}

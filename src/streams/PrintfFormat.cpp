#include "streams/PrintfFormat.h"

#include <cstring>

namespace dunx::internal {

namespace {

enum class Length { None, Char, Short, Long, LongLong, Size, LongDouble };

const char* skipDigits(const char* p) {
    while (*p >= '0' && *p <= '9')
        ++p;
    return p;
}

Length readLength(const char*& p) {
    switch (*p) {
    case 'h':
        ++p;
        if (*p == 'h') {
            ++p;
            return Length::Char;
        }
        return Length::Short;
    case 'l':
        ++p;
        if (*p == 'l') {
            ++p;
            return Length::LongLong;
        }
        return Length::Long;
    case 'q':
    case 'j':
        ++p;
        return Length::LongLong;
    case 'z':
    case 't':
        ++p;
        return Length::Size;
    case 'L':
        ++p;
        return Length::LongDouble;
    default:
        return Length::None;
    }
}

PrintfArgument integerArgument(Length length, bool isSigned) {
    switch (length) {
    case Length::None:
    case Length::Char:
    case Length::Short:
        return isSigned ? PrintfArgument::Int : PrintfArgument::UInt;
    case Length::Long:
    case Length::Size: // size_t and ptrdiff_t are long-sized here
        return isSigned ? PrintfArgument::Long : PrintfArgument::ULong;
    case Length::LongLong:
        return isSigned ? PrintfArgument::LongLong : PrintfArgument::ULongLong;
    case Length::LongDouble:
        break;
    }
    return PrintfArgument::Unfit;
}

PrintfArgument conversionArgument(char conversion, Length length) {
    if (conversion == 'd' || conversion == 'i')
        return integerArgument(length, true);
    if (conversion != '\0' && std::strchr("ouxX", conversion))
        return integerArgument(length, false);
    if (conversion != '\0' && std::strchr("fFeEgGaA", conversion)) {
        if (length == Length::None || length == Length::Long)
            return PrintfArgument::Double;
        if (length == Length::LongDouble)
            return PrintfArgument::LongDouble;
    }
    return PrintfArgument::Unfit;
}

} // namespace

PrintfConversion ParsePrintfFormat(const char* format) {
    PrintfConversion found;
    if (!format)
        return found;
    int conversions = 0;
    for (const char* p = format; *p; ++p) {
        if (*p != '%')
            continue;
        ++p;
        if (*p == '%')
            continue;
        while (*p != '\0' && std::strchr("-+ #0'", *p))
            ++p;
        if (*p == '*') {
            ++found.stars;
            ++p;
        } else {
            p = skipDigits(p);
        }
        if (*p == '.') {
            ++p;
            if (*p == '*') {
                ++found.stars;
                ++p;
            } else {
                p = skipDigits(p);
            }
        }
        found.lengthStart = static_cast<int>(p - format);
        const Length length = readLength(p);
        found.lengthSize = static_cast<int>(p - format) - found.lengthStart;
        found.argument = conversionArgument(*p, length);
        if (found.argument == PrintfArgument::Unfit || ++conversions > 1)
            return PrintfConversion();
    }
    if (conversions != 1)
        return PrintfConversion();
    return found;
}

} // namespace dunx::internal

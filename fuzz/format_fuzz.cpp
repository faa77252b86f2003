// The library's own formatting of the common conversions against the C library's
// vsnprintf, which it stands in front of: the same bytes for every format, the cut at
// 1,023 bytes included. Formats take their arguments in one fixed order of types, so
// that every conversion reads an argument of its own type.
#include <dunx/DUNXMessageEvent.h>

#include "FuzzInput.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// The conversions each argument may be read by, in argument order: int, text, long,
// unsigned, unsigned long. The plain ones are formatted by the library; the others (flags,
// width, precision, other letters) send the whole format to vsnprintf.
const char* const kConversions[5][6] = {{"%d", "%i", "%c", "%5d", "%-4i", "%+d"},
                                        {"%s", "%s", "%.3s", "%10s", "%-7s", "%s"},
                                        {"%ld", "%li", "%8ld", "%ld", "%li", "%-3ld"},
                                        {"%u", "%u", "%o", "%05u", "%x", "%u"},
                                        {"%lu", "%lu", "%lx", "%12lu", "%lu", "%lo"}};

// Text for the format: any byte but '%', which only the conversions above may bring.
std::string plainText(dunx::fuzz::FuzzInput& input) {
    std::string text = input.text(255);
    for (char& c : text)
        if (c == '%')
            c = '#';
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dunx::fuzz::FuzzInput input(data, size);
    const int number = static_cast<int>(input.byte() | input.byte() << 8 | input.byte() << 16 |
                                        static_cast<unsigned>(input.byte()) << 24);
    const bool nullText = input.below(8) == 0;
    const std::string argumentText = input.text(255);
    const long wide = input.below(4) == 0 ? LONG_MIN : static_cast<long>(number) * 4099L;
    const unsigned positive = static_cast<unsigned>(number) ^ 0x80000000u;
    const unsigned long big = input.below(4) == 0 ? ULONG_MAX : static_cast<unsigned long>(wide);
    // Up to five conversions, each reading the next argument, with text and "%%" between.
    std::string format;
    const int conversions = input.below(6);
    for (int k = 0; k < conversions; ++k) {
        format += plainText(input);
        if (input.below(4) == 0)
            format += "%%";
        format += kConversions[k][input.below(6)];
    }
    format += plainText(input);
    const char* const text = nullText ? nullptr : argumentText.c_str();
    char expected[1024];
    const int written =
        std::snprintf(expected, sizeof expected, format.c_str(), number, text, wide, positive, big);
    if (written < 0)
        expected[0] = '\0'; // the library's text for a format that fails
    const DUNXWarningEvent event(format.c_str(), number, text, wide, positive, big);
    const char* message = event.GetMessage();
    if (std::strcmp(message ? message : "", expected) != 0)
        std::abort();
    return 0;
}

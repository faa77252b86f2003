// DUNXString from narrow text in C.UTF-8 and from UTF-8, with searches, cuts and comparisons.
#include <dunx/DUNXString.h>

#include "FuzzInput.h"

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool locale = std::setlocale(LC_ALL, "C.UTF-8") != nullptr;
    (void)locale;
    dunx::fuzz::FuzzInput input(data, size);
    const std::string first = input.text(200), second = input.text(40);
    const DUNXString a(first.c_str()), b(second.c_str());
    const DUNXString u = DUNXString::FromUtf8(first.data(), static_cast<int>(first.size()));
    // UTF-8 out and in again gives the same units (malformed input became U+FFFD once).
    const std::string utf8 = u.ToUtf8();
    if (!DUNXString::FromUtf8(utf8.c_str()).equals(u))
        std::abort();
    const char* narrow = a;
    if (narrow && std::strlen(narrow) > 4 * first.size() + 4)
        std::abort();
    const int from = input.below(64) - 8, to = input.below(64) - 8;
    a.indexOf(b);
    a.lastIndexOf(b);
    a.indexOf(b, from);
    a.startsWith(b);
    a.endsWith(b);
    a.endsWithIgnoreCase(b);
    a.substring(from, to);
    a.substring(from);
    a.trim();
    a.toUpperCase();
    a.toLowerCase();
    (a + b).hashCode();
    const int order = a.compareTo(b);
    if ((order == 0) != a.equals(b) || (b.compareTo(a) > 0) != (order < 0))
        std::abort();
    a.compareToIgnoreCase(b);
    a.equalsIgnoreCase(b);
    a.charAt(from);
    return 0;
}

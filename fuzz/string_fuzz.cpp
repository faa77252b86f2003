// DUNXString from narrow text in C.UTF-8 and from UTF-8, with searches, cuts and comparisons;
// the fast conversions and comparisons against their plain definitions.
#include <dunx/DUNXString.h>

#include "FuzzInput.h"
#include "support/LocaleUnits.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <vector>

namespace {

using Units = std::vector<unsigned short>;

Units unitsOf(const DUNXString& s) {
    const unsigned short* units = s;
    return units ? Units(units, units + s.length()) : Units();
}

Units unitsByTheLocale(const char* text) {
    return dunx::test::UnitsByTheLocale(text, std::strlen(text));
}

// equals, hashCode and indexOf by their unit-by-unit definitions, against the
// library's word-at-a-time and vector forms.
void checkAgainstDefinitions(const DUNXString& a, const DUNXString& b, int from) {
    const Units x = unitsOf(a), y = unitsOf(b);
    if (a.equals(b) != (x == y))
        std::abort();
    unsigned hash = 0;
    for (unsigned short unit : x)
        hash = hash * 33 + unit;
    if (a.hashCode() != hash)
        std::abort();
    int expected = -1;
    if (!x.empty() && !y.empty() && from >= 0 && from < static_cast<int>(x.size()))
        for (std::size_t at = static_cast<std::size_t>(from); at + y.size() <= x.size(); ++at)
            if (std::equal(y.begin(), y.end(), x.begin() + static_cast<long>(at))) {
                expected = static_cast<int>(at);
                break;
            }
    if (a.indexOf(b, from) != expected)
        std::abort();
}

} // namespace

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
    if (unitsOf(a) != unitsByTheLocale(first.c_str()) ||
        unitsOf(b) != unitsByTheLocale(second.c_str()))
        std::abort();
    checkAgainstDefinitions(a, b, from);
    checkAgainstDefinitions(a + b, b, from);
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

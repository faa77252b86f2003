// UnitsByTheLocale: the plain narrow conversion that DUNXString's fast paths stand in for, as
// the reference of the string tests and of the string fuzz target.
#pragma once

#include <cstddef>
#include <cwchar>
#include <vector>

namespace dunx::test {

/// One mbrtowc call per character (wchar_t of 32 bits): the whole text as 16-bit units, or,
/// when the locale cannot read some of it, every byte as a unit of its own value.
inline std::vector<unsigned short> UnitsByTheLocale(const char* text, std::size_t size) {
    std::vector<unsigned short> units;
    std::mbstate_t state{};
    for (std::size_t i = 0; i < size;) {
        wchar_t wc = 0;
        const std::size_t used = std::mbrtowc(&wc, text + i, size - i, &state);
        const auto code = static_cast<unsigned long>(wc);
        if (used == static_cast<std::size_t>(-1) || used == static_cast<std::size_t>(-2) ||
            used == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
            units.assign(text, text + size);
            for (unsigned short& unit : units)
                unit &= 0xFF;
            return units;
        }
        if (code > 0xFFFF) {
            units.push_back(static_cast<unsigned short>(0xD800 + ((code - 0x10000) >> 10)));
            units.push_back(static_cast<unsigned short>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            units.push_back(static_cast<unsigned short>(code));
        }
        i += used;
    }
    return units;
}

} // namespace dunx::test

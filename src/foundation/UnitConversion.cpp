#include "foundation/UnitConversion.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>

namespace dunx::internal {

namespace {

constexpr unsigned long kHighSurrogate = 0xD800;
constexpr unsigned long kLowSurrogate = 0xDC00;
constexpr unsigned long kSurrogateEnd = 0xE000;

// Every locale charset this runtime supports is a superset of ASCII, so plain
// ASCII text needs no call into the converter.
bool isAscii(unsigned char byte) {
    return byte < 0x80;
}

// Where wchar_t has 16 bits, mbstowcs already yields UTF-16: the whole text is
// converted at once and its pairs joined back into code points.
template <class Emit> bool walkWideUnits(const char* text, Emit emit) {
    std::mbstate_t state{};
    const char* source = text;
    const std::size_t count = std::mbsrtowcs(nullptr, &source, 0, &state);
    if (count == static_cast<std::size_t>(-1))
        return false;
    std::wstring wide(count, L'\0');
    source = text;
    state = std::mbstate_t{};
    std::mbsrtowcs(&wide[0], &source, count, &state);
    for (std::size_t i = 0; i < count; ++i) {
        unsigned long code = static_cast<unsigned long>(wide[i]) & 0xFFFF;
        const unsigned long next = i + 1 < count ? static_cast<unsigned long>(wide[i + 1]) : 0;
        if (code >= kHighSurrogate && code < kLowSurrogate && next >= kLowSurrogate &&
            next < kSurrogateEnd) {
            code = 0x10000 + ((code - kHighSurrogate) << 10) + (next - kLowSurrogate);
            ++i;
        } else if (code >= kHighSurrogate && code < kSurrogateEnd) {
            return false;
        }
        emit(code);
    }
    return true;
}

// Walks `text` character by character; `emit(code)` receives each code point.
// Returns false when the locale cannot convert the text.
template <class Emit> bool walkCharacters(const char* text, Emit emit) {
    if constexpr (sizeof(wchar_t) < 4)
        return walkWideUnits(text, emit);
    std::mbstate_t state{};
    const char* p = text;
    std::size_t remaining = std::strlen(text);
    while (remaining > 0) {
        if (isAscii(static_cast<unsigned char>(*p)) && std::mbsinit(&state)) {
            emit(static_cast<unsigned long>(static_cast<unsigned char>(*p)));
            ++p;
            --remaining;
            continue;
        }
        wchar_t wc = 0;
        std::size_t used = std::mbrtowc(&wc, p, remaining, &state);
        if (used == static_cast<std::size_t>(-1) || used == static_cast<std::size_t>(-2) ||
            used == 0)
            return false;
        unsigned long code = static_cast<unsigned long>(wc);
        if (code > 0x10FFFF || (code >= kHighSurrogate && code < kSurrogateEnd))
            return false;
        emit(code);
        p += used;
        remaining -= used;
    }
    return true;
}

} // namespace

bool WidenAscii(const char* text, std::size_t size, unsigned short* out) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    std::size_t i = 0;
    // Eight bytes a step: one test of their high bits, then a plain widening
    // loop that the compiler turns into vector code.
    for (; i + 8 <= size; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i, sizeof word);
        if (word & 0x8080808080808080ULL)
            return false;
        for (std::size_t k = 0; k < 8; ++k)
            out[i + k] = bytes[i + k];
    }
    for (; i < size; ++i) {
        if (bytes[i] >= 0x80)
            return false;
        out[i] = bytes[i];
    }
    return true;
}

bool LocaleReadsUtf8() {
    // The locale's codec is asked directly, so the answer follows setlocale
    // and uselocale alike without naming the codeset: only UTF-8 reads these
    // three characters of two, three and four bytes this way.
    struct Probe {
        const char* bytes;
        std::size_t size;
        unsigned long code;
    };
    static constexpr Probe kProbes[] = {
        {"\xC3\xA9", 2, 0xE9}, {"\xE2\x82\xAC", 3, 0x20AC}, {"\xF0\x9F\x94\xA9", 4, 0x1F529}};
    for (const Probe& probe : kProbes) {
        // A 16-bit wchar_t cannot hold the four-byte character in one unit.
        if (probe.code > static_cast<unsigned long>(WCHAR_MAX))
            continue;
        std::mbstate_t state{};
        wchar_t wc = 0;
        if (std::mbrtowc(&wc, probe.bytes, probe.size, &state) != probe.size ||
            static_cast<unsigned long>(wc) != probe.code)
            return false;
    }
    return true;
}

int DecodeUtf8(const char* text, std::size_t size, unsigned short* out) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    unsigned short* const start = out;
    auto continuation = [](unsigned char byte) { return (byte & 0xC0) == 0x80; };
    std::size_t i = 0;
    while (i < size) {
        const unsigned char lead = bytes[i];
        if (lead < 0x80) {
            // Eight ASCII bytes at a time where there are eight, the common
            // case of names and numbers; one at a time between other characters.
            std::uint64_t word;
            if (i + 8 <= size &&
                (std::memcpy(&word, bytes + i, sizeof word), (word & 0x8080808080808080ULL) == 0)) {
                for (std::size_t k = 0; k < 8; ++k)
                    out[k] = bytes[i + k];
                out += 8;
                i += 8;
            } else {
                *out++ = lead;
                ++i;
            }
            continue;
        }
        // Each form is checked for what the locale refuses: overlong forms
        // (C0, C1, and values below the form's range), surrogates, values past
        // U+10FFFF, lead bytes past F4 and sequences cut short.
        if (lead < 0xE0) {
            if (lead < 0xC2 || size - i < 2 || !continuation(bytes[i + 1]))
                return -1;
            *out++ = static_cast<unsigned short>(((lead & 0x1FU) << 6) | (bytes[i + 1] & 0x3FU));
            i += 2;
        } else if (lead < 0xF0) {
            if (size - i < 3 || !continuation(bytes[i + 1]) || !continuation(bytes[i + 2]))
                return -1;
            const unsigned code =
                ((lead & 0x0FU) << 12) | ((bytes[i + 1] & 0x3FU) << 6) | (bytes[i + 2] & 0x3FU);
            if (code < 0x800 || (code >= kHighSurrogate && code < kSurrogateEnd))
                return -1;
            *out++ = static_cast<unsigned short>(code);
            i += 3;
        } else {
            if (lead > 0xF4 || size - i < 4 || !continuation(bytes[i + 1]) ||
                !continuation(bytes[i + 2]) || !continuation(bytes[i + 3]))
                return -1;
            const unsigned long code = ((lead & 0x07UL) << 18) | ((bytes[i + 1] & 0x3FUL) << 12) |
                                       ((bytes[i + 2] & 0x3FUL) << 6) | (bytes[i + 3] & 0x3FUL);
            if (code < 0x10000 || code > 0x10FFFF)
                return -1;
            *out++ = static_cast<unsigned short>(kHighSurrogate + ((code - 0x10000) >> 10));
            *out++ = static_cast<unsigned short>(kLowSurrogate + ((code - 0x10000) & 0x3FF));
            i += 4;
        }
    }
    return static_cast<int>(out - start);
}

int CountUnits(const char* text) {
    int count = 0;
    bool ok =
        walkCharacters(text, [&count](unsigned long code) { count += code > 0xFFFF ? 2 : 1; });
    return ok ? count : -1;
}

void DecodeUnits(const char* text, unsigned short* out) {
    walkCharacters(text, [&out](unsigned long code) {
        if (code > 0xFFFF) {
            code -= 0x10000;
            *out++ = static_cast<unsigned short>(kHighSurrogate + (code >> 10));
            *out++ = static_cast<unsigned short>(kLowSurrogate + (code & 0x3FF));
        } else {
            *out++ = static_cast<unsigned short>(code);
        }
    });
}

long EncodeUnits(const unsigned short* units, char* out, std::size_t limit) {
    std::mbstate_t state{};
    std::size_t written = 0;
    char bytes[MB_LEN_MAX];
    for (const unsigned short* u = units; *u != 0; ++u) {
        if (out && written >= limit)
            break; // as wcstombs: nothing past the limit is looked at
        unsigned long code = *u;
        if (code >= kHighSurrogate && code < kLowSurrogate && u[1] >= kLowSurrogate &&
            u[1] < kSurrogateEnd) {
            code = 0x10000 + ((code - kHighSurrogate) << 10) + (u[1] - kLowSurrogate);
            ++u;
        } else if (code >= kHighSurrogate && code < kSurrogateEnd) {
            return -1; // a lone half of a pair is no character
        }
        std::size_t n = 1;
        if (code < 0x80) {
            bytes[0] = static_cast<char>(code);
        } else if (code > static_cast<unsigned long>(WCHAR_MAX)) {
            // A 16-bit wchar_t: the runtime converts the pair as wcstombs would.
            const wchar_t pair[] = {static_cast<wchar_t>(u[-1]), static_cast<wchar_t>(u[0]), 0};
            const wchar_t* source = pair;
            n = std::wcsrtombs(bytes, &source, sizeof bytes, &state);
            if (n == static_cast<std::size_t>(-1) || n == 0)
                return -1;
        } else {
            n = std::wcrtomb(bytes, static_cast<wchar_t>(code), &state);
            if (n == static_cast<std::size_t>(-1))
                return -1;
        }
        if (out) {
            if (written + n > limit)
                break;
            std::memcpy(out + written, bytes, n);
        }
        written += n;
    }
    return static_cast<long>(written);
}

} // namespace dunx::internal

#include "foundation/UnitConversion.h"

#include <climits>
#include <cstring>
#include <cwchar>

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

// Walks `text` character by character; `emit(code)` receives each code point.
// Returns false when the locale cannot convert the text.
template <class Emit> bool walkCharacters(const char* text, Emit emit) {
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

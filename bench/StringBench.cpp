// DUNXString: equals, hashCode and indexOf on 64 and 4k units, and the narrow
// conversion in C.UTF-8, against their floors and std::u16string / wstring_convert.
#include "BenchTable.h"

#include <dunx/DUNXString.h>

#include <emmintrin.h>

#include <clocale>
#include <codecvt>
#include <cstring>
#include <locale>
#include <random>
#include <string>
#include <vector>

namespace {

std::u16string randomUnits(std::size_t length, unsigned salt, char16_t first = 'a',
                           char16_t last = 'p') {
    std::mt19937 random(salt);
    std::uniform_int_distribution<int> unit(first, last);
    std::u16string text(length, u' ');
    for (char16_t& c : text)
        c = static_cast<char16_t>(unit(random));
    return text;
}

DUNXString toString(const std::u16string& units) {
    return DUNXString(reinterpret_cast<const unsigned short*>(units.c_str()));
}

// The hash of hashCode, four units a step: h = h*33^4 + a*33^3 + b*33^2 + c*33 + d.
unsigned unrolledHash(const char16_t* units, std::size_t length) {
    unsigned hash = 0;
    std::size_t i = 0;
    for (; i + 4 <= length; i += 4)
        hash = hash * 1185921u + units[i] * 35937u + units[i + 1] * 1089u + units[i + 2] * 33u +
               units[i + 3];
    for (; i < length; ++i)
        hash = hash * 33u + units[i];
    return hash;
}

// Eight units a step: candidates are where both the first and the last unit of
// the needle match; only those are compared in full.
long sse2Find(const char16_t* text, std::size_t length, const char16_t* needle, std::size_t n) {
    if (n == 0 || n > length)
        return -1;
    const __m128i first = _mm_set1_epi16(static_cast<short>(needle[0]));
    const __m128i last = _mm_set1_epi16(static_cast<short>(needle[n - 1]));
    std::size_t i = 0;
    for (; i + 8 + n - 1 <= length; i += 8) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i + n - 1));
        unsigned mask = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(a, first), _mm_cmpeq_epi16(b, last))));
        while (mask != 0) {
            const unsigned bit = static_cast<unsigned>(__builtin_ctz(mask));
            if (std::memcmp(text + i + bit / 2 + 1, needle + 1, (n - 1) * 2) == 0)
                return static_cast<long>(i + bit / 2);
            mask &= ~(3u << bit);
        }
    }
    for (; i + n <= length; ++i)
        if (text[i] == needle[0] && std::memcmp(text + i, needle, n * 2) == 0)
            return static_cast<long>(i);
    return -1;
}

void registerSize(std::size_t length, const char* label) {
    const std::string size = label;
    const std::u16string a = randomUnits(length, 1);
    const std::u16string b = a; // equal, in a buffer of its own: the whole text is compared
    const std::u16string needleUnits = a.substr(length - 8);
    std::u16string haystack = randomUnits(length, 2);
    haystack.replace(length - 8, 8, needleUnits); // found at the very end

    bench::Add("string equals " + size, bench::kLimit, [a, b](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(std::memcmp(a.data(), b.data(), a.size() * 2) == 0);
        }
    });
    bench::Add("string equals " + size, bench::kLibrary, [a, b](benchmark::State& state) {
        const DUNXString x = toString(a), y = toString(b);
        for (auto _ : state)
            benchmark::DoNotOptimize(x.equals(y));
    });
    bench::Add("string equals " + size, bench::kPeer, [a, b](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(a == b);
    });

    bench::Add("string hashCode " + size, bench::kLimit, [a](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(a.data());
            benchmark::DoNotOptimize(unrolledHash(a.data(), a.size()));
        }
    });
    bench::Add("string hashCode " + size, bench::kLibrary, [a](benchmark::State& state) {
        const DUNXString x = toString(a);
        for (auto _ : state)
            benchmark::DoNotOptimize(x.hashCode());
    });
    bench::Add("string hashCode " + size, bench::kPeer, [a](benchmark::State& state) {
        const std::hash<std::u16string> hash;
        for (auto _ : state)
            benchmark::DoNotOptimize(hash(a));
    });

    bench::Add("string indexOf " + size, bench::kLimit,
               [haystack, needleUnits](benchmark::State& state) {
                   for (auto _ : state) {
                       benchmark::DoNotOptimize(haystack.data());
                       benchmark::DoNotOptimize(sse2Find(haystack.data(), haystack.size(),
                                                         needleUnits.data(), needleUnits.size()));
                   }
               });
    bench::Add("string indexOf " + size, bench::kLibrary,
               [haystack, needleUnits](benchmark::State& state) {
                   const DUNXString text = toString(haystack), needle = toString(needleUnits);
                   for (auto _ : state)
                       benchmark::DoNotOptimize(text.indexOf(needle));
               });
    bench::Add("string indexOf " + size, bench::kPeer,
               [haystack, needleUnits](benchmark::State& state) {
                   for (auto _ : state)
                       benchmark::DoNotOptimize(haystack.find(needleUnits));
               });
}

// The floor of the narrow conversion: a plain UTF-8 decoder into a buffer that
// is already there (no validation beyond what well-formed text needs).
std::size_t decodeUtf8(const unsigned char* text, std::size_t size, char16_t* out) {
    char16_t* start = out;
    for (std::size_t i = 0; i < size;) {
        const unsigned char lead = text[i];
        if (lead < 0x80) {
            *out++ = lead;
            ++i;
        } else if (lead < 0xE0) {
            *out++ = static_cast<char16_t>(((lead & 0x1F) << 6) | (text[i + 1] & 0x3F));
            i += 2;
        } else if (lead < 0xF0) {
            *out++ = static_cast<char16_t>(((lead & 0x0F) << 12) | ((text[i + 1] & 0x3F) << 6) |
                                           (text[i + 2] & 0x3F));
            i += 3;
        } else {
            const unsigned long code = ((lead & 0x07UL) << 18) | ((text[i + 1] & 0x3FUL) << 12) |
                                       ((text[i + 2] & 0x3FUL) << 6) | (text[i + 3] & 0x3FUL);
            *out++ = static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
            i += 4;
        }
    }
    return static_cast<std::size_t>(out - start);
}

void registerNarrow(const std::string& label, const std::string& text) {
    const std::string group = "narrow to string, " + label;
    bench::Add(group, bench::kLimit, [text](benchmark::State& state) {
        std::vector<char16_t> units(text.size() + 1);
        for (auto _ : state) {
            benchmark::DoNotOptimize(text.data());
            benchmark::DoNotOptimize(decodeUtf8(reinterpret_cast<const unsigned char*>(text.data()),
                                                text.size(), units.data()));
            benchmark::ClobberMemory();
        }
    });
    bench::Add(group, bench::kLibrary, [text](benchmark::State& state) {
        const std::string previous = std::setlocale(LC_ALL, nullptr);
        if (!std::setlocale(LC_ALL, "C.UTF-8")) {
            state.SkipWithError("no C.UTF-8 locale");
            return;
        }
        for (auto _ : state) {
            DUNXString converted(text.c_str());
            benchmark::DoNotOptimize(converted.length());
        }
        std::setlocale(LC_ALL, previous.c_str());
    });
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    bench::Add(group, bench::kPeer, [text](benchmark::State& state) {
        std::wstring_convert<std::codecvt_utf8_utf16<char16_t>, char16_t> convert;
        for (auto _ : state)
            benchmark::DoNotOptimize(convert.from_bytes(text));
    });
#pragma GCC diagnostic pop
}

// About 1 kB of text each: plain ASCII, and prose with accents, Greek, CJK and
// a character beyond the 16-bit range.
std::string asciiText() {
    std::string text;
    while (text.size() < 1000)
        text += "Assembly.Part[12] = 3.25, 4.5; flange bolt M8x30 (torque 25 Nm). ";
    return text;
}

std::string mixedText() {
    std::string text;
    while (text.size() < 1000)
        text += "Gr\xC3\xB6\xC3\x9F"
                "e \xCE\xB1\xCE\xB2 \xE9\x83\xA8\xE5\x93\x81 "
                "\xF0\x9F\x94\xA9 Fl\xC3\xA4"
                "che 12.5 mm; ";
    return text;
}

const bool registered = [] {
    registerSize(64, "64");
    registerSize(4096, "4k");
    registerNarrow("ASCII", asciiText());
    registerNarrow("mixed", mixedText());
    return true;
}();

} // namespace

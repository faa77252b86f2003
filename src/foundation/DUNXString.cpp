#include <dunx/DUNXString.h>

#include <dunx/DUNXTrace.h>

#include "foundation/UnitConversion.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <string>
#include <utility>
#include <vector>

using dunx::internal::CountUnits;
using dunx::internal::DecodeUnits;
using dunx::internal::DecodeUtf8;
using dunx::internal::EncodeUnits;
using dunx::internal::LocaleReadsUtf8;
using dunx::internal::WidenAscii;

namespace {

constexpr int kFormatBufferSize = 1024;

constexpr unsigned short kYes[] = {'Y', 'e', 's', 0};
constexpr unsigned short kNo[] = {'N', 'o', 0};
constexpr unsigned short kTrue[] = {'T', 'r', 'u', 'e', 0};
constexpr unsigned short kFalse[] = {'F', 'a', 'l', 's', 'e', 0};
constexpr unsigned short kOn[] = {'O', 'n', 0};
constexpr unsigned short kOff[] = {'O', 'f', 'f', 0};

unsigned short lowerUnit(unsigned short unit) {
    return static_cast<unsigned short>(std::towlower(static_cast<wint_t>(unit)));
}

unsigned short upperUnit(unsigned short unit) {
    return static_cast<unsigned short>(std::towupper(static_cast<wint_t>(unit)));
}

unsigned short sameUnit(unsigned short unit) {
    return unit;
}

std::unique_ptr<unsigned short[]> allocateUnits(int length) {
    // One allocation per string; the extra unit is the terminator.
    return std::make_unique<unsigned short[]>(static_cast<std::size_t>(length) + 1);
}

int measure(const unsigned short* units) {
    int length = 0;
    while (units[length] != 0)
        ++length;
    return length;
}

// -1, 0 or 1 by the first differing mapped unit; a prefix is smaller; null first.
template <class Map>
int compareUnits(const unsigned short* a, int lengthA, const unsigned short* b, int lengthB,
                 Map map) {
    if (!a || !b)
        return (a ? 1 : 0) - (b ? 1 : 0);
    const int common = std::min(lengthA, lengthB);
    for (int i = 0; i < common; ++i) {
        const unsigned short x = map(a[i]);
        const unsigned short y = map(b[i]);
        if (x != y)
            return x < y ? -1 : 1;
    }
    return lengthA == lengthB ? 0 : (lengthA < lengthB ? -1 : 1);
}

// The first start at or after `from` where the `n` units of `needle` occur in
// `text`, or -1. Eight starts are screened at a time by the needle's first
// and last unit; only the starts that pass are compared in full, so a search
// costs little more than one pass over the text.
int findUnits(const unsigned short* text, int length, int from, const unsigned short* needle,
              int n) {
    const unsigned short first = needle[0];
    const unsigned short last = needle[n - 1];
    const std::size_t middle = static_cast<std::size_t>(n > 2 ? n - 2 : 0) * 2;
    const int end = length - n; // the last possible start
    // Eight units at a time in a 16-byte vector (plain code where the target
    // has no vector unit); the compare gives all ones in each lane that matches.
    typedef unsigned short Units8 __attribute__((vector_size(16)));
    const Units8 firsts = Units8{} + first;
    const Units8 lasts = Units8{} + last;
    int i = from;
    for (; i + 7 <= end; i += 8) {
        Units8 heads, tails;
        std::memcpy(&heads, text + i, sizeof heads);
        std::memcpy(&tails, text + i + n - 1, sizeof tails);
        const auto lanes = (heads == firsts) & (tails == lasts);
        std::uint64_t halves[2];
        std::memcpy(halves, &lanes, sizeof halves);
        if ((halves[0] | halves[1]) == 0)
            continue;
        for (int k = 0; k < 8; ++k)
            if (text[i + k] == first && text[i + k + n - 1] == last &&
                std::memcmp(text + i + k + 1, needle + 1, middle) == 0)
                return i + k;
    }
    for (; i <= end; ++i)
        if (text[i] == first && text[i + n - 1] == last &&
            std::memcmp(text + i + 1, needle + 1, middle) == 0)
            return i;
    return -1;
}

template <class Map>
bool sameUnits(const unsigned short* a, const unsigned short* b, int count, Map map) {
    for (int i = 0; i < count; ++i)
        if (map(a[i]) != map(b[i]))
            return false;
    return true;
}

} // namespace

const DUNXString DUNXString::DUNX_YES(kYes, 3, StaticText{});
const DUNXString DUNXString::DUNX_NO(kNo, 2, StaticText{});
const DUNXString DUNXString::DUNX_TRUE(kTrue, 4, StaticText{});
const DUNXString DUNXString::DUNX_FALSE(kFalse, 5, StaticText{});
const DUNXString DUNXString::DUNX_ON(kOn, 2, StaticText{});
const DUNXString DUNXString::DUNX_OFF(kOff, 3, StaticText{});

// --- Construction ------------------------------------------------------------

DUNXString::DUNXString(std::unique_ptr<unsigned short[]> units, int length)
    : m_Units(units.get()), m_Owned(std::move(units)), m_Length(length) {}

DUNXString::DUNXString(const char* text) {
    if (!text)
        return;
    // ASCII reads alike in every locale, and a UTF-8 locale reads exactly the
    // well-formed UTF-8: both are converted here rather than by one call into
    // the locale per character. No locale makes more units than bytes, so one
    // allocation holds the result.
    const int size = static_cast<int>(std::strlen(text));
    auto units = allocateUnits(size);
    int count = -1;
    if (WidenAscii(text, static_cast<std::size_t>(size), units.get())) {
        count = size;
    } else if (LocaleReadsUtf8()) {
        count = DecodeUtf8(text, static_cast<std::size_t>(size), units.get());
    } else {
        count = CountUnits(text);
        if (count > size)
            units = allocateUnits(count);
        if (count >= 0)
            DecodeUnits(text, units.get());
    }
    if (count < 0) {
        // Text the locale cannot read keeps every byte as a unit of the same value.
        for (int i = 0; i < size; ++i)
            units[i] = static_cast<unsigned char>(text[i]);
        count = size;
    }
    units[count] = 0;
    *this = DUNXString(std::move(units), count);
}

DUNXString::DUNXString(int bufferSize, const char* format, ...) {
    if (!format)
        return;
    if (bufferSize <= 0) {
        *this = DUNXString("");
        return;
    }
    char fixed[kFormatBufferSize] = {}; // zeroed: a failed format keeps what it wrote
    std::vector<char> large;
    char* buffer = fixed;
    if (bufferSize > kFormatBufferSize) {
        large.assign(static_cast<std::size_t>(bufferSize), '\0');
        buffer = large.data();
    }
    va_list args;
    va_start(args, format);
    // Longer output keeps its first bufferSize - 1 bytes; so does a format that
    // fails part way (a wide text the locale cannot convert).
    if (std::vsnprintf(buffer, static_cast<std::size_t>(bufferSize), format, args) < 0)
        buffer[bufferSize - 1] = '\0';
    va_end(args);
    *this = DUNXString(static_cast<const char*>(buffer));
}

DUNXString::DUNXString(const unsigned short* units) {
    if (units)
        assignUnits(units, measure(units));
}

DUNXString::DUNXString(unsigned short unit) {
    auto units = allocateUnits(1);
    units[0] = unit;
    units[1] = 0;
    *this = DUNXString(std::move(units), unit != 0 ? 1 : 0);
}

DUNXString::DUNXString(const DUNXString& other) {
    assignUnits(other.m_Units, other.m_Length);
}

DUNXString::DUNXString(DUNXString&& other) noexcept
    : m_Units(std::exchange(other.m_Units, nullptr)), m_Owned(std::move(other.m_Owned)),
      m_Length(std::exchange(other.m_Length, 0)), m_Narrow(std::move(other.m_Narrow)) {}

DUNXString& DUNXString::operator=(const DUNXString& other) {
    if (this == &other)
        return *this;
    if (m_Narrow) {
        if (other.m_Narrow) {
            const std::size_t size = std::strlen(other.m_Narrow.get()) + 1;
            m_Narrow = std::make_unique<char[]>(size);
            std::memcpy(m_Narrow.get(), other.m_Narrow.get(), size);
        } else {
            m_Narrow.reset();
        }
    }
    assignUnits(other.m_Units, other.m_Length);
    return *this;
}

DUNXString& DUNXString::operator=(DUNXString&& other) noexcept {
    if (this != &other) {
        m_Units = std::exchange(other.m_Units, nullptr);
        m_Owned = std::move(other.m_Owned);
        m_Length = std::exchange(other.m_Length, 0);
        m_Narrow = std::move(other.m_Narrow);
    }
    return *this;
}

DUNXString::~DUNXString() = default;

void DUNXString::assignUnits(const unsigned short* units, int count) {
    if (!units) {
        m_Owned.reset();
        m_Units = nullptr;
        m_Length = 0;
        return;
    }
    auto copy = allocateUnits(count);
    std::copy(units, units + count, copy.get());
    copy[count] = 0;
    m_Owned = std::move(copy);
    m_Units = m_Owned.get();
    m_Length = count;
}

// --- Access ------------------------------------------------------------------

int DUNXString::GetLengthInChar() const {
    if (!m_Units)
        return 0;
    const long bytes = EncodeUnits(m_Units, nullptr, 0);
    return bytes < 0 ? m_Length : static_cast<int>(bytes);
}

unsigned short DUNXString::charAt(int index) const {
    if (!m_Units || index < 0 || index >= m_Length)
        return 0;
    return m_Units[index];
}

DUNXString::operator const char*() const {
    if (!m_Units)
        return nullptr;
    if (!m_Narrow) {
        const int size = GetLengthInChar();
        m_Narrow = std::make_unique<char[]>(static_cast<std::size_t>(size) + 1);
        getChars(0, size, m_Narrow.get(), 0);
    }
    return m_Narrow.get();
}

void DUNXString::getChars(int srcBegin, int srcEnd, unsigned short* dst, int dstBegin) const {
    if (!dst)
        return;
    dst[dstBegin] = 0;
    srcEnd = std::min(srcEnd, m_Length);
    if (!m_Units || srcBegin < 0 || srcEnd <= srcBegin)
        return;
    std::copy(m_Units + srcBegin, m_Units + srcEnd, dst + dstBegin);
    dst[dstBegin + srcEnd - srcBegin] = 0;
}

void DUNXString::getChars(int srcBegin, int srcEnd, char* dst, int dstBegin) const {
    if (!dst)
        return;
    dst[dstBegin] = 0;
    if (!m_Units || srcBegin < 0 || srcBegin >= m_Length)
        return;
    srcEnd = std::min(srcEnd, GetLengthInChar());
    if (srcEnd <= srcBegin)
        return;
    char* out = dst + dstBegin;
    const long bytes =
        EncodeUnits(m_Units + srcBegin, out, static_cast<std::size_t>(srcEnd - srcBegin));
    if (bytes >= 0) {
        out[bytes] = 0;
        return;
    }
    // The locale cannot convert: copy unit by unit, bytes as they are, the rest as '-'.
    const int end = std::min(srcEnd, m_Length);
    for (int i = srcBegin; i < end; ++i)
        *out++ = m_Units[i] < 256 ? static_cast<char>(m_Units[i]) : '-';
    *out = 0;
}

void DUNXString::dump() const {
    // One event rather than three: each debug event ends its own line.
    char head[64];
    std::snprintf(head, sizeof head, "string 0x%x (0x%x): \"",
                  static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(this)),
                  static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(m_Units)));
    std::string text(head);
    for (int i = 0; i < m_Length; ++i)
        text += static_cast<char>(m_Units[i] & 0xFF);
    text += "\" (" + std::to_string(m_Length) + " chars)";
    DUNXDebug::Printf("%s", text.c_str());
}

// --- Comparison --------------------------------------------------------------

bool DUNXString::equals(const DUNXString& other) const {
    if (!m_Units || !other.m_Units)
        return !m_Units && !other.m_Units;
    // Lengths first: most unequal strings differ there. Names and keys are
    // short: their units are compared four at a time without a call, and
    // longer texts go to memcmp, which stops at the first difference.
    if (m_Length != other.m_Length)
        return false;
    if (m_Units == other.m_Units)
        return true;
    constexpr int kShort = 64;
    if (m_Length > kShort)
        return std::memcmp(m_Units, other.m_Units, static_cast<std::size_t>(m_Length) * 2) == 0;
    std::uint64_t difference = 0;
    int i = 0;
    for (; i + 4 <= m_Length; i += 4) {
        std::uint64_t a, b;
        std::memcpy(&a, m_Units + i, sizeof a);
        std::memcpy(&b, other.m_Units + i, sizeof b);
        difference |= a ^ b;
    }
    for (; i < m_Length; ++i)
        difference |= static_cast<unsigned>(m_Units[i] ^ other.m_Units[i]);
    return difference == 0;
}

int DUNXString::compareTo(const DUNXString& other) const {
    return compareUnits(m_Units, m_Length, other.m_Units, other.m_Length, sameUnit);
}

int DUNXString::compareToIgnoreCase(const DUNXString& other) const {
    // Unit by unit on the fly: the same order as comparing lower-cased copies,
    // without making them.
    return compareUnits(m_Units, m_Length, other.m_Units, other.m_Length, lowerUnit);
}

bool DUNXString::equalsIgnoreCase(const DUNXString& other) const {
    return compareToIgnoreCase(other) == 0;
}

bool DUNXString::startsWith(const DUNXString& prefix) const {
    return startsWith(prefix, 0);
}

bool DUNXString::startsWith(const DUNXString& prefix, int offset) const {
    if (m_Length == 0 || prefix.m_Length == 0 || offset < 0 || offset >= m_Length ||
        prefix.m_Length > m_Length - offset)
        return false;
    return sameUnits(m_Units + offset, prefix.m_Units, prefix.m_Length, sameUnit);
}

bool DUNXString::endsWith(const DUNXString& suffix) const {
    // The last match of the suffix can start no later than length - suffix
    // length, so "ends with" is a comparison of the tail.
    if (!m_Units || suffix.m_Length == 0 || suffix.m_Length > m_Length)
        return false;
    return sameUnits(m_Units + m_Length - suffix.m_Length, suffix.m_Units, suffix.m_Length,
                     sameUnit);
}

bool DUNXString::endsWith(unsigned short unit) const {
    return m_Length > 0 && m_Units[m_Length - 1] == unit;
}

bool DUNXString::endsWithIgnoreCase(const DUNXString& suffix) const {
    if (!m_Units || suffix.m_Length == 0 || suffix.m_Length > m_Length)
        return false;
    return sameUnits(m_Units + m_Length - suffix.m_Length, suffix.m_Units, suffix.m_Length,
                     lowerUnit);
}

unsigned DUNXString::hashCode() const {
    // h = h * 33 + unit, four units a step: h * 33^4 + a * 33^3 + b * 33^2 +
    // c * 33 + d is the same value modulo 2^32, with four independent products
    // instead of one long chain of dependent multiplications.
    constexpr unsigned k2 = 33u * 33u, k3 = k2 * 33u, k4 = k3 * 33u;
    unsigned hash = 0;
    int i = 0;
    for (; i + 4 <= m_Length; i += 4)
        hash = hash * k4 + m_Units[i] * k3 + m_Units[i + 1] * k2 + m_Units[i + 2] * 33u +
               m_Units[i + 3];
    for (; i < m_Length; ++i)
        hash = hash * 33u + m_Units[i];
    return hash;
}

// --- Search ------------------------------------------------------------------

int DUNXString::indexOf(unsigned short unit, int from) const {
    if (from < 0 || from >= m_Length)
        return -1;
    for (int i = from; i < m_Length; ++i)
        if (m_Units[i] == unit)
            return i;
    return -1;
}

int DUNXString::lastIndexOf(unsigned short unit, int from) const {
    if (from < 0 || from >= m_Length)
        return -1;
    for (int i = from; i >= 0; --i)
        if (m_Units[i] == unit)
            return i;
    return -1;
}

int DUNXString::lastIndexOf(unsigned short unit) const {
    return lastIndexOf(unit, m_Length - 1);
}

int DUNXString::lastIndexOfAfter(unsigned short unit, int after) const {
    if (after < 0 || after >= m_Length - 1)
        return -1;
    for (int i = m_Length - 1; i > after; --i)
        if (m_Units[i] == unit)
            return i;
    return -1;
}

int DUNXString::indexOf(const DUNXString& needle, int from) const {
    const int n = needle.m_Length;
    if (m_Length == 0 || from < 0 || from >= m_Length || n == 0 || n > m_Length - from)
        return -1;
    return findUnits(m_Units, m_Length, from, needle.m_Units, n);
}

int DUNXString::lastIndexOf(const DUNXString& needle, int from) const {
    const int n = needle.m_Length;
    if (m_Length == 0 || from < 0 || from >= m_Length || n == 0 || n > m_Length)
        return -1;
    for (int i = std::min(from, m_Length - n); i >= 0; --i)
        if (sameUnits(m_Units + i, needle.m_Units, n, sameUnit))
            return i;
    return -1;
}

int DUNXString::lastIndexOf(const DUNXString& needle) const {
    return lastIndexOf(needle, m_Length - 1);
}

// --- New strings ---------------------------------------------------------------

DUNXString DUNXString::substring(int begin, int end) const {
    if (m_Length == 0 || begin < 0 || begin >= m_Length || end < 0 || end > m_Length ||
        end <= begin)
        return DUNXString();
    DUNXString result;
    result.assignUnits(m_Units + begin, end - begin);
    return result;
}

DUNXString DUNXString::substring(int begin) const {
    return substring(begin, m_Length);
}

DUNXString DUNXString::concat(const DUNXString& other) const {
    if (!m_Units && !other.m_Units)
        return DUNXString();
    const int length = m_Length + other.m_Length;
    auto units = allocateUnits(length);
    std::copy(m_Units, m_Units + m_Length, units.get());
    std::copy(other.m_Units, other.m_Units + other.m_Length, units.get() + m_Length);
    units[length] = 0;
    return DUNXString(std::move(units), length);
}

DUNXString DUNXString::operator+(const DUNXString& other) const {
    return concat(other);
}

template <class Map> DUNXString DUNXString::mapped(Map map) const {
    if (!m_Units)
        return DUNXString();
    auto units = allocateUnits(m_Length);
    for (int i = 0; i < m_Length; ++i)
        units[i] = map(m_Units[i]);
    units[m_Length] = 0;
    return DUNXString(std::move(units), m_Length);
}

DUNXString DUNXString::replace(unsigned short from, unsigned short to) const {
    if (m_Length == 0)
        return DUNXString();
    return mapped([from, to](unsigned short unit) { return unit == from ? to : unit; });
}

DUNXString DUNXString::toLowerCase() const {
    return mapped(lowerUnit);
}

DUNXString DUNXString::toUpperCase() const {
    return mapped(upperUnit);
}

DUNXString DUNXString::trim() const {
    if (m_Length == 0)
        return DUNXString();
    int start = 0;
    while (start < m_Length && std::iswspace(static_cast<wint_t>(m_Units[start])))
        ++start;
    int last = m_Length - 1;
    while (last >= 0 && std::iswspace(static_cast<wint_t>(m_Units[last])))
        --last;
    // Kept as it always was: text that does not end in white space loses its
    // last unit, and callers rely on it.
    int end = -1;
    if (last >= 0)
        end = last < m_Length - 1 ? last + 1 : m_Length - 1;
    return substring(start, end);
}

bool DUNXString::isWhitespace() const {
    return trim().length() < 1;
}

DUNXString DUNXString::valueOf(int value) {
    return DUNXString(32, "%d", value);
}

DUNXString DUNXString::valueOf(long value) {
    return valueOf(static_cast<int>(value));
}

DUNXString DUNXString::valueOf(double value) {
    // "%f" never uses an exponent: the largest double needs some 320 bytes.
    return DUNXString(kFormatBufferSize, "%f", value);
}

DUNXString DUNXString::valueOf(float value) {
    return valueOf(static_cast<double>(value));
}

DUNXString DUNXString::valueOf(bool value) {
    return DUNXString(value ? "true" : "false");
}

DUNXString DUNXString::valueOf(unsigned short unit) {
    return DUNXString(unit);
}

DUNXString DUNXString::valueOf(unsigned short* units) {
    return DUNXString(static_cast<const unsigned short*>(units));
}

DUNXString DUNXString::valueOf(unsigned short* units, int offset, int count) {
    DUNXString result;
    if (!units || offset < 0 || count < 0)
        return result;
    const unsigned short* first = units + offset;
    int length = 0;
    while (length < count && first[length] != 0)
        ++length;
    result.assignUnits(first, length);
    return result;
}

bool operator<(const DUNXString& a, const DUNXString& b) {
    return a.compareTo(b) < 0;
}

bool operator<=(const DUNXString& a, const DUNXString& b) {
    return a.compareTo(b) <= 0;
}

bool operator>(const DUNXString& a, const DUNXString& b) {
    return a.compareTo(b) > 0;
}

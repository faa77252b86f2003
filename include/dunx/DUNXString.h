// DUNXString: the library's immutable string of 16-bit (UTF-16) units.
#pragma once

#include <dunx/DUNXExport.h>

#include <memory>
#include <string>

namespace dunx::internal {
class BorrowedUnits;
}

/// An immutable sequence of 16-bit character units with a narrow (multibyte)
/// rendering in the current C locale, made on first request and kept.
///
/// Two empty states are kept apart on purpose: the null string (default
/// constructor, a null `char*`, and operations that find nothing to return)
/// and the allocated empty string (`DUNXString("")`). Both have length 0, but
/// the null string is smaller than, and unequal to, the empty one.
///
/// Text is converted through the current C locale. A character above U+FFFF
/// becomes a surrogate pair. Narrow text the locale cannot convert (any byte
/// above 127 in the "C" locale, invalid UTF-8 in "C.UTF-8") is taken one byte
/// per unit, so no text is lost; in a locale that cannot convert them either
/// (the "C" locale) such units convert back to the same bytes.
///
/// Comparisons, searches and `hashCode` never allocate; a new string allocates
/// its unit buffer once.
class DUNX_EXPORT DUNXString {
public:
    /// "Yes", "No", "True", "False", "On", "Off": usable from static
    /// initialisation on (they need no dynamic initialisation).
    static const DUNXString DUNX_YES;
    static const DUNXString DUNX_NO;
    static const DUNXString DUNX_TRUE;
    static const DUNXString DUNX_FALSE;
    static const DUNXString DUNX_ON;
    static const DUNXString DUNX_OFF;

    /// The null string.
    DUNXString() = default;
    /// Converts `text` from the current locale; null `text` gives the null string,
    /// "" the allocated empty string.
    DUNXString(const char* text);
    /// printf-style: formats into `bufferSize` bytes and converts the result.
    /// Longer output is cut to `bufferSize - 1` bytes; `bufferSize` <= 0 gives
    /// the empty string; a null `format` gives the null string.
    DUNXString(int bufferSize, const char* format, ...) DUNX_PRINTF_LIKE(3, 4);
    /// Copies `units` up to their 0 terminator; null gives the null string.
    DUNXString(const unsigned short* units);
    /// A one-unit string.
    explicit DUNXString(unsigned short unit);
    /// Copies the units (a null string stays null); the narrow cache is not copied.
    DUNXString(const DUNXString& other);
    /// Takes over `other`'s buffers; `other` becomes the null string.
    DUNXString(DUNXString&& other) noexcept;
    /// Copies `other`'s units. Self-assignment does nothing. A target that held
    /// a narrow rendering takes a copy of `other`'s (or none if it had none).
    DUNXString& operator=(const DUNXString& other);
    /// Takes over `other`'s buffers; `other` becomes the null string.
    DUNXString& operator=(DUNXString&& other) noexcept;
    /// Frees both buffers.
    virtual ~DUNXString();

    // --- Access -----------------------------------------------------------

    /// Units before the terminator; 0 for the null and the empty string.
    int length() const { return m_Length; }
    /// Bytes of the narrow rendering in the current locale; the unit count when
    /// the locale cannot convert the text; 0 for the null string.
    int GetLengthInChar() const;
    /// The unit at `index`; 0 when the string is null or `index` is outside [0, length).
    unsigned short charAt(int index) const;
    /// The unit at `index`, unchecked: `index` must be in [0, length].
    const unsigned short& operator[](int index) const { return m_Units[index]; }
    /// The 0-terminated units; null for the null string.
    operator const unsigned short*() const { return m_Units; }
    /// The 0-terminated narrow rendering, made on first use and kept until the
    /// string is assigned or destroyed; null for the null string.
    operator const char*() const;

    /// Copies units [srcBegin, srcEnd) to `dst + dstBegin` and terminates them.
    /// `srcEnd` is clipped to the length; an empty or invalid range writes only
    /// the terminator; a null `dst` does nothing.
    void getChars(int srcBegin, int srcEnd, unsigned short* dst, int dstBegin) const;
    /// Narrow form: converts from unit `srcBegin` into at most `srcEnd - srcBegin`
    /// bytes (`srcEnd` clipped to `GetLengthInChar()`) at `dst + dstBegin`, and
    /// terminates. If the locale cannot convert, copies unit by unit instead:
    /// a unit below 256 as its byte, any other as '-'. A null `dst` does nothing;
    /// an invalid range writes only the terminator.
    void getChars(int srcBegin, int srcEnd, char* dst, int dstBegin) const;

    /// Prints one debug line (`DUNXDebug`): `string 0x<object> (0x<units>): "<text>" (<n> chars)`,
    /// the addresses cut to their low 32 bits, each unit as its low byte.
    /// A text longer than the 1,024-byte message buffer is cut.
    void dump() const;

    // --- Comparison (unit values, no locale) --------------------------------

    /// Both null: true; one null: false; else unit-wise equality ("" != null).
    bool equals(const DUNXString& other) const;
    /// -1, 0 or 1 by the first differing unit; a prefix is smaller; null is
    /// smaller than every non-null string, "" included.
    int compareTo(const DUNXString& other) const;
    /// `compareTo` on the lower-cased units (`towlower`), with the same null rules.
    int compareToIgnoreCase(const DUNXString& other) const;
    /// `compareToIgnoreCase(other) == 0`.
    bool equalsIgnoreCase(const DUNXString& other) const;
    /// Unit-wise prefix test; false when this string or `prefix` is empty or
    /// null, or `prefix` is longer.
    bool startsWith(const DUNXString& prefix) const;
    /// The prefix test at `offset`; also false when `offset` is outside
    /// [0, length) or `prefix` would run past the end.
    bool startsWith(const DUNXString& prefix, int offset) const;
    /// True when this string ends with `suffix`; false for a null string, an
    /// empty or null `suffix`, and a `suffix` that does not occur at the end.
    bool endsWith(const DUNXString& suffix) const;
    /// True when the last unit equals `unit`; false for an empty string.
    bool endsWith(unsigned short unit) const;
    /// `endsWith` on lower-cased units.
    bool endsWithIgnoreCase(const DUNXString& suffix) const;
    /// h = h * 33 + unit over all units from 0 (unsigned 32-bit); 0 when empty.
    /// "a" => 97, "ab" => 3299.
    unsigned hashCode() const;

    // --- Search (unit indexes; -1 when not found) ----------------------------

    /// First `unit` at or after `from`; -1 when `from` is outside [0, length).
    int indexOf(unsigned short unit, int from = 0) const;
    /// Last `unit` at or before `from`; -1 when `from` is outside [0, length).
    int lastIndexOf(unsigned short unit, int from) const;
    /// Last `unit` in the string.
    int lastIndexOf(unsigned short unit) const;
    /// Last `unit` after index `after`; -1 when `after` < 0 or `after` >= length - 1.
    int lastIndexOfAfter(unsigned short unit, int after) const;
    /// First match of `needle` at or after `from`; -1 when either string is
    /// empty, `from` is outside [0, length) or the needle would run past the end.
    int indexOf(const DUNXString& needle, int from = 0) const;
    /// Last match of `needle` starting at or before `from`; -1 when either string
    /// is empty or `from` is outside [0, length).
    int lastIndexOf(const DUNXString& needle, int from) const;
    /// Last match of `needle` in the string.
    int lastIndexOf(const DUNXString& needle) const;

    // --- New strings ---------------------------------------------------------

    /// Units [begin, end). The null string unless 0 <= begin < length,
    /// begin < end <= length. "hello".substring(1, 3) => "el"; (2, 2) => null.
    DUNXString substring(int begin, int end) const;
    /// Units from `begin` to the end; null when `begin` is outside [0, length).
    DUNXString substring(int begin) const;
    /// The units of both strings in order; null only when both are null.
    DUNXString concat(const DUNXString& other) const;
    /// Same as `concat`.
    DUNXString operator+(const DUNXString& other) const;
    /// A copy with every `from` unit turned into `to`; an empty string gives null.
    DUNXString replace(unsigned short from, unsigned short to) const;
    /// A copy mapped unit by unit through `towlower` (null stays null).
    DUNXString toLowerCase() const;
    /// A copy mapped unit by unit through `towupper` (null stays null).
    DUNXString toUpperCase() const;
    /// Strips leading white space; a string that ends in white space loses all
    /// of it, one that does not loses its LAST UNIT, which callers rely on:
    /// " abc " => "abc", "abc" => "ab", "a" => null, "   " => null.
    DUNXString trim() const;
    /// True when `trim()` gives a string shorter than 1 unit (so "a" is white space).
    bool isWhitespace() const;

    /// "%d": valueOf(-12) => "-12".
    static DUNXString valueOf(int value);
    /// "%d" on the value's low 32 bits.
    static DUNXString valueOf(long value);
    /// "%f": valueOf(1.5) => "1.500000".
    static DUNXString valueOf(double value);
    /// "%f" of the value as a double.
    static DUNXString valueOf(float value);
    /// "true" or "false".
    static DUNXString valueOf(bool value);
    /// A one-unit string.
    static DUNXString valueOf(unsigned short unit);
    /// A copy of 0-terminated `units`; null gives the null string.
    static DUNXString valueOf(unsigned short* units);
    /// `count` units from `units + offset`, read up to the first 0 unit among
    /// them. Null `units`, `offset` < 0 or `count` < 0 give the null string.
    static DUNXString valueOf(unsigned short* units, int offset, int count);

    // --- UTF-8, whatever the locale ------------------------------------------

    /// The UTF-16 units of UTF-8 `bytes` (`length` bytes; -1: up to the
    /// terminator). Each malformed sequence becomes one U+FFFD per maximal
    /// subpart, as Python's `decode("utf-8", "replace")` does; characters above
    /// U+FFFF become surrogate pairs; a 0 byte ends the text. Null `bytes` gives
    /// the null string.
    ///
    ///     "h\xC3\xA9"  => u"h\u00E9";   "a\xFF b" => u"a\uFFFD b";   "\xE2\x82" => u"\uFFFD"
    static DUNXString FromUtf8(const char* bytes, int length = -1);
    /// The text as UTF-8; an unpaired surrogate unit becomes U+FFFD. The null
    /// string gives "".
    std::string ToUtf8() const;

private:
    // Library code that keeps units alive for longer than every string made
    // over them (the configuration file's text) makes such strings through
    // this friend, as the word constants are made over static units. Copies of
    // them own their units; they are never handed out to be moved from.
    friend class dunx::internal::BorrowedUnits;

    struct StaticText {};
    // Word constants point at static units; nothing to allocate or free.
    constexpr DUNXString(const unsigned short* staticUnits, int length, StaticText)
        : m_Units(staticUnits), m_Length(length) {}
    // Takes ownership of `units`, which hold `length` units plus a terminator.
    DUNXString(std::unique_ptr<unsigned short[]> units, int length);
    // Copies `count` units (no 0 among them) and terminates; null `units` gives null.
    void assignUnits(const unsigned short* units, int count);
    template <class Map> DUNXString mapped(Map map) const;

    const unsigned short* m_Units = nullptr;   // null for the null string
    std::unique_ptr<unsigned short[]> m_Owned; // m_Units when allocated here
    int m_Length = 0;
    mutable std::unique_ptr<char[]> m_Narrow; // lazily made narrow rendering
};

/// Unit order with null first: null < "" and null < "a" are true.
DUNX_EXPORT bool operator<(const DUNXString& a, const DUNXString& b);
/// Unit order with null first: null <= anything is true.
DUNX_EXPORT bool operator<=(const DUNXString& a, const DUNXString& b);
/// Unit order with null first: null > anything is false, non-null > null is true.
DUNX_EXPORT bool operator>(const DUNXString& a, const DUNXString& b);

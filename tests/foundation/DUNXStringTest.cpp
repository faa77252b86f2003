#include <dunx/DUNXString.h>

#include "support/AllocationCounter.h"
#include "support/ScopedLocale.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

using dunx::test::ScopedLocale;

namespace {

const char* const kNull = "<null>";

// The units as text: "<null>" for the null string, ASCII as is, any other unit as \uXXXX, and a
// note when length() disagrees with the units, so that every text check checks the length too.
std::string textOf(const DUNXString& s) {
    const unsigned short* units = s;
    std::string text = units ? "" : kNull;
    int count = 0;
    for (char escaped[8]; units && units[count] != 0; ++count) {
        std::snprintf(escaped, sizeof escaped, "\\u%04X", units[count]);
        text += units[count] < 0x80 ? std::string(1, static_cast<char>(units[count])) : escaped;
    }
    return s.length() == count ? text : text + " <length() " + std::to_string(s.length()) + ">";
}

const char* narrow(const DUNXString& s) {
    return s;
}

// Heap allocations made by `run`, read before any assertion can allocate.
template <class Run> long allocationsOf(Run run) {
    dunx::test::AllocationCounter counter;
    run();
    return counter.count();
}

} // namespace

TEST(DUNXString, NullAndEmptyStringsAreKeptApart) {
    const DUNXString null, empty("");
    EXPECT_EQ(textOf(null), kNull);
    EXPECT_EQ(textOf(DUNXString(static_cast<const char*>(nullptr))), kNull);
    EXPECT_EQ(textOf(DUNXString(static_cast<const unsigned short*>(nullptr))), kNull);
    EXPECT_EQ(textOf(empty), "");
    EXPECT_EQ(narrow(null), nullptr);
    EXPECT_STREQ(narrow(empty), "");
    EXPECT_EQ(null.GetLengthInChar(), 0);
}

TEST(DUNXString, BuildsFromUnitsAndReadsThemWithinBounds) {
    const unsigned short units[] = {'h', 0xE9, 0xFFFF, 0};
    const DUNXString text(units);
    EXPECT_EQ(textOf(text), "h\\u00E9\\uFFFF");
    EXPECT_EQ(textOf(DUNXString(static_cast<unsigned short>(0x20AC))), "\\u20AC");
    EXPECT_EQ(text.charAt(2), 0xFFFF);
    EXPECT_EQ(text[1], 0xE9);
    EXPECT_EQ(text.charAt(-1) + text.charAt(3) + DUNXString().charAt(0), 0);
}

TEST(DUNXString, CopiesOwnTheirUnitsAndAssignmentReplacesTheRendering) {
    DUNXString target("old"), other("other");
    const char* first = target;
    EXPECT_STREQ(first, "old");
    EXPECT_EQ(narrow(target), first); // made once, then kept
    {
        const DUNXString source("source");
        target = source; // target had a rendering, source none
    }
    EXPECT_STREQ(narrow(target), "source");
    EXPECT_STREQ(narrow(other), "other");
    target = other; // both had one
    EXPECT_STREQ(narrow(target), "other");
    DUNXString& alias = target;
    target = alias;
    EXPECT_EQ(textOf(DUNXString(target)), "other");
    target = DUNXString::DUNX_NO;
    EXPECT_STREQ(narrow(target), "No");
    const DUNXString null;
    target = null;
    EXPECT_EQ(narrow(target), nullptr);
    const DUNXString taker(std::move(other));
    EXPECT_EQ(textOf(taker) + "|" + textOf(other), "other|<null>");
}

TEST(DUNXString, ComparesUnitsAsUnsignedWithNullFirstAndIgnoresCaseThroughTheLocale) {
    ScopedLocale utf8("C.UTF-8");
    ASSERT_TRUE(utf8.isSet()) << "C.UTF-8 is not installed";
    // Each row: a, b, a.compareTo(b), a.compareToIgnoreCase(b).
    const std::tuple<const char*, const char*, int, int> rows[] = {
        {nullptr, nullptr, 0, 0},
        {nullptr, "", -1, -1},
        {"", nullptr, 1, 1},
        {"", "", 0, 0},
        {nullptr, "a", -1, -1},
        {"a", nullptr, 1, 1},
        {"", "a", -1, -1},
        {"a", "z", -1, -1},
        {"ab", "abc", -1, -1},
        {"abc", "ab", 1, 1},
        {"abc", "abc", 0, 0},
        {"\xE8\x80\x80", "a", 1, 1},
        {"Yes", "YES", 1, 0},
        {"B", "a", -1, 1},
        {"_", "A", 1, -1},
        {"ABC", "abd", -1, -1},
        {"\xC3\x89t\xC3\xA9", "\xC3\xA9T\xC3\x89", -1, 0},
    };
    for (const auto& [textA, textB, order, orderIgnoringCase] : rows) {
        SCOPED_TRACE(testing::Message() << textA << " vs " << textB);
        const DUNXString a(textA), b(textB);
        EXPECT_EQ(a.compareTo(b), order);
        EXPECT_EQ(a.equals(b), order == 0);
        EXPECT_EQ(a < b, order < 0);
        EXPECT_EQ(a <= b, order <= 0);
        EXPECT_EQ(a > b, order > 0);
        EXPECT_EQ(a.compareToIgnoreCase(b), orderIgnoringCase);
        EXPECT_EQ(a.equalsIgnoreCase(b), orderIgnoringCase == 0);
    }
    EXPECT_EQ(textOf(DUNXString("MiXeD \xC3\xA9-z").toUpperCase()), "MIXED \\u00C9-Z");
    EXPECT_EQ(textOf(DUNXString("MiXeD \xC3\x89-z").toLowerCase()), "mixed \\u00E9-z");
    EXPECT_EQ(textOf(DUNXString().toLowerCase()) + textOf(DUNXString().toUpperCase()),
              "<null><null>");
}

TEST(DUNXString, StartsAndEndsWithOnlyNonEmptyAffixesInsideTheString) {
    // Each row: text, affix, startsWith(affix), startsWith(affix, 1), endsWith(affix).
    const std::tuple<const char*, const char*, bool, bool, bool> rows[] = {
        {"hello", "he", 1, 0, 0},  {"hello", "hello", 1, 0, 1}, {"hello", "hellox", 0, 0, 0},
        {"hello", "el", 0, 1, 0},  {"hello", "ello", 0, 1, 1},  {"hello", "elloo", 0, 0, 0},
        {"hello", "llo", 0, 0, 1}, {"hello", "l", 0, 0, 0},     {"hello", "hell", 1, 0, 0},
        {"abab", "ab", 1, 0, 1},   {"ab", "xab", 0, 0, 0},      {"h", "h", 1, 0, 1},
        {"hello", "", 0, 0, 0},    {"hello", nullptr, 0, 0, 0}, {"", "", 0, 0, 0},
        {nullptr, "a", 0, 0, 0},
    };
    for (const auto& [text, affix, starts, startsAtOne, ends] : rows) {
        SCOPED_TRACE(testing::Message() << text << " / " << affix);
        const DUNXString s(text), a(affix);
        EXPECT_EQ(s.startsWith(a), starts);
        EXPECT_EQ(s.startsWith(a, 1), startsAtOne);
        EXPECT_EQ(s.endsWith(a), ends);
    }
    EXPECT_FALSE(DUNXString("hello").startsWith("h", -1));
    EXPECT_TRUE(DUNXString("hello").endsWith(u'o') && !DUNXString("hello").endsWith(u'l'));
    EXPECT_FALSE(DUNXString("").endsWith(u'\0') || DUNXString().endsWith(u'\0'));
    EXPECT_TRUE(DUNXString("File.TXT").endsWithIgnoreCase(".txt"));
    EXPECT_FALSE(DUNXString("File.TXT").endsWithIgnoreCase("FILE.TX"));
}

TEST(DUNXString, HashCodeMultipliesBy33InUnsigned32Bits) {
    const unsigned short high[] = {0xFFFF, 0xFFFF, 0};
    EXPECT_EQ(DUNXString().hashCode() + DUNXString("").hashCode(), 0u);
    EXPECT_EQ(DUNXString("ab").hashCode(), 97u * 33 + 98);
    EXPECT_EQ(DUNXString(high).hashCode(), 65535u * 33 + 65535);
    EXPECT_EQ(DUNXString("zzzzzzzz").hashCode(), 1813671632u); // wraps past 2^32
}

TEST(DUNXString, SearchesWithinBounds) {
    const DUNXString hello("hello"), text("abcabc");
    // Each row: unit, from, indexOf, lastIndexOf, lastIndexOfAfter.
    const std::tuple<char16_t, int, int, int, int> units[] = {
        {'l', 0, 2, -1, 3},   {'l', 2, 2, 2, 3},     {'l', 3, 3, 3, -1},
        {'l', 4, -1, 3, -1},  {'h', 0, 0, 0, -1},    {'o', 3, 4, -1, 4},
        {'o', 5, -1, -1, -1}, {'h', -1, -1, -1, -1}, {'x', 0, -1, -1, -1}};
    for (const auto& [unit, from, first, last, lastAfter] : units) {
        SCOPED_TRACE(testing::Message() << static_cast<char>(unit) << " from " << from);
        EXPECT_EQ(hello.indexOf(unit, from), first);
        EXPECT_EQ(hello.lastIndexOf(unit, from), last);
        EXPECT_EQ(hello.lastIndexOfAfter(unit, from), lastAfter);
    }
    // Each row: needle, from, indexOf, lastIndexOf in "abcabc".
    const std::tuple<const char*, int, int, int> needles[] = {
        {"bc", 0, 1, -1},     {"bc", 2, 4, 1},     {"bc", 5, -1, 4}, {"abc", 3, 3, 3},
        {"abc", 2, 3, 0},     {"abcd", 0, -1, -1}, {"c", 5, 5, 5},   {"", 0, -1, -1},
        {nullptr, 0, -1, -1}, {"a", -1, -1, -1}};
    for (const auto& [needle, from, first, last] : needles) {
        SCOPED_TRACE(testing::Message() << needle << " from " << from);
        EXPECT_EQ(text.indexOf(needle, from), first);
        EXPECT_EQ(text.lastIndexOf(needle, from), last);
    }
    EXPECT_EQ(hello.lastIndexOf(u'l'), 3);
    EXPECT_EQ(text.lastIndexOf("abc"), 3);
    EXPECT_EQ(DUNXString("aaa").lastIndexOf("aa"), 1);
    for (const DUNXString& empty : {DUNXString(), DUNXString("")})
        EXPECT_EQ(std::vector<int>({empty.indexOf(u'a'), empty.lastIndexOf(u'a'),
                                    empty.lastIndexOfAfter(u'a', 0), empty.lastIndexOf("a")}),
                  std::vector<int>(4, -1));
}

TEST(DUNXString, NewStringsAreNullOutsideBounds) {
    const DUNXString hello("hello");
    // Each row: begin, end (-1: the form without end), the substring.
    const std::tuple<int, int, const char*> rows[] = {
        {1, 3, "el"},   {0, 5, "hello"}, {4, 5, "o"},    {2, 2, kNull},
        {0, 6, kNull},  {-1, 2, kNull},  {3, 2, kNull},  {5, 5, kNull},
        {2, -1, "llo"}, {5, -1, kNull},  {-1, -1, kNull}};
    for (const auto& [begin, end, expected] : rows)
        EXPECT_EQ(textOf(end == -1 ? hello.substring(begin) : hello.substring(begin, end)),
                  expected)
            << begin << ", " << end;
    EXPECT_EQ(textOf(DUNXString("").substring(0, 0)), kNull);
    EXPECT_EQ(textOf(DUNXString("ab").concat("cd")) + textOf(DUNXString() + "cd"), "abcdcd");
    EXPECT_EQ(textOf(DUNXString("") + DUNXString()) + textOf(DUNXString() + DUNXString()),
              "<null>");
    EXPECT_EQ(textOf(DUNXString("a.b.c").replace(u'.', u'/')), "a/b/c");
    EXPECT_EQ(textOf(DUNXString("").replace(u'a', u'b')), kNull);
}

TEST(DUNXString, TrimDropsTheLastUnitWhenNoWhiteSpaceTrails) {
    // Kept as is: callers rely on the last unit being dropped when nothing trails it,
    // which also makes a one-letter text count as white space.
    const std::tuple<const char*, const char*, bool> rows[] = {
        {" abc ", "abc", false}, {"abc ", "abc", false}, {"abc", "ab", false}, {"  ab", "a", false},
        {"\t x\n", "x", false},  {"a", kNull, true},     {" a", kNull, true},  {"   ", kNull, true},
        {"", kNull, true},       {nullptr, kNull, true}};
    for (const auto& [text, trimmed, isWhitespace] : rows) {
        SCOPED_TRACE(testing::Message() << text);
        EXPECT_EQ(textOf(DUNXString(text).trim()), trimmed);
        EXPECT_EQ(DUNXString(text).isWhitespace(), isWhitespace);
    }
}

TEST(DUNXString, ValueOfFormatsNumbersBooleansAndUnits) {
    unsigned short units[] = {'h', 'e', 'l', 'l', 'o', 0};
    EXPECT_EQ(textOf(DUNXString::valueOf(INT_MIN)) + " " + textOf(DUNXString::valueOf(42L)) + " " +
                  textOf(DUNXString::valueOf(0x100000005L)), // the low 32 bits
              "-2147483648 42 5");
    EXPECT_EQ(textOf(DUNXString::valueOf(-0.25)) + " " + textOf(DUNXString::valueOf(1e20)) + " " +
                  textOf(DUNXString::valueOf(2.5f)),
              "-0.250000 100000000000000000000.000000 2.500000");
    EXPECT_EQ(textOf(DUNXString::valueOf(true)) + textOf(DUNXString::valueOf(false)), "truefalse");
    EXPECT_EQ(textOf(DUNXString::valueOf(static_cast<unsigned short>(0x20AC))), "\\u20AC");
    EXPECT_EQ(textOf(DUNXString::valueOf(units)) + textOf(DUNXString::valueOf(units, 1, 3)),
              "helloell");
    EXPECT_EQ(textOf(DUNXString::valueOf(static_cast<unsigned short*>(nullptr))), kNull);
}

TEST(DUNXString, GetCharsCopiesTheClippedRangeAndAlwaysTerminates) {
    const DUNXString hello("hello");
    const std::tuple<int, int, const char*> rows[] = {
        {1, 3, "el"}, {0, 5, "hello"}, {2, 2, ""}, {3, 1, ""},
        {-1, 2, ""},  {1, 99, "ello"}, {7, 9, ""}};
    for (const auto& [begin, end, expected] : rows) {
        SCOPED_TRACE(testing::Message() << begin << ", " << end);
        unsigned short wide[12] = {'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 0};
        char bytes[12] = "XXXXXXXXXXX";
        hello.getChars(begin, end, wide, 2);
        hello.getChars(begin, end, bytes, 2);
        EXPECT_EQ(textOf(wide), "XX" + std::string(expected));
        EXPECT_EQ(bytes, "XX" + std::string(expected));
    }
    hello.getChars(0, 5, static_cast<unsigned short*>(nullptr), 0);
    hello.getChars(0, 5, static_cast<char*>(nullptr), 0);
}

TEST(DUNXString, PrintfConstructionCutsToTheBufferSize) {
    EXPECT_EQ(textOf(DUNXString(64, "%s-%d", "ab", 7)), "ab-7");
    EXPECT_EQ(textOf(DUNXString(4, "%s", "abc")) + textOf(DUNXString(4, "%s", "abcdef")), "abcabc");
    EXPECT_EQ(textOf(DUNXString(1, "%d", 5)) + textOf(DUNXString(0, "%d", 5)), "");
    const char* noFormat = nullptr;
    EXPECT_EQ(textOf(DUNXString(64, noFormat, 1)), kNull);
    const std::string big(3000, 'x');
    for (int size : {1024, 1025, 4000})
        EXPECT_EQ(textOf(DUNXString(size, "%s", big.c_str())), big.substr(0, size - 1)) << size;
}

TEST(DUNXString, ConvertsThroughTheLocaleKeepingSurrogatePairsAndUnconvertibleBytes) {
    {
        ScopedLocale plain("C");
        ASSERT_TRUE(plain.isSet());
        const DUNXString text("caf\xE9!"); // a byte the locale cannot read becomes a unit
        EXPECT_EQ(textOf(text), "caf\\u00E9!");
        EXPECT_EQ(text.GetLengthInChar(), 5);
        EXPECT_STREQ(narrow(text), "caf\xE9!");
    }
    ScopedLocale utf8("C.UTF-8");
    ASSERT_TRUE(utf8.isSet()) << "C.UTF-8 is not installed";
    const char* const texts[] = {"h\xC3\xA9llo \xE2\x82\xAC", "a\xF0\x9F\x98\x80"};
    const DUNXString accents(texts[0]), emoji(texts[1]);
    EXPECT_EQ(textOf(accents) + textOf(emoji), "h\\u00E9llo \\u20ACa\\uD83D\\uDE00");
    EXPECT_EQ(accents.GetLengthInChar(), 10);
    EXPECT_EQ(emoji.GetLengthInChar(), 5);
    EXPECT_STREQ(narrow(accents), texts[0]);
    EXPECT_STREQ(narrow(emoji), texts[1]);
    EXPECT_EQ(textOf(DUNXString(16, "%s!", "\xC3\xA9")), "\\u00E9!");
    EXPECT_EQ(textOf(DUNXString("a\xFF!")), "a\\u00FF!");
    EXPECT_EQ(textOf(DUNXString(2, "%s", "\xC3\xA9")), "\\u00C3"); // cut inside a sequence
}

TEST(DUNXString, NarrowGetCharsWritesDashForUnconvertibleUnitsWithinTheByteLimit) {
    {
        ScopedLocale plain("C");
        ASSERT_TRUE(plain.isSet());
        const unsigned short units[] = {'a', 0x100, 0xE9, 0x20AC, 'b', 0};
        const DUNXString text(units);
        EXPECT_EQ(text.GetLengthInChar(), 5); // the unit count, as the locale cannot convert
        EXPECT_STREQ(narrow(text), "a-\xE9-b");
        char bytes[8];
        text.getChars(1, 3, bytes, 0);
        EXPECT_STREQ(bytes, "-\xE9");
    }
    // The conversion is bounded by the unit count when the whole text cannot be converted,
    // so a lone surrogate beyond that bound is never reached.
    ScopedLocale utf8("C.UTF-8");
    ASSERT_TRUE(utf8.isSet()) << "C.UTF-8 is not installed";
    const unsigned short reached[] = {'a', 0xD800, 'b', 0}, beyond[] = {0xE9, 0xD800, 0};
    EXPECT_EQ(DUNXString(reached).GetLengthInChar(), 3);
    EXPECT_EQ(DUNXString(beyond).GetLengthInChar(), 2);
    EXPECT_STREQ(narrow(DUNXString(reached)), "a-b");
    EXPECT_STREQ(narrow(DUNXString(beyond)), "\xC3\xA9");
}

TEST(DUNXString, WordConstantsHoldTheirText) {
    EXPECT_EQ(textOf(DUNXString::DUNX_YES) + textOf(DUNXString::DUNX_NO) +
                  textOf(DUNXString::DUNX_TRUE) + textOf(DUNXString::DUNX_FALSE) +
                  textOf(DUNXString::DUNX_ON) + textOf(DUNXString::DUNX_OFF),
              "YesNoTrueFalseOnOff");
    EXPECT_TRUE(DUNXString::DUNX_FALSE.equalsIgnoreCase("FALSE"));
}

TEST(DUNXString, ComparisonsAndSearchesAllocateNothingAndNewStringsAllocateOnce) {
    const DUNXString text("Some text to search for TEXT"), other("TEXT");
    EXPECT_EQ(allocationsOf([&] { return text.hashCode() + text.equals(other); }), 0);
    EXPECT_EQ(
        allocationsOf([&] { return text.compareTo(other) + (text < other) + (text > other); }), 0);
    EXPECT_EQ(allocationsOf([&] {
                  return text.compareToIgnoreCase(other) + text.equalsIgnoreCase(other) +
                         text.endsWithIgnoreCase(other);
              }),
              0);
    EXPECT_EQ(allocationsOf([&] {
                  return text.startsWith(other, 2) + text.endsWith(other) + text.endsWith(u'T');
              }),
              0);
    EXPECT_EQ(allocationsOf([&] {
                  return text.indexOf(u'T', 1) + text.lastIndexOf(u'T') +
                         text.lastIndexOfAfter(u'T', 2);
              }),
              0);
    EXPECT_EQ(allocationsOf([&] { return text.indexOf(other, 1) + text.lastIndexOf(other); }), 0);
    EXPECT_EQ(allocationsOf([] { DUNXString("some text"); }), 1);
    EXPECT_EQ(allocationsOf([&] { DUNXString{text}; }), 1);
    EXPECT_EQ(allocationsOf([] { DUNXString(64, "%s-%d", "text", 12); }), 1);
    EXPECT_EQ(allocationsOf([&] { return text.substring(1, 4); }), 1);
    EXPECT_EQ(allocationsOf([&] { return text.concat(text); }), 1);
    EXPECT_EQ(allocationsOf([&] { return text.toUpperCase(); }), 1);
}

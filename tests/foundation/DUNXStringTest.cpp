#include <dunx/DUNXString.h>

#include "support/AllocationCounter.h"
#include "support/LocaleUnits.h"
#include "support/ScopedLocale.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <random>
#include <string>
#include <tuple>
#include <vector>

using S = DUNXString;

namespace {

const char* const N = "<null>";

// The units as text: "<null>" for the null string, ASCII as is, any other unit as \uXXXX, and a
// note when length() disagrees with the units, so that every text check checks the length too.
std::string textOf(const S& s) {
    const unsigned short* units = s;
    std::string text = units ? "" : N;
    int count = 0;
    for (char escaped[8]; units && units[count] != 0; text += escaped, ++count)
        std::snprintf(escaped, sizeof escaped, units[count] < 0x80 ? "%c" : "\\u%04X",
                      units[count]);
    return s.length() == count ? text : text + " <length() " + std::to_string(s.length()) + ">";
}

} // namespace

TEST(DUNXString, EveryWayOfMakingAStringGivesItsUnits) {
    dunx::test::ScopedLocale utf8("C.UTF-8");
    if (dunx::test::kWindows)
        GTEST_SKIP() << "the Windows C runtime (msvcrt) has no UTF-8 locale";
    ASSERT_TRUE(utf8.isSet()) << "C.UTF-8 is not installed";
    const S hello("hello"), null, accents("h\xC3\xA9llo \xE2\x82\xAC"), emoji("a\xF0\x9F\x98\x80");
    const char* noText = nullptr; // not a constant, so no format check applies
    unsigned short* const noUnits = nullptr;
    unsigned short units[] = {'h', 0xE9, 0xFFFF, 0}, cut[] = {'a', 'b', 0, 'c', 'd'};
    const std::string big(3000, 'x');
    // clang-format off
    const std::pair<S, std::string> rows[] = {
        {S(noText), N}, {S(noUnits), N}, {S(""), ""}, {S(units), "h\\u00E9\\uFFFF"},
        {S(u'\u20AC'), "\\u20AC"}, {S::DUNX_YES, "Yes"}, {S::DUNX_NO, "No"}, {S::DUNX_TRUE, "True"},
        {S::DUNX_FALSE, "False"}, {S::DUNX_ON, "On"}, {S::DUNX_OFF, "Off"},
        // Above U+FFFF: a surrogate pair. A byte the locale cannot read: one unit of that value.
        {accents, "h\\u00E9llo \\u20AC"}, {emoji, "a\\uD83D\\uDE00"}, {S("a\xFF!"), "a\\u00FF!"},
        {S(2, "%s", "\xC3\xA9"), "\\u00C3"}, {S(16, "%s!", "\xC3\xA9"), "\\u00E9!"},
        {S(64, "%s-%d", "ab", 7), "ab-7"}, {S(4, "%s", "abcdef"), "abc"},
        {S(4, "%s", "abc"), "abc"}, {S(1, "%d", 5), ""}, {S(0, "%d", 5), ""}, {S(64, noText, 1), N},
        {S(1024, "%s", big.c_str()), big.substr(0, 1023)}, {S(4000, "%s", big.c_str()), big},
        {S(1025, "%s", big.c_str()), big.substr(0, 1024)}, {S::valueOf(-12), "-12"},
        {S::valueOf(static_cast<long>(0x100000005LL)), "5"}, {S::valueOf(1.5), "1.500000"},
        {S::valueOf(2.5f), "2.500000"}, {S::valueOf(1e20), "100000000000000000000.000000"},
        {S::valueOf(true), "true"}, {S::valueOf(false), "false"}, {S::valueOf(units[0]), "h"},
        {S::valueOf(units), "h\\u00E9\\uFFFF"}, {S::valueOf(units, 1, 1), "\\u00E9"},
        {S::valueOf(cut, 0, 5), "ab"}, // a 0 ends the units before the count does
        {S::valueOf(cut, 2, 3), ""}, {S::valueOf(units, 0, 0), ""}, {S::valueOf(units, 0, -1), N},
        {S::valueOf(units + 1, -1, 1), N},
        {S::valueOf(noUnits), N}, {hello.substring(1, 3), "el"}, {hello.substring(0, 5), "hello"},
        {hello.substring(4, 5), "o"}, {hello.substring(2, 2), N}, {hello.substring(0, 6), N},
        {hello.substring(-1, 2), N}, {hello.substring(3, 2), N}, {hello.substring(2), "llo"},
        {hello.substring(5), N}, {hello.substring(-1), N}, {S("").substring(0, 0), N},
        {hello.concat(" you"), "hello you"}, {null + "cd", "cd"}, {S("") + null, ""},
        {null + null, N}, {S("").replace(u'a', u'b'), N}, {S("a.b.c").replace(u'.', u'/'), "a/b/c"},
        {null.toUpperCase(), N}, {S("MiXeD \xC3\xA9-z").toUpperCase(), "MIXED \\u00C9-Z"},
        {null.toLowerCase(), N}, {S("MiXeD \xC3\x89-z").toLowerCase(), "mixed \\u00E9-z"},
        // Kept as is: callers rely on trim dropping the last unit when no white space trails it.
        {S(" abc ").trim(), "abc"}, {S("abc ").trim(), "abc"}, {S("abc").trim(), "ab"},
        {S("  ab").trim(), "a"}, {S("\t x\n").trim(), "x"}, {S("a").trim(), N},
        {S("   ").trim(), N}, {null.trim(), N}, {S("ab \t ").trim(), "ab"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(textOf(row.first), row.second) << "row " << &row - rows;
    for (const S* word : {&S::DUNX_YES, &S::DUNX_NO, &S::DUNX_TRUE, &S::DUNX_FALSE, &S::DUNX_ON,
                          &S::DUNX_OFF}) // their units end with a 0, as every string's do
        EXPECT_TRUE(S(static_cast<const unsigned short*>(*word)).equals(*word)) << textOf(*word);
    EXPECT_TRUE(S("a").isWhitespace() && S(" \t").isWhitespace() && !S("ab").isWhitespace());
    EXPECT_EQ(static_cast<const char*>(null), nullptr);
    EXPECT_STREQ(static_cast<const char*>(S("")), "");
    EXPECT_STREQ(static_cast<const char*>(accents), "h\xC3\xA9llo \xE2\x82\xAC");
    EXPECT_STREQ(static_cast<const char*>(emoji), "a\xF0\x9F\x98\x80"); // the pair converts back
    EXPECT_EQ(hello.charAt(4) + hello[1], 'o' + 'e');
    EXPECT_EQ(hello.charAt(-1) + hello.charAt(5) + null.charAt(0), 0);
    // Bounded by the unit count when the whole text cannot be converted, the conversion never
    // reaches a lone surrogate beyond that bound.
    const unsigned short reached[] = {'a', 0xD800, 'b', 0}, beyond[] = {0xE9, 0xD800, 0};
    EXPECT_EQ(
        std::tuple(accents.GetLengthInChar(), null.GetLengthInChar(), S(reached).GetLengthInChar()),
        std::tuple(10, 0, 3));
    EXPECT_STREQ(static_cast<const char*>(S(reached)), "a-b");
    EXPECT_STREQ(static_cast<const char*>(S(beyond)), "\xC3\xA9");
}

TEST(DUNXString, NarrowRenderingIsKeptUntilAssignmentAndInTheCLocaleIsBytesOrDashes) {
    dunx::test::ScopedLocale plain("C");
    ASSERT_TRUE(plain.isSet());
    const unsigned short units[] = {'a', 0x100, 0xE9, 0x20AC, 'b', 0};
    const S latin("caf\xE9!"), null;
    S target("old"), text(units);
    const char* first = target;
    EXPECT_EQ(static_cast<const char*>(target), first); // made once, then kept
    target = latin;                                     // target had a rendering, latin none
    EXPECT_STREQ(static_cast<const char*>(target), "caf\xE9!");
    EXPECT_STREQ(static_cast<const char*>(text), "a-\xE9-b");
    EXPECT_EQ(text.GetLengthInChar(), 5); // the unit count, as the locale cannot convert
    target = text;                        // both had one
    EXPECT_STREQ(static_cast<const char*>(target), "a-\xE9-b");
    S& alias = target;
    target = alias;
    const S copy(target), taker(std::move(text));
    EXPECT_EQ(textOf(copy) + "|" + textOf(taker) + "|" + textOf(text) + "|" + textOf(latin),
              "a\\u0100\\u00E9\\u20ACb|a\\u0100\\u00E9\\u20ACb|<null>|caf\\u00E9!");
    target = null;
    EXPECT_EQ(static_cast<const char*>(target), nullptr);
    char dashes[8];
    copy.getChars(1, 3, dashes, 0);
    EXPECT_STREQ(dashes, "-\xE9");
    const S hello("hello");
    const std::tuple<int, int, std::string> rows[] = {
        {1, 3, "el"}, {0, 5, "hello"}, {2, 2, ""}, {3, 1, ""},
        {-1, 2, ""},  {1, 99, "ello"}, {7, 9, ""}};
    for (const auto& [begin, end, expected] : rows) {
        unsigned short wide[12] = {'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', 0};
        char bytes[12] = "XXXXXXXXXXX";
        hello.getChars(begin, end, wide, 2);
        hello.getChars(begin, end, bytes, 2);
        EXPECT_EQ(textOf(wide) + "|" + bytes, "XX" + expected + "|XX" + expected)
            << begin << ", " << end;
        const std::size_t after = 3 + expected.size(); // past the terminator: untouched
        EXPECT_TRUE(wide[after] == 'X' && bytes[after] == 'X') << begin << ", " << end;
    }
    hello.getChars(0, 5, static_cast<unsigned short*>(nullptr), 0);
    hello.getChars(0, 5, static_cast<char*>(nullptr), 0);
}

TEST(DUNXString, ComparesHashesAndSearchesUnitsAsUnsignedWithinBounds) {
    dunx::test::ScopedLocale utf8("C.UTF-8");
    if (dunx::test::kWindows)
        GTEST_SKIP() << "the Windows C runtime (msvcrt) has no UTF-8 locale";
    ASSERT_TRUE(utf8.isSet()) << "C.UTF-8 is not installed";
    const S h("hello"), t("abcabc");
    // clang-format off
    // a, b, a.compareTo(b), a.compareToIgnoreCase(b); the null string comes first.
    const std::tuple<const char*, const char*, int, int> pairs[] = {
        {nullptr, nullptr, 0, 0}, {nullptr, "", -1, -1}, {"", nullptr, 1, 1},
        {nullptr, "a", -1, -1}, {"a", "z", -1, -1}, {"ab", "abc", -1, -1}, {"abc", "ab", 1, 1},
        {"abc", "abc", 0, 0}, {"\xE8\x80\x80", "a", 1, 1}, {"Yes", "YES", 1, 0}, {"B", "a", -1, 1},
        {"_", "A", 1, -1}, {"\xC3\x89t\xC3\xA9", "\xC3\xA9T\xC3\x89", -1, 0}};
    // text, affix: startsWith(affix), startsWith(affix, 1), endsWith, endsWithIgnoreCase.
    const std::tuple<const char*, const char*, std::tuple<bool, bool, bool, bool>> affixes[] = {
        {"abc", "ab", {1, 0, 0, 0}}, {"abc", "abc", {1, 0, 1, 1}}, {"abc", "abcd", {0, 0, 0, 0}},
        {"abc", "b", {0, 1, 0, 0}}, {"abc", "bc", {0, 1, 1, 1}}, {"abc", "bcd", {0, 0, 0, 0}},
        {"abc", "c", {0, 0, 1, 1}}, {"abab", "ab", {1, 0, 1, 1}}, {"ab", "xab", {0, 0, 0, 0}},
        {"a", "a", {1, 0, 1, 1}}, {"abc", "", {0, 0, 0, 0}}, {"abc", nullptr, {0, 0, 0, 0}},
        {"", "", {0, 0, 0, 0}}, {nullptr, "a", {0, 0, 0, 0}}, {"File.TXT", ".txt", {0, 0, 0, 1}},
        {"File.TXT", "FILE.TX", {0, 0, 0, 0}}};
    // unit, from: in "hello" indexOf, lastIndexOf, lastIndexOfAfter.
    const std::tuple<char16_t, int, std::tuple<int, int, int>> units[] = {
        {'l', 0, {2, -1, 3}}, {'l', 2, {2, 2, 3}}, {'l', 3, {3, 3, -1}}, {'l', 4, {-1, 3, -1}},
        {'h', 0, {0, 0, -1}}, {'o', 3, {4, -1, 4}}, {'o', 5, {-1, -1, -1}}, {'h', -1, {-1, -1, -1}},
        {'x', 0, {-1, -1, -1}}, {0, 0, {-1, -1, -1}}}; // the terminating 0 is not in the text
    // needle, from: in "abcabc" indexOf, lastIndexOf.
    const std::tuple<const char*, int, std::tuple<int, int>> needles[] = {
        {"bc", 0, {1, -1}}, {"bc", 2, {4, 1}}, {"bc", 5, {-1, 4}}, {"abc", 3, {3, 3}},
        {"abc", 2, {3, 0}}, {"abcd", 0, {-1, -1}}, {"c", 5, {5, 5}}, {"", 0, {-1, -1}},
        {nullptr, 0, {-1, -1}}, {"a", -1, {-1, -1}}, {"ab", 0, {0, 0}}, {"bc", 6, {-1, -1}}};
    // clang-format on
    for (const auto& [textA, textB, order, ignoringCase] : pairs) {
        SCOPED_TRACE(testing::Message() << textA << " vs " << textB);
        const S a(textA), b(textB);
        EXPECT_EQ(std::tuple(a.compareTo(b), a.equals(b), (a < b), (a <= b), (a > b)),
                  std::tuple(order, order == 0, (order < 0), (order <= 0), (order > 0)));
        EXPECT_EQ(std::tuple(a.compareToIgnoreCase(b), a.equalsIgnoreCase(b)),
                  std::tuple(ignoringCase, ignoringCase == 0));
    }
    for (const auto& [text, affix, expected] : affixes) {
        const S s(text), a(affix);
        EXPECT_EQ(expected, std::tuple(s.startsWith(a), s.startsWith(a, 1), s.endsWith(a),
                                       s.endsWithIgnoreCase(a)))
            << text << " / " << affix;
    }
    for (const auto& [u, at, expected] : units)
        EXPECT_EQ(std::tuple(h.indexOf(u, at), h.lastIndexOf(u, at), h.lastIndexOfAfter(u, at)),
                  expected)
            << static_cast<char>(u) << " from " << at;
    for (const auto& [needle, at, expected] : needles)
        EXPECT_EQ(std::tuple(t.indexOf(needle, at), t.lastIndexOf(needle, at)), expected)
            << needle << " from " << at;
    EXPECT_EQ(std::tuple(h.lastIndexOf(u'l'), t.lastIndexOf("abc"), S("aaa").lastIndexOf("aa"),
                         S("a").lastIndexOf("a")),
              std::tuple(3, 3, 1, 0));
    EXPECT_EQ(std::tuple(S().indexOf(u'a'), S("").lastIndexOf(u'a'),
                         S("").lastIndexOfAfter(u'a', 0), S().lastIndexOf("a"), S("").indexOf("a")),
              std::tuple(-1, -1, -1, -1, -1));
    EXPECT_TRUE(h.endsWith(u'o') && !h.endsWith(u'l') && !h.startsWith("h", -1) &&
                S("o").endsWith(u'o'));
    EXPECT_FALSE(S("").endsWith(u'\0') || S().endsWith(u'\0'));
    const unsigned short high[] = {0xFFFF, 0xFFFF, 0};
    EXPECT_EQ(std::tuple(S().hashCode(), S("").hashCode(), S("ab").hashCode(), S(high).hashCode()),
              std::tuple(0u, 0u, 97u * 33 + 98, 65535u * 33 + 65535));
    EXPECT_EQ(S("zzzzzzzz").hashCode(), 1813671632u); // wraps past 2^32
}

TEST(DUNXString, ComparisonsAndSearchesAllocateNothingAndNewStringsAllocateOnce) {
    if (!dunx::test::AllocationCounter::SeesLibraryAllocations())
        GTEST_SKIP() << "the library's allocations are out of sight here (Windows DLL)";
    const auto allocationsOf = [](auto run) {
        dunx::test::AllocationCounter counter;
        run();
        return counter.count(); // read before any assertion can allocate
    };
    const S a("Some text to search for TEXT"), b("TEXT");
    EXPECT_EQ(allocationsOf([&] {
                  return a.hashCode() + a.equals(b) + a.compareTo(b) + a.compareToIgnoreCase(b) +
                         a.equalsIgnoreCase(b) + a.endsWithIgnoreCase(b) + a.startsWith(b, 2) +
                         a.endsWith(b) + a.indexOf(u'T', 1) + a.lastIndexOfAfter(u'T', 2) +
                         a.indexOf(b, 1) + a.lastIndexOf(b);
              }),
              0);
    EXPECT_EQ(allocationsOf([&] {
                  return std::tuple(S("some text"), S(a), S(64, "%s-%d", "text", 12),
                                    a.substring(1, 4), a.concat(b), a.toUpperCase());
              }),
              6); // one each
}

TEST(DUNXString, Utf8InAndOutWhateverTheLocaleWithOneReplacementPerMaximalSubpart) {
    dunx::test::ScopedLocale plain("C"); // UTF-8 must not depend on it
    const struct {
        const char* bytes;
        int length;
        const char* units; // as textOf shows them
    } rows[] = {
        {"h\xC3\xA9", -1, "h\\u00E9"},
        {"a\xFF"
         "b",
         -1, "a\\uFFFDb"},
        {"\xE2\x82", -1, "\\uFFFD"},
        {"\xE2\x82\xAC", -1, "\\u20AC"},
        {"\xEF\x80\x80", -1, "\\uF000"}, // the last lead byte of the three-byte form
        {"\xF0\x9F\x98\x80", -1, "\\uD83D\\uDE00"},
        {"\xF0\x80\x80", -1, "\\uFFFD\\uFFFD\\uFFFD"}, // overlong
        {"\xED\xA0\x80", -1, "\\uFFFD\\uFFFD\\uFFFD"}, // an encoded surrogate
        {"\xC0\xAF", -1, "\\uFFFD\\uFFFD"},
        {"\xF4\x90\x80\x80", -1, "\\uFFFD\\uFFFD\\uFFFD\\uFFFD"}, // past U+10FFFF
        {"\xF1\x80\x80", -1, "\\uFFFD"},
        {"\x80\xBF", -1, "\\uFFFD\\uFFFD"},
        {"\xF4\x8F\xBF\xBF", -1, "\\uDBFF\\uDFFF"},
        {"", -1, ""},
        {"abc", 2, "ab"},
        {"a\0b", 3, "a"},
        {"\xC3\xA9", 1, "\\uFFFD"}, // the length cuts the sequence
        {nullptr, -1, N},
    };
    for (const auto& row : rows)
        EXPECT_EQ(textOf(S::FromUtf8(row.bytes, row.length)), row.units) << &row - rows;
    const unsigned short lone[] = {'a', 0xD800, 'b', 0xDC00, 0};
    const unsigned short pair[] = {0xD83D, 0xDE00, 0xE9, 0x20AC, 0};
    EXPECT_EQ(S(lone).ToUtf8(), "a\xEF\xBF\xBD"
                                "b\xEF\xBF\xBD");
    EXPECT_EQ(S(pair).ToUtf8(), "\xF0\x9F\x98\x80\xC3\xA9\xE2\x82\xAC");
    const unsigned short firstPair[] = {0xD800, 0xDC00, 0}; // U+10000, the lowest pair
    EXPECT_EQ(S(firstPair).ToUtf8(), "\xF0\x90\x80\x80");
    EXPECT_EQ(S().ToUtf8() + S("").ToUtf8(), "");
}

namespace {

std::vector<unsigned short> unitsByTheLocale(const std::string& text) {
    return dunx::test::UnitsByTheLocale(text.data(), text.size());
}

std::vector<unsigned short> unitsOf(const S& s) {
    const unsigned short* units = s;
    return std::vector<unsigned short>(units, units + s.length());
}

// Texts that reach every branch of a UTF-8 reader: each lead byte with each
// second byte, the edges of the three- and four-byte ranges with every
// continuation and cut short, runs of ASCII longer than a word around them,
// and random mixes of the bytes where decoders go wrong.
std::vector<std::string> narrowTexts() {
    std::vector<std::string> texts = {"", "plain ASCII longer than eight bytes", "\x7F\x01"};
    for (int lead = 0x80; lead <= 0xFF; ++lead)
        for (int second = 0x01; second <= 0xFF; ++second)
            texts.push_back({static_cast<char>(lead), static_cast<char>(second)});
    const int edges[] = {0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0};
    for (int lead : {0xE0, 0xE1, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF8, 0xFC})
        for (int second : edges)
            for (int third : edges) {
                const std::string bytes = {static_cast<char>(lead), static_cast<char>(second),
                                           static_cast<char>(third), '\x80', '\xBF'};
                for (std::size_t cut = 1; cut <= bytes.size(); ++cut)
                    texts.push_back("abcdefghij" + bytes.substr(0, cut) + "klmnopqrstuvw");
            }
    const unsigned char pool[] = {'a',  'Z',  '0',  ' ',  0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                  0xA0, 0xA9, 0xBF, 0xC0, 0xC1, 0xC2, 0xC3, 0xDF, 0xE0,
                                  0xE2, 0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xFE, 0xFF};
    std::mt19937 random(15);
    std::uniform_int_distribution<std::size_t> pick(0, sizeof pool - 1), length(1, 40);
    for (int n = 0; n < 20000; ++n) {
        std::string text(length(random), ' ');
        for (char& c : text)
            c = static_cast<char>(pool[pick(random)]);
        texts.push_back(text);
    }
    // Well-formed text of every length from one to four bytes a character.
    const char* characters[] = {"a",
                                "\xC3\xA9",
                                "\xE2\x82\xAC",
                                "\xF0\x9F\x98\x80",
                                "\xF4\x8F\xBF\xBF",
                                "\xEF\xBF\xBF",
                                "\xED\x9F\xBF"};
    std::uniform_int_distribution<std::size_t> which(0, std::size(characters) - 1);
    for (int n = 0; n < 2000; ++n) {
        std::string text;
        for (std::size_t k = length(random); k > 0; --k)
            text += characters[which(random)];
        texts.push_back(text);
    }
    return texts;
}

} // namespace

TEST(DUNXString, NarrowConversionFastPathsGiveWhatTheLocaleGivesByteForByte) {
    // In C.UTF-8 the library reads UTF-8 itself; in "C" only ASCII is read
    // without the locale. Either way the units must be the locale's own.
    const std::vector<std::string> texts = narrowTexts();
    // The Windows C runtime (msvcrt) has no UTF-8 locale: its "C" locale only.
    for (const char* locale : {dunx::test::kWindows ? "C" : "C.UTF-8", "C"}) {
        dunx::test::ScopedLocale scoped(locale);
        ASSERT_TRUE(scoped.isSet()) << locale << " is not installed";
        int mismatches = 0;
        for (const std::string& text : texts) {
            if (mismatches < 5 && unitsOf(S(text.c_str())) != unitsByTheLocale(text)) {
                ++mismatches;
                ADD_FAILURE() << locale << ": " << testing::PrintToString(text);
            }
        }
    }
}

TEST(DUNXString, EqualsHashCodeAndIndexOfAgreeWithUnitByUnitDefinitions) {
    // Small alphabets make near-misses common; 0x8000 and 0xFFFF check that
    // units compare as unsigned; lengths cross every block edge of the search.
    std::mt19937 random(7);
    const unsigned short alphabet[] = {'a', 'b', 0x8000, 0xFFFF};
    std::uniform_int_distribution<int> unit(0, 3), length(0, 70);
    auto randomUnits = [&](int count) {
        std::vector<unsigned short> units(static_cast<std::size_t>(count) + 1, 0);
        for (int i = 0; i < count; ++i)
            units[static_cast<std::size_t>(i)] = alphabet[unit(random)];
        return units;
    };
    for (int n = 0; n < 3000; ++n) {
        const std::vector<unsigned short> a = randomUnits(length(random));
        std::vector<unsigned short> b = n % 3 == 0 ? a : randomUnits(length(random) % 6);
        const S textA(a.data()), textB(b.data());
        const std::vector<unsigned short> unitsA(a.begin(), a.end() - 1);
        const std::vector<unsigned short> unitsB(b.begin(), b.end() - 1);
        SCOPED_TRACE(testing::PrintToString(unitsA) + " / " + testing::PrintToString(unitsB));
        EXPECT_EQ(textA.equals(textB), unitsA == unitsB);
        unsigned hash = 0;
        for (unsigned short u : unitsA)
            hash = hash * 33u + u;
        EXPECT_EQ(textA.hashCode(), hash);
        for (int from = -1; from <= textA.length(); ++from) {
            int expected = -1;
            for (int i = std::max(from, 0);
                 from >= 0 && !unitsB.empty() &&
                 i + static_cast<int>(unitsB.size()) <= static_cast<int>(unitsA.size());
                 ++i)
                if (std::equal(unitsB.begin(), unitsB.end(), unitsA.begin() + i)) {
                    expected = i;
                    break;
                }
            EXPECT_EQ(textA.indexOf(textB, from), expected) << "from " << from;
        }
    }
    EXPECT_TRUE(S().equals(S()) && !S().equals(S("")) && !S("").equals(S()));
    const S same("shared units");
    EXPECT_TRUE(same.equals(same));
}

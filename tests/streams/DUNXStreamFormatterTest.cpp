#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/DUNXString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <functional>
#include <string>

namespace {

using F = DUNXStreamFormatter;
using Print = std::function<void(F&)>;
using Set = bool (*)(F&, const char*);

template <class T> Print printOf(T value) {
    return [value](F& out) { out << value; };
}

const Set setInt = [](F& f, const char* s) { return f.setIntFormat(s); };
const Set setUnsigned = [](F& f, const char* s) { return f.setUnsignedFormat(s); };
const Set setLong = [](F& f, const char* s) { return f.setLongFormat(s); };
const Set setUnsignedLong = [](F& f, const char* s) { return f.setUnsignedLongFormat(s); };
const Set setDouble = [](F& f, const char* s) { return f.setDoubleFormat(s); };

// What `print` gives on a fresh formatter, after `set(format)` when one is given.
std::string printed(const Print& print, Set set = nullptr, const char* format = nullptr) {
    DUNXStringOutputStream stream;
    F out(&stream);
    if (set && !set(out, format))
        return "<refused>";
    print(out);
    return std::string(stream.GetText(), stream.GetLength());
}

} // namespace

TEST(DUNXStreamFormatter, PrintsEachTypeWithItsDefaultFormat) {
    const struct {
        const char* name;
        Print print;
        const char* expected;
    } cases[] = {
        {"char", printOf('x'), "x"},
        {"int", printOf(INT_MIN), "-2147483648"},
        {"unsigned", printOf(4000000000u), "4000000000"},
        {"long", printOf(-5000000000L), "-5000000000"},
        {"long long", printOf(-9000000000LL), "-9000000000"},
        {"double", printOf(2.5), "2.500000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(printed(c.print), c.expected);
    }
}

// "%ul" is a "%u" followed by the letter l; the number before it must still be
// the whole 64-bit value, not its low 32 bits.
TEST(DUNXStreamFormatter, PrintsUnsignedLongsAsTheNumberFollowedByL) {
    EXPECT_EQ(printed(printOf(7UL)), "7l");
    EXPECT_EQ(printed(printOf(ULONG_MAX)), "18446744073709551615l");
    EXPECT_EQ(printed(printOf(9000000000ULL)), "9000000000l");
}

TEST(DUNXStreamFormatter, SettersTakeOneConversionThatFitsTheType) {
    const struct {
        Set set;
        const char* format;
        Print print;
        const char* expected;
    } cases[] = {
        {setInt, "%5d", printOf(42), "   42"},
        {setInt, "[%x]%%", printOf(255), "[ff]%"},
        {setUnsigned, "%o", printOf(8u), "10"},
        {setLong, "%+ld", printOf(5L), "+5"},
        {setUnsignedLong, "%#llX", printOf(255ULL), "0XFF"},
        {setDouble, "%.2f", printOf(2.5), "2.50"},
        {setDouble, "%e", printOf(1500.0), "1.500000e+03"},
        {setDouble, "%Lg", printOf(0.5), "0.5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.format);
        EXPECT_EQ(printed(c.print, c.set, c.format), c.expected);
    }
}

TEST(DUNXStreamFormatter, SettersRefuseUnfitFormatsAndKeepThePreviousOne) {
    const struct {
        Set set;
        const char* kept;
        const char* wrongType;
        Print print;
    } setters[] = {{setInt, "<%d>", "%f", printOf(7)},
                   {setUnsigned, "<%u>", "%e", printOf(7u)},
                   {setLong, "<%ld>", "%lf", printOf(7L)},
                   {setUnsignedLong, "<%lu>", "%g", printOf(7UL)},
                   {setDouble, "<%.0f>", "%d", printOf(7.0)}};
    for (const auto& s : setters) {
        for (const char* unfit : {s.wrongType, "%s", "%d %f", "%p", "%n", "%*d", "%.*f", "%", "",
                                  "no conversion", "%%", static_cast<const char*>(nullptr)}) {
            SCOPED_TRACE(std::string(s.kept) + " then " + (unfit ? unfit : "null"));
            DUNXStringOutputStream stream;
            F out(&stream);
            ASSERT_TRUE(s.set(out, s.kept));
            EXPECT_FALSE(s.set(out, unfit));
            s.print(out);
            EXPECT_STREQ(stream.GetText(), "<7>");
        }
    }
}

TEST(DUNXStreamFormatter, PassesThePrecisionAsTheOneStarArgument) {
    const struct {
        const char* format;
        bool usePrecision;
        int precision;
        const char* expected; // null: refused, and the previous "%.*f" with 3 stays
    } cases[] = {{"%.*f", true, 1, "1.5"},        {"%.*e", true, 2, "1.50e+00"},
                 {"%*f", true, 10, "  1.500000"}, {"%.*f", true, 0, "2"},
                 {"%.*f", false, 5, nullptr},     {"%f", true, 5, nullptr},
                 {"%*.*f", true, 5, nullptr},     {"%*d", true, 5, nullptr}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.format + std::string(c.usePrecision ? " with " : " without ") +
                     std::to_string(c.precision));
        DUNXStringOutputStream stream;
        F out(&stream);
        ASSERT_TRUE(out.setDoubleFormat("%.*f", true, 3));
        EXPECT_EQ(out.setDoubleFormat(c.format, c.usePrecision, c.precision),
                  c.expected != nullptr);
        out << 1.5;
        EXPECT_STREQ(stream.GetText(), c.expected ? c.expected : "1.500");
    }
}

TEST(DUNXStreamFormatter, ResetFormatRestoresEveryDefault) {
    DUNXStringOutputStream stream;
    F out(&stream);
    ASSERT_TRUE(out.setIntFormat("%x") && out.setUnsignedFormat("%o") &&
                out.setLongFormat("%+ld") && out.setUnsignedLongFormat("%lx") &&
                out.setDoubleFormat("%.*f", true, 1));
    out.setTrailingZeroMode(1);
    out << 26 << ' ' << 8u << ' ' << 5L << ' ' << 26UL << ' ' << 2.0;
    ASSERT_STREQ(stream.GetText(), "1a 10 +5 1a 2");
    stream.Clear();
    out.resetFormat();
    EXPECT_EQ(out.getTrailingZeroMode(), 0);
    out << 26 << ' ' << 8u << ' ' << 5L << ' ' << 26UL << ' ' << 2.0;
    EXPECT_STREQ(stream.GetText(), "26 8 5 26l 2.000000");
}

TEST(DUNXStreamFormatter, TrailingZeroModeOneTrimsOnlyFixedPointFractions) {
    const struct {
        const char* format;
        double value;
        const char* expected;
    } cases[] = {
        {"%lf", 2.5, "2.5"},        {"%lf", 3.0, "3"},        {"%lf", -0.25, "-0.25"},
        {"%lf", 100.0, "100"},      {"%.0f", 10.0, "10"},     {"%.3e", 1500.0, "1.500e+03"},
        {"%g", 100000.0, "100000"}, {"[%.2f]", 2.5, "[2.5]"}, {"v.%.0f", 10.0, "v.10"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.format) + " of " + std::to_string(c.value));
        const auto print = [&](F& out) {
            out.setTrailingZeroMode(1);
            out << c.value;
        };
        EXPECT_EQ(printed(print, setDouble, c.format), c.expected);
    }
}

TEST(DUNXStreamFormatter, MarginIsFourBlanksPerLevelAndNeverNegative) {
    DUNXStringOutputStream stream;
    F out(&stream);
    const struct {
        const char* name;
        void (*change)(F&);
        int level;
    } steps[] = {{"start", [](F&) {}, 0},
                 {"increment", [](F& f) { f.incrementMargin(); }, 1},
                 {"set 3", [](F& f) { f.setMargin(3); }, 3},
                 {"decrement", [](F& f) { f.decrementMargin(); }, 2},
                 {"set -2", [](F& f) { f.setMargin(-2); }, 0},
                 {"decrement at 0", [](F& f) { f.decrementMargin(); }, 0},
                 {"increment after", [](F& f) { f.incrementMargin(); }, 1}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        step.change(out);
        EXPECT_EQ(out.getMargin(), step.level);
        stream.Clear();
        out << DUNXMargin() << '|';
        EXPECT_EQ(stream.GetText(), std::string(4 * step.level, ' ') + '|');
    }
}

TEST(DUNXStreamFormatter, LineEndIsNewlineUntilChanged) {
    DUNXStringOutputStream stream;
    F out(&stream);
    out.incrementMargin();
    out << DUNXMargin() << "count: " << 3 << DUNXLineEnd();
    {
        std::string lineEnd = "<br>";
        out.setLineEnd(lineEnd.c_str());
        lineEnd.assign(40, 'X'); // the formatter must have kept its own copy
    }
    out << 'a' << DUNXLineEnd();
    out.setLineEnd(nullptr);
    out << 'b' << DUNXLineEnd();
    EXPECT_STREQ(stream.GetText(), "    count: 3\na<br>b");
}

TEST(DUNXStreamFormatter, PrintsTextsAndPointers) {
    const char* const nullText = nullptr;
    int local = 0;
    char pointerText[2][32];
    std::snprintf(pointerText[0], sizeof pointerText[0], "%p", static_cast<void*>(&local));
    std::snprintf(pointerText[1], sizeof pointerText[1], "%p", static_cast<void*>(nullptr));
    const struct {
        const char* name;
        Print print;
        std::string expected;
    } cases[] = {
        {"C string", printOf("abc"), "abc"},
        {"null C string", printOf(nullText), "(null)"},
        {"DUNXString", printOf(DUNXString("wide")), "wide"},
        {"null DUNXString", printOf(DUNXString()), ""},
        {"write with zeros", [](F& f) { f.write("a\0b", 3); }, std::string("a\0b", 3)},
        {"pointer", printOf(static_cast<const void*>(&local)), pointerText[0]},
        {"null pointer", printOf(static_cast<const void*>(nullptr)), pointerText[1]},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(printed(c.print), c.expected);
    }
}

TEST(DUNXStreamFormatter, FormatCutsAt1023BytesIntoOneSharedBuffer) {
    EXPECT_STREQ(F::format("%-4s|%03d", "ab", 7).text, "ab  |007");
    EXPECT_STREQ(F::format(nullptr).text, "");
    const std::string longText(3000, 'x');
    EXPECT_EQ(F::format("%s", longText.c_str()).text, longText.substr(0, 1023));

    const DUNXFormattedText first = F::format("%s", "first");
    const DUNXFormattedText second = F::format("%d", 2);
    EXPECT_EQ(first.text, second.text) << "not one shared buffer";
    EXPECT_STREQ(first.text, "2") << "the second call must overwrite the first result";
    EXPECT_EQ(printed(printOf(F::format("[%5.1f]", 2.5))), "[  2.5]");
}

TEST(DUNXStreamFormatter, RemembersAWriteThatFellShort) {
    struct ShortStream : DUNXOutputStream { // takes 5 bytes, like a disk filling up
        int left = 5;
        int write(const char*, int count) override {
            const int accepted = count < left ? count : left;
            left -= accepted;
            return accepted;
        }
    } shortOfSpace;
    DUNXFileOutputStream closed(-1);
    DUNXOutputStream* const streams[] = {&shortOfSpace, &closed};
    for (DUNXOutputStream* stream : streams) {
        SCOPED_TRACE(stream == &closed ? "closed stream" : "short stream");
        F out(stream);
        EXPECT_NO_THROW(out << "abc");
        EXPECT_EQ(out.HasWriteFault(), stream == &closed);
        EXPECT_NO_THROW(out << "defg" << 12 << DUNXLineEnd());
        EXPECT_TRUE(out.HasWriteFault());
        DUNXStringOutputStream good;
        out.setStream(&good);
        out << "ok";
        EXPECT_STREQ(good.GetText(), "ok");
        EXPECT_TRUE(out.HasWriteFault()) << "a good write must not clear the fault";
    }
}

TEST(DUNXStreamFormatter, WithoutAStreamPrintsNothingSafely) {
    F out(nullptr);
    out.setMargin(1);
    EXPECT_NO_THROW(out << DUNXMargin() << 'c' << 1 << 5.0 << "text" << DUNXString("s") << &out
                        << DUNXLineEnd());
    out.write("abc", 3);
    DUNXStringOutputStream later;
    out.setStream(&later);
    EXPECT_EQ(out.getStream(), &later);
    out << DUNXMargin() << 7;
    EXPECT_STREQ(later.GetText(), "    7");
}

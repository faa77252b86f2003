#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXStreamFormatter.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

struct DUNXStreamFormatterTest : ::testing::Test {
    std::string printed() { // everything printed since the last call
        const std::string text(stream.GetText(), static_cast<std::size_t>(stream.GetLength()));
        stream.Clear();
        return text;
    }
    DUNXStringOutputStream stream;
    DUNXStreamFormatter out{&stream};
};

TEST_F(DUNXStreamFormatterTest, PrintsEachTypeWithItsFormatAndRefusesUnfitFormats) {
    const auto printEveryType = [this] {
        out << -7 << ' ' << 4000000000u << ' ' << 5000000000L << ' ' << ~0UL << ' ' << 9LL << ' '
            << 9ULL << ' ' << 2.5;
        return printed();
    };
    // "%ul" is "%u" and the letter l; the number must still be the whole unsigned long (64 bits on
    // Linux, 32 on Windows).
    const bool wideLong = sizeof(long) == 8;
    const std::string defaults = std::string("-7 4000000000 5000000000 ") +
                                 (wideLong ? "18446744073709551615" : "4294967295") +
                                 "l 9 9l 2.500000";
    EXPECT_EQ(printEveryType(), defaults);
    ASSERT_TRUE(out.setIntFormat("[%x]%%") && out.setUnsignedFormat("%x") &&
                out.setLongFormat("%+ld") && out.setUnsignedLongFormat("%llX") &&
                out.setDoubleFormat("%.1f"));
    for (const char* unfit : {"%s", "%d %d", "%p", "%n", "%*d", "%", "", "%%", "%Ld"})
        EXPECT_FALSE(out.setIntFormat(unfit)) << unfit;
    EXPECT_FALSE(out.setIntFormat("%f") || out.setUnsignedFormat("%e") ||
                 out.setLongFormat(nullptr) || out.setUnsignedLongFormat("%g") ||
                 out.setDoubleFormat("%d"));
    EXPECT_EQ(printEveryType(), std::string("[fffffff9]% ee6b2800 +5000000000 ") +
                                    (wideLong ? "FFFFFFFFFFFFFFFF" : "FFFFFFFF") + " +9 9 2.5");
    char longText[400]; // longer than the formatter's first buffer
    std::snprintf(longText, sizeof longText, "%.1f", -1e300);
    out << -1e300;
    EXPECT_EQ(printed(), longText);
    // A value wider than its conversion is printed whole, with its sign.
    ASSERT_TRUE(out.setLongFormat("%d") && out.setUnsignedLongFormat("%x"));
    out << -5000000000L << ' ' << 0x100000000UL;
    EXPECT_EQ(printed(), "-5000000000 100000000");
    // Short and char lengths take the int and print it cut to their size, as printf does.
    ASSERT_TRUE(out.setIntFormat("%hd") && out.setUnsignedFormat("%hhx"));
    out << 70000 << ' ' << 0x1234u;
    EXPECT_EQ(printed(), "4464 34");
    out.resetFormat();
    EXPECT_EQ(printEveryType(), defaults);
}

TEST_F(DUNXStreamFormatterTest, TrimsTrailingZerosInModeOneAndPassesThePrecisionAsTheStar) {
    out.setTrailingZeroMode(1);
    out << 2.5 << ' ' << 3.0 << ' ' << -0.25 << ' ' << 100.0 << ' ' << 9.5 << ' ' << 90.0;
    EXPECT_EQ(printed(), "2.5 3 -0.25 100 9.5 90");
    for (const auto& [format, value, expected] :
         {std::make_tuple("%.3e", 1500.0, "1.500e+03"), std::make_tuple("%g", 100000.0, "100000"),
          std::make_tuple("[%.2f]", 2.5, "[2.5]"), std::make_tuple("v.%.0f", 10.0, "v.10")}) {
        ASSERT_TRUE(out.setDoubleFormat(format));
        out << value;
        EXPECT_EQ(printed(), expected) << format;
    }
    ASSERT_TRUE(out.setDoubleFormat("%.*f", true, 1));
    out << 1.26 << ' ';
    ASSERT_TRUE(out.setDoubleFormat("%.*Lf", true, 0));
    EXPECT_FALSE(out.setDoubleFormat("%.*f", false, 5) || out.setDoubleFormat("%f", true, 5) ||
                 out.setDoubleFormat("%*.*f", true, 5) || out.setDoubleFormat("%*d", true, 5));
    out << 1.5 << ' ';
    out.resetFormat();
    out << 1.5;
    EXPECT_EQ(printed(), "1.3 2 1.500000") << "refused formats keep the old one; reset: mode 0";
}

TEST_F(DUNXStreamFormatterTest, PrintsMarginsLineEndsTextsPointersAndFormattedText) {
    out.setMargin(3);
    out.decrementMargin();
    out << DUNXMargin() << '|' << DUNXLineEnd();
    out.setMargin(-2);
    out.decrementMargin();
    out.incrementMargin();
    out.setLineEnd("<br>");
    out << DUNXMargin() << '|' << DUNXLineEnd();
    out.setLineEnd(nullptr);
    out << '|' << DUNXLineEnd();
    EXPECT_EQ(printed(), "        |\n    |<br>|") << "four blanks a level, never below 0";
    for (const auto& [level, kept] : {std::pair(-1, 0), std::pair(0, 0), std::pair(1, 1)}) {
        out.setMargin(level);
        out << DUNXMargin();
        EXPECT_EQ(printed(), std::string(4 * kept, ' ')) << level;
        EXPECT_EQ(out.getMargin(), kept);
    }
    out.decrementMargin();
    out.decrementMargin();
    EXPECT_EQ(out.getMargin(), 0);

    char pointer[32];
    std::snprintf(pointer, sizeof pointer, "%p", static_cast<void*>(&pointer));
    out << "abc" << static_cast<const char*>(nullptr) << DUNXString("wide") << DUNXString()
        << static_cast<const void*>(&pointer);
    EXPECT_EQ(printed(), "abc(null)wide" + std::string(pointer));
    EXPECT_EQ(DUNXStreamFormatter::format("%3000d", 7).text, std::string(1023, ' '));
    EXPECT_STREQ(DUNXStreamFormatter::format(nullptr).text, "");
    const DUNXFormattedText first = DUNXStreamFormatter::format("%s", "first");
    out << DUNXStreamFormatter::format("[%5.1f|%-3d]", 2.5, 7);
    EXPECT_EQ(printed(), "[  2.5|7  ]");
    EXPECT_STREQ(first.text, "[  2.5|7  ]") << "not one shared buffer";
}

TEST_F(DUNXStreamFormatterTest, RemembersAShortWriteAndPrintsNothingWithoutAStream) {
    struct OneByteShort : DUNXOutputStream { // like a disk filling up
        int write(const char*, int count) override { return count - 1; }
    } full;
    out << "ok";
    EXPECT_FALSE(out.HasWriteFault());
    out.setStream(&full);
    out << "lost";
    out.setStream(&stream);
    out << "ok";
    EXPECT_TRUE(out.HasWriteFault()) << "not remembered, or cleared by a good write";
    DUNXStreamFormatter(nullptr) << 'c' << 1 << 5.0 << "text" << DUNXString("s") << DUNXLineEnd();
    EXPECT_EQ(printed(), "okok");
}

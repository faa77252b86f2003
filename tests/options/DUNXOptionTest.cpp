#include <dunx/DUNXOption.h>
#include <dunx/DUNXOptionName.h>
#include <dunx/DUNXValue.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedLocale.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using dunx::test::EventRecorder;
using dunx::test::ScopedEnvironmentVariable;
using Type = DUNXValue::DUNXValueType;

namespace {

std::string text(const DUNXString& s) {
    const char* narrow = s;
    return narrow ? narrow : "<null>";
}

// Every recorded event as "name/level: printed text", so a whole sequence compares at once.
std::string describe(const EventRecorder& recorder) {
    std::string all;
    for (const auto& entry : recorder.entries())
        all += entry.name + "/" + std::to_string(entry.level) + ": " + entry.text;
    return all;
}

// Thomas Wang's mix written out from its steps, independently of the library: unsigned
// arithmetic so that overflow wraps, and right shifts that copy the sign bit by hand.
unsigned wangMix(int32_t key) {
    auto sar = [](uint32_t k, int n) { return (k >> n) | (k >> 31 ? ~(0xFFFFFFFFu >> n) : 0u); };
    uint32_t k = static_cast<uint32_t>(key);
    k += ~(k << 15);
    k ^= sar(k, 10);
    k *= 9u;
    k ^= sar(k, 6);
    k += ~(k << 11);
    k ^= sar(k, 16);
    return k;
}

Type typeOf(const DUNXValue& value) {
    Type type = DUNXValue::TypeString;
    value.GetValueType(type);
    return type;
}

std::string typeName(const DUNXValue& value) {
    return DUNXValue::GetTypeName(typeOf(value));
}

// Calls the typed setter that matches the argument's type, or SetValue(const DUNXValue&)
// when `whole`.
DUNIResult setAs(DUNXOption& option, const DUNXValue& argument, bool whole) {
    int i = 0;
    double d = 0;
    bool b = false;
    DUNXString s;
    switch (whole ? DUNXValue::TypeUnknown : typeOf(argument)) {
    case DUNXValue::TypeInt:
        argument.GetValue(i);
        return option.SetValue(i);
    case DUNXValue::TypeDouble:
        argument.GetValue(d);
        return option.SetValue(d);
    case DUNXValue::TypeBool:
        argument.GetValue(b);
        return option.SetValue(b);
    case DUNXValue::TypeString:
        argument.GetValue(s);
        return option.SetValue(s);
    default:
        return option.SetValue(argument);
    }
}

// Reads `option` through the getter of the requested type; `read` receives what it gave.
DUNIResult readAs(const DUNXOption& option, Type requested, DUNXValue& read) {
    int i = 0;
    double d = 0;
    bool b = false;
    DUNXString s;
    const DUNIResult result = requested == DUNXValue::TypeInt      ? option.GetValue(i)
                              : requested == DUNXValue::TypeDouble ? option.GetValue(d)
                              : requested == DUNXValue::TypeBool   ? option.GetValue(b)
                                                                   : option.GetValue(s);
    read = requested == DUNXValue::TypeInt      ? DUNXValue(i)
           : requested == DUNXValue::TypeDouble ? DUNXValue(d)
           : requested == DUNXValue::TypeBool   ? DUNXValue(b)
                                                : DUNXValue(s);
    return result;
}

} // namespace

TEST(DUNXValue, GettersConvertBetweenTypes) {
    struct Case {
        DUNXValue value;
        int asInt;
        bool asBool;
        double asDouble;
        const char* asText;
    };
    const Case cases[] = {
        {DUNXValue(2.7), 1, true, 2.7, "2.7"},    // a truth test, not a truncation
        {DUNXValue(0.25), 1, true, 0.25, "0.25"}, // the shortest text that reads back
        {DUNXValue(std::nan("")), 1, true, std::nan(""), "nan"}, // NaN is not zero either
        {DUNXValue(0.0), 0, false, 0.0, "0"},
        {DUNXValue(-3), -3, true, -3.0, "-3"},
        {DUNXValue(0), 0, false, 0.0, "0"},
        {DUNXValue(true), 1, true, 1.0, "True"},
        {DUNXValue(false), 0, false, 0.0, "False"},
        {DUNXValue("on"), 1, true, 1.0, "on"},
        {DUNXValue("OFF"), 0, false, 0.0, "OFF"},
        {DUNXValue("yEs"), 1, true, 1.0, "yEs"},
        {DUNXValue("onion"), 0, false, 0.0, "onion"}, // a word must match whole
        {DUNXValue("2"), 2, true, 2.0, "2"},
        {DUNXValue("abc"), 0, false, 0.0, "abc"},
        {DUNXValue("0.5"), 0, false, 0.5, "0.5"}, // bool goes through atoi, double through atof
        {DUNXValue("1e3"), 1, true, 1000.0, "1e3"},
        {DUNXValue(DUNXString("12abc")), 12, true, 12.0, "12abc"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.asText);
        int i = -99;
        bool b = !c.asBool;
        double d = -99.0;
        DUNXString s;
        // Success is 0, so the codes of all four getters or-ed together must be 0.
        EXPECT_EQ(long(c.value.GetValue(i)) | long(c.value.GetValue(b)) |
                      long(c.value.GetValue(d)) | long(c.value.GetValue(s)),
                  DUNI_S_SUCCESS);
        EXPECT_EQ(i, c.asInt);
        EXPECT_EQ(b, c.asBool);
        if (std::isnan(c.asDouble))
            continue; // the text of a NaN is left open
        EXPECT_EQ(d, c.asDouble);
        EXPECT_EQ(text(s), c.asText);
    }
}

TEST(DUNXValue, WithoutTypeEveryGetterFailsAndLeavesTheOutput) {
    const DUNXValue none;
    int i = 42;
    bool b = true;
    double d = 4.5;
    DUNXString s("keep");
    for (long result : {long(none.GetValue(i)), long(none.GetValue(b)), long(none.GetValue(d)),
                        long(none.GetValue(s))})
        EXPECT_EQ(result, DUNI_E_INVALID_ARGUMENT);
    EXPECT_TRUE(i == 42 && b && d == 4.5 && text(s) == "keep");
    EXPECT_FALSE(none.IsValid());
}

TEST(DUNXValue, EqualityNeedsTheSameTypeAndPayload) {
    const std::pair<DUNXValue, DUNXValue> equal[] = {{DUNXValue(3), DUNXValue(3)},
                                                     {DUNXValue(0.5), DUNXValue(0.5)},
                                                     {DUNXValue(false), DUNXValue(false)},
                                                     {DUNXValue("abc"), DUNXValue("abc")}};
    const std::pair<DUNXValue, DUNXValue> unequal[] = {
        {DUNXValue(3), DUNXValue(4)},
        {DUNXValue(1), DUNXValue(1.0)},
        {DUNXValue(1), DUNXValue(true)},
        {DUNXValue(1), DUNXValue("1")},
        {DUNXValue(0.1 + 0.2), DUNXValue(0.3)}, // doubles compare exactly
        {DUNXValue("abc"), DUNXValue("ABC")},
        {DUNXValue(DUNXString()), DUNXValue("")},
        {DUNXValue(), DUNXValue()}};
    for (const auto& [a, b] : equal)
        EXPECT_TRUE(a == b && b == a) << typeName(a);
    for (const auto& [a, b] : unequal)
        EXPECT_FALSE(a == b || b == a) << typeName(a) << " " << typeName(b);
}

TEST(DUNXValue, HashIsThomasWangsMixOfTheNumberOrTheTextHashCode) {
    // Worked by hand: 0 becomes ~0, which an arithmetic shift xors back to 0, twice.
    EXPECT_EQ(DUNXValue::GetHashCode(0), 0u);
    for (int key : {1, -1, 123456, INT_MAX, INT_MIN})
        EXPECT_EQ(DUNXValue::GetHashCode(key), wangMix(key)) << key;
    EXPECT_EQ(DUNXValue("ab").GetHashCode(), 97u * 33u + 98u); // the text's own hashCode
    EXPECT_EQ(DUNXValue().GetHashCode(), 0u);
    const std::pair<DUNXValue, int> numbers[] = {
        {DUNXValue(true), 1},  {DUNXValue(-7), -7},          {DUNXValue(2.9), 2},
        {DUNXValue(-2.9), -2}, {DUNXValue(4294967298.0), 2}, // 2^32 + 2: the low 32 bits
    };
    for (const auto& [value, key] : numbers)
        EXPECT_EQ(value.GetHashCode(), wangMix(key)) << typeName(value) << " " << key;
}

TEST(DUNXValue, ConversionToTextWritesTheCurrentValue) {
    DUNXValue value("abc");
    const DUNXValue copy(value);
    EXPECT_EQ(long(value.SetValue(12)), DUNI_S_SUCCESS);
    EXPECT_TRUE(value.IsInteger());
    EXPECT_STREQ(static_cast<const char*>(value), "12");
    for (double exact : {1.0 / 3, 0.1 + 0.2, DBL_MAX, 5e-324}) {
        value.SetValue(exact);
        EXPECT_EQ(std::strtod(static_cast<const char*>(value), nullptr), exact);
    }
    value.SetValue(false);
    EXPECT_TRUE(DUNXString(static_cast<const unsigned short*>(value)).equals("False"));
    EXPECT_TRUE(copy == DUNXValue("abc")); // the copy kept its own text
    DUNXValue none;
    EXPECT_EQ(static_cast<const char*>(none), nullptr);
}

TEST(DUNXOptionName, ConvertsBackToTheSameNarrowText) {
    dunx::test::ScopedLocale utf8("C.UTF-8");
    ASSERT_TRUE(utf8.isSet());
    for (const char* key : {"SewTolerance", "", "Gr\xC3\xB6\xC3\x9F"}) {
        DUNXOptionName copy("other");
        copy = DUNXOptionName(DUNXOptionName(key));
        EXPECT_STREQ(static_cast<const char*>(copy), key);
        EXPECT_TRUE(static_cast<DUNXString>(copy).equals(DUNXString(key))) << key;
    }
}

TEST(DUNXOption, WithoutValueAnswersNoValueSilently) {
    DUNXOption option;
    option.ChangeName("OptValEmpty");
    EventRecorder recorder;
    DUNXString name("keep"), s("keep");
    bool isPrivate = true;
    Type type = DUNXValue::TypeDouble;
    int i = 42;
    DUNXValue read;
    for (long result : {long(option.GetName(name)), long(option.IsPrivate(isPrivate)),
                        long(option.GetValueType(type)), long(option.GetValue(i)),
                        long(option.GetValue(s)), long(readAs(option, DUNXValue::TypeDouble, read)),
                        long(readAs(option, DUNXValue::TypeBool, read))})
        EXPECT_EQ(result, DUNI_E_NO_VALUE);
    EXPECT_TRUE(text(name) == "keep" && text(s) == "keep" && isPrivate && i == 42);
    EXPECT_EQ(type, DUNXValue::TypeDouble);
    EXPECT_EQ(describe(recorder), "");
}

TEST(DUNXOption, ReadsConvertAndAreTracedInTheRequestedType) {
    const DUNXOptionName name("OptValTrace");
    struct Case {
        DUNXOption option;
        Type requested;
        DUNXValue expected;
        const char* shown;
    };
    const Case cases[] = {
        {DUNXOption(name, 42), DUNXValue::TypeInt, DUNXValue(42), "42"},
        {DUNXOption(name, 7), DUNXValue::TypeDouble, DUNXValue(7.0), "7.000000"},
        {DUNXOption(name, 0.5), DUNXValue::TypeInt, DUNXValue(1), "1"},
        {DUNXOption(name, "on"), DUNXValue::TypeBool, DUNXValue(true), "TRUE"},
        {DUNXOption(name, "ab"), DUNXValue::TypeInt, DUNXValue(0), "0"},
        {DUNXOption(name, true), DUNXValue::TypeString, DUNXValue("True"), "True"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.shown);
        EventRecorder recorder;
        DUNXValue read;
        EXPECT_EQ(long(readAs(c.option, c.requested, read)), DUNI_S_SUCCESS);
        EXPECT_TRUE(read == c.expected);
        EXPECT_EQ(describe(recorder), "DUNXDebugEvent/10: DUNXOption::GetValue('OptValTrace'): " +
                                          std::string(c.shown) + "\n");
    }
}

TEST(DUNXOption, SettersFollowTheStoredType) {
    struct Case {
        DUNXValue stored, argument;
        bool whole;      // through SetValue(const DUNXValue&) rather than the typed setter
        DUNXValue after; // no type: refused, and the option must stay as it was
    };
    const Case cases[] = {
        {DUNXValue(1), DUNXValue(5), false, DUNXValue(5)},
        {DUNXValue(1), DUNXValue(2.5), false, {}},
        {DUNXValue(1), DUNXValue(true), false, {}},
        {DUNXValue(1), DUNXValue(), true, {}},
        {DUNXValue(1.5), DUNXValue(2.5), false, DUNXValue(2.5)},
        {DUNXValue(1.5), DUNXValue(3), false, {}},
        {DUNXValue(false), DUNXValue(5), false, DUNXValue(true)},
        {DUNXValue(true), DUNXValue(0), false, DUNXValue(false)},
        {DUNXValue(false), DUNXValue(3), true, DUNXValue(true)},
        {DUNXValue(false), DUNXValue("true"), false, {}},
        {DUNXValue("s"), DUNXValue("u"), true, DUNXValue("u")},
        {DUNXValue("s"), DUNXValue(1.0), true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(typeName(c.stored) + " <- " + typeName(c.argument) +
                     (c.whole ? " whole" : ""));
        DUNXOption option(DUNXOptionName("OptValSet"), c.stored);
        EventRecorder quiet; // the refusal messages have tests of their own
        const bool accepted = c.after.IsValid();
        EXPECT_EQ(long(setAs(option, c.argument, c.whole)),
                  accepted ? DUNI_S_SUCCESS : DUNI_E_ERROR);
        DUNXValue current, byDefault;
        Type type = DUNXValue::TypeUnknown;
        option.GetValue(current);
        option.GetDefaultValue(byDefault);
        option.GetValueType(type);
        EXPECT_TRUE(current == (accepted ? c.after : c.stored));
        EXPECT_TRUE(byDefault == c.stored); // the default stays while the current changes
        EXPECT_EQ(type, typeOf(c.stored));
    }
}

TEST(DUNXOption, FirstValueFixesTheTypeForGood) {
    DUNXOption option, literal(DUNXOptionName("OptValLiteral"), "yes");
    EventRecorder quiet;
    EXPECT_EQ(long(option.SetValue(DUNXValue())), DUNI_S_SUCCESS); // still without value
    EXPECT_EQ(long(option.SetValue(3)), DUNI_S_SUCCESS);
    EXPECT_EQ(long(option.SetValue(true)), DUNI_E_ERROR);
    EXPECT_EQ(long(option.SetValue(9)), DUNI_S_SUCCESS);
    int current = 0, byDefault = 0;
    option.GetValue(current);
    option.GetDefaultValue(byDefault);
    EXPECT_EQ(current, 9);
    EXPECT_EQ(byDefault, 3);
    Type type = DUNXValue::TypeUnknown;
    literal.GetValueType(type);
    EXPECT_EQ(type, DUNXValue::TypeString); // a text literal never becomes a bool
}

TEST(DUNXOption, RefusalIsAWarningFromTheIntSetterOnly) {
    const std::string warning = "DUNXWarningEvent/50: Warning : ",
                      error = "DUNXErrorEvent/80: Error : ";
    struct Case {
        DUNXValue argument;
        bool whole;
        std::string channel;
    };
    const Case cases[] = {{DUNXValue(3), false, warning}, {DUNXValue(true), false, error},
                          {DUNXValue("x"), false, error}, {DUNXValue(3), true, error},
                          {DUNXValue("x"), true, error},  {DUNXValue(), true, error}};
    for (const Case& c : cases) {
        SCOPED_TRACE(typeName(c.argument) + (c.whole ? " whole" : ""));
        DUNXOption option(DUNXOptionName("OptValRefused"), 1.5);
        EventRecorder recorder;
        setAs(option, c.argument, c.whole);
        EXPECT_EQ(describe(recorder), c.channel + "DUNXOption::SetValue: Specified type (" +
                                          typeName(c.argument) +
                                          ") doesn't match stored type (double) for option "
                                          "'OptValRefused'.\n");
    }
}

TEST(DUNXOption, RefusalMessageClipsTheNameAt256Characters) {
    std::string longName;
    while (longName.size() < 300)
        longName += "0123456789";
    DUNXOption option(DUNXOptionName(longName.c_str()), 1);
    EventRecorder recorder;
    option.SetValue(true);
    EXPECT_EQ(describe(recorder), "DUNXErrorEvent/80: Error : DUNXOption::SetValue: Specified type "
                                  "(bool) doesn't match stored type (int) for option '" +
                                      longName.substr(0, 256) + "'.\n");
}

namespace {

template <class T> struct OverrideCase {
    const char* variable; // null: not set
    T expected;
    const char* shown; // the value as the warning prints it; null: not taken
};

template <class T> const T& plain(const T& value) {
    return value;
}
std::string plain(const DUNXString& value) {
    return text(value);
}

// Reads `option` with the environment flag under each variable text. A taken override is
// announced by one warning and nothing else; otherwise the stored value is read and traced.
template <class T>
void expectOverrides(const DUNXOption& option, const std::vector<OverrideCase<T>>& cases) {
    const std::string variableName = "DUNX" + text(option.GetNameText());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.variable ? c.variable : "<not set>");
        ScopedEnvironmentVariable variable(variableName.c_str(), c.variable);
        EventRecorder recorder;
        T value{};
        EXPECT_EQ(long(option.GetValue(value, true)), DUNI_S_SUCCESS);
        EXPECT_EQ(plain(value), plain(c.expected));
        if (c.shown)
            EXPECT_EQ(describe(recorder), "DUNXWarningEvent/50: Warning : " + variableName +
                                              " value overridden to " + c.shown +
                                              " by environment variable\n");
        else
            EXPECT_EQ(describe(recorder).rfind("DUNXDebugEvent/10: DUNXOption::GetValue(", 0), 0u);
    }
}

} // namespace

TEST(DUNXOption, EnvironmentOverridesAnIntUnlessItReadsAsAnAccidentalZero) {
    const DUNXOption option(DUNXOptionName("OptValEnvInt"), 5);
    expectOverrides<int>(option, {{"-7", -7, "-7"},
                                  {"0", 0, "0"},
                                  {"3x", 3, "3"},
                                  {"00", 5, nullptr},
                                  {"0.0", 5, nullptr},
                                  {"x", 5, nullptr},
                                  {nullptr, 5, nullptr}});
}

TEST(DUNXOption, EnvironmentOverridesADoubleUnlessItReadsAsAnAccidentalZero) {
    const DUNXOption option(DUNXOptionName("OptValEnvDouble"), 1.5);
    expectOverrides<double>(option, {{"2.5", 2.5, "    2.5"},
                                     {"1234.5", 1234.5, "1.23e+03"},
                                     {"0", 0.0, "      0"},
                                     {"0.0", 1.5, nullptr},
                                     {"0e0", 1.5, nullptr},
                                     {"x", 1.5, nullptr},
                                     {nullptr, 1.5, nullptr}});
}

TEST(DUNXOption, EnvironmentOverridesABoolOrAStringWithAnyText) {
    // A set text that is none of the words reads as false, and is still taken.
    const DUNXOption flag(DUNXOptionName("OptValEnvBool"), true);
    expectOverrides<bool>(flag, {{"off", false, "false"},
                                 {"maybe", false, "false"},
                                 {"On", true, "true"},
                                 {nullptr, true, nullptr}});
    const DUNXOption words(DUNXOptionName("OptValEnvText"), "stored");
    expectOverrides<DUNXString>(words, {{"fromEnv", DUNXString("fromEnv"), "fromEnv"},
                                        {nullptr, DUNXString("stored"), nullptr}});
}

TEST(DUNXOption, EnvironmentIsReadOnlyWhenAsked) {
    ScopedEnvironmentVariable variable("DUNXOptValAsked", "7");
    DUNXOption option(DUNXOptionName("OptValAsked"), 5), empty;
    EventRecorder quiet;
    int value = 0;
    option.GetValue(value, false);
    EXPECT_EQ(value, 5);
    // The variable is consulted before the option is found to have no value.
    empty.ChangeName("OptValAsked");
    EXPECT_EQ(long(empty.GetValue(value, true)), DUNI_S_SUCCESS);
    EXPECT_EQ(value, 7);
}

TEST(DUNXOptionsArray, CopiesHoldIndependentOptionsWithEveryField) {
    DUNXOptionsArray options;
    options.Add(DUNXOption(DUNXOptionName("OptValCopy"), 1, true));
    options[0].SetValue(2);
    DUNXOptionsArray copy(options), assigned;
    assigned = options;
    copy[0].SetValue(10);
    for (const DUNXOption& option : {copy[0], assigned[0]}) {
        DUNXString name;
        bool isPrivate = false;
        DUNXValue byDefault;
        option.GetName(name);
        option.IsPrivate(isPrivate);
        option.GetDefaultValue(byDefault);
        EXPECT_TRUE(text(name) == "OptValCopy" && isPrivate && byDefault == DUNXValue(1));
    }
    int values[3] = {};
    options[0].GetValue(values[0]);
    copy[0].GetValue(values[1]);
    assigned[0].GetValue(values[2]);
    EXPECT_EQ(std::vector<int>(values, values + 3), (std::vector<int>{2, 10, 2}));
}

#include <dunx/DUNXOption.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <tuple>

using dunx::test::EventRecorder;

namespace {

using V = DUNXValue;

// Thomas Wang's mix written out independently: right shifts copy the sign bit by hand.
unsigned mix(int key) {
    auto sar = [](unsigned k, int n) { return (k >> n) | (k >> 31 ? ~(~0u >> n) : 0u); };
    unsigned k = static_cast<unsigned>(key);
    k += ~(k << 15);
    k ^= sar(k, 10);
    k *= 9u;
    k ^= sar(k, 6);
    k += ~(k << 11);
    return k ^ sar(k, 16);
}

std::string typeName(const V& value) {
    DUNXValue::DUNXValueType type = V::TypeString;
    value.GetValueType(type);
    return V::GetTypeName(type);
}

// Reads `option` through its getter for T, as text; `result` receives the getter's answer.
template <class T> std::string read(const DUNXOption& option, long& result, bool useEnvironment) {
    T out{};
    DUNXString shown;
    result = option.GetValue(out, useEnvironment);
    V(out).GetValue(shown);
    const char* narrow = shown;
    return narrow ? narrow : "<null>";
}

// The typed setter matching the argument's type, or SetValue(const DUNXValue&) when `whole`.
DUNIResult setAs(DUNXOption& option, const V& v, bool whole) {
    auto typed = [&](auto out) {
        v.GetValue(out);
        return option.SetValue(out);
    };
    const std::string type = whole ? "" : typeName(v);
    return type == "int"      ? typed(0)
           : type == "double" ? typed(0.0)
           : type == "bool"   ? typed(false)
           : type == "string" ? typed(DUNXString())
                              : option.SetValue(v);
}

} // namespace

TEST(DUNXValue, GettersAndTextConvertBetweenTypes) {
    // A double reads as int through a truth test; a text through the words, else atoi (atof).
    const std::tuple<V, int, double, const char*> cases[] = {
        {V(2.7), 1, 2.7, "2.7"},   {V(0.25), 1, 0.25, "0.25"},  {V(std::nan("")), 1, NAN, ""},
        {V(0.0), 0, 0.0, "0"},     {V(-3), -3, -3.0, "-3"},     {V(0), 0, 0.0, "0"},
        {V(true), 1, 1.0, "True"}, {V(false), 0, 0.0, "False"}, {V("on"), 1, 1.0, "on"},
        {V("OFF"), 0, 0.0, "OFF"}, {V("yEs"), 1, 1.0, "yEs"},   {V("onion"), 0, 0.0, "onion"},
        {V("2"), 2, 2.0, "2"},     {V("abc"), 0, 0.0, "abc"},   {V("0.5"), 0, 0.5, "0.5"}};
    for (const auto& [value, asInt, asDouble, asText] : cases) {
        auto [i, b, d, s] = std::tuple<int, bool, double, DUNXString>{-99, asInt == 0, -99.0, {}};
        EXPECT_EQ(value.GetValue(i) | value.GetValue(b) | value.GetValue(d) | value.GetValue(s), 0);
        EXPECT_TRUE(i == asInt && b == (asInt != 0)) << asText << ": " << i << " " << b;
        EXPECT_TRUE(std::isnan(asDouble) || (d == asDouble && s.equals(asText))) << asText << d;
    }
    V value("abc");
    for (double exact : {1.0 / 3, 0.1 + 0.2, 1e308, 5e-324}) { // the text is written afresh
        value.SetValue(exact);
        EXPECT_EQ(std::strtod(static_cast<const char*>(value), nullptr), exact);
    }
    value.SetValue(false);
    EXPECT_TRUE(DUNXString(static_cast<const unsigned short*>(value)).equals("False"));
    int asInt = 0;
    EXPECT_EQ(value.SetValue(-7), DUNI_S_SUCCESS);
    EXPECT_TRUE(value.IsInteger() && value.GetValue(asInt) == DUNI_S_SUCCESS && asInt == -7);
    EXPECT_STREQ(static_cast<const char*>(value), "-7");
}

TEST(DUNXValue, EqualityNeedsTypeAndPayloadAndHashIsWangsMixOrTheTextHash) {
    const std::tuple<V, V, int> cases[] = {
        {V(3), V(3), 1},   {V(0.5), V(0.5), 1},       {V(false), V(false), 1}, {V("a"), V("a"), 1},
        {V(3), V(4), 0},   {V(true), V(false), 0},    {V(1), V(true), 0},      {V(1), V(1.0), 0},
        {V(1), V("1"), 0}, {V(0.1 + 0.2), V(0.3), 0}, {V("a"), V("A"), 0},     {V(), V(), 0}};
    for (const auto& [a, b, equal] : cases)
        EXPECT_TRUE((a == b) == bool(equal) && (b == a) == bool(equal)) << typeName(a);
    // Worked by hand: 0 becomes ~0, which an arithmetic shift xors back to 0, twice; a text
    // hashes as the string does; a value without type hashes to 0 and converts to nothing.
    EXPECT_TRUE(V(0).GetHashCode() == 0 && V("ab").GetHashCode() == 97u * 33u + 98u);
    int i = 42;
    EXPECT_TRUE(V().GetHashCode() == 0 && V().GetValue(i) == DUNI_E_INVALID_ARGUMENT && i == 42 &&
                static_cast<const char*>(V()) == nullptr);
    const int big = 0x7fffffff;
    const std::pair<V, int> numbers[] = {
        {V(1), 1},    {V(-1), -1},   {V(big), big},       {V(-big - 1), -big - 1},
        {V(true), 1}, {V(-2.9), -2}, {V(4294967298.0), 2}}; // 2^32 + 2: the low 32 bits
    for (const auto& [value, key] : numbers)
        EXPECT_TRUE(value.GetHashCode() == mix(key) && V::GetHashCode(key) == mix(key)) << key;
}

TEST(DUNXOption, SettersFollowTheTypeOfTheFirstValueForGood) {
    // Stored, argument, value after (no type: refused, the option stays as it was). The typed
    // setters and SetValue(const DUNXValue&) agree, but only the int setter warns on refusal.
    const std::tuple<V, V, V> cases[] = {
        {V(), V(3), V(3)},         {V(), V(true), V(true)},    {V(), V(2.5), V(2.5)},
        {V(), V("a"), V("a")},     {V(1), V(5), V(5)},         {V(1), V(2.5), V()},
        {V(1), V(true), V()},      {V(1), V(), V()},           {V(1.5), V(2.5), V(2.5)},
        {V(1.5), V(3), V()},       {V(1.5), V("x"), V()},      {V(false), V(5), V(true)},
        {V(true), V(0), V(false)}, {V(false), V("true"), V()}, {V("s"), V("u"), V("u")},
        {V("s"), V(1.0), V()}};
    const std::string name = std::string(256, 'n') + "beyond"; // messages keep 256 characters
    for (std::size_t n = 0; n < 2 * (sizeof cases / sizeof *cases); ++n) {
        const auto& [stored, argument, after] = cases[n / 2];
        const bool whole = n % 2; // through SetValue(const DUNXValue&)
        const std::string given = typeName(argument), was = typeName(stored);
        SCOPED_TRACE(was + " <- " + given + (whole ? " whole" : ""));
        DUNXOption option(DUNXOptionName(name.c_str()), stored, whole); // either private flag
        EventRecorder recorder;
        EXPECT_EQ(setAs(option, argument, whole), after.IsValid() ? DUNI_S_SUCCESS : DUNI_E_ERROR);
        V now, base; // the current and the default value
        EXPECT_TRUE(option.GetValue(now) == 0 && now == (after.IsValid() ? after : stored));
        EXPECT_TRUE(option.GetDefaultValue(base) == 0 &&
                    base == (stored.IsValid() ? stored : after));
        const std::string refusal =
            std::string(!whole && argument.IsInteger() ? "Warning" : "Error") +
            " : DUNXOption::SetValue: Specified type (" + given + ") doesn't match stored type (" +
            was + ") for option '" + std::string(256, 'n') + "'.\n";
        EXPECT_EQ(recorder.texts(), after.IsValid() ? "" : refusal);
        bool isPrivate = !whole;
        EXPECT_TRUE(option.IsPrivate(isPrivate) == 0 && isPrivate == whole);
        V::DUNXValueType type = V::TypeUnknown;
        EXPECT_TRUE(option.GetValueType(type) == 0 && V::GetTypeName(type) == typeName(base));
    }
    V::DUNXValueType type = V::TypeInt;
    EXPECT_EQ(long(DUNXOption().GetValueType(type)), DUNI_E_NO_VALUE);
}

TEST(DUNXOption, EnvironmentOverridesTheStoredValueWhenAskedAndAccepted) {
    const DUNXOptionName name("OptValEnv");
    DUNXOption options[] = {DUNXOption(name, 5), DUNXOption(name, 1.5), DUNXOption(name, true),
                            DUNXOption(name, "s"), DUNXOption()};
    options[4].ChangeName("OptValEnv");
    const decltype(&read<int>) readers[] = {read<int>, read<double>, read<bool>, read<DUNXString>};
    // "type|variable|read|event" (I: int, not asked; n: int without value; ~: unset). An int or
    // double is taken if non-zero or exactly "0", a bool or text whenever set: W warns, T traces.
    for (const std::string row :
         {"i|-7|-7|W-7", "i|0|0|W0", "i|3x|3|W3", "i|00|5|T5", "I|7|5|T5", "d|2.5|2.5|W    2.5",
          "d|1234.5|1234.5|W1.23e+03", "d|0|0|W      0", "d|0.0|1.5|T1.500000",
          "b|off|False|Wfalse", "b|On|True|Wtrue", "b|~|True|TTRUE", "s|env|env|Wenv", "s|~|s|Ts",
          "n|7|7|W7", "n|~|0|N"}) {
        SCOPED_TRACE(row);
        char set[16], expected[16], event[16];
        std::sscanf(row.c_str(), "%*c|%15[^|]|%15[^|]|%15[^\n]", set, expected, event);
        dunx::test::ScopedEnvironmentVariable scoped("DUNXOptValEnv", *set == '~' ? nullptr : set);
        EventRecorder recorder;
        long result = -1;
        const std::size_t k = std::string("idbsn").find(char(std::tolower(row[0])));
        EXPECT_EQ(readers[k % 4](options[k], result, std::islower(row[0])), expected);
        EXPECT_EQ(result, *event == 'N' ? DUNI_E_NO_VALUE : DUNI_S_SUCCESS);
        EXPECT_EQ(recorder.texts(),
                  *event == 'N' ? ""
                  : *event == 'W'
                      ? "Warning : DUNXOptValEnv value overridden to " + std::string(event + 1) +
                            " by environment variable\n"
                      : "DUNXOption::GetValue('OptValEnv'): " + std::string(event + 1) + "\n");
    }
    V value; // the other questions to an option without value answer "no value" as well
    bool isPrivate = false;
    EXPECT_TRUE(options[4].GetValue(value) == DUNI_E_NO_VALUE &&
                options[4].IsPrivate(isPrivate) == DUNI_E_NO_VALUE);
}

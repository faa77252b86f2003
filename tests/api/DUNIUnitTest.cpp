#include <dunx/DUNIUnit.h>
#include <dunx/DUNIValue.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(DUNIUnit, ParsesWholeTextsIgnoringCaseAndNamesEveryUnit) {
    const struct {
        const char* text;
        int unit;
    } parsed[] = {
        {"nanometer", 2},  {"NM", 2},          {"model", 1},      {"Model Unit", 1},
        {"micrometer", 3}, {"micr", 3},        {"MILLIMETER", 4}, {"mm", 4},
        {"Millimeter", 4}, {"centimeter", 5},  {"cm", 5},         {"decimeter", 6},
        {"deci", 6},       {"meter", 7},       {"M", 7},          {"inch", 8},
        {"in", 8},         {"foot", 9},        {"ft", 9},         {"mile", 10},
        {"kilometer", 11}, {"km", 11},         {"milliinch", 12}, {"microinch", 13},
        {" mm", 0},        {"mm ", 0},         {"millimetre", 0}, {"meters", 0},
        {"mil", 0},        {"mi", 0},          {"unknown", 0},    {"", 0},
        {"micron", 0},     {"model  unit", 0}, {nullptr, 0},
    };
    for (const auto& row : parsed) {
        SCOPED_TRACE(row.text ? row.text : "<null>");
        const DUNIUnit unit(row.text);
        EXPECT_EQ(static_cast<DUNIUnitValue>(unit), row.unit);
        EXPECT_TRUE(unit.IsValid()) << "an unknown unit is still a unit";
    }
    const char* names[] = {"unknown",    "model",     "nanometer", "micrometer", "millimeter",
                           "centimeter", "decimeter", "meter",     "inch",       "foot",
                           "mile",       "kilometer", "milliinch", "microinch"};
    const char* upper[] = {"UNKNOWN",    "MODEL UNIT", "NANOMETER", "MICROMETER", "MILLIMETER",
                           "CENTIMETER", "DECIMETER",  "METER",     "INCH",       "FOOT",
                           "MILE",       "KM",         "MILLIINCH", "MICROINCH"};
    for (int value = 0; value < 14; ++value) {
        SCOPED_TRACE(value);
        const DUNIUnit unit(static_cast<DUNIUnitValue>(value));
        EXPECT_STREQ(static_cast<const char*>(unit), names[value]);
        DUNXString text;
        DUNXUnitValue::GetUnitAsString(static_cast<DUNXUnit>(value), text);
        EXPECT_STREQ(static_cast<const char*>(text), upper[value]);
    }
    DUNXString kept("kept");
    DUNXUnitValue::GetUnitAsString(static_cast<DUNXUnit>(14), kept);
    DUNXUnitValue::GetUnitAsString(static_cast<DUNXUnit>(-1), kept);
    EXPECT_STREQ(static_cast<const char*>(kept), "kept");
    EXPECT_EQ(static_cast<const char*>(DUNIUnit(static_cast<DUNIUnitValue>(14))), nullptr);

    DUNIUnit invalid;
    EXPECT_FALSE(invalid.IsValid());
    EXPECT_STREQ(static_cast<const char*>(invalid), "Unknown");
    EXPECT_EQ(static_cast<DUNIUnitValue>(invalid), DUNIUnitUnknown);
    const DUNIUnit inch("in");
    invalid = inch; // shares, counted
    static_cast<DUNIUnitImpl*>(inch.GetData())->SetUnit(DUNIUnitFoot);
    DUNIUnitValue value = DUNIUnitUnknown;
    static_cast<DUNIUnitImpl*>(invalid.GetData())->GetUnit(value);
    EXPECT_EQ(value, DUNIUnitFoot);
}

TEST(DUNXUnitValue, StartsWithModelUnitsForTheApplicationAndWritingOnly) {
    EXPECT_EQ(DUNXUnitValue::GetApplicationUnit(), DUNIUnitModel);
    EXPECT_EQ(DUNXUnitValue::GetWriteUnit(), DUNIUnitModel);
    EXPECT_EQ(DUNXUnitValue::GetReadUnit(), DUNIUnitUnknown);
    EXPECT_EQ(DUNXUnitValue::GetUnitWhenUnspecified(), DUNIUnitUnknown);
    DUNXUnitValue::SetApplicationUnit(DUNIUnitInch);
    DUNXUnitValue::SetWriteUnit(DUNIUnitMeter);
    DUNXUnitValue::SetReadUnit(DUNIUnitFoot);
    DUNXUnitValue::SetUnitWhenUnspecified(DUNIUnitMillimeter);
    EXPECT_TRUE(UserApplicationUnit == DUNIUnitInch && UserWriteUnit == DUNIUnitMeter);
    EXPECT_TRUE(DUNXUnitValue::GetReadUnit() == DUNIUnitFoot &&
                DUNXUnitValue::GetUnitWhenUnspecified() == DUNIUnitMillimeter);
    UserWriteUnit = DUNIUnitMile; // the global is the setting
    EXPECT_EQ(DUNXUnitValue::GetWriteUnit(), DUNIUnitMile);
    DUNXUnitValue::SetApplicationUnit(DUNIUnitModel);
    DUNXUnitValue::SetWriteUnit(DUNIUnitModel);
    DUNXUnitValue::SetReadUnit(DUNIUnitUnknown);
    DUNXUnitValue::SetUnitWhenUnspecified(DUNIUnitUnknown);
}

TEST(Gk_Unit, ConvertsLengthsByTheirExactSizes) {
    const auto in = [](DUNXUnit from, double value, DUNXUnit to) {
        return Gk_Unit::ForLength(from).ConvertTo(value, Gk_Unit::ForLength(to));
    };
    // Known sizes: 1 in = 25.4 mm exactly, 1 ft = 12 in, 1 mile = 5280 ft,
    // 1 m = 1000 mm, 1 um = 0.001 mm, 1 km = 1000 m, 1 thou = 0.001 in.
    EXPECT_EQ(in(DUNIUnitInch, 1.0, DUNIUnitMillimeter), 25.4);
    EXPECT_EQ(in(DUNIUnitInch, 2.0, DUNIUnitMillimeter), 50.8);
    EXPECT_EQ(in(DUNIUnitMillimeter, 25.4, DUNIUnitInch), 1.0);
    EXPECT_EQ(in(DUNIUnitFoot, 1.0, DUNIUnitInch), 12.0);
    EXPECT_EQ(in(DUNIUnitMile, 1.0, DUNIUnitFoot), 5280.0);
    EXPECT_EQ(in(DUNIUnitMeter, 1.0, DUNIUnitMillimeter), 1000.0);
    EXPECT_EQ(in(DUNIUnitMicrometer, 1.0, DUNIUnitMillimeter), 0.001);
    EXPECT_EQ(in(DUNIUnitMillimeter, 1.0, DUNIUnitMicrometer), 1000.0);
    EXPECT_EQ(in(DUNIUnitKilometer, 1.0, DUNIUnitMeter), 1000.0);
    EXPECT_EQ(in(DUNIUnitNanometer, 1000.0, DUNIUnitMicrometer), 1.0);
    EXPECT_EQ(in(DUNIUnitCentimeter, 1.0, DUNIUnitDecimeter), 0.1);
    EXPECT_EQ(in(DUNIUnitMilliinch, 1000.0, DUNIUnitInch), 1.0);
    EXPECT_EQ(in(DUNIUnitMicroinch, 1.0, DUNIUnitMilliinch), 0.001);
    EXPECT_EQ(in(DUNIUnitModel, 3.0, DUNIUnitMeter), 3.0) << "an unset unit converts nothing";
    EXPECT_EQ(in(DUNIUnitMeter, 3.0, DUNIUnitUnknown), 3.0);
    for (const DUNXUnit sizeless : {DUNIUnitUnknown, DUNIUnitModel, static_cast<DUNXUnit>(99)})
        EXPECT_TRUE(Gk_Unit::ForLength(sizeless) == Gk_Unit()) << "not even named: " << sizeless;
    EXPECT_STREQ(Gk_Unit::ForLength(DUNIUnitKilometer).GetName(), "kilometer");

    const Gk_Unit unset, named("cubit", 457.2), copy(named);
    Gk_Unit assigned;
    assigned = named;
    EXPECT_TRUE(!unset.IsSet() && named.IsSet() && copy == named && assigned == named);
    EXPECT_FALSE(named == Gk_Unit("cubit", 457.3) || named == Gk_Unit("Cubit", 457.2) ||
                 unset == Gk_Unit(nullptr, 1.0));
    EXPECT_TRUE(unset == Gk_Unit() && unset == Gk_Unit(nullptr, 0.0));
    EXPECT_FALSE(Gk_Unit(nullptr, 1.0).IsSet() || Gk_Unit("x", 0.0).IsSet() ||
                 Gk_Unit("x", -1.0).IsSet());
    EXPECT_EQ(unset.GetName(), nullptr);
}

TEST(DUNIValue, ConvertsAsTheInternalValueAndReportsBoolsAsNone) {
    const unsigned short wide[] = {'4', '2', 0};
    const struct {
        DUNIValue value;
        int type, asInt;
        double asDouble;
        bool asBool;
        const char* asText;
    } rows[] = {
        {DUNIValue(7), 1, 7, 7.0, true, "7"},       {DUNIValue(2.5), 2, 1, 2.5, true, "2.5"},
        {DUNIValue(0.0), 2, 0, 0.0, false, "0"},    {DUNIValue(true), 0, 1, 1.0, true, "True"},
        {DUNIValue("12"), 3, 12, 12.0, true, "12"}, {DUNIValue("on"), 3, 1, 1.0, true, "on"},
        {DUNIValue(wide), 3, 42, 42.0, true, "42"}, {DUNIValue(), 0, 0, 0.0, false, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.value.GetType(), row.type);
        EXPECT_EQ(static_cast<int>(row.value), row.asInt);
        EXPECT_EQ(static_cast<double>(row.value), row.asDouble);
        EXPECT_EQ(static_cast<bool>(row.value), row.asBool);
        const char* text = row.value;
        EXPECT_TRUE(row.asText ? text && std::string(text) == row.asText : !text) << text;
        const unsigned short* units = row.value;
        EXPECT_TRUE(row.asText ? units && DUNXString(units).equals(row.asText) : !units);
    }
    DUNIValue gone(5);
    gone.SetData(nullptr);
    EXPECT_FALSE(gone.IsValid());
    EXPECT_TRUE(gone.GetType() == 0 && static_cast<int>(gone) == 0 && !static_cast<bool>(gone) &&
                static_cast<const char*>(gone) == nullptr);
    DUNIValue shared;
    shared = DUNIValue("text") = DUNIValue(3);
    EXPECT_EQ(static_cast<int>(shared), 3);
}

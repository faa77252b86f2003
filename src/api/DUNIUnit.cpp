#include <dunx/DUNIUnit.h>

#include "internal/Text.h"

#include <cmath>
#include <string>
#include <utility>

namespace {

struct UnitRow {
    DUNIUnitValue unit;
    const char* name;      // DUNIUnit's text
    const char* upperName; // DUNXUnitValue::GetUnitAsString
    double picometres;     // 0: no fixed size; whole numbers, so ratios round once
};

// Indexed by the unit's number.
const UnitRow kUnits[] = {
    {DUNIUnitUnknown, "unknown", "UNKNOWN", 0.0},
    {DUNIUnitModel, "model", "MODEL UNIT", 0.0},
    {DUNIUnitNanometer, "nanometer", "NANOMETER", 1e3},
    {DUNIUnitMicrometer, "micrometer", "MICROMETER", 1e6},
    {DUNIUnitMillimeter, "millimeter", "MILLIMETER", 1e9},
    {DUNIUnitCentimeter, "centimeter", "CENTIMETER", 1e10},
    {DUNIUnitDecimeter, "decimeter", "DECIMETER", 1e11},
    {DUNIUnitMeter, "meter", "METER", 1e12},
    {DUNIUnitInch, "inch", "INCH", 25400000000.0},
    {DUNIUnitFoot, "foot", "FOOT", 304800000000.0},
    {DUNIUnitMile, "mile", "MILE", 1609344000000000.0},
    {DUNIUnitKilometer, "kilometer", "KM", 1e15},
    {DUNIUnitMilliinch, "milliinch", "MILLIINCH", 25400000.0},
    {DUNIUnitMicroinch, "microinch", "MICROINCH", 25400.0},
};
constexpr int kUnitCount = sizeof kUnits / sizeof kUnits[0];

// The accepted texts in the order they are tried (the first match wins).
const std::pair<const char*, DUNIUnitValue> kParsed[] = {
    {"nanometer", DUNIUnitNanometer},
    {"nm", DUNIUnitNanometer},
    {"model", DUNIUnitModel},
    {"model unit", DUNIUnitModel},
    {"micrometer", DUNIUnitMicrometer},
    {"micr", DUNIUnitMicrometer},
    {"millimeter", DUNIUnitMillimeter},
    {"mm", DUNIUnitMillimeter},
    {"centimeter", DUNIUnitCentimeter},
    {"cm", DUNIUnitCentimeter},
    {"decimeter", DUNIUnitDecimeter},
    {"deci", DUNIUnitDecimeter},
    {"meter", DUNIUnitMeter},
    {"m", DUNIUnitMeter},
    {"inch", DUNIUnitInch},
    {"in", DUNIUnitInch},
    {"foot", DUNIUnitFoot},
    {"ft", DUNIUnitFoot},
    {"mile", DUNIUnitMile},
    {"kilometer", DUNIUnitKilometer},
    {"km", DUNIUnitKilometer},
    {"milliinch", DUNIUnitMilliinch},
    {"microinch", DUNIUnitMicroinch},
};

bool known(int unit) {
    return unit >= 0 && unit < kUnitCount;
}

DUNIUnitValue parse(const char* text) {
    if (!text)
        return DUNIUnitUnknown;
    const DUNXString name(text);
    for (const auto& [accepted, unit] : kParsed)
        if (name.equalsIgnoreCase(DUNXString(accepted)))
            return unit;
    return DUNIUnitUnknown;
}

DUNXUnit g_ReadUnit = DUNIUnitUnknown;
DUNXUnit g_UnitWhenUnspecified = DUNIUnitUnknown;

} // namespace

DUNXUnit UserApplicationUnit = DUNIUnitModel;
DUNXUnit UserWriteUnit = DUNIUnitModel;

// --- DUNIUnitImpl / DUNIUnit -----------------------------------------------------------

DUNIUnitImpl::DUNIUnitImpl(DUNIUnitValue unit) : DUNIObjectImpl("DUNIUnit"), m_Unit(unit) {}

DUNIUnitImpl::~DUNIUnitImpl() = default;

DUNIResult DUNIUnitImpl::SetUnit(DUNIUnitValue unit) {
    m_Unit = unit;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNIUnitImpl::GetUnit(DUNIUnitValue& unit) const {
    unit = m_Unit;
    return DUNI_S_SUCCESS;
}

DUNIUnit::DUNIUnit() : DUNIObject("DUNIUnit") {}

DUNIUnit::DUNIUnit(DUNIUnitValue unit) : DUNIObject("DUNIUnit") {
    SetData(new DUNIUnitImpl(unit));
}

DUNIUnit::DUNIUnit(const char* text) : DUNIUnit(parse(text)) {}

DUNIUnit& DUNIUnit::operator=(const DUNIUnit& other) = default;

DUNIUnit::~DUNIUnit() = default;

DUNIUnit::operator DUNIUnitValue() const {
    DUNIUnitValue unit = DUNIUnitUnknown;
    if (GetData())
        static_cast<const DUNIUnitImpl*>(GetImpl())->GetUnit(unit);
    return unit;
}

DUNIUnit::operator const char*() const {
    if (!IsValid())
        return "Unknown";
    const int unit = static_cast<DUNIUnitValue>(*this);
    return known(unit) ? kUnits[unit].name : nullptr;
}

// --- DUNXUnitValue -----------------------------------------------------------------

DUNXUnit DUNXUnitValue::GetReadUnit() {
    return g_ReadUnit;
}
void DUNXUnitValue::SetReadUnit(DUNXUnit unit) {
    g_ReadUnit = unit;
}
DUNXUnit DUNXUnitValue::GetApplicationUnit() {
    return UserApplicationUnit;
}
void DUNXUnitValue::SetApplicationUnit(DUNXUnit unit) {
    UserApplicationUnit = unit;
}
DUNXUnit DUNXUnitValue::GetWriteUnit() {
    return UserWriteUnit;
}
void DUNXUnitValue::SetWriteUnit(DUNXUnit unit) {
    UserWriteUnit = unit;
}
DUNXUnit DUNXUnitValue::GetUnitWhenUnspecified() {
    return g_UnitWhenUnspecified;
}
void DUNXUnitValue::SetUnitWhenUnspecified(DUNXUnit unit) {
    g_UnitWhenUnspecified = unit;
}

void DUNXUnitValue::GetUnitAsString(DUNXUnit unit, DUNXString& text) {
    if (known(unit))
        text = DUNXString(kUnits[unit].upperName);
}

// --- Gk_Unit -------------------------------------------------------------------------

Gk_Unit::Gk_Unit() = default;

Gk_Unit::Gk_Unit(const char* name, double factor)
    : m_Name(dunx::internal::CopyName(name)), m_Factor(factor) {}

Gk_Unit::Gk_Unit(const Gk_Unit& other)
    : m_Name(dunx::internal::CopyName(other.m_Name.get())), m_Factor(other.m_Factor) {}

Gk_Unit& Gk_Unit::operator=(const Gk_Unit& other) {
    if (this != &other) {
        m_Name = dunx::internal::CopyName(other.m_Name.get());
        m_Factor = other.m_Factor;
    }
    return *this;
}

Gk_Unit::~Gk_Unit() = default;

bool Gk_Unit::operator==(const Gk_Unit& other) const {
    const char* a = GetName();
    const char* b = other.GetName();
    const bool sameName = (!a && !b) || (a && b && std::string(a) == b);
    return sameName && m_Factor == other.m_Factor;
}

bool Gk_Unit::IsSet() const {
    return m_Name && std::isfinite(m_Factor) && m_Factor > 0.0;
}

double Gk_Unit::ConvertTo(double value, const Gk_Unit& target) const {
    if (!IsSet() || !target.IsSet())
        return value;
    return m_Factor == target.m_Factor ? value : value * m_Factor / target.m_Factor;
}

Gk_Unit Gk_Unit::ForLength(DUNXUnit unit) {
    if (!known(unit) || kUnits[unit].picometres == 0.0)
        return Gk_Unit();
    return Gk_Unit(kUnits[unit].name, kUnits[unit].picometres);
}

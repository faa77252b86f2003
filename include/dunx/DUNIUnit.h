// Length units: the public unit object, the process-wide unit settings and Gk_Unit.
#pragma once

#include <dunx/DUNIObject.h>
#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <memory>

/// The length units. The numbers are fixed: they are stored and exchanged.
enum DUNIUnitValue : int {
    DUNIUnitUnknown = 0,
    DUNIUnitModel = 1,
    DUNIUnitNanometer = 2,
    DUNIUnitMicrometer = 3,
    DUNIUnitMillimeter = 4,
    DUNIUnitCentimeter = 5,
    DUNIUnitDecimeter = 6,
    DUNIUnitMeter = 7,
    DUNIUnitInch = 8,
    DUNIUnitFoot = 9,
    DUNIUnitMile = 10,
    DUNIUnitKilometer = 11,
    DUNIUnitMilliinch = 12,
    DUNIUnitMicroinch = 13
};
/// The same enumeration under its internal name.
typedef DUNIUnitValue DUNXUnit;

/// The implementation of a unit: one `DUNIUnitValue`. Type name "DUNIUnit".
class DUNX_EXPORT DUNIUnitImpl : public DUNIObjectImpl {
public:
    explicit DUNIUnitImpl(DUNIUnitValue unit);
    ~DUNIUnitImpl() override;
    /// Replaces the unit; succeeds.
    DUNIResult SetUnit(DUNIUnitValue unit);
    /// Copies the unit into `unit`; succeeds.
    DUNIResult GetUnit(DUNIUnitValue& unit) const;

private:
    DUNIUnitValue m_Unit;
};

/// A length unit, named or parsed from text. Parsing ignores case and takes
/// the whole text (no blanks trimmed, no prefixes):
///
///     "MM", "Millimeter"        => 4 (millimeter)
///     " mm", "millimetre"       => 0 (unknown, still a valid object)
///     "km"                      => 11, printed "kilometer"
///
/// Accepted: nanometer nm, model "model unit", micrometer micr, millimeter mm,
/// centimeter cm, decimeter deci, meter m, inch in, foot ft, mile, kilometer
/// km, milliinch, microinch. Copy construction is uncounted (see `DUNIObject`).
class DUNX_EXPORT DUNIUnit : public DUNIObject {
public:
    /// A unit without implementation: converts to 0 and to "Unknown".
    DUNIUnit();
    /// The unit `unit`.
    DUNIUnit(DUNIUnitValue unit);
    /// The unit named by `text` (null or unknown text: 0, unknown).
    explicit DUNIUnit(const char* text);
    DUNIUnit(const DUNIUnit& other) = default;
    DUNIUnit& operator=(const DUNIUnit& other);
    ~DUNIUnit() override;

    /// The unit; 0 for a unit without implementation.
    operator DUNIUnitValue() const;
    /// The lower-case name ("millimeter", "unknown", ...); "Unknown" for a unit
    /// without implementation; null for a number outside 0..13.
    operator const char*() const;
};

/// The process-wide units of a translation. The application and write units
/// start as model unit (1), the read unit and the unit when unspecified as
/// unknown (0). Plain globals: set them before translations start.
class DUNX_EXPORT DUNXUnitValue {
public:
    static DUNXUnit GetReadUnit();
    static void SetReadUnit(DUNXUnit unit);
    /// Also visible as the global `UserApplicationUnit`.
    static DUNXUnit GetApplicationUnit();
    static void SetApplicationUnit(DUNXUnit unit);
    /// Also visible as the global `UserWriteUnit`.
    static DUNXUnit GetWriteUnit();
    static void SetWriteUnit(DUNXUnit unit);
    static DUNXUnit GetUnitWhenUnspecified();
    static void SetUnitWhenUnspecified(DUNXUnit unit);
    /// The upper-case name of `unit` ("MILLIMETER", "MODEL UNIT", "KM", ...);
    /// a number outside 0..13 leaves `text` unchanged.
    static void GetUnitAsString(DUNXUnit unit, DUNXString& text);

private:
    DUNXUnitValue() = delete;
};

/// The application unit of `DUNXUnitValue`.
extern DUNX_EXPORT DUNXUnit UserApplicationUnit;
/// The write unit of `DUNXUnitValue`.
extern DUNX_EXPORT DUNXUnit UserWriteUnit;

/// A named unit with a factor: the unit's size in a base shared by the units
/// converted between. `ForLength` uses picometres, in which every length unit
/// is a whole number, so that a conversion rounds once:
///
///     Gk_Unit inch = Gk_Unit::ForLength(DUNIUnitInch);   // ("inch", 25400000000)
///     inch.ConvertTo(2.0, Gk_Unit::ForLength(DUNIUnitMillimeter))   // => 50.8
///     Gk_Unit::ForLength(DUNIUnitFoot).ConvertTo(1.0, inch)         // => 12
class DUNX_EXPORT Gk_Unit {
public:
    /// An unset unit: no name, factor 0.
    Gk_Unit();
    /// The unit `name` (null is taken as no name) of size `factor`.
    Gk_Unit(const char* name, double factor);
    Gk_Unit(const Gk_Unit& other);
    Gk_Unit& operator=(const Gk_Unit& other);
    ~Gk_Unit();

    /// Same name (both unnamed, or equal text) and same factor.
    bool operator==(const Gk_Unit& other) const;
    bool operator!=(const Gk_Unit& other) const { return !(*this == other); }
    /// True when the unit has a name and a finite factor above 0.
    bool IsSet() const;
    /// The name, or null.
    const char* GetName() const { return m_Name.get(); }
    /// The unit's size (0 for an unset unit).
    double GetFactor() const { return m_Factor; }
    /// `value` in this unit expressed in `target`; `value` unchanged when
    /// either unit is not set.
    double ConvertTo(double value, const Gk_Unit& target) const;

    /// The length unit named as `DUNIUnit` names it, with its exact size in
    /// picometres: nanometer 1e3, millimeter 1e9, inch 2.54e10, foot 3.048e11,
    /// mile 1.609344e15, milliinch 2.54e7, microinch 2.54e4, and so on.
    /// Unknown and model unit give an unset unit: their size is the model's.
    static Gk_Unit ForLength(DUNXUnit unit);

private:
    std::unique_ptr<char[]> m_Name;
    double m_Factor = 0.0;
};

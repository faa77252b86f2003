// Length units as the translator reads them from assembly files and options.
#pragma once

#include <dunx/DUNIUnit.h>

#include <string>

namespace dunx::translator {

/// The length unit named by `text`, ignoring case and surrounding blanks:
/// the names `DUNIUnit` accepts plus common spellings.
///
///     "mm", " Millimetre ", "millimeters" => DUNIUnitMillimeter
///     "in", "inches"                      => DUNIUnitInch
///     "mil", "thou"                       => DUNIUnitMilliinch
///     "model", "furlong", ""              => DUNIUnitUnknown (no size to convert with)
DUNIUnitValue ParseLengthUnit(const std::string& text);

/// The names to suggest after an unknown unit: "mm, cm, m, ...".
const char* KnownLengthUnits();

/// How many `to` make one `from`: LengthScale(inch, millimeter) = 25.4. 1 when
/// either has no size (unknown or model unit).
double LengthScale(DUNIUnitValue from, DUNIUnitValue to);

/// The unit's name as `DUNIUnit` prints it ("millimeter").
std::string UnitName(DUNIUnitValue unit);

} // namespace dunx::translator

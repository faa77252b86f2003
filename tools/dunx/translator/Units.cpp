#include "Units.h"

#include <cctype>

namespace dunx::translator {
namespace {

struct Alias {
    const char* text;
    const char* unit; // a name DUNIUnit knows
};

// Spellings that DUNIUnit does not take but that people write.
constexpr Alias kAliases[] = {
    {"millimetre", "mm"},  {"millimetres", "mm"}, {"millimeters", "mm"}, {"centimetre", "cm"},
    {"centimetres", "cm"}, {"centimeters", "cm"}, {"metre", "m"},        {"metres", "m"},
    {"meters", "m"},       {"kilometre", "km"},   {"kilometres", "km"},  {"kilometers", "km"},
    {"um", "micr"},        {"micron", "micr"},    {"microns", "micr"},   {"micrometre", "micr"},
    {"dm", "deci"},        {"inches", "in"},      {"feet", "ft"},        {"miles", "mile"},
    {"mil", "milliinch"},  {"thou", "milliinch"},
};

} // namespace

DUNIUnitValue ParseLengthUnit(const std::string& text) {
    std::size_t first = 0, last = text.size();
    while (first < last && std::isspace(static_cast<unsigned char>(text[first])))
        ++first;
    while (last > first && std::isspace(static_cast<unsigned char>(text[last - 1])))
        --last;
    std::string name;
    for (std::size_t i = first; i < last; ++i)
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    for (const Alias& alias : kAliases)
        if (name == alias.text)
            name = alias.unit;
    const DUNIUnitValue unit = DUNIUnit(name.c_str());
    // Only a unit with a size can place a part among others.
    return Gk_Unit::ForLength(unit).IsSet() ? unit : DUNIUnitUnknown;
}

const char* KnownLengthUnits() {
    return "mm, cm, m, km, in, ft, mile, nm, micr, deci, milliinch, microinch";
}

double LengthScale(DUNIUnitValue from, DUNIUnitValue to) {
    const Gk_Unit source = Gk_Unit::ForLength(from);
    const Gk_Unit target = Gk_Unit::ForLength(to);
    if (!source.IsSet() || !target.IsSet())
        return 1.0;
    return source.ConvertTo(1.0, target);
}

std::string UnitName(DUNIUnitValue unit) {
    const char* name = DUNIUnit(unit);
    return name ? name : "unknown";
}

} // namespace dunx::translator

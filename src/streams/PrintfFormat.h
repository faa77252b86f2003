// Checks a caller-supplied printf format before the library passes it a value,
// so that a wrong format can never make printf read the wrong argument.
#pragma once

namespace dunx::internal {

/// The C type that a format's one conversion reads.
enum class PrintfArgument {
    Unfit,
    Int,
    UInt,
    Long,
    ULong,
    LongLong,
    ULongLong,
    Double,
    LongDouble
};

/// What `ParsePrintfFormat` found.
struct PrintfConversion {
    PrintfArgument argument = PrintfArgument::Unfit;
    int stars = 0;       // '*' width or precision arguments the conversion reads first
    int lengthStart = 0; // where the length modifier is (or would be) in the format
    int lengthSize = 0;  // its characters: 0 for none, 2 for "ll" and "hh"
};

/// Reads `format`, which must hold exactly one numeric conversion (d i o u x X
/// or f F e E g G a A, with any flags, width, precision and length modifier);
/// "%%" is plain text. Anything else (no or several conversions, %s, %n, %p,
/// a modifier that does not fit) gives `Unfit`.
PrintfConversion ParsePrintfFormat(const char* format);

} // namespace dunx::internal

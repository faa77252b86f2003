// DUNXStreamFormatter: text output with margins and one printf format per number type.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXReferenceCount.h>
#include <dunx/DUNXString.h>

#include <string>

class DUNXOutputStream;

/// Inserted into a formatter, prints the margin: four blanks per level.
struct DUNXMargin {};

/// Inserted into a formatter, prints its line end ("\n" unless changed).
struct DUNXLineEnd {};

/// Text made by `DUNXStreamFormatter::format`. It points into one shared
/// buffer that the next `format` call overwrites: print it at once.
struct DUNXFormattedText {
    const char* text;
};

/// Writes text to a `DUNXOutputStream`: characters, numbers (each type with
/// its own printf format), C strings, pointers and `DUNXString`s, plus margin
/// and line-end objects. Loggers, events and `Dump` members print through it.
///
///     DUNXStreamFormatter out(&stream);
///     out.incrementMargin();
///     out << DUNXMargin() << "count: " << 3 << DUNXLineEnd();   // "    count: 3\n"
///
/// A write fault of the stream is remembered (`HasWriteFault`), never thrown.
class DUNX_EXPORT DUNXStreamFormatter : public DUNXReferenceCount {
public:
    /// Prints into `stream`, which the caller keeps alive (not owned; null
    /// prints nothing). Formats start at their defaults (`resetFormat`).
    explicit DUNXStreamFormatter(DUNXOutputStream* stream);
    ~DUNXStreamFormatter() override;

    /// The stream printed into (may be null).
    DUNXOutputStream* getStream() const { return m_Stream; }
    /// Prints into `stream` from now on (not owned).
    void setStream(DUNXOutputStream* stream) { m_Stream = stream; }
    /// True once a write to the stream fell short.
    bool HasWriteFault() const { return m_WriteFault; }

    // --- Margins -------------------------------------------------------------

    /// One level deeper: the margin grows by four blanks.
    void incrementMargin() { ++m_Margin; }
    /// One level shallower; never below 0.
    void decrementMargin();
    /// Sets the level (negative values are taken as 0).
    void setMargin(int level);
    /// The current level.
    int getMargin() const { return m_Margin; }

    // --- Number formats ------------------------------------------------------

    /// Back to "%d" (int), "%u" (unsigned), "%ld" (long), "%ul" (unsigned long:
    /// the number followed by the letter l, kept as it always was) and "%lf"
    /// (double), without precision argument and with trailing-zero mode 0.
    void resetFormat();
    /// Each setter takes a printf format with exactly one conversion that fits
    /// the type (d i o u x X for integers, any length modifier; f F e E g G a A
    /// for doubles) and no '*'. An unfit format is refused: false, and the
    /// previous format stays.
    bool setIntFormat(const char* format);
    bool setUnsignedFormat(const char* format);
    bool setLongFormat(const char* format);
    bool setUnsignedLongFormat(const char* format);
    /// Double format; when `usePrecision` is true `precision` is passed as the
    /// format's one '*' argument ("%.*f" with 3 prints 1.500), and the format
    /// must then hold exactly one '*'. Refused like the others (false).
    bool setDoubleFormat(const char* format, bool usePrecision = false, int precision = 0);
    /// Mode 0 prints doubles as formatted; mode 1 drops the trailing zeros of a
    /// fixed-point fraction, and its point when nothing remains ("2.500000" => "2.5",
    /// "3.000000" => "3").
    void setTrailingZeroMode(int mode) { m_TrailingZeroMode = mode; }
    /// The trailing-zero mode.
    int getTrailingZeroMode() const { return m_TrailingZeroMode; }
    /// Text printed for a `DUNXLineEnd` (null is taken as "").
    void setLineEnd(const char* lineEnd);

    // --- Printing --------------------------------------------------------------

    DUNXStreamFormatter& operator<<(char c);
    DUNXStreamFormatter& operator<<(int value);
    DUNXStreamFormatter& operator<<(unsigned value);
    DUNXStreamFormatter& operator<<(long value);
    DUNXStreamFormatter& operator<<(unsigned long value);
    /// With the long format (long is 64 bits wide here).
    DUNXStreamFormatter& operator<<(long long value);
    /// With the unsigned-long format.
    DUNXStreamFormatter& operator<<(unsigned long long value);
    DUNXStreamFormatter& operator<<(double value);
    /// The text; a null pointer prints "(null)".
    DUNXStreamFormatter& operator<<(const char* text);
    /// "%p" of the pointer.
    DUNXStreamFormatter& operator<<(const void* pointer);
    /// The narrow rendering; a null string prints nothing.
    DUNXStreamFormatter& operator<<(const DUNXString& text);
    DUNXStreamFormatter& operator<<(const DUNXMargin& margin);
    DUNXStreamFormatter& operator<<(const DUNXLineEnd& lineEnd);
    DUNXStreamFormatter& operator<<(const DUNXFormattedText& text);

    /// Writes `length` bytes of `text` as they are.
    void write(const char* text, int length);

    /// printf into one shared 1,024-byte buffer (longer text is cut); the result
    /// stays valid until the next call. A null `format` gives "".
    static DUNXFormattedText format(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);

private:
    struct NumberFormat {
        std::string text;
        std::string wide; // the same conversion reading a long long
        int kind = 0;     // which C type the conversion reads
    };
    bool setNumberFormat(NumberFormat& target, const char* format, bool floating, int stars);
    template <class T> void printInteger(const NumberFormat& format, T value);

    DUNXOutputStream* m_Stream;
    int m_Margin = 0;
    NumberFormat m_IntFormat;
    NumberFormat m_UnsignedFormat;
    NumberFormat m_LongFormat;
    NumberFormat m_UnsignedLongFormat;
    NumberFormat m_DoubleFormat;
    bool m_UsePrecision = false;
    int m_Precision = 0;
    int m_TrailingZeroMode = 0;
    std::string m_LineEnd = "\n";
    bool m_WriteFault = false;
};

/// Handle to a shared formatter.
class DUNXStreamFormatterHandle : public DUNXTypedHandle<DUNXStreamFormatter> {
public:
    using DUNXTypedHandle<DUNXStreamFormatter>::DUNXTypedHandle;
};

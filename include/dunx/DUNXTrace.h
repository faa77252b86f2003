// Named trace channels and the static printers of the diagnostic channels.
#pragma once

#include <dunx/DUNXExport.h>

#include <cstdarg>

/// Indentation depth shared by every static printer: `Tab` raises it, `Untab`
/// lowers it (never below 0). Each level indents a printed text by four blanks.
extern DUNX_EXPORT int _DUNXTraceTab;

/// What a trace channel fires for a text. Fixed to `int`: any other value is
/// legal and fires nothing.
enum DUNXTraceLevel : int {
    DUNXTraceDebug = 1,   ///< a debug event (level 10)
    DUNXTraceVerbose = 2, ///< a verbose event (level 30)
    DUNXTraceInfo = 3     ///< a message event without prefix (level 50)
};

/// A named trace channel, switched on by the environment variable `DUNXLoggers`:
/// the channel is enabled when the variable's value contains its name anywhere
/// (case-sensitive; "Lib" is enabled by "MyLibrary"). Unset: every channel is off.
/// The variable is read once, when the channel is made.
class DUNX_EXPORT DUNXTrace {
public:
    /// Reads `DUNXLoggers`; a null or empty `name` gives a disabled channel.
    explicit DUNXTrace(const char* name);
    /// Disables the channel.
    ~DUNXTrace();

    /// True when the channel prints.
    bool IsEnabled() const { return m_Enabled; }
    /// Formats into a 1,024-byte buffer (longer text is cut) and fires the event
    /// chosen by `level`; does nothing when disabled, for a null `format`, or
    /// for a level other than 1, 2 or 3.
    void Printf(DUNXTraceLevel level, const char* format, ...) DUNX_PRINTF_LIKE(3, 4);

private:
    bool m_Enabled;
};

/// A stopwatch started by `DUNXDebug::StartTimer`.
struct DUNXDebugTimer {
    long long startNanoseconds;
};

/// Which event a static printer fires.
enum class DUNXChannelKind { Warning, Info, Verbose, Debug, Assert };

/// The members shared by the static printers `DUNXWarning`, `DUNXInfo`,
/// `DUNXVerbose`, `DUNXDebug` and `DUNXAssert`. Each text is formatted into a
/// 1,024-byte buffer (longer text is cut), indented by the shared tab depth,
/// and fired as one event of the printer's kind: a warning (level 50, as
/// warnings fired by argument list are), a message without prefix (50), a
/// verbose (30), a debug (10) or an assertion (30) event. One newline ending
/// the text is dropped, since the event ends its line itself.
template <DUNXChannelKind Kind> class DUNXChannelPrinter {
public:
    /// Prints the formatted text, indented by the tab depth; a null format does nothing.
    static void Printf(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);
    /// Prints the formatted text without indentation.
    static void NoTabPrintf(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);
    /// One indentation level deeper, for every printer.
    static void Tab();
    /// One indentation level shallower, for every printer; never below 0.
    static void Untab();
    /// Three lines "{%6.3f, %6.3f, %6.3f}", one per row.
    static void Print3x3Matrix(const double matrix[3][3]);
    /// Four lines "[%05.3f, %05.3f, %05.3f]": the three rows of the linear part,
    /// then the translation.
    static void Print3x4Matrix(const double matrix[4][3]);
    /// Four lines "[%05.3f, %05.3f, %05.3f, %05.3f]", one per row.
    static void Print4x4Matrix(const double matrix[4][4]);
    /// One line "[%6.3f, %6.3f, %6.3f, %6.3f]" per point of four coordinates;
    /// nothing for a null array or a count below 1.
    static void PrintPointArray(const double (*points)[4], int count);

protected:
    /// Formats, indents when `indent` is set, drops one ending newline and fires.
    static void VPrint(bool indent, const char* format, va_list args);
};

extern template class DUNX_EXPORT DUNXChannelPrinter<DUNXChannelKind::Warning>;
extern template class DUNX_EXPORT DUNXChannelPrinter<DUNXChannelKind::Info>;
extern template class DUNX_EXPORT DUNXChannelPrinter<DUNXChannelKind::Verbose>;
extern template class DUNX_EXPORT DUNXChannelPrinter<DUNXChannelKind::Debug>;
extern template class DUNX_EXPORT DUNXChannelPrinter<DUNXChannelKind::Assert>;

/// Warnings, fired as warning events.
class DUNX_EXPORT DUNXWarning : public DUNXChannelPrinter<DUNXChannelKind::Warning> {
    DUNXWarning() = delete;
};

/// Information, fired as message events without the "Message : " prefix.
class DUNX_EXPORT DUNXInfo : public DUNXChannelPrinter<DUNXChannelKind::Info> {
public:
    /// Prints `text` exactly as given: not read as a format (a '%' is safe),
    /// not indented, no newline dropped. Longer than 1,023 bytes is cut.
    static void PrintfAsItIs(const char* text);

private:
    DUNXInfo() = delete;
};

/// Verbose traces, fired as verbose events.
class DUNX_EXPORT DUNXVerbose : public DUNXChannelPrinter<DUNXChannelKind::Verbose> {
    DUNXVerbose() = delete;
};

/// Debug traces, fired as debug events.
class DUNX_EXPORT DUNXDebug : public DUNXChannelPrinter<DUNXChannelKind::Debug> {
public:
    /// Starts a stopwatch.
    static DUNXDebugTimer StartTimer();
    /// Seconds elapsed since `timer` was started.
    static float StopTimer(const DUNXDebugTimer& timer);

private:
    DUNXDebug() = delete;
};

/// Assertion texts, fired as assertion events.
class DUNX_EXPORT DUNXAssert : public DUNXChannelPrinter<DUNXChannelKind::Assert> {
    DUNXAssert() = delete;
};

// The message-carrying events: error, warning, message, debug, assertion, verbose.
#pragma once

#include <dunx/DUNXError.h>
#include <dunx/DUNXEvent.h>
#include <dunx/DUNXExport.h>

#include <cstdarg>
#include <cstddef>

/// An event carrying a message, printf-formatted into a 1,024-byte buffer
/// (longer text is cut). An empty text leaves the message null.
class DUNX_EXPORT DUNXTextEvent : public DUNXEvent {
public:
    ~DUNXTextEvent() override;
    /// The message, or null when the formatted text was empty.
    const char* GetMessage() const { return m_Message.get(); }

    /// Messages of up to this many bytes are kept inside the event; longer
    /// ones cost a heap block. Either way the message reads the same.
    static constexpr std::size_t kInlineMessageLength = 255;

protected:
    /// An event without message.
    DUNXTextEvent(const char* name, DUNXEventLevel level);
    /// Formats the message from `format` and the started argument list `args`.
    DUNXTextEvent(const char* name, DUNXEventLevel level, const char* format, va_list args);
    DUNXTextEvent(const DUNXTextEvent& other);
    /// Replaces the message with the formatted text.
    void SetMessage(const char* format, va_list args);
    /// Writes `prefix`, the message and the formatter's line end to `stream`.
    void WriteMessageLine(DUNXOutputStream* stream, const char* prefix) const;

private:
    OwnedText<kInlineMessageLength + 1> m_Message;
};

/// "DUNXErrorEvent", level 80: "Error : " + message + line end; without a
/// message, the attached error writes its own text.
class DUNX_EXPORT DUNXErrorEvent : public DUNXTextEvent {
public:
    /// An event with the formatted message, attached to `DUNXError::FAIL_ERROR`.
    explicit DUNXErrorEvent(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    /// An event without message that refers to `error` (not copied: it must
    /// outlive the dispatch).
    explicit DUNXErrorEvent(const DUNXError& error);
    ~DUNXErrorEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    /// The attached error; never null.
    virtual const DUNXError* GetError() const;

    /// Builds an event with the formatted message and fires it.
    static void Fire(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);
    /// Records `file` and `line` in `error`, fires an event referring to it and
    /// returns `DUNI_E_ERROR`, so a failing function can end with
    /// `return DUNXErrorEvent::Fire(error, __FILE__, __LINE__);`.
    static DUNIResult Fire(DUNXError& error, const char* file, int line);

protected:
    DUNXErrorEvent(va_list args, const char* format);

private:
    const DUNXError* m_Error;
};

/// "DUNXWarningEvent": "Warning : " + message + line end. Level 70 when built
/// from a format; 50 when built from an argument list, as `Fire` does.
class DUNX_EXPORT DUNXWarningEvent : public DUNXTextEvent {
public:
    explicit DUNXWarningEvent(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    ~DUNXWarningEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    /// Builds an event from the arguments (level 50) and fires it.
    static void Fire(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);

protected:
    DUNXWarningEvent(va_list args, const char* format);
};

/// "DUNXMessageEvent", level 50: "Message : " + message + line end with the
/// prefix flag, else the message + line end. The flag is true unless given.
/// Note: `DUNXMessageEvent("%d", 5)` picks the flag form (5 becomes `true`).
class DUNX_EXPORT DUNXMessageEvent : public DUNXTextEvent {
public:
    explicit DUNXMessageEvent(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    /// Chooses the prefix with `prefix` (read as a bool; it is declared `int`
    /// because a `bool` cannot portably start an argument list).
    DUNXMessageEvent(const char* format, int prefix, ...);
    ~DUNXMessageEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    /// True when the text starts with "Message : ".
    bool HasPrefix() const { return m_Prefix; }
    /// Builds an event with the prefix and fires it.
    static void Fire(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);

protected:
    DUNXMessageEvent(va_list args, const char* format);
    DUNXMessageEvent(va_list args, const char* format, bool prefix);

private:
    bool m_Prefix = true;
};

/// "DUNXDebugEvent", level 10: the message + line end.
class DUNX_EXPORT DUNXDebugEvent : public DUNXTextEvent {
public:
    explicit DUNXDebugEvent(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    ~DUNXDebugEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    static void Fire(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);

protected:
    DUNXDebugEvent(va_list args, const char* format);
};

/// "DUNXAssertEvent": "Assert : " + message + line end. Level 90 when built
/// from a format; 30 when built from an argument list, as `Fire` does.
class DUNX_EXPORT DUNXAssertEvent : public DUNXTextEvent {
public:
    explicit DUNXAssertEvent(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    ~DUNXAssertEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    /// Builds an event from the arguments (level 30) and fires it.
    static void Fire(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);

protected:
    DUNXAssertEvent(va_list args, const char* format);
};

/// "DUNXVerboseEvent", level 30: the message + line end, like a debug line.
class DUNX_EXPORT DUNXVerboseEvent : public DUNXTextEvent {
public:
    explicit DUNXVerboseEvent(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    ~DUNXVerboseEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    static void Fire(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);

protected:
    DUNXVerboseEvent(va_list args, const char* format);
};

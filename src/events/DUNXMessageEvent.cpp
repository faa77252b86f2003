#include <dunx/DUNXMessageEvent.h>

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOutputStream.h>

#include "internal/MessageFormat.h"

#include <cstring>

using dunx::internal::BoundedLength;
using dunx::internal::FormatMessage;
using dunx::internal::kMessageBufferSize;
using dunx::internal::MessageBuffer;

// Builds an event of type `Event` from the variadic arguments of the calling
// function (through its protected argument-list constructor) and sends it.
#define DUNX_FIRE_FROM_ARGUMENTS(Event, format)                                                    \
    va_list args;                                                                                  \
    va_start(args, format);                                                                        \
    Event event(args, format);                                                                     \
    va_end(args);                                                                                  \
    DUNXEventBus::GetEventBus().Send(event)

// The body of a public `(const char* format, ...)` constructor.
#define DUNX_MESSAGE_FROM_ARGUMENTS(format)                                                        \
    va_list args;                                                                                  \
    va_start(args, format);                                                                        \
    SetMessage(format, args);                                                                      \
    va_end(args)

// --- DUNXTextEvent -------------------------------------------------------------

DUNXTextEvent::DUNXTextEvent(const char* name, DUNXEventLevel level) : DUNXEvent(name, level) {}

DUNXTextEvent::DUNXTextEvent(const char* name, DUNXEventLevel level, const char* format,
                             va_list args)
    : DUNXEvent(name, level) {
    SetMessage(format, args);
}

DUNXTextEvent::DUNXTextEvent(const DUNXTextEvent& other)
    : DUNXEvent(other), m_Message(other.m_Message) {}

DUNXTextEvent::~DUNXTextEvent() = default;

void DUNXTextEvent::SetMessage(const char* format, va_list args) {
    // "%s" is how the printers and channels pass a text already formatted:
    // take it as it is, cut as vsnprintf would cut it, without a second pass.
    if (format && format[0] == '%' && format[1] == 's' && format[2] == '\0') {
        const char* text = va_arg(args, const char*);
        if (!text)
            text = "(null)"; // what vsnprintf prints for a null text
        m_Message.assign(text, BoundedLength(text, kMessageBufferSize - 1));
        return;
    }
    MessageBuffer buffer;
    m_Message.assign(buffer.text, FormatMessage(buffer, format, args)); // null when empty
}

void DUNXTextEvent::WriteMessageLine(DUNXOutputStream* stream, const char* prefix) const {
    // The writes a fresh DUNXStreamFormatter would make for the prefix, the
    // text and its line end, without building one per message: a formatter
    // parses its five number formats when it is made.
    if (!stream)
        return;
    if (prefix && *prefix)
        stream->write(prefix, static_cast<int>(std::strlen(prefix)));
    if (const char* message = m_Message.get())
        stream->write(message, static_cast<int>(m_Message.length()));
    stream->write("\n", 1);
}

// --- DUNXErrorEvent -------------------------------------------------------------

DUNXErrorEvent::DUNXErrorEvent(const char* format, ...)
    : DUNXTextEvent("DUNXErrorEvent", DUNXLevelError), m_Error(&DUNXError::FAIL_ERROR) {
    DUNX_MESSAGE_FROM_ARGUMENTS(format);
}

DUNXErrorEvent::DUNXErrorEvent(va_list args, const char* format)
    : DUNXTextEvent("DUNXErrorEvent", DUNXLevelError, format, args),
      m_Error(&DUNXError::FAIL_ERROR) {}

DUNXErrorEvent::DUNXErrorEvent(const DUNXError& error)
    : DUNXTextEvent("DUNXErrorEvent", DUNXLevelError), m_Error(&error) {}

DUNXErrorEvent::~DUNXErrorEvent() = default;

void DUNXErrorEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    if (GetMessage())
        WriteMessageLine(stream, "Error : ");
    else
        m_Error->GetFormattedDescription(stream);
}

const DUNXError* DUNXErrorEvent::GetError() const {
    return m_Error;
}

void DUNXErrorEvent::Fire(const char* format, ...) {
    DUNX_FIRE_FROM_ARGUMENTS(DUNXErrorEvent, format);
}

DUNIResult DUNXErrorEvent::Fire(DUNXError& error, const char* file, int line) {
    error.SetSourceFileInfo(file, line);
    DUNXErrorEvent event(error);
    DUNXEventBus::GetEventBus().Send(event);
    return DUNI_E_ERROR;
}

// --- DUNXWarningEvent -----------------------------------------------------------

DUNXWarningEvent::DUNXWarningEvent(const char* format, ...)
    : DUNXTextEvent("DUNXWarningEvent", DUNXLevelWarning) {
    DUNX_MESSAGE_FROM_ARGUMENTS(format);
}

// Kept at the information level: warnings fired through `Fire` reach standard output.
DUNXWarningEvent::DUNXWarningEvent(va_list args, const char* format)
    : DUNXTextEvent("DUNXWarningEvent", DUNXLevelInfo, format, args) {}

DUNXWarningEvent::~DUNXWarningEvent() = default;

void DUNXWarningEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    WriteMessageLine(stream, "Warning : ");
}

void DUNXWarningEvent::Fire(const char* format, ...) {
    DUNX_FIRE_FROM_ARGUMENTS(DUNXWarningEvent, format);
}

// --- DUNXMessageEvent -----------------------------------------------------------

DUNXMessageEvent::DUNXMessageEvent(const char* format, ...)
    : DUNXTextEvent("DUNXMessageEvent", DUNXLevelInfo) {
    DUNX_MESSAGE_FROM_ARGUMENTS(format);
}

DUNXMessageEvent::DUNXMessageEvent(const char* format, int prefix, ...)
    : DUNXTextEvent("DUNXMessageEvent", DUNXLevelInfo), m_Prefix(prefix != 0) {
    va_list args;
    va_start(args, prefix);
    SetMessage(format, args);
    va_end(args);
}

DUNXMessageEvent::DUNXMessageEvent(va_list args, const char* format)
    : DUNXTextEvent("DUNXMessageEvent", DUNXLevelInfo, format, args) {}

DUNXMessageEvent::DUNXMessageEvent(va_list args, const char* format, bool prefix)
    : DUNXTextEvent("DUNXMessageEvent", DUNXLevelInfo, format, args), m_Prefix(prefix) {}

DUNXMessageEvent::~DUNXMessageEvent() = default;

void DUNXMessageEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    WriteMessageLine(stream, m_Prefix ? "Message : " : nullptr);
}

void DUNXMessageEvent::Fire(const char* format, ...) {
    DUNX_FIRE_FROM_ARGUMENTS(DUNXMessageEvent, format);
}

// --- DUNXDebugEvent -------------------------------------------------------------

DUNXDebugEvent::DUNXDebugEvent(const char* format, ...)
    : DUNXTextEvent("DUNXDebugEvent", DUNXLevelDebug) {
    DUNX_MESSAGE_FROM_ARGUMENTS(format);
}

DUNXDebugEvent::DUNXDebugEvent(va_list args, const char* format)
    : DUNXTextEvent("DUNXDebugEvent", DUNXLevelDebug, format, args) {}

DUNXDebugEvent::~DUNXDebugEvent() = default;

void DUNXDebugEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    WriteMessageLine(stream, nullptr);
}

void DUNXDebugEvent::Fire(const char* format, ...) {
    DUNX_FIRE_FROM_ARGUMENTS(DUNXDebugEvent, format);
}

// --- DUNXAssertEvent ------------------------------------------------------------

DUNXAssertEvent::DUNXAssertEvent(const char* format, ...)
    : DUNXTextEvent("DUNXAssertEvent", DUNXLevelAbort) {
    DUNX_MESSAGE_FROM_ARGUMENTS(format);
}

DUNXAssertEvent::DUNXAssertEvent(va_list args, const char* format)
    : DUNXTextEvent("DUNXAssertEvent", DUNXLevelVerbose, format, args) {}

DUNXAssertEvent::~DUNXAssertEvent() = default;

void DUNXAssertEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    WriteMessageLine(stream, "Assert : ");
}

void DUNXAssertEvent::Fire(const char* format, ...) {
    DUNX_FIRE_FROM_ARGUMENTS(DUNXAssertEvent, format);
}

// --- DUNXVerboseEvent -----------------------------------------------------------

DUNXVerboseEvent::DUNXVerboseEvent(const char* format, ...)
    : DUNXTextEvent("DUNXVerboseEvent", DUNXLevelVerbose) {
    DUNX_MESSAGE_FROM_ARGUMENTS(format);
}

DUNXVerboseEvent::DUNXVerboseEvent(va_list args, const char* format)
    : DUNXTextEvent("DUNXVerboseEvent", DUNXLevelVerbose, format, args) {}

DUNXVerboseEvent::~DUNXVerboseEvent() = default;

void DUNXVerboseEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    WriteMessageLine(stream, nullptr);
}

void DUNXVerboseEvent::Fire(const char* format, ...) {
    DUNX_FIRE_FROM_ARGUMENTS(DUNXVerboseEvent, format);
}

#include <dunx/DUNXTrace.h>

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>

#include "internal/MessageFormat.h"
#include "platform/Platform.h"

#include <algorithm>
#include <cstring>

using dunx::internal::BoundedLength;
using dunx::internal::FormatMessage;
using dunx::internal::kMessageBufferSize;
using dunx::internal::MessageBuffer;

int _DUNXTraceTab = 0;

namespace {

constexpr int kBlanksPerTab = 4;

void fireText(DUNXChannelKind kind, const char* text) {
    switch (kind) {
    case DUNXChannelKind::Warning:
        DUNXWarningEvent::Fire("%s", text);
        break;
    case DUNXChannelKind::Info: {
        DUNXMessageEvent event("%s", false, text);
        DUNXEventBus::Fire(event);
        break;
    }
    case DUNXChannelKind::Verbose:
        DUNXVerboseEvent::Fire("%s", text);
        break;
    case DUNXChannelKind::Debug:
        DUNXDebugEvent::Fire("%s", text);
        break;
    case DUNXChannelKind::Assert:
        DUNXAssertEvent::Fire("%s", text);
        break;
    }
}

} // namespace

// --- DUNXTrace -------------------------------------------------------------------

DUNXTrace::DUNXTrace(const char* name) : m_Enabled(false) {
    DUNXString loggers;
    if (name && *name && DUNXEnvironment::GetVariable("DUNXLoggers", loggers).IsSuccess())
        m_Enabled = loggers.indexOf(DUNXString(name)) >= 0;
}

DUNXTrace::~DUNXTrace() {
    m_Enabled = false;
}

void DUNXTrace::Printf(DUNXTraceLevel level, const char* format, ...) {
    if (!m_Enabled || !format)
        return;
    MessageBuffer buffer;
    va_list args;
    va_start(args, format);
    FormatMessage(buffer, format, args);
    va_end(args);
    switch (level) {
    case DUNXTraceDebug:
        fireText(DUNXChannelKind::Debug, buffer.text);
        break;
    case DUNXTraceVerbose:
        fireText(DUNXChannelKind::Verbose, buffer.text);
        break;
    case DUNXTraceInfo:
        fireText(DUNXChannelKind::Info, buffer.text);
        break;
    }
}

// --- Static printers -----------------------------------------------------------

template <DUNXChannelKind Kind>
void DUNXChannelPrinter<Kind>::VPrint(bool indent, const char* format, va_list args) {
    if (!format)
        return;
    // The text is formatted straight behind the indentation: the same bytes
    // as formatting it whole and then copying what fits after the blanks.
    MessageBuffer buffer;
    std::size_t length = 0;
    if (indent) {
        const int blanks = _DUNXTraceTab * kBlanksPerTab;
        length = static_cast<std::size_t>(std::min(blanks, kMessageBufferSize - 1));
        std::memset(buffer.text, ' ', length);
    }
    length += FormatMessage(buffer.text + length, kMessageBufferSize - length, format, args);
    if (length > 0 && buffer.text[length - 1] == '\n')
        --length;
    buffer.text[length] = '\0';
    fireText(Kind, buffer.text);
}

template <DUNXChannelKind Kind> void DUNXChannelPrinter<Kind>::Printf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    VPrint(true, format, args);
    va_end(args);
}

template <DUNXChannelKind Kind>
void DUNXChannelPrinter<Kind>::NoTabPrintf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    VPrint(false, format, args);
    va_end(args);
}

template <DUNXChannelKind Kind> void DUNXChannelPrinter<Kind>::Tab() {
    ++_DUNXTraceTab;
}

template <DUNXChannelKind Kind> void DUNXChannelPrinter<Kind>::Untab() {
    if (_DUNXTraceTab > 0)
        --_DUNXTraceTab;
}

template <DUNXChannelKind Kind>
void DUNXChannelPrinter<Kind>::Print3x3Matrix(const double matrix[3][3]) {
    for (int row = 0; row < 3; ++row)
        Printf("{%6.3f, %6.3f, %6.3f}\n", matrix[row][0], matrix[row][1], matrix[row][2]);
}

template <DUNXChannelKind Kind>
void DUNXChannelPrinter<Kind>::Print3x4Matrix(const double matrix[4][3]) {
    for (int row = 0; row < 4; ++row)
        Printf("[%05.3f, %05.3f, %05.3f]\n", matrix[row][0], matrix[row][1], matrix[row][2]);
}

template <DUNXChannelKind Kind>
void DUNXChannelPrinter<Kind>::Print4x4Matrix(const double matrix[4][4]) {
    for (int row = 0; row < 4; ++row)
        Printf("[%05.3f, %05.3f, %05.3f, %05.3f]\n", matrix[row][0], matrix[row][1], matrix[row][2],
               matrix[row][3]);
}

template <DUNXChannelKind Kind>
void DUNXChannelPrinter<Kind>::PrintPointArray(const double (*points)[4], int count) {
    for (int i = 0; points && i < count; ++i)
        Printf("[%6.3f, %6.3f, %6.3f, %6.3f]\n", points[i][0], points[i][1], points[i][2],
               points[i][3]);
}

template class DUNXChannelPrinter<DUNXChannelKind::Warning>;
template class DUNXChannelPrinter<DUNXChannelKind::Info>;
template class DUNXChannelPrinter<DUNXChannelKind::Verbose>;
template class DUNXChannelPrinter<DUNXChannelKind::Debug>;
template class DUNXChannelPrinter<DUNXChannelKind::Assert>;

void DUNXInfo::PrintfAsItIs(const char* text) {
    if (!text)
        return;
    MessageBuffer buffer;
    const std::size_t copied = BoundedLength(text, kMessageBufferSize - 1);
    std::memcpy(buffer.text, text, copied);
    buffer.text[copied] = '\0';
    fireText(DUNXChannelKind::Info, buffer.text);
}

DUNXDebugTimer DUNXDebug::StartTimer() {
    return DUNXDebugTimer{dunx::platform::MonotonicNanoseconds()};
}

float DUNXDebug::StopTimer(const DUNXDebugTimer& timer) {
    return static_cast<float>(dunx::platform::MonotonicNanoseconds() - timer.startNanoseconds) *
           1e-9f;
}

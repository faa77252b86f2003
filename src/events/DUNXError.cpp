#include <dunx/DUNXError.h>

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXStreamFormatter.h>

#include "internal/MessageFormat.h"

#include <memory>

using dunx::internal::FormatMessage;
using dunx::internal::FormatWithoutArguments;
using dunx::internal::MessageBuffer;

namespace {

constexpr int kInitialErrorCapacity = 10;

// The one tracker; the tracker's destructor clears it.
DUNXErrorTracker* g_Tracker = nullptr;

// Frees a tracker still alive at exit (its destructor takes it off the bus).
struct TrackerCleanup {
    ~TrackerCleanup() { delete g_Tracker; }
};

} // namespace

// --- DUNXError -------------------------------------------------------------------

const DUNXError DUNXError::FAIL_ERROR;

DUNXError::DUNXError(long type) : m_Type(type) {}

DUNXError::DUNXError(long type, const DUNXString& description)
    : m_Type(type), m_Description(description) {}

DUNXError::~DUNXError() = default;

DUNIResult DUNXError::SetDescription(const DUNXString& description) {
    m_Description = description;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXError::GetDescription(DUNXString& description) const {
    description = m_Description;
    return DUNI_S_SUCCESS;
}

void DUNXError::GetFormattedDescription(DUNXOutputStream* stream) const {
    if (m_Type == 0)
        return;
    DUNXStreamFormatter out(stream);
    if (m_Description.length() == 0)
        out << "Error " << m_Type << DUNXLineEnd();
    else
        out << "Error Description : " << m_Description << DUNXLineEnd();
}

void DUNXError::SetSourceFileInfo(const char* file, int line) {
    m_SourceFile = DUNXString(file);
    m_SourceLine = line;
}

void DUNXError::Printf(const char* format, ...) {
    if (!format)
        return;
    MessageBuffer first;
    va_list args;
    va_start(args, format);
    FormatMessage(first, format, args);
    va_end(args);
    // The text is read once more as a format, with no arguments.
    MessageBuffer second;
    FormatWithoutArguments(second, first.text);
    // Not a literal: where va_list is a char* (Windows), a literal fits that constructor too.
    const char* const plain = "%s";
    DUNXErrorEvent event(plain, second.text);
    DUNXEventBus::Fire(event);
}

const DUNXError* DUNXError::GetLastError() {
    return g_Tracker ? g_Tracker->GetLastError() : nullptr;
}

int DUNXError::GetErrorCount() {
    return g_Tracker ? g_Tracker->GetErrorCount() : 0;
}

// --- DUNXErrorTracker --------------------------------------------------------------

DUNXErrorTracker::DUNXErrorTracker() : m_Errors(kInitialErrorCapacity) {}

DUNXErrorTracker::~DUNXErrorTracker() {
    if (g_Tracker) {
        DUNXEventBus::GetEventBus().RemoveListener(g_Tracker);
        g_Tracker = nullptr;
    }
}

DUNIResult DUNXErrorTracker::Initialize() {
    if (!g_Tracker) {
        static TrackerCleanup cleanup;
        g_Tracker = new DUNXErrorTracker();
        DUNXEventBus::GetEventBus().AddListener(g_Tracker);
    }
    return DUNI_S_SUCCESS;
}

DUNXErrorTracker* DUNXErrorTracker::GetInstance() {
    return g_Tracker;
}

DUNIResult DUNXErrorTracker::Reset() {
    if (g_Tracker)
        g_Tracker->ClearErrorList();
    return DUNI_S_SUCCESS;
}

void DUNXErrorTracker::HandleEvent(DUNXEvent& event) {
    if (!event.IsA("DUNXErrorEvent"))
        return;
    // The name alone does not prove the type: an application may name its own
    // events so.
    if (const auto* errorEvent = dynamic_cast<const DUNXErrorEvent*>(&event))
        m_Errors.Add(*errorEvent->GetError());
}

const DUNXError* DUNXErrorTracker::GetError(int index) const {
    if (index < 0 || index >= m_Errors.Size())
        return nullptr;
    return &m_Errors[index];
}

const DUNXError* DUNXErrorTracker::GetLastError() const {
    return m_Errors.IsEmpty() ? nullptr : &m_Errors[m_Errors.Size() - 1];
}

void DUNXErrorTracker::ClearErrorList() {
    m_Errors.Clear();
}

#include <dunx/DUNXEventBus.h>

#include <dunx/Gk_ErrMgr.h>

#include "platform/Platform.h"

#include <typeinfo>

namespace {
constexpr int kInitialListenerCapacity = 10;
}

// Counts nested dispatches; when the outermost one ends, normally or by an
// exception, the entries cleared by removals during it are dropped.
class DUNXEventBus::DispatchScope {
public:
    explicit DispatchScope(DUNXEventBus& bus) : m_Bus(bus) { ++m_Bus.m_DispatchDepth; }
    ~DispatchScope() {
        if (--m_Bus.m_DispatchDepth == 0 && m_Bus.m_HasRemoved) {
            m_Bus.m_Listeners.RemoveAll(nullptr);
            m_Bus.m_HasRemoved = false;
        }
    }
    DispatchScope(const DispatchScope&) = delete;
    DispatchScope& operator=(const DispatchScope&) = delete;

private:
    DUNXEventBus& m_Bus;
};

DUNXAbortException::~DUNXAbortException() = default;

DUNXEventBus& DUNXEventBus::GetEventBus() {
    static DUNXEventBus bus;
    return bus;
}

DUNXEventBus::DUNXEventBus() : m_Listeners(kInitialListenerCapacity) {}

DUNXEventBus::~DUNXEventBus() {
    m_Listeners.Clear();
}

void DUNXEventBus::AddListener(DUNXEventListener* listener) {
    if (!listener || m_Listeners.Find(listener) >= 0)
        return;
    m_Listeners.Add(listener);
}

void DUNXEventBus::RemoveListener(DUNXEventListener* listener) {
    if (!listener)
        return;
    const int index = m_Listeners.Find(listener);
    if (index < 0)
        return;
    if (m_DispatchDepth == 0) {
        m_Listeners.RemoveAt(index);
    } else {
        // Shifting entries now would make a running dispatch skip the next
        // listener; clear the entry and compact once every dispatch is done.
        m_Listeners[index] = nullptr;
        m_HasRemoved = true;
    }
}

void DUNXEventBus::Send(DUNXEvent& event) {
    // A plain DUNXEvent is never timed, and telling it by its type costs two
    // loads where asking it costs a virtual call on every dispatch. Any other
    // type, a subclass that only inherits IsTimed included, is asked.
    const bool plain = &typeid(event) == &typeid(DUNXEvent);
    if (!plain && event.IsTimed()) {
        const long clock = dunx::platform::ElapsedMilliseconds();
        event.SetClock(clock);
        const long long time = dunx::platform::CurrentTime();
        event.SetTime(time);
    }
    // Read once: a listener added during this dispatch is not called for this event.
    const int count = m_Listeners.Size();
    if (count == 0)
        return;
    DispatchScope scope(*this);
    for (int i = 0; i < count; ++i) {
        if (DUNXEventListener* listener = m_Listeners[i])
            listener->HandleEvent(event);
    }
}

void DUNXEventBus::Fire(DUNXEvent& event) {
    GetEventBus().Send(event);
}

bool (*DUNXCallbackShared::m_AbortCallback)() = nullptr;

bool DUNXCallbackShared::IsAborted() {
    const bool requested = Gk_ErrMgr::shouldAbort();
    if (!m_AbortCallback && !requested)
        return false;
    const bool answered = m_AbortCallback && m_AbortCallback();
    if (answered || requested)
        throw DUNXAbortException();
    return false;
}

#include <dunx/DUNXEventBus.h>

#include <dunx/Gk_ErrMgr.h>

#include "internal/Compiler.h"
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
        --m_Bus.m_DispatchDepth;
        if (DUNX_UNLIKELY(m_Bus.m_HasRemoved) && m_Bus.m_DispatchDepth == 0) {
            m_Bus.m_Listeners.RemoveAll(nullptr);
            m_Bus.m_HasRemoved = false;
        }
    }
    DispatchScope(const DispatchScope&) = delete;
    DispatchScope& operator=(const DispatchScope&) = delete;

    // The whole dispatch, written once and inlined into both Send and Fire:
    // Fire is called for every event a translation reports, and a call from
    // Fire into Send costs a second prologue and epilogue on each of them.
    static DUNX_ALWAYS_INLINE void Dispatch(DUNXEventBus& bus, DUNXEvent& event);

private:
    DUNXEventBus& m_Bus;
};

void DUNXEventBus::DispatchScope::Dispatch(DUNXEventBus& bus, DUNXEvent& event) {
    // A plain DUNXEvent is never timed, and telling it by its type costs two
    // loads where asking it costs a virtual call on every dispatch. Any other
    // type, a subclass that only inherits IsTimed included, is asked.
    const bool plain = &typeid(event) == &typeid(DUNXEvent);
    if (DUNX_UNLIKELY(!plain) && event.IsTimed()) {
        const long clock = dunx::platform::ElapsedMilliseconds();
        event.SetClock(clock);
        const long long time = dunx::platform::CurrentTime();
        event.SetTime(time);
    }
    // Read once: a listener added during this dispatch is not called for this event.
    const int count = bus.m_Listeners.Size();
    if (DUNX_UNLIKELY(count == 0))
        return;
    DUNXEventListener* last;
    {
        DispatchScope scope(bus);
        for (int i = 0; i < count - 1; ++i) {
            if (DUNXEventListener* listener = bus.m_Listeners[i])
                listener->HandleEvent(event);
        }
        last = bus.m_Listeners[count - 1];
    }
    // The last listener runs after the dispatch has closed: nothing of this
    // dispatch reads the list after it, so a removal it makes may take effect
    // at once, and the call can be the function's last jump instead of one
    // more call and return on every event.
    if (last)
        last->HandleEvent(event);
}

DUNXAbortException::~DUNXAbortException() = default;

namespace {

// The bus once it is made. GetEventBus tests this pointer instead of the
// guard of a function-local static, so that the test costs a load and a
// branch and the one-time construction stays out of every Fire's prologue.
DUNXEventBus* g_Made = nullptr;

} // namespace

DUNX_NOINLINE DUNX_COLD DUNXEventBus& DUNXEventBus::MakeEventBus() {
    // A function-local static: made on first use, also during static
    // initialisation, and destroyed after every listener made before it.
    static DUNXEventBus bus;
    g_Made = &bus;
    return bus;
}

DUNXEventBus& DUNXEventBus::GetEventBus() {
    DUNXEventBus* const made = g_Made;
    return made ? *made : MakeEventBus();
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
    DispatchScope::Dispatch(*this, event);
}

void DUNXEventBus::Fire(DUNXEvent& event) {
    DispatchScope::Dispatch(GetEventBus(), event);
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

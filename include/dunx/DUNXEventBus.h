// The process-wide event bus, the abort poll and the abort exception.
#pragma once

#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXEvent.h>
#include <dunx/DUNXExport.h>

/// Thrown to unwind a translation that is to be abandoned (a user abort).
/// Deliberately not a `std::exception`, so generic handlers do not swallow it.
class DUNX_EXPORT DUNXAbortException {
public:
    DUNXAbortException() = default;
    virtual ~DUNXAbortException();
};

/// The one event bus of the process: hands each fired event, at once and on
/// the caller's thread, to every registered listener in registration order.
/// It neither filters, queues nor stores events, and never deletes a listener.
/// Usable from static initialisation on; meant for one thread at a time.
///
///     DUNXEventBus::GetEventBus().AddListener(&myLogger);
///     DUNXEventBus::Fire(event);
class DUNX_EXPORT DUNXEventBus {
public:
    /// The single instance, made on first use and destroyed at unload (after
    /// every listener, which touch it when they are made).
    static DUNXEventBus& GetEventBus();

    /// Appends `listener`; ignored when null or already registered.
    void AddListener(DUNXEventListener* listener);
    /// Removes `listener`, keeping the others in order; ignored when null or
    /// not registered. Safe during a dispatch: a listener removed then is not
    /// called again, and no other listener is skipped or called twice.
    void RemoveListener(DUNXEventListener* listener);

    /// Dispatches `event`: stamps it with clock and time if `IsTimed()`, then
    /// calls every listener registered when the dispatch began, in order.
    /// Re-entrant: a listener may fire further events. Catches nothing: an
    /// exception from a listener ends the dispatch and reaches the caller.
    /// Allocates nothing.
    void Send(DUNXEvent& event);
    /// `GetEventBus().Send(event)`.
    static void Fire(DUNXEvent& event);

    /// Empties the list without touching the listeners.
    ~DUNXEventBus();
    DUNXEventBus(const DUNXEventBus&) = delete;
    DUNXEventBus& operator=(const DUNXEventBus&) = delete;

protected:
    /// Only `GetEventBus` makes the bus.
    DUNXEventBus();

private:
    class DispatchScope;
    static DUNXEventBus& MakeEventBus();

    DUNXDynamicArray<DUNXEventListener*> m_Listeners;
    int m_DispatchDepth = 0;   // nesting of Send calls in progress
    bool m_HasRemoved = false; // entries cleared during a dispatch, compacted after it
};

/// The abort poll shared by long-running code.
class DUNX_EXPORT DUNXCallbackShared {
public:
    /// Set by the application: answers true when the user wants to abort. Null by default.
    static bool (*m_AbortCallback)();

    /// Returns false, or throws `DUNXAbortException` when the callback answers
    /// true or `Gk_ErrMgr::shouldAbort()` is set (with no callback, the
    /// request alone throws). Never returns true: callers poll it and let the
    /// exception unwind the translation.
    static bool IsAborted();
};

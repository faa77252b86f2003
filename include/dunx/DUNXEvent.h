// DUNXEvent, its level scale and the listener interface of the event bus.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXObject.h>
#include <dunx/DUNXString.h>

class DUNXOutputStream;

/// Severity of an event; numeric order is the order of severity. A listener
/// passes an event when its level is at least the listener's threshold.
/// Warnings (70) have no text keyword: a threshold reaches them only numerically.
enum DUNXEventLevel : int {
    DUNXLevelUnset = -1, ///< "take the level from the environment"
    DUNXLevelAll = 0,    ///< "ALL": thresholds only, lets everything through
    DUNXLevelDebug = 10,
    DUNXLevelVerbose = 30,
    DUNXLevelInfo = 50,
    DUNXLevelWarning = 70,
    DUNXLevelError = 80,
    DUNXLevelAbort = 90,
    DUNXLevelNone = 999 ///< "NONE": thresholds only, lets nothing through
};

/// Something that happened, handed by the bus to every listener. Every event
/// has the type name "DUNXEvent"; its kind is told by its event name (`IsA`).
/// Events are usually built on the stack, fired, and destroyed when `Fire`
/// returns: a listener copies out whatever it wants to keep.
class DUNX_EXPORT DUNXEvent : public DUNXObject {
public:
    /// Copies `name` (a null or empty name leaves the event name null) and
    /// stores `level`; the event is not time-stamped yet. Inline, so that the
    /// literal names of the events built for every message cost no strlen.
    DUNXEvent(const char* name, DUNXEventLevel level)
        : DUNXObject("DUNXEvent"), m_EventName(name), m_Level(level) {}
    /// Copies the event, its name into a buffer of its own.
    DUNXEvent(const DUNXEvent& other);
    /// Frees the event name.
    ~DUNXEvent() override;

    /// Writes the event's human-readable text to `stream`; nothing in this class.
    virtual void GetFormattedDescription(DUNXOutputStream* stream);
    /// True for events the bus time-stamps when dispatching them; false here.
    virtual bool IsTimed() const;

    /// Replaces the event name with a copy of `name`; a null or empty `name`
    /// keeps the old one.
    void SetEventName(const char* name);
    /// The event name, or null.
    const char* GetEventName() const { return m_EventName.get(); }
    /// The event's level.
    DUNXEventLevel GetLevel() const { return m_Level; }
    /// True when the event name equals `name` exactly (case-sensitive); false
    /// when either is null.
    bool IsA(const char* name) const;

    /// Stores the calendar time (seconds) and marks the event time-stamped. Succeeds.
    DUNIResult SetTime(const long long& time);
    /// Stores the clock (milliseconds) and marks the event time-stamped. Succeeds.
    DUNIResult SetClock(const long& clock);
    /// Copies the stored time into `time` (0 if never set); `DUNI_E_FAIL` when
    /// the event was never time-stamped (one flag serves time and clock).
    DUNIResult GetTime(long long& time) const;
    /// Copies the stored clock into `clock` (0 if never set); `DUNI_E_FAIL` when
    /// the event was never time-stamped.
    DUNIResult GetClock(long& clock) const;

    /// Level named by `text`, or `defaultLevel`. Only the exact upper-case
    /// keywords are known: "ALL" 0, "DEBUG" 10, "VERBOSE" 30, "INFO" 50,
    /// "ERROR" 80, "ABORT" 90, "NONE" 999. "info", "WARNING", "AL", "" => default.
    static DUNXEventLevel GetLevel(const DUNXString& text, DUNXEventLevel defaultLevel);

private:
    OwnedText<kInlineNameLength + 1> m_EventName;
    DUNXEventLevel m_Level;
    bool m_TimeStamped = false;
    long long m_Time = 0;
    long m_Clock = 0;
};

/// Receives every event fired on the bus once registered with
/// `DUNXEventBus::AddListener`. A listener must remove itself (`RemoveListener`)
/// before it is destroyed; the bus never deletes one.
class DUNX_EXPORT DUNXEventListener {
public:
    /// Called synchronously for each event; `event` is valid only during the call.
    /// An exception thrown here stops the dispatch and reaches the firing code.
    virtual void HandleEvent(DUNXEvent& event) = 0;
    /// Does not unregister: a registered listener removes itself first.
    virtual ~DUNXEventListener();

protected:
    /// Registers nothing; makes sure the bus outlives every listener.
    DUNXEventListener();
    DUNXEventListener(const DUNXEventListener&);
    DUNXEventListener& operator=(const DUNXEventListener&) = default;
};

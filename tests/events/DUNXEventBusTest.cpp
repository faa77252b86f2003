#include <dunx/DUNXEventBus.h>
#include <dunx/Gk_ErrMgr.h>

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

// Appends "<tag>:<event name>" to a shared journal and runs an optional action.
class Recorder : public DUNXEventListener {
public:
    Recorder(std::string tag, std::vector<std::string>& journal)
        : m_Tag(std::move(tag)), m_Journal(journal) {}
    ~Recorder() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        m_Journal.push_back(m_Tag + ":" + (event.GetEventName() ? event.GetEventName() : "?"));
        if (m_Action)
            m_Action(event);
    }
    std::function<void(DUNXEvent&)> m_Action;

private:
    std::string m_Tag;
    std::vector<std::string>& m_Journal;
};

class TimedEvent : public DUNXEvent {
public:
    TimedEvent() : DUNXEvent("Timed", DUNXLevelInfo) {}
    bool IsTimed() const override { return true; }
};

class DUNXEventBusTest : public testing::Test {
protected:
    DUNXEventBus& bus = DUNXEventBus::GetEventBus();
    std::vector<std::string> journal;
    Recorder a{"A", journal}, b{"B", journal}, c{"C", journal};

    void fire(const char* name) {
        DUNXEvent event(name, DUNXLevelInfo);
        DUNXEventBus::Fire(event);
    }
    void registerAll() {
        for (Recorder* r : {&a, &b, &c})
            bus.AddListener(r);
    }
};

// Counts events without allocating, so it can stay registered for the whole run.
struct CountingListener : DUNXEventListener {
    int calls = 0;
    void HandleEvent(DUNXEvent&) override { ++calls; }
};

// Fires while the test program's statics are built, before main. Its listener
// stays registered and leaves the bus at exit, when the bus must still be alive.
struct FiresBeforeMain {
    CountingListener listener;
    FiresBeforeMain() {
        DUNXEventBus::GetEventBus().AddListener(&listener);
        DUNXEvent event("BeforeMain", DUNXLevelInfo);
        DUNXEventBus::Fire(event);
    }
    ~FiresBeforeMain() { DUNXEventBus::GetEventBus().RemoveListener(&listener); }
} g_FiresBeforeMain;

} // namespace

TEST_F(DUNXEventBusTest, WorksDuringStaticInitialisation) {
    EXPECT_GE(g_FiresBeforeMain.listener.calls, 1);
}

TEST_F(DUNXEventBusTest, CallsListenersInRegistrationOrderOnce) {
    bus.AddListener(&b);
    bus.AddListener(&a);
    bus.AddListener(&b); // a listener is never registered twice
    bus.AddListener(nullptr);
    fire("E");
    EXPECT_EQ(journal, (std::vector<std::string>{"B:E", "A:E"}));
}

TEST_F(DUNXEventBusTest, RemovingKeepsTheOthersInOrder) {
    registerAll();
    bus.AddListener(&b);
    bus.RemoveListener(&b); // added twice, removed once: gone
    bus.RemoveListener(&b); // not registered: ignored
    bus.RemoveListener(nullptr);
    fire("E");
    EXPECT_EQ(journal, (std::vector<std::string>{"A:E", "C:E"}));
}

TEST_F(DUNXEventBusTest, NestedEventsAreDeliveredInFullBeforeTheOuterOneGoesOn) {
    registerAll();
    a.m_Action = [this](DUNXEvent& event) {
        if (event.IsA("Outer"))
            fire("Inner");
    };
    fire("Outer");
    EXPECT_EQ(journal, (std::vector<std::string>{"A:Outer", "A:Inner", "B:Inner", "C:Inner",
                                                 "B:Outer", "C:Outer"}));
}

TEST_F(DUNXEventBusTest, ListenerAddedDuringDispatchWaitsForTheNextEvent) {
    bus.AddListener(&a);
    a.m_Action = [this](DUNXEvent&) { bus.AddListener(&b); };
    fire("First");
    fire("Second");
    EXPECT_EQ(journal, (std::vector<std::string>{"A:First", "A:Second", "B:Second"}));
}

TEST_F(DUNXEventBusTest, RemovalDuringDispatchSkipsNobodyElse) {
    registerAll();
    // A removes itself and B; C must still be called exactly once, B not at all.
    a.m_Action = [this](DUNXEvent& event) {
        if (event.IsA("First")) {
            bus.RemoveListener(&a);
            bus.RemoveListener(&b);
        }
    };
    fire("First");
    fire("Second");
    EXPECT_EQ(journal, (std::vector<std::string>{"A:First", "C:First", "C:Second"}));
}

TEST_F(DUNXEventBusTest, RemovalInsideANestedDispatchIsSafeForTheOuterOne) {
    registerAll();
    a.m_Action = [this](DUNXEvent& event) {
        if (event.IsA("Outer"))
            fire("Inner");
    };
    b.m_Action = [this](DUNXEvent& event) {
        if (event.IsA("Inner"))
            bus.RemoveListener(&c); // the outer dispatch has C still ahead
    };
    fire("Outer");
    bus.AddListener(&c); // back at the end, once
    fire("After");
    EXPECT_EQ(journal, (std::vector<std::string>{"A:Outer", "A:Inner", "B:Inner", "B:Outer",
                                                 "A:After", "B:After", "C:After"}));
}

TEST_F(DUNXEventBusTest, ExceptionFromAListenerReachesTheFirerAndStopsDelivery) {
    registerAll();
    b.m_Action = [this](DUNXEvent& event) {
        if (event.IsA("Boom")) {
            bus.RemoveListener(&a);
            throw DUNXAbortException();
        }
    };
    EXPECT_THROW(fire("Boom"), DUNXAbortException);
    fire("After"); // the removal made during the aborted dispatch has taken effect
    EXPECT_EQ(journal, (std::vector<std::string>{"A:Boom", "B:Boom", "B:After", "C:After"}));
}

TEST_F(DUNXEventBusTest, StampsOnlyTimedEventsEvenWithoutListeners) {
    TimedEvent timed;
    DUNXEvent plain("Plain", DUNXLevelInfo);
    long clock = -1;
    long long time = -1;
    DUNXEventBus::Fire(timed);
    DUNXEventBus::Fire(plain);
    EXPECT_TRUE(timed.GetClock(clock).IsSuccess());
    EXPECT_TRUE(timed.GetTime(time).IsSuccess());
    EXPECT_GE(clock, 0);
    EXPECT_GT(time, 1600000000LL); // a calendar time, in seconds
    EXPECT_EQ(plain.GetClock(clock), DUNI_E_FAIL);
    EXPECT_EQ(clock, 0);

    TimedEvent later;
    long laterClock = -1;
    DUNXEventBus::Fire(later);
    later.GetClock(laterClock);
    EXPECT_GE(laterClock, clock);
}

TEST_F(DUNXEventBusTest, FiringAnUntimedEventAllocatesNothing) {
    CountingListener first, second;
    bus.AddListener(&first);
    bus.AddListener(&second);
    DUNXEvent event("E", DUNXLevelInfo);
    long allocations;
    {
        dunx::test::AllocationCounter counter;
        for (int i = 0; i < 100; ++i)
            DUNXEventBus::Fire(event);
        allocations = counter.count();
    }
    bus.RemoveListener(&first);
    bus.RemoveListener(&second);
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(first.calls + second.calls, 200);
}

namespace {
bool g_CallbackAnswer = false;
int g_CallbackCalls = 0;
bool callback() {
    ++g_CallbackCalls;
    return g_CallbackAnswer;
}

struct AbortStateReset {
    ~AbortStateReset() {
        DUNXCallbackShared::m_AbortCallback = nullptr;
        Gk_ErrMgr::setAbort(false);
    }
};
} // namespace

TEST(DUNXCallbackShared, IsAbortedReturnsFalseOrThrows) {
    AbortStateReset reset;
    EXPECT_FALSE(DUNXCallbackShared::IsAborted()); // no callback, no request

    DUNXCallbackShared::m_AbortCallback = callback;
    g_CallbackAnswer = false;
    g_CallbackCalls = 0;
    EXPECT_FALSE(DUNXCallbackShared::IsAborted());
    EXPECT_EQ(g_CallbackCalls, 1);

    g_CallbackAnswer = true;
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);

    // A request throws whatever the callback answers, and without one.
    g_CallbackAnswer = false;
    Gk_ErrMgr::setAbort(true);
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
    DUNXCallbackShared::m_AbortCallback = nullptr;
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
}

TEST(Gk_ErrMgr, CheckAbortThrowsWhileRequested) {
    AbortStateReset reset;
    EXPECT_NO_THROW(Gk_ErrMgr::checkAbort());
    Gk_ErrMgr::setAbort(true);
    EXPECT_TRUE(Gk_ErrMgr::shouldAbort());
    EXPECT_THROW(Gk_ErrMgr::checkAbort(), DUNXAbortException);
    EXPECT_THROW(Gk_ErrMgr::checkAbort(), DUNXAbortException); // the request stays
    Gk_ErrMgr::setAbort(false);
    EXPECT_NO_THROW(Gk_ErrMgr::checkAbort());
}

TEST(Gk_ErrMgr, RaiseThrowsWithTheExceptionsOwnTypeAndChain) {
    Gk_Exception cause("disk gone");
    Gk_IOException fault("cannot read header", &cause);
    try {
        Gk_ErrMgr::raise(fault);
        FAIL() << "raise returned";
    } catch (const Gk_IOException& caught) {
        EXPECT_STREQ(caught.getMessage(), "cannot read header");
        ASSERT_NE(caught.getPrevious(), nullptr);
        EXPECT_STREQ(caught.getPrevious()->what(), "disk gone");
        EXPECT_EQ(caught.getPrevious()->getPrevious(), nullptr);
    }
    EXPECT_STREQ(Gk_Exception().getMessage(), "");
}

#include <dunx/DUNXEventBus.h>
#include <dunx/Gk_ErrMgr.h>

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Journal = std::vector<std::string>;

// Appends "<tag>:<event name>" to a shared journal, then runs its action.
struct Recorder : DUNXEventListener {
    Recorder(const char* tag, Journal& journal) : tag(tag), journal(journal) {}
    ~Recorder() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        journal.push_back(tag + ":" + event.GetEventName());
        if (action)
            action(event);
    }
    std::string tag;
    Journal& journal;
    std::function<void(DUNXEvent&)> action;
};

// Counts without allocating, so it may stay registered through the allocation check.
struct Counter : DUNXEventListener {
    int calls = 0;
    void HandleEvent(DUNXEvent&) override { ++calls; }
};

// Fires before main; its listener leaves the bus at exit, when the bus must still be alive.
struct FiresBeforeMain {
    Counter listener;
    FiresBeforeMain() {
        DUNXEventBus::GetEventBus().AddListener(&listener);
        DUNXEvent event("BeforeMain", DUNXLevelInfo);
        DUNXEventBus::Fire(event);
    }
    ~FiresBeforeMain() { DUNXEventBus::GetEventBus().RemoveListener(&listener); }
} g_FiresBeforeMain;

struct TimedEvent : DUNXEvent {
    TimedEvent() : DUNXEvent("Timed", DUNXLevelInfo) {}
    bool IsTimed() const override { return true; }
};

class DUNXEventBusTest : public testing::Test {
protected:
    DUNXEventBus& bus = DUNXEventBus::GetEventBus();
    Journal journal;
    Recorder a{"A", journal}, b{"B", journal}, c{"C", journal};

    void fire(const char* name) {
        DUNXEvent event(name, DUNXLevelInfo);
        DUNXEventBus::Fire(event);
    }
    void registerAll() {
        for (Recorder* r : {&a, &b, &c})
            bus.AddListener(r);
    }
    Journal take() { return std::exchange(journal, {}); }
};

} // namespace

TEST_F(DUNXEventBusTest, WorksDuringStaticInitialisation) {
    EXPECT_GE(g_FiresBeforeMain.listener.calls, 1);
}

TEST_F(DUNXEventBusTest, RegistrationKeepsFirstAddOrderAndRemovalKeepsTheRest) {
    for (Recorder* r : {&b, &a, &b, static_cast<Recorder*>(nullptr), &c})
        bus.AddListener(r);
    fire("E");
    EXPECT_EQ(take(), (Journal{"B:E", "A:E", "C:E"}));
    for (Recorder* r : {&b, &b, static_cast<Recorder*>(nullptr)})
        bus.RemoveListener(r); // added twice, removed once: gone; then ignored
    fire("F");
    EXPECT_EQ(take(), (Journal{"A:F", "C:F"}));
}

TEST_F(DUNXEventBusTest, NestedEventsAreDeliveredInFullAndMayRemoveListenersSafely) {
    registerAll();
    a.action = [this](DUNXEvent& event) {
        if (event.IsA("Outer"))
            fire("Inner");
    };
    fire("Outer");
    EXPECT_EQ(take(), (Journal{"A:Outer", "A:Inner", "B:Inner", "C:Inner", "B:Outer", "C:Outer"}));
    b.action = [this](DUNXEvent& event) {
        if (event.IsA("Inner"))
            bus.RemoveListener(&c); // the outer dispatch still has C ahead
    };
    fire("Outer");
    bus.AddListener(&c);
    fire("After");
    EXPECT_EQ(take(), (Journal{"A:Outer", "A:Inner", "B:Inner", "B:Outer", "A:After", "B:After",
                               "C:After"}));
}

TEST_F(DUNXEventBusTest, ListenerAddedDuringDispatchWaitsForTheNextEvent) {
    bus.AddListener(&a);
    a.action = [this](DUNXEvent&) { bus.AddListener(&b); };
    fire("First");
    fire("Second");
    EXPECT_EQ(journal, (Journal{"A:First", "A:Second", "B:Second"}));
}

TEST_F(DUNXEventBusTest, RemovalDuringDispatchSkipsNobodyElse) {
    registerAll();
    a.action = [this](DUNXEvent& event) {
        if (event.IsA("First")) {
            bus.RemoveListener(&a);
            bus.RemoveListener(&b);
        }
    };
    fire("First");
    fire("Second");
    EXPECT_EQ(journal, (Journal{"A:First", "C:First", "C:Second"}));
}

TEST_F(DUNXEventBusTest, ExceptionFromAListenerReachesTheFirerAndStopsDelivery) {
    registerAll();
    b.action = [this](DUNXEvent& event) {
        if (event.IsA("Boom")) {
            bus.RemoveListener(&a);
            throw DUNXAbortException();
        }
    };
    EXPECT_THROW(fire("Boom"), DUNXAbortException);
    fire("After"); // the removal made during the aborted dispatch has taken effect
    EXPECT_EQ(journal, (Journal{"A:Boom", "B:Boom", "B:After", "C:After"}));
}

TEST_F(DUNXEventBusTest, StampsOnlyTimedEvents) {
    TimedEvent timed;
    DUNXEvent plain("Plain", DUNXLevelInfo);
    DUNXEventBus::Fire(timed);
    DUNXEventBus::Fire(plain);
    long clock = -1;
    long long time = -1;
    EXPECT_TRUE(timed.GetClock(clock).IsSuccess());
    EXPECT_TRUE(timed.GetTime(time).IsSuccess());
    EXPECT_GE(clock, 0);
    EXPECT_GT(time, 1600000000LL); // calendar seconds, not a clock
    EXPECT_EQ(plain.GetClock(clock), DUNI_E_FAIL);
}

TEST_F(DUNXEventBusTest, FiringAnUntimedEventAllocatesNothing) {
    Counter first, second;
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

TEST(DUNXCallbackShared, IsAbortedReturnsFalseOrThrowsAndCheckAbortFollowsTheRequest) {
    struct Reset {
        ~Reset() {
            DUNXCallbackShared::m_AbortCallback = nullptr;
            Gk_ErrMgr::setAbort(false);
        }
    } reset;
    EXPECT_FALSE(DUNXCallbackShared::IsAborted()); // no callback, no request
    EXPECT_NO_THROW(Gk_ErrMgr::checkAbort());
    DUNXCallbackShared::m_AbortCallback = [] { return false; };
    EXPECT_FALSE(DUNXCallbackShared::IsAborted());
    Gk_ErrMgr::setAbort(true); // a request throws whatever the callback answers
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
    EXPECT_THROW(Gk_ErrMgr::checkAbort(), DUNXAbortException);
    DUNXCallbackShared::m_AbortCallback = nullptr; // and without one; the request stays
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
    Gk_ErrMgr::setAbort(false);
    EXPECT_NO_THROW(Gk_ErrMgr::checkAbort());
    DUNXCallbackShared::m_AbortCallback = [] { return true; };
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
}

TEST(Gk_ErrMgr, RaiseThrowsWithTheExceptionsOwnTypeAndChain) {
    Gk_Exception cause("disk gone");
    try {
        Gk_ErrMgr::raise(Gk_IOException("cannot read header", &cause));
        FAIL() << "raise returned";
    } catch (const Gk_IOException& caught) {
        EXPECT_STREQ(caught.getMessage(), "cannot read header");
        ASSERT_NE(caught.getPrevious(), nullptr);
        EXPECT_STREQ(caught.getPrevious()->what(), "disk gone");
    }
}

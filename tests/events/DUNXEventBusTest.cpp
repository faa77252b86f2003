#include <dunx/DUNXEventBus.h>
#include <dunx/Gk_ErrMgr.h>

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace {

// Appends "<tag>:<event name> " to a shared journal, then runs its action.
struct Recorder : DUNXEventListener {
    Recorder(char tag, std::string& journal) : tag(tag), journal(journal) {}
    ~Recorder() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        journal += tag + (":" + std::string(event.GetEventName()) + " ");
        action(event);
    }
    char tag;
    std::string& journal;
    std::function<void(DUNXEvent&)> action = [](DUNXEvent&) {};
};

void fire(const char* name) {
    DUNXEvent event(name, DUNXLevelInfo);
    DUNXEventBus::Fire(event);
}

// Fires before main and stays on the bus until exit; counts without allocating.
struct FiresBeforeMain : DUNXEventListener {
    int calls = 0;
    FiresBeforeMain() {
        DUNXEventBus::GetEventBus().AddListener(this);
        fire("BeforeMain");
    }
    ~FiresBeforeMain() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent&) override { ++calls; }
} g_FiresBeforeMain;

struct TimedEvent : DUNXEvent {
    TimedEvent() : DUNXEvent("Timed", DUNXLevelInfo) {}
    bool IsTimed() const override { return true; }
};

struct DUNXEventBusTest : testing::Test {
    DUNXEventBus& bus = DUNXEventBus::GetEventBus();
    std::string journal;
    Recorder a{'A', journal}, b{'B', journal}, c{'C', journal};
};

} // namespace

TEST_F(DUNXEventBusTest, RegistrationKeepsFirstAddOrderAndRemovalKeepsTheRest) {
    for (Recorder* r : {&b, &a, &b, static_cast<Recorder*>(nullptr), &c})
        bus.AddListener(r);
    fire("E");
    for (Recorder* r : {&b, &b, static_cast<Recorder*>(nullptr)})
        bus.RemoveListener(r); // added twice, removed once: gone; then ignored
    fire("F");
    EXPECT_EQ(journal, "B:E A:E C:E A:F C:F ");
}

TEST_F(DUNXEventBusTest, DispatchIsReentrantAndSafeAgainstChangesToTheListAndExceptions) {
    for (Recorder* r : {&a, &b, &c})
        bus.AddListener(r);
    a.action = [](DUNXEvent& event) {
        if (event.IsA("Outer"))
            fire("Inner"); // delivered in full before the outer event goes on
    };
    fire("Outer");
    b.action = [this](DUNXEvent& event) {
        if (event.IsA("Inner"))
            bus.RemoveListener(&c); // the outer dispatch still has C ahead
    };
    fire("Outer");
    a.action = [this](DUNXEvent&) {
        bus.RemoveListener(&a); // B moves up but must not be skipped
        bus.AddListener(&c);    // not called for the event being dispatched
    };
    fire("Third");
    b.action = [this](DUNXEvent&) {
        bus.RemoveListener(&b);
        throw DUNXAbortException(); // stops delivery: C is not called
    };
    EXPECT_THROW(fire("Boom"), DUNXAbortException);
    fire("Last");
    EXPECT_EQ(journal, "A:Outer A:Inner B:Inner C:Inner B:Outer C:Outer A:Outer A:Inner B:Inner "
                       "B:Outer A:Third B:Third B:Boom C:Last ");
}

TEST_F(DUNXEventBusTest, TheLastListenerMayChangeTheListFireAgainAndThrow) {
    for (Recorder* r : {&a, &b, &c})
        bus.AddListener(r);
    c.action = [this](DUNXEvent& event) {
        if (event.IsA("One")) {
            bus.RemoveListener(&a); // gone at once: the nested event does not reach it
            fire("Nested");
        }
        if (event.IsA("Two"))
            throw DUNXAbortException();
    };
    fire("One");
    EXPECT_THROW(fire("Two"), DUNXAbortException);
    b.action = [this](DUNXEvent& event) {
        if (event.IsA("Three"))
            bus.RemoveListener(&c); // C stands behind B: not called any more
    };
    fire("Three");
    fire("Four");
    EXPECT_EQ(journal, "A:One B:One C:One B:Nested C:Nested B:Two C:Two B:Three B:Four ");
}

TEST_F(DUNXEventBusTest, RemovalsDuringANestedDispatchNeitherSkipNorPileUp) {
    bus.RemoveListener(&g_FiresBeforeMain); // so that A is the first entry, added twice
    for (Recorder* r : {&a, &a, &b, &c})
        bus.AddListener(r);
    a.action = [](DUNXEvent& event) {
        if (event.IsA("Outer"))
            fire("Inner");
    };
    b.action = [this](DUNXEvent& event) {
        if (event.IsA("Inner"))
            bus.RemoveListener(&a); // behind both dispatches: the outer one must still reach C
    };
    fire("Outer");
    fire("After");
    EXPECT_EQ(journal, "A:Outer A:Inner B:Inner C:Inner B:Outer C:Outer B:After C:After ");

    // A listener that leaves and rejoins at every event must not grow the list.
    for (Recorder* r : {&b, &c})
        bus.RemoveListener(r);
    struct Rejoins : DUNXEventListener {
        int calls = 0;
        void HandleEvent(DUNXEvent&) override {
            ++calls;
            DUNXEventBus::GetEventBus().RemoveListener(this);
            DUNXEventBus::GetEventBus().AddListener(this);
        }
    } rejoins;
    bus.AddListener(&rejoins);
    DUNXEvent plain("Plain", DUNXLevelInfo);
    DUNXEventBus::Fire(plain);
    long allocations;
    {
        dunx::test::AllocationCounter counter;
        for (int i = 0; i < 200; ++i)
            DUNXEventBus::Fire(plain);
        allocations = counter.count();
    }
    bus.RemoveListener(&rejoins);
    bus.AddListener(&g_FiresBeforeMain);
    EXPECT_EQ(rejoins.calls, 201);
    if (dunx::test::AllocationCounter::SeesLibraryAllocations()) {
        EXPECT_EQ(allocations, 0) << "entries cleared during a dispatch are kept after it";
    }
}

TEST_F(DUNXEventBusTest, WorksFromStaticInitialisationOnStampsOnlyTimedEventsAndAllocatesNothing) {
    EXPECT_GE(g_FiresBeforeMain.calls, 1); // it fired before main
    TimedEvent timed;
    DUNXEventBus::Fire(timed);
    long long time = -1;
    EXPECT_TRUE(timed.GetTime(time).IsSuccess());
    EXPECT_GT(time, 1600000000LL); // calendar seconds, not a clock
    // The clock counts milliseconds of this run on a clock that never goes back.
    long first = -1, second = -1;
    timed.GetClock(first);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    TimedEvent later;
    DUNXEventBus::Fire(later);
    later.GetClock(second);
    EXPECT_TRUE(first >= 0 && first < 600000) << first;
    EXPECT_TRUE(second - first >= 30 && second - first < 1500) << second - first;
    DUNXEvent plain("Plain", DUNXLevelInfo);
    const int before = g_FiresBeforeMain.calls;
    long allocations;
    {
        dunx::test::AllocationCounter counter;
        for (int i = 0; i < 100; ++i)
            DUNXEventBus::Fire(plain);
        allocations = counter.count();
    }
    if (dunx::test::AllocationCounter::SeesLibraryAllocations()) {
        EXPECT_EQ(allocations, 0);
    }
    EXPECT_EQ(g_FiresBeforeMain.calls - before, 100);
    EXPECT_EQ(plain.GetTime(time), DUNI_E_FAIL);
    // A subclass is asked through IsTimed, not told by its type: the inherited
    // answer leaves it unstamped, as for a plain event.
    struct Inherits : DUNXEvent {
        Inherits() : DUNXEvent("Inherits", DUNXLevelInfo) {}
    } inherits;
    DUNXEventBus::Fire(inherits);
    EXPECT_EQ(inherits.GetTime(time), DUNI_E_FAIL);
}

TEST(DUNXCallbackShared, IsAbortedReturnsFalseOrThrowsAndCheckAbortFollowsTheRequest) {
    EXPECT_FALSE(DUNXCallbackShared::IsAborted()); // no callback, no request
    DUNXCallbackShared::m_AbortCallback = [] { return true; };
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
    DUNXCallbackShared::m_AbortCallback = [] { return false; };
    EXPECT_FALSE(DUNXCallbackShared::IsAborted());
    Gk_ErrMgr::setAbort(true); // a request throws whatever the callback answers
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
    EXPECT_THROW(Gk_ErrMgr::checkAbort(), DUNXAbortException);
    DUNXCallbackShared::m_AbortCallback = nullptr; // and without one; the request stays
    EXPECT_THROW(DUNXCallbackShared::IsAborted(), DUNXAbortException);
    Gk_ErrMgr::setAbort(false);
    EXPECT_NO_THROW(Gk_ErrMgr::checkAbort());
}

TEST(Gk_ErrMgr, RaiseThrowsWithTheExceptionsOwnTypeAndChain) {
    const Gk_Exception cause("disk gone");
    const Gk_IOException fault("cannot read header", &cause);
    EXPECT_THROW(Gk_ErrMgr::raise(fault), Gk_IOException);
    EXPECT_STREQ(fault.getPrevious()->what(), "disk gone");
}

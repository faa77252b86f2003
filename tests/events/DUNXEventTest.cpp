#include <dunx/DUNXEvent.h>
#include <dunx/Gk_Observer.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

TEST(DUNXEvent, GetLevelKnowsOnlyTheExactUpperCaseKeywords) {
    const DUNXEventLevel other = DUNXLevelWarning; // the default: a level without keyword
    const std::pair<const char*, DUNXEventLevel> cases[] = {{"ALL", DUNXLevelAll},
                                                            {"ABORT", DUNXLevelAbort},
                                                            {"DEBUG", DUNXLevelDebug},
                                                            {"ERROR", DUNXLevelError},
                                                            {"INFO", DUNXLevelInfo},
                                                            {"NONE", DUNXLevelNone},
                                                            {"VERBOSE", DUNXLevelVerbose},
                                                            {"info", other},
                                                            {"Info", other},
                                                            {"WARNING", other},
                                                            {"", other},
                                                            {"AL", other},
                                                            {"ALLX", other},
                                                            {"INFO ", other},
                                                            {"BOGUS", other},
                                                            {"70", other},
                                                            {"X", other}};
    for (const auto& [text, level] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(DUNXEvent::GetLevel(DUNXString(text), other), level);
    }
}

TEST(DUNXEvent, KindIsAlwaysDUNXEventWhileIsAComparesTheEventName) {
    DUNXEvent error("DUNXErrorEvent", DUNXLevelError);
    EXPECT_TRUE(error.IsKindOf("DUNXEvent"));
    EXPECT_FALSE(error.IsKindOf("DUNXErrorEvent"));
    EXPECT_FALSE(error.IsKindOf(nullptr));
    EXPECT_TRUE(error.IsA("DUNXErrorEvent"));
    EXPECT_FALSE(error.IsA("DUNXErrorEven"));
    EXPECT_FALSE(error.IsA(nullptr));
    error.SetEventName("");
    error.SetEventName(nullptr);
    EXPECT_TRUE(error.IsA("DUNXErrorEvent"));
    error.SetEventName("Renamed");
    EXPECT_TRUE(error.IsA("Renamed"));
    for (const char* name : {static_cast<const char*>(nullptr), ""})
        EXPECT_FALSE(DUNXEvent(name, DUNXLevelInfo).IsA(""));
    EXPECT_EQ(DUNXEntityCallback().getType(), 4);
}

TEST(DUNXEvent, OneStampFlagServesTimeAndClock) {
    DUNXEvent event("E", DUNXLevelInfo);
    long clock = 7;
    long long time = 7;
    EXPECT_EQ(event.GetClock(clock), DUNI_E_FAIL);
    EXPECT_EQ(event.GetTime(time), DUNI_E_FAIL);
    EXPECT_EQ(clock, 0); // copied out even when failing
    EXPECT_EQ(time, 0);
    EXPECT_TRUE(event.SetClock(1234).IsSuccess());
    EXPECT_TRUE(event.GetTime(time).IsSuccess()); // time was never set, but the flag is
    EXPECT_TRUE(event.GetClock(clock).IsSuccess());
    EXPECT_EQ(clock, 1234);
}

TEST(DUNXEvent, CopiesOwnTheirNames) {
    auto original = std::make_unique<DUNXEvent>("Original", DUNXLevelDebug);
    original->RaiseReference();
    DUNXEvent copy(*original);
    original.reset(); // the copy must not share the freed buffers
    EXPECT_STREQ(copy.GetEventName(), "Original");
    EXPECT_STREQ(copy.GetTypeName(), "DUNXEvent");
    EXPECT_EQ(copy.GetReferenceCount(), 0u);
}

#include <dunx/DUNXEvent.h>
#include <dunx/Gk_Observer.h>

#include <gtest/gtest.h>

TEST(DUNXEvent, GetLevelKnowsOnlyTheExactKeywords) {
    const DUNXEventLevel fallback = DUNXLevelWarning;
    struct Case {
        const char* text;
        DUNXEventLevel expected;
    } cases[] = {
        {"ALL", DUNXLevelAll},
        {"ABORT", DUNXLevelAbort},
        {"DEBUG", DUNXLevelDebug},
        {"VERBOSE", DUNXLevelVerbose},
        {"INFO", DUNXLevelInfo},
        {"ERROR", DUNXLevelError},
        {"NONE", DUNXLevelNone},
        {"info", fallback},
        {"Info", fallback},
        {"WARNING", fallback},
        {"", fallback},
        {"AL", fallback},
        {"ALLX", fallback},
        {"INFO ", fallback},
        {"BOGUS", fallback},
        {"70", fallback},
        {"X", fallback},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(DUNXEvent::GetLevel(DUNXString(c.text), fallback), c.expected);
    }
    EXPECT_EQ(DUNXEvent::GetLevel(DUNXString(), DUNXLevelInfo), DUNXLevelInfo);
}

TEST(DUNXEvent, KindIsAlwaysDUNXEventWhileIsAToldByName) {
    DUNXEvent error("DUNXErrorEvent", DUNXLevelError);
    EXPECT_TRUE(error.IsKindOf("DUNXEvent"));
    EXPECT_FALSE(error.IsKindOf("DUNXErrorEvent"));
    EXPECT_FALSE(error.IsKindOf("dunxevent"));
    EXPECT_FALSE(error.IsKindOf(nullptr));
    EXPECT_STREQ(error.GetTypeName(), "DUNXEvent");
    EXPECT_TRUE(error.IsA("DUNXErrorEvent"));
    EXPECT_FALSE(error.IsA("DUNXErrorEven"));
    EXPECT_FALSE(error.IsA(nullptr));
    EXPECT_EQ(error.GetLevel(), DUNXLevelError);
    EXPECT_EQ(error.GetReferenceCount(), 0u);
}

TEST(DUNXEvent, NamelessEventIsNothing) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        DUNXEvent event(name, DUNXLevelInfo);
        EXPECT_EQ(event.GetEventName(), nullptr);
        EXPECT_FALSE(event.IsA(""));
        EXPECT_FALSE(event.IsA("DUNXEvent"));
    }
}

TEST(DUNXEvent, SetEventNameIgnoresEmptyNames) {
    DUNXEvent event("First", DUNXLevelInfo);
    event.SetEventName("");
    event.SetEventName(nullptr);
    EXPECT_STREQ(event.GetEventName(), "First");
    event.SetEventName("Second");
    EXPECT_TRUE(event.IsA("Second"));
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
    EXPECT_EQ(time, 0);
    EXPECT_TRUE(event.GetClock(clock).IsSuccess());
    EXPECT_EQ(clock, 1234);
    EXPECT_FALSE(event.IsTimed());
}

TEST(DUNXEvent, CopiesOwnTheirNames) {
    auto* original = new DUNXEvent("Original", DUNXLevelDebug);
    original->RaiseReference();
    DUNXEvent copy(*original);
    delete original; // the copy must not share the freed buffers
    EXPECT_STREQ(copy.GetEventName(), "Original");
    EXPECT_STREQ(copy.GetTypeName(), "DUNXEvent");
    EXPECT_EQ(copy.GetReferenceCount(), 0u);
    EXPECT_EQ(copy.GetLevel(), DUNXLevelDebug);
}

TEST(DUNXObject, TypeNameIsAPrivateCopyOrNull) {
    char name[] = "Shape";
    DUNXObject object(name);
    name[0] = 'X';
    EXPECT_TRUE(object.IsKindOf("Shape"));
    EXPECT_FALSE(DUNXObject("").IsKindOf(""));
    EXPECT_EQ(DUNXObject(nullptr).GetTypeName(), nullptr);
    EXPECT_EQ(DUNXEntityCallback().getType(), 4);
}

#include <dunx/DUNXEvent.h>
#include <dunx/Gk_Observer.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

TEST(DUNXEvent, GetLevelKnowsOnlyTheExactUpperCaseKeywords) { // default: 70, no keyword
    const std::pair<const char*, int> cases[] = {
        {"ALL", 0},      {"ABORT", 90}, {"DEBUG", 10}, {"ERROR", 80},   {"INFO", 50}, {"NONE", 999},
        {"VERBOSE", 30}, {"info", 70},  {"Info", 70},  {"WARNING", 70}, {"", 70},     {"AL", 70},
        {"ALLX", 70},    {"INFO ", 70}, {"BOGUS", 70}, {"70", 70},      {"X", 70}};
    for (const auto& [text, level] : cases)
        EXPECT_EQ(DUNXEvent::GetLevel(DUNXString(text), DUNXLevelWarning), level) << text;
}

TEST(DUNXEvent, KindIsAlwaysDUNXEventWhileIsAComparesTheEventName) {
    DUNXEvent error("DUNXErrorEvent", DUNXLevelError);
    EXPECT_TRUE(error.IsKindOf("DUNXEvent"));
    EXPECT_FALSE(error.IsKindOf("DUNXErrorEvent"));
    EXPECT_FALSE(error.IsKindOf("dunxevent"));
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
    EXPECT_EQ(clock + time, 0); // both copied out (0) even when failing
    EXPECT_TRUE(event.SetClock(1234).IsSuccess());
    EXPECT_TRUE(event.GetTime(time).IsSuccess()); // time was never set, but the flag is
    EXPECT_TRUE(event.GetClock(clock).IsSuccess());
    EXPECT_EQ(clock, 1234);
}

TEST(DUNXEvent, NewEventsAndCopiesStartUncountedAndCopiesOwnTheirNames) {
    auto original = std::make_unique<DUNXEvent>("Original", DUNXLevelDebug);
    EXPECT_EQ(original->GetReferenceCount(), 0u) << "a handle taking it would never delete it";
    EXPECT_EQ(DUNXObject("Object").GetReferenceCount(), 0u);
    original->RaiseReference();
    DUNXEvent copy(*original);
    EXPECT_EQ(copy.GetReferenceCount(), 0u);
    original.reset(); // the copy must not share the freed buffers
    EXPECT_STREQ(copy.GetEventName(), "Original");
    EXPECT_STREQ(copy.GetTypeName(), "DUNXEvent");
}

TEST(DUNXEvent, NamesOfAnyLengthReadBackWholeAndCopiesOwnThem) {
    // Lengths around the part kept inside the object, and far past it.
    constexpr std::size_t kept = DUNXObject::kInlineNameLength;
    for (const std::size_t length : {std::size_t{1}, kept - 1, kept, kept + 1, 5 * kept}) {
        SCOPED_TRACE(length);
        const std::string name(length, 'n');
        auto event = std::make_unique<DUNXEvent>(name.c_str(), DUNXLevelInfo);
        auto object = std::make_unique<DUNXObject>(name.c_str());
        const DUNXEvent eventCopy(*event);
        DUNXEvent renamed(*event);
        const DUNXObject objectCopy(*object);
        event.reset(); // the copies must not read the freed originals
        object.reset();
        EXPECT_STREQ(eventCopy.GetEventName(), name.c_str());
        EXPECT_TRUE(eventCopy.IsA(name.c_str()));
        EXPECT_FALSE(eventCopy.IsA((name + "x").c_str()));
        EXPECT_STREQ(objectCopy.GetTypeName(), name.c_str());
        EXPECT_TRUE(objectCopy.IsKindOf(name.c_str()));
        EXPECT_FALSE(objectCopy.IsKindOf(name.substr(1).c_str()));
        for (const std::size_t next : {kept + 1, std::size_t{2}, 4 * kept, kept}) {
            const std::string other(next, 'r');
            renamed.SetEventName(other.c_str());
            renamed.SetEventName(renamed.GetEventName()); // its own bytes as the new name
            EXPECT_STREQ(renamed.GetEventName(), other.c_str());
        }
    }
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        const DUNXEvent unnamed(none, DUNXLevelInfo);
        const DUNXObject untyped(none);
        EXPECT_EQ(DUNXEvent(unnamed).GetEventName(), nullptr);
        EXPECT_EQ(DUNXObject(untyped).GetTypeName(), nullptr);
        EXPECT_FALSE(untyped.IsKindOf(""));
    }
}

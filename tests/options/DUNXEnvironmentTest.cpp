#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOutputStream.h>

#include "support/ScopedEnvironmentVariable.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <unistd.h>

using dunx::test::ScopedEnvironmentVariable;

namespace {

std::string text(const DUNXString& s) {
    const char* narrow = s;
    return narrow ? narrow : "<null>";
}

// Set before main, so before anything can make the environment snapshot.
ScopedEnvironmentVariable g_BeforeSnapshot("DUNXTestBeforeSnapshot", "early=1");

// Keeps the text of every message event fired while it is registered.
class MessageRecorder : public DUNXEventListener {
public:
    MessageRecorder() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~MessageRecorder() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        if (!event.IsA("DUNXMessageEvent"))
            return;
        DUNXStringOutputStream stream;
        event.GetFormattedDescription(&stream);
        m_Texts += stream.GetText();
    }
    std::string m_Texts;
};

} // namespace

TEST(DUNXEnvironment, NamesCompareWithoutRegardToCase) {
    ScopedEnvironmentVariable level("dunxtestloglevel", "3"), equals("dunxtestequals", "a=b");
    const char* cases[][2] = {{"DUNXTestLogLevel", "3"},
                              {"DUNXTESTLOGLEVEL", "3"},
                              {"DUNXTestEquals", "a=b"}}; // all after the first '='
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        DUNXString value;
        EXPECT_EQ(long(DUNXEnvironment::GetVariable(c[0], value)), DUNI_S_SUCCESS);
        EXPECT_EQ(text(value), c[1]);
    }
}

TEST(DUNXEnvironment, AbsentVariableFailsAndLeavesTextUntouched) {
    ScopedEnvironmentVariable absent("DUNXTestAbsent", nullptr), longer("DUNXTestAbsentX", "x");
    for (const char* name : {"DUNXTestAbsent", "DUNXTestAbsen", ""}) {
        SCOPED_TRACE(name);
        DUNXString value("untouched");
        EXPECT_EQ(long(DUNXEnvironment::GetVariable(name, value)), DUNI_E_FAIL);
        EXPECT_EQ(text(value), "untouched");
    }
}

TEST(DUNXEnvironment, BooleanIsTrueOnlyForTrueYesOn) {
    struct Case {
        const char* value; // null: not set
        bool expected;
    };
    const Case cases[] = {{"Yes", true},  {"TRUE", true},  {"on", true},     {"tRuE", true},
                          {"off", false}, {"No", false},   {"false", false}, {"maybe", false},
                          {"1", false},   {"Yess", false}, {nullptr, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value ? c.value : "<absent>");
        ScopedEnvironmentVariable variable("DUNXTestFlag", c.value);
        bool value = !c.expected; // written in every case, also when absent
        EXPECT_EQ(long(DUNXEnvironment::GetVariable("dunxtestflag", value)),
                  c.value ? DUNI_S_SUCCESS : DUNI_E_FAIL);
        EXPECT_EQ(value, c.expected);
    }
}

TEST(DUNXEnvironment, SnapshotIsMadeOnceAndMissesLaterChanges) {
    ScopedEnvironmentVariable early("DUNXTestBeforeSnapshot"), added("DUNXTestAdded", nullptr);
    const DUNXEnvironment* snapshot = DUNXEnvironment::GetEnv();
    ASSERT_NE(snapshot, nullptr);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestBeforeSnapshot", "late")), DUNI_S_SUCCESS);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestAdded", "new")), DUNI_S_SUCCESS);
    EXPECT_EQ(DUNXEnvironment::GetEnv(), snapshot);

    DUNXString live, kept, missing("untouched");
    EXPECT_EQ(long(DUNXEnvironment::GetVariable("DUNXTestBeforeSnapshot", live)), DUNI_S_SUCCESS);
    EXPECT_EQ(text(live), "late");
    EXPECT_EQ(long(snapshot->Get("dunxtestbeforesnapshot", kept)), DUNI_S_SUCCESS);
    EXPECT_EQ(text(kept), "early=1");
    EXPECT_EQ(long(DUNXEnvironment::GetVariable("DUNXTestAdded", live)), DUNI_S_SUCCESS);
    EXPECT_EQ(long(snapshot->Get("DUNXTestAdded", missing)), DUNI_E_FAIL);
    EXPECT_EQ(text(missing), "untouched");
}

TEST(DUNXEnvironment, EachVariableKeepsItsOwnValue) {
    ScopedEnvironmentVariable a("DUNXTestKeepA", nullptr), b("DUNXTestKeepB", nullptr);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestKeepA", "1")), DUNI_S_SUCCESS);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestKeepB", "2")), DUNI_S_SUCCESS);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestKeepB", "3")), DUNI_S_SUCCESS);
    DUNXString value;
    EXPECT_EQ(long(DUNXEnvironment::GetVariable("DUNXTestKeepA", value)), DUNI_S_SUCCESS);
    EXPECT_EQ(text(value), "1");
    // The process environment itself holds both, as other code and child processes see it.
    EXPECT_STREQ(std::getenv("DUNXTestKeepA"), "1");
    EXPECT_STREQ(std::getenv("DUNXTestKeepB"), "3");
}

TEST(DUNXEnvironment, PutVariableAnnouncesTextAsGivenAndSetsItAsAFormat) {
    const char* cases[][2] = {
        {"hello", "hello"}, {"50%%", "50%"}, {"%%d", "%d"}, {"%s and %d", "%s and %d"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        ScopedEnvironmentVariable variable("DUNXTestPut", nullptr);
        MessageRecorder recorder;
        EXPECT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestPut", c[0])), DUNI_S_SUCCESS);
        EXPECT_STREQ(std::getenv("DUNXTestPut"), c[1]);
        EXPECT_NE(recorder.m_Texts.find(std::string("Environment variable: DUNXTestPut=") + c[0]),
                  std::string::npos)
            << recorder.m_Texts;
    }
}

TEST(DUNXEnvironment, PutVariableRefusesAnEmptyName) {
    auto nameless = [] {
        int n = 0;
        for (char** entry = environ; *entry; ++entry)
            n += (*entry)[0] == '=';
        return n;
    };
    const int before = nameless();
    EXPECT_EQ(long(DUNXEnvironment::PutVariable("", "value")), DUNI_E_FAIL);
    EXPECT_EQ(nameless(), before);
}

TEST(DUNXEnvironment, LongTextIsSetInFullOrRefused) {
    const std::string longName = "DUNXTestLong" + std::string(4000, 'N');
    const std::pair<std::string, std::string> cases[] = {
        {"DUNXTestLongValue", std::string(8000, 'v')}, {longName, "v"}};
    for (const auto& [name, value] : cases) {
        SCOPED_TRACE(name.size());
        ScopedEnvironmentVariable variable(name.c_str(), nullptr);
        const long result = DUNXEnvironment::PutVariable(name.c_str(), value.c_str());
        // A cut text would set another value, or another variable, without a word.
        const char* set = std::getenv(name.c_str());
        if (result != DUNI_S_SUCCESS) {
            EXPECT_EQ(set, nullptr);
            continue;
        }
        ASSERT_NE(set, nullptr);
        EXPECT_EQ(std::strlen(set), value.size());
        EXPECT_TRUE(set == value); // not printed: thousands of letters
    }
}

TEST(DUNXProperties, SetSplitsAtTheFirstEquals) {
    const char* cases[][3] = {{"Mode=fast", "mode", "fast"},
                              {"a=b=c", "A", "b=c"},
                              {"Flag", "FLAG", ""},
                              {"E=", "e", ""}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        DUNXProperties props;
        ASSERT_EQ(long(props.Set(c[0])), DUNI_S_SUCCESS);
        EXPECT_EQ(props.Size(), 1);
        DUNXString value("untouched");
        ASSERT_EQ(long(props.Get(c[1], value)), DUNI_S_SUCCESS);
        EXPECT_EQ(value.length() ? text(value) : "", c[2]);
    }
}

TEST(DUNXProperties, ReplacingKeepsFirstSpellingAndPlace) {
    DUNXProperties props;
    props.Set("Mode=fast");
    props.Set("Other", "1");
    props.Set("MODE=slow");
    ASSERT_EQ(props.Size(), 2);
    std::string all;
    for (int i = 0; i < props.Size(); ++i) {
        DUNXString name, value;
        EXPECT_EQ(long(props.GetAt(i, name, value)), DUNI_S_SUCCESS);
        all += text(name) + "=" + text(value) + ";";
    }
    EXPECT_EQ(all, "Mode=slow;Other=1;");
}

TEST(DUNXProperties, RefusalsAndMissesChangeNothing) {
    DUNXProperties props;
    props.Set("Mode=fast");
    for (const DUNXString& bad : {DUNXString("=x"), DUNXString()})
        EXPECT_EQ(long(props.Set(bad)), DUNI_E_INVALID_ARGUMENT);
    for (const DUNXString& bad : {DUNXString(""), DUNXString()})
        EXPECT_EQ(long(props.Set(bad, "x")), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(props.Size(), 1);

    DUNXString name("name"), value("value");
    EXPECT_EQ(long(props.Get("Mod", value)), DUNI_E_FAIL);
    EXPECT_EQ(long(props.GetAt(-1, name, value)), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(long(props.GetAt(1, name, value)), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(text(name) + "=" + text(value), "name=value");
}

TEST(DUNXProperties, CopiesAreIndependent) {
    DUNXProperties original;
    original.Set("Mode=fast");
    DUNXProperties copy(original), assigned;
    assigned.Set("Stale=1");
    assigned = original;
    original.Set("Mode=slow");
    original.Set("Extra=1");
    for (const DUNXProperties* props : {&copy, &assigned}) {
        DUNXString value;
        EXPECT_EQ(long(props->Get("MODE", value)), DUNI_S_SUCCESS);
        EXPECT_EQ(text(value), "fast");
        EXPECT_EQ(props->Size(), 1);
        EXPECT_EQ(long(props->Get("Stale", value)), DUNI_E_FAIL);
    }
}

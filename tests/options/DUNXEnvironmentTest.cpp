#include <dunx/DUNXEnvironment.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedLocale.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

using dunx::test::ScopedEnvironmentVariable;

namespace {

std::string text(const DUNXString& s) {
    const char* narrow = s;
    return narrow ? narrow : "<null>";
}

std::string env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "<unset>";
}

// Set before main, so before anything can make the environment snapshot.
ScopedEnvironmentVariable g_BeforeSnapshot("DUNXTestBeforeSnapshot", "early=1");

} // namespace

TEST(DUNXEnvironment, LookupIgnoresCaseAndLeavesTheTextWhenAbsent) {
    ScopedEnvironmentVariable level("dunxtestloglevel", "3"), equals("dunxtestequals", "a=b"),
        absent("DUNXTestAbsent", nullptr), longer("DUNXTestAbsentX", "x");
    const char* cases[][2] = {{"DUNXTESTLogLevel", "3"},
                              {"DUNXTestEquals", "a=b"},
                              {"DUNXTestAbsent", nullptr},
                              {"DUNXTestAbsen", nullptr},
                              {"", nullptr}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        DUNXString value("untouched");
        EXPECT_EQ(long(DUNXEnvironment::GetVariable(c[0], value)),
                  c[1] ? DUNI_S_SUCCESS : DUNI_E_FAIL);
        EXPECT_EQ(text(value), c[1] ? c[1] : "untouched");
    }
}

TEST(DUNXEnvironment, NamesBeyondAsciiCompareByTheirCharacters) {
    dunx::test::ScopedLocale utf8("C.UTF-8");
    if (!utf8.isSet())
        GTEST_SKIP() << "no C.UTF-8 locale";
    // Same length in bytes, so that only the bytes above 127 tell the names apart.
    ScopedEnvironmentVariable accented("DUNXTest\xc3\x89t\xc3\xa9", "accents");
    const std::pair<const char*, const char*> cases[] = {
        {"dunxtest\xc3\xa9T\xc3\x89", "accents"}, // é and É: the same letter
        {"DUNXTest\xc3\x89t\xc3\xa1", nullptr},   // á is another letter
        {"DUNXTest\xc3\x89t\xc3\xa9x", nullptr}};
    for (const auto& [name, expected] : cases) {
        SCOPED_TRACE(name);
        DUNXString value("untouched");
        EXPECT_EQ(long(DUNXEnvironment::GetVariable(name, value)),
                  expected ? DUNI_S_SUCCESS : DUNI_E_FAIL);
        EXPECT_EQ(text(value), expected ? expected : "untouched");
    }
}

TEST(DUNXEnvironment, BooleanIsTrueOnlyForTrueYesOn) {
    const std::pair<const char*, bool> cases[] = {
        {"Yes", true},    {"TRUE", true},   {"on", true}, {"off", false},  {"No", false},
        {"false", false}, {"maybe", false}, {"1", false}, {"Yess", false}, {nullptr, false}};
    for (const auto& [set, expected] : cases) {
        SCOPED_TRACE(set ? set : "<absent>");
        ScopedEnvironmentVariable variable("DUNXTestFlag", set);
        bool value = !expected; // written in every case, also when absent
        EXPECT_EQ(long(DUNXEnvironment::GetVariable("dunxtestflag", value)),
                  set ? DUNI_S_SUCCESS : DUNI_E_FAIL);
        EXPECT_EQ(value, expected);
    }
}

TEST(DUNXEnvironment, SnapshotMissesWhatPutVariableSetsLater) {
    ScopedEnvironmentVariable early("DUNXTestBeforeSnapshot"), added("DUNXTestAdded", nullptr);
    const DUNXEnvironment* snapshot = DUNXEnvironment::GetEnv();
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestBeforeSnapshot", "late")), DUNI_S_SUCCESS);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestAdded", "new")), DUNI_S_SUCCESS);
    ASSERT_EQ(DUNXEnvironment::GetEnv(), snapshot);
    DUNXString live, kept, missing("untouched");
    EXPECT_EQ(long(DUNXEnvironment::GetVariable("DUNXTestBeforeSnapshot", live)), DUNI_S_SUCCESS);
    EXPECT_EQ(text(live), "late");
    EXPECT_EQ(long(snapshot->Get("dunxtestbeforesnapshot", kept)), DUNI_S_SUCCESS);
    EXPECT_EQ(text(kept), "early=1"); // split at the first '=' only
    EXPECT_EQ(long(snapshot->Get("DUNXTestAdded", missing)), DUNI_E_FAIL);
}

TEST(DUNXEnvironment, PutVariableAnnouncesTheTextAndSetsItAsAFormat) {
    ScopedEnvironmentVariable keep("DUNXTestKeep", nullptr), put("DUNXTestPut", nullptr);
    ASSERT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestKeep", "1")), DUNI_S_SUCCESS);
    const char* cases[][2] = {{"hello", "hello"}, {"50%%", "50%"}, {"%s and %d", "%s and %d"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        dunx::test::EventRecorder recorder;
        EXPECT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestPut", c[0])), DUNI_S_SUCCESS);
        EXPECT_EQ(env("DUNXTestPut"), c[1]);
        EXPECT_NE(recorder.texts().find(std::string("Environment variable: DUNXTestPut=") + c[0]),
                  std::string::npos);
    }
    EXPECT_EQ(env("DUNXTestKeep"), "1"); // not overwritten through a shared buffer
    EXPECT_EQ(long(DUNXEnvironment::PutVariable("", "value")), DUNI_E_FAIL);
    const std::string value(8000, 'v');
    EXPECT_EQ(long(DUNXEnvironment::PutVariable("DUNXTestPut", value.c_str())), DUNI_S_SUCCESS);
    EXPECT_TRUE(env("DUNXTestPut") == value); // in full; not printed: 8,000 letters
}

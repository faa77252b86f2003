#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXString.h>
#include <dunx/DUNXTrace.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using dunx::test::EventRecorder;
using dunx::test::ScopedEnvironmentVariable;
using Lines = std::vector<std::string>;

namespace {

// "<event name> <level> <text>" of every event recorded.
Lines summary(const EventRecorder& recorder) {
    Lines lines;
    for (const EventRecorder::Entry& e : recorder.entries())
        lines.push_back(e.name + " " + std::to_string(e.level) + " " + e.text);
    return lines;
}

} // namespace

TEST(DUNXMessageEvents, EventsCarryTheirNamesLevelsAndTexts) {
    EventRecorder recorder;
    // Fired from an argument list: warnings and assertions take the lower level.
    DUNXErrorEvent::Fire("bad face %d", 7);
    DUNXWarningEvent::Fire("loose %s", "edge");
    DUNXMessageEvent::Fire("reading %s", "part.x");
    DUNXDebugEvent::Fire("tolerance %.1f", 0.5);
    DUNXAssertEvent::Fire("count > %d", 0);
    DUNXVerboseEvent::Fire("step %d", 2);
    const DUNXError typed(42), described(5, DUNXString("face is open")), none;
    const std::string huge(5000, 'x');
    std::vector<std::unique_ptr<DUNXEvent>> built;
    built.emplace_back(new DUNXErrorEvent("e%d", 1));
    built.emplace_back(new DUNXWarningEvent("w%d", 2));
    built.emplace_back(new DUNXMessageEvent("%s", "m3"));
    built.emplace_back(new DUNXMessageEvent("%s", false, "plain"));
    built.emplace_back(new DUNXDebugEvent("d%d", 4));
    built.emplace_back(new DUNXAssertEvent("a%d", 5));
    built.emplace_back(new DUNXVerboseEvent("v%d", 6));
    built.emplace_back(new DUNXErrorEvent(typed)); // no message: the error writes its own text
    built.emplace_back(new DUNXErrorEvent(described));
    built.emplace_back(new DUNXErrorEvent(none));
    built.emplace_back(new DUNXMessageEvent("%s%%d%s", huge.c_str(), huge.c_str()));
    for (const auto& event : built)
        DUNXEventBus::Fire(*event);
    EXPECT_EQ(summary(recorder),
              (Lines{"DUNXErrorEvent 80 Error : bad face 7\n",
                     "DUNXWarningEvent 50 Warning : loose edge\n",
                     "DUNXMessageEvent 50 Message : reading part.x\n",
                     "DUNXDebugEvent 10 tolerance 0.5\n", "DUNXAssertEvent 30 Assert : count > 0\n",
                     "DUNXVerboseEvent 30 step 2\n", "DUNXErrorEvent 80 Error : e1\n",
                     "DUNXWarningEvent 70 Warning : w2\n", "DUNXMessageEvent 50 Message : m3\n",
                     "DUNXMessageEvent 50 plain\n", "DUNXDebugEvent 10 d4\n",
                     "DUNXAssertEvent 90 Assert : a5\n", "DUNXVerboseEvent 30 v6\n",
                     "DUNXErrorEvent 80 Error 42\n",
                     "DUNXErrorEvent 80 Error Description : face is open\n", "DUNXErrorEvent 80 ",
                     "DUNXMessageEvent 50 Message : " + std::string(1023, 'x') + "\n"}));
    EXPECT_EQ(DUNXDebugEvent("%s", "").GetMessage(), nullptr);
}

TEST(DUNXError, PrintfReadsItsTextTwiceWithoutEverReadingAMissingArgument) {
    EventRecorder recorder;
    DUNXError::Printf("100%% of %s", "faces"); // "100% of faces": its lone "%" stays as it is
    DUNXError::Printf("%s", "50%% done %s %n %d");
    DUNXError::Printf(nullptr);
    EXPECT_EQ(recorder.texts(), "Error : 100% of faces\nError : 50% done %s %n %d\n");
}

TEST(DUNXErrorTracker, KeepsCopiesOfTheErrorsFiredFromInitialiseToDestruction) {
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), nullptr);
    DUNXErrorEvent::Fire("before");
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);
    EXPECT_EQ(DUNXError::GetLastError(), nullptr);
    ASSERT_TRUE(DUNXErrorTracker::Initialize().IsSuccess());
    DUNXErrorTracker* tracker = DUNXErrorTracker::GetInstance();
    ASSERT_NE(tracker, nullptr);
    DUNXErrorTracker::Initialize();
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), tracker); // one tracker only
    DUNXError open(11, DUNXString("open shell"));
    EXPECT_EQ(DUNXErrorEvent::Fire(open, "Reader.cpp", 120), DUNI_E_ERROR);
    DUNXError::Printf("message only");
    DUNXWarningEvent::Fire("not an error");
    DUNXEvent impostor("DUNXErrorEvent", DUNXLevelError); // named so, but carries no error
    DUNXEventBus::Fire(impostor);
    EXPECT_EQ(DUNXError::GetErrorCount(), 2);
    const DUNXError* first = tracker->GetError(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetErrorType(), 11);
    EXPECT_STREQ(static_cast<const char*>(first->GetSourceFile()), "Reader.cpp");
    EXPECT_EQ(first->GetSourceLine(), 120);
    EXPECT_EQ(DUNXError::GetLastError()->GetErrorType(), 0); // a copy of the empty error
    EXPECT_EQ(tracker->GetError(-1), nullptr);
    EXPECT_EQ(tracker->GetError(2), nullptr);
    EXPECT_TRUE(DUNXErrorTracker::Reset().IsSuccess());
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);
    delete tracker;
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), nullptr);
    DUNXErrorEvent::Fire("after"); // a destroyed tracker is off the bus
}

TEST(DUNXTrace, ChannelsFollowDUNXLoggersAndTheLevelChoosesTheEvent) {
    EventRecorder recorder;
    {
        ScopedEnvironmentVariable unset("DUNXLoggers", nullptr);
        DUNXTrace("Lib").Printf(DUNXTraceDebug, "never");
    }
    ScopedEnvironmentVariable loggers("DUNXLoggers", "Reader,MyLibrary");
    EXPECT_TRUE(DUNXTrace("Reader").IsEnabled());
    for (const char* off : {"lib", "Writer", ""})
        EXPECT_FALSE(DUNXTrace(off).IsEnabled()) << off;
    DUNXTrace channel("Lib"); // a substring anywhere is enough
    channel.Printf(DUNXTraceDebug, "d%d", 1);
    channel.Printf(DUNXTraceVerbose, "v");
    channel.Printf(DUNXTraceInfo, "i");
    channel.Printf(static_cast<DUNXTraceLevel>(4), "ignored");
    EXPECT_EQ(summary(recorder), (Lines{"DUNXDebugEvent 10 d1\n", "DUNXVerboseEvent 30 v\n",
                                        "DUNXMessageEvent 50 i\n"}));
}

TEST(DUNXPrinters, TabsIndentEveryPrinterByFourBlanksAndTextsAreCut) {
    EventRecorder recorder;
    DUNXInfo::Printf("top\n"); // the event ends the line: one newline is dropped
    DUNXInfo::Tab();
    DUNXWarning::Tab();
    DUNXDebug::Printf("deep %d", 2);
    DUNXVerbose::NoTabPrintf("flat");
    DUNXAssert::Untab();
    DUNXWarning::Printf("half");
    DUNXInfo::Untab();
    DUNXInfo::Untab(); // never below zero
    DUNXInfo::PrintfAsItIs("100% as is\n");
    DUNXAssert::Printf("back");
    DUNXInfo::PrintfAsItIs(std::string(3000, 'y').c_str());
    EXPECT_EQ(summary(recorder),
              (Lines{"DUNXMessageEvent 50 top\n", "DUNXDebugEvent 10         deep 2\n",
                     "DUNXVerboseEvent 30 flat\n", "DUNXWarningEvent 50 Warning :     half\n",
                     "DUNXMessageEvent 50 100% as is\n\n", "DUNXAssertEvent 30 Assert : back\n",
                     "DUNXMessageEvent 50 " + std::string(1023, 'y') + "\n"}));
}

TEST(DUNXPrinters, MatrixAndPointPrintersUseTheirFormats) {
    EventRecorder recorder;
    const double m3[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1.25}};
    const double m34[4][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}};
    const double points[1][4] = {{0.5, 1, 2, 1}};
    DUNXDebug::Print3x3Matrix(m3);
    DUNXDebug::Print3x4Matrix(m34);
    DUNXDebug::PrintPointArray(points, 1);
    DUNXDebug::PrintPointArray(nullptr, 3);
    EXPECT_EQ(recorder.texts(), "{ 1.000,  0.000,  0.000}\n{ 0.000,  1.000,  0.000}\n"
                                "{ 0.000,  0.000, -1.250}\n[1.000, 2.000, 3.000]\n"
                                "[4.000, 5.000, 6.000]\n[7.000, 8.000, 9.000]\n"
                                "[10.000, 11.000, 12.000]\n[ 0.500,  1.000,  2.000,  1.000]\n");
}

TEST(DUNXString, DumpPrintsOneDebugLine) {
    EventRecorder recorder;
    DUNXString("abc").dump();
    ASSERT_EQ(recorder.entries().size(), 1u);
    const std::string& line = recorder.entries()[0].text;
    EXPECT_EQ(recorder.entries()[0].name, "DUNXDebugEvent");
    EXPECT_EQ(line.rfind("string 0x", 0), 0u) << line;
    EXPECT_NE(line.find("): \"abc\" (3 chars)\n"), std::string::npos) << line;
}

TEST(DUNXDebug, TimerMeasuresForwards) {
    const DUNXDebugTimer timer = DUNXDebug::StartTimer();
    volatile double sink = 0;
    for (int i = 0; i < 100000; ++i)
        sink = sink + i;
    const float seconds = DUNXDebug::StopTimer(timer);
    EXPECT_GT(seconds, 0.0f);
    EXPECT_LT(seconds, 60.0f);
}

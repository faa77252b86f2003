#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXTrace.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using Lines = std::vector<std::string>;

static Lines summary(const dunx::test::EventRecorder& recorder) {
    Lines lines;
    for (const auto& e : recorder.entries())
        lines.push_back(e.name + " " + std::to_string(e.level) + " " + e.text); // name level text
    return lines;
}

static const auto send = [](DUNXEvent&& event) { DUNXEventBus::Fire(event); };

TEST(DUNXMessageEvents, EventsCarryTheirNamesLevelsAndTextsAndErrorPrintfReadsItsTextTwice) {
    dunx::test::EventRecorder recorder;
    DUNXErrorEvent::Fire("e%d", 1);
    DUNXWarningEvent::Fire("w%s", "2"); // from an argument list: 50, and 30 for assertions
    DUNXMessageEvent::Fire("m%s", "3");
    DUNXDebugEvent::Fire("d%.1f", 0.5);
    DUNXAssertEvent::Fire("a%d", 5);
    DUNXVerboseEvent::Fire("v%d", 6);
    send(DUNXWarningEvent("w%d", 7));
    send(DUNXAssertEvent("a%d", 8));
    send(DUNXMessageEvent("%s", false, "plain"));
    send(DUNXErrorEvent(DUNXError(42))); // no message: the error writes its own text
    send(DUNXErrorEvent(DUNXError(5, DUNXString("open"))));
    // An empty text leaves no message: the empty error writes "". The formats are const char*
    // because a literal would also fit the va_list constructor where va_list is a char* (Windows).
    const char *const plain = "%s", *const percent = "%s%%d";
    send(DUNXErrorEvent(plain, ""));
    send(DUNXMessageEvent(percent, std::string(5000, 'x').c_str()));
    DUNXError::Printf("%s", "50%% done %s %n %d"); // read again: "%%" is one, the rest stays
    DUNXError::Printf(nullptr);
    EXPECT_EQ(summary(recorder),
              (Lines{"DUNXErrorEvent 80 Error : e1\n", "DUNXWarningEvent 50 Warning : w2\n",
                     "DUNXMessageEvent 50 Message : m3\n", "DUNXDebugEvent 10 d0.5\n",
                     "DUNXAssertEvent 30 Assert : a5\n", "DUNXVerboseEvent 30 v6\n",
                     "DUNXWarningEvent 70 Warning : w7\n", "DUNXAssertEvent 90 Assert : a8\n",
                     "DUNXMessageEvent 50 plain\n", "DUNXErrorEvent 80 Error 42\n",
                     "DUNXErrorEvent 80 Error Description : open\n", "DUNXErrorEvent 80 ",
                     "DUNXMessageEvent 50 Message : " + std::string(1023, 'x') + "\n",
                     "DUNXErrorEvent 80 Error : 50% done %s %n %d\n"}));
}

TEST(DUNXErrorTracker, KeepsCopiesOfTheErrorsFiredFromInitialiseToDestruction) {
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);
    EXPECT_EQ(DUNXError::GetLastError(), nullptr);
    DUNXErrorTracker::Initialize();
    DUNXErrorTracker* tracker = DUNXErrorTracker::GetInstance();
    ASSERT_NE(tracker, nullptr);
    EXPECT_TRUE(DUNXErrorTracker::Initialize().IsSuccess());
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), tracker); // one tracker only
    DUNXError open(11, DUNXString("open shell"));
    EXPECT_EQ(DUNXErrorEvent::Fire(open, "Reader.cpp", 120), DUNI_E_ERROR);
    DUNXError::Printf("message only");
    DUNXWarningEvent::Fire("not an error");
    send(DUNXEvent("DUNXErrorEvent", DUNXLevelError)); // named so, but carries no error
    EXPECT_EQ(DUNXError::GetErrorCount(), 2);
    const DUNXError* first = tracker->GetError(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetErrorType(), 11);
    EXPECT_STREQ(static_cast<const char*>(first->GetSourceFile()), "Reader.cpp");
    EXPECT_EQ(first->GetSourceLine(), 120);
    EXPECT_EQ(DUNXError::GetLastError()->GetErrorType(), 0); // a copy of the empty error
    EXPECT_EQ(tracker->GetError(-1), nullptr);
    EXPECT_EQ(tracker->GetError(2), nullptr);
    DUNXErrorTracker::Reset();
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);
    delete tracker;
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), nullptr);
    DUNXErrorEvent::Fire("after"); // a destroyed tracker is off the bus
}

TEST(DUNXTrace, ChannelsFollowDUNXLoggersAndPrintersIndentByTheSharedTabDepth) {
    dunx::test::EventRecorder recorder;
    dunx::test::ScopedEnvironmentVariable unset("DUNXLoggers", nullptr);
    DUNXTrace("Lib").Printf(DUNXTraceDebug, "never");
    dunx::test::ScopedEnvironmentVariable loggers("DUNXLoggers", "Reader,MyLibrary");
    EXPECT_TRUE(DUNXTrace("Reader").IsEnabled());
    for (const char* off : {"lib", "Writer", ""})
        EXPECT_FALSE(DUNXTrace(off).IsEnabled()) << off;
    DUNXTrace channel("Lib"); // a substring anywhere is enough
    channel.Printf(DUNXTraceDebug, "d%d", 1);
    channel.Printf(DUNXTraceVerbose, "v");
    channel.Printf(DUNXTraceInfo, "i");
    channel.Printf(static_cast<DUNXTraceLevel>(4), "ignored");
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
              (Lines{"DUNXDebugEvent 10 d1\n", "DUNXVerboseEvent 30 v\n", "DUNXMessageEvent 50 i\n",
                     "DUNXMessageEvent 50 top\n", "DUNXDebugEvent 10         deep 2\n",
                     "DUNXVerboseEvent 30 flat\n", "DUNXWarningEvent 50 Warning :     half\n",
                     "DUNXMessageEvent 50 100% as is\n\n", "DUNXAssertEvent 30 Assert : back\n",
                     "DUNXMessageEvent 50 " + std::string(1023, 'y') + "\n"}));
}

TEST(DUNXDebug, TimerCountsSecondsOnAClockThatNeverGoesBack) {
    const DUNXDebugTimer timer = DUNXDebug::StartTimer();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const float seconds = DUNXDebug::StopTimer(timer);
    EXPECT_TRUE(seconds >= 0.03f && seconds < 1.5f) << seconds;
}

TEST(DUNXTrace, ShortFormatsAndANullTextArgumentPrintAsTheCLibraryPrintsThem) {
    dunx::test::EventRecorder recorder;
    // Two characters, but not the "%s" whose text is copied as it is.
    EXPECT_STREQ(DUNXWarningEvent("%d", 42).GetMessage(), "42");
    const char* const none = std::getenv("DUNXTestNeverSet"); // null, unknown to the compiler
    DUNXInfo::Printf("[%s]", none);
    char expected[32];
    std::snprintf(expected, sizeof expected, "[%s]", none);
    EXPECT_EQ(recorder.texts(), std::string(expected) + "\n");
}

TEST(DUNXString, DumpPrintsOneDebugLine) {
    dunx::test::EventRecorder recorder;
    DUNXString("abc").dump();
    const std::string line = summary(recorder).at(0);
    EXPECT_EQ(line.rfind("DUNXDebugEvent 10 string 0x", 0), 0u) << line;
    EXPECT_NE(line.find("): \"abc\" (3 chars)\n"), std::string::npos) << line;
}

TEST(DUNXTrace, PrintersCutAtTheBufferAndLeaveNothingOfAnEarlierLongerMessage) {
    dunx::test::EventRecorder recorder;
    DUNXInfo::Tab();
    DUNXInfo::Tab(); // eight blanks leave room for 1015 bytes of text
    const std::string fits(1014, 'f'), cut(1015, 'c');
    DUNXInfo::Printf("%s\n", fits.c_str()); // its newline fits, and is dropped
    DUNXInfo::Printf("%s\n", cut.c_str());  // its newline is cut off: nothing to drop
    DUNXInfo::Printf("%s", std::string(2000, 'x').c_str());
    DUNXInfo::Printf("short");
    DUNXInfo::Untab();
    DUNXInfo::Untab();
    DUNXInfo::PrintfAsItIs(std::string(1500, 'z').c_str());
    DUNXInfo::PrintfAsItIs("tail");
    const std::string blanks(8, ' ');
    EXPECT_EQ(summary(recorder),
              (Lines{"DUNXMessageEvent 50 " + blanks + fits + "\n",
                     "DUNXMessageEvent 50 " + blanks + cut + "\n",
                     "DUNXMessageEvent 50 " + blanks + std::string(1015, 'x') + "\n",
                     "DUNXMessageEvent 50 " + blanks + "short\n",
                     "DUNXMessageEvent 50 " + std::string(1023, 'z') + "\n",
                     "DUNXMessageEvent 50 tail\n"}));
}

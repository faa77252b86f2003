#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXString.h>
#include <dunx/DUNXTrace.h>

#include "support/EventRecorder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

using dunx::test::EventRecorder;

namespace {

std::string describe(DUNXEvent& event) {
    DUNXStringOutputStream out;
    event.GetFormattedDescription(&out);
    return out.GetText();
}

} // namespace

TEST(DUNXMessageEvents, FiredEventsCarryTheirNamesLevelsAndTexts) {
    EventRecorder recorder;
    DUNXErrorEvent::Fire("bad face %d", 7);
    DUNXWarningEvent::Fire("loose edge");
    DUNXMessageEvent::Fire("reading %s", "part.x");
    DUNXDebugEvent::Fire("tolerance %.1f", 0.5);
    DUNXAssertEvent::Fire("count > 0");
    DUNXVerboseEvent::Fire("step %d", 2);
    struct Expected {
        const char* name;
        int level;
        const char* text;
    } expected[] = {
        {"DUNXErrorEvent", 80, "Error : bad face 7\n"},
        // Warnings and assertions built from an argument list take the lower level.
        {"DUNXWarningEvent", 50, "Warning : loose edge\n"},
        {"DUNXMessageEvent", 50, "Message : reading part.x\n"},
        {"DUNXDebugEvent", 10, "tolerance 0.5\n"},
        {"DUNXAssertEvent", 30, "Assert : count > 0\n"},
        {"DUNXVerboseEvent", 30, "step 2\n"},
    };
    ASSERT_EQ(recorder.entries().size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(recorder.entries()[i].name, expected[i].name);
        EXPECT_EQ(recorder.entries()[i].level, expected[i].level);
        EXPECT_EQ(recorder.entries()[i].text, expected[i].text);
    }
}

TEST(DUNXMessageEvents, FormatConstructorsUseTheHigherLevels) {
    DUNXWarningEvent warning("w");
    DUNXAssertEvent assertion("a");
    DUNXMessageEvent plain("%s", false, "no prefix");
    EXPECT_EQ(warning.GetLevel(), DUNXLevelWarning);
    EXPECT_EQ(assertion.GetLevel(), DUNXLevelAbort);
    EXPECT_EQ(describe(plain), "no prefix\n");
    EXPECT_FALSE(plain.HasPrefix());
    EXPECT_TRUE(warning.IsKindOf("DUNXEvent"));
}

TEST(DUNXMessageEvents, EmptyTextLeavesTheMessageNull) {
    DUNXDebugEvent empty("%s", "");
    DUNXDebugEvent null(nullptr);
    EXPECT_EQ(empty.GetMessage(), nullptr);
    EXPECT_EQ(null.GetMessage(), nullptr);
    EXPECT_EQ(describe(empty), "\n");
}

TEST(DUNXMessageEvents, LongMessagesAreCutAtTheBuffer) {
    const std::string huge(5000, 'x');
    DUNXMessageEvent event("%s%%d%s", huge.c_str(), huge.c_str());
    ASSERT_NE(event.GetMessage(), nullptr);
    EXPECT_EQ(std::string(event.GetMessage()), std::string(1023, 'x'));
}

TEST(DUNXErrorEvent, WithoutMessageTheErrorWritesItsOwnText) {
    DUNXError typed(42);
    DUNXError described(5, DUNXString("face is open"));
    DUNXError none;
    DUNXErrorEvent a(typed), b(described), c(none);
    EXPECT_EQ(describe(a), "Error 42\n");
    EXPECT_EQ(describe(b), "Error Description : face is open\n");
    EXPECT_EQ(describe(c), "");
    EXPECT_EQ(a.GetError(), &typed);
    EXPECT_EQ(DUNXErrorEvent("x").GetError(), &DUNXError::FAIL_ERROR);
}

TEST(DUNXError, PrintfReadsItsTextTwiceWithoutEverReadingAMissingArgument) {
    EventRecorder recorder;
    // The first pass leaves "100% of faces"; its lone "%" survives the second as it stands.
    DUNXError::Printf("100%% of %s", "faces");
    DUNXError::Printf("%s", "50%% done %s %n %d");
    DUNXError::Printf(nullptr);
    ASSERT_EQ(recorder.entries().size(), 2u);
    EXPECT_EQ(recorder.entries()[0].text, "Error : 100% of faces\n");
    EXPECT_EQ(recorder.entries()[1].text, "Error : 50% done %s %n %d\n");
}

TEST(DUNXErrorTracker, KeepsErrorsFromInitialiseToDestruction) {
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), nullptr);
    DUNXErrorEvent::Fire("before");
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);
    EXPECT_EQ(DUNXError::GetLastError(), nullptr);

    ASSERT_TRUE(DUNXErrorTracker::Initialize().IsSuccess());
    DUNXErrorTracker* tracker = DUNXErrorTracker::GetInstance();
    ASSERT_NE(tracker, nullptr);
    EXPECT_TRUE(DUNXErrorTracker::Initialize().IsSuccess());
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

    open.SetDescription(DUNXString("changed later"));
    DUNXString kept;
    first->GetDescription(kept);
    EXPECT_STREQ(static_cast<const char*>(kept), "open shell"); // the tracker keeps copies

    EXPECT_TRUE(DUNXErrorTracker::Reset().IsSuccess());
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);

    delete tracker;
    EXPECT_EQ(DUNXErrorTracker::GetInstance(), nullptr);
    DUNXErrorEvent::Fire("after"); // nobody listens to a destroyed tracker
    EXPECT_EQ(DUNXError::GetErrorCount(), 0);
    EXPECT_TRUE(DUNXErrorTracker::Reset().IsSuccess());
}

namespace {
// Sets DUNXLoggers for one test and restores what was there.
class ScopedLoggers {
public:
    explicit ScopedLoggers(const char* value) {
        if (const char* old = std::getenv("DUNXLoggers"))
            m_Old = old, m_HadOld = true;
        if (value)
            setenv("DUNXLoggers", value, 1);
        else
            unsetenv("DUNXLoggers");
    }
    ~ScopedLoggers() {
        if (m_HadOld)
            setenv("DUNXLoggers", m_Old.c_str(), 1);
        else
            unsetenv("DUNXLoggers");
    }

private:
    std::string m_Old;
    bool m_HadOld = false;
};
} // namespace

TEST(DUNXTrace, ChannelIsOnWhenDUNXLoggersContainsItsName) {
    {
        ScopedLoggers unset(nullptr);
        EXPECT_FALSE(DUNXTrace("Lib").IsEnabled());
    }
    ScopedLoggers loggers("Reader,MyLibrary");
    EXPECT_TRUE(DUNXTrace("Lib").IsEnabled()); // a substring anywhere is enough
    EXPECT_TRUE(DUNXTrace("Reader").IsEnabled());
    EXPECT_FALSE(DUNXTrace("lib").IsEnabled());
    EXPECT_FALSE(DUNXTrace("Writer").IsEnabled());
    EXPECT_FALSE(DUNXTrace("").IsEnabled());
    EXPECT_FALSE(DUNXTrace(nullptr).IsEnabled());
}

TEST(DUNXTrace, LevelChoosesTheEventAndOffChannelsStaySilent) {
    EventRecorder recorder;
    {
        ScopedLoggers unset(nullptr);
        DUNXTrace("Lib").Printf(DUNXTraceDebug, "never %d", 1);
    }
    ScopedLoggers loggers("Lib");
    DUNXTrace channel("Lib");
    channel.Printf(DUNXTraceDebug, "d%d", 1);
    channel.Printf(DUNXTraceVerbose, "v");
    channel.Printf(DUNXTraceInfo, "i");
    channel.Printf(static_cast<DUNXTraceLevel>(4), "ignored");
    channel.Printf(DUNXTraceDebug, nullptr);
    ASSERT_EQ(recorder.entries().size(), 3u);
    EXPECT_EQ(recorder.entries()[0].name, "DUNXDebugEvent");
    EXPECT_EQ(recorder.entries()[0].text, "d1\n");
    EXPECT_EQ(recorder.entries()[1].name, "DUNXVerboseEvent");
    EXPECT_EQ(recorder.entries()[2].name, "DUNXMessageEvent");
    EXPECT_EQ(recorder.entries()[2].text, "i\n");
}

TEST(DUNXPrinters, TabsIndentEveryPrinterAndNoTabPrintfIgnoresThem) {
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
    DUNXInfo::Printf("back");
    EXPECT_EQ(_DUNXTraceTab, 0);
    EXPECT_EQ(recorder.texts(), "top\n"
                                "        deep 2\n"
                                "flat\n"
                                "Warning :     half\n"
                                "100% as is\n\n"
                                "back\n");
}

TEST(DUNXPrinters, MatrixAndPointPrintersUseTheirFormats) {
    EventRecorder recorder;
    const double m3[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1.25}};
    const double m34[4][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}};
    const double points[2][4] = {{0.5, 1, 2, 1}, {3, 4, 5, 1}};
    DUNXDebug::Print3x3Matrix(m3);
    DUNXDebug::Print3x4Matrix(m34);
    DUNXDebug::PrintPointArray(points, 2);
    DUNXDebug::PrintPointArray(nullptr, 3);
    EXPECT_EQ(recorder.texts(), "{ 1.000,  0.000,  0.000}\n"
                                "{ 0.000,  1.000,  0.000}\n"
                                "{ 0.000,  0.000, -1.250}\n"
                                "[1.000, 2.000, 3.000]\n"
                                "[4.000, 5.000, 6.000]\n"
                                "[7.000, 8.000, 9.000]\n"
                                "[10.000, 11.000, 12.000]\n"
                                "[ 0.500,  1.000,  2.000,  1.000]\n"
                                "[ 3.000,  4.000,  5.000,  1.000]\n");
}

TEST(DUNXPrinters, LongTextsAndPercentSignsAreSafe) {
    EventRecorder recorder;
    const std::string huge(3000, 'y');
    for (int i = 0; i < 40; ++i)
        DUNXInfo::Tab(); // 160 blanks of indentation
    DUNXInfo::Printf("%s", huge.c_str());
    DUNXInfo::PrintfAsItIs(huge.c_str());
    for (int i = 0; i < 40; ++i)
        DUNXInfo::Untab();
    ASSERT_EQ(recorder.entries().size(), 2u);
    EXPECT_EQ(recorder.entries()[0].text, std::string(160, ' ') + std::string(863, 'y') + "\n");
    EXPECT_EQ(recorder.entries()[1].text, std::string(1023, 'y') + "\n");
}

TEST(DUNXString, DumpPrintsOneDebugLine) {
    EventRecorder recorder;
    DUNXString("abc").dump();
    DUNXString().dump();
    ASSERT_EQ(recorder.entries().size(), 2u);
    const std::string& line = recorder.entries()[0].text;
    EXPECT_EQ(recorder.entries()[0].name, "DUNXDebugEvent");
    EXPECT_EQ(line.rfind("string 0x", 0), 0u) << line;
    EXPECT_NE(line.find("): \"abc\" (3 chars)\n"), std::string::npos) << line;
    EXPECT_NE(recorder.entries()[1].text.find("(0x0): \"\" (0 chars)"), std::string::npos);
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

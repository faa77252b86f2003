#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXTrace.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedLocale.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
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

TEST(DUNXMessageEvents, AFormatTheCLibraryFailsOnGivesAnEmptyText) {
    if (dunx::test::kWindows)
        GTEST_SKIP() << "Windows' C library writes what it can of a wide text instead of failing";
    dunx::test::ScopedLocale c("C"); // glibc cannot write a wide é in the C locale at all
    dunx::test::EventRecorder recorder;
    DUNXError::Printf("[%ls]", L"\u00e9");
    DUNXWarningEvent::Fire("[%ls]", L"\u00e9");
    EXPECT_EQ(summary(recorder), (Lines{"DUNXErrorEvent 80 ", "DUNXWarningEvent 50 Warning : \n"}));
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
    DUNXInfo::NoTabPrintf("\n"); // a text that is only its newline prints as an empty one
    char expected[32];
    std::snprintf(expected, sizeof expected, "[%s]", none);
    EXPECT_EQ(recorder.texts(), std::string(expected) + "\n\n");
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

TEST(DUNXMessageEvents, MessagesOfAnyLengthReadBackWholeAndCopiesOwnThem) {
    // Lengths around the part kept inside the event, around the cut, and past it.
    constexpr std::size_t kept = DUNXTextEvent::kInlineMessageLength;
    const char *const plain = "%s", *const bracketed = "<%s>"; // taken as it is / formatted
    for (const std::size_t length : {std::size_t{1}, kept - 2, kept - 1, kept, kept + 1,
                                     std::size_t{1021}, std::size_t{1023}, std::size_t{3000}}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'm');
        auto asItIs = std::make_unique<DUNXMessageEvent>(plain, text.c_str());
        auto formatted = std::make_unique<DUNXMessageEvent>(bracketed, text.c_str());
        DUNXMessageEvent asItIsCopy(*asItIs), formattedCopy(*formatted);
        asItIs.reset(); // the copies must not read the freed originals
        formatted.reset();
        EXPECT_EQ(std::string(asItIsCopy.GetMessage()), text.substr(0, 1023));
        EXPECT_EQ(std::string(formattedCopy.GetMessage()), ("<" + text + ">").substr(0, 1023));
        DUNXStringOutputStream out;
        formattedCopy.GetFormattedDescription(&out);
        EXPECT_EQ(std::string(out.GetText()),
                  "Message : " + ("<" + text + ">").substr(0, 1023) + "\n");
    }
}

// What `DUNXWarningEvent(format, args...)` keeps and what vsnprintf writes into
// a message buffer must be the same bytes, whichever way the event formats them.
template <class... Args> void expectAsTheCLibrary(const char* format, Args... args) {
    char expected[1024];
    std::snprintf(expected, sizeof expected, format, args...);
    const DUNXWarningEvent event(format, args...);
    const char* message = event.GetMessage();
    EXPECT_EQ(std::string(message ? message : ""), std::string(expected))
        << "format: " << std::string(format).substr(0, 40);
}

TEST(DUNXMessageEvents, FormatsEveryConversionAsTheCLibraryDoesAndCutsWhereItCuts) {
    const char* const none = std::getenv("DUNXTestNeverSet"); // null, unknown to the compiler
    const std::string x1020(1020, 'x'), x1014(1014, 'x'), x1013(1013, 'x'), x1010(1010, 'x'),
        y100(100, 'y');
    // The common conversions, at the ends of their ranges.
    expectAsTheCLibrary("value %d", 0);
    expectAsTheCLibrary("%d|%d|%d|%d|%i", 7, -7, 99, -100, 12345);
    expectAsTheCLibrary("%d %d %i", INT_MIN, INT_MAX, INT_MIN);
    expectAsTheCLibrary("%u %u %u", 0u, 10u, UINT_MAX);
    for (unsigned long power = 1; power <= ULONG_MAX / 10; power *= 10) // every count of digits
        expectAsTheCLibrary("%lu %lu %ld %d", power - 1, power, -static_cast<long>(power),
                            static_cast<int>(power));
    expectAsTheCLibrary("%ld %ld %li %lu %lu", LONG_MIN, LONG_MAX, -1L, ULONG_MAX, 0UL);
    expectAsTheCLibrary("[%s] [%s] [%s]", "text", "", none);
    expectAsTheCLibrary("%c%c%c", 'a', 200, '-');
    expectAsTheCLibrary("%c%c", 'a', 0); // a zero byte ends the text
    expectAsTheCLibrary("100%% of %d%%", 3);
    // Anything else goes whole to the C library, also after common conversions.
    expectAsTheCLibrary("%d %5d|%-3s|%.2s", 1, 2, "a", "abc");
    expectAsTheCLibrary("%d %x %o %X", 1, 255, 8, 0xabc);
    expectAsTheCLibrary("%lld %llu %zu %hd", -5LL, 5ULL, std::size_t{9}, 70000);
    expectAsTheCLibrary("%d %.3f %e %g %p", 1, 0.5, 1e10, 2.5, static_cast<void*>(nullptr));
    expectAsTheCLibrary("%+d % d %05d %#x", 4, 4, 4, 4);
    // The 1,023-byte cut inside a number, inside a text and inside the format's own text.
    expectAsTheCLibrary("%s%d", x1020.c_str(), INT_MIN);
    expectAsTheCLibrary("%s%ld|%lu", x1010.c_str(), LONG_MIN, ULONG_MAX);
    expectAsTheCLibrary("%s%u", x1020.c_str(), UINT_MAX);
    expectAsTheCLibrary("%s%d%s", x1013.c_str(), INT_MAX, "tail"); // the number just fits
    expectAsTheCLibrary("%s%d%s", x1014.c_str(), INT_MAX, "tail"); // one byte short
    expectAsTheCLibrary("%s%s%d", x1010.c_str(), y100.c_str(), 5);
    expectAsTheCLibrary("%s%c%c", x1020.c_str(), 'a', 'b');
    expectAsTheCLibrary("%s%%%%%%%%", x1020.c_str());
    expectAsTheCLibrary((x1020 + "%d").c_str(), 123456);
    expectAsTheCLibrary((x1020 + "%s").c_str(), none);
    expectAsTheCLibrary((std::string(2000, 'f') + "%d").c_str(), 1);
}

TEST(DUNXTrace, PrintersCutAfterTheIndentationInsideANumberAndDropANewlineOnlyBeforeTheEnd) {
    dunx::test::EventRecorder recorder;
    DUNXInfo::Tab(); // four blanks leave room for 1019 bytes of text
    const std::string x1012(1012, 'x');
    DUNXInfo::Printf("%s%d\n", x1012.c_str(), INT_MIN);
    DUNXInfo::Printf("%s%lu\n", x1012.c_str(), ULONG_MAX);
    DUNXInfo::Untab();
    DUNXInfo::Printf("abc\n%c", 0); // the zero byte ends the text after its newline
    DUNXInfo::Printf("abc%c\n", 0); // and before this one
    DUNXInfo::Printf("%s\n", std::string().c_str()); // nothing left: the line end only
    char number[32];
    std::snprintf(number, sizeof number, "%lu", ULONG_MAX);
    EXPECT_EQ(summary(recorder),
              (Lines{"DUNXMessageEvent 50     " + x1012 + "-214748\n",
                     "DUNXMessageEvent 50     " + x1012 + std::string(number).substr(0, 7) + "\n",
                     "DUNXMessageEvent 50 abc\n", "DUNXMessageEvent 50 abc\n",
                     "DUNXMessageEvent 50 \n"}));
}

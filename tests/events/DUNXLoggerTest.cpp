#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXFilePath.h>
#include <dunx/DUNXLogger.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXTrace.h>

#include "support/OutputCapture.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedWorkingDirectory.h"
#include "support/TempDir.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using namespace dunx::test;

namespace {

// An event of any level that prints "<level>", so a test sees which levels got through.
struct LevelEvent : DUNXEvent {
    explicit LevelEvent(int level) : DUNXEvent("LevelEvent", static_cast<DUNXEventLevel>(level)) {}
    void GetFormattedDescription(DUNXOutputStream* stream) override {
        const std::string text = "<" + std::to_string(GetLevel()) + ">";
        stream->write(text.data(), static_cast<int>(text.size()));
    }
};

const std::vector<int> kLevels = {0, 10, 49, 50, 69, 70, 79, 80, 998, 999};

void fireLevels(const std::vector<int>& levels = kLevels) {
    for (int level : levels) {
        LevelEvent event(level);
        DUNXEventBus::Fire(event);
    }
}

// What `fireLevels()` prints through `threshold`, counting only the levels in [from, to).
std::string passed(int threshold, int from = 0, int to = 1000) {
    std::string text;
    for (int level : kLevels)
        if (level >= threshold && level >= from && level < to)
            text += "<" + std::to_string(level) + ">";
    return text;
}

// Throws `What` from the form the building forms hand their stream to.
template <class What> struct ThrowingLogger : DUNXLogger {
    using DUNXLogger::Initialize;
    void Initialize(DUNXOutputStream*, DUNXEventLevel) override { throw What(); }
};

} // namespace

TEST(DUNXLogger, ThresholdsComeFromTheLevelOrTheVariablesWhichOnlyTheConsoleObeysAlways) {
    const struct {
        const char *logLevel, *tracesLevel; // DUNXLogLevel, DUNXConsoleTracesLevel; null: unset
        DUNXEventLevel given;
        int logger, console;
    } cases[] = {
        {nullptr, nullptr, DUNXLevelUnset, 50, 50},   {"DEBUG", nullptr, DUNXLevelUnset, 10, 50},
        {nullptr, nullptr, DUNXLevelWarning, 70, 70}, {"ERROR", "ERROR", DUNXLevelUnset, 80, 80},
        {"DEBUG", "ERROR", DUNXLevelVerbose, 30, 80}, {"NONE", "ERROR", DUNXLevelAll, 0, 80},
        {"NONE", nullptr, DUNXLevelUnset, 999, 50},   {"bogus", "bogus", DUNXLevelUnset, 50, 999},
        {"error", "WARNING", DUNXLevelAll, 0, 999},   {"WARNING", "", DUNXLevelError, 80, 999}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        if (kWindows && c.tracesLevel && !*c.tracesLevel)
            continue; // Windows cannot hold a variable with an empty value: setting one removes it
        ScopedEnvironmentVariable log("DUNXLogLevel", c.logLevel);
        ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", c.tracesLevel);
        DUNXLogger logger;
        auto* text = new DUNXStringOutputStream; // the logger's from here on
        logger.Initialize(text, c.given);
        OutputCapture out(1), err(2);      // below stdio: what reaches descriptors 1 and 2
        DUNXConsoleLogger::SetUp(c.given); // again after the last row's Finalize
        fireLevels();
        DUNXConsoleLogger::GetInstance().Finalize(); // deletes its streams, but not 1 and 2
        const bool open = IsDescriptorOpen(1) && IsDescriptorOpen(2);
        fireLevels();  // silent now
        out.restore(); // before any assertion prints into the capture
        err.restore();
        EXPECT_TRUE(open);
        EXPECT_EQ(text->GetText(), passed(c.logger) + passed(c.logger));
        EXPECT_EQ(out.text(), passed(c.console, 0, 70)); // warnings and worse go to stderr
        EXPECT_EQ(err.text(), passed(c.console, 70));
    }
}

TEST(DUNXLogger, FirstRealStreamWinsUntilFinalizeAndOnlyTheAbortExceptionLeavesThePathForms) {
    TempDir dir;
    DUNXFilePath invalid, path(dir.file("path.log").c_str());
    DUNXStringOutputStream callers;
    DUNXLogger logger;
    logger.Initialize(static_cast<DUNXOutputStream*>(nullptr), DUNXLevelAll);
    logger.Initialize(static_cast<std::FILE*>(nullptr), DUNXLevelAll);
    logger.Initialize(static_cast<const char*>(nullptr), DUNXLevelAll);
    logger.Initialize("", DUNXLevelAll);
    logger.Initialize(invalid, DUNXLevelAll);
    EXPECT_EQ(logger.GetThreshold(), DUNXLevelNone);
    auto* first = new DUNXStringOutputStream;
    logger.Initialize(first, DUNXLevelInfo);
    logger.Initialize(&callers, DUNXLevelDebug); // neither used nor deleted by the logger
    logger.Initialize(path, DUNXLevelDebug);     // built, then dropped
    fireLevels({10, 50});
    EXPECT_STREQ(first->GetText(), "<50>");
    EXPECT_EQ(callers.GetLength(), 0);
    logger.Finalize();
    EXPECT_EQ(logger.GetThreshold(), DUNXLevelNone);
    auto* second = new DUNXStringOutputStream;
    logger.Initialize(second, DUNXLevelDebug);
    fireLevels({10});
    EXPECT_STREQ(second->GetText(), "<10>");

    ThrowingLogger<DUNXAbortException> aborting;
    EXPECT_THROW(aborting.Initialize(dir.file("a.log").c_str(), DUNXLevelInfo), DUNXAbortException);
    EXPECT_THROW(aborting.Initialize(path, DUNXLevelInfo), DUNXAbortException);
    ThrowingLogger<int> failing;
    EXPECT_NO_THROW(failing.Initialize(dir.file("b.log").c_str(), DUNXLevelInfo));
    EXPECT_NO_THROW(failing.Initialize(path, DUNXLevelInfo));
    // The FILE* form builds nothing that can fail on its own, so it catches nothing.
    EXPECT_THROW(failing.Initialize(stdout, DUNXLevelInfo), int);
}

TEST(DUNXLogFileWrapper, LogFilesAreCompleteOnceAnAbortHasUnwoundTheirOwners) {
    TempDir dir;
    ScopedWorkingDirectory inside(dir.path());
    ScopedEnvironmentVariable level("DUNXLogLevel", nullptr);
    dir.write("travex_read.log", "from an earlier run\n"); // mode "w" truncates it
    std::FILE* callers = std::fopen("callers.log", "w+");
    ASSERT_NE(callers, nullptr);
    const int callersFd = fileno(callers);
    try {
        DUNXLogFileWrapper read(true), own("own.log"), borrowed(callers);
        DUNXLogger byText, byPath;
        DUNXFilePath path(dir.file("path.log").c_str());
        byText.Initialize(dir.file("text.log").c_str(), DUNXLevelUnset);
        byPath.Initialize(path, DUNXLevelUnset);
        ScopedEnvironmentVariable errorsOnly("DUNXLogLevel", "ERROR");
        DUNXLogFileWrapper write(false);
        DUNXLogFileWrapper missing("no/such.log"), nullPath(static_cast<const char*>(nullptr)),
            empty(""), nullFile(static_cast<std::FILE*>(nullptr)); // inert
        for (const DUNXLogFileWrapper* inert : {&missing, &nullPath, &empty, &nullFile})
            EXPECT_EQ(inert->GetFile(), nullptr);
        fireLevels({10, 30, 50, 70, 80});
        throw DUNXAbortException();
    } catch (const DUNXAbortException&) {
    }
    for (const char* name : {"travex_read.log", "own.log", "text.log", "path.log"})
        EXPECT_EQ(dir.read(name), "<50><70><80>") << name;
    EXPECT_EQ(dir.read("travex_write.log"), "<80>");
    ASSERT_TRUE(IsDescriptorOpen(callersFd)); // the caller's file is still open and usable
    EXPECT_GE(std::fputs("after", callers), 0);
    std::fclose(callers);
    EXPECT_EQ(dir.read("callers.log"), "<50><70><80>after");
}

TEST(DUNXLogFileWrapper, AFullDeviceOrAVanishedFolderLosesOnlyItsOwnText) {
    // Linux only: Windows has no /dev/full and keeps a folder while a file in it is open.
    if (kWindows)
        GTEST_SKIP() << "needs /dev/full and the removal of a folder holding an open file";
    ScopedEnvironmentVariable level("DUNXLogLevel", nullptr);
    TempDir dir;
    const std::string folder = dir.file("gone");
    ASSERT_TRUE(MakeFolder(folder));
    DUNXLogger other; // a second listener must still see every event
    auto* text = new DUNXStringOutputStream;
    other.Initialize(text, DUNXLevelAll);
    {
        DUNXLogFileWrapper full("/dev/full"), vanishing((folder + "/run.log").c_str());
        ASSERT_TRUE(full.GetFile() && vanishing.GetFile());
        fireLevels({50});
        std::filesystem::remove_all(folder); // the open file outlives its folder
        EXPECT_NO_THROW(fireLevels({70, 80}));
    } // closing them reports nothing either
    EXPECT_STREQ(text->GetText(), "<50><70><80>");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(DUNXLogger, WritesEachPrintedLineWholeAtEveryLengthUpToTheCut) {
    DUNXLogger logger;
    auto* text = new DUNXStringOutputStream; // the logger's from here on
    logger.Initialize(text, DUNXLevelInfo);
    std::string expected;
    constexpr std::size_t kept = DUNXTextEvent::kInlineMessageLength;
    for (const std::size_t length : {std::size_t{0}, kept - 12, kept - 11, std::size_t{1500}}) {
        const std::string body(length, 'b'); // "value 12345 " is 12 bytes long
        DUNXInfo::Printf("value %d %s", 12345, body.c_str());
        expected += ("value 12345 " + body).substr(0, 1023) + "\n";
    }
    DUNXInfo::Printf("%s", ""); // no text: the line end alone
    DUNXWarning::Printf("%d%%", -1);
    EXPECT_EQ(std::string(text->GetText()), expected + "\nWarning : -1%\n");
    logger.Finalize();
}

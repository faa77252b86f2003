#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXFilePath.h>
#include <dunx/DUNXLogger.h>
#include <dunx/DUNXOutputStream.h>

#include "support/OutputCapture.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedWorkingDirectory.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

using dunx::test::OutputCapture;
using dunx::test::ScopedEnvironmentVariable;
using dunx::test::ScopedWorkingDirectory;
using dunx::test::TempDir;

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

// What `fireLevels()` prints through `threshold`, counting only levels in [from, to).
std::string passed(int threshold, int from = 0, int to = 1000) {
    std::string text;
    for (int level : kLevels)
        if (level >= threshold && level >= from && level < to)
            text += "<" + std::to_string(level) + ">";
    return text;
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
File temporaryFile() {
    return File(std::tmpfile(), &std::fclose);
}

// Throws `What` from the form the building forms hand their stream to.
template <class What> struct ThrowingLogger : DUNXLogger {
    using DUNXLogger::Initialize;
    void Initialize(DUNXOutputStream*, DUNXEventLevel) override { throw What(); }
};

} // namespace

TEST(DUNXLogger, ThresholdIsTheGivenLevelOrDUNXLogLevelForTheUnsetOne) {
    const struct {
        const char* variable; // null: unset
        DUNXEventLevel given;
        int threshold;
    } cases[] = {{nullptr, DUNXLevelUnset, 50}, {"ERROR", DUNXLevelUnset, 80},
                 {"DEBUG", DUNXLevelUnset, 10}, {"NONE", DUNXLevelUnset, 999},
                 {"bogus", DUNXLevelUnset, 50}, {"ERROR", DUNXLevelVerbose, 30},
                 {"bogus", DUNXLevelAll, 0},    {nullptr, DUNXLevelWarning, 70}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.variable ? c.variable : "unset") + ", " +
                     std::to_string(c.given));
        ScopedEnvironmentVariable variable("DUNXLogLevel", c.variable);
        DUNXLogger logger;
        auto* out = new DUNXStringOutputStream; // the logger's from here on
        logger.Initialize(out, c.given);
        fireLevels();
        EXPECT_EQ(out->GetText(), passed(c.threshold));
    }
}

TEST(DUNXLogger, FirstRealStreamWinsUntilFinalize) {
    DUNXFilePath invalid;
    DUNXStringOutputStream callers;
    File file = temporaryFile();
    ASSERT_NE(file, nullptr);
    DUNXLogger logger;
    LevelEvent event(998);
    logger.HandleEvent(event); // no stream yet: nothing to write, nothing to crash on
    logger.Initialize(static_cast<DUNXOutputStream*>(nullptr), DUNXLevelAll);
    logger.Initialize(static_cast<std::FILE*>(nullptr), DUNXLevelAll);
    logger.Initialize(static_cast<const char*>(nullptr), DUNXLevelAll);
    logger.Initialize("", DUNXLevelAll);
    logger.Initialize(invalid, DUNXLevelAll);
    EXPECT_EQ(logger.GetThreshold(), DUNXLevelNone);
    auto* first = new DUNXStringOutputStream;
    logger.Initialize(first, DUNXLevelInfo);
    logger.Initialize(&callers, DUNXLevelDebug); // neither used nor deleted by the logger
    logger.Initialize(file.get(), DUNXLevelDebug);
    fireLevels({10, 50});
    EXPECT_STREQ(first->GetText(), "<50>");
    EXPECT_EQ(callers.GetLength(), 0);
    EXPECT_EQ(std::ftell(file.get()), 0);
    logger.Finalize();
    EXPECT_EQ(logger.GetThreshold(), DUNXLevelNone);
    auto* second = new DUNXStringOutputStream;
    logger.Initialize(second, DUNXLevelDebug);
    fireLevels({10});
    EXPECT_STREQ(second->GetText(), "<10>");
}

TEST(DUNXLogger, PathFormsWriteIntoTheirFileAndOnlyTheAbortExceptionLeavesThem) {
    TempDir dir;
    DUNXFilePath path(dir.file("path.log").c_str());
    DUNXLogger byText, byPath;
    byText.Initialize(dir.file("text.log").c_str(), DUNXLevelInfo);
    byPath.Initialize(path, DUNXLevelInfo);
    fireLevels({10, 50});
    byText.Finalize();
    byPath.Finalize();
    EXPECT_EQ(dir.read("text.log"), "<50>");
    EXPECT_EQ(dir.read("path.log"), "<50>");

    ThrowingLogger<DUNXAbortException> aborting;
    EXPECT_THROW(aborting.Initialize(dir.file("a.log").c_str(), DUNXLevelInfo), DUNXAbortException);
    EXPECT_THROW(aborting.Initialize(path, DUNXLevelInfo), DUNXAbortException);
    ThrowingLogger<int> failing;
    EXPECT_NO_THROW(failing.Initialize(dir.file("b.log").c_str(), DUNXLevelInfo));
    EXPECT_NO_THROW(failing.Initialize(path, DUNXLevelInfo));
    File open = temporaryFile(); // the FILE* form builds nothing that fails: it catches nothing
    ASSERT_NE(open, nullptr);
    EXPECT_THROW(failing.Initialize(open.get(), DUNXLevelInfo), int);
}

namespace {

struct ConsoleText {
    std::string out, err;
};

// Runs `body` with descriptors 1 and 2 captured; no assertion may run inside,
// as gtest would print its report into the capture.
ConsoleText captureConsole(const std::function<void()>& body) {
    OutputCapture out(1), err(2);
    body();
    return {out.text(), err.text()};
}

} // namespace

TEST(DUNXConsoleLogger, WarningsAndWorseGoToStandardErrorAndTheVariableOverridesTheLevel) {
    const struct {
        const char* variable; // DUNXConsoleTracesLevel; null: unset
        DUNXEventLevel given;
        int threshold;
    } cases[] = {{nullptr, DUNXLevelUnset, 50},   {nullptr, DUNXLevelDebug, 10},
                 {nullptr, DUNXLevelWarning, 70}, {nullptr, DUNXLevelError, 80},
                 {"ERROR", DUNXLevelUnset, 80},   {"ERROR", DUNXLevelAll, 80},
                 {"ERROR", DUNXLevelNone, 80},    {"bogus", DUNXLevelAll, 999},
                 {"WARNING", DUNXLevelAll, 999},  {"", DUNXLevelAll, 999}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.variable ? c.variable : "unset") + ", " +
                     std::to_string(c.given));
        ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", c.variable);
        DUNXConsoleLogger console;
        console.Initialize(c.given);
        const ConsoleText text = captureConsole([] { fireLevels(); });
        EXPECT_EQ(text.out, passed(c.threshold, 0, 70));
        EXPECT_EQ(text.err, passed(c.threshold, 70));
    }
}

TEST(DUNXConsoleLogger, FinalizeSilencesItUntilSetUpAgainAndLeavesDescriptorsOpen) {
    ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", nullptr);
    bool open = false;
    const ConsoleText text = captureConsole([&] {
        DUNXConsoleLogger::SetUp(DUNXLevelAll);
        DUNXConsoleLogger::GetInstance().Finalize();
        // Looked at before the capture puts the descriptors back, which would hide a close.
        open = fcntl(1, F_GETFD) != -1 && fcntl(2, F_GETFD) != -1;
        fireLevels({10, 80});
        DUNXConsoleLogger::SetUp(DUNXLevelError);
        fireLevels({50, 90});
        DUNXConsoleLogger::GetInstance().Finalize();
    });
    EXPECT_TRUE(open);
    EXPECT_EQ(text.out, "");
    EXPECT_EQ(text.err, "<90>");
}

namespace {

// Stands for the translation code that gives up at the first error.
struct AbortOnError : DUNXEventListener {
    AbortOnError() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~AbortOnError() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        if (event.GetLevel() >= DUNXLevelError)
            throw DUNXAbortException();
    }
};

} // namespace

TEST(DUNXLogFileWrapper, LogFileIsCompleteOnceAnAbortHasUnwoundTheWrapper) {
    TempDir dir;
    ScopedWorkingDirectory inside(dir.path());
    const struct {
        const char* file;
        const char* logLevel; // null: unset
        DUNXLogFileWrapper* (*make)();
        const char* expected;
    } cases[] = {
        {"travex_read.log", nullptr, [] { return new DUNXLogFileWrapper(true); }, "<50><70><80>"},
        {"travex_write.log", nullptr, [] { return new DUNXLogFileWrapper(false); }, "<50><70><80>"},
        {"own.log", nullptr, [] { return new DUNXLogFileWrapper("own.log"); }, "<50><70><80>"},
        {"travex_write.log", "ERROR", [] { return new DUNXLogFileWrapper(false); }, "<80>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + ", " + (c.logLevel ? c.logLevel : "unset"));
        ScopedEnvironmentVariable level("DUNXLogLevel", c.logLevel);
        dir.write(c.file, "from an earlier run\n"); // mode "w" truncates it
        try {
            std::unique_ptr<DUNXLogFileWrapper> wrapper(c.make());
            AbortOnError stop; // registered after the wrapper, so the error is logged first
            fireLevels({10, 30, 50, 70, 80, 90});
        } catch (const DUNXAbortException&) {
        }
        EXPECT_EQ(dir.read(c.file), c.expected);
    }
}

TEST(DUNXLogFileWrapper, CallersFileStaysOpen) {
    ScopedEnvironmentVariable level("DUNXLogLevel", nullptr);
    File file = temporaryFile();
    ASSERT_NE(file, nullptr);
    const int fd = fileno(file.get());
    {
        DUNXLogFileWrapper wrapper(file.get());
        fireLevels({10, 50});
    }
    ASSERT_NE(fcntl(fd, F_GETFD), -1);
    ASSERT_GT(std::fprintf(file.get(), "after"), 0);
    std::rewind(file.get());
    char buffer[64] = {};
    const std::size_t n = std::fread(buffer, 1, sizeof buffer - 1, file.get());
    EXPECT_EQ(std::string(buffer, n), "<50>after");
}

TEST(DUNXLogFileWrapper, UnopenableOrMissingFileLeavesTheWrapperInert) {
    TempDir dir;
    ASSERT_EQ(::mkdir(dir.file("travex_read.log").c_str(), 0700), 0); // a folder in the way
    ScopedWorkingDirectory inside(dir.path());
    DUNXLogFileWrapper folder(true), missing("no/such/folder.log"),
        nullPath(static_cast<const char*>(nullptr)), empty(""),
        nullFile(static_cast<std::FILE*>(nullptr));
    for (const DUNXLogFileWrapper* wrapper : {&folder, &missing, &nullPath, &empty, &nullFile})
        EXPECT_EQ(wrapper->GetFile(), nullptr);
    EXPECT_NO_THROW(fireLevels());
}

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXFilePath.h>
#include <dunx/DUNXLogger.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXOutputStream.h>

#include "support/OutputCapture.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedWorkingDirectory.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

using dunx::test::OutputCapture;
using dunx::test::ScopedEnvironmentVariable;
using dunx::test::ScopedWorkingDirectory;
using dunx::test::TempDir;

namespace {

// An event of any level that prints "<level>", so a test can see which levels got through.
class LevelEvent : public DUNXEvent {
public:
    explicit LevelEvent(int level) : DUNXEvent("LevelEvent", static_cast<DUNXEventLevel>(level)) {}
    void GetFormattedDescription(DUNXOutputStream* stream) override {
        const std::string text = "<" + std::to_string(GetLevel()) + ">";
        stream->write(text.data(), static_cast<int>(text.size()));
    }
};

void fireLevels(const std::vector<int>& levels) {
    for (int level : levels) {
        LevelEvent event(level);
        DUNXEventBus::Fire(event);
    }
}

// What `fireLevels` prints through a logger with threshold `threshold`.
std::string expectedAtThreshold(const std::vector<int>& levels, int threshold) {
    std::string text;
    for (int level : levels)
        if (level >= threshold)
            text += "<" + std::to_string(level) + ">";
    return text;
}

// Where a `WatchedStream` writes, and whether the logger owning it deleted it;
// both stay readable after the stream is gone.
struct Sink {
    std::string text;
    bool destroyed = false;
    DUNXOutputStream* stream();
};

class WatchedStream : public DUNXOutputStream {
public:
    explicit WatchedStream(Sink& sink) : m_Sink(sink) {}
    ~WatchedStream() override { m_Sink.destroyed = true; }
    int write(const char* buffer, int count) override {
        m_Sink.text.append(buffer, static_cast<std::size_t>(count));
        return count;
    }

private:
    Sink& m_Sink;
};

DUNXOutputStream* Sink::stream() {
    return new WatchedStream(*this);
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
File temporaryFile() {
    return File(std::tmpfile(), &std::fclose);
}

// Throws from the form the building forms hand their stream to.
class ThrowingLogger : public DUNXLogger {
public:
    using DUNXLogger::Initialize;
    explicit ThrowingLogger(std::function<void()> raise) : m_Raise(std::move(raise)) {}
    void Initialize(DUNXOutputStream*, DUNXEventLevel) override { m_Raise(); }

private:
    std::function<void()> m_Raise;
};

// Stands for the translation code that gives up when told to abort.
class AbortOnError : public DUNXEventListener {
public:
    AbortOnError() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~AbortOnError() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        if (event.IsA("DUNXErrorEvent"))
            throw DUNXAbortException();
    }
};

const std::vector<int> kLevels = {0, 10, 49, 50, 69, 70, 79, 80, 998, 999};

} // namespace

TEST(DUNXLogger, NullOrEmptyTargetsLeaveTheLoggerUninitialised) {
    DUNXFilePath emptyPath;
    const struct {
        const char* label;
        std::function<void(DUNXLogger&)> initialize;
    } cases[] = {
        {"never initialised", [](DUNXLogger&) {}},
        {"null stream",
         [](DUNXLogger& l) { l.Initialize((DUNXOutputStream*)nullptr, DUNXLevelAll); }},
        {"null FILE*", [](DUNXLogger& l) { l.Initialize((std::FILE*)nullptr, DUNXLevelAll); }},
        {"null path", [](DUNXLogger& l) { l.Initialize((const char*)nullptr, DUNXLevelAll); }},
        {"empty path", [](DUNXLogger& l) { l.Initialize("", DUNXLevelAll); }},
        {"invalid DUNXFilePath", [&](DUNXLogger& l) { l.Initialize(emptyPath, DUNXLevelAll); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        Sink sink; // outlives the logger that ends up owning its stream
        DUNXLogger logger;
        c.initialize(logger);
        LevelEvent event(998);
        logger.HandleEvent(event); // no stream: nothing to write, nothing to crash on
        EXPECT_EQ(logger.GetThreshold(), DUNXLevelNone);
        // Still uninitialised, so the first real stream is taken.
        logger.Initialize(sink.stream(), DUNXLevelInfo);
        fireLevels({49, 50});
        EXPECT_EQ(sink.text, "<50>");
    }
}

TEST(DUNXLogger, PassesEventsAtOrAboveItsThreshold) {
    for (int threshold : {0, 10, 50, 70, 80}) {
        SCOPED_TRACE(threshold);
        Sink sink;
        DUNXLogger logger;
        logger.Initialize(sink.stream(), static_cast<DUNXEventLevel>(threshold));
        fireLevels({threshold - 1, threshold, threshold + 1});
        EXPECT_EQ(sink.text, expectedAtThreshold({threshold, threshold + 1}, threshold));
    }
}

TEST(DUNXLogger, LogLevelVariableIsReadOnlyForTheUnsetLevel) {
    const struct {
        const char* value; // null: variable unset
        DUNXEventLevel given;
        int threshold;
    } cases[] = {
        {nullptr, DUNXLevelUnset, 50},   {"ERROR", DUNXLevelUnset, 80},
        {"DEBUG", DUNXLevelUnset, 10},   {"NONE", DUNXLevelUnset, 999},
        {"bogus", DUNXLevelUnset, 50},   {"error", DUNXLevelUnset, 50},
        {"ERROR", DUNXLevelVerbose, 30}, {"DEBUG", DUNXLevelError, 80},
        {"bogus", DUNXLevelAll, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.value ? c.value : "(unset)") + ", given " +
                     std::to_string(c.given));
        ScopedEnvironmentVariable variable("DUNXLogLevel", c.value);
        Sink sink;
        DUNXLogger logger;
        logger.Initialize(sink.stream(), c.given);
        fireLevels(kLevels);
        EXPECT_EQ(sink.text, expectedAtThreshold(kLevels, c.threshold));
    }
}

TEST(DUNXLogger, FirstInitialisationWinsAndLaterStreamsStayTheCallers) {
    Sink first;
    DUNXStringOutputStream second;
    File third = temporaryFile();
    ASSERT_NE(third, nullptr);
    {
        DUNXLogger logger;
        logger.Initialize(first.stream(), DUNXLevelInfo);
        logger.Initialize(&second, DUNXLevelDebug);
        logger.Initialize(third.get(), DUNXLevelDebug);
        fireLevels({10, 50});
        EXPECT_EQ(first.text, "<50>");
        EXPECT_EQ(second.GetLength(), 0);
        EXPECT_EQ(std::ftell(third.get()), 0);
        EXPECT_FALSE(first.destroyed);
    }
    EXPECT_TRUE(first.destroyed);
    // `second` was never the logger's: still alive, and nothing reaches it any more.
    fireLevels({80});
    EXPECT_EQ(second.write("ok", 2), 2);
    EXPECT_STREQ(second.GetText(), "ok");
}

TEST(DUNXLogger, FinalizeDeletesTheStreamAndAllowsANewOne) {
    Sink a, b;
    DUNXLogger logger;
    logger.Initialize(a.stream(), DUNXLevelAll);
    logger.Finalize();
    EXPECT_TRUE(a.destroyed);
    EXPECT_EQ(logger.GetThreshold(), DUNXLevelNone);
    logger.Initialize(b.stream(), DUNXLevelInfo);
    fireLevels({10, 50});
    EXPECT_EQ(a.text, "");
    EXPECT_EQ(b.text, "<50>"); // on the bus once: one event, one text
}

TEST(DUNXLogger, PathFormsWriteIntoTheirFile) {
    TempDir dir;
    const std::string text = dir.file("text.log");
    DUNXFilePath path(dir.file("path.log").c_str());
    const struct {
        const char* name;
        std::function<void(DUNXLogger&)> initialize;
    } cases[] = {
        {"text.log", [&](DUNXLogger& l) { l.Initialize(text.c_str(), DUNXLevelInfo); }},
        {"path.log", [&](DUNXLogger& l) { l.Initialize(path, DUNXLevelInfo); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DUNXLogger logger;
        c.initialize(logger);
        DUNXDebugEvent::Fire("hidden");
        DUNXErrorEvent::Fire("x");
        logger.Finalize();
        EXPECT_EQ(dir.read(c.name), "Error : x\n");
    }
}

TEST(DUNXLogger, OnlyTheAbortExceptionLeavesThePathForms) {
    TempDir dir;
    const std::string file = dir.file("never.log");
    DUNXFilePath path(file.c_str());
    ThrowingLogger aborting([] { throw DUNXAbortException(); });
    EXPECT_THROW(aborting.Initialize(file.c_str(), DUNXLevelInfo), DUNXAbortException);
    EXPECT_THROW(aborting.Initialize(path, DUNXLevelInfo), DUNXAbortException);
    for (const auto& raise : {std::function<void()>([] { throw std::runtime_error("disk"); }),
                              std::function<void()>([] { throw 42; })}) {
        ThrowingLogger logger(raise);
        EXPECT_NO_THROW(logger.Initialize(file.c_str(), DUNXLevelInfo));
        EXPECT_NO_THROW(logger.Initialize(path, DUNXLevelInfo));
        EXPECT_FALSE(logger.HasStream());
    }
    // The FILE* form builds nothing that can fail on its own, so it catches nothing.
    File open = temporaryFile();
    ASSERT_NE(open, nullptr);
    ThrowingLogger failing([] { throw std::runtime_error("disk"); });
    EXPECT_THROW(failing.Initialize(open.get(), DUNXLevelInfo), std::runtime_error);
}

namespace {

struct ConsoleText {
    std::string out, err;
};

// Runs `body` with descriptors 1 and 2 captured; no assertion may run inside,
// as gtest would print its report into the capture.
ConsoleText captureConsole(const std::function<void()>& body) {
    OutputCapture out(1);
    OutputCapture err(2);
    body();
    return {out.text(), err.text()};
}

void fireOneOfEachKind() {
    DUNXErrorEvent::Fire("x");      // 80
    DUNXAssertEvent assertion("a"); // 90
    DUNXEventBus::Fire(assertion);
    DUNXWarningEvent warning("w"); // 70
    DUNXEventBus::Fire(warning);
    DUNXMessageEvent::Fire("m");   // 50
    DUNXAssertEvent::Fire("weak"); // 30
    DUNXDebugEvent::Fire("d");     // 10
}

const std::vector<int> kBelowWarning = {0, 10, 49, 50, 69};
const std::vector<int> kWarningAndWorse = {70, 79, 80, 998, 999};

} // namespace

TEST(DUNXConsoleLogger, WarningsAndWorseGoToStandardErrorTheRestToStandardOutput) {
    ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", nullptr);
    DUNXConsoleLogger console;
    console.Initialize(DUNXLevelInfo);
    const ConsoleText text = captureConsole([] {
        fireOneOfEachKind();
        DUNXWarningEvent::Fire("low"); // built from an argument list: level 50
        fireLevels({69, 70});
    });
    EXPECT_EQ(text.out, "Message : m\nWarning : low\n<69>");
    EXPECT_EQ(text.err, "Error : x\nAssert : a\nWarning : w\n<70>");
}

TEST(DUNXConsoleLogger, UnsetTracesLevelTakesTheGivenLevel) {
    ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", nullptr);
    const struct {
        DUNXEventLevel given;
        int threshold;
    } cases[] = {
        {DUNXLevelUnset, 50}, {DUNXLevelDebug, 10}, {DUNXLevelWarning, 70}, {DUNXLevelError, 80}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.given);
        DUNXConsoleLogger console;
        console.Initialize(c.given);
        const ConsoleText text = captureConsole([] {
            fireLevels(kBelowWarning);
            fireLevels(kWarningAndWorse);
        });
        EXPECT_EQ(text.out, expectedAtThreshold(kBelowWarning, c.threshold));
        EXPECT_EQ(text.err, expectedAtThreshold(kWarningAndWorse, c.threshold));
    }
}

TEST(DUNXConsoleLogger, TracesLevelVariableOverridesAnExplicitLevel) {
    ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", "ERROR");
    for (DUNXEventLevel given : {DUNXLevelUnset, DUNXLevelAll, DUNXLevelDebug, DUNXLevelNone}) {
        SCOPED_TRACE(given);
        DUNXConsoleLogger console;
        console.Initialize(given);
        const ConsoleText text = captureConsole(fireOneOfEachKind);
        EXPECT_EQ(text.out, "");
        EXPECT_EQ(text.err, "Error : x\nAssert : a\n");
    }
}

TEST(DUNXConsoleLogger, UnknownTracesLevelSilencesTheConsole) {
    for (const char* value : {"bogus", "WARNING", "error", ""}) {
        SCOPED_TRACE(std::string("\"") + value + "\"");
        ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", value);
        DUNXConsoleLogger::SetUp(DUNXLevelAll);
        const ConsoleText text = captureConsole([] {
            fireOneOfEachKind();
            fireLevels({0, 50, 70, 90, 998});
        });
        DUNXConsoleLogger::GetInstance().Finalize();
        EXPECT_EQ(text.out, "");
        EXPECT_EQ(text.err, "");
    }
}

TEST(DUNXConsoleLogger, FinalizeSilencesItUntilItIsInitialisedAgain) {
    ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", nullptr);
    DUNXConsoleLogger console;
    console.Initialize(DUNXLevelAll);
    const ConsoleText text = captureConsole([&] {
        console.Finalize();
        fireOneOfEachKind();
        console.Initialize(DUNXLevelError);
        fireOneOfEachKind();
    });
    EXPECT_EQ(text.out, "");
    EXPECT_EQ(text.err, "Error : x\nAssert : a\n");
}

TEST(DUNXConsoleLogger, DestructionLeavesDescriptorsOneAndTwoOpen) {
    ScopedEnvironmentVariable traces("DUNXConsoleTracesLevel", nullptr);
    bool outOpen = false, errOpen = false;
    const ConsoleText text = captureConsole([&] {
        {
            DUNXConsoleLogger console;
            console.Initialize(DUNXLevelInfo);
            DUNXMessageEvent::Fire("m");
            DUNXErrorEvent::Fire("x");
        }
        DUNXErrorEvent::Fire("after"); // the destroyed logger is off the bus
        // Checked before the capture puts the descriptors back, which would hide a close.
        outOpen = fcntl(1, F_GETFD) != -1;
        errOpen = fcntl(2, F_GETFD) != -1;
    });
    EXPECT_TRUE(outOpen);
    EXPECT_TRUE(errOpen);
    EXPECT_EQ(text.out, "Message : m\n");
    EXPECT_EQ(text.err, "Error : x\n");
}

namespace {

using WrapperMaker = std::function<std::unique_ptr<DUNXLogFileWrapper>()>;

void fireATranslation() {
    DUNXDebugEvent::Fire("d");
    DUNXVerboseEvent::Fire("v");
    DUNXMessageEvent::Fire("m");
    DUNXWarningEvent::Fire("w50");
    DUNXWarningEvent warning("w70");
    DUNXEventBus::Fire(warning);
    DUNXErrorEvent::Fire("x");
}

} // namespace

TEST(DUNXLogFileWrapper, LogFilesHoldEveryAcceptedEventOnceTheWrapperIsGone) {
    TempDir dir;
    ScopedWorkingDirectory inside(dir.path());
    const std::string all = "Message : m\nWarning : w50\nWarning : w70\nError : x\n";
    const struct {
        const char* file;
        const char* logLevel;
        WrapperMaker make;
        std::string expected;
    } cases[] = {
        {"travex_read.log", nullptr, [] { return std::make_unique<DUNXLogFileWrapper>(true); },
         all},
        {"travex_write.log", nullptr, [] { return std::make_unique<DUNXLogFileWrapper>(false); },
         all},
        {"own.log", nullptr, [] { return std::make_unique<DUNXLogFileWrapper>("own.log"); }, all},
        {"travex_write.log", "ERROR", [] { return std::make_unique<DUNXLogFileWrapper>(false); },
         "Error : x\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " with DUNXLogLevel " +
                     (c.logLevel ? c.logLevel : "unset"));
        ScopedEnvironmentVariable level("DUNXLogLevel", c.logLevel);
        dir.write(c.file, "from an earlier run\n"); // mode "w" truncates it
        {
            const auto wrapper = c.make();
            EXPECT_NE(wrapper->GetFile(), nullptr);
            fireATranslation();
        }
        EXPECT_EQ(dir.read(c.file), c.expected);
    }
}

TEST(DUNXLogFileWrapper, LogFileIsCompleteWhenAnAbortUnwindsTheTranslation) {
    TempDir dir;
    ScopedWorkingDirectory inside(dir.path());
    ScopedEnvironmentVariable level("DUNXLogLevel", nullptr);
    bool aborted = false;
    try {
        DUNXLogFileWrapper wrapper(false);
        AbortOnError stop; // registered after the wrapper, so the error is logged first
        DUNXMessageEvent::Fire("before");
        DUNXErrorEvent::Fire("stop");
        DUNXMessageEvent::Fire("never");
    } catch (const DUNXAbortException&) {
        aborted = true;
    }
    ASSERT_TRUE(aborted);
    EXPECT_EQ(dir.read("travex_write.log"), "Message : before\nError : stop\n");
}

TEST(DUNXLogFileWrapper, CallersFileStaysOpen) {
    ScopedEnvironmentVariable level("DUNXLogLevel", nullptr);
    File file = temporaryFile();
    ASSERT_NE(file, nullptr);
    const int fd = fileno(file.get());
    {
        DUNXLogFileWrapper wrapper(file.get());
        EXPECT_EQ(wrapper.GetFile(), file.get());
        DUNXMessageEvent::Fire("inside");
    }
    ASSERT_NE(fcntl(fd, F_GETFD), -1);
    ASSERT_GT(std::fprintf(file.get(), "after\n"), 0);
    std::rewind(file.get());
    char buffer[64] = {};
    const std::size_t n = std::fread(buffer, 1, sizeof buffer - 1, file.get());
    EXPECT_EQ(std::string(buffer, n), "Message : inside\nafter\n");
}

TEST(DUNXLogFileWrapper, UnopenableFileLeavesTheWrapperInert) {
    TempDir dir;
    ASSERT_EQ(::mkdir(dir.file("travex_read.log").c_str(), 0700), 0); // a folder in the way
    ScopedWorkingDirectory inside(dir.path());
    const std::string missing = dir.file("no/such/folder.log");
    const struct {
        const char* label;
        WrapperMaker make;
    } cases[] = {
        {"folder named travex_read.log", [] { return std::make_unique<DUNXLogFileWrapper>(true); }},
        {"missing folder", [&] { return std::make_unique<DUNXLogFileWrapper>(missing.c_str()); }},
        {"null path",
         [] { return std::make_unique<DUNXLogFileWrapper>(static_cast<const char*>(nullptr)); }},
        {"empty path", [] { return std::make_unique<DUNXLogFileWrapper>(""); }},
        {"null FILE*",
         [] { return std::make_unique<DUNXLogFileWrapper>(static_cast<std::FILE*>(nullptr)); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        std::unique_ptr<DUNXLogFileWrapper> wrapper;
        EXPECT_NO_THROW(wrapper = c.make());
        ASSERT_NE(wrapper, nullptr);
        EXPECT_EQ(wrapper->GetFile(), nullptr);
        EXPECT_FALSE(wrapper->GetLogger().HasStream());
        EXPECT_NO_THROW(DUNXErrorEvent::Fire("x"));
    }
}

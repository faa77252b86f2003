// dunx on bad input and when interrupted: a one-line error naming the file and
// the reason, the exit code of the result, complete logs, no partial output.
#include "DunxTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace dunxtest;

namespace {

struct BadCase {
    const char* what;
    std::function<void(const ScratchFolder&)> prepare;
    std::vector<std::string> args;                      // after "translate"
    int exitCode;                                       // 0: any failure code
    std::vector<const char*> reason;                    // all in the last line of standard error
    enum Reached { Nothing, Reading, Writing } reached; // the last direction started
};

void CheckBadCase(const BadCase& row) {
    SCOPED_TRACE(row.what);
    ScratchFolder folder;
    WriteBinaryStl(folder / "good.stl", Box({0, 0, 0}, {1, 1, 1}));
    if (row.prepare)
        row.prepare(folder);
    std::vector<std::string> args = {"translate"};
    args.insert(args.end(), row.args.begin(), row.args.end());
    const RunResult run = RunDunx(args, folder.Path());

    EXPECT_EQ(run.signal, 0) << "dunx crashed";
    if (row.exitCode != 0) {
        EXPECT_EQ(run.exitCode, row.exitCode) << run.err;
    } else {
        EXPECT_GT(run.exitCode, 0) << run.err;
    }
    const std::string line = run.LastErrorLine();
    EXPECT_EQ(line.rfind("dunx: error: ", 0), 0u) << run.err;
    for (const char* word : row.reason)
        EXPECT_NE(line.find(word), std::string::npos) << "'" << word << "' not in: " << line;
    EXPECT_NE(run.out.find("Product Failed with code"), std::string::npos) << run.out;

    // No output file at all, in any of the places a test may have aimed at.
    for (const char* output : {"out.obj", "sub/out.obj", "blocker/out.obj"})
        EXPECT_FALSE(FileExists(folder / output)) << output;
    // The log of each direction started was closed after its last line.
    const std::string readLog = ReadText(folder / "travex_read.log");
    const std::string writeLog = ReadText(folder / "travex_write.log");
    EXPECT_EQ(FileExists(folder / "travex_read.log"), row.reached >= BadCase::Reading);
    EXPECT_EQ(FileExists(folder / "travex_write.log"), row.reached == BadCase::Writing);
    if (row.reached >= BadCase::Reading) {
        EXPECT_NE(readLog.find("\nRead "), std::string::npos) << readLog;
    }
    if (row.reached == BadCase::Writing) {
        EXPECT_NE(writeLog.find("\nWrote "), std::string::npos) << writeLog;
    }
}

std::string Cut(const std::string& text, std::size_t size) {
    return text.substr(0, size);
}

} // namespace

TEST(DunxFailure, BadInputGetsOneLineNamingTheFileAndNoOutput) {
    const BadCase rows[] = {
        {"missing input",
         nullptr,
         {"missing.stl", "out.obj"},
         13,
         {"missing.stl", "No such file"},
         BadCase::Nothing},
        {"input is a folder",
         [](const ScratchFolder& f) { ::mkdir((f / "dir.stl").c_str(), 0755); },
         {"dir.stl", "out.obj"},
         14,
         {"dir.stl", "folder"},
         BadCase::Nothing},
        {"truncated binary STL",
         [](const ScratchFolder& f) {
             WriteText(f / "cut.stl", Cut(ReadText(f / "good.stl"), 84 + 50 * 5 + 17));
         },
         {"cut.stl", "out.obj"},
         0,
         {"cut.stl"},
         BadCase::Reading},
        {"binary STL shorter than its header",
         [](const ScratchFolder& f) { WriteText(f / "tiny.stl", "sol"); },
         {"tiny.stl", "out.obj"},
         0,
         {"tiny.stl"},
         BadCase::Reading},
        {"unknown unit",
         nullptr,
         {"good.stl", "out.obj", "--unit", "furlong"},
         19,
         {"furlong", "WriteLengthUnit"},
         BadCase::Nothing},
        {"unknown translator",
         nullptr,
         {"good.stl", "out.obj", "--translator", "nosuch"},
         11,
         {"unknown translator 'nosuch'"},
         BadCase::Nothing},
        {"translator that is no module",
         [](const ScratchFolder& f) { WriteText(f / "fake.so", "not a module"); },
         {"good.stl", "out.obj", "--translator", "./fake.so"},
         11,
         {"fake.so", "cannot be loaded"},
         BadCase::Nothing},
        {"output folder missing",
         nullptr,
         {"good.stl", "sub/out.obj"},
         15,
         {"sub/out.obj", "does not exist"},
         BadCase::Nothing},
        {"output folder is a file",
         [](const ScratchFolder& f) { WriteText(f / "blocker", "x"); },
         {"good.stl", "blocker/out.obj"},
         15,
         {"blocker/out.obj"},
         BadCase::Nothing},
        {"configuration file with syntax errors",
         [](const ScratchFolder& f) { WriteText(f / "bad.cfg", "Healing=On\n[broken\n"); },
         {"good.stl", "out.obj", "-c", "bad.cfg"},
         21,
         {"bad.cfg", "line 2"},
         BadCase::Nothing},
        {"malformed option",
         nullptr,
         {"good.stl", "out.obj", "-O", "NoValue"},
         11,
         {"NoValue", "NAME=VALUE"},
         BadCase::Nothing},
        {"output over the input",
         nullptr,
         {"good.stl", "./good.stl"},
         15,
         {"good.stl", "input"},
         BadCase::Nothing},
    };
    for (const BadCase& row : rows)
        CheckBadCase(row);
}

TEST(DunxFailure, OutputFolderWhereNoFileCanBeMadeIsRefused) {
    // /proc takes no new files, not even from root, who passes every permission check.
    CheckBadCase({"unwritable output folder",
                  nullptr,
                  {"good.stl", "/proc/dunx-out.obj"},
                  0,
                  {"/proc/dunx-out.obj"},
                  ::geteuid() == 0 ? BadCase::Writing : BadCase::Nothing});
    EXPECT_FALSE(FileExists("/proc/dunx-out.obj"));
}

TEST(DunxFailure, AFailedReadLeavesAnEarlierOutputAlone) {
    ScratchFolder folder;
    WriteText(folder / "out.obj", "# an earlier translation\n");
    WriteText(folder / "cut.stl", std::string(84, 'x') + "short");
    const RunResult run = RunDunx({"translate", "cut.stl", "out.obj"}, folder.Path());
    EXPECT_GT(run.exitCode, 0);
    EXPECT_EQ(ReadText(folder / "out.obj"), "# an earlier translation\n");
}

TEST(DunxFailure, InterruptStopsCleanlyWithCompleteLogsAndNoOutput) {
    ScratchFolder folder;
    {
        // Two million distinct triangles: long enough to be interrupted while reading.
        std::ofstream out(folder / "big.stl", std::ios::binary);
        const std::uint32_t count = 2000000;
        out << std::string(80, ' ');
        out.write(reinterpret_cast<const char*>(&count), 4);
        std::vector<float> record(12, 0.0f);
        for (std::uint32_t i = 0; i < count; ++i) {
            const float x = static_cast<float>(i % 1500), y = static_cast<float>(i / 1500);
            const float corners[9] = {x, y, 0, x + 1, y, 0, x, y + 1, 0};
            std::copy(corners, corners + 9, record.begin() + 3);
            out.write(reinterpret_cast<const char*>(record.data()), 48);
            out.write("\0\0", 2);
        }
    }
    const pid_t pid = StartDunx({"translate", "big.stl", "big.obj"}, folder.Path());
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!FileExists(folder / "travex_read.log") && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ASSERT_EQ(::kill(pid, SIGINT), 0);
    const RunResult run = FinishDunx(pid, folder.Path());

    EXPECT_EQ(run.signal, 0);
    EXPECT_EQ(run.exitCode, 3) << run.out << run.err;
    EXPECT_NE(run.LastErrorLine().find("translation of big.stl interrupted"), std::string::npos)
        << run.err;
    EXPECT_NE(run.out.find("Product Aborted"), std::string::npos) << run.out;
    EXPECT_FALSE(FileExists(folder / "big.obj"));
    const std::string readLog = ReadText(folder / "travex_read.log");
    const std::string writeLog = ReadText(folder / "travex_write.log");
    // Stopped while reading, or else while writing: that direction's log ends the same way.
    const bool stoppedReading = readLog.find("Read big.stl: Aborted") != std::string::npos;
    const bool stoppedWriting = writeLog.find("Wrote big.obj: Aborted") != std::string::npos;
    EXPECT_TRUE(stoppedReading || stoppedWriting) << readLog << writeLog;
}

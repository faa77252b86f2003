// dunx as a user meets it around a translation: help, version, argument errors,
// the configuration check, bad input (a one-line error naming the file and the
// reason, the exit code, complete logs, no partial output) and Ctrl-C.
#include "DunxTestSupport.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

using namespace dunxtest;

TEST(DunxCommandLine, HelpNamesEveryCommandAndOptionWithAnExample) {
    ScratchFolder folder;
    for (const char* form : {"--help", "-h", "help"}) {
        SCOPED_TRACE(form);
        const RunResult run = RunDunx({form}, folder.Path());
        EXPECT_EQ(run.exitCode, 0);
        ExpectHas(run.out, {"translate INPUT OUTPUT.obj", "check-config FILE", "--config",
                            "--option NAME=VALUE", "--unit", "--report", "--log-dir",
                            "--translator", "--quiet", "--verbose", "--no-progress", "--version",
                            "Exit codes", "Examples:\n  dunx translate"});
    }
    const RunResult version = RunDunx({"--version"}, folder.Path());
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.rfind("dunx 0.", 0), 0u) << version.out;
}

TEST(DunxCommandLine, RefusesWhatItCannotUseInOneLine) {
    struct Case {
        Args args;
        int exitCode;
        const char* reason; // in the last line of standard error
        Env env = {};
    };
    const Case cases[] = {
        {{}, 11, "no command given"},
        {{"frobnicate"}, 11, "unknown command 'frobnicate'"},
        {{"translate", "--frobnicate", "a.stl", "b.obj"}, 11, "unknown option '--frobnicate'"},
        {{"translate", "-qz", "a.stl", "b.obj"}, 11, "unknown option '-z' in '-qz'"},
        {{"translate", "a.stl"}, 11, "translate needs INPUT and OUTPUT.obj"},
        {{"translate", "a.stl", "b.obj", "c.obj"}, 11, "unexpected 'c.obj'"},
        {{"translate", "a.stl", "b.obj", "--unit"}, 11, "option --unit needs a value"},
        {{"translate", "a.stl", "b.obj", "--report", "-q"}, 11, "option --report needs a value"},
        {{"translate", "a.stl", "b.obj", "--quiet=yes"}, 11, "option --quiet takes no value"},
        {{"translate", "a.stl", "b.obj", "--colour=red"}, 11, "unknown option '--colour'"},
        {{"check-config"}, 11, "check-config needs a configuration FILE"},
        {{"check-config", "gone.cfg"}, 13, "gone.cfg: cannot read the configuration file"},
        {{"check-config", "ok.cfg"},
         19,
         "unknown unit 'furlong'",
         {{"DUNXWriteLengthUnit", "furlong"}}},
    };
    ScratchFolder folder;
    WriteText(folder / "ok.cfg", "Level=3\n");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.reason);
        const RunResult run = RunDunx(c.args, folder.Path(), c.env);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        EXPECT_EQ(run.LastErrorLine().rfind("dunx: error: ", 0), 0u) << run.err;
        ExpectHas(run.LastErrorLine(), {c.reason});
    }
}

TEST(DunxCheckConfig, ListsSyntaxErrorsByLineAndTheOptionsTheTranslatorSeesMarkingTheEnvironment) {
    ScratchFolder folder;
    WriteText(folder / "a.cfg", "# comment\nFlag=On\nno separator here\nLevel = 3\n"
                                "key=\n[Other]\nHidden=1\n");
    const RunResult run = RunDunx({"check-config", "a.cfg"}, folder.Path());
    EXPECT_EQ(run.exitCode, 21) << run.err;
    ExpectHas(run.out,
              {"2 syntax errors", "line 3:no separator here", "line 5:key=", "[Other] Hidden",
               "Options the translator sees (3)", "Flag                         = true\n",
               "Level                        = 3\n",
               "WriteLengthUnit              = millimeter\n"});
    ExpectHas(run.LastErrorLine(), {"a.cfg: 2 syntax errors"});
    // An option that an environment variable changes is marked.
    WriteText(folder / "ok.cfg", "Level=3\nName=abc\nWriteLengthUnit=inch\n");
    const RunResult env = RunDunx({"check-config", "ok.cfg", "-O", "Extra=2.5"}, folder.Path(),
                                  {{"DUNXLevel", "7"}, {"DUNXName", "abc"}});
    EXPECT_EQ(env.exitCode, 0) << env.err;
    ExpectHas(env.out,
              {"no syntax errors", "= 7            <- environment DUNXLevel (was 3)",
               "(environment DUNXName=abc leaves it so)", "Extra                        = 2.5\n",
               "1 option changed by the environment"});
}

TEST(DunxFailure, BadInputGetsOneLineNamingTheFileAndNoOutput) {
    enum Reached { None, Read, Write }; // the last direction started
    struct Case {
        const char* what;
        // Made beside good.stl: name => content; a name ending in '/' is a folder.
        std::vector<std::pair<std::string, std::string>> files;
        Args args;                       // after "translate": INPUT OUTPUT [OPTIONS]
        int exitCode;                    // 0: any failure code
        std::vector<std::string> reason; // all in the last line of standard error
        Reached reached;
        bool posixOnly = false;
    };
    const std::string good = BinaryStl(Box({0, 0, 0}, {1, 1, 1}));
    const std::string in = "good.stl", out = "out.obj";
    const bool root = RunsAsRoot();
    // clang-format off
    const Case cases[] = {
        {"no input", {}, {"missing.stl", out}, 13, {"missing.stl", "No such file"}, None},
        {"folder as input", {{"dir.stl/", ""}}, {"dir.stl", out}, 14, {"dir.stl", "folder"}, None},
        {"truncated binary STL", {{"cut.stl", good.substr(0, 84 + 50 * 5 + 17)}},
         {"cut.stl", out}, 21, {"cut.stl"}, Read},
        {"STL shorter than its header", {{"tiny.stl", "sol"}},
         {"tiny.stl", out}, 21, {"tiny.stl"}, Read},
        {"corrupted STL over an earlier output",
         {{"bad.stl", std::string(84, 'x') + "short"}, {out, "# earlier\n"}},
         {"bad.stl", out}, 21, {"bad.stl"}, Read},
        {"unknown unit", {}, {in, out, "-u", "furlong"}, 19, {"furlong", "WriteLengthUnit"}, None},
        {"unknown translator", {},
         {in, out, "--translator", "nosuch"}, 11, {"unknown translator 'nosuch'"}, None},
        {"translator that is no module", {{"fake.so", "not a module"}},
         {in, out, "--translator", "./fake.so"}, 11, {"fake.so", "cannot be loaded"}, None},
        {"no output folder", {}, {in, "sub/out.obj"}, 15, {"sub/out.obj", "does not exist"}, None},
        {"output folder is a file", {{"blocker", "x"}},
         {in, "blocker/out.obj"}, 15, {"blocker/out.obj"}, None},
        // /proc takes no new files, not even from root, who passes every permission check.
        // Windows has no folder that refuses new files to every user (Wine lets root write
        // anywhere): there it would be "no output folder" again.
        {"unwritable output folder", {},
         {in, "/proc/dunx-out.obj"}, 15, {"/proc/dunx-out.obj"}, root ? Write : None, true},
        {"configuration file with syntax errors", {{"bad.cfg", "Healing=On\n[broken\n"}},
         {in, out, "-c", "bad.cfg"}, 21, {"bad.cfg", "line 2"}, None},
        {"malformed option", {}, {in, out, "-O", "NoValue"}, 11, {"NoValue", "NAME=VALUE"}, None},
        {"output over the input", {}, {in, "./good.stl"}, 15, {"good.stl", "input"}, None},
        {"assembly of a missing part", {{"top.cfg", "assembly = a\n[p]\nfile = ghost.stl\n"}},
         {"top.cfg", out}, 13, {"top.cfg", "ghost.stl"}, Read},
        {"assembly cycle", {{"top.cfg", "assembly = a\n[p]\nfile = other.cfg\n"},
                            {"other.cfg", "assembly = b\n[q]\nfile = top.cfg\n"}},
         {"top.cfg", out}, 21, {"top.cfg", "other.cfg"}, Read},
        {"assembly holding itself", {{"top.cfg", "assembly = a\n[p]\nfile = top.cfg\n"}},
         {"top.cfg", out}, 21, {"top.cfg"}, Read},
        {"assembly of an unknown unit",
         {{"top.cfg", "assembly = a\nunit = furlong\n[p]\nfile = good.stl\n"}},
         {"top.cfg", out}, 0, {"top.cfg", "furlong"}, Read},
        {"assembly with a syntax error", {{"top.cfg", "assembly = a\n[p\nfile = good.stl\n"}},
         {"top.cfg", out}, 21, {"top.cfg", "line 2"}, Read},
    };
    // clang-format on
    for (const Case& c : cases) {
        if (c.posixOnly && dunx::test::kWindows)
            continue;
        SCOPED_TRACE(c.what);
        ScratchFolder folder;
        WriteText(folder / in, good);
        for (const auto& [name, content] : c.files)
            if (name.back() == '/')
                std::filesystem::create_directory(folder / name);
            else
                WriteText(folder / name, content);
        // An output that was there before, the input or an earlier one, stays as it was.
        const std::string output = c.args[1][0] == '/' ? c.args[1] : folder / c.args[1];
        const bool existed = FileExists(output);
        const std::string before = ReadText(output);
        Args args = {"translate"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const RunResult run = RunDunx(args, folder.Path());
        EXPECT_TRUE(c.exitCode ? run.exitCode == c.exitCode : run.exitCode > 0)
            << run.exitCode << run.err;
        EXPECT_EQ(run.LastErrorLine().rfind("dunx: error: ", 0), 0u) << run.err;
        ExpectHas(run.LastErrorLine(), c.reason);
        ExpectHas(run.out, {"Product Failed with code"});
        EXPECT_EQ(FileExists(output), existed) << output;
        EXPECT_EQ(ReadText(output), before) << output;
        // The log of each direction started was closed after its last line.
        EXPECT_EQ(FileExists(folder / "travex_read.log"), c.reached >= Read);
        EXPECT_EQ(FileExists(folder / "travex_write.log"), c.reached == Write);
        if (c.reached >= Read)
            ExpectHas(ReadTextFile(folder / "travex_read.log"),
                      {"Source File Header Information", "\nRead " + c.args[0] + ": "});
        if (c.reached == Write)
            ExpectHas(ReadTextFile(folder / "travex_write.log"), {"\nWrote " + c.args[1] + ": "});
    }
}

TEST(DunxFailure, InterruptStopsCleanlyWithCompleteLogsAndNoOutput) {
    ScratchFolder folder;
    Mesh big(2000000); // distinct triangles: long enough to be interrupted while reading
    for (std::size_t i = 0; i < big.size(); ++i) {
        const double x = static_cast<double>(i % 1500), y = static_cast<double>(i / 1500);
        big[i] = {Point{x, y, 0}, Point{x + 1, y, 0}, Point{x, y + 1, 0}};
    }
    WriteText(folder / "big.stl", BinaryStl(big));
    // Interrupted while reading, then writing: that log ends so; no file of the output stays.
    for (const auto& [log, end] : {std::pair{"travex_read.log", "Read big.stl: Aborted"},
                                   std::pair{"travex_write.log", "Wrote big.obj: Aborted"}}) {
        Child dunx = StartDunx({"translate", "big.stl", "big.obj"}, folder.Path(), {}, true);
        EXPECT_TRUE(AwaitFile(folder / log, 60)) << "no " << log << " after a minute";
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_TRUE(InterruptDunx(dunx)); // else it translates to the end: no exit code 3
        const RunResult run = FinishDunx(dunx);
        EXPECT_EQ(run.exitCode, 3) << run.out << run.err;
        ExpectHas(run.LastErrorLine(), {"translation of big.stl interrupted"});
        ExpectHas(run.out, {"Product Aborted"});
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) // no part
            EXPECT_EQ(entry.path().string().find("big.obj"), std::string::npos) << entry.path();
        ExpectHas(ReadTextFile(folder / log), {end});
    }
}

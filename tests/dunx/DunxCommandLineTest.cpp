// dunx as a user meets it before translating: help, version, argument errors
// and the configuration check.
#include "DunxTestSupport.h"

#include <gtest/gtest.h>

using namespace dunxtest;

TEST(DunxCommandLine, HelpNamesEveryCommandAndOptionWithAnExample) {
    ScratchFolder folder;
    for (const char* form : {"--help", "-h", "help"}) {
        SCOPED_TRACE(form);
        const RunResult run = RunDunx({form}, folder.Path());
        EXPECT_EQ(run.exitCode, 0);
        for (const char* word :
             {"translate INPUT OUTPUT.obj", "check-config FILE", "--config", "--option NAME=VALUE",
              "--unit", "--report", "--log-dir", "--translator", "--quiet", "--verbose",
              "--no-progress", "--version", "Exit codes", "Examples:\n  dunx translate"})
            EXPECT_NE(run.out.find(word), std::string::npos) << word;
    }
    const RunResult version = RunDunx({"--version"}, folder.Path());
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.rfind("dunx 0.", 0), 0u) << version.out;
}

TEST(DunxCommandLine, RefusesWhatItDoesNotKnowInOneLine) {
    struct Row {
        std::vector<std::string> args;
        const char* reason; // in the last line of standard error
    };
    const Row rows[] = {
        {{}, "no command given"},
        {{"frobnicate"}, "unknown command 'frobnicate'"},
        {{"translate", "--frobnicate", "a.stl", "b.obj"}, "unknown option '--frobnicate'"},
        {{"translate", "-qz", "a.stl", "b.obj"}, "unknown option '-z' in '-qz'"},
        {{"translate", "a.stl"}, "translate needs INPUT and OUTPUT.obj"},
        {{"translate", "a.stl", "b.obj", "c.obj"}, "unexpected 'c.obj'"},
        {{"translate", "a.stl", "b.obj", "--unit"}, "option --unit needs a value"},
        {{"translate", "a.stl", "b.obj", "--report", "--quiet"}, "option --report needs a value"},
        {{"translate", "a.stl", "b.obj", "--quiet=yes"}, "option --quiet takes no value"},
        {{"translate", "a.stl", "b.obj", "--colour=red"}, "unknown option '--colour'"},
        {{"check-config"}, "check-config needs a configuration FILE"},
    };
    ScratchFolder folder;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reason);
        const RunResult run = RunDunx(row.args, folder.Path());
        EXPECT_EQ(run.exitCode, 11) << run.err;
        EXPECT_EQ(run.LastErrorLine().rfind("dunx: error: ", 0), 0u) << run.err;
        EXPECT_NE(run.LastErrorLine().find(row.reason), std::string::npos) << run.err;
    }
}

TEST(DunxCheckConfig, ListsSyntaxErrorsByLineAndTheOptionsTheTranslatorSees) {
    ScratchFolder folder;
    WriteText(folder / "a.cfg", "# comment\nFlag=On\nno separator here\nLevel = 3\n"
                                "key=\n[Other]\nHidden=1\n");
    const RunResult run = RunDunx({"check-config", "a.cfg"}, folder.Path());
    EXPECT_EQ(run.exitCode, 21) << run.err;
    EXPECT_NE(run.out.find("2 syntax errors"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("line 3:no separator here"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("line 5:key="), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("[Other] Hidden"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Options the translator sees (3)"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Flag                         = true\n"), std::string::npos);
    EXPECT_NE(run.out.find("Level                        = 3\n"), std::string::npos);
    EXPECT_NE(run.out.find("WriteLengthUnit              = millimeter\n"), std::string::npos);
    EXPECT_NE(run.LastErrorLine().find("a.cfg: 2 syntax errors"), std::string::npos) << run.err;
}

TEST(DunxCheckConfig, MarksTheOptionsAnEnvironmentVariableChanges) {
    ScratchFolder folder;
    WriteText(folder / "ok.cfg", "Level=3\nName=abc\nWriteLengthUnit=inch\n");
    const RunResult run = RunDunx({"check-config", "ok.cfg", "-O", "Extra=2.5"}, folder.Path(),
                                  {{"DUNXLevel", "7"}, {"DUNXName", "abc"}});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("no syntax errors"), std::string::npos);
    EXPECT_NE(run.out.find("= 7            <- environment DUNXLevel (was 3)"), std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("(environment DUNXName=abc leaves it so)"), std::string::npos);
    EXPECT_NE(run.out.find("Extra                        = 2.5\n"), std::string::npos);
    EXPECT_NE(run.out.find("1 option changed by the environment"), std::string::npos);

    const RunResult badUnit =
        RunDunx({"check-config", "ok.cfg"}, folder.Path(), {{"DUNXWriteLengthUnit", "furlong"}});
    EXPECT_EQ(badUnit.exitCode, 19);
    EXPECT_NE(badUnit.LastErrorLine().find("unknown unit 'furlong'"), std::string::npos);

    const RunResult missing = RunDunx({"check-config", "gone.cfg"}, folder.Path());
    EXPECT_EQ(missing.exitCode, 13);
    EXPECT_NE(missing.LastErrorLine().find("gone.cfg: cannot read the configuration file"),
              std::string::npos)
        << missing.err;
}

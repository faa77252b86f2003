#include <dunx/DUNXCfgFile.h>

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

std::string text(const DUNXString& s) {
    const char* narrow = s;
    return narrow ? narrow : "<null>";
}

// Loads `bytes` from a real file, as callers hand us an open FILE*.
DUNIResult load(DUNXCfgFile& cfg, const std::string& bytes) {
    dunx::test::TempDir dir;
    dir.write("test.cfg", bytes);
    std::FILE* file = std::fopen(dir.file("test.cfg").c_str(), "rb");
    if (!file)
        return DUNI_U_UNDETERMINED;
    DUNIResult result = cfg.Load(file);
    std::fclose(file);
    return result;
}

// The values of the first key `key` of `section`, or {"<missing>"}.
Strings values(const DUNXCfgFile& cfg, const char* key, const char* section = "") {
    const DUNXCfgFileSection* s = cfg.GetSection(section);
    const DUNXCfgFileKey* k = s ? s->findKey(key) : nullptr;
    if (!k)
        return {"<missing>"};
    Strings all;
    for (int i = 0; i < k->GetNumValues(); ++i)
        all.push_back(text(*k->GetValue(i)));
    return all;
}

std::string message(const DUNXCfgFile& cfg, int i) {
    const char* m = cfg.GetErrorMessage(i);
    return m ? m : "<null>";
}

std::string lineFault(long line, const std::string& text) {
    return "Incorrect syntax: line " + std::to_string(line) + ":" + text +
           " *** \"key=value\" expected";
}

std::string sectionFault(long line, const std::string& text) {
    return "Incorrect syntax: line " + std::to_string(line) + ":" + text +
           " *** \"[section name]' expected.";
}

} // namespace

TEST(DUNXCfgFile, KeyLinesAreTrimmedAndSplitAtEveryComma) {
    const std::pair<const char*, Strings> cases[] = {
        {"  key = value  ", {"key", "value"}},
        {"key: a, b", {"key", "a", " b"}}, // pieces keep their blanks
        {"k=a,,b", {"k", "a", "", "b"}},
        {"k = a ,b ", {"k", "a ", "b"}},
        {"k=,", {"k", "", ""}},
        {"\tk\t=\tv\r", {"k", "v"}},
        {"k=v\f", {"k", "v\f"}}, // only tab, blank, CR and LF are trimmed
        {"k==v", {"k", "=v"}},
        {"a:b=c", {"a:b", "c"}}, // any '=' wins over an earlier ':'
        {"time: 12:30", {"time", "12:30"}},
        {"k = \"x, y\"", {"k", "\"x", " y\""}}, // quotes protect nothing
    };
    for (const auto& [line, expected] : cases) {
        SCOPED_TRACE(line);
        DUNXCfgFile cfg;
        EXPECT_EQ(long(load(cfg, std::string(line) + "\n")), DUNI_S_SUCCESS);
        EXPECT_EQ(cfg.GetErrorCount(), 0);
        const DUNXCfgFileSection* unnamed = cfg.GetSection(nullptr);
        ASSERT_EQ(unnamed->GetRowCount(), 1);
        const char* key = expected[0].c_str();
        EXPECT_EQ(text(unnamed->GetKey(0)->GetName()), key);
        EXPECT_EQ(values(cfg, key), Strings(expected.begin() + 1, expected.end()));
        EXPECT_EQ(cfg.GetArraySize(key), int(expected.size()) - 1);
        std::string joined;
        for (std::size_t i = 1; i < expected.size(); ++i)
            joined += (i > 1 ? "," : "") + expected[i];
        EXPECT_EQ(text(unnamed->GetKey(0)->GetAllValues()), joined);
    }
}

TEST(DUNXCfgFile, SyntaxFaultIsRecordedAndOnlyItsLineSkipped) {
    const std::string cases[][2] = {
        {"key=", lineFault(2, "key=")},        {"=value", lineFault(2, "=value")},
        {"novalue", lineFault(2, "novalue")},  {"=", lineFault(2, "=")},
        {"key :", lineFault(2, "key :")},      {"  =value\t", lineFault(2, "=value")},
        {"[Tools", sectionFault(2, "[Tools")}, {"[Tools)", sectionFault(2, "[Tools)")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        DUNXCfgFile cfg;
        EXPECT_EQ(long(load(cfg, "first=1\n" + c[0] + "\nlast=2\n")), DUNI_E_FAIL);
        ASSERT_EQ(cfg.GetErrorCount(), 1);
        EXPECT_EQ(message(cfg, 0), c[1]);
        EXPECT_EQ(cfg.GetErrorMessage(1), nullptr);
        EXPECT_EQ(cfg.GetErrorMessage(-1), nullptr);
        // Keys after a bad section line stay in the section current before it.
        EXPECT_EQ(cfg.GetSectionCount(), 1);
        EXPECT_EQ(values(cfg, "first"), Strings{"1"});
        EXPECT_EQ(values(cfg, "last"), Strings{"2"});
    }
}

TEST(DUNXCfgFile, CommentAndBlankLinesAreSkippedButCounted) {
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, "# note\n; note\n   # note\n\t; x=1\n#[Hidden]\n\n   \n\r\n"
                             "k=v # not a comment\nbad\n")),
              DUNI_E_FAIL);
    EXPECT_EQ(cfg.GetSectionCount(), 1);
    EXPECT_EQ(cfg.GetSection("")->GetRowCount(), 1);
    EXPECT_EQ(values(cfg, "k"), Strings{"v # not a comment"});
    ASSERT_EQ(cfg.GetErrorCount(), 1);
    EXPECT_EQ(message(cfg, 0), lineFault(10, "bad"));
}

TEST(DUNXCfgFile, SectionNameIsTrimmedTextUpToTheLastBracket) {
    const char* cases[][2] = {
        {"[Tools]", "Tools"},     {"[ Tools ] trailing", "Tools"},
        {"[\tTools\t]", "Tools"}, {"[a]b]", "a]b"},
        {"[[x]]", "[x]"},         {"[]", ""}}; // the unnamed section, opened again
    for (const auto& c : cases) {
        SCOPED_TRACE(c[0]);
        DUNXCfgFile cfg;
        EXPECT_EQ(long(load(cfg, std::string(c[0]) + "\nk=v\n")), DUNI_S_SUCCESS);
        EXPECT_EQ(cfg.GetSectionCount(), *c[1] ? 2 : 1);
        EXPECT_EQ(values(cfg, "k", c[1]), Strings{"v"});
    }
}

TEST(DUNXCfgFile, SectionNamedTwiceCollectsBothPlaces) {
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, "top=0\n[A]\nk1=1\n[B]\nk2=2\n[a]\nk4=4\n[A]\nk3=3\n")),
              DUNI_S_SUCCESS);
    ASSERT_EQ(cfg.GetSectionCount(), 4); // names compare with regard to case
    const char* order[] = {"", "A", "B", "a"};
    for (int i = 0; i < 4; ++i)
        EXPECT_STREQ(cfg.GetSectionAt(i)->GetName(), order[i]);
    const DUNXCfgFileSection* a = cfg.GetSection("A");
    ASSERT_EQ(a->GetRowCount(), 2);
    EXPECT_EQ(text(a->GetKey(0)->GetName()), "k1");
    EXPECT_EQ(text(a->GetKey(1)->GetName()), "k3");
}

TEST(DUNXCfgFile, RepeatedKeyMakesSecondKeyAndLookupsFindTheFirst) {
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, "k=1\nk=2\nk=3,4\n")), DUNI_S_SUCCESS);
    const DUNXCfgFileSection* unnamed = cfg.GetSection("");
    ASSERT_EQ(unnamed->GetRowCount(), 3);
    EXPECT_EQ(text(*unnamed->GetKey(2)->GetValue(1)), "4");
    EXPECT_EQ(values(cfg, "k"), Strings{"1"});
    int value = 0;
    EXPECT_TRUE(cfg.GetInt("k", value));
    EXPECT_EQ(value, 1);
}

TEST(DUNXCfgFile, CrLfEndingsAndMissingFinalNewlineReadLikePlainLines) {
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, "a=1\r\nb = 2 \r\n[S]\r\nc=x,y")), DUNI_S_SUCCESS);
    EXPECT_EQ(values(cfg, "a"), Strings{"1"});
    EXPECT_EQ(values(cfg, "b"), Strings{"2"});
    EXPECT_EQ(values(cfg, "c", "S"), (Strings{"x", "y"}));
}

TEST(DUNXCfgFile, EmptyFileSucceedsWithOnlyTheUnnamedSection) {
    for (const char* content : {"", "\n\n", "# only a comment\n", "  \r\n\t"}) {
        SCOPED_TRACE(content);
        DUNXCfgFile cfg;
        EXPECT_EQ(cfg.GetSectionCount(), 0);
        EXPECT_EQ(long(load(cfg, content)), DUNI_S_SUCCESS);
        ASSERT_EQ(cfg.GetSectionCount(), 1);
        EXPECT_STREQ(cfg.GetSectionAt(0)->GetName(), "");
        EXPECT_EQ(cfg.GetSectionAt(0)->GetRowCount(), 0);
    }
    DUNXCfgFile cfg;
    EXPECT_EQ(long(cfg.Load(nullptr)), DUNI_E_FAIL);
}

TEST(DUNXCfgFile, ErrorListSurvivesASecondLoad) {
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, "bad\n")), DUNI_E_FAIL);
    EXPECT_EQ(long(load(cfg, "ok=1\nworse\n")), DUNI_E_FAIL);
    EXPECT_EQ(long(load(cfg, "more=2\n")), DUNI_E_FAIL); // clean, but the faults remain
    ASSERT_EQ(cfg.GetErrorCount(), 2);
    EXPECT_EQ(message(cfg, 0), lineFault(1, "bad"));
    EXPECT_EQ(message(cfg, 1), lineFault(2, "worse")); // each load counts from 1
    EXPECT_EQ(cfg.GetSectionCount(), 1);
    EXPECT_EQ(values(cfg, "more"), Strings{"2"});
}

TEST(DUNXCfgFile, LongLineIsReadInPiecesOf1023Characters) {
    // 1,025 pieces of exactly 1,023 characters on one line (about a megabyte),
    // each beginning a key of its own: any other piece size shifts every key
    // and turns the pieces into faults.
    const int pieces = 1025;
    std::string line;
    for (int i = 0; i < pieces; ++i) {
        std::string piece = "k" + std::to_string(i) + "=";
        piece.resize(1023, 'x');
        line += piece;
    }
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, line + "tail=1\nafter=2\n")), DUNI_S_SUCCESS);
    const DUNXCfgFileSection* unnamed = cfg.GetSection("");
    ASSERT_EQ(unnamed->GetRowCount(), pieces + 2);
    for (int i = 0; i < pieces; ++i)
        ASSERT_EQ(text(unnamed->GetKey(i)->GetName()), "k" + std::to_string(i));
    EXPECT_EQ(values(cfg, "k0"), Strings{std::string(1020, 'x')});
    EXPECT_EQ(values(cfg, "k1000"), Strings{std::string(1017, 'x')});
    EXPECT_EQ(values(cfg, "tail"), Strings{"1"});
    EXPECT_EQ(values(cfg, "after"), Strings{"2"});
}

TEST(DUNXCfgFile, MegabyteLineRecordsOneFaultPerPieceAfterTheFirst) {
    // 1,048,576 characters = 1,025 pieces of 1,023 and a last piece "v": the
    // first piece holds "k=", the 1,025 others have no separator, and the
    // next line is line 1,027.
    DUNXCfgFile cfg;
    EXPECT_EQ(long(load(cfg, "k=" + std::string((1 << 20) - 2, 'v') + "\nbad\n")), DUNI_E_FAIL);
    EXPECT_EQ(values(cfg, "k"), Strings{std::string(1021, 'v')});
    ASSERT_EQ(cfg.GetErrorCount(), 1026);
    // Messages are formatted into 1,024 bytes, so the piece's text is cut.
    const std::string prefix = "Incorrect syntax: line 2:";
    EXPECT_EQ(message(cfg, 0), prefix + std::string(1023 - prefix.size(), 'v'));
    EXPECT_EQ(message(cfg, 1024), lineFault(1026, "v"));
    EXPECT_EQ(message(cfg, 1025), lineFault(1027, "bad"));
}

TEST(DUNXCfgFile, BinaryGarbageLoadsWithoutCrashing) {
    std::mt19937 generator(20240611u);
    const std::string syntax("=[],:#; \t\r\n\0ab", 15);
    for (int round = 0; round < 8; ++round) {
        SCOPED_TRACE(round);
        std::string bytes; // odd rounds draw from the characters the syntax gives meaning to
        for (int i = 0, size = 1 << (4 * (round % 4) + 1); i < size; ++i)
            bytes += round % 2 ? syntax[generator() % syntax.size()] : char(generator() % 256);
        DUNXCfgFile cfg;
        DUNIResult result = load(cfg, bytes + "\n[End]\nlast=1\n");
        EXPECT_EQ(long(result) == DUNI_S_SUCCESS, cfg.GetErrorCount() == 0);
        for (int i = 0; i < cfg.GetErrorCount(); ++i)
            ASSERT_EQ(message(cfg, i).rfind("Incorrect syntax: line ", 0), 0u);
        EXPECT_EQ(values(cfg, "last", "End"), Strings{"1"});
    }
}

TEST(DUNXCfgFile, MissingSectionKeyOrIndexAnswersFalseSilently) {
    DUNXCfgFile cfg;
    ASSERT_EQ(long(load(cfg, "k=1\n[Tools]\nt=2\n")), DUNI_S_SUCCESS);
    const std::tuple<const char*, int, const char*> cases[] = {
        {"absent", 0, nullptr}, {"k", 1, nullptr}, {"k", -1, nullptr}, {"K", 0, nullptr},
        {"t", 0, nullptr},      {"t", 0, "tools"}, {"k", 0, "Tools"},  {"t", 0, "Absent"}};
    for (const auto& [key, index, section] : cases) {
        SCOPED_TRACE(std::string(key) + "/" + std::to_string(index) + "/" +
                     (section ? section : "<null>"));
        DUNXString s;
        int i;
        bool b;
        EXPECT_FALSE(cfg.GetString(key, s, index, section));
        EXPECT_FALSE(cfg.GetInt(key, i, index, section));
        EXPECT_FALSE(cfg.GetBool(key, b, index, section));
        EXPECT_FALSE(cfg.GetLogical(key, i, index, section));
        EXPECT_EQ(cfg.GetErrorCount(), 0);
    }
    EXPECT_FALSE(cfg.ExistKey("t"));
    EXPECT_EQ(cfg.GetArraySize("t"), 0);
    EXPECT_TRUE(cfg.ExistKey("t", "Tools"));
    DUNXString value;
    EXPECT_TRUE(cfg.GetString("k", value, 0, ""));
    EXPECT_EQ(text(value), "1");
}

namespace {

// Reads each text as value 1 of "Width=x,<text>,end", so that its blanks
// reach the getter untrimmed: accepted texts give their number silently,
// refused ones answer false with exactly `refusal`.
template <class T>
void checkGetter(bool (DUNXCfgFile::*get)(const char*, T&, int, const char*),
                 std::initializer_list<std::pair<const char*, double>> accepted,
                 std::initializer_list<const char*> refused, const char* refusal) {
    auto read = [&](const char* text, T& value) {
        DUNXCfgFile cfg;
        EXPECT_EQ(long(load(cfg, std::string("Width=x,") + text + ",end\n")), DUNI_S_SUCCESS);
        bool delivered = (cfg.*get)("Width", value, 1, nullptr);
        return std::make_pair(delivered, cfg.GetErrorCount() ? message(cfg, 0) : "");
    };
    for (const auto& [text, expected] : accepted) {
        SCOPED_TRACE(std::string("accepted \"") + text + "\"");
        T value{};
        EXPECT_EQ(read(text, value), std::make_pair(true, std::string()));
        EXPECT_EQ(static_cast<double>(value), expected);
    }
    for (const char* text : refused) {
        SCOPED_TRACE(std::string("refused \"") + text + "\"");
        T value{};
        EXPECT_EQ(read(text, value), std::make_pair(false, std::string(refusal)));
    }
}

} // namespace

TEST(DUNXCfgFile, GetBoolTakesOnlyLowerCaseTrueAndFalse) {
    checkGetter(&DUNXCfgFile::GetBool, {{"true", 1}, {"false", 0}},
                {"TRUE", "True", "1", "yes", " true", ""},
                "Incorrect syntax: key:Width *** bool value \"true\" or \"false\" expected.");
}

TEST(DUNXCfgFile, GetLogicalTakesZeroOneAndUpperCaseWords) {
    checkGetter(&DUNXCfgFile::GetLogical, {{"0", 0}, {"1", 1}, {"TRUE", 1}, {"FALSE", 0}},
                {"true", "False", "2", "01", "-1", " 1", ""},
                "Incorrect syntax: key:Width *** integer \"0\" or \"1\" or string \"TRUE\" or "
                "\"FALSE\" expected.");
}

TEST(DUNXCfgFile, GetIntTakesWholeDecimalIntegersInRange) {
    checkGetter(&DUNXCfgFile::GetInt,
                {{"42", 42},
                 {"-7", -7},
                 {" 12 ", 12},
                 {"2147483647", 2147483647.0},
                 {"-2147483648", -2147483648.0}},
                {"2147483648", "99999999999999999999", "1.5", "1e3", "0x10", "12abc", " ", ""},
                "Incorrect syntax: key:Width *** integer value expected.");
}

TEST(DUNXCfgFile, GetDoubleTakesWholeDecimalNumbers) {
    checkGetter(&DUNXCfgFile::GetDouble,
                {{"1.5", 1.5}, {"-2.5e3", -2500}, {"1E3", 1000}, {" 3 ", 3}},
                {"0x10", "inf", "nan", "1.5x", "1e", ""},
                "Incorrect syntax: key:Width *** double value expected.");
}

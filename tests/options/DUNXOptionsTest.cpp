#include <dunx/DUNXOptions.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXStreamFormatter.h>

#include "support/AllocationCounter.h"
#include "support/EventRecorder.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
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

// A set whose options hold their own stored name as string value, so that a
// lookup tells which option answered.
DUNXOptions setOf(std::initializer_list<const char*> names) {
    DUNXOptions set;
    for (const char* name : names)
        EXPECT_EQ(long(set.AddOption(name, name)), DUNI_S_SUCCESS) << name;
    return set;
}

// The value, as text, of the option answering `name`, or "<none>".
std::string answer(const DUNXOptions& set, const std::string& name) {
    DUNXOption* option = nullptr;
    if (long(set.GetOption(DUNXString(name.c_str()), option)) != DUNI_S_SUCCESS)
        return "<none>";
    DUNXString value;
    option->GetValue(value);
    return text(value);
}

DUNXValue::DUNXValueType typeOf(const DUNXOptions& set, const char* name) {
    DUNXOption* option = nullptr;
    DUNXValue::DUNXValueType type = DUNXValue::TypeUnknown;
    if (long(set.GetOption(DUNXString(name), option)) == DUNI_S_SUCCESS)
        option->GetValueType(type);
    return type;
}

// The names of the options in enumeration order.
Strings names(const DUNXOptions& set) {
    Strings all;
    set.InitEnumeration();
    DUNXOption* option = nullptr;
    while (long(set.GetNext(option)) == DUNI_S_SUCCESS && all.size() <= 10000)
        all.push_back(text(option->GetNameText()));
    return all;
}

DUNIResult readFrom(DUNXOptions& set, const std::string& content) {
    dunx::test::TempDir dir;
    dir.write("options.cfg", content);
    std::FILE* file = std::fopen(dir.file("options.cfg").c_str(), "rb");
    if (!file)
        return DUNI_U_UNDETERMINED;
    DUNIResult result = set.ReadFromFile(file);
    std::fclose(file);
    return result;
}

// "t0.t1. ... .t<count-1>", with token number `at` replaced by `token`.
std::string joinTokens(int count, int at = -1, const char* token = "") {
    std::string name;
    for (int i = 0; i < count; ++i)
        name += (i ? "." : "") + (i == at ? std::string(token) : "t" + std::to_string(i));
    return name;
}

} // namespace

TEST(DUNXOptions, ExactPathWinsAndWildcardAnswersWhereItLeadsNowhere) {
    const DUNXOptions set = setOf({"A.B", "A.*", "A.B.C", "A.*.D", "X.*.Z", "*.Q", "*", "P.Q.R",
                                   "P.*", "a.b.c.d.e.f.g.h", "a.b.c.d.e.f.*.h"});
    // "A.B.D": B exists but holds no D, so the search backs up to "*".
    // "A.*.C": a looked-up "*" is a plain token, not a pattern.
    // "A.Q": the exact "A" is preferred to the root "*" with its "Q".
    // "A", "P.Q": nothing hangs where the exact path ends, so "*" answers.
    const char* cases[] = {"A.B -> A.B",
                           "A.Y -> A.*",
                           "A.B.C -> A.B.C",
                           "A.B.D -> A.*.D",
                           "A.Y.D -> A.*.D",
                           "A.Y.C -> <none>",
                           "A.* -> A.*",
                           "A.*.C -> <none>",
                           "X.Y.Z -> X.*.Z",
                           "X.Y -> <none>",
                           "Z.Q -> *.Q",
                           "A.Q -> A.*",
                           "B -> *",
                           "* -> *",
                           "B.C -> <none>",
                           "A -> *",
                           "P.Q -> P.*",
                           "a.B -> <none>",
                           "a.b.c.d.e.f.g.h -> a.b.c.d.e.f.g.h",
                           "a.b.c.d.e.f.x.h -> a.b.c.d.e.f.*.h",
                           "a.b.c.d.e.f.x.y -> <none>"};
    for (const std::string c : cases) {
        SCOPED_TRACE(c);
        const std::size_t arrow = c.find(" -> ");
        EXPECT_EQ(answer(set, c.substr(0, arrow)), c.substr(arrow + 4));
    }
    DUNXOption marker;
    DUNXOption* option = &marker;
    EXPECT_EQ(long(set.GetOption(DUNXString("A.Y.C"), option)), DUNI_E_FAIL);
    EXPECT_EQ(option, &marker); // untouched by a failed lookup
}

TEST(DUNXOptions, EmptyTokensAreIgnoredAndNamesWithoutTokensRefused) {
    DUNXOptions set;
    EXPECT_EQ(long(set.AddOption("A..B", 1)), DUNI_S_SUCCESS);
    for (const char* name : {"A.B", ".A.B", "A.B.", "A...B"})
        EXPECT_EQ(answer(set, name), "1") << name;
    EXPECT_EQ(long(set.AddOption(".A.B.", 2)), DUNI_S_SUCCESS);
    EXPECT_EQ(set.Size(), 1); // the same name, so it replaced the first
    for (const char* name : {"", ".", ".."}) {
        SCOPED_TRACE(std::string("\"") + name + "\"");
        EXPECT_EQ(long(set.AddOption(name, 3)), DUNI_E_INVALID_ARGUMENT);
        DUNXOption* option = nullptr;
        EXPECT_EQ(long(set.GetOption(DUNXString(name), option)), DUNI_E_INVALID_ARGUMENT);
    }
    EXPECT_EQ(long(set.AddOption(static_cast<const DUNXOption*>(nullptr))),
              DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(long(set.AddOption(DUNXOption())), DUNI_E_NO_VALUE);
    EXPECT_EQ(set.Size(), 1);
}

TEST(DUNXOptions, NamesOfMoreThan256TokensAreRefused) {
    DUNXOptions set;
    EXPECT_EQ(long(set.AddOption(joinTokens(256).c_str(), "deep")), DUNI_S_SUCCESS);
    EXPECT_EQ(answer(set, joinTokens(256)), "deep");
    EXPECT_EQ(long(set.AddOption(joinTokens(255, 200, "*").c_str(), "wild")), DUNI_S_SUCCESS);
    EXPECT_EQ(answer(set, joinTokens(255, 200, "x")), "wild");
    for (int count : {257, 300}) {
        SCOPED_TRACE(count);
        EXPECT_EQ(long(set.AddOption(joinTokens(count).c_str(), "x")), DUNI_E_INVALID_ARGUMENT);
        EXPECT_EQ(answer(set, joinTokens(count)), "<none>");
    }
    EXPECT_EQ(set.Size(), 2);
}

TEST(DUNXOptions, EnumerationFollowsFirstAddedOrderThroughReplacements) {
    DUNXOptions set = setOf({"Z", "A.*", "M.N", "B"});
    EXPECT_EQ(long(set.AddOption("A.*", 5)), DUNI_S_SUCCESS);
    EXPECT_EQ(set.Size(), 4);
    EXPECT_EQ(answer(set, "A.x"), "5");
    EXPECT_EQ(names(set), (Strings{"Z", "A.*", "M.N", "B"}));
    DUNXOption* option = nullptr;
    EXPECT_EQ(long(set.GetNext(option)), DUNI_E_FAIL); // stays at the end
    EXPECT_EQ(names(set), (Strings{"Z", "A.*", "M.N", "B"}));
    set.RemoveAll();
    EXPECT_EQ(names(set), Strings{});
    EXPECT_EQ(answer(set, "M.N"), "<none>");
    set.AddOption("M.N", "again");
    EXPECT_EQ(answer(set, "M.N"), "again");
}

TEST(DUNXOptions, TypeComesFromTheAdderOrFromTheParsedText) {
    const auto D = DUNXValue::TypeDouble, B = DUNXValue::TypeBool, S = DUNXValue::TypeString;
    const std::tuple<const char*, DUNXValue::DUNXValueType, const char*> cases[] = {
        {"3", D, "3"},       {"-2.5e3", D, "-2500"}, {" 4 ", D, "4"},     {"0.25", D, "0.25"},
        {"On", B, "True"},   {"yes", B, "True"},     {"TRUE", B, "True"}, {"off", B, "False"},
        {"No", B, "False"},  {"fAlSe", B, "False"},  {"abc", S, "abc"},   {"3x", S, "3x"},
        {"0x10", S, "0x10"}, {"inf", S, "inf"},      {"1,2", S, "1,2"},   {"Yess", S, "Yess"},
        {"", S, ""}};
    for (const auto& [input, type, value] : cases) {
        SCOPED_TRACE(std::string("\"") + input + "\"");
        DUNXOptions set;
        EXPECT_EQ(long(set.AddOptionParseValue("Opt", DUNXString(input))), DUNI_S_SUCCESS);
        EXPECT_EQ(typeOf(set, "Opt"), type);
        EXPECT_EQ(answer(set, "Opt"), value);
    }
    DUNXOptions set;
    set.AddOption("I", 7);
    set.AddOption("C", "true"); // a text literal stays text
    EXPECT_EQ(typeOf(set, "I"), DUNXValue::TypeInt);
    EXPECT_EQ(typeOf(set, "C"), DUNXValue::TypeString);
}

TEST(DUNXOptions, ReadFromFileTypesKeysOfTheUnnamedSectionOnly) {
    DUNXOptions set;
    EXPECT_EQ(long(readFrom(set, "# options\nFlag=On\nQuiet = off\nLevel=3\nName=abc\n"
                                 "List=a, b\nImport.Mode=2\n[Section]\nHidden=1\n")),
              DUNI_S_SUCCESS);
    EXPECT_EQ(names(set), (Strings{"Flag", "Quiet", "Level", "Name", "List", "Import.Mode"}));
    EXPECT_EQ(typeOf(set, "Flag"), DUNXValue::TypeBool);
    EXPECT_EQ(answer(set, "Flag"), "True");
    EXPECT_EQ(answer(set, "Quiet"), "False");
    EXPECT_EQ(typeOf(set, "Level"), DUNXValue::TypeDouble); // a double, not an int
    EXPECT_EQ(answer(set, "Name"), "abc");
    EXPECT_EQ(answer(set, "List"), "a, b"); // the pieces joined again
    EXPECT_EQ(answer(set, "Import.Mode"), "2");
    EXPECT_EQ(answer(set, "Hidden"), "<none>");
    EXPECT_EQ(answer(set, "Section.Hidden"), "<none>");
}

TEST(DUNXOptions, ReadFromFileResultsForEmptyFaultyNullAndMissingFiles) {
    const std::pair<const char*, long> cases[] = {
        {"[Only]\nx=1\n", DUNI_S_SUCCESS}, // no unnamed section: nothing to add
        {"", DUNI_S_SUCCESS},
        {"a=1\nbroken\nb=2\n", DUNI_E_FAIL}}; // a faulty file adds nothing
    for (const auto& [content, result] : cases) {
        SCOPED_TRACE(content);
        DUNXOptions set;
        EXPECT_EQ(long(readFrom(set, content)), result);
        EXPECT_EQ(set.Size(), 0);
    }
    DUNXOptions set;
    EXPECT_EQ(long(set.ReadFromFile(static_cast<std::FILE*>(nullptr))), 0x0100000BL);
    dunx::test::TempDir dir;
    EXPECT_EQ(long(set.ReadFromFile(DUNXString(dir.file("missing.cfg").c_str()))),
              DUNI_E_FILE_OPEN);
    dir.write("options.cfg", "Mode=fast\n");
    std::string path = dir.file("options.cfg");
    std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_EQ(long(set.ReadFromFile(DUNXString(path.c_str()))), DUNI_S_SUCCESS);
    EXPECT_EQ(answer(set, "Mode"), "fast");
}

TEST(DUNXOptions, AddOptionsHonoursReplaceExisting) {
    const DUNXOptions other = setOf({"Y", "Z"});
    for (bool replace : {true, false}) {
        SCOPED_TRACE(replace);
        DUNXOptions set = setOf({"X"});
        set.AddOption("Y", "mine");
        EXPECT_EQ(long(set.AddOptions(other, replace)), DUNI_S_SUCCESS);
        EXPECT_EQ(names(set), (Strings{"X", "Y", "Z"}));
        EXPECT_EQ(answer(set, "Y"), replace ? "Y" : "mine");
    }
    DUNXOptions self = setOf({"A", "B.*"});
    self.AddOptions(self, true);
    EXPECT_EQ(names(self), (Strings{"A", "B.*"}));
    EXPECT_EQ(answer(self, "B.C"), "B.*");
}

TEST(DUNXOptions, CopiesAreIndependentAndKeepWildcards) {
    DUNXOptions original = setOf({"A.*", "A.B"});
    DUNXOptions copy(original);
    DUNXOptions assigned = setOf({"Gone"});
    assigned = original;
    const DUNXOptions& alias = assigned;
    assigned = alias; // assigning a set to itself keeps it
    DUNXOption* option = nullptr;
    ASSERT_EQ(long(copy.GetOption(DUNXString("A.B"), option)), DUNI_S_SUCCESS);
    option->SetValue("changed");
    original.RemoveAll();
    for (const DUNXOptions* set : {&copy, &assigned}) {
        EXPECT_EQ(names(*set), (Strings{"A.*", "A.B"}));
        EXPECT_EQ(answer(*set, "A.Q"), "A.*");
    }
    EXPECT_EQ(answer(copy, "A.B"), "changed");
    EXPECT_EQ(answer(assigned, "A.B"), "A.B");
    EXPECT_TRUE(copy.HasOption(DUNXOption(DUNXOptionName("A.*"), 1)));
    EXPECT_FALSE(copy.HasOption(DUNXOption(DUNXOptionName("A.X"), 1))); // no wildcard
    EXPECT_FALSE(copy.HasOption(DUNXOption(DUNXOptionName("A"), 1)));
}

TEST(DUNXOptions, LookupAllocatesNothingBeyondSplittingTheName) {
    DUNXOptions big, small;
    for (int i = 0; i < 1000; ++i)
        big.AddOption(("Group" + std::to_string(i % 10) + ".Sub" + std::to_string(i % 100) +
                       ".Part.Piece.Leaf" + std::to_string(i))
                          .c_str(),
                      i);
    big.AddOption("Group3.*.Part.Piece.Other", -1);
    small.AddOption("Other", 0);
    // Splitting a name of five tokens needs one buffer per token string and
    // one for the array holding them, hence at most 5 + 1. Walking the tree
    // must add none, however large the set and whether the lookup hits, falls
    // back or misses: the one-option set splits the same name and finds nothing.
    DUNXOption* warmUp = nullptr;
    small.GetOption(DUNXString("A.B"), warmUp); // the wildcard key is made once, on first use
    for (const char* lookup : {"Group3.Sub43.Part.Piece.Leaf943", "Group3.Sub43.Part.Piece.Other",
                               "Group3.Sub43.Part.Piece.Leaf944"}) {
        SCOPED_TRACE(lookup);
        const DUNXString name(lookup);
        DUNXOption* option = nullptr;
        long inBig, inSmall;
        {
            dunx::test::AllocationCounter counter;
            big.GetOption(name, option);
            inBig = counter.count();
        }
        {
            dunx::test::AllocationCounter counter;
            small.GetOption(name, option);
            inSmall = counter.count();
        }
        EXPECT_LE(inBig, 5 + 1);
        EXPECT_EQ(inBig, inSmall);
    }
    EXPECT_EQ(answer(big, "Group3.Sub43.Part.Piece.Leaf943"), "943");
    EXPECT_EQ(answer(big, "Group3.Sub43.Part.Piece.Other"), "-1");
}

TEST(DUNXOptions, DumpPrintsHeaderOptionLinesAndFooterAsInformation) {
    DUNXOptions set;
    set.AddOption("Name", "abc");
    set.AddOption("Count", 3);
    set.AddOption("Ratio", 0.5);
    set.AddOption("Flag", true);
    const Strings lines = {"Name", "abc", "Count", "3", "Ratio", "0.500000", "Flag", "true"};
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"Header", "%s -> %s", "Footer", " -> "}, {nullptr, "%s -> %s", nullptr, " -> "},
        {"Header", "%d %d", nullptr, " = "}, // unfit formats fall back to "%s = %s"
        {nullptr, "%s", nullptr, " = "},          {nullptr, "%s %s %s", nullptr, " = "},
        {nullptr, nullptr, "Footer", " = "}};
    for (const auto& [header, format, footer, separator] : cases) {
        SCOPED_TRACE(format ? format : "<null>");
        Strings expected;
        if (header)
            expected.push_back(std::string(header) + "\n");
        for (std::size_t i = 0; i < lines.size(); i += 2)
            expected.push_back(lines[i] + separator + lines[i + 1] + "\n");
        if (footer)
            expected.push_back(std::string(footer) + "\n");
        dunx::test::EventRecorder recorder;
        set.Dump(header, format, footer);
        Strings printed;
        for (const auto& entry : recorder.entries()) {
            if (entry.name == "DUNXMessageEvent" && entry.level == 50)
                printed.push_back(entry.text);
        }
        EXPECT_EQ(printed, expected);
    }
}

TEST(DUNXOptions, DumpOptionsWritesTitleRuleAndOneLinePerOption) {
    DUNXOptions set;
    set.AddOption("Name", "abc");
    set.AddOption("A.*", 3);
    DUNXStringOutputStream stream;
    DUNXStreamFormatter formatter(&stream);
    formatter.setLineEnd("<LE>");
    set.DumpOptions(formatter);
    EXPECT_STREQ(stream.GetText(),
                 "Options currently present and there values are given below : <LE>"
                 "============================================================= <LE>"
                 "The Option \"Name\" value is\t\t=     abc<LE>"
                 "The Option \"A.*\" value is\t\t=     3<LE>");
}

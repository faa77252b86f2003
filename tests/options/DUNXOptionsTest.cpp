#include <dunx/DUNXOptions.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXStreamFormatter.h>

#include "support/AllocationCounter.h"
#include "support/EventRecorder.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// Each option holds its own name as value, so that a lookup tells which option answered.
DUNXOptions setOf(std::initializer_list<const char*> names) {
    DUNXOptions set;
    for (const char* name : names)
        set.AddOption(name, name);
    return set;
}

// The value of the option answering `name`; "<none>" when the lookup fails and leaves `option`.
std::string answer(const DUNXOptions& set, const std::string& name) {
    DUNXOption* option = nullptr;
    DUNXString value(set.GetOption(DUNXString(name.c_str()), option) ? "<none>" : "<null>");
    if (option)
        option->GetValue(value);
    return static_cast<const char*>(value);
}

// Every option in enumeration order, as "name=t:value;" with t the type's initial.
std::string contents(const DUNXOptions& set) {
    std::string all;
    DUNXOption* option = nullptr;
    DUNXValue value;
    DUNXValue::DUNXValueType type = DUNXValue::TypeUnknown;
    set.InitEnumeration();
    while (all.size() < 1000 && set.GetNext(option) == 0 && option->GetValue(value) == 0 &&
           value.GetValueType(type) == 0)
        all += static_cast<const char*>(option->GetNameText()) + std::string("=") +
               DUNXValue::GetTypeName(type)[0] + ":" + static_cast<const char*>(value) + ";";
    return all;
}

} // namespace

TEST(DUNXOptions, ExactPathWinsAndWildcardAnswersWhereItLeadsNowhere) {
    DUNXOptions set = setOf({"A.B", "A.*", "A.B.C", "A.*.D", "X.*.Z", "*.Q", "*", "P.Q.R", "P.*",
                             "a.b.c.d.e.f.g.h", "a.b.c.d.e.f.*.h", ".E..F."});
    // Empty tokens are ignored; a stored "*" answers where the exact path leads nowhere.
    std::istringstream cases("A.B>A.B A.Y>A.* A.B.C>A.B.C A.B.D>A.*.D A.Y.D>A.*.D A.Y.C><none> "
                             "A.*.C><none> X.Y.Z>X.*.Z Z.Q>*.Q A.Q>A.* B>* B.C><none> A>* P.Q>P.* "
                             "a.B><none> a.b.c.d.e.f.g.h>a.b.c.d.e.f.g.h a.b.c.d.e.f.x.y><none> "
                             "a.b.c.d.e.f.x.h>a.b.c.d.e.f.*.h ..A...B.>A.B E.F>.E..F. A.*>A.*");
    for (std::string c; cases >> c;)
        EXPECT_EQ(answer(set, c.substr(0, c.find('>'))), c.substr(c.find('>') + 1)) << c;
    std::string deep; // a name needs a token, and may have 256
    while (deep.size() < 511)
        deep += deep.empty() ? "t" : ".t";
    for (const std::string& name : {deep, std::string(""), std::string(".."), deep + ".t"})
        EXPECT_TRUE(set.AddOption(name.c_str(), 1) ==
                        (name == deep ? 0 : DUNI_E_INVALID_ARGUMENT) &&
                    answer(set, name) == (name == deep ? "1" : "<none>"));
    // At exactly 256 tokens a name is still walked through the tree: a wildcard answers.
    const std::string stem = deep.substr(0, deep.size() - 1);
    EXPECT_EQ(long(set.AddOption((stem + "*").c_str(), 2)), 0);
    EXPECT_EQ(answer(set, stem + "u"), "2");
    EXPECT_TRUE(set.HasOption(DUNXOption(DUNXOptionName(deep.c_str()), 1)));
    EXPECT_EQ(long(set.AddOption(DUNXOption())), DUNI_E_NO_VALUE);
    const DUNXOption byAddress(DUNXOptionName("Given.By.Address"), 3);
    EXPECT_EQ(long(set.AddOption(static_cast<const DUNXOption*>(nullptr))),
              DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(long(set.AddOption(&byAddress)), 0);
    EXPECT_EQ(answer(set, "Given.By.Address"), "3");
}

TEST(DUNXOptions, FileKeysOfTheUnnamedSectionAreTypedFromTheirText) {
    // Numbers become doubles, the six words bools, the rest text; a repeated name replaces.
    const char* files[] = {"[S]\nx=1\n", "a=1\nbad\n",
                           ("# c\nA=3\nB=-2.5e3\nC=On\nD=yes\nE=TRUE\nF=off\nG=No\nH=fAlSe\nI=3x\n"
                            "S=a, b\nI.M=x\nA=2\n[S]\nH=1\n")};
    const std::string read[] = {"0", std::to_string(DUNI_E_FAIL),
                                ("0A=d:2;B=d:-2500;C=b:True;D=b:True;E=b:True;F=b:False;G=b:False;"
                                 "H=b:False;I=s:3x;S=s:a, b;I.M=s:x;")};
    dunx::test::TempDir dir;
    for (int n = 0; n < 3; ++n) {
        DUNXOptions set; // '\' is taken as '/'; a faulty file adds nothing
        dir.write("options.cfg", files[n]);
        const long result = set.ReadFromFile(DUNXString((dir.path() + "\\options.cfg").c_str()));
        EXPECT_EQ(std::to_string(result) + contents(set), read[n]);
    }
}

TEST(DUNXOptions, LookupAllocatesNothingBeyondSplittingTheName) {
    DUNXOptions set = setOf({"G.*.P.Q.Other"});
    for (int i = 0; i < 1000; ++i)
        set.AddOption(("G.S" + std::to_string(i) + ".P.Q.L").c_str(), i);
    DUNXOption* option = nullptr;
    set.GetOption(DUNXString("A.B"), option); // a wildcard key may be made once, on first use
    for (const char* lookup : {"G.S943.P.Q.L", "G.S943.P.Q.Other", "G.S944.P.Q.M"}) {
        const DUNXString name(lookup);
        dunx::test::AllocationCounter counter;
        set.GetOption(name, option);
        const long count = counter.count();
        if (dunx::test::AllocationCounter::SeesLibraryAllocations()) {
            EXPECT_LE(count, 5 + 1) << lookup; // a buffer per token, one for their array
        }
    }
    // A name stored as it is asked for is found without splitting it.
    std::vector<DUNXString> names;
    for (int i = 0; i < 1000; ++i)
        names.emplace_back(("G.S" + std::to_string(i) + ".P.Q.L").c_str());
    int found = 0;
    long allocations;
    {
        dunx::test::AllocationCounter counter;
        for (const DUNXString& name : names)
            found += set.GetOption(name, option).IsSuccess() ? 1 : 0;
        allocations = counter.count();
    }
    EXPECT_EQ(found, 1000);
    if (dunx::test::AllocationCounter::SeesLibraryAllocations()) {
        EXPECT_EQ(allocations, 0);
    }
}

TEST(DUNXOptions, CopiesKeepEveryOptionInOrderAndDumpsPrintThem) {
    DUNXOptions set = setOf({"Name"});
    set.AddOption("Count", 3);
    set.AddOption("Ratio", 0.5);
    set.AddOption("A.*", true);
    DUNXOptions copy(set), assigned = setOf({"Gone"});
    assigned = copy;
    set.RemoveAll();
    set.AddOption("Z", 1);
    set.AddOptions(setOf({"Z", "Y"}), false); // keeps the options already present
    EXPECT_EQ(answer(set, "Name") + answer(set, "Z") + answer(set, "Y"), "<none>1Y");
    EXPECT_TRUE(answer(assigned, "A.Y") == "True" &&
                !assigned.HasOption(DUNXOption(DUNXOptionName("A.Y"), 1)) &&
                assigned.HasOption(DUNXOption(DUNXOptionName("A.*"), 1))); // no wildcard
    dunx::test::EventRecorder recorder;
    assigned.Dump("Header", "%s -> %s", "Footer"); // other formats than two texts: "%s = %s"
    for (const char* format : {"%d %d", "%s", "%s %s %s", static_cast<const char*>(nullptr)})
        assigned.Dump(nullptr, format, nullptr);
    const std::string fallback = "Name = Name\nCount = 3\nRatio = 0.500000\nA.* = true\n";
    EXPECT_EQ(recorder.texts() + recorder.entries().back().name, // on the information channel
              "Header\nName -> Name\nCount -> 3\nRatio -> 0.500000\nA.* -> true\nFooter\n" +
                  fallback + fallback + fallback + fallback + "DUNXMessageEvent");
    DUNXStringOutputStream stream;
    DUNXStreamFormatter formatter(&stream);
    assigned.DumpOptions(formatter);
    EXPECT_STREQ(stream.GetText(),
                 "Options currently present and there values are given below : \n"
                 "============================================================= \n"
                 "The Option \"Name\" value is\t\t=     Name\n"
                 "The Option \"Count\" value is\t\t=     3\n"
                 "The Option \"Ratio\" value is\t\t=     0.500000\n"
                 "The Option \"A.*\" value is\t\t=     True\n");
}

TEST(DUNXOptions, PresentNamesAnswerAsTheTokenTreeDoes) {
    // A name with an empty token (".A.B") is always looked up in the token
    // tree; the same name without it may be answered by the index of stored
    // names. Both must give the same option for every name, stored or not.
    // Names of 1 to 29 units: the index reads four units at a time, then a tail.
    const char* tokens[] = {"A", "B", "*", "CC", "Setting42"};
    std::vector<std::string> names;
    for (const char* a : tokens) {
        names.push_back(a);
        for (const char* b : tokens) {
            names.push_back(std::string(a) + "." + b);
            for (const char* c : tokens)
                names.push_back(std::string(a) + "." + b + "." + c);
        }
    }
    for (unsigned round = 0; round < 40; ++round) {
        DUNXOptions set;
        for (std::size_t i = 0; i < names.size(); ++i)
            if ((i * 2654435761u + round * 40503u) % 7 < 3) // a different third each time
                set.AddOption(names[i].c_str(), names[i].c_str());
        if (round % 4 == 1)
            set = DUNXOptions(set); // copies must index their names too
        if (round % 4 == 2) {
            set.RemoveAll(); // a cleared set answers nothing, then what is added again
            EXPECT_EQ(answer(set, "A"), "<none>");
            set.AddOption("A..B.", "again");
        }
        for (const std::string& name : names) {
            DUNXOption* direct = nullptr;
            DUNXOption* walked = nullptr;
            const long found = set.GetOption(DUNXString(name.c_str()), direct);
            const long foundByTree = set.GetOption(DUNXString(("." + name).c_str()), walked);
            EXPECT_TRUE(found == foundByTree && direct == walked) << name << " round " << round;
        }
    }
    DUNXOptions replaced = setOf({"K.L", "K.*"}); // a repeated name keeps its place, new value
    replaced.AddOption("K..L", "second");
    EXPECT_EQ(answer(replaced, "K.L") + answer(replaced, "K.M"), "secondK.*");
}

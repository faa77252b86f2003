#include <dunx/DUNXArgs.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// Space-separated words as a mutable, null-terminated char* vector: argv or an option list.
struct Words {
    explicit Words(const std::string& line) {
        std::istringstream in(line);
        for (std::string word; in >> word;)
            words.push_back(word);
        for (std::string& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
    }
    int count() const { return static_cast<int>(words.size()); }
    std::vector<std::string> words;
    std::vector<char*> pointers;
};

// Plays `script` against `args` and writes what each call answered in the same notation:
// "2" / "-" GetNextOption true with index 2 / false with index -1; "=x" / "=!" GetOptionArgument
// gave "x" / false; ">x" / ">!" GetNextArg gave "x" / null; "s+" / "s-" Shift true / false.
std::string play(DUNXArgs& args, Words& options, const std::string& script) {
    std::string played;
    for (const std::string& step : Words(script).words) {
        char* argument = nullptr;
        int index = 99; // must be overwritten, also with a false answer
        if (step[0] == '=')
            played += args.GetOptionArgument(&argument) ? " =" + std::string(argument) : " =!";
        else if (step[0] == '>')
            played += std::string(" >") + ((argument = args.GetNextArg()) ? argument : "!");
        else if (step[0] == 's')
            played += args.Shift() ? " s+" : " s-";
        else if (args.GetNextOption(options.count(), options.pointers.data(), &index))
            played += " " + std::to_string(index);
        else
            played += index == -1 ? " -" : " ?";
    }
    return played; // with a leading blank
}

// Each walk reads "argv | options | script", with an optional "| argc" (else every word counts).
void playAll(std::initializer_list<std::string> walks) {
    for (const std::string& walk : walks) {
        SCOPED_TRACE(walk);
        std::istringstream in(walk);
        std::vector<std::string> fields;
        for (std::string field; std::getline(in, field, '|');)
            fields.push_back(field);
        Words argv(fields[0]), options(fields[1]);
        DUNXArgs args(fields.size() > 3 ? std::stoi(fields[3]) : argv.count(),
                      argv.pointers.data());
        EXPECT_EQ(play(args, options, fields[2]),
                  fields[2].substr(0, fields[2].find_last_not_of(' ') + 1));
    }
}

} // namespace

TEST(DUNXArgs, NameMatchesByPrefixElseTheFirstLetterOpensACluster) {
    // The first option the text starts wins; an unknown letter leaves a cluster open.
    playAll({"prog -ver | verbose version | 0 -", "prog -vers | verbose version | 1 -",
             "prog -v | verbose v | 0 -", "prog -verbosex | verbose | - -", "prog -o | v o: | 1 -",
             "prog - | v o | 0 -", "prog -vx | v x vxz | 2 -", "prog -vo | v o | 0 1 -",
             "prog -vxo | v o | 0 - 1 -", "prog -ox | o: x | 0 1 -", "prog -vq | vx | -"});
}

TEST(DUNXArgs, SkipsPlainArgumentsAndTakesTheOneAfterAnOption) {
    playAll({"prog file -v | v | 0 -", "prog -x a -v | v | 0 -", "prog -vo file -o | v o | 0 1 1 -",
             "-v | v | -", "prog -v -o out file | v o: | 0 1 =out -",
             "prog -vo out | v o: | 0 1 =out -", "prog -o -v | v o: | 1 =! 0 =! >!",
             "prog -v a -x b | v | 0 >a =! s+ =b"});
}

TEST(DUNXArgs, EveryQueryStopsAtTheEndOfTheLine) {
    playAll({"prog a b | | >a >b >! >!", "prog a b | | s+ >b s- s- >! =!",
             "prog | v o: | - =! >! s- -", " | v o: | - =! >! s- - | 0",
             "prog -v a b -o | v o: | 0 >a =! >! s- - | 3"}); // argc ends the line
    Words options("v");
    DUNXArgs nothing(0, nullptr);
    EXPECT_EQ(play(nothing, options, "- =! >! s- -"), " - =! >! s- -");
}

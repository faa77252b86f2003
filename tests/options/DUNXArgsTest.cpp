#include <dunx/DUNXArgs.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// Space-separated words kept alive as a mutable, null-terminated char* vector,
// the shape of both argv and an option list.
class Words {
public:
    explicit Words(const std::string& line) {
        std::istringstream in(line);
        for (std::string word; in >> word;)
            m_Words.push_back(word);
        for (std::string& word : m_Words)
            m_Pointers.push_back(word.data());
        m_Pointers.push_back(nullptr);
    }
    int count() const { return static_cast<int>(m_Words.size()); }
    char** data() { return m_Pointers.data(); }
    std::size_t size() const { return m_Words.size(); }
    const std::string& operator[](std::size_t i) const { return m_Words[i]; }

private:
    std::vector<std::string> m_Words;
    std::vector<char*> m_Pointers;
};

// Plays `script` against `args` and describes what happened in the same words,
// so a walk reads as one line. A step is one call and what it answered:
//   "2"  GetNextOption: true with index 2     "-"  GetNextOption: false with index -1
//   "=x" GetOptionArgument: true with "x"     "=!" GetOptionArgument: false
//   ">x" GetNextArg: "x"                      ">!" GetNextArg: null
//   "s+" Shift: true                          "s-" Shift: false
std::string play(DUNXArgs& args, Words& options, const std::string& script) {
    Words steps(script);
    std::string played;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const std::string& step = steps[i];
        char untouched[] = "!";
        char* argument = untouched;
        std::string answer;
        if (step[0] == '=') {
            answer = args.GetOptionArgument(&argument) ? "=" : "=!";
            answer += argument == untouched ? "" : argument;
        } else if (step[0] == '>') {
            const char* next = args.GetNextArg();
            answer = std::string(">") + (next ? next : "!");
        } else if (step[0] == 's') {
            answer = args.Shift() ? "s+" : "s-";
        } else {
            int index = 99; // must be overwritten, also with a false answer
            const bool found = args.GetNextOption(options.count(), options.data(), &index);
            answer = found         ? std::to_string(index)
                     : index == -1 ? "-"
                                   : "false/" + std::to_string(index);
        }
        played += (i ? " " : "") + answer;
    }
    return played;
}

struct Walk {
    const char* line;
    const char* options;
    const char* script;
};

void playAll(std::initializer_list<Walk> walks) {
    for (const Walk& walk : walks) {
        SCOPED_TRACE(std::string(walk.line) + " with options: " + walk.options);
        Words argv(walk.line), options(walk.options);
        DUNXArgs args(argv.count(), argv.data());
        EXPECT_EQ(play(args, options, walk.script), walk.script);
    }
}

} // namespace

TEST(DUNXArgs, NameMatchesByPrefixOfTheArgument) {
    playAll({{"prog -ver", "verbose version", "0 -"},
             {"prog -vers", "verbose version", "1 -"},
             {"prog -v", "verbose v", "0 -"}, // the first option agreeing wins, not an exact one
             {"prog -verbosex", "verbose", "- -"},
             {"prog -o", "v o:", "1 -"},
             {"prog -", "v o", "0 -"},
             {"prog -vx", "v x vxz", "2 -"}}); // a whole-name match opens no cluster
}

TEST(DUNXArgs, ClusterYieldsEachLetterInTurn) {
    playAll({{"prog -vo", "v o", "0 1 -"},
             {"prog -vxo", "v o", "0 - 1 -"}, // an unknown letter leaves the cluster open
             {"prog -ox", "o: x", "0 1 -"},
             {"prog -vo file -o", "v o", "0 1 1 -"},
             {"prog -vq", "vx", "-"}}); // only one-letter names make a cluster
}

TEST(DUNXArgs, SkipsPlainArgumentsUnknownOptionsAndTheProgramName) {
    playAll({{"prog file -v", "v", "0 -"},
             {"prog -x a -v", "v", "0 -"},
             {"prog a b", "v", "- -"},
             {"-v", "v", "-"},
             {"prog -v", "", "-"}});
}

TEST(DUNXArgs, OptionArgumentIsTheFollowingPlainArgument) {
    playAll({{"prog -v -o out file", "v o:", "0 1 =out -"},
             {"prog -vo out", "v o:", "0 1 =out -"},
             {"prog -o -v", "v o:", "1 =! 0 =! >!"}, // "-v" is not taken, nor the end of the line
             {"prog out", "v", "=out >!"},
             {"prog -v a -x b", "v", "0 >a =! s+ =b"}});
}

TEST(DUNXArgs, GetNextArgAndShiftStopAtTheEnd) {
    playAll({{"prog a b", "", ">a >b >! >!"},
             {"prog a b", "", "s+ >b s- s- >! =!"},
             {"prog -v a", "v", "0 >a >!"}});
}

TEST(DUNXArgs, EmptyLineAnswersAsAtItsEnd) {
    Words programOnly("prog"), none(""), options("v o:");
    DUNXArgs lines[] = {{1, programOnly.data()}, {0, none.data()}, {0, nullptr}};
    for (DUNXArgs& args : lines) {
        SCOPED_TRACE(&args - lines); // program name only, argc 0, argv null
        EXPECT_EQ(play(args, options, "- =! >! s- -"), "- =! >! s- -");
    }
}

TEST(DUNXArgs, ArgcEndsTheLineWhateverFollowsInArgv) {
    Words argv("prog -v a b -o"), options("v o:");
    DUNXArgs args(3, argv.data()); // "b -o" lie beyond the line: no argument, no option
    EXPECT_EQ(play(args, options, "0 >a =! >! s- -"), "0 >a =! >! s- -");
}

TEST(DUNXArgs, CopyGoesOnFromTheSamePlaceIndependently) {
    Words argv("prog -vo -o"), options("v o");
    DUNXArgs args(argv.count(), argv.data());
    ASSERT_EQ(play(args, options, "0"), "0");
    DUNXArgs copy(args);
    DUNXArgs assigned(0, nullptr);
    assigned = args;
    for (DUNXArgs* walker : {&args, &copy, &assigned})
        EXPECT_EQ(play(*walker, options, "1 1 -"), "1 1 -"); // rest of the cluster, then "-o"
}

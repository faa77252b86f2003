#include "CommandLine.h"

#include <dunx/DUNXArgs.h>

#include <cstring>

#ifndef DUNX_VERSION
#define DUNX_VERSION "unknown"
#endif

namespace dunx::driver {
namespace {

enum class Flag {
    Help,
    Version,
    Config,
    Option,
    Unit,
    Report,
    LogDir,
    Translator,
    Quiet,
    Verbose,
    NoProgress
};

// The names handed to DUNXArgs: a trailing ':' takes a value, a leading '-'
// makes the "--name" form. DUNXArgs lets an unambiguous abbreviation select the
// first name it starts ("--rep" is "--report").
struct OptionRow {
    const char* name;
    Flag flag;
};
constexpr OptionRow kOptionRows[] = {
    {"-help", Flag::Help},
    {"h", Flag::Help},
    {"-version", Flag::Version},
    {"-config:", Flag::Config},
    {"c:", Flag::Config},
    {"-option:", Flag::Option},
    {"O:", Flag::Option},
    {"-unit:", Flag::Unit},
    {"u:", Flag::Unit},
    {"-report:", Flag::Report},
    {"-log-dir:", Flag::LogDir},
    {"-translator:", Flag::Translator},
    {"-quiet", Flag::Quiet},
    {"q", Flag::Quiet},
    {"-verbose", Flag::Verbose},
    {"v", Flag::Verbose},
    {"-no-progress", Flag::NoProgress},
};
constexpr int kOptionCount = static_cast<int>(sizeof(kOptionRows) / sizeof(kOptionRows[0]));

bool takesValue(int index) {
    const char* name = kOptionRows[index].name;
    return name[std::strlen(name) - 1] == ':';
}

// "--unit" or "-u" as the user should read it in a message.
std::string displayName(int index) {
    std::string name = kOptionRows[index].name;
    if (name.back() == ':')
        name.pop_back();
    return "-" + name;
}

class Parser {
public:
    Parser(int argc, char** argv, CommandLine& line) : m_Argc(argc), m_Argv(argv), m_Line(line) {
        for (int i = 0; i < kOptionCount; ++i)
            m_Names[i] = const_cast<char*>(kOptionRows[i].name);
    }

    std::string run() {
        bool optionsEnded = false;
        for (m_Index = 1; m_Index < m_Argc; ++m_Index) {
            char* argument = m_Argv[m_Index];
            if (!optionsEnded && std::strcmp(argument, "--") == 0) {
                optionsEnded = true;
            } else if (!optionsEnded && argument[0] == '-' && argument[1] != '\0') {
                std::string error = option(argument);
                if (!error.empty())
                    return error;
            } else if (m_Line.command == Command::None && m_Line.operands.empty()) {
                std::string error = command(argument);
                if (!error.empty())
                    return error;
            } else {
                m_Line.operands.push_back(argument);
            }
        }
        return {};
    }

private:
    std::string command(const char* word) {
        if (std::strcmp(word, "translate") == 0)
            m_Line.command = Command::Translate;
        else if (std::strcmp(word, "check-config") == 0)
            m_Line.command = Command::CheckConfig;
        else if (std::strcmp(word, "help") == 0)
            m_Line.command = Command::Help;
        else if (std::strcmp(word, "version") == 0)
            m_Line.command = Command::Version;
        else
            return "unknown command '" + std::string(word) +
                   "' (commands: translate, check-config, help, version)";
        return {};
    }

    // One argument that begins with '-': matched by DUNXArgs alone, so that
    // the next argument, which may be an option too, cannot be taken for it.
    std::string option(char* argument) {
        // "--unit=cm": the name is matched alone, the value follows the '='.
        const char* equal = std::strchr(argument, '=');
        if (argument[1] == '-' && equal) {
            std::string name(argument, static_cast<std::size_t>(equal - argument));
            char* alone[] = {m_Argv[0], name.data(), nullptr};
            DUNXArgs args(2, alone);
            int index = -1;
            if (!args.GetNextOption(kOptionCount, m_Names, &index) ||
                std::strncmp(name.c_str() + 1, kOptionRows[index].name, name.size() - 1) != 0)
                return "unknown option '" + name + "' (see dunx --help)";
            if (!takesValue(index))
                return "option " + displayName(index) + " takes no value";
            return apply(index, argument, equal + 1);
        }
        char* alone[] = {m_Argv[0], argument, nullptr};
        DUNXArgs args(2, alone);
        int index = -1;
        if (!args.GetNextOption(kOptionCount, m_Names, &index))
            return "unknown option '" + std::string(argument) + "' (see dunx --help)";
        const char* text = argument + 1;
        if (std::strncmp(text, kOptionRows[index].name, std::strlen(text)) == 0)
            return apply(index, argument, nullptr);

        // Matched by its first letter: a cluster of one-letter options ("-qv"),
        // where a letter that takes a value takes the rest ("-Oname=value").
        for (const char* letter = text;;) {
            if (takesValue(index))
                return apply(index, argument, letter[1] != '\0' ? letter + 1 : nullptr);
            std::string error = apply(index, argument, nullptr);
            if (!error.empty() || *++letter == '\0')
                return error;
            if (!args.GetNextOption(kOptionCount, m_Names, &index))
                return "unknown option '-" + std::string(1, *letter) + "' in '" + argument +
                       "' (see dunx --help)";
        }
    }

    // `inlineValue` is the value glued to the option ("-Ox=1", "--unit=cm"), else null.
    std::string apply(int index, const char* argument, const char* inlineValue) {
        std::string value;
        if (takesValue(index)) {
            if (inlineValue) {
                value = inlineValue;
            } else {
                // The value is the next argument unless that is an option.
                char* withNext[] = {m_Argv[0], const_cast<char*>(argument),
                                    m_Index + 1 < m_Argc ? m_Argv[m_Index + 1] : nullptr, nullptr};
                DUNXArgs args(withNext[2] ? 3 : 2, withNext);
                args.Shift();
                char* next = nullptr;
                if (!args.GetOptionArgument(&next) || !next)
                    return "option " + displayName(index) + " needs a value";
                value = next;
                ++m_Index;
            }
        }
        switch (kOptionRows[index].flag) {
        case Flag::Help:
            m_Line.command = Command::Help;
            break;
        case Flag::Version:
            m_Line.command = Command::Version;
            break;
        case Flag::Config:
            m_Line.configFile = value;
            break;
        case Flag::Option:
            m_Line.optionAssignments.push_back(value);
            break;
        case Flag::Unit:
            m_Line.unit = value;
            break;
        case Flag::Report:
            m_Line.reportFile = value;
            break;
        case Flag::LogDir:
            m_Line.logDir = value;
            break;
        case Flag::Translator:
            m_Line.translator = value;
            break;
        case Flag::Quiet:
            m_Line.quiet = true;
            m_Line.consoleLevel = DUNXLevelError;
            break;
        case Flag::Verbose:
            m_Line.quiet = false;
            m_Line.consoleLevel = DUNXLevelVerbose;
            break;
        case Flag::NoProgress:
            m_Line.progress = false;
            break;
        }
        return {};
    }

    int m_Argc;
    char** m_Argv;
    CommandLine& m_Line;
    int m_Index = 1;
    char* m_Names[kOptionCount] = {};
};

} // namespace

std::string ParseCommandLine(int argc, char** argv, CommandLine& line) {
    if (argc < 1 || !argv)
        return {};
    return Parser(argc, argv, line).run();
}

void PrintVersion(std::FILE* out) {
    std::fprintf(out, "dunx %s (DUNXBase %s)\n", DUNX_VERSION, DUNX_VERSION);
}

void PrintHelp(std::FILE* out) {
    std::fputs(
        "Usage: dunx COMMAND [OPTIONS] ARGUMENTS\n"
        "\n"
        "Translates CAD data with a translator module, the way a host application\n"
        "drives one: stage events on the console, a log file per direction, a timing\n"
        "summary when DUNXTaskTiming=1, and the exit code of the translation's result.\n"
        "\n"
        "Commands:\n"
        "  translate INPUT OUTPUT.obj  translate an STL part (binary or ASCII) or an\n"
        "                              assembly file into a Wavefront OBJ file\n"
        "  check-config FILE           list the syntax errors of a configuration file and\n"
        "                              every option the translator would see, marking\n"
        "                              the ones an environment variable changes\n"
        "  help, --help, -h            this text\n"
        "  version, --version          the version\n"
        "\n"
        "Options:\n"
        "  -c, --config FILE           read options from the key=value lines of FILE\n"
        "  -O, --option NAME=VALUE     set one option (repeatable; wins over -c)\n"
        "  -u, --unit UNIT             length unit of the written file (default mm):\n"
        "                              nm, micr, mm, cm, deci, m, km, in, ft, mile,\n"
        "                              milliinch, microinch (or the full names)\n"
        "      --report FILE           also write the summary as JSON to FILE\n"
        "      --log-dir DIR           folder of travex_read.log and travex_write.log\n"
        "                              (default: the current folder; created if needed)\n"
        "      --translator NAME|PATH  translator module (default dunx_stl2obj); a NAME is\n"
        "                              looked for among dunx's installed modules, then\n"
        "                              beside the dunx program\n"
        "  -q, --quiet                 print errors only\n"
        "  -v, --verbose               print verbose traces too\n"
        "      --no-progress           no progress bar (it is drawn only on a terminal)\n"
        "  A value follows its option as the next argument, or after '=' (--unit=cm).\n"
        "\n"
        "Environment:\n"
        "  DUNX<option>                overrides that option (DUNXWriteLengthUnit=inch)\n"
        "  DUNXConsoleTracesLevel      console threshold: ALL DEBUG VERBOSE INFO ERROR NONE\n"
        "  DUNXLogLevel                threshold of the log files (default INFO)\n"
        "  DUNXTaskTiming=1            time every stage and print a summary at the end\n"
        "\n"
        "Ctrl-C stops a translation cleanly: the log files are completed and a partial\n"
        "output file is removed. A second Ctrl-C stops dunx at once.\n"
        "\n"
        "Exit codes: 0 success; 1 failure; 3 interrupted; 7 unexpected fault;\n"
        "11 invalid argument (unknown option, command or translator, malformed -O);\n"
        "13 input not found; 14 a file could not be opened; 15 the output could not be\n"
        "written; 19 unknown output unit; 21 invalid input or configuration file.\n"
        "\n"
        "Examples:\n"
        "  dunx translate examples/assembly/trolley.cfg trolley.obj --unit m --report r.json\n"
        "  dunx translate part.stl part.obj -O WriteLengthUnit=inch --log-dir logs\n"
        "  dunx check-config my.cfg\n",
        out);
}

} // namespace dunx::driver

// The command line of dunx: its subcommands, options and help text.
#pragma once

#include <dunx/DUNXEvent.h>

#include <cstdio>
#include <string>
#include <vector>

namespace dunx::driver {

/// What the user asked dunx to do.
enum class Command { None, Help, Version, Translate, CheckConfig };

/// The parsed command line.
struct CommandLine {
    Command command = Command::None;
    std::vector<std::string> operands;           ///< the plain arguments after the command word
    std::string configFile;                      ///< -c FILE
    std::vector<std::string> optionAssignments;  ///< -O name=value, in order
    std::string unit;                            ///< --unit UNIT ("" when not given)
    std::string reportFile;                      ///< --report FILE
    std::string logDir;                          ///< --log-dir DIR ("" is the current folder)
    std::string translator;                      ///< --translator NAME|PATH ("" is the default)
    DUNXEventLevel consoleLevel = DUNXLevelInfo; ///< -q ERROR, -v VERBOSE
    bool quiet = false;                          ///< -q: no summary either
    bool progress = true;                        ///< --no-progress turns the bar off
};

/// Reads `argv` into `line`. Returns "" on success, else a one-line reason
/// ("unknown option '--frobnicate'", "option --unit needs a value", ...).
std::string ParseCommandLine(int argc, char** argv, CommandLine& line);

/// The text of `dunx --help`.
void PrintHelp(std::FILE* out);

/// The one line of `dunx --version`.
void PrintVersion(std::FILE* out);

} // namespace dunx::driver

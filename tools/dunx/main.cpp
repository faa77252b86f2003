// dunx: the command-line driver of the DUNX translators.
#include "CommandLine.h"
#include "Host.h"

#include <dunx/DUNIResult.h>

#include <clocale>
#include <cstdio>

int main(int argc, char** argv) {
    // Text conversion of file names follows the user's locale; numbers keep the
    // C locale, so that written files read the same everywhere.
    std::setlocale(LC_CTYPE, "");

    using namespace dunx::driver;
    CommandLine line;
    const std::string error = ParseCommandLine(argc, argv, line);
    if (!error.empty()) {
        PrintError(error);
        return DUNIResult(DUNI_E_INVALID_ARGUMENT).GetReturnCode();
    }
    switch (line.command) {
    case Command::Help:
        PrintHelp(stdout);
        return 0;
    case Command::Version:
        PrintVersion(stdout);
        return 0;
    case Command::Translate:
        return RunTranslate(line);
    case Command::CheckConfig:
        return RunCheckConfig(line);
    case Command::None:
        break;
    }
    std::fputs("usage: dunx translate INPUT OUTPUT.obj [OPTIONS] | dunx check-config FILE | "
               "dunx --help\n",
               stderr);
    PrintError("no command given");
    return DUNIResult(DUNI_E_INVALID_ARGUMENT).GetReturnCode();
}

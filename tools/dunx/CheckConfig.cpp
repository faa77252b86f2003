#include "Host.h"
#include "Settings.h"

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXOption.h>
#include <dunx/DUNXOptions.h>

#include <cstdio>

namespace dunx::driver {

int RunCheckConfig(const CommandLine& line) {
    if (line.operands.size() != 1) {
        PrintError(line.operands.empty()
                       ? "check-config needs a configuration FILE"
                       : "check-config takes one FILE; unexpected '" + line.operands[1] + "'");
        return DUNIResult(DUNI_E_INVALID_ARGUMENT).GetReturnCode();
    }
    CommandLine withFile = line;
    withFile.configFile = line.operands[0];
    const std::string& path = withFile.configFile;

    DUNXOptions options;
    ConfigFileFindings findings;
    std::string error;
    DUNIResult result = BuildOptions(withFile, options, findings, error);
    if (result.IsFailure() && findings.syntaxErrors.empty()) {
        PrintError(error);
        return result.GetReturnCode();
    }

    if (findings.syntaxErrors.empty()) {
        std::printf("%s: no syntax errors\n", path.c_str());
    } else {
        std::printf("%s: %zu syntax error%s\n", path.c_str(), findings.syntaxErrors.size(),
                    findings.syntaxErrors.size() == 1 ? "" : "s");
        for (const std::string& message : findings.syntaxErrors)
            std::printf("  %s\n", message.c_str());
    }
    if (!findings.ignoredKeys.empty()) {
        std::printf("Keys in named sections, which the translator does not read:\n");
        for (const std::string& key : findings.ignoredKeys)
            std::printf("  %s\n", key.c_str());
    }

    std::printf("Options the translator sees (%d):\n", options.Size());
    int overridden = 0;
    options.InitEnumeration();
    DUNXOption* option = nullptr;
    while (options.GetNext(option).IsSuccess() && option) {
        const std::string name = option->GetNameText().ToUtf8();
        const std::string stored = OptionText(*option, false);
        DUNXString variableText;
        const std::string variable = "DUNX" + name;
        if (DUNXEnvironment::GetVariable(DUNXString(variable.c_str()), variableText).IsFailure()) {
            std::printf("  %-28s = %s\n", name.c_str(), stored.c_str());
            continue;
        }
        const std::string effective = OptionText(*option, true);
        if (effective != stored) {
            ++overridden;
            std::printf("  %-28s = %-12s <- environment %s (was %s)\n", name.c_str(),
                        effective.c_str(), variable.c_str(), stored.c_str());
        } else {
            std::printf("  %-28s = %-12s (environment %s=%s leaves it so)\n", name.c_str(),
                        stored.c_str(), variable.c_str(), variableText.ToUtf8().c_str());
        }
    }
    if (overridden > 0)
        std::printf("%d option%s changed by the environment\n", overridden,
                    overridden == 1 ? "" : "s");

    DUNIUnitValue unit = DUNIUnitMillimeter;
    std::string unitName, unitError;
    const DUNIResult unitResult = ResolveOutputUnit(options, unit, unitName, unitError);
    if (result.IsSuccess() && unitResult.IsFailure())
        result = unitResult;
    std::fflush(stdout);
    if (!findings.syntaxErrors.empty())
        PrintError(path + ": " + std::to_string(findings.syntaxErrors.size()) + " syntax error" +
                   (findings.syntaxErrors.size() == 1 ? "" : "s"));
    else if (!error.empty())
        PrintError(error);
    if (unitResult.IsFailure())
        PrintError(unitError);
    return result.GetReturnCode();
}

} // namespace dunx::driver

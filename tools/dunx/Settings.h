// What a dunx run is configured with: the option set, the output unit and the
// translator module, each with a one-line reason when it cannot be had.
#pragma once

#include "CommandLine.h"

#include <dunx/DUNIResult.h>
#include <dunx/DUNIUnit.h>
#include <dunx/DUNXOptions.h>

#include <string>
#include <vector>

namespace dunx::driver {

/// The option that carries the output unit.
inline constexpr const char* kUnitOption = "WriteLengthUnit";
/// The translator used when --translator is not given.
inline constexpr const char* kDefaultTranslator = "dunx_stl2obj";

/// A configuration file as read: the syntax messages (with their line numbers)
/// and the keys of named sections, which the translator never sees.
struct ConfigFileFindings {
    std::vector<std::string> syntaxErrors;
    std::vector<std::string> ignoredKeys; ///< "[section] key"
};

/// Builds the options the translator sees, later sources replacing earlier
/// ones: WriteLengthUnit=millimeter, the keys of the unnamed section of
/// `line.configFile` (typed as DUNXOptions types them), each -O name=value,
/// then --unit. A configuration file that cannot be opened or has syntax
/// errors, or a malformed -O, fails with a one-line `error`; the keys of the
/// valid lines are added all the same, so that check-config can show them.
DUNIResult BuildOptions(const CommandLine& line, DUNXOptions& options, ConfigFileFindings& findings,
                        std::string& error);

/// The value of `option` as text, with the "DUNX" + name environment
/// override applied when `useEnvironment` ("true", "2.5", "mm").
std::string OptionText(const DUNXOption& option, bool useEnvironment);

/// Reads WriteLengthUnit (environment override applied) as a length unit.
/// `DUNI_E_BAD_WRITE_UNIT` with a one-line `error` for a text that names no
/// length unit; `name` receives the unit's lower-case name ("millimeter").
DUNIResult ResolveOutputUnit(const DUNXOptions& options, DUNIUnitValue& unit, std::string& name,
                             std::string& error);

/// The folder of the running program ("" when the system cannot tell).
std::string ProgramFolder();

/// The folders where translator modules are looked for by name, in order: the
/// module folder of an installed dunx (DUNX_MODULE_FOLDER, relative to the
/// program's folder: "../lib/x86_64-linux-gnu/dunx" on Debian), resolved, when
/// it exists; then the program's own folder, where the build tree and Windows
/// keep them. Empty when the program's folder is unknown.
std::vector<std::string> ModuleFolders();

/// Finds the translator module: a path (containing '/', or '\\' on Windows) as
/// it is, or a name looked for in each of ModuleFolders() as lib<name>.so,
/// <name>.so or <name> (.dll instead of .so on Windows).
/// `DUNI_E_INVALID_ARGUMENT` with a one-line `error` naming what was tried
/// and the modules that are there.
DUNIResult LocateTranslator(const std::string& request, std::string& path, std::string& error);

} // namespace dunx::driver

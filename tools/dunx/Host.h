// The commands of dunx: the translation driven as a host drives a translator,
// and the configuration check.
#pragma once

#include "CommandLine.h"

namespace dunx::driver {

/// `dunx translate INPUT OUTPUT`: loads the translator module and fires the
/// stage events from product start to product end around its read and write.
/// Returns the process exit code (`DUNIResult::GetReturnCode` of the result).
int RunTranslate(const CommandLine& line);

/// `dunx check-config FILE`: the file's syntax errors with their line numbers,
/// then every option the translator would see, marking environment overrides.
/// Exit code 0 when the file is clean, else non-zero.
int RunCheckConfig(const CommandLine& line);

/// Prints "dunx: error: <message>" on standard error.
void PrintError(const std::string& message);

} // namespace dunx::driver

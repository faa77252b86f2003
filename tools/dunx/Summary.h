// The outcome of a translation: the console summary and the JSON report.
#pragma once

#include "translator/DunxTranslator.h"

#include <dunx/DUNIResult.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace dunx::driver {

/// Everything known at the end of a translation.
struct Outcome {
    std::string input;
    std::string output;
    std::string unit;       ///< the output unit's name ("millimeter")
    std::string translator; ///< the module's path ("" when none was found)
    std::string readLog;    ///< "" when it was not written
    std::string writeLog;   ///< "" when it was not written
    bool outputWritten = false;
    DUNIResult result = DUNI_S_SUCCESS;
    double seconds = 0.0; ///< the whole product
    std::vector<std::pair<std::string, double>> stages;
    translator::Report report;
};

/// Prints the summary lines for a person (nothing is printed for a failure but
/// the counts gathered before it; the error line is the caller's).
void PrintSummary(std::FILE* out, const Outcome& outcome, const std::string& reportFile);

/// Writes the outcome as one JSON object to `path`. False with `error` one
/// line when the file cannot be written.
bool WriteJsonReport(const std::string& path, const Outcome& outcome, std::string& error);

/// `path` made absolute against the current folder (as it is when it already is).
std::string AbsolutePath(const std::string& path);

} // namespace dunx::driver

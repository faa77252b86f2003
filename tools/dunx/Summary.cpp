#include "Summary.h"

#include "System.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace dunx::driver {
namespace {

// The shortest decimal text that reads back to the same value: to the same
// float when the value is one (coordinates are), else to the same double.
// Whole numbers are written without exponent ("300", not "3e+02").
std::string number(double value) {
    if (!std::isfinite(value))
        return "null";
    char text[40];
    if (value == std::floor(value) && std::fabs(value) < 1e15) {
        std::snprintf(text, sizeof text, "%.0f", value);
        return text;
    }
    const bool isFloat = static_cast<double>(static_cast<float>(value)) == value;
    for (int precision = 1; precision <= 17; ++precision) {
        std::snprintf(text, sizeof text, "%.*g", precision, value);
        const double back = std::strtod(text, nullptr);
        if (isFloat ? static_cast<float>(back) == static_cast<float>(value) : back == value)
            break;
    }
    return text;
}

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (c < 0x20) {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04x", c);
                out += escape;
            } else {
                out += static_cast<char>(c);
            }
        }
    }
    return out + "\"";
}

std::string optionalText(const std::string& text) {
    return text.empty() ? "null" : quoted(text);
}

std::string counts(const std::map<std::string, int>& byKind) {
    std::string out = "{";
    for (const auto& [kind, count] : byKind)
        out += (out.size() > 1 ? ", " : "") + quoted(kind) + ": " + std::to_string(count);
    return out + "}";
}

std::string point(const double (&p)[3]) {
    return "[" + number(p[0]) + ", " + number(p[1]) + ", " + number(p[2]) + "]";
}

std::string kinds(const std::map<std::string, int>& byKind) {
    std::string out;
    for (const auto& [kind, count] : byKind)
        out += (out.empty() ? "" : ", ") + std::to_string(count) + " " + kind;
    return out;
}

} // namespace

std::string AbsolutePath(const std::string& path) {
    if (path.empty() || system::IsAbsolutePath(path))
        return path;
    char folder[4096];
    if (!::getcwd(folder, sizeof folder))
        return path;
    std::string base = folder;
    std::string rest = path;
    while (rest.compare(0, 2, "./") == 0)
        rest.erase(0, 2);
    return base == "/" ? "/" + rest : base + "/" + rest;
}

void PrintSummary(std::FILE* out, const Outcome& outcome, const std::string& reportFile) {
    const translator::Report& report = outcome.report;
    std::fprintf(out, "\n");
    std::fprintf(out, "%-20s %s\n", "input", outcome.input.c_str());
    if (outcome.outputWritten)
        std::fprintf(out, "%-20s %s (lengths in %s)\n", "output",
                     AbsolutePath(outcome.output).c_str(), outcome.unit.c_str());
    else
        std::fprintf(out, "%-20s none written\n", "output");
    std::fprintf(out, "%-20s %d\n", "components", report.components);
    std::fprintf(out, "%-20s %lld read, %lld written\n", "triangles", report.trianglesRead,
                 report.trianglesWritten);
    std::fprintf(out, "%-20s %lld (after welding)\n", "vertices", report.vertices);
    if (report.hasBox)
        std::fprintf(out, "%-20s (%s, %s, %s) to (%s, %s, %s) %s\n", "bounding box",
                     number(report.boxMin[0]).c_str(), number(report.boxMin[1]).c_str(),
                     number(report.boxMin[2]).c_str(), number(report.boxMax[0]).c_str(),
                     number(report.boxMax[1]).c_str(), number(report.boxMax[2]).c_str(),
                     outcome.unit.c_str());
    if (!report.warnings.empty())
        std::fprintf(out, "%-20s %s\n", "warnings", kinds(report.warnings).c_str());
    if (!report.errors.empty())
        std::fprintf(out, "%-20s %s\n", "errors", kinds(report.errors).c_str());
    std::string times;
    for (const auto& [stage, seconds] : outcome.stages)
        if (stage == "Read File" || stage == "Translation" || stage == "File Write") {
            char item[96];
            std::snprintf(item, sizeof item, "%s%s %.3f s", times.empty() ? "" : ", ",
                          stage.c_str(), seconds);
            times += item;
        }
    std::fprintf(out, "%-20s %.3f s%s%s%s\n", "time", outcome.seconds, times.empty() ? "" : " (",
                 times.c_str(), times.empty() ? "" : ")");
    if (!outcome.readLog.empty() || !outcome.writeLog.empty()) {
        std::string logs = AbsolutePath(outcome.readLog);
        if (!outcome.writeLog.empty())
            logs += (logs.empty() ? "" : ", ") + AbsolutePath(outcome.writeLog);
        std::fprintf(out, "%-20s %s\n", "log files", logs.c_str());
    }
    if (!reportFile.empty())
        std::fprintf(out, "%-20s %s\n", "report", AbsolutePath(reportFile).c_str());
    DUNIResult result = outcome.result;
    std::fprintf(out, "%-20s %s (exit code %d)\n", "result", result.GetMessage(),
                 result.GetReturnCode());
}

bool WriteJsonReport(const std::string& path, const Outcome& outcome, std::string& error) {
    const translator::Report& report = outcome.report;
    DUNIResult result = outcome.result;
    std::string json = "{\n";
    json += "  \"input\": " + quoted(outcome.input) + ",\n";
    json += "  \"output\": " + quoted(outcome.output) + ",\n";
    json += "  \"outputWritten\": " + std::string(outcome.outputWritten ? "true" : "false") + ",\n";
    json += "  \"unit\": " + optionalText(outcome.unit) + ",\n";
    json += "  \"translator\": " + optionalText(outcome.translator) + ",\n";
    json += "  \"components\": " + std::to_string(report.components) + ",\n";
    json += "  \"trianglesRead\": " + std::to_string(report.trianglesRead) + ",\n";
    json += "  \"trianglesWritten\": " + std::to_string(report.trianglesWritten) + ",\n";
    json += "  \"vertices\": " + std::to_string(report.vertices) + ",\n";
    if (report.hasBox)
        json += "  \"boundingBox\": {\"min\": " + point(report.boxMin) +
                ", \"max\": " + point(report.boxMax) + "},\n";
    else
        json += "  \"boundingBox\": null,\n";
    json += "  \"warnings\": " + counts(report.warnings) + ",\n";
    json += "  \"errors\": " + counts(report.errors) + ",\n";
    json += "  \"error\": " + optionalText(report.error) + ",\n";
    json += "  \"stageSeconds\": {";
    for (std::size_t i = 0; i < outcome.stages.size(); ++i)
        json += (i ? ", " : "") + quoted(outcome.stages[i].first) + ": " +
                number(outcome.stages[i].second);
    json += "},\n";
    json += "  \"seconds\": " + number(outcome.seconds) + ",\n";
    json += "  \"logs\": {\"read\": " + optionalText(AbsolutePath(outcome.readLog)) +
            ", \"write\": " + optionalText(AbsolutePath(outcome.writeLog)) + "},\n";
    json += "  \"result\": {\"code\": " + std::to_string(static_cast<long>(result)) +
            ", \"message\": " + quoted(result.GetMessage()) + "},\n";
    json += "  \"exitCode\": " + std::to_string(result.GetReturnCode()) + "\n";
    json += "}\n";

    std::FILE* file = std::fopen(path.c_str(), "w");
    if (!file) {
        error = path + ": cannot write the report: " + std::strerror(errno);
        return false;
    }
    const bool written = std::fwrite(json.data(), 1, json.size(), file) == json.size();
    if (std::fclose(file) != 0 || !written) {
        error = path + ": cannot write the report: " + std::strerror(errno);
        std::remove(path.c_str());
        return false;
    }
    return true;
}

} // namespace dunx::driver

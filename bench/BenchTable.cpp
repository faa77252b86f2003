#include "BenchTable.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace bench {

namespace {

// One group of the table per piece of work; the targets are the bar the
// library is held to.
std::vector<std::pair<std::string, Target>> makeGroups() {
    using T = Target;
    return {
        {"event without text to 3 listeners", {T::AtMostRatio, 1.5}},
        {"Printf(\"value %d\") to a logger", {T::NoSlowerThanPeer, 0}},
        {"CfgFile::Load of 100k lines", {T::NoSlowerThanPeer, 0}},
        {"string equals 64", {T::AtMostRatio, 1.5}},
        {"string equals 4k", {T::AtMostRatio, 1.5}},
        {"string hashCode 64", {T::AtMostRatio, 1.2}},
        {"string hashCode 4k", {T::AtMostRatio, 1.2}},
        {"string indexOf 64", {T::AtMostRatio, 3.0}},
        {"string indexOf 4k", {T::AtMostRatio, 3.0}},
        {"narrow to string, ASCII", {T::AtMostRatio, 3.0}},
        {"narrow to string, mixed", {T::AtMostRatio, 2.0}},
        {"GetOption among 1000 names", {T::NoSlowerThanPeer, 0}},
        {"archive: 1M doubles, 1M counts", {T::FasterThanPeer, 0}},
        {"Morph3D on 1M points", {T::AtMostRatio, 1.15}},
        {"Morph3D::Apply on 1M packed points", {T::AtMostRatio, 1.15}},
        {"assembly transform on 1M points", {T::AtMostRatio, 1.15}},
        {"timing: start/end task pair", {T::UnderNanoseconds, 1000}},
    };
}

std::string describe(const Target& target) {
    char text[64];
    switch (target.kind) {
    case Target::AtMostRatio:
        std::snprintf(text, sizeof text, "<= %.2fx", target.value);
        break;
    case Target::NoSlowerThanPeer:
        std::snprintf(text, sizeof text, "<= peer");
        break;
    case Target::FasterThanPeer:
        std::snprintf(text, sizeof text, "< peer");
        break;
    case Target::UnderNanoseconds:
        std::snprintf(text, sizeof text, "< %.0f ns", target.value);
        break;
    }
    return text;
}

} // namespace

const std::vector<std::pair<std::string, Target>>& Groups() {
    static const std::vector<std::pair<std::string, Target>> groups = makeGroups();
    return groups;
}

benchmark::internal::Benchmark* Add(const std::string& group, const char* role, Body body) {
    return benchmark::RegisterBenchmark((group + "/" + role).c_str(), std::move(body))
        ->Unit(benchmark::kNanosecond);
}

benchmark::internal::Benchmark* AddScale(const std::string& series, long size, Body body) {
    return benchmark::RegisterBenchmark(("scale/" + series + "/" + std::to_string(size)).c_str(),
                                        std::move(body))
        ->Unit(benchmark::kNanosecond);
}

// Colours only on a terminal: the output is often kept in a file.
TableReporter::TableReporter()
    : ConsoleReporter(isatty(fileno(stdout)) ? OO_ColorTabular : OO_Tabular) {}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.error_occurred)
            continue;
        const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        if (run.run_type == Run::RT_Aggregate && !median)
            continue;
        Measured& measured = m_Times[run.run_name.function_name];
        if (measured.median && !median)
            continue;
        // CPU time: a single-threaded run that the scheduler preempts is not
        // charged for the time it waited.
        measured.nanoseconds = run.GetAdjustedCPUTime();
        const auto items = run.counters.find("items");
        measured.items = items != run.counters.end() ? items->second.value : 1;
        measured.median = median;
    }
}

void TableReporter::PrintTables() const {
    auto find = [this](const std::string& name) -> const Measured* {
        const auto it = m_Times.find(name);
        return it == m_Times.end() ? nullptr : &it->second;
    };
    std::printf("\nRatios to the limit (median CPU time of the repetitions; lower is better)\n\n");
    std::printf("| %-34s | %10s | %9s | %9s | %-9s | %-4s |\n", "group", "limit ns", "dunx", "peer",
                "target", "met");
    std::printf("|%s|%s|%s|%s|%s|%s|\n", std::string(36, '-').c_str(), std::string(12, '-').c_str(),
                std::string(11, '-').c_str(), std::string(11, '-').c_str(),
                std::string(11, '-').c_str(), std::string(6, '-').c_str());
    for (const auto& [group, target] : Groups()) {
        const Measured* limit = find(group + "/" + kLimit);
        const Measured* library = find(group + "/" + kLibrary);
        const Measured* peer = find(group + "/" + kPeer);
        if (!limit || !library)
            continue; // filtered out of this run
        const double ratio = library->nanoseconds / limit->nanoseconds;
        char peerText[32] = "-";
        if (peer)
            std::snprintf(peerText, sizeof peerText, "%.2fx",
                          peer->nanoseconds / limit->nanoseconds);
        const char* met = "?";
        switch (target.kind) {
        case Target::AtMostRatio:
            met = ratio <= target.value ? "yes" : "no";
            break;
        case Target::NoSlowerThanPeer:
            met = peer ? (library->nanoseconds <= peer->nanoseconds ? "yes" : "no") : "?";
            break;
        case Target::FasterThanPeer:
            met = peer ? (library->nanoseconds < peer->nanoseconds ? "yes" : "no") : "?";
            break;
        case Target::UnderNanoseconds:
            met = library->nanoseconds < target.value ? "yes" : "no";
            break;
        }
        char libraryText[48];
        if (target.kind == Target::UnderNanoseconds)
            std::snprintf(libraryText, sizeof libraryText, "%.0f ns", library->nanoseconds);
        else
            std::snprintf(libraryText, sizeof libraryText, "%.2fx", ratio);
        std::printf("| %-34s | %10.1f | %9s | %9s | %-9s | %-4s |\n", group.c_str(),
                    limit->nanoseconds, libraryText, peerText, describe(target).c_str(), met);
    }

    // Scale: time per item at each size, relative to the smallest size of the series.
    std::map<std::string, std::vector<std::pair<long, const Measured*>>> series;
    for (const auto& [name, measured] : m_Times) {
        if (name.rfind("scale/", 0) != 0)
            continue;
        const std::size_t slash = name.rfind('/');
        series[name.substr(6, slash - 6)].emplace_back(std::stol(name.substr(slash + 1)),
                                                       &measured);
    }
    if (series.empty())
        return;
    std::printf("\nScale: time per item relative to the smallest size (1.00 = linear)\n\n");
    for (auto& [name, points] : series) {
        std::sort(points.begin(), points.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        const double base = points.front().second->nanoseconds / points.front().second->items;
        std::printf("%-28s", name.c_str());
        for (const auto& [size, measured] : points)
            std::printf("  %ld: %.2f", size, measured->nanoseconds / measured->items / base);
        std::printf("   (%.1f ns per item at %ld)\n", base, points.front().first);
    }
}

} // namespace bench

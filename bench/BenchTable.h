// Registration of the benchmark groups and the table that `make bench` prints.
//
// A group is one piece of work measured several ways in the same run: its
// limit (the floor of the work), the library ("dunx") and, where there is
// one, a peer. The table reports each time as a ratio to the group's limit.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace bench {

using Body = std::function<void(benchmark::State&)>;

/// The three ways a group is measured.
constexpr const char* kLimit = "limit";
constexpr const char* kLibrary = "dunx";
constexpr const char* kPeer = "peer";

/// Registers `body` as the `role` of `group`; the benchmark's name is "group/role".
benchmark::internal::Benchmark* Add(const std::string& group, const char* role, Body body);

/// Registers `body` as one size of a scale series: "scale/series/size". Its
/// time per item is compared with that of the smallest size of the series.
benchmark::internal::Benchmark* AddScale(const std::string& series, long size, Body body);

/// How a group's ratio is judged.
struct Target {
    enum Kind { AtMostRatio, NoSlowerThanPeer, FasterThanPeer, UnderNanoseconds };
    Kind kind;
    double value; // the ratio or the nanoseconds, by kind
};

/// The groups of the first table, in the order printed, with their targets.
const std::vector<std::pair<std::string, Target>>& Groups();

/// Collects the median time of every benchmark while printing the usual
/// console lines, then prints the two tables.
class TableReporter : public benchmark::ConsoleReporter {
public:
    TableReporter();
    void ReportRuns(const std::vector<Run>& runs) override;
    void PrintTables() const;

private:
    struct Measured {
        double nanoseconds = 0;
        double items = 0; // items per iteration, for the scale table
        bool median = false;
    };
    std::map<std::string, Measured> m_Times;
};

} // namespace bench

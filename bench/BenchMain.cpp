// The benchmark program: Google Benchmark's usual flags, five repetitions by
// default, and the table of ratios at the end.
#include "BenchTable.h"

#include <cstring>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<char*> args(argv, argv + argc);
    bool repetitionsGiven = false;
    for (int i = 1; i < argc; ++i)
        repetitionsGiven |= std::strncmp(argv[i], "--benchmark_repetitions", 23) == 0;
    std::string repetitions = "--benchmark_repetitions=5";
    std::string aggregatesOnly = "--benchmark_report_aggregates_only=true";
    if (!repetitionsGiven) {
        args.push_back(repetitions.data());
        args.push_back(aggregatesOnly.data());
    }
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data()))
        return 1;
    bench::TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintTables();
    benchmark::Shutdown();
    return 0;
}

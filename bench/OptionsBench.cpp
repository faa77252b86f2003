// DUNXOptions::GetOption of present names against hashing the name and
// std::unordered_map<std::string>.
#include "BenchTable.h"

#include <dunx/DUNXOptions.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace {

// Dotted names of three tokens, as translators use them: "Import3.Mode7.Setting42".
std::vector<std::string> dottedNames(long count) {
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i)
        names.push_back("Import" + std::to_string(i % 7) + ".Mode" + std::to_string(i % 13) +
                        ".Setting" + std::to_string(i));
    return names;
}

void lookUpWithLibrary(benchmark::State& state, const std::vector<std::string>& names) {
    DUNXOptions options;
    std::vector<DUNXString> keys;
    for (const std::string& name : names) {
        options.AddOption(name.c_str(), 1);
        keys.emplace_back(name.c_str());
    }
    options.AddOption("Import0.*.Fallback", 2); // a wildcard entry, as real sets have
    std::size_t i = 0;
    DUNXOption* option = nullptr;
    for (auto _ : state) {
        benchmark::DoNotOptimize(options.GetOption(keys[i], option));
        benchmark::DoNotOptimize(option);
        i = i + 1 == keys.size() ? 0 : i + 1;
    }
}

void registerSet(const std::string& group, long count, bool scale) {
    const std::vector<std::string> names = dottedNames(count);
    if (scale) {
        bench::AddScale(group, count,
                        [names](benchmark::State& state) { lookUpWithLibrary(state, names); });
        return;
    }
    bench::Add(group, bench::kLimit, [names](benchmark::State& state) {
        const std::hash<std::string> hash;
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(hash(names[i]));
            i = i + 1 == names.size() ? 0 : i + 1;
        }
    });
    bench::Add(group, bench::kLibrary,
               [names](benchmark::State& state) { lookUpWithLibrary(state, names); });
    bench::Add(group, bench::kPeer, [names](benchmark::State& state) {
        std::unordered_map<std::string, int> map;
        for (const std::string& name : names)
            map.emplace(name, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(map.find(names[i]));
            i = i + 1 == names.size() ? 0 : i + 1;
        }
    });
}

const bool registered = [] {
    registerSet("GetOption among 1000 names", 1000, false);
    for (long count : {10L, 100L, 1000L, 10000L, 100000L})
        registerSet("GetOption names", count, true);
    return true;
}();

} // namespace

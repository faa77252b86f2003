// DUNXCfgFile::Load of a 100k-line file against a memchr over its bytes and inih.
#include "BenchTable.h"

#include <dunx/DUNXCfgFile.h>

#include <ini.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

// Sections, plain keys, comments, blank lines and comma lists, in a mix a
// translator's settings file might have.
std::string configurationText(long lines) {
    std::string text;
    for (long i = 0; i < lines; ++i) {
        const std::string n = std::to_string(i);
        switch (i % 20) {
        case 0:
            text += "[Section" + n + "]\n";
            break;
        case 1:
            text += "# settings of the part reader, block " + n + "\n";
            break;
        case 2:
            text += "\n";
            break;
        case 3:
            text += "; tolerances in millimetres\n";
            break;
        case 4:
        case 9:
        case 14:
            text += "List" + n + " = 1.5, 2.25, 3.125, left, right, 42\n";
            break;
        default:
            text += "Key" + n + " = value of key " + n + "\n";
            break;
        }
    }
    return text;
}

long countLines(const std::string& text) {
    long lines = 0;
    const char* p = text.data();
    const char* end = p + text.size();
    while (
        (p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p))))) {
        ++lines;
        ++p;
    }
    return lines;
}

int ignoreEntry(void*, const char*, const char*, const char*) {
    return 1;
}

void loadWithLibrary(benchmark::State& state, std::string& text) {
    std::FILE* file = fmemopen(text.data(), text.size(), "r");
    for (auto _ : state) {
        std::rewind(file);
        DUNXCfgFile cfg;
        benchmark::DoNotOptimize(cfg.Load(file));
    }
    std::fclose(file);
}

void registerLoad(const std::string& group, long lines, bool scale) {
    auto text = std::make_shared<std::string>(configurationText(lines));
    auto items = [lines](benchmark::State& state) {
        state.counters["items"] = static_cast<double>(lines);
    };
    if (scale) {
        bench::AddScale(group, lines, [text, items](benchmark::State& state) {
            loadWithLibrary(state, *text);
            items(state);
        });
        return;
    }
    bench::Add(group, bench::kLimit, [text](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(countLines(*text));
    });
    bench::Add(group, bench::kLibrary,
               [text](benchmark::State& state) { loadWithLibrary(state, *text); });
    bench::Add(group, bench::kPeer, [text](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(ini_parse_string(text->c_str(), ignoreEntry, nullptr));
    });
}

const bool registered = [] {
    registerLoad("CfgFile::Load of 100k lines", 100000, false);
    for (long lines : {1000L, 10000L, 100000L, 1000000L})
        registerLoad("CfgFile::Load lines", lines, true);
    return true;
}();

} // namespace

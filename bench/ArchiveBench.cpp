// DUNXArchive reading 1M doubles and 1M counts from memory, against one bulk
// memcpy of the same bytes and cereal's portable binary archive.
#include "BenchTable.h"

#include <dunx/DUNXArchive.h>
#include <dunx/DUNXInputStream.h>

#include <cereal/archives/portable_binary.hpp>

#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace {

// The archive's layout: the doubles, then the counts as 16-bit words, every
// hundredth one too large for a word and written as FF FF and 32 bits.
std::string archiveBytes(long items) {
    std::string bytes;
    for (long i = 0; i < items; ++i) {
        const double value = 0.5 * static_cast<double>(i);
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    for (long i = 0; i < items; ++i) {
        if (i % 100 == 99) {
            const std::uint16_t mark = 0xFFFF;
            const std::uint32_t count = 70000u + static_cast<std::uint32_t>(i);
            bytes.append(reinterpret_cast<const char*>(&mark), 2);
            bytes.append(reinterpret_cast<const char*>(&count), 4);
        } else {
            const std::uint16_t count = static_cast<std::uint16_t>(i % 1000);
            bytes.append(reinterpret_cast<const char*>(&count), 2);
        }
    }
    return bytes;
}

// A read-only stream buffer over bytes in memory, for cereal.
class MemoryBuffer : public std::streambuf {
public:
    MemoryBuffer(const std::string& bytes) {
        char* begin = const_cast<char*>(bytes.data());
        setg(begin, begin, begin + bytes.size());
    }
};

void readWithLibrary(benchmark::State& state, const std::string& bytes, long items) {
    std::vector<double> values(static_cast<std::size_t>(items));
    for (auto _ : state) {
        DUNXMemoryInputStream stream(bytes.data(), static_cast<int>(bytes.size()));
        DUNXArchive archive(&stream);
        archive.Read(values.data(), static_cast<int>(items));
        std::uint32_t sum = 0;
        for (long i = 0; i < items; ++i)
            sum += archive.RestoreCount();
        benchmark::DoNotOptimize(sum);
    }
    state.counters["items"] = static_cast<double>(items);
}

void registerArchive(const std::string& group, long items, bool scale) {
    auto bytes = std::make_shared<std::string>(archiveBytes(items));
    if (scale) {
        bench::AddScale(group, items, [bytes, items](benchmark::State& state) {
            readWithLibrary(state, *bytes, items);
        });
        return;
    }
    bench::Add(group, bench::kLimit, [bytes](benchmark::State& state) {
        std::vector<char> copy(bytes->size());
        for (auto _ : state) {
            std::memcpy(copy.data(), bytes->data(), bytes->size());
            benchmark::ClobberMemory();
        }
    });
    bench::Add(group, bench::kLibrary,
               [bytes, items](benchmark::State& state) { readWithLibrary(state, *bytes, items); });
    // cereal's own layout of the same values: doubles, then 16-bit counts
    // with a 32-bit escape, each value read on its own.
    auto cerealBytes = std::make_shared<std::string>();
    {
        std::ostringstream out;
        cereal::PortableBinaryOutputArchive archive(out);
        for (long i = 0; i < items; ++i)
            archive(0.5 * static_cast<double>(i));
        for (long i = 0; i < items; ++i) {
            if (i % 100 == 99) {
                archive(std::uint16_t{0xFFFF});
                archive(static_cast<std::uint32_t>(70000 + i));
            } else {
                archive(static_cast<std::uint16_t>(i % 1000));
            }
        }
        *cerealBytes = out.str();
    }
    bench::Add(group, bench::kPeer, [cerealBytes, items](benchmark::State& state) {
        std::vector<double> values(static_cast<std::size_t>(items));
        for (auto _ : state) {
            MemoryBuffer buffer(*cerealBytes);
            std::istream in(&buffer);
            cereal::PortableBinaryInputArchive archive(in);
            for (double& value : values)
                archive(value);
            std::uint32_t sum = 0;
            for (long i = 0; i < items; ++i) {
                std::uint16_t word = 0;
                archive(word);
                std::uint32_t count = word;
                if (word == 0xFFFF)
                    archive(count);
                sum += count;
            }
            benchmark::DoNotOptimize(sum);
        }
    });
}

const bool registered = [] {
    registerArchive("archive: 1M doubles, 1M counts", 1000000, false);
    for (long items : {1000L, 100000L, 10000000L})
        registerArchive("archive items", items, true);
    return true;
}();

} // namespace

#include <dunx/DUNXArchive.h>

#include <dunx/DUNXInputStream.h>

#include "support/AllocationCounter.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

// Archive bytes, value by value, spelled out so as to share no assumption about the host with the
// reader. Lengths take their shortest form: from 0xFFFE on (0xFFFE marks UTF-16) the 4-byte one.
std::string le(std::uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> (8 * i));
    return bytes;
}
const auto u16 = [](std::uint64_t value) { return le(value, 2); };
const auto u32 = [](std::uint64_t value) { return le(value, 4); };
const auto length = [](std::size_t n) {
    return n < 0xFF ? le(n, 1) : n < 0xFFFE ? le(0xFF, 1) + u16(n) : le(0xFFFFFF, 3) + u32(n);
};
const auto narrow = [](const std::string& text) { return length(text.size()) + text; };
const auto wide = [](const std::u16string& text) {
    std::string bytes = le(0xFFFEFF, 3) + length(text.size());
    for (char16_t unit : text)
        bytes += u16(unit);
    return bytes;
};
const auto newClass = [](const std::string& name, std::uint16_t schema = 1) {
    return u16(0xFFFF) + u16(schema) + u16(name.size()) + name;
};
const auto bytes = [](std::initializer_list<int> v) { return std::string(v.begin(), v.end()); };

template <class T> std::uint64_t bitsOf(T value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof value);
    return bits;
}

// The units, non-ASCII ones as \uXXXX; "<null>" for the null string, so null and "" stay apart.
std::string textOf(const DUNXString& text) {
    const unsigned short* units = text;
    std::string result = units ? "" : "<null>";
    for (char escaped[8]; units && *units; result += escaped, ++units)
        std::snprintf(escaped, sizeof escaped, *units < 0x80 ? "%c" : "\\u%04X", *units);
    return result;
}

// The code of the archive exception that `read` throws (0 for none), deleted as its catcher must.
int faultOf(const std::function<void()>& read) {
    try {
        return read(), 0;
    } catch (DUNXArchiveException* fault) {
        return std::unique_ptr<DUNXArchiveException>(fault)->GetCode();
    }
}

// An archive over a copy of `bytes`, in a stream that counts its calls and notes its largest ask.
struct MemoryArchive {
    struct Spy : DUNXMemoryInputStream {
        using DUNXMemoryInputStream::DUNXMemoryInputStream;
        int read(char* const buffer, int count) override {
            ++calls, largest = std::max(largest, count);
            return DUNXMemoryInputStream::read(buffer, count);
        }
        int calls = 0, largest = 0;
    };
    explicit MemoryArchive(std::string bytes) : data(std::move(bytes)) {}
    std::string data;
    Spy stream{data.data(), static_cast<int>(data.size())};
    DUNXArchive archive{&stream};
};

const std::string kLong(300, 'L');
const std::string kFixture = le(0xC8, 1) + u32(0xFFFFFFF0) + u32(0x40200000) +
                             le(0xBFC0000000000000, 8) + u16(7) + u16(0xFFFF) + u32(0x12345) +
                             narrow("part") + narrow(kLong) + wide(u"\u00E9t\u00E9") +
                             newClass("Shape");

// Reads the fixture from `stream`, which holds its first `size` bytes: all give every value; fewer
// fail with code 1, count the bytes there were and leave each destination as it was.
void expectFixtureRead(DUNXInputStream* stream, std::size_t size) {
    SCOPED_TRACE("bytes: " + std::to_string(size));
    DUNXArchive in(stream);
    unsigned char byte = 9;
    float single = 9;
    double real = 9;
    long big = 9, count = 9, bigCount = 9, result = 9;
    DUNXString texts[4] = {"9", "9", "9", ""};
    const bool cut = size < kFixture.size();
    EXPECT_EQ(faultOf([&] {
                  in >> byte >> big >> single >> real;
                  count = in.RestoreCount(), bigCount = in.RestoreCount();
                  for (int i = 0; i < 3; ++i)
                      in.RestoreCString(texts[i]);
                  result = in.RestoreClassObject(texts[3], nullptr);
              }),
              cut ? 1 : 0);
    EXPECT_EQ(in.GetBytesRead(), size);
    const auto show = [](auto... values) { return std::vector{testing::PrintToString(values)...}; };
    const auto got = show(+byte, big, single, real, count, bigCount, textOf(texts[0]),
                          textOf(texts[1]), textOf(texts[2]), textOf(texts[3]), result);
    const auto whole =
        show(200, -16, 2.5, -0.125, 7, 0x12345, "part", kLong, "\\u00E9t\\u00E9", "Shape", 0);
    const auto unset = show(9, 9, 9, 9, 9, 9, "9", "9", "9", "", 9);
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_TRUE(got[i] == whole[i] || (cut && got[i] == unset[i])) << i << ": " << got[i];
}

} // namespace

TEST(DUNXArchive, ReadsLittleEndianScalarsAndCountsOneStreamCallEachAndCopiesShareTheStream) {
    MemoryArchive in(le(0xFE80, 2) + u16(0x8001) + u16(0xFFFE) + u32(0x80000001) + u32(0xFFFFFFFE) +
                     u32(0xFFFFFFFF) + u32(0x7FFFFFFF) + u32(0x3FC00000) +
                     le(0xC002000000000000, 8) + u16(5) + u16(0xFFFE) + u16(0xFFFF) + u32(0xFFFF) +
                     u16(0xFFFF) + u32(10000) + u16(0xFFFF) + u32(0xFFFFFFFF) + u16(3) + u16(4));
    std::tuple<char, unsigned char, short, unsigned short, int, unsigned, long, long, float, double>
        got;
    std::apply([&](auto&... value) { (in.archive >> ... >> value); }, got);
    EXPECT_EQ(got, decltype(got)('\x80', 0xFE, -0x7FFF, 0xFFFE, -0x7FFFFFFF, 0xFFFFFFFE, -1,
                                 0x7FFFFFFF, 1.5f, -2.25));
    EXPECT_EQ(in.archive.GetBytesRead(), 34u) << "a long takes 4 bytes";
    for (std::uint32_t count : {5u, 0xFFFEu, 0xFFFFu, 10000u, 0xFFFFFFFFu})
        EXPECT_EQ(in.archive.RestoreCount(), count);
    EXPECT_EQ(in.archive.GetBytesRead(), 56u) << "from 0xFFFF on, a count takes 6 bytes";
    EXPECT_EQ(in.stream.calls, 18);

    DUNXArchive copy(in.archive), assigned(nullptr);
    assigned = in.archive;
    EXPECT_EQ(copy.RestoreCount(), 3u) << "one stream, read on";
    EXPECT_EQ(assigned.RestoreCount(), 4u);
    EXPECT_EQ(assigned.GetStream(), &in.stream);
    EXPECT_EQ(copy.GetBytesRead() + assigned.GetBytesRead(), 116u) << "each counts its own";
}

TEST(DUNXArchive, ReplacesNonFiniteFloatsAndRefusesNaNDoubles) {
    // clang-format off
    const struct { std::uint32_t stored, read; } floats[] = {
        {0x7F800000, 0x7F7FFFFF}, {0xFF800000, 0x7F7FFFFF}, {0x7FC00000, 0x7F7FFFFF},
        {0x7F800001, 0x7F7FFFFF}, {0xFFFFFFFF, 0x7F7FFFFF}, {0xFF7FFFFF, 0xFF7FFFFF},
        {0x00000001, 0x00000001}, {0x80000000, 0x80000000}};
    const struct { std::uint64_t stored; int fault; } doubles[] = {
        {0x7FF0000000000000, 0}, {0xFFF0000000000000, 0}, {0x8000000000000000, 0},
        {0x7FF8000000000000, 2}, {0x7FF0000000000001, 2}, {0xFFFFFFFFFFFFFFFF, 2}};
    // clang-format on
    for (const auto& row : floats) {
        MemoryArchive in(u32(row.stored) + u32(row.stored));
        float one = 0, array[1] = {0};
        (in.archive >> one).Read(array, 1);
        EXPECT_EQ(bitsOf(one), row.read) << row.stored;
        EXPECT_EQ(bitsOf(array[0]), row.read) << row.stored;
    }
    for (const auto& row : doubles) {
        SCOPED_TRACE(row.stored);
        MemoryArchive in(le(row.stored, 8) + le(bitsOf(1.0), 8) + le(row.stored, 8));
        double value = 7, array[2];
        EXPECT_EQ(faultOf([&] { in.archive >> value; }), row.fault);
        EXPECT_EQ(bitsOf(value), row.fault ? bitsOf(7.0) : row.stored) << "a NaN keeps the old";
        EXPECT_EQ(faultOf([&] { in.archive.Read(array, 2); }), row.fault);
        EXPECT_EQ(bitsOf(array[1]), row.stored) << "the whole block is read first";
        EXPECT_EQ(in.archive.GetBytesRead(), 24u);
    }
}

TEST(DUNXArchive, RestoresNarrowAndUtf16StringsWithEveryFormOfLength) {
    // clang-format off
    struct Row { std::string bytes, text; }; // the text as textOf() shows it
    std::vector<Row> rows = {
        {bytes({3, 'a', 'b', 'c'}), "abc"}, {bytes({4, 'a', 0, 'b', 'c'}), "a"},
        {bytes({0xFF, 0xFE, 0xFF, 2, 0xE9, 0, 0xAC, 0x20}), "\\u00E9\\u20AC"},
        {bytes({0xFF, 0xFF, 0xFF, 5, 0, 0, 0}) + "hello", "hello"}, // a long form of a short length
        {bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 'x', 0}), "x"}, // the UTF-16 mark, long
        {wide(std::u16string(u"a\0b", 3)), "a"}, {wide(u"\U0001F600"), "\\uD83D\\uDE00"}};
    // clang-format on
    for (std::size_t n : {0, 0xFE, 0xFF, 0xFFFD, 0xFFFE, 0xFFFF, 0x10001}) {
        rows.push_back({narrow(std::string(n, 'n')), std::string(n, 'n')});
        rows.push_back({wide(std::u16string(n, u'w')), std::string(n, 'w')});
    }
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes.substr(0, 12)));
        MemoryArchive in(row.bytes + "!");
        DUNXString text = "unset";
        in.archive.RestoreCString(text);
        EXPECT_EQ(textOf(text), row.text) << "an empty string is \"\", not null";
        EXPECT_EQ(in.archive.GetBytesRead(), row.bytes.size());
    }
}

TEST(DUNXArchive, RestoresClassTagsAndChecksClassNames) {
    const long ok = DUNI_S_SUCCESS, fail = DUNI_E_FAIL;
    const std::string shape = newClass("Shape"), n63(63, 'N'), n64(64, 'N');
    // clang-format off
    struct Row { // the tag, the class name given (null: the null string) and what comes of them
        std::string bytes; const char* className;
        long result; std::string nameAfter; unsigned short tag; std::size_t bytesRead;
    } const rows[] = {
        {shape, "", ok, "Shape", 0xFFFF, 11},        {shape, "Shape", ok, "Shape", 0xFFFF, 11},
        {shape, "Other", fail, "Other", 0xFFFF, 11}, {shape, "shape", fail, "shape", 0xFFFF, 11},
        {shape, "Shap", fail, "Shap", 0xFFFF, 11},   {newClass("", 2), nullptr, ok, "", 0xFFFF, 6},
        {newClass("Shape", 0xBEEF), nullptr, ok, "Shape", 0xFFFF, 11},
        {newClass(n63), "", ok, n63, 0xFFFF, 69},    {newClass(n64), "", fail, "", 0xFFFF, 6},
        {u16(0x8001), "Any", ok, "Any", 0x8001, 2},  {u16(0x8000), "", ok, "", 0x8000, 2},
        {u16(0x0001), "", fail, "", 0x0001, 2},      {u16(0x7FFE), "", fail, "", 0x7FFE, 2},
        {u16(0x7FFF) + u32(0x80000005), "", ok, "", 0x7FFF, 6}, // 32-bit tags
        {u16(0x7FFF) + u32(0x7FFFFFFF), "", fail, "", 0x7FFF, 6}};
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes.substr(0, 12)));
        MemoryArchive wide(row.bytes + "!"), narrow(row.bytes);
        DUNXString className(row.className);
        unsigned short tag = 0;
        EXPECT_EQ(wide.archive.RestoreClassObject(className, &tag), row.result);
        EXPECT_EQ(textOf(className), row.nameAfter);
        EXPECT_EQ(tag, row.tag);
        EXPECT_EQ(wide.archive.GetBytesRead(), row.bytesRead) << "a name of 64 bytes is not read";
        EXPECT_EQ(narrow.archive.RestoreClassObject(row.className, nullptr), row.result);
    }
}

TEST(DUNXArchive, ReadsBytesAndNumberArraysInBlocks) {
    std::vector<int> ints(100000), got(ints.size());
    for (std::size_t i = 0; i < ints.size(); ++i)
        ints[i] = static_cast<int>(i * 2654435761u);
    const std::string data(reinterpret_cast<const char*>(ints.data()), ints.size() * 4);
    MemoryArchive in("raw" + data + u16(0x8001) + u16(0xFFFE) + u32(0xFFFF0001) + u32(0x80000000));
    char raw[4] = "...";
    short s[2];
    unsigned short us[2];
    unsigned u[1];
    EXPECT_EQ(in.archive.Read(raw, 3) + in.archive.Read(raw, 0), 3);
    EXPECT_STREQ(raw, "raw");
    EXPECT_EQ(faultOf([&] { in.archive.Read(raw, -1); }) + faultOf([&] { in.archive.Read(u, -1); }),
              2);
    EXPECT_EQ(in.archive.Read(got.data(), static_cast<int>(got.size())), 100000);
    EXPECT_EQ(got, ints);
    EXPECT_EQ(in.archive.Read(s, 2) + in.archive.Read(us, 2) + in.archive.Read(u, 1), 5);
    EXPECT_EQ(std::vector<long long>({s[0], s[1], us[0], us[1], u[0]}),
              std::vector<long long>({-0x7FFF, -2, 1, 0xFFFF, 0x80000000}));
    EXPECT_EQ(in.stream.calls, 7) << "one call per block";
    EXPECT_EQ(in.archive.GetBytesRead(), in.data.size());
}

TEST(DUNXArchive, ShortReadsThrowCode1LeaveTheDestinationAndCountWhatCame) {
    DUNXFileInputStream faulty(static_cast<std::FILE*>(nullptr)); // every read returns -1
    for (DUNXInputStream* stream : std::initializer_list<DUNXInputStream*>{nullptr, &faulty}) {
        expectFixtureRead(stream, 0);
        DUNXArchive in(stream);
        int array[2];
        EXPECT_EQ(faultOf([&] { in.Read(array, 2); }), 1);
        EXPECT_EQ(in.Read(reinterpret_cast<char*>(array), 0), 0);
    }
    dunx::test::TempDir dir; // a cut at every byte of the fixture, in memory and in a file
    for (std::size_t size = 0; size <= kFixture.size(); ++size) {
        DUNXMemoryInputStream memory(kFixture.data(), static_cast<int>(size));
        expectFixtureRead(&memory, size);
        dir.write("cut.bin", kFixture.substr(0, size));
        DUNXFileInputStream file(dir.file("cut.bin").c_str());
        expectFixtureRead(&file, size);
    }
    // Corrupt lengths of 4 GB (narrow) and 8 GB (UTF-16) in a few bytes: no large allocation.
    for (const std::string& row : {le(0xFFFFFF, 3) + u32(0xFFFFFFFE) + "abc",
                                   le(0xFFFEFF, 3) + le(0xFFFFFF, 3) + u32(0xFFFFFFFE) + "ab",
                                   le(0xFFFEFF, 3) + le(0xFFFFFF, 3) + u32(0xFFFFFFFF) + "ab"}) {
        SCOPED_TRACE(testing::PrintToString(row));
        MemoryArchive in(row);
        DUNXString text;
        dunx::test::AllocationCounter counter;
        const int fault = faultOf([&] { in.archive.RestoreCString(text); });
        const std::size_t largest = counter.largest();
        EXPECT_EQ(fault, 1);
        if (dunx::test::AllocationCounter::SeesLibraryAllocations()) {
            EXPECT_LE(largest, 1u << 17);
        }
        EXPECT_LE(in.stream.largest, 1 << 16);
        EXPECT_EQ(in.archive.GetBytesRead(), row.size());
    }
    DUNXArchiveException assigned(DUNXArchiveShortRead);
    assigned = DUNXArchiveNaN;
    EXPECT_EQ(assigned.GetCode(), DUNXArchiveNaN);
}

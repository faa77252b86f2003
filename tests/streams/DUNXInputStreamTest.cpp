#include <dunx/DUNXInputStream.h>

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using dunx::test::TempDir;

namespace {

// Binary content that a text-mode or C-string reader would damage.
const std::string kBytes = std::string("line\r\n\0zero\x1a\xff", 13) + std::string(5000, 'q');

// Everything the stream delivers in reads of 7 bytes; a fault ends it with "<fault>".
std::string readAll(DUNXInputStream& in) {
    std::string text;
    char buffer[7];
    for (int n; (n = in.read(buffer, 7)) != 0;) {
        if (n < 0 || n > 7)
            return text + "<fault>";
        text.append(buffer, static_cast<std::size_t>(n));
    }
    return text;
}

using Streams = std::pair<const char*, std::unique_ptr<DUNXFileInputStream>>[];

} // namespace

TEST(DUNXMemoryInputStream, DeliversPartialReadsUntilTheEnd) {
    DUNXMemoryInputStream in("ab\0defg", 7);
    const struct {
        int count, delivered;
        const char* bytes;
    } steps[] = {{3, 3, "ab\0"}, {0, 0, ""}, {-4, 0, ""}, {3, 3, "def"}, {3, 1, "g"}, {3, 0, ""}};
    int position = 0;
    for (const auto& step : steps) {
        SCOPED_TRACE("read(" + std::to_string(step.count) + ") at " + std::to_string(position));
        char buffer[4] = {'#', '#', '#', '#'};
        ASSERT_EQ(in.read(buffer, step.count), step.delivered);
        EXPECT_EQ(std::string(buffer, 4),
                  std::string(step.bytes, step.delivered) + std::string(4 - step.delivered, '#'))
            << "wrong bytes, or written past those delivered";
        position += step.delivered;
        EXPECT_EQ(in.GetPosition(), position);
        EXPECT_EQ(in.GetRemaining(), 7 - position);
    }
}

TEST(DUNXMemoryInputStream, NullDataOrNonPositiveSizeReadsAsEmpty) {
    const std::pair<const char*, int> cases[] = {{nullptr, 5}, {"abc", -1}, {"abc", 0}};
    for (const auto& [data, size] : cases) {
        SCOPED_TRACE("size " + std::to_string(size) + (data ? "" : ", null data"));
        DUNXMemoryInputStream in(data, size);
        EXPECT_EQ(readAll(in), "");
        EXPECT_EQ(in.GetRemaining(), 0);
    }
}

TEST(DUNXFileInputStream, ReadsAFileByPathAsBinaryWithSlashesOrBackslashes) {
    TempDir dir;
    dir.write("name.bin", kBytes);
    std::string allBackslashes = dir.file("name.bin");
    std::replace(allBackslashes.begin(), allBackslashes.end(), '/', '\\');
    for (const std::string& path :
         {dir.file("name.bin"), dir.path() + "\\name.bin", allBackslashes}) {
        SCOPED_TRACE(path);
        DUNXFileInputStream in(path.c_str());
        ASSERT_TRUE(in.IsOpen());
        EXPECT_EQ(readAll(in), kBytes);
        EXPECT_EQ(readAll(in), "") << "past the end";
    }
}

TEST(DUNXFileInputStream, WhatCannotBeOpenedGivesAClosedStream) {
    TempDir dir;
    const Streams cases = {
        {"missing file", std::make_unique<DUNXFileInputStream>(dir.file("missing").c_str())},
        {"empty path", std::make_unique<DUNXFileInputStream>("")},
        {"null FILE*", std::make_unique<DUNXFileInputStream>(static_cast<std::FILE*>(nullptr))},
        {"negative descriptor", std::make_unique<DUNXFileInputStream>(-1)}};
    for (const auto& [name, in] : cases) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(in->IsOpen());
        EXPECT_EQ(readAll(*in), "<fault>");
    }
}

TEST(DUNXFileInputStream, ReadFaultsAreReturnedNotThrown) {
    TempDir dir;
    dir.write("data.bin", "abc");
    std::FILE* writeOnly = std::fopen(dir.file("data.bin").c_str(), "ab");
    ASSERT_NE(writeOnly, nullptr);
    // Far above the numbers that the opens below reuse.
    const int closedFd = ::fcntl(fileno(writeOnly), F_DUPFD, 900);
    ::close(closedFd);
    const Streams cases = {
        // fopen succeeds on a directory here; the fault comes with the first read.
        {"directory", std::make_unique<DUNXFileInputStream>(dir.path().c_str())},
        {"FILE* open for writing", std::make_unique<DUNXFileInputStream>(writeOnly)},
        {"closed descriptor", std::make_unique<DUNXFileInputStream>(closedFd)}};
    for (const auto& [name, in] : cases) {
        SCOPED_TRACE(name);
        char buffer[4];
        EXPECT_NO_THROW(EXPECT_EQ(in->read(buffer, 4), -1));
    }
    std::fclose(writeOnly);
}

TEST(DUNXInputStream, NullBufferIsAFaultThatConsumesNothing) {
    TempDir dir;
    dir.write("data.bin", "abc");
    DUNXMemoryInputStream memory("abc", 3);
    DUNXFileInputStream file(dir.file("data.bin").c_str());
    for (DUNXInputStream* in :
         {static_cast<DUNXInputStream*>(&memory), static_cast<DUNXInputStream*>(&file)}) {
        SCOPED_TRACE(in == &memory ? "memory" : "file");
        EXPECT_EQ(in->read(nullptr, 2), -1);
        EXPECT_EQ(readAll(*in), "abc");
    }
}

TEST(DUNXFileInputStream, ReadsOnFromABorrowedFileAndLeavesItOpen) {
    TempDir dir;
    dir.write("data.bin", kBytes);
    std::FILE* file = std::fopen(dir.file("data.bin").c_str(), "rb");
    ASSERT_NE(file, nullptr);
    char head[4];
    ASSERT_EQ(std::fread(head, 1, 4, file), 4u);
    {
        DUNXFileInputStream in(file);
        EXPECT_TRUE(in.IsOpen());
        EXPECT_EQ(readAll(in), kBytes.substr(4)) << "must start where the owner stopped";
    }
    ASSERT_EQ(std::fseek(file, 0, SEEK_SET), 0) << "the borrowed FILE was closed";
    EXPECT_EQ(std::fread(head, 1, 4, file), 4u);
    EXPECT_EQ(std::fclose(file), 0);
}

TEST(DUNXFileInputStream, OutlivesTheOwnersFclose) {
    TempDir dir;
    dir.write("data.bin", kBytes);
    std::FILE* file = std::fopen(dir.file("data.bin").c_str(), "rb");
    ASSERT_NE(file, nullptr);
    auto in = std::make_unique<DUNXFileInputStream>(file);
    char buffer[8];
    ASSERT_EQ(in->read(buffer, 8), 8);
    std::fclose(file);
    // The FILE is freed: a destructor touching it is a use-after-free under AddressSanitizer.
    in.reset();
}

TEST(DUNXFileInputStream, ReadsABorrowedDescriptorAndLeavesItOpen) {
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    ASSERT_EQ(::write(fds[1], "piped", 5), 5);
    ::close(fds[1]);
    {
        DUNXFileInputStream in(fds[0]);
        EXPECT_TRUE(in.IsOpen());
        EXPECT_EQ(readAll(in), "piped");
    }
    EXPECT_NE(::fcntl(fds[0], F_GETFD), -1) << "the borrowed descriptor was closed";
    ::close(fds[0]);
}

#include <dunx/DUNXOutputStream.h>

#include "support/OutputCapture.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using dunx::test::OutputCapture;
using dunx::test::TempDir;

namespace {

const std::string kBytes = std::string("line\r\n\0zero\x1a\xff", 13) + std::string(9000, 'q');

int writeText(DUNXOutputStream& out, const std::string& text) {
    return out.write(text.data(), static_cast<int>(text.size()));
}

using Streams = std::pair<const char*, std::unique_ptr<DUNXFileOutputStream>>[];

} // namespace

// A stream that flushed or closed a borrowed FILE after its owner's fclose
// would run inside the C library, which AddressSanitizer does not watch, and the
// stale FILE would still look valid. Filling freed memory turns such a touch
// into a crash that AddressSanitizer reports.
extern "C" const char* __asan_default_options() {
    return "max_free_fill_size=4096:free_fill_byte=190";
}

TEST(DUNXFileOutputStream, TruncatesOrAppendsByPath) {
    for (const bool append : {false, true}) {
        SCOPED_TRACE(append ? "append" : "truncate");
        TempDir dir;
        dir.write("out.bin", "old");
        {
            // Backslashes stand for slashes in the library's paths.
            DUNXFileOutputStream out((dir.path() + "\\out.bin").c_str(), append);
            ASSERT_TRUE(out.IsOpen());
            EXPECT_EQ(writeText(out, kBytes), static_cast<int>(kBytes.size()));
        }
        // Read only after destruction: the destructor must flush and close.
        EXPECT_EQ(dir.read("out.bin"), (append ? "old" : "") + kBytes);
    }
}

TEST(DUNXFileOutputStream, WhatCannotBeOpenedGivesAClosedStream) {
    TempDir dir;
    const Streams cases = {
        {"missing directory", std::make_unique<DUNXFileOutputStream>(dir.file("no/x").c_str())},
        {"empty path", std::make_unique<DUNXFileOutputStream>("")},
        {"null FILE*", std::make_unique<DUNXFileOutputStream>(static_cast<std::FILE*>(nullptr))},
        {"negative descriptor", std::make_unique<DUNXFileOutputStream>(-1)}};
    for (const auto& [name, out] : cases) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(out->IsOpen());
        EXPECT_EQ(writeText(*out, "abc"), -1);
    }
}

TEST(DUNXFileOutputStream, WritesThroughABorrowedFileAndLeavesItOpen) {
    TempDir dir;
    std::FILE* file = std::fopen(dir.file("out.bin").c_str(), "wb");
    ASSERT_NE(file, nullptr);
    {
        DUNXFileOutputStream out(file);
        EXPECT_EQ(writeText(out, "stream "), 7);
        EXPECT_EQ(out.flush(), 0);
        EXPECT_EQ(dir.read("out.bin"), "stream ") << "flush must reach the file";
    }
    EXPECT_EQ(std::fputs("owner", file), 1) << "the borrowed FILE was closed";
    EXPECT_EQ(std::fclose(file), 0);
    EXPECT_EQ(dir.read("out.bin"), "stream owner");
}

TEST(DUNXFileOutputStream, OutlivesTheOwnersFclose) {
    TempDir dir;
    std::FILE* file = std::fopen(dir.file("out.bin").c_str(), "wb");
    ASSERT_NE(file, nullptr);
    auto out = std::make_unique<DUNXFileOutputStream>(file);
    EXPECT_EQ(writeText(*out, "pending"), 7);
    std::fclose(file);
    // The FILE is freed: a destructor that flushed or closed it is a
    // use-after-free under AddressSanitizer.
    out.reset();
    EXPECT_EQ(dir.read("out.bin"), "pending");
}

TEST(DUNXFileOutputStream, WritesABorrowedDescriptorAndLeavesItOpen) {
    TempDir dir;
    const int fd = ::open(dir.file("out.bin").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(fd, 0);
    {
        DUNXFileOutputStream out(fd);
        EXPECT_EQ(writeText(out, kBytes), static_cast<int>(kBytes.size()));
        EXPECT_EQ(out.flush(), 0);
    }
    EXPECT_NE(::fcntl(fd, F_GETFD), -1) << "the borrowed descriptor was closed";
    ::close(fd);
    EXPECT_EQ(dir.read("out.bin"), kBytes);
}

TEST(DUNXFileOutputStream, WritesTheConsoleUnbufferedAndNeverClosesIt) {
    for (const int fd : {1, 2}) {
        SCOPED_TRACE("descriptor " + std::to_string(fd));
        const std::string text = "to console " + std::to_string(fd) + "\n";
        // Checked once the capture is over, so that failure messages stay visible.
        int written;
        std::string beforeDestruction;
        bool stillOpen;
        {
            OutputCapture capture(fd);
            {
                DUNXFileOutputStream out(fd);
                written = writeText(out, text);
                beforeDestruction = capture.text(); // no flush: must be there already
            }
            stillOpen = ::fcntl(fd, F_GETFD) != -1;
        }
        EXPECT_EQ(written, static_cast<int>(text.size()));
        EXPECT_EQ(beforeDestruction, text);
        EXPECT_TRUE(stillOpen) << "the console descriptor was closed";
    }
}

TEST(DUNXFileOutputStream, WriteFaultsAreReturnedNotThrown) {
    if (::access("/dev/full", W_OK) != 0)
        GTEST_SKIP() << "no /dev/full here";
    std::FILE* borrowed = std::fopen("/dev/full", "wb");
    const int fullFd = ::open("/dev/full", O_WRONLY);
    // Far above the numbers that the opens below reuse.
    const int closedFd = ::fcntl(fullFd, F_DUPFD, 900);
    ::close(closedFd);
    const Streams cases = {
        {"/dev/full by path", std::make_unique<DUNXFileOutputStream>("/dev/full")},
        {"/dev/full FILE*", std::make_unique<DUNXFileOutputStream>(borrowed)},
        {"/dev/full descriptor", std::make_unique<DUNXFileOutputStream>(fullFd)},
        {"closed descriptor", std::make_unique<DUNXFileOutputStream>(closedFd)}};
    for (const auto& [name, out] : cases) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(out->IsOpen());
        int written = 0, flushed = 0;
        EXPECT_NO_THROW(written = writeText(*out, "lost"));
        EXPECT_NO_THROW(flushed = out->flush());
        // A FILE may take the bytes into its buffer and fail only when flushing;
        // descriptors are written unbuffered, so their write itself fails.
        const bool buffered = std::strstr(name, "descriptor") == nullptr;
        EXPECT_TRUE(written == -1 || (buffered && written == 4 && flushed == -1))
            << "write gave " << written << ", flush gave " << flushed;
    }
    ::close(fullFd);
    std::fclose(borrowed);
}

TEST(DUNXOutputStream, EmptyWritesAcceptNothingAndNullBuffersFail) {
    TempDir dir;
    DUNXFileOutputStream file(dir.file("out.bin").c_str());
    DUNXStringOutputStream text;
    for (DUNXOutputStream* out :
         {static_cast<DUNXOutputStream*>(&file), static_cast<DUNXOutputStream*>(&text)}) {
        SCOPED_TRACE(out == &file ? "file" : "string");
        EXPECT_EQ(out->write("abc", 0), 0);
        EXPECT_EQ(out->write("abc", -2), 0);
        EXPECT_EQ(out->write(nullptr, 3), -1);
        EXPECT_EQ(out->flush(), 0);
    }
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_EQ(dir.read("out.bin"), "");
}

TEST(DUNXStringOutputStream, CollectsEveryByteIncludingZeros) {
    DUNXStringOutputStream out;
    EXPECT_EQ(out.write("ab\0c", 4), 4);
    EXPECT_EQ(out.write("\0d", 2), 2);
    ASSERT_EQ(out.GetLength(), 6);
    EXPECT_EQ(std::memcmp(out.GetText(), "ab\0c\0d", 7), 0) << "the bytes and a final 0";
}

TEST(DUNXStringOutputStream, ClearForgetsEverythingWritten) {
    DUNXStringOutputStream out;
    writeText(out, "first");
    out.Clear();
    EXPECT_EQ(out.GetLength(), 0);
    EXPECT_STREQ(out.GetText(), "");
    writeText(out, "next");
    EXPECT_STREQ(out.GetText(), "next");
}

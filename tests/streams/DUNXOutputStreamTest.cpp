#include <dunx/DUNXInputStream.h>
#include <dunx/DUNXOutputStream.h>

#include "support/OutputCapture.h"
#include "support/TempDir.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <fcntl.h>

#ifndef _WIN32
#include <thread>

#include <unistd.h>
#endif

const std::string kBytes = std::string("line\r\n\0zero\x1a\xff", 13) + std::string(9000, 'q');

template <class Stream> static int writeText(Stream&& out, const std::string& text) {
    return out.write(text.data(), static_cast<int>(text.size()));
}

// Freed memory is filled, so that a stream touching a borrowed FILE after its owner's fclose
// (inside the C library, which AddressSanitizer does not watch) crashes instead of passing.
extern "C" const char* __asan_default_options() {
    return "max_free_fill_size=4096:free_fill_byte=190";
}

TEST(DUNXFileOutputStream, WritesByPathOrBorrowedFileOrDescriptorAndClosesOnlyItsOwn) {
    dunx::test::TempDir dir;
    std::FILE* file = std::fopen(dir.file("out.bin").c_str(), "wb");
    {
        DUNXFileOutputStream out(file);
        EXPECT_EQ(writeText(out, "file "), 5);
        EXPECT_EQ(out.flush(), 0);
        EXPECT_EQ(dir.read("out.bin"), "file ") << "flush must reach the file";
        std::fputs("owner ", file);
        std::fclose(file);
    } // its destructor must neither flush nor close the freed FILE
    const int fd = dunx::test::OpenDescriptor(dir.file("out.bin"), O_WRONLY | O_APPEND);
    {
        DUNXFileOutputStream out(fd);
        EXPECT_EQ(writeText(out, "fd"), 2);
        EXPECT_EQ(out.write(" ", 1), 1);
        EXPECT_EQ(out.write("x", 0) + out.write(nullptr, 0), 0) << "nothing to write is no fault";
        EXPECT_EQ(out.flush(), 0);
    }
    EXPECT_EQ(::close(fd), 0) << "the borrowed descriptor was closed";
    const std::string path = dir.path() + "\\.\\out.bin";
    {
        DUNXFileOutputStream out(path.c_str(), true);
        EXPECT_EQ(out.write("abc", -2), 0);
        EXPECT_EQ(out.write(nullptr, 3), -1);
        EXPECT_EQ(writeText(out, kBytes), static_cast<int>(kBytes.size()));
    }
    EXPECT_EQ(dir.read("out.bin"), "file owner fd " + kBytes) << "appended, flushed and closed";
    EXPECT_EQ(writeText(DUNXFileOutputStream(path.c_str()), "new"), 3);
    EXPECT_EQ(dir.read("out.bin"), "new") << "truncated";
}

TEST(DUNXFileOutputStream, WritesThroughAFileObjectThatItKeepsAlive) {
    dunx::test::TempDir dir;
    dir.write("known.txt", "old text");
    const auto knownByPath = [&dir](const std::string& name) {
        return DUNXFileHandle(new DUNXFile(DUNXFilePath(dir.file(name).c_str())));
    };
    EXPECT_EQ(writeText(DUNXFileOutputStream(knownByPath("known.txt")), "new"), 3);
    EXPECT_EQ(dir.read("known.txt"), "new") << "opened as by its path: truncated, then closed";
    const int fd = dunx::test::OpenDescriptor(dir.file("known.txt"), O_WRONLY | O_APPEND);
    {
        DUNXFileOutputStream out(DUNXFileHandle(new DUNXFile(fd, "a", true)));
        EXPECT_EQ(writeText(out, "+fd"), 3) << "the caller's handle is gone, the file is not";
        EXPECT_TRUE(dunx::test::IsDescriptorOpen(fd));
    }
    EXPECT_FALSE(dunx::test::IsDescriptorOpen(fd)) << "closed with the file it was handed to";
    EXPECT_EQ(dir.read("known.txt"), "new+fd");
    EXPECT_TRUE(DUNXFileOutputStream(DUNXFileHandle(new DUNXFile(0, "r"))).IsOpen())
        << "descriptor 0 is a descriptor like any other";
    EXPECT_FALSE(DUNXFileOutputStream(DUNXFileHandle()).IsOpen());
    EXPECT_FALSE(DUNXFileOutputStream(knownByPath("missing/folder")).IsOpen());
}

TEST(DUNXFileOutputStream, APartialDescriptorWriteReturnsTheBytesThatWentThrough) {
    int ends[2];
    if (!dunx::test::MakeNonBlockingPipe(ends))
        GTEST_SKIP() << "no pipe whose writes give up instead of waiting";
    std::string bytes(1 << 20, '\0'); // far more than a pipe holds
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i % 251);
    int taken;
    {
        DUNXFileOutputStream out(ends[1]);
        taken = writeText(out, bytes);
        EXPECT_EQ(writeText(out, "x"), -1) << "a full pipe takes nothing";
    }
    ASSERT_GT(taken, 0);
    EXPECT_LT(taken, static_cast<int>(bytes.size()));
    ::close(ends[1]);
    std::string received;
    char buffer[4096];
    DUNXFileInputStream in(ends[0]);
    for (int n; (n = in.read(buffer, sizeof buffer)) > 0;)
        received.append(buffer, static_cast<std::size_t>(n));
    ::close(ends[0]);
    EXPECT_TRUE(received == bytes.substr(0, static_cast<std::size_t>(taken)));
}

TEST(DUNXFileOutputStream, AWriteCutShortBySignalsGoesOnFromWhereItStopped) {
#ifdef _WIN32
    GTEST_SKIP() << "POSIX signals cut a waiting write short; Windows has none of them";
#else
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    std::string bytes(1 << 20, '\0'); // far more than a pipe holds: the write waits for room
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i % 251);
    std::string received;
    std::thread reader = dunx::test::ThreadWithoutAlarms([&received, fd = ends[0]] {
        char buffer[4096];
        for (ssize_t n; (n = ::read(fd, buffer, sizeof buffer)) > 0; ::usleep(500))
            received.append(buffer, static_cast<std::size_t>(n));
    });
    int written;
    {
        dunx::test::ScopedAlarms alarms(5000); // slow enough for valgrind to keep up
        written = writeText(DUNXFileOutputStream(ends[1]), bytes);
    }
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_EQ(written, static_cast<int>(bytes.size()));
    EXPECT_TRUE(received == bytes) << received.size() << " bytes, not in order";
#endif
}

TEST(DUNXFileOutputStream, WritesTheConsoleUnbufferedThroughAFileAndNeverClosesIt) {
    for (const int fd : {1, 2}) {
        dunx::test::OutputCapture capture(fd);
        auto out = std::make_unique<DUNXFileOutputStream>(DUNXFileHandle(new DUNXFile(fd, "w")));
        std::string seen = std::to_string(writeText(*out, "console\n")) + " bytes, ";
        seen += capture.text(); // before any flush or destruction: unbuffered
        out.reset();
        seen += dunx::test::IsDescriptorOpen(fd) ? "left open" : "closed";
        capture.restore(); // checked once the capture is over, so that failures stay visible
        EXPECT_EQ(seen, "8 bytes, console\nleft open") << "descriptor " << fd;
    }
}

TEST(DUNXFileOutputStream, FaultsAreReturnedNotThrown) {
    // Linux only: a device that refuses every write exists there alone.
    if (dunx::test::kWindows)
        GTEST_SKIP() << "needs /dev/full";
    std::FILE* full = std::fopen("/dev/full", "wb");
    const int fullFd = ::open("/dev/full", O_WRONLY), closedFd = dunx::test::ClosedDescriptor();
    ASSERT_TRUE(full && fullFd >= 0) << "no /dev/full here";
    DUNXFileOutputStream byPath("/dev/full"), byFile(full), byFd(fullFd), closed(closedFd),
        bad("/dev/full/x"), empty(""), noFile(static_cast<std::FILE*>(nullptr)), negative(-1);
    EXPECT_FALSE(bad.IsOpen() || empty.IsOpen() || noFile.IsOpen() || negative.IsOpen());
    EXPECT_EQ(bad.flush() + negative.flush(), -2); // nothing open: a flush fails too
    // A FILE may take the bytes into its buffer and fail only when flushing.
    for (DUNXFileOutputStream* out : {&byPath, &byFile})
        EXPECT_TRUE(writeText(*out, "lost") == -1 || out->flush() == -1);
    for (DUNXFileOutputStream* out : {&byFd, &closed, &bad, &empty, &noFile, &negative})
        EXPECT_EQ(writeText(*out, "lost"), -1);
    ::close(fullFd);
    std::fclose(full);
}

TEST(DUNXStringOutputStream, CollectsEveryByteUntilCleared) {
    DUNXStringOutputStream out;
    EXPECT_EQ(out.write("ab\0c", 4) + out.write("x", -2) + out.write("\0d", 2), 6);
    EXPECT_EQ(out.write(nullptr, 3) + out.flush() + out.write(nullptr, 0), -1);
    EXPECT_EQ(std::string(out.GetText(), out.GetLength() + 1), std::string("ab\0c\0d", 7));
    out.Clear();
    writeText(out, "next");
    EXPECT_STREQ(out.GetText(), "next");
}

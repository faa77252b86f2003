#include <dunx/DUNXInputStream.h>

#include "support/TempDir.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <string>

#ifndef _WIN32
#include <thread>

#include <unistd.h>
#endif

namespace {

// Binary content that a text-mode or C-string reader would damage.
const std::string kBytes = std::string("line\r\n\0zero\x1a\xff", 13) + std::string(5000, 'q');

// Everything the stream delivers in reads of 7 bytes; a fault ends it with "<fault>".
template <class Stream> std::string readAll(Stream&& in) {
    std::string text;
    char buffer[7];
    for (int n; (n = in.read(buffer, 7)) != 0; text.append(buffer, static_cast<std::size_t>(n)))
        if (n < 0 || n > 7)
            return text + "<fault>";
    return text;
}

} // namespace

TEST(DUNXMemoryInputStream, DeliversPartialReadsAndReadsBadInputAsEmpty) {
    DUNXMemoryInputStream in("ab\0defg", 7), nullData(nullptr, 5), negative("abc", -1);
    char buffer[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(in.read(buffer, 3), 3);
    EXPECT_EQ(in.read(buffer, 0) + in.read(buffer, -4), 0);
    EXPECT_EQ(in.read(nullptr, 2), -1);
    EXPECT_EQ(std::string(buffer, 4), std::string("ab\0#", 4));
    EXPECT_EQ(in.GetRemaining(), 4);
    EXPECT_EQ(readAll(in), "defg");
    EXPECT_EQ(readAll(nullData) + readAll(negative), "");
}

TEST(DUNXFileInputStream, AReadInterruptedBeforeAnyByteCameWaitsAgain) {
#ifdef _WIN32
    GTEST_SKIP() << "POSIX signals interrupt a waiting read; Windows has none of them";
#else
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    // The writer is slower than the alarms: most reads wait, and are interrupted, before
    // anything arrives.
    std::thread writer = dunx::test::ThreadWithoutAlarms([fd = ends[1]] {
        for (int i = 0; i < 40; ++i) {
            ::usleep(8000);
            const char piece[] = {static_cast<char>('a' + i % 26)};
            if (::write(fd, piece, 1) != 1)
                break;
        }
        ::close(fd);
    });
    std::string received;
    {
        dunx::test::ScopedAlarms alarms(5000); // slow enough for valgrind to keep up
        received = readAll(DUNXFileInputStream(ends[0]));
    }
    writer.join();
    ::close(ends[0]);
    EXPECT_EQ(received, "abcdefghijklmnopqrstuvwxyzabcdefghijklmn");
#endif
}

TEST(DUNXFileInputStream, ReadsByPathOrBorrowedFileOrDescriptorAndReturnsFaults) {
    dunx::test::TempDir dir;
    dir.write("name.bin", kBytes);
    EXPECT_EQ(readAll(DUNXFileInputStream(dir.file("name.bin").c_str())), kBytes);
    const std::string backslashed = dir.path() + "\\.\\name.bin";
    EXPECT_EQ(readAll(DUNXFileInputStream(backslashed.c_str())), kBytes);
    EXPECT_EQ(DUNXFileInputStream(backslashed.c_str()).read(nullptr, 2), -1);

    const int closedFd = dunx::test::ClosedDescriptor();
    // fopen succeeds on a folder on Linux (Windows refuses it); the fault comes with the first
    // read.
    DUNXFileInputStream missing(dir.file("missing").c_str()), empty(""), folder(dir.path().c_str()),
        nullFile(static_cast<std::FILE*>(nullptr)), negative(-1), closed(closedFd);
    EXPECT_FALSE(missing.IsOpen() || empty.IsOpen() || nullFile.IsOpen() || negative.IsOpen());
    for (DUNXFileInputStream* in : {&missing, &empty, &folder, &nullFile, &negative, &closed})
        EXPECT_EQ(readAll(*in), "<fault>");

    const int fd = dunx::test::OpenDescriptor(dir.file("name.bin"), O_RDONLY);
    EXPECT_EQ(readAll(DUNXFileInputStream(fd)), kBytes);
    EXPECT_EQ(::close(fd), 0) << "the borrowed descriptor was closed";
    // Descriptor 0, standard input, is a descriptor like any other: the file stands in for it.
    const int input = ::dup(0), file0 = dunx::test::OpenDescriptor(dir.file("name.bin"), O_RDONLY);
    ASSERT_EQ(::dup2(file0, 0), 0);
    const std::string fromInput = readAll(DUNXFileInputStream(0));
    input >= 0 ? ::dup2(input, 0) : ::close(0); // as it was, even if it was closed
    ::close(input), ::close(file0);
    EXPECT_EQ(fromInput, kBytes);

    std::FILE* file = std::fopen(dir.file("name.bin").c_str(), "rb");
    char head[4];
    ASSERT_EQ(std::fread(head, 1, 4, file), 4u);
    EXPECT_EQ(readAll(DUNXFileInputStream(file)), kBytes.substr(4))
        << "not where the owner stopped";
    ASSERT_EQ(std::fseek(file, 0, SEEK_SET), 0) << "the borrowed FILE was closed";
    {
        DUNXFileInputStream late(file);
        std::fclose(file);
    } // its destructor must not touch the freed FILE: AddressSanitizer would report it
}

#include <dunx/DUNXOutputStream.h>

#include "support/OutputCapture.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <fcntl.h>
#include <unistd.h>

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
    const int fd = ::open(dir.file("out.bin").c_str(), O_WRONLY | O_APPEND);
    EXPECT_EQ(writeText(DUNXFileOutputStream(fd), "fd "), 3);
    EXPECT_EQ(DUNXFileOutputStream(fd).flush(), 0);
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

TEST(DUNXFileOutputStream, WritesTheConsoleUnbufferedThroughAFileAndNeverClosesIt) {
    for (const int fd : {1, 2}) {
        dunx::test::OutputCapture capture(fd);
        auto out = std::make_unique<DUNXFileOutputStream>(DUNXFileHandle(new DUNXFile(fd, "w")));
        std::string seen = std::to_string(writeText(*out, "console\n")) + " bytes, ";
        seen += capture.text(); // before any flush or destruction: unbuffered
        out.reset();
        seen += ::fcntl(fd, F_GETFD) != -1 ? "left open" : "closed";
        capture.restore(); // checked once the capture is over, so that failures stay visible
        EXPECT_EQ(seen, "8 bytes, console\nleft open") << "descriptor " << fd;
    }
}

TEST(DUNXFileOutputStream, FaultsAreReturnedNotThrown) {
    std::FILE* full = std::fopen("/dev/full", "wb");
    const int fullFd = ::open("/dev/full", O_WRONLY), closedFd = ::fcntl(2, F_DUPFD, 900);
    ::close(closedFd); // far above the numbers that the opens below reuse
    ASSERT_TRUE(full && fullFd >= 0) << "no /dev/full here";
    DUNXFileOutputStream byPath("/dev/full"), byFile(full), byFd(fullFd), closed(closedFd),
        bad("/dev/full/x"), empty(""), noFile(static_cast<std::FILE*>(nullptr)), negative(-1);
    EXPECT_FALSE(bad.IsOpen() || empty.IsOpen() || noFile.IsOpen() || negative.IsOpen());
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
    EXPECT_EQ(out.write(nullptr, 3) + out.flush(), -1);
    EXPECT_EQ(std::string(out.GetText(), out.GetLength() + 1), std::string("ab\0c\0d", 7));
    out.Clear();
    writeText(out, "next");
    EXPECT_STREQ(out.GetText(), "next");
}

// OutputCapture: collects what reaches a file descriptor such as 1 or 2.
#pragma once

#include <string>

namespace dunx::test {

/// Points descriptor `fd` at an anonymous temporary file until `restore()` or
/// destruction, so that everything written to it (through stdio, iostreams or
/// plain write(2)) can be read back. Works below the C library: a stream that
/// writes straight to the descriptor is seen as well. A file rather than a pipe,
/// so a large output can never block the writer.
///
///     dunx::test::OutputCapture out(1);
///     ::write(1, "hi", 2);
///     EXPECT_EQ(out.text(), "hi");
class OutputCapture {
public:
    explicit OutputCapture(int fd);
    ~OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// Everything written to the descriptor so far (stdout and stderr are
    /// flushed first); may be called while capturing and after `restore()`.
    std::string text() const;
    /// Gives the descriptor back its previous target; later calls do nothing.
    void restore();

private:
    int m_Fd;
    int m_Saved = -1; // the descriptor's previous target while capturing
    int m_File = -1;  // the temporary file collecting the output
};

} // namespace dunx::test

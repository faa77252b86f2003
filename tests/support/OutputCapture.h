// OutputCapture: points a descriptor such as 1 or 2 at a temporary file (not a pipe, which a large
// output would fill) until restore(), so that all written to it, even by write(2), can be read.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

#include "support/TestSystem.h"

namespace dunx::test {

class OutputCapture {
public:
    explicit OutputCapture(int fd) : m_Fd(fd) {
        std::FILE* file = std::tmpfile();
        m_File = file ? ::dup(fileno(file)) : -1; // our own descriptor: the FILE can go at once
        if (file)
            std::fclose(file);
        std::fflush(nullptr);
        m_Saved = ::dup(fd);
        if (m_File < 0 || m_Saved < 0 || ::dup2(m_File, fd) < 0)
            throw std::runtime_error("OutputCapture: cannot redirect the descriptor");
    }
    ~OutputCapture() {
        restore();
        ::close(m_File);
    }
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// Everything written to the descriptor so far, also after restore().
    std::string text() const {
        std::fflush(nullptr);
        std::string text(static_cast<size_t>(::lseek(m_File, 0, SEEK_END)), '\0');
        text.resize(static_cast<size_t>(std::max(ReadAt(m_File, text.data(), text.size(), 0), 0L)));
        return text;
    }
    /// Gives the descriptor back its previous target; later calls do nothing.
    void restore() {
        if (m_Saved < 0)
            return;
        std::fflush(nullptr);
        ::dup2(m_Saved, m_Fd);
        ::close(m_Saved);
        m_Saved = -1;
    }

private:
    int m_Fd;
    int m_Saved = -1; // the descriptor's previous target while capturing
    int m_File = -1;  // the temporary file collecting the output
};

} // namespace dunx::test

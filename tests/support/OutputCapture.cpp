#include "support/OutputCapture.h"

#include <cstdio>
#include <stdexcept>

#include <sys/types.h>
#include <unistd.h>

namespace dunx::test {

namespace {

void flushStandardStreams() {
    std::fflush(stdout);
    std::fflush(stderr);
}

} // namespace

OutputCapture::OutputCapture(int fd) : m_Fd(fd) {
    std::FILE* file = std::tmpfile();
    if (!file)
        throw std::runtime_error("OutputCapture: no temporary file");
    // Keep our own descriptor of the file: tmpfile's FILE can go at once.
    m_File = ::dup(fileno(file));
    std::fclose(file);
    flushStandardStreams();
    m_Saved = ::dup(fd);
    if (m_File < 0 || m_Saved < 0 || ::dup2(m_File, fd) < 0)
        throw std::runtime_error("OutputCapture: cannot redirect the descriptor");
}

OutputCapture::~OutputCapture() {
    restore();
    if (m_File >= 0)
        ::close(m_File);
}

std::string OutputCapture::text() const {
    if (m_Saved >= 0)
        flushStandardStreams();
    std::string text;
    char buffer[4096];
    for (off_t offset = 0;;) {
        const ssize_t n = ::pread(m_File, buffer, sizeof buffer, offset);
        if (n <= 0)
            break;
        text.append(buffer, static_cast<std::size_t>(n));
        offset += n;
    }
    return text;
}

void OutputCapture::restore() {
    if (m_Saved < 0)
        return;
    flushStandardStreams();
    ::dup2(m_Saved, m_Fd);
    ::close(m_Saved);
    m_Saved = -1;
}

} // namespace dunx::test

// The fault that stops a read or a write: one line naming the file and the reason.
#pragma once

#include "DunxTranslator.h"

#include <dunx/DUNXError.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace dunx::translator {

/// Thrown inside the translator and caught at its entry points, which turn it
/// into the result code, the report's error line and its kind.
class TranslationError : public std::runtime_error {
public:
    /// `code`: a DUNIResult code; `kind`: the report's error kind ("truncated
    /// STL", "missing file", ...); `message`: "file: reason", one line.
    TranslationError(long code, std::string kind, const std::string& message)
        : std::runtime_error(message), m_Code(code), m_Kind(std::move(kind)) {}
    long Code() const { return m_Code; }
    const std::string& Kind() const { return m_Kind; }

private:
    long m_Code;
    std::string m_Kind;
};

/// Something worth a warning that did not stop the read.
struct Note {
    std::string kind; ///< the report's warning kind ("degenerate triangles", ...)
    long long count;  ///< how many of that kind (triangles, or 1 for a file-level note)
    std::string text; ///< "file: what happened", one line
};

/// Records a failure in `report` (the first error line wins; every kind is
/// counted), announces it on the error channel, and returns `code`.
inline long RecordFailure(Report& report, long code, const std::string& kind,
                          const std::string& message) {
    if (report.error.empty())
        report.error = message;
    ++report.errors[kind];
    // The error channel reads its text a second time as a format.
    std::string text;
    for (const char c : message)
        text += c == '%' ? std::string("%%") : std::string(1, c);
    DUNXError::Printf("%s", text.c_str());
    return code;
}

} // namespace dunx::translator

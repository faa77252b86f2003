#include "ObjWriter.h"

#include "TranslationError.h"
#include "Units.h"

#include "System.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXTaskEvent.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <unistd.h>

namespace dunx::translator {
namespace {

// Lines between two abort polls and progress reports.
constexpr long long kLinesPerPoll = 1 << 16;

TranslationError unwritable(const std::string& path, const char* doing, int error) {
    return TranslationError(DUNI_E_FILE_SAVE, "unwritable output",
                            path + ": cannot " + doing + ": " + std::strerror(error));
}

// A file written under a temporary name beside its final one, through one buffer.
class PendingFile {
public:
    explicit PendingFile(const std::string& path) : m_Path(path), m_Buffer(1 << 20) {
        const std::size_t slash = path.find_last_of(dunx::driver::system::kPathSeparators);
        const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
        const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
        for (int attempt = 0; m_Descriptor < 0; ++attempt) {
            m_Temporary = folder + "." + name + ".dunx-" +
                          std::to_string(dunx::driver::system::ProcessId()) + "-" +
                          std::to_string(attempt) + ".tmp";
            m_Descriptor = dunx::driver::system::CreateNewFile(m_Temporary);
            if (m_Descriptor < 0 && (errno != EEXIST || attempt == 100))
                throw unwritable(path, "create a file in its folder", errno);
        }
    }
    ~PendingFile() {
        if (m_Descriptor >= 0)
            ::close(m_Descriptor);
        if (!m_Temporary.empty())
            ::unlink(m_Temporary.c_str());
    }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    // Room for at least `count` more characters.
    char* Reserve(std::size_t count) {
        if (m_Buffer.size() - m_Used < count)
            flush();
        return m_Buffer.data() + m_Used;
    }
    void Commit(char* end) { m_Used = static_cast<std::size_t>(end - m_Buffer.data()); }
    void Put(const std::string& text) {
        for (std::size_t done = 0; done < text.size();) {
            char* at = Reserve(1);
            const std::size_t count = std::min(text.size() - done, m_Buffer.size() - m_Used);
            std::memcpy(at, text.data() + done, count);
            m_Used += count;
            done += count;
        }
    }

    // Writes what is left and puts the file in its place.
    void Finish() {
        flush();
        const int descriptor = m_Descriptor;
        m_Descriptor = -1;
        if (::close(descriptor) != 0)
            throw unwritable(m_Path, "write", errno);
        if (!dunx::driver::system::MoveIntoPlace(m_Temporary, m_Path))
            throw unwritable(m_Path, "put the written file in place", errno);
        m_Temporary.clear();
    }

private:
    void flush() {
        for (std::size_t done = 0; done < m_Used;) {
            const ssize_t wrote = ::write(m_Descriptor, m_Buffer.data() + done, m_Used - done);
            if (wrote < 0 && errno == EINTR)
                continue;
            if (wrote <= 0)
                throw unwritable(m_Path, "write", wrote < 0 ? errno : ENOSPC);
            done += static_cast<std::size_t>(wrote);
        }
        m_Used = 0;
    }

    std::string m_Path;
    std::string m_Temporary;
    int m_Descriptor = -1;
    std::vector<char> m_Buffer;
    std::size_t m_Used = 0;
};

char* formatIndex(unsigned long long value, char* first, char* last) {
    return std::to_chars(first, last, value).ptr;
}

bool isIdentity(const Component& component) {
    static const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    return std::equal(identity, identity + 9, component.rotation) &&
           component.translation[0] == 0 && component.translation[1] == 0 &&
           component.translation[2] == 0;
}

// Every component names a part, and every part's indices name its vertices.
void checkModel(const Model& model, const std::string& output) {
    std::vector<bool> checked(model.parts.size(), false);
    for (const Component& component : model.components) {
        if (component.part < 0 || static_cast<std::size_t>(component.part) >= model.parts.size())
            throw TranslationError(DUNI_E_INVALID_ARGUMENT, "invalid model",
                                   output + ": component '" + component.name +
                                       "' names no part of the model");
        if (checked[static_cast<std::size_t>(component.part)])
            continue;
        checked[static_cast<std::size_t>(component.part)] = true;
        const Part& part = model.parts[static_cast<std::size_t>(component.part)];
        const std::size_t vertices = part.positions.size() / 3;
        if (part.positions.size() % 3 != 0 || part.indices.size() % 3 != 0 ||
            std::any_of(part.indices.begin(), part.indices.end(),
                        [&](unsigned index) { return index >= vertices; }))
            throw TranslationError(DUNI_E_INVALID_ARGUMENT, "invalid model",
                                   output + ": part '" + part.name +
                                       "' has indices past its vertices");
    }
}

class Writing {
public:
    Writing(const Request& request, const Model& model, Report& report)
        : m_Request(request), m_Model(model), m_Report(report) {}

    void Run() {
        checkModel(m_Model, m_Request.output);
        long long triangles = 0, lines = 0;
        for (const Component& component : m_Model.components) {
            const Part& part = m_Model.parts[static_cast<std::size_t>(component.part)];
            if (!part.indices.empty()) {
                triangles += static_cast<long long>(part.indices.size() / 3);
                lines +=
                    static_cast<long long>(part.indices.size() / 3 + part.positions.size() / 3);
            }
        }
        m_TotalLines = std::max(lines, 1LL);

        PendingFile file(m_Request.output);
        file.Put("# Wavefront OBJ written by dunx from " + oneLine(m_Request.input) + "\n# " +
                 std::to_string(m_Model.components.size()) + " components, " +
                 std::to_string(triangles) + " triangles, lengths in " +
                 UnitName(m_Request.outputUnit) + "\n");
        unsigned long long written = 0; // vertices before the current group
        long long vertices = 0;
        for (const Component& component : m_Model.components) {
            DUNXCallbackShared::IsAborted();
            const Part& part = m_Model.parts[static_cast<std::size_t>(component.part)];
            if (part.indices.empty())
                continue;
            file.Put("g " + oneLine(component.name) + "\n");
            writeVertices(file, component, part);
            writeFaces(file, part, written);
            written += part.positions.size() / 3;
            vertices += static_cast<long long>(part.positions.size() / 3);
        }
        file.Finish();
        DUNXThirdPartyProgressEvent::Fire(1.0);

        m_Report.trianglesWritten = triangles;
        m_Report.vertices = vertices;
        m_Report.hasBox = m_HasBox;
        std::copy(m_Low, m_Low + 3, m_Report.boxMin);
        std::copy(m_High, m_High + 3, m_Report.boxMax);
    }

private:
    static std::string oneLine(std::string text) {
        std::replace_if(
            text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        return text;
    }

    void line() {
        if (++m_Lines % kLinesPerPoll == 0) {
            DUNXCallbackShared::IsAborted();
            DUNXThirdPartyProgressEvent::Fire(double(m_Lines) / double(m_TotalLines));
        }
    }

    void writeVertices(PendingFile& file, const Component& component, const Part& part) {
        const bool identity = isIdentity(component);
        const double* r = component.rotation;
        const double* t = component.translation;
        for (std::size_t v = 0; v < part.positions.size(); v += 3) {
            const float* p = &part.positions[v];
            float xyz[3] = {p[0], p[1], p[2]};
            if (!identity) {
                for (int row = 0; row < 3; ++row) {
                    const double value =
                        r[3 * row] * p[0] + r[3 * row + 1] * p[1] + r[3 * row + 2] * p[2] + t[row];
                    xyz[row] = static_cast<float>(value);
                    if (!std::isfinite(xyz[row]))
                        throw TranslationError(DUNI_E_MODEL_TOO_LARGE, "coordinate overflow",
                                               m_Request.output + ": component '" + component.name +
                                                   "' has a coordinate too large for a float in " +
                                                   UnitName(m_Request.outputUnit));
                }
            }
            char* const start = file.Reserve(64);
            char* at = start;
            *at++ = 'v';
            for (const float value : xyz) {
                *at++ = ' ';
                at = FormatFloat(value, at, start + 64);
            }
            *at++ = '\n';
            file.Commit(at);
            extend(xyz);
            line();
        }
    }

    void writeFaces(PendingFile& file, const Part& part, unsigned long long offset) {
        for (std::size_t i = 0; i < part.indices.size(); i += 3) {
            char* const start = file.Reserve(72);
            char* at = start;
            *at++ = 'f';
            for (int corner = 0; corner < 3; ++corner) {
                *at++ = ' ';
                at = formatIndex(offset + part.indices[i + corner] + 1, at, start + 72);
            }
            *at++ = '\n';
            file.Commit(at);
            line();
        }
    }

    void extend(const float* xyz) {
        for (int axis = 0; axis < 3; ++axis) {
            if (!m_HasBox || xyz[axis] < m_Low[axis])
                m_Low[axis] = xyz[axis];
            if (!m_HasBox || xyz[axis] > m_High[axis])
                m_High[axis] = xyz[axis];
        }
        m_HasBox = true;
    }

    const Request& m_Request;
    const Model& m_Model;
    Report& m_Report;
    long long m_Lines = 0;
    long long m_TotalLines = 1;
    bool m_HasBox = false;
    double m_Low[3] = {0, 0, 0};
    double m_High[3] = {0, 0, 0};
};

} // namespace

char* FormatFloat(float value, char* first, char* last) {
    return std::to_chars(first, last, value + 0.0f).ptr; // + 0 turns -0 into 0
}

long WriteObj(const Request& request, const Model& model, Report& report) {
    try {
        Writing(request, model, report).Run();
        return DUNI_S_SUCCESS;
    } catch (const DUNXAbortException&) {
        if (report.error.empty())
            report.error = "translation of " + request.input + " interrupted by the user";
        ++report.errors["interrupted"];
        return DUNI_A_ABORTED;
    } catch (const TranslationError& fault) {
        return RecordFailure(report, fault.Code(), fault.Kind(), fault.what());
    } catch (const std::bad_alloc&) {
        return RecordFailure(report, DUNI_E_FAIL, "out of memory",
                             request.output + ": out of memory while writing");
    } catch (const std::exception& fault) {
        return RecordFailure(report, DUNI_E_UNEXPECTED, "unexpected",
                             request.output + ": " + fault.what());
    }
}

} // namespace dunx::translator

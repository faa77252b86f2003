#include "DunxTestSupport.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <pty.h>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace dunxtest {

ScratchFolder::ScratchFolder() {
    std::string pattern = "/tmp/dunx-endtoend-XXXXXX";
    if (const char* tmp = std::getenv("TMPDIR"))
        pattern = std::string(tmp) + "/dunx-endtoend-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (::mkdtemp(buffer.data()))
        m_Path = buffer.data();
}

ScratchFolder::~ScratchFolder() {
    if (!m_Path.empty()) {
        // Give back write permission taken away by a test, then remove everything.
        const std::string command = "chmod -R u+rwx '" + m_Path + "' && rm -rf '" + m_Path + "'";
        if (std::system(command.c_str()) != 0)
            std::fprintf(stderr, "could not remove %s\n", m_Path.c_str());
    }
}

std::string RunResult::LastErrorLine() const {
    std::istringstream lines(err);
    std::string line, last;
    while (std::getline(lines, line))
        if (!line.empty())
            last = line;
    return last;
}

namespace {

// In a child process: a clean DUNX environment plus `env`, then dunx.
[[noreturn]] void execDunx(const std::vector<std::string>& args,
                           const std::vector<std::pair<std::string, std::string>>& env) {
    std::vector<std::string> names;
    for (char** entry = environ; *entry; ++entry)
        if (std::strncmp(*entry, "DUNX", 4) == 0)
            names.emplace_back(*entry, std::strcspn(*entry, "="));
    for (const std::string& name : names)
        ::unsetenv(name.c_str());
    for (const auto& [name, value] : env)
        ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(DUNX_PROGRAM));
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    ::execv(DUNX_PROGRAM, argv.data());
    ::_exit(127);
}

} // namespace

pid_t StartDunx(const std::vector<std::string>& args, const std::string& cwd,
                const std::vector<std::pair<std::string, std::string>>& env) {
    const std::string out = cwd + "/.dunx-stdout", err = cwd + "/.dunx-stderr";
    const pid_t pid = ::fork();
    if (pid != 0)
        return pid;
    const int outFd = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int errFd = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (outFd < 0 || errFd < 0 || ::chdir(cwd.c_str()) != 0)
        ::_exit(127);
    ::dup2(outFd, STDOUT_FILENO);
    ::dup2(errFd, STDERR_FILENO);
    execDunx(args, env);
}

RunResult RunDunxOnTerminal(const std::vector<std::string>& args, const std::string& cwd) {
    int terminal = -1;
    const pid_t pid = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (pid == 0) {
        if (::chdir(cwd.c_str()) != 0)
            ::_exit(127);
        execDunx(args, {});
    }
    RunResult result;
    if (pid < 0)
        return result;
    char buffer[4096];
    ssize_t got;
    // The terminal reports an error once the child has closed its side.
    while ((got = ::read(terminal, buffer, sizeof buffer)) > 0)
        result.out.append(buffer, static_cast<std::size_t>(got));
    ::close(terminal);
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

RunResult FinishDunx(pid_t pid, const std::string& cwd) {
    RunResult result;
    int status = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(300);
    while (::waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(pid, SIGKILL);
            ::waitpid(pid, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    else if (WIFSIGNALED(status))
        result.signal = WTERMSIG(status);
    result.out = ReadText(cwd + "/.dunx-stdout");
    result.err = ReadText(cwd + "/.dunx-stderr");
    return result;
}

RunResult RunDunx(const std::vector<std::string>& args, const std::string& cwd,
                  const std::vector<std::pair<std::string, std::string>>& env) {
    return FinishDunx(StartDunx(args, cwd, env), cwd);
}

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

bool FileExists(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0;
}

std::vector<Triangle> Box(const Point& l, const Point& h) {
    const Point c[8] = {{l[0], l[1], l[2]}, {h[0], l[1], l[2]}, {h[0], h[1], l[2]},
                        {l[0], h[1], l[2]}, {l[0], l[1], h[2]}, {h[0], l[1], h[2]},
                        {h[0], h[1], h[2]}, {l[0], h[1], h[2]}};
    const int quads[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                             {2, 3, 7, 6}, {1, 2, 6, 5}, {0, 4, 7, 3}};
    std::vector<Triangle> triangles;
    for (const auto& q : quads) {
        triangles.push_back({c[q[0]], c[q[1]], c[q[2]]});
        triangles.push_back({c[q[0]], c[q[2]], c[q[3]]});
    }
    return triangles;
}

std::vector<Triangle> Tetrahedron(const Point& a, const Point& b, const Point& c, const Point& d) {
    return {{a, c, b}, {a, b, d}, {b, c, d}, {c, a, d}};
}

namespace {

void putFloat(std::string& out, double value) {
    const float f = static_cast<float>(value);
    std::uint32_t bits;
    std::memcpy(&bits, &f, 4);
    for (int i = 0; i < 4; ++i)
        out += static_cast<char>((bits >> (8 * i)) & 0xff);
}

} // namespace

void WriteBinaryStl(const std::string& path, const std::vector<Triangle>& triangles,
                    const std::string& header, long declaredCount) {
    std::string out = header.substr(0, 80);
    out.resize(80, ' ');
    const std::uint32_t count =
        static_cast<std::uint32_t>(declaredCount < 0 ? triangles.size() : declaredCount);
    for (int i = 0; i < 4; ++i)
        out += static_cast<char>((count >> (8 * i)) & 0xff);
    for (const Triangle& t : triangles) {
        for (int i = 0; i < 3; ++i)
            putFloat(out, 0.0); // the normal: readers recompute it
        for (const Point& p : t)
            for (double x : p)
                putFloat(out, x);
        out += std::string(2, '\0');
    }
    WriteText(path, out);
}

void WriteAsciiStl(const std::string& path,
                   const std::vector<std::pair<std::string, std::vector<Triangle>>>& solids) {
    std::ostringstream out;
    out.precision(9);
    for (const auto& [name, triangles] : solids) {
        out << "solid " << name << "\n";
        for (const Triangle& t : triangles) {
            out << "  facet normal 0 0 0\n    outer loop\n";
            for (const Point& p : t)
                out << "      vertex " << p[0] << " " << p[1] << " " << p[2] << "\n";
            out << "    endloop\n  endfacet\n";
        }
        out << "endsolid " << name << "\n";
    }
    WriteText(path, out.str());
}

std::vector<Triangle> ReadStl(const std::string& path) {
    const std::string bytes = ReadText(path);
    std::vector<Triangle> triangles;
    std::uint32_t count = 0;
    if (bytes.size() >= 84)
        std::memcpy(&count, bytes.data() + 80, 4);
    if (bytes.size() >= 84 && bytes.size() == 84 + 50 * static_cast<std::size_t>(count)) {
        for (std::uint32_t i = 0; i < count; ++i) {
            Triangle t;
            for (int corner = 0; corner < 3; ++corner)
                for (int axis = 0; axis < 3; ++axis) {
                    float value;
                    std::memcpy(&value, bytes.data() + 84 + 50 * i + 12 * (corner + 1) + 4 * axis,
                                4);
                    t[corner][axis] = value;
                }
            triangles.push_back(t);
        }
        return triangles;
    }
    std::istringstream words(bytes);
    std::string word;
    std::vector<Point> corners;
    while (words >> word)
        if (word == "vertex") {
            float x, y, z; // STL numbers are floats, as the binary form stores them
            words >> x >> y >> z;
            corners.push_back({x, y, z});
            if (corners.size() == 3) {
                triangles.push_back({corners[0], corners[1], corners[2]});
                corners.clear();
            }
        }
    return triangles;
}

std::size_t ObjGroup::VertexCount() const {
    std::set<long> used;
    for (const auto& face : faces)
        used.insert(face.begin(), face.end());
    return used.size();
}

std::pair<Point, Point> ObjGroup::Box(const std::vector<Point>& vertices) const {
    Point low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (const auto& face : faces)
        for (long index : face)
            for (int i = 0; i < 3; ++i) {
                low[i] = std::min(low[i], vertices[static_cast<std::size_t>(index)][i]);
                high[i] = std::max(high[i], vertices[static_cast<std::size_t>(index)][i]);
            }
    return {low, high};
}

std::size_t ObjFile::FaceCount() const {
    std::size_t count = 0;
    for (const ObjGroup& group : groups)
        count += group.faces.size();
    return count;
}

const ObjGroup* ObjFile::Group(const std::string& name) const {
    for (const ObjGroup& group : groups)
        if (group.name == name)
            return &group;
    return nullptr;
}

bool ObjFile::GroupHasVertex(const ObjGroup& group, const Point& p, double tolerance) const {
    for (const auto& face : group.faces)
        for (long index : face) {
            const Point& v = vertices[static_cast<std::size_t>(index)];
            if (std::fabs(v[0] - p[0]) <= tolerance && std::fabs(v[1] - p[1]) <= tolerance &&
                std::fabs(v[2] - p[2]) <= tolerance)
                return true;
        }
    return false;
}

ObjFile ReadObj(const std::string& path) {
    ObjFile obj;
    std::ifstream in(path);
    if (!in) {
        obj.error = "cannot open " + path;
        return obj;
    }
    std::string line;
    long number = 0;
    while (std::getline(in, line)) {
        ++number;
        std::istringstream words(line);
        std::string keyword;
        if (!(words >> keyword) || keyword[0] == '#')
            continue;
        if (keyword == "v") {
            Point p;
            if (!(words >> p[0] >> p[1] >> p[2])) {
                obj.error = "line " + std::to_string(number) + ": bad vertex";
                return obj;
            }
            obj.vertices.push_back(p);
        } else if (keyword == "g" || keyword == "o") {
            std::string name;
            std::getline(words >> std::ws, name);
            obj.groups.push_back({name, {}});
        } else if (keyword == "f") {
            if (obj.groups.empty())
                obj.groups.push_back({"", {}});
            std::vector<long> face;
            std::string corner;
            while (words >> corner) {
                // "v", "v/vt", "v//vn" or "v/vt/vn"; negative counts from the end.
                long index = std::strtol(corner.c_str(), nullptr, 10);
                index = index < 0 ? static_cast<long>(obj.vertices.size()) + index : index - 1;
                if (index < 0 || index >= static_cast<long>(obj.vertices.size())) {
                    obj.error = "line " + std::to_string(number) + ": vertex out of range";
                    return obj;
                }
                face.push_back(index);
            }
            if (face.size() < 3) {
                obj.error = "line " + std::to_string(number) + ": face of fewer than 3 vertices";
                return obj;
            }
            obj.groups.back().faces.push_back(face);
        }
    }
    return obj;
}

const Json& Json::operator[](const std::string& key) const {
    static const Json none;
    const auto member = members.find(key);
    return member == members.end() ? none : member->second;
}

namespace {

class JsonParser {
public:
    explicit JsonParser(const std::string& text) : m_Text(text) {}

    bool Document(Json& value, std::string& error) {
        if (!Value(value) || (Skip(), m_At != m_Text.size())) {
            error = "bad JSON at offset " + std::to_string(m_At);
            return false;
        }
        return true;
    }

private:
    char Peek() const { return m_At < m_Text.size() ? m_Text[m_At] : '\0'; }
    char Take() { return m_At < m_Text.size() ? m_Text[m_At++] : '\0'; }
    void Skip() {
        while (m_At < m_Text.size() && std::strchr(" \t\r\n", m_Text[m_At]))
            ++m_At;
    }
    bool Literal(const char* word) {
        const std::size_t length = std::strlen(word);
        if (m_Text.compare(m_At, length, word) != 0)
            return false;
        m_At += length;
        return true;
    }
    bool String(std::string& out) {
        if (Take() != '"')
            return false;
        while (m_At < m_Text.size() && m_Text[m_At] != '"') {
            char c = Take();
            if (c == '\\') {
                if (m_At >= m_Text.size())
                    return false;
                c = Take();
                if (c == 'u') {
                    out +=
                        static_cast<char>(std::strtol(m_Text.substr(m_At, 4).c_str(), nullptr, 16));
                    m_At += 4;
                    continue;
                }
                c = c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
            }
            out += c;
        }
        return m_At++ < m_Text.size();
    }
    bool Value(Json& value) {
        Skip();
        if (m_At >= m_Text.size())
            return false;
        const char c = m_Text[m_At];
        if (c == '{') {
            value.kind = Json::Object;
            ++m_At;
            Skip();
            if (Peek() == '}')
                return ++m_At, true;
            for (;;) {
                std::string key;
                Skip();
                if (!String(key))
                    return false;
                Skip();
                if (Take() != ':' || !Value(value.members[key]))
                    return false;
                Skip();
                const char next = Take();
                if (next == '}')
                    return true;
                if (next != ',')
                    return false;
            }
        }
        if (c == '[') {
            value.kind = Json::Array;
            ++m_At;
            Skip();
            if (Peek() == ']')
                return ++m_At, true;
            for (;;) {
                value.items.emplace_back();
                if (!Value(value.items.back()))
                    return false;
                Skip();
                const char next = Take();
                if (next == ']')
                    return true;
                if (next != ',')
                    return false;
            }
        }
        if (c == '"')
            return value.kind = Json::String, String(value.text);
        if (Literal("true"))
            return value.kind = Json::Bool, value.boolean = true, true;
        if (Literal("false"))
            return value.kind = Json::Bool, true;
        if (Literal("null"))
            return true;
        char* end = nullptr;
        value.number = std::strtod(m_Text.c_str() + m_At, &end);
        if (end == m_Text.c_str() + m_At)
            return false;
        m_At = static_cast<std::size_t>(end - m_Text.c_str());
        value.kind = Json::Number;
        return true;
    }

    const std::string& m_Text;
    std::size_t m_At = 0;
};

} // namespace

bool ParseJson(const std::string& text, Json& value, std::string& error) {
    return JsonParser(text).Document(value, error);
}

} // namespace dunxtest

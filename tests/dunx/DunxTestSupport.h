// What the end-to-end tests of dunx need: the program run as a process, STL
// files written byte by byte, and independent readers of STL, OBJ and JSON.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <pty.h>
#include <set>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace dunxtest {

inline std::string ReadText(const std::string& path) { // "" when it cannot be read
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}
inline void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}
inline bool FileExists(const std::string& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

/// A scratch folder, removed with everything in it; `folder / "name"` is a path in it.
struct ScratchFolder {
    ScratchFolder() : m_Path(std::filesystem::temp_directory_path() / "dunx-endtoend-XXXXXX") {
        EXPECT_NE(::mkdtemp(m_Path.data()), nullptr) << m_Path;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::string& Path() const { return m_Path; }
    std::string operator/(const std::string& name) const { return m_Path + "/" + name; }
    std::string m_Path;
};

using Args = std::vector<std::string>;
using Env = std::vector<std::pair<std::string, std::string>>;
/// How a run of dunx ended.
struct RunResult {
    int exitCode = -1; ///< -1 when it did not exit normally
    int signal = 0;    ///< the signal that ended it, else 0
    std::string out, err;
    std::string LastErrorLine() const { // the last non-empty line of standard error
        const std::string text = err.substr(0, err.find_last_not_of('\n') + 1);
        return text.substr(text.rfind('\n') + 1);
    }
};

/// In a child process: dunx in folder `cwd`, with every DUNX* variable of the
/// test's environment removed and `env` added; ended by an alarm after 300 s.
[[noreturn]] inline void ExecDunx(const Args& args, const std::string& cwd, const Env& env) {
    std::vector<std::string> names;
    for (char** entry = environ; *entry; ++entry)
        if (std::strncmp(*entry, "DUNX", 4) == 0)
            names.emplace_back(*entry, std::strcspn(*entry, "="));
    for (const std::string& name : names)
        ::unsetenv(name.c_str());
    for (const auto& [name, value] : env)
        ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv = {const_cast<char*>(DUNX_PROGRAM)};
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    ::alarm(300);
    if (::chdir(cwd.c_str()) == 0)
        ::execv(DUNX_PROGRAM, argv.data());
    ::_exit(127);
}
/// Starts dunx as `ExecDunx` does, without waiting: its standard output and error
/// go to files in `cwd`, or with `terminal` to a new pseudo-terminal, its other side.
inline pid_t StartDunx(const Args& args, const std::string& cwd, const Env& env = {},
                       int* terminal = nullptr) {
    const pid_t pid = terminal ? ::forkpty(terminal, nullptr, nullptr, nullptr) : ::fork();
    if (pid == 0 && !terminal) {
        ::dup2(::open((cwd + "/.dunx-out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 1);
        ::dup2(::open((cwd + "/.dunx-err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
    }
    if (pid == 0)
        ExecDunx(args, cwd, env);
    return pid;
}
/// Waits for a dunx started with `StartDunx` and collects its output; all of it
/// in `out` when it went to `terminal`.
inline RunResult FinishDunx(pid_t pid, const std::string& cwd, int terminal = -1) {
    std::string shown;
    char buffer[4096];
    // The terminal reports an error once the child has closed its side.
    for (ssize_t got; terminal >= 0 && (got = ::read(terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<std::size_t>(got));
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (terminal >= 0)
        ::close(terminal);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            terminal >= 0 ? shown : ReadText(cwd + "/.dunx-out"),
            terminal >= 0 ? "" : ReadText(cwd + "/.dunx-err")};
}
inline RunResult RunDunx(const Args& args, const std::string& cwd, const Env& env = {}) {
    return FinishDunx(StartDunx(args, cwd, env), cwd);
}
inline RunResult RunDunxOnTerminal(const Args& args, const std::string& cwd) {
    int terminal = -1;
    const pid_t pid = StartDunx(args, cwd, {}, &terminal);
    return FinishDunx(pid, cwd, terminal);
}

/// Test failures for each of `pieces` that `text` does not hold.
inline void ExpectHas(const std::string& text, const std::vector<std::string>& pieces) {
    for (const std::string& piece : pieces)
        EXPECT_NE(text.find(piece), std::string::npos) << "'" << piece << "' not in:\n" << text;
}

using Point = std::array<double, 3>;
using Triangle = std::array<Point, 3>;
using Mesh = std::vector<Triangle>;

inline Mesh Box(const Point& l, const Point& h) { // 12 triangles facing out
    // Corner i takes the high side on the axes of its bits: x 1, y 2, z 4.
    const auto c = [&](int i) {
        return Point{i & 1 ? h[0] : l[0], i & 2 ? h[1] : l[1], i & 4 ? h[2] : l[2]};
    };
    const int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                             {3, 2, 6, 7}, {1, 3, 7, 5}, {0, 4, 6, 2}};
    Mesh mesh;
    for (const auto& q : quads)
        mesh.insert(mesh.end(), {{c(q[0]), c(q[1]), c(q[2])}, {c(q[0]), c(q[2]), c(q[3])}});
    return mesh;
}
inline Mesh Tetrahedron(const Point& a, const Point& b, const Point& c, const Point& d) {
    return {{a, c, b}, {a, b, d}, {b, c, d}, {c, a, d}};
}
inline Mesh operator+(Mesh a, const Mesh& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// The bytes of a binary STL (little-endian, as the machine's own numbers);
/// `declaredCount` -1 declares the true count.
inline std::string BinaryStl(const Mesh& mesh, const std::string& header = "binary STL",
                             long declaredCount = -1) {
    std::string out = header;
    out.resize(80, ' ');
    const auto count = static_cast<std::uint32_t>(declaredCount < 0 ? mesh.size() : declaredCount);
    out.append(reinterpret_cast<const char*>(&count), 4);
    for (const Triangle& t : mesh) {
        float record[12] = {}; // the normal first, left zero: readers recompute it
        for (int i = 0; i < 9; ++i)
            record[3 + i] = static_cast<float>(t[i / 3][i % 3]);
        out.append(reinterpret_cast<const char*>(record), 48).append(2, '\0');
    }
    return out;
}

/// The text of an ASCII STL of several solids (name, triangles).
inline std::string AsciiStl(const std::vector<std::pair<std::string, Mesh>>& solids) {
    std::ostringstream out;
    out.precision(9);
    for (const auto& [name, mesh] : solids) {
        out << "solid " << name << "\n";
        for (const Triangle& t : mesh) {
            out << "  facet normal 0 0 0\n    outer loop\n";
            for (const Point& p : t)
                out << "      vertex " << p[0] << " " << p[1] << " " << p[2] << "\n";
            out << "    endloop\n  endfacet\n";
        }
        out << "endsolid " << name << "\n";
    }
    return out.str();
}

/// The triangles of a binary or ASCII STL file (binary when its size is 84
/// bytes plus 50 per counted triangle), all solids together.
inline Mesh ReadStl(const std::string& path) {
    const std::string bytes = ReadText(path);
    std::uint32_t count = 0;
    if (bytes.size() >= 84)
        std::memcpy(&count, bytes.data() + 80, 4);
    const bool binary = bytes.size() >= 84 && bytes.size() == 84 + 50 * std::size_t{count};
    std::vector<float> numbers; // STL numbers are floats, as the binary form stores them
    for (std::size_t i = 0; binary && i < count; ++i)
        for (std::size_t at = 84 + 50 * i + 12; at < 84 + 50 * i + 48; at += 4) // past the normal
            std::memcpy(&numbers.emplace_back(), bytes.data() + at, 4);
    std::istringstream words(binary ? "" : bytes);
    std::string word;
    for (float x, y, z; words >> word;)
        if (word == "vertex" && words >> x >> y >> z)
            numbers.insert(numbers.end(), {x, y, z});
    Mesh mesh(numbers.size() / 9);
    for (std::size_t i = 0; i < mesh.size() * 9; ++i)
        mesh[i / 9][i % 9 / 3][i % 3] = numbers[i];
    return mesh;
}

/// A Wavefront OBJ file as an independent reader sees it.
struct ObjGroup {
    std::string name;
    std::vector<std::vector<long>> faces; ///< 0-based indices into ObjFile::vertices
};
struct ObjFile {
    std::string error; ///< "" when the file read well
    std::vector<Point> vertices;
    std::vector<ObjGroup> groups;

    /// The faces of the groups named `name` or `name/...` (a part's solids); all for "".
    ObjGroup Faces(const std::string& name = "") const {
        ObjGroup all{name, {}};
        for (const ObjGroup& group : groups)
            if (name.empty() || group.name == name || group.name.rfind(name + "/", 0) == 0)
                all.faces.insert(all.faces.end(), group.faces.begin(), group.faces.end());
        return all;
    }
    /// The distinct vertices that the faces of `group` use.
    std::vector<Point> Used(const ObjGroup& group) const {
        std::set<long> used;
        for (const auto& face : group.faces)
            used.insert(face.begin(), face.end());
        std::vector<Point> points;
        for (long index : used)
            points.push_back(vertices[static_cast<std::size_t>(index)]);
        return points;
    }
};

inline ObjFile ReadObj(const std::string& path) {
    ObjFile obj;
    std::ifstream in(path);
    obj.error = in ? "" : "cannot open " + path;
    std::string line, keyword;
    for (long number = 1; obj.error.empty() && std::getline(in, line); ++number) {
        std::istringstream words(line);
        const std::string where = "line " + std::to_string(number) + ": ";
        Point p{};
        if (!(words >> keyword) || keyword[0] == '#')
            continue;
        if (keyword == "v") {
            obj.error = words >> p[0] >> p[1] >> p[2] ? "" : where + "bad vertex";
            obj.vertices.push_back(p);
        } else if (keyword == "g" || keyword == "o") {
            std::getline(words >> std::ws, obj.groups.emplace_back().name);
        } else if (keyword == "f") {
            if (obj.groups.empty())
                obj.groups.emplace_back();
            std::vector<long>& face = obj.groups.back().faces.emplace_back();
            // "v", "v/vt", "v//vn" or "v/vt/vn"; negative counts from the end.
            for (std::string corner; words >> corner;) {
                const long index = std::strtol(corner.c_str(), nullptr, 10);
                face.push_back(index < 0 ? static_cast<long>(obj.vertices.size()) + index
                                         : index - 1);
                if (face.back() < 0 || face.back() >= static_cast<long>(obj.vertices.size()))
                    obj.error = where + "vertex out of range";
            }
            obj.error += face.size() < 3 ? where + "face of fewer than 3 vertices" : "";
        }
    }
    return obj;
}
/// The bounding box of `points` (low, high).
inline std::pair<Point, Point> Bounds(const std::vector<Point>& points) {
    Point low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (const Point& p : points)
        for (int i = 0; i < 3; ++i)
            low[i] = std::min(low[i], p[i]), high[i] = std::max(high[i], p[i]);
    return {low, high};
}
/// Test failures for each side of `box` farther than `tolerance` from `low` and `high`.
inline void ExpectBox(const std::pair<Point, Point>& box, const Point& low, const Point& high,
                      double tolerance) {
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(std::fabs(box.first[i] - low[i]) <= tolerance &&
                    std::fabs(box.second[i] - high[i]) <= tolerance)
            << "axis " << i << ": " << box.first[i] << " to " << box.second[i] << ", not " << low[i]
            << " to " << high[i];
}

/// A JSON value as an independent reader sees it.
struct Json {
    enum Kind { Null, Bool, Number, String, Array, Object } kind = Null;
    double number = 0; ///< also 1 or 0 for a Bool
    std::string text;
    std::vector<Json> items;
    std::map<std::string, Json> members;
    const Json& operator[](const std::string& key) const { // null when there is none
        static const Json none;
        const auto member = members.find(key);
        return member == members.end() ? none : member->second;
    }
};

/// One JSON value of `s` from `at` on, by recursive descent; false when it is no JSON.
inline bool ParseJson(const std::string& s, std::size_t& at, Json& value) {
    const auto next = [&] { // the next character that is not white space; '\0' at the end
        at = std::min(s.find_first_not_of(" \t\r\n", at), s.size());
        return s[at];
    };
    const auto string = [&](std::string& out) {
        for (++at; at < s.size() && s[at] != '"'; ++at) {
            char c = s[at];
            if (c == '\\' && ++at < s.size()) {
                // \uXXXX is kept as it stands: no report needs it decoded.
                c = s[at] == 'n' ? '\n' : s[at] == 't' ? '\t' : s[at] == 'r' ? '\r' : s[at];
            }
            out += c;
        }
        return at++ < s.size();
    };
    const auto take = [&](char c) { // true, and past it, when `c` comes next
        const bool found = next() == c;
        at += found;
        return found;
    };
    const char first = next();
    if (take('{') || take('[')) { // members or items up to the closing bracket
        value.kind = first == '{' ? Json::Object : Json::Array;
        const char close = first == '{' ? '}' : ']';
        if (take(close))
            return true;
        do {
            std::string key;
            if (first == '{' && (next() != '"' || !string(key) || !take(':')))
                return false;
            if (!ParseJson(s, at, first == '{' ? value.members[key] : value.items.emplace_back()))
                return false;
        } while (take(','));
        return take(close);
    }
    if (first == '"')
        return value.kind = Json::String, string(value.text);
    for (const char* word : {"true", "false", "null"})
        if (s.compare(at, std::strlen(word), word) == 0) {
            value.kind = first == 'n' ? Json::Null : Json::Bool;
            value.number = first == 't';
            return at += std::strlen(word), true;
        }
    char* end = nullptr;
    value.number = std::strtod(s.c_str() + at, &end);
    value.kind = Json::Number;
    const bool read = end != s.c_str() + at;
    at = static_cast<std::size_t>(end - s.c_str());
    return read;
}
/// The JSON file at `path`; a test failure when it is not one JSON value.
inline Json ReadJson(const std::string& path) {
    const std::string text = ReadText(path);
    Json value;
    std::size_t at = 0;
    EXPECT_TRUE(ParseJson(text, at, value) &&
                text.find_first_not_of(" \t\r\n", at) == std::string::npos)
        << "not one JSON value at offset " << at << ":\n"
        << text;
    return value;
}

} // namespace dunxtest

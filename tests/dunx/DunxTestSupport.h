// What the end-to-end tests of dunx need: the program run as a process, and
// independent readers of its outputs (MeshFiles.h for STL and OBJ, JSON here).
#pragma once

#include "MeshFiles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace dunxtest {

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

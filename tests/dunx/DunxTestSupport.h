// What the end-to-end tests of dunx need: the program run as a process (DunxProcess.h), scratch
// folders, and independent readers of its outputs (MeshFiles.h for STL and OBJ, JSON here).
#pragma once

#include "DunxProcess.h"
#include "MeshFiles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <map>

namespace dunxtest {

inline bool FileExists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// A scratch folder in the system's temporary folder, removed with everything in it;
/// `folder / "name"` is a path in it.
struct ScratchFolder {
    ScratchFolder() {
        // The process number keeps test programs apart, the count the folders of one.
        static int made = 0;
#ifdef _WIN32
        const long process = _getpid();
#else
        const long process = ::getpid();
#endif
        const std::filesystem::path temp = std::filesystem::temp_directory_path();
        std::error_code error;
        do {
            const std::string name =
                "dunx-endtoend-" + std::to_string(process) + "-" + std::to_string(++made);
            m_Path = (temp / name).string();
        } while (!std::filesystem::create_directory(m_Path, error) && !error);
        EXPECT_FALSE(error) << m_Path << ": " << error.message();
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::string& Path() const {
        return m_Path;
    }
    std::string operator/(const std::string& name) const {
        return m_Path + "/" + name;
    }
    std::string m_Path;
};

/// True when the tests run as root, who passes every permission check; never on Windows.
inline bool RunsAsRoot() {
#ifdef _WIN32
    return false;
#else
    return ::geteuid() == 0;
#endif
}

/// A file of the source tree, with a drive on Windows (see DunxProgram).
inline std::string SourceFile(const std::string& relative) {
    return (std::filesystem::absolute(DUNX_SOURCE_DIR) / relative).string();
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
    const std::string text = ReadTextFile(path);
    Json value;
    std::size_t at = 0;
    EXPECT_TRUE(ParseJson(text, at, value) &&
                text.find_first_not_of(" \t\r\n", at) == std::string::npos)
        << "not one JSON value at offset " << at << ":\n"
        << text;
    return value;
}

} // namespace dunxtest

// What the end-to-end tests of dunx need: the program run as a process, STL
// files written byte by byte, and independent readers of OBJ and JSON.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace dunxtest {

/// A scratch folder, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::string& Path() const { return m_Path; }
    /// Path() + "/" + name.
    std::string operator/(const std::string& name) const { return m_Path + "/" + name; }

private:
    std::string m_Path;
};

/// How a run of dunx ended.
struct RunResult {
    int exitCode = -1; ///< -1 when it did not exit normally
    int signal = 0;    ///< the signal that ended it, else 0
    std::string out;
    std::string err;
    /// The last non-empty line of standard error.
    std::string LastErrorLine() const;
};

/// Runs the built dunx with `args` in folder `cwd`, with every DUNX* variable
/// of the test's environment removed and `env` added. Gives up after 300 s.
RunResult RunDunx(const std::vector<std::string>& args, const std::string& cwd,
                  const std::vector<std::pair<std::string, std::string>>& env = {});

/// Runs dunx as `RunDunx` does, with standard output and error on a
/// pseudo-terminal; `out` receives what the terminal showed.
RunResult RunDunxOnTerminal(const std::vector<std::string>& args, const std::string& cwd);

/// Starts dunx as `RunDunx` does, without waiting; its output goes to files in `cwd`.
pid_t StartDunx(const std::vector<std::string>& args, const std::string& cwd,
                const std::vector<std::pair<std::string, std::string>>& env = {});
/// Waits for a process started with `StartDunx` and collects its output.
RunResult FinishDunx(pid_t pid, const std::string& cwd);

/// The whole content of a file ("" when it cannot be read).
std::string ReadText(const std::string& path);
void WriteText(const std::string& path, const std::string& text);
bool FileExists(const std::string& path);

using Point = std::array<double, 3>;
using Triangle = std::array<Point, 3>;

/// The 12 triangles of the box from `low` to `high`.
std::vector<Triangle> Box(const Point& low, const Point& high);
/// The 4 triangles of the tetrahedron with these corners.
std::vector<Triangle> Tetrahedron(const Point& a, const Point& b, const Point& c, const Point& d);

/// A binary STL; `declaredCount` -1 declares the true count.
void WriteBinaryStl(const std::string& path, const std::vector<Triangle>& triangles,
                    const std::string& header = "binary STL from the dunx tests",
                    long declaredCount = -1);
/// An ASCII STL of several solids (name, triangles).
void WriteAsciiStl(const std::string& path,
                   const std::vector<std::pair<std::string, std::vector<Triangle>>>& solids);

/// The triangles of a binary or ASCII STL file (binary when its size is 84
/// bytes plus 50 per counted triangle), all solids together.
std::vector<Triangle> ReadStl(const std::string& path);

/// A Wavefront OBJ file as an independent reader sees it.
struct ObjGroup {
    std::string name;
    std::vector<std::vector<long>> faces; ///< 0-based indices into ObjFile::vertices
    /// Number of distinct vertices the faces use.
    std::size_t VertexCount() const;
    /// Bounding box of the vertices the faces use.
    std::pair<Point, Point> Box(const std::vector<Point>& vertices) const;
};
struct ObjFile {
    std::string error; ///< "" when the file read well
    std::vector<Point> vertices;
    std::vector<ObjGroup> groups;
    std::size_t FaceCount() const;
    const ObjGroup* Group(const std::string& name) const;
    /// True when some vertex used by `group` lies within `tolerance` of `p`.
    bool GroupHasVertex(const ObjGroup& group, const Point& p, double tolerance) const;
};
ObjFile ReadObj(const std::string& path);

/// A JSON value as an independent reader sees it.
struct Json {
    enum Kind { Null, Bool, Number, String, Array, Object } kind = Null;
    bool boolean = false;
    double number = 0;
    std::string text;
    std::vector<Json> items;
    std::map<std::string, Json> members;
    /// The member `key`; a null value when there is none.
    const Json& operator[](const std::string& key) const;
};
/// Parses `text`; false with `error` when it is not one JSON value.
bool ParseJson(const std::string& text, Json& value, std::string& error);

} // namespace dunxtest

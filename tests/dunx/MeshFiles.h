// STL files written byte by byte and an independent reader of OBJ files, shared by the
// end-to-end tests of dunx and the unit tests of its translator.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
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

/// The bytes of a binary STL: `header` padded to 80 bytes, the count (`declaredCount` -1:
/// the true one), then per triangle a zero normal, the corners as floats and no attribute,
/// all little-endian whatever the machine.
inline std::string BinaryStl(const Mesh& mesh, const std::string& header = "binary STL",
                             long declaredCount = -1) {
    std::string out = header.substr(0, 80);
    out.resize(80, ' ');
    const auto put = [&out](std::uint32_t bits) {
        for (int i = 0; i < 4; ++i)
            out += static_cast<char>(bits >> (8 * i) & 0xFF);
    };
    put(static_cast<std::uint32_t>(declaredCount < 0 ? mesh.size() : declaredCount));
    for (const Triangle& t : mesh) {
        out.append(12, '\0'); // readers recompute the normal
        for (const Point& p : t)
            for (const double x : p) {
                const float f = static_cast<float>(x);
                std::uint32_t bits;
                std::memcpy(&bits, &f, 4);
                put(bits);
            }
        out.append(2, '\0');
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

/// A Wavefront OBJ file as an independent reader that knows only v, f, g and comments sees it.
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
        } else if (keyword == "g") {
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
        } else {
            obj.error = where + "not v, f, g or a comment: " + line;
        }
    }
    return obj;
}

} // namespace dunxtest

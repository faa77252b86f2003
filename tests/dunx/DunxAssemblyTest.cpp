// dunx translating assemblies: every placed component read back from the OBJ
// and compared with its part moved as the test itself computes it.
#include "DunxTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <sys/stat.h>

using namespace dunxtest;

namespace {

// A placement: p' = R * (scale * p) + t, in millimetres.
struct Placement {
    double r[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    double scale = 1.0;
    Point t = {0, 0, 0};

    Point operator()(const Point& p) const {
        Point out;
        for (int i = 0; i < 3; ++i)
            out[i] = scale * (r[i][0] * p[0] + r[i][1] * p[1] + r[i][2] * p[2]) + t[i];
        return out;
    }
    // `outer` after this one.
    Placement Then(const Placement& outer) const {
        Placement both;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                both.r[i][j] =
                    outer.r[i][0] * r[0][j] + outer.r[i][1] * r[1][j] + outer.r[i][2] * r[2][j];
        both.scale = scale * outer.scale;
        both.t = outer(t);
        return both;
    }
};

// A turn by `degrees` about the axis `u`, then a move by `t`.
Placement Rotation(Point u, double degrees, Point t, double scale = 1.0) {
    const double length = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    for (double& x : u)
        x /= length;
    const double a = degrees * M_PI / 180, c = std::cos(a), s = std::sin(a);
    const double cross[3][3] = {{0, -u[2], u[1]}, {u[2], 0, -u[0]}, {-u[1], u[0], 0}};
    Placement p;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            p.r[i][j] = (i == j ? c : 0) + s * cross[i][j] + (1 - c) * u[i] * u[j];
    p.scale = scale;
    p.t = t;
    return p;
}

// A quarter or half turn about a coordinate axis (0 x, 1 y, 2 z).
Placement Turn(int axis, int degrees, Point t, double scale = 1.0) {
    Point u = {0, 0, 0};
    u[axis] = 1;
    return Rotation(u, degrees, t, scale);
}

std::vector<Point> Corners(const std::vector<Triangle>& triangles) {
    std::vector<Point> corners;
    for (const Triangle& t : triangles)
        for (const Point& p : t)
            if (std::find(corners.begin(), corners.end(), p) == corners.end())
                corners.push_back(p);
    return corners;
}

// The groups written for the component `name` (one per solid of its part
// file) against the part's triangles moved by `placement`.
void ExpectComponent(const ObjFile& obj, const std::string& name, const std::vector<Triangle>& part,
                     const Placement& placement) {
    SCOPED_TRACE(name);
    ObjGroup all{name, {}};
    for (const ObjGroup& group : obj.groups)
        if (group.name == name || group.name.rfind(name + "/", 0) == 0)
            all.faces.insert(all.faces.end(), group.faces.begin(), group.faces.end());
    ASSERT_FALSE(all.faces.empty()) << "no group for " << name;
    EXPECT_EQ(all.faces.size(), part.size());
    const std::vector<Point> corners = Corners(part);
    EXPECT_EQ(all.VertexCount(), corners.size()) << "welded within the part";
    Point low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};
    for (const Point& corner : corners) {
        const Point moved = placement(corner);
        for (int i = 0; i < 3; ++i)
            low[i] = std::min(low[i], moved[i]), high[i] = std::max(high[i], moved[i]);
    }
    const auto box = all.Box(obj.vertices);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(box.first[i], low[i], 1e-3 * (1 + std::fabs(low[i])));
        EXPECT_NEAR(box.second[i], high[i], 1e-3 * (1 + std::fabs(high[i])));
    }
    const Point moved = placement(corners.back());
    EXPECT_TRUE(obj.GroupHasVertex(all, moved, 1e-3 * (1 + std::fabs(moved[0]))))
        << "(" << moved[0] << ", " << moved[1] << ", " << moved[2] << ") missing";
}

// Millimetres per unit, for the units the tests use.
double Millimetres(const std::string& unit) {
    return unit == "in" ? 25.4 : unit == "cm" ? 10 : unit == "m" ? 1000 : 1;
}

std::vector<double> Numbers(const std::string& text) {
    std::vector<double> numbers;
    std::istringstream in(text);
    std::string piece;
    while (std::getline(in, piece, ','))
        numbers.push_back(std::stod(piece));
    return numbers;
}

// Walks an assembly file the way its keys read (the unit of a file, else of
// the component placing it, else of the assembly above; translations in the
// unit of the assembly that holds them), down to every placed part.
struct Leaf {
    std::string name;
    std::string file;
    Placement toOutput;
};
void Walk(const std::string& path, double aboveUnit, const Placement& toOutput,
          const std::string& prefix, std::vector<Leaf>& leaves) {
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    struct Component {
        std::string name, file, unit, translation = "0,0,0", rotation = "1,0,0,0";
    };
    std::vector<Component> components;
    std::string unit;
    std::istringstream lines(ReadText(path));
    std::string line;
    const auto trim = [](std::string t) {
        t.erase(0, t.find_first_not_of(" \t\r"));
        t.erase(t.find_last_not_of(" \t\r") + 1);
        return t;
    };
    while (std::getline(lines, line)) {
        line = trim(line);
        if (line.empty() || line[0] == '#' || line[0] == ';')
            continue;
        if (line[0] == '[') {
            std::string name = trim(line.substr(1, line.rfind(']') - 1));
            std::replace(name.begin(), name.end(), ' ', '_');
            components.emplace_back();
            components.back().name = name;
            continue;
        }
        const std::string key = trim(line.substr(0, line.find('=')));
        const std::string value = trim(line.substr(line.find('=') + 1));
        if (components.empty()) {
            if (key == "unit")
                unit = value;
        } else {
            Component& c = components.back();
            (key == "file"          ? c.file
             : key == "unit"        ? c.unit
             : key == "translation" ? c.translation
                                    : c.rotation) = value;
        }
    }
    const double ownUnit = unit.empty() ? aboveUnit : Millimetres(unit);
    for (const Component& c : components) {
        const double partUnit = c.unit.empty() ? ownUnit : Millimetres(c.unit);
        const std::vector<double> t = Numbers(c.translation), r = Numbers(c.rotation);
        const bool isAssembly = c.file.size() > 4 && c.file.substr(c.file.size() - 4) == ".cfg";
        double childUnit = partUnit;
        if (isAssembly) {
            const std::string sub = ReadText(folder + c.file);
            const std::size_t at = sub.find("\nunit = ");
            if (at != std::string::npos)
                childUnit = Millimetres(trim(sub.substr(at + 8, sub.find('\n', at + 1) - at - 8)));
        }
        const Placement placement =
            Rotation({r[0], r[1], r[2]}, r[3], {t[0], t[1], t[2]}, childUnit / ownUnit)
                .Then(toOutput);
        if (isAssembly)
            Walk(folder + c.file, childUnit, placement, prefix + c.name + "/", leaves);
        else
            leaves.push_back({prefix + c.name, folder + c.file, placement});
    }
}

} // namespace

TEST(DunxAssembly, PlacementsUnitsAndSubAssembliesCompose) {
    ScratchFolder folder;
    const auto box = Box({0, 0, 0}, {10, 20, 30});
    const auto tetra = Tetrahedron({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    ::mkdir((folder / "parts").c_str(), 0755);
    WriteBinaryStl(folder / "parts/box.stl", box);
    WriteAsciiStl(folder / "parts/tetra.stl", {{"tetra", tetra}});
    // A sub-assembly in millimetres; the tetrahedron is modelled in inches.
    WriteText(folder / "parts/sub.cfg", "assembly = sub\nunit = mm\n"
                                        "[b1]\nfile = tetra.stl\nunit = in\n"
                                        "translation = 100, 0, 0\nrotation = 0, 0, 1, 90\n"
                                        "[a1]\nfile = box.stl\n");
    // The top assembly in centimetres: the box is placed three times in all.
    WriteText(folder / "top.cfg", "assembly = top\nunit = cm\n"
                                  "[first]\nfile = parts/box.stl\nunit = mm\n"
                                  "translation = 5, 0, 0\n"
                                  "[second]\nfile = parts/box.stl\nunit = mm\n"
                                  "translation = 0, 0, 10\nrotation = 1, 0, 0, 90\n"
                                  "[sub]\nfile = parts/sub.cfg\n"
                                  "translation = 0, 10, 0\nrotation = 0, 0, 1, 180\n");
    const RunResult run =
        RunDunx({"translate", "top.cfg", "top.obj", "--report", "r.json"}, folder.Path());
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    const ObjFile obj = ReadObj(folder / "top.obj");
    ASSERT_EQ(obj.error, "");
    EXPECT_EQ(obj.groups.size(), 4u);

    const Placement sub = Turn(2, 180, {0, 100, 0});
    ExpectComponent(obj, "first", box, Turn(0, 0, {50, 0, 0}));
    ExpectComponent(obj, "second", box, Turn(0, 90, {0, 0, 100}));
    ExpectComponent(obj, "sub/a1", box, Turn(0, 0, {0, 0, 0}).Then(sub));
    ExpectComponent(obj, "sub/b1", tetra, Turn(2, 90, {100, 0, 0}, 25.4).Then(sub));

    Json report;
    std::string error;
    ASSERT_TRUE(ParseJson(ReadText(folder / "r.json"), report, error)) << error;
    EXPECT_EQ(report["components"].number, 4);
    EXPECT_EQ(report["trianglesWritten"].number, 3 * 12 + 4);
    EXPECT_EQ(report["vertices"].number, 3 * 8 + 4);
}

TEST(DunxAssembly, BadAssembliesGetOneLineNamingTheFile) {
    struct Row {
        const char* what;
        std::string top;   // top.cfg
        std::string other; // other.cfg
        std::vector<const char*> reason;
    };
    const Row rows[] = {
        {"missing part", "assembly = a\n[p]\nfile = ghost.stl\n", "", {"top.cfg", "ghost.stl"}},
        {"cycle",
         "assembly = a\n[p]\nfile = other.cfg\n",
         "assembly = b\n[q]\nfile = top.cfg\n",
         {"top.cfg", "other.cfg"}},
        {"itself", "assembly = a\n[p]\nfile = top.cfg\n", "", {"top.cfg"}},
        {"unknown unit",
         "assembly = a\nunit = furlong\n[p]\nfile = good.stl\n",
         "",
         {"top.cfg", "furlong"}},
        {"syntax", "assembly = a\n[p\nfile = good.stl\n", "", {"top.cfg", "line 2"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ScratchFolder folder;
        WriteBinaryStl(folder / "good.stl", Box({0, 0, 0}, {1, 1, 1}));
        WriteText(folder / "top.cfg", row.top);
        if (!row.other.empty())
            WriteText(folder / "other.cfg", row.other);
        const RunResult run = RunDunx({"translate", "top.cfg", "out.obj"}, folder.Path());
        EXPECT_EQ(run.signal, 0);
        EXPECT_GT(run.exitCode, 0);
        const std::string line = run.LastErrorLine();
        EXPECT_EQ(line.rfind("dunx: error: ", 0), 0u) << run.err;
        for (const char* word : row.reason)
            EXPECT_NE(line.find(word), std::string::npos) << "'" << word << "' not in " << line;
        EXPECT_FALSE(FileExists(folder / "out.obj"));
        EXPECT_NE(ReadText(folder / "travex_read.log").find("\nRead top.cfg: "), std::string::npos);
    }
}

// The bundled example, read by the test on its own: each placed part's STL
// read back and moved as its assembly files say.
TEST(DunxAssembly, BundledExampleMatchesItsPartsPlaced) {
    const std::string example = std::string(DUNX_SOURCE_DIR) + "/examples/assembly/trolley.cfg";
    ScratchFolder folder;
    const RunResult run = RunDunx({"translate", example, "trolley.obj", "--unit", "m", "--report",
                                   "r.json", "--log-dir", "logs"},
                                  folder.Path());
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    const ObjFile obj = ReadObj(folder / "trolley.obj");
    ASSERT_EQ(obj.error, "");

    std::vector<Leaf> leaves;
    Placement toMetres;
    toMetres.scale = 1.0 / 1000;
    Walk(example, 1.0, toMetres, "", leaves);
    ASSERT_GE(leaves.size(), 6u) << "several parts, one placed more than once";
    std::size_t faces = 0;
    for (const Leaf& leaf : leaves) {
        const std::vector<Triangle> part = ReadStl(leaf.file);
        ExpectComponent(obj, leaf.name, part, leaf.toOutput);
        faces += part.size();
    }
    EXPECT_EQ(obj.FaceCount(), faces);
    // The wheels stand on the ground.
    EXPECT_NEAR(obj.Group("front_axles/left_wheel")->Box(obj.vertices).first[2], 0.0, 1e-6);

    Json report;
    std::string error;
    ASSERT_TRUE(ParseJson(ReadText(folder / "r.json"), report, error)) << error;
    EXPECT_EQ(report["trianglesWritten"].number, static_cast<double>(faces));
    EXPECT_EQ(report["unit"].text, "meter");
    EXPECT_NE(ReadText(folder / "logs/travex_read.log").find("Assembly             : trolley"),
              std::string::npos);
}

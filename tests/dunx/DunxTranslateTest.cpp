// dunx translating good parts and assemblies: the written OBJ read back and compared with the
// input moved as the test computes it; units, report, log files, stage nest, progress bar.
#include "DunxTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

using namespace dunxtest;

TEST(DunxTranslate, BinaryPartIsWeldedMeasuredReportedLoggedAndTimed) {
    ScratchFolder folder;
    WriteText(folder / "box.stl", BinaryStl(Box({0, 0, 0}, {10, 20, 30})));
    std::filesystem::create_directory(folder / "out");
    const RunResult run = RunDunx(
        {"translate", "box.stl", "out/box.obj", "--report", "box.json", "--log-dir", "logs"},
        folder.Path(), {{"DUNXTaskTiming", "1"}});
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    const ObjFile obj = ReadObj(folder / "out/box.obj");
    ASSERT_EQ(obj.error, "");
    ASSERT_EQ(obj.groups.size(), 1u);
    EXPECT_EQ(obj.groups[0].faces.size(), 12u);
    EXPECT_EQ(obj.vertices.size(), 8u) << "the box's corners, welded";
    EXPECT_EQ(obj.Used(obj.groups[0]).size(), 8u);
    ExpectBox(Bounds(obj.Used(obj.groups[0])), {0, 0, 0}, {10, 20, 30}, 0);
    const Json report = ReadJson(folder / "box.json");
    EXPECT_EQ(report["components"].number, 1);
    EXPECT_EQ(report["trianglesRead"].number, 12);
    EXPECT_EQ(report["trianglesWritten"].number, 12);
    EXPECT_EQ(report["vertices"].number, 8);
    EXPECT_EQ(report["exitCode"].kind, Json::Number);
    EXPECT_EQ(report["exitCode"].number, 0);
    EXPECT_EQ(report["unit"].text, "millimeter");
    ASSERT_EQ(report["boundingBox"]["max"].items.size(), 3u);
    EXPECT_EQ(report["boundingBox"]["max"].items[2].number, 30);
    EXPECT_EQ(report["error"].kind, Json::Null);
    // Each direction's log, complete, in the folder asked for and nowhere else.
    ExpectHas(ReadText(folder / "logs/travex_read.log"),
              {"Reading box.stl with ", "Read box.stl: Success (12 triangles, 1 component)\n"});
    ExpectHas(ReadText(folder / "logs/travex_write.log"),
              {"Output File \"out/box.obj\" is Successfully Written",
               "Wrote out/box.obj: Success (12 triangles, 8 vertices"});
    EXPECT_FALSE(FileExists(folder / "travex_read.log"));
    // The console: the nest, then the summary naming where everything is.
    ExpectHas(run.out,
              {"Product              : dunx", "Product Completed Successfully",
               folder / "out/box.obj", folder / "box.json", folder / "logs/travex_write.log"});
    // The timing logger times a task only when both its start and its end came: once each.
    for (const char* stage :
         {"Product", "Conversion", "Options", "Source Document Preprocessing", "Read File",
          "Read Entities", "Translation", "Target Document Postprocessing", "File Write"}) {
        EXPECT_EQ(report["stageSeconds"][stage].kind, Json::Number) << stage;
        const std::size_t at = run.out.find(std::string(stage) + " = ");
        ASSERT_NE(at, std::string::npos) << stage << "\n" << run.out;
        EXPECT_NE(run.out.substr(at, run.out.find('\n', at) - at).find(" 1x"), std::string::npos)
            << stage;
    }
}

TEST(DunxTranslate, ProgressBarIsDrawnOnATerminalOnly) {
    ScratchFolder folder;
    Mesh row;
    for (int i = 0; i < 20000; ++i)
        row = std::move(row) + Box({i * 2.0, 0, 0}, {i * 2.0 + 1, 1, 1});
    WriteText(folder / "row.stl", BinaryStl(row));
    const RunResult piped = RunDunx({"translate", "row.stl", "row.obj"}, folder.Path());
    ASSERT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.err.find('\r'), std::string::npos) << "a bar in a file";
    const RunResult shown = RunDunxOnTerminal({"translate", "row.stl", "row.obj"}, folder.Path());
    ASSERT_EQ(shown.exitCode, 0) << shown.out;
    // The bar is wiped before each line the console prints, and at the end.
    ExpectHas(shown.out, {"% reading", "% writing", "[################################] 100% ",
                          "\r\033[KProduct Completed Successfully"});
    EXPECT_EQ(shown.out.find("] 100% writing\033[K\r\n"), std::string::npos);
    const RunResult off =
        RunDunxOnTerminal({"translate", "row.stl", "row.obj", "--no-progress"}, folder.Path());
    EXPECT_EQ(off.exitCode, 0);
    EXPECT_EQ(off.out.find("\033[K"), std::string::npos);
}

TEST(DunxTranslate, UnitAndTranslatorComeFromTheCommandLineTheOptionsOrTheEnvironment) {
    ScratchFolder folder;
    WriteText(folder / "box.stl", BinaryStl(Box({-50.8, 0, 12.7}, {254, 304.8, 25.4})));
    // A translator by a path longer than the 63 characters of a module name.
    std::string deep = folder.Path();
    while (deep.size() < 100)
        deep += "/a-folder-with-a-long-name";
    std::filesystem::create_directories(deep);
    const std::string program = DUNX_PROGRAM;
    WriteText(deep + "/libcopy.so",
              ReadText(program.substr(0, program.rfind('/')) + "/libdunx_stl2obj.so"));
    struct Case {
        Args args;
        Env env;
        double millimetresPerUnit;
        const char* unit; // as the report names it
    };
    const Case cases[] = {
        {{}, {}, 1.0, "millimeter"},
        {{"--unit", "cm"}, {}, 10.0, "centimeter"},
        {{"-O", "WriteLengthUnit=inch"}, {}, 25.4, "inch"},
        {{"--unit", "m"}, {{"DUNXWriteLengthUnit", "ft"}}, 304.8, "foot"},
        {{"--translator", "dunx_stl2obj", "-u", "in"}, {}, 25.4, "inch"},
        {{"--translator", deep + "/libcopy.so"}, {}, 1.0, "millimeter"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        Args args = {"translate", "box.stl", "box.obj", "--report", "r.json"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        ASSERT_EQ(RunDunx(args, folder.Path(), c.env).exitCode, 0);
        const ObjFile obj = ReadObj(folder / "box.obj");
        ASSERT_EQ(obj.groups.size(), 1u);
        EXPECT_EQ(obj.groups[0].faces.size(), 12u);
        const double k = 1.0 / c.millimetresPerUnit;
        ExpectBox(Bounds(obj.Used(obj.groups[0])), {-50.8 * k, 0, 12.7 * k},
                  {254 * k, 304.8 * k, 25.4 * k}, 1e-4);
        const Json report = ReadJson(folder / "r.json");
        EXPECT_EQ(report["unit"].text, c.unit);
        // The translator asked for, else the bundled one.
        ExpectHas(report["translator"].text,
                  {c.args.size() > 1 && c.args[0] == "--translator" ? c.args[1] : "dunx_stl2obj"});
    }
}

TEST(DunxTranslate, AsciiSolidsABinaryHeaderThatBeginsWithSolidAndDamagedTriangles) {
    ScratchFolder folder;
    WriteText(folder / "two.stl",
              AsciiStl({{"box", Box({0, 0, 0}, {2, 2, 2})},
                        {"tetra", Tetrahedron({5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {5, 0, 1})},
                        {"empty", {}}}));
    WriteText(folder / "solid.stl",
              BinaryStl(Box({1, 2, 3}, {4, 5, 6}), "solid exported by a CAD"));
    Mesh damaged = Box({0, 0, 0}, {1, 1, 1});
    damaged.push_back({Point{0, 0, 0}, Point{1, 1, 1}, Point{2, 2, 2}});   // collinear
    damaged.push_back({Point{3, 3, 3}, Point{3, 3, 3}, Point{4, 4, 4}});   // two equal corners
    damaged.push_back({Point{0, 0, 0}, Point{NAN, 0, 0}, Point{0, 1, 0}}); // not finite
    WriteText(folder / "damaged.stl", BinaryStl(damaged));
    // The count says 20 where the size holds 15: the size wins, with one more warning.
    WriteText(folder / "miscounted.stl", BinaryStl(damaged, "count", 20));
    struct Case {
        const char* file;
        double read, written; // triangles
        Point low, high;
        std::size_t warningKinds;
        double warnings;
    };
    const Case cases[] = {{"two.stl", 16, 16, {0, 0, 0}, {6, 2, 2}, 0, 0},
                          {"solid.stl", 12, 12, {1, 2, 3}, {4, 5, 6}, 0, 0},
                          {"damaged.stl", 15, 12, {0, 0, 0}, {1, 1, 1}, 2, 3},
                          {"miscounted.stl", 15, 12, {0, 0, 0}, {1, 1, 1}, 3, 4}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const RunResult run =
            RunDunx({"translate", c.file, "out.obj", "--report", "r.json"}, folder.Path());
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ObjFile obj = ReadObj(folder / "out.obj");
        ASSERT_EQ(obj.error, "");
        EXPECT_EQ(obj.Faces().faces.size(), c.written);
        ExpectBox(Bounds(obj.Used(obj.Faces())), c.low, c.high, 1e-6);
        const Json report = ReadJson(folder / "r.json");
        EXPECT_EQ(report["trianglesRead"].number, c.read);
        EXPECT_EQ(report["trianglesWritten"].number, c.written);
        double warned = 0;
        for (const auto& [kind, count] : report["warnings"].members)
            warned += count.number;
        EXPECT_EQ(report["warnings"].members.size(), c.warningKinds) << ReadText(folder / "r.json");
        EXPECT_EQ(warned, c.warnings) << ReadText(folder / "r.json");
    }
}

TEST(DunxTranslate, CoordinatesAreWrittenInTheShortestFormThatReadsBack) {
    ScratchFolder folder;
    WriteText(folder / "t.stl", BinaryStl({{Point{0.1, 0.2, 0.3}, Point{1e-7, 123456.7, -2.5},
                                            Point{1.0 / 3.0, 0, 1}}}));
    ASSERT_EQ(RunDunx({"translate", "t.stl", "t.obj"}, folder.Path()).exitCode, 0);
    ExpectHas(ReadText(folder / "t.obj"), {"v 0.1 0.2 0.3\n"});
    const ObjFile obj = ReadObj(folder / "t.obj");
    ASSERT_EQ(obj.vertices.size(), 3u);
    EXPECT_EQ(static_cast<float>(obj.vertices[1][1]), 123456.7f);
    EXPECT_EQ(static_cast<float>(obj.vertices[2][0]), static_cast<float>(1.0 / 3.0));
    EXPECT_EQ(static_cast<float>(obj.vertices[1][0]), 1e-7f);
}

TEST(DunxTranslate, AssimpReadsTheWrittenFileWithTheSameCounts) {
    if (std::system("command -v assimp >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "assimp is not installed (Debian package assimp-utils): "
                        "the written OBJ is not cross-checked with it";
    ScratchFolder folder;
    WriteText(folder / "p.stl", BinaryStl(Box({0, 0, 0}, {3, 2, 1}) +
                                          Tetrahedron({5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {5, 0, 1})));
    ASSERT_EQ(RunDunx({"translate", "p.stl", "p.obj"}, folder.Path()).exitCode, 0);
    const std::string command = "cd '" + folder.Path() + "' && assimp info p.obj > info.txt 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << ReadText(folder / "info.txt");
    const std::string info = ReadText(folder / "info.txt");
    const auto count = [&](const char* label) {
        const std::size_t at = info.find(label);
        return at == std::string::npos ? -1L
                                       : std::strtol(&info[at + std::strlen(label)], nullptr, 10);
    };
    // assimp joins identical positions within each mesh (one per group): the welded counts.
    const ObjFile obj = ReadObj(folder / "p.obj");
    EXPECT_EQ(count("Faces:"), 16) << info;
    EXPECT_EQ(count("Vertices:"), static_cast<long>(obj.Used(obj.Faces()).size())) << info;
    EXPECT_EQ(count("Meshes:"), 1) << info;
    EXPECT_EQ(obj.groups.size(), 1u);
    ExpectHas(info, {"Minimum point      (0.000000 0.000000 0.000000)",
                     "Maximum point      (6.000000 2.000000 1.000000)"});
}

// Where a placement takes a point.
using Placement = std::function<Point(const Point&)>;

// A scaling, a turn by `degrees` about the axis `u` (by Rodrigues' formula), then a move by `t`.
static Placement Rotation(Point u, double degrees, const Point& t, double scale = 1.0) {
    const double length = std::hypot(u[0], u[1], u[2]), a = degrees * M_PI / 180;
    for (double& x : u)
        x /= length;
    return [=](const Point& p) {
        const double c = std::cos(a), s = std::sin(a),
                     dot = u[0] * p[0] + u[1] * p[1] + u[2] * p[2];
        const Point cross = {u[1] * p[2] - u[2] * p[1], u[2] * p[0] - u[0] * p[2],
                             u[0] * p[1] - u[1] * p[0]};
        Point out;
        for (int i = 0; i < 3; ++i)
            out[i] = scale * (p[i] * c + cross[i] * s + u[i] * dot * (1 - c)) + t[i];
        return out;
    };
}

// `inner`, then `outer`.
static Placement Then(Placement inner, Placement outer) {
    return [=](const Point& p) { return outer(inner(p)); };
}

// The groups written for the component `name` (one per solid of its part
// file) against the part's triangles moved by `placement`.
static void ExpectComponent(const ObjFile& obj, const std::string& name, const Mesh& part,
                            const Placement& placement) {
    SCOPED_TRACE(name);
    const ObjGroup faces = obj.Faces(name);
    ASSERT_FALSE(faces.faces.empty()) << "no group for " << name;
    EXPECT_EQ(faces.faces.size(), part.size());
    std::vector<Point> moved;
    for (const Triangle& t : part)
        for (const Point& p : t)
            if (std::find(moved.begin(), moved.end(), placement(p)) == moved.end())
                moved.push_back(placement(p));
    const std::vector<Point> used = obj.Used(faces);
    EXPECT_EQ(used.size(), moved.size()) << "welded within the part";
    const auto [low, high] = Bounds(moved);
    // Floats keep about 7 digits of the largest coordinate.
    const double size =
        std::max({1.0, std::hypot(low[0], low[1], low[2]), std::hypot(high[0], high[1], high[2])});
    ExpectBox(Bounds(used), low, high, 1e-5 * size);
    const Point m = moved.back(); // one vertex of the part, moved, is among the written ones
    double nearest = HUGE_VAL;
    for (const Point& v : used)
        nearest = std::min(nearest, std::hypot(v[0] - m[0], v[1] - m[1], v[2] - m[2]));
    EXPECT_LT(nearest, 1e-5 * size) << "(" << m[0] << ", " << m[1] << ", " << m[2] << ")";
}

// Walks an assembly file as its keys read, down to every placed part, and checks
// each against the OBJ: the unit of a file is its own, else that of the component
// placing it, else that of the assembly above; translations are in the unit of
// the assembly that holds them. `toOutput` takes millimetres in the frame of this
// file to the output. Returns the triangles of the parts, names them in `placed`.
static std::size_t ExpectAssembly(const ObjFile& obj, const std::string& path, double unit,
                                  const Placement& toOutput, const std::string& prefix,
                                  std::vector<std::string>& placed) {
    const auto trim = [](std::string t) {
        t.erase(0, t.find_first_not_of(" \t\r"));
        return t.erase(t.find_last_not_of(" \t\r") + 1);
    };
    // The key = value lines by section, "" before the first.
    std::vector<std::pair<std::string, std::map<std::string, std::string>>> sections(1);
    std::istringstream lines(ReadText(path));
    for (std::string line; std::getline(lines, line);) {
        line = trim(line);
        if (!line.empty() && line[0] == '[') {
            sections.push_back({trim(line.substr(1, line.rfind(']') - 1)), {}});
            std::replace(sections.back().first.begin(), sections.back().first.end(), ' ', '_');
        } else if (!line.empty() && line[0] != '#' && line[0] != ';') {
            sections.back().second[trim(line.substr(0, line.find('=')))] =
                trim(line.substr(line.find('=') + 1));
        }
    }
    const auto millimetres = [](const std::string& u, double otherwise) {
        return u == "in" ? 25.4 : u == "cm" ? 10 : u == "m" ? 1000 : u == "mm" ? 1 : otherwise;
    };
    const double own = millimetres(sections[0].second["unit"], unit);
    std::size_t faces = 0;
    for (auto at = sections.begin() + 1; at != sections.end(); ++at) {
        auto& keys = at->second;
        const std::string file = path.substr(0, path.rfind('/') + 1) + keys["file"];
        const bool isAssembly = file.size() > 4 && file.substr(file.size() - 4) == ".cfg";
        const double partUnit = millimetres(keys["unit"], own);
        double t[3] = {0, 0, 0}, r[4] = {1, 0, 0, 0};
        std::sscanf(keys["translation"].c_str(), "%lf ,%lf ,%lf", &t[0], &t[1], &t[2]);
        std::sscanf(keys["rotation"].c_str(), "%lf ,%lf ,%lf ,%lf", &r[0], &r[1], &r[2], &r[3]);
        const Placement placement =
            Then(Rotation({r[0], r[1], r[2]}, r[3], {t[0] * own, t[1] * own, t[2] * own},
                          isAssembly ? 1 : partUnit),
                 toOutput);
        const std::string name = prefix + at->first;
        if (isAssembly) {
            faces += ExpectAssembly(obj, file, partUnit, placement, name + "/", placed);
        } else {
            const Mesh part = ReadStl(file);
            ExpectComponent(obj, name, part, placement);
            placed.push_back(name);
            faces += part.size();
        }
    }
    return faces;
}

TEST(DunxAssembly, PlacementsUnitsAndSubAssembliesCompose) {
    ScratchFolder folder;
    const Mesh box = Box({0, 0, 0}, {10, 20, 30});
    const Mesh tetra = Tetrahedron({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    std::filesystem::create_directory(folder / "parts");
    WriteText(folder / "parts/box.stl", BinaryStl(box));
    WriteText(folder / "parts/tetra.stl", AsciiStl({{"tetra", tetra}}));
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
    const Placement sub = Rotation({0, 0, 1}, 180, {0, 100, 0});
    ExpectComponent(obj, "first", box, Rotation({1, 0, 0}, 0, {50, 0, 0}));
    ExpectComponent(obj, "second", box, Rotation({1, 0, 0}, 90, {0, 0, 100}));
    ExpectComponent(obj, "sub/a1", box, sub);
    ExpectComponent(obj, "sub/b1", tetra, Then(Rotation({0, 0, 1}, 90, {100, 0, 0}, 25.4), sub));
    const Json report = ReadJson(folder / "r.json");
    EXPECT_EQ(report["components"].number, 4);
    EXPECT_EQ(report["trianglesWritten"].number, 3 * 12 + 4);
    EXPECT_EQ(report["vertices"].number, 3 * 8 + 4);
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
    std::vector<std::string> placed;
    const std::size_t faces =
        ExpectAssembly(obj, example, 1, Rotation({1, 0, 0}, 0, {0, 0, 0}, 1.0 / 1000), "", placed);
    EXPECT_GE(placed.size(), 6u) << "several parts, one placed more than once";
    EXPECT_EQ(obj.Faces().faces.size(), faces);
    // The wheels stand on the ground.
    EXPECT_NEAR(Bounds(obj.Used(obj.Faces("front_axles/left_wheel"))).first[2], 0.0, 1e-6);
    const Json report = ReadJson(folder / "r.json");
    EXPECT_EQ(report["trianglesWritten"].number, static_cast<double>(faces));
    EXPECT_EQ(report["unit"].text, "meter");
    ExpectHas(ReadText(folder / "logs/travex_read.log"), {"Assembly             : trolley"});
}

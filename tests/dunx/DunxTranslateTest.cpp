// dunx translating good parts and assemblies: the written OBJ read back and compared with the
// input moved as the test computes it; units, report, log files, stage nest, progress bar.
#include "DunxTestSupport.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>

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
    const auto number = [&](const char* key) { // NaN, equal to nothing, for a non-number
        return report[key].kind == Json::Number ? report[key].number : NAN;
    };
    EXPECT_EQ(
        std::vector<double>({number("components"), number("trianglesRead"),
                             number("trianglesWritten"), number("vertices"), number("exitCode")}),
        std::vector<double>({1, 12, 12, 8, 0}));
    EXPECT_EQ(report["error"].kind, Json::Null);
    EXPECT_EQ(report["unit"].text, "millimeter");
    ASSERT_EQ(report["boundingBox"]["max"].items.size(), 3u);
    EXPECT_EQ(report["boundingBox"]["max"].items[2].number, 30);
    // Each direction's log, complete, in the folder asked for and nowhere else.
    ExpectHas(ReadTextFile(folder / "logs/travex_read.log"),
              {"Reading box.stl with ", "Read box.stl: Success (12 triangles, 1 component)\n"});
    ExpectHas(ReadTextFile(folder / "logs/travex_write.log"),
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

namespace {

// A row of boxes that takes long enough to draw a bar.
Mesh RowOfBoxes() {
    Mesh row;
    for (int i = 0; i < 20000; ++i)
        row = std::move(row) + Box({i * 2.0, 0, 0}, {i * 2.0 + 1, 1, 1});
    return row;
}

} // namespace

TEST(DunxTranslate, NoProgressBarInAFile) {
    ScratchFolder folder;
    WriteText(folder / "row.stl", BinaryStl(RowOfBoxes()));
    const RunResult piped = RunDunx({"translate", "row.stl", "row.obj"}, folder.Path());
    ASSERT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.err.find('\r'), std::string::npos) << "a bar in a file";
}

TEST(DunxTranslate, ProgressBarIsDrawnOnATerminal) {
#ifdef _WIN32
    GTEST_SKIP() << "a terminal to read back needs a pseudo-terminal: POSIX only";
#else
    ScratchFolder folder;
    WriteText(folder / "row.stl", BinaryStl(RowOfBoxes()));
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
#endif
}

TEST(DunxTranslate, UnitAndTranslatorComeFromTheCommandLineTheOptionsOrTheEnvironment) {
    ScratchFolder folder;
    WriteText(folder / "box.stl", BinaryStl(Box({-50.8, 0, 12.7}, {254, 304.8, 25.4})));
    WriteText(folder / "cm.cfg", "WriteLengthUnit = cm\n");
    // A translator by a path longer than the 63 characters of a module name.
    std::string deep = folder.Path();
    while (deep.size() < 100)
        deep += "/a-folder-with-a-long-name";
    std::filesystem::create_directories(deep);
    const std::filesystem::path module = std::filesystem::absolute(DUNX_MODULE);
    const std::string copy = deep + "/libcopy" + module.extension().string();
    WriteText(copy, ReadText(module.string()));
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
        // The configuration file, then -O, then --unit, then the environment win in turn.
        {{"-c", "cm.cfg"}, {}, 10.0, "centimeter"},
        {{"-c", "cm.cfg", "-O", "WriteLengthUnit=inch"}, {}, 25.4, "inch"},
        {{"-u", "ft", "-O", "WriteLengthUnit=inch", "-c", "cm.cfg"}, {}, 304.8, "foot"},
        {{"--unit", "m"}, {{"DUNXWriteLengthUnit", "ft"}}, 304.8, "foot"},
        {{"--translator", "dunx_stl2obj", "-u", "in"}, {}, 25.4, "inch"},
        {{"--translator", copy}, {}, 1.0, "millimeter"},
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
        // The translator asked for, else the bundled one; a path made whole in the system's
        // own form, which on Windows separates with backslashes only.
        std::string translator =
            c.args.size() > 1 && c.args[0] == "--translator" ? c.args[1] : "dunx_stl2obj";
        if (dunx::test::kWindows)
            std::replace(translator.begin(), translator.end(), '/', '\\');
        ExpectHas(report["translator"].text, {translator});
    }
}

// Installed, the module lies in a folder of its own, which dunx finds from its own folder
// before it looks beside itself, as it does in the build tree.
TEST(DunxTranslate, InstalledDunxLoadsTheModuleOfItsModuleFolder) {
    if (std::string(DUNX_MODULE_FOLDER) == ".")
        GTEST_SKIP() << "modules are installed beside the program here (Windows)";
    namespace fs = std::filesystem;
    ScratchFolder folder;
    const fs::path bin = folder / "usr/bin", module = DUNX_MODULE;
    const fs::path modules = (bin / DUNX_MODULE_FOLDER).lexically_normal();
    fs::create_directories(bin);
    fs::create_directories(modules);
    fs::copy_file(DUNX_PROGRAM, bin / "dunx");
    fs::copy_file(module, modules / module.filename());
    WriteText((bin / module.filename()).string(), "not a module: loading it would fail");
    WriteText(folder / "box.stl", BinaryStl(Box({0, 0, 0}, {1, 2, 3})));
    const RunResult run =
        RunProgram((bin / "dunx").string(),
                   {"translate", "box.stl", "box.obj", "--report", "r.json"}, folder.Path());
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(ReadJson(folder / "r.json")["translator"].text,
              fs::canonical(modules / module.filename()).string());
    EXPECT_EQ(ReadObj(folder / "box.obj").vertices.size(), 8u);
}

// The reading itself is the translator's unit tests' concern: here, its solids and warnings
// reaching the output and the report, and the coordinates written in the shortest form.
TEST(DunxTranslate, AsciiSolidsAndDamagedTrianglesReachTheOutputAndTheReport) {
    ScratchFolder folder;
    WriteText(folder / "two.stl",
              AsciiStl({{"box", Box({0, 0, 0}, {2, 2, 2})},
                        {"tetra", Tetrahedron({5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {5, 0, 1})},
                        {"empty", {}}}));
    Mesh damaged = Box({0, 0, 0}, {1, 1, 1});
    damaged.push_back({Point{0, 0, 0}, Point{1, 1, 1}, Point{2, 2, 2}});   // collinear
    damaged.push_back({Point{3, 3, 3}, Point{3, 3, 3}, Point{4, 4, 4}});   // two equal corners
    damaged.push_back({Point{0, 0, 0}, Point{NAN, 0, 0}, Point{0, 1, 0}}); // not finite
    // The count says 20 where the size holds 15: the size wins, with one more warning.
    WriteText(folder / "damaged.stl", BinaryStl(damaged, "count", 20));
    WriteText(folder / "t.stl", BinaryStl({{Point{0.1, 0.2, 0.3}, Point{1e-7, 123456.7, -2.5},
                                            Point{1.0 / 3.0, 0, 1}}}));
    struct Case {
        const char* file;
        double read, written; // triangles
        Point low, high;
        std::size_t warningKinds;
        double warnings;
    };
    const Case cases[] = {{"two.stl", 16, 16, {0, 0, 0}, {6, 2, 2}, 0, 0},
                          {"damaged.stl", 15, 12, {0, 0, 0}, {1, 1, 1}, 3, 4},
                          {"t.stl", 1, 1, {1e-7, 0, -2.5}, {1.0 / 3.0, 123456.7, 1}, 0, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const RunResult run =
            RunDunx({"translate", c.file, "out.obj", "--report", "r.json"}, folder.Path());
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ObjFile obj = ReadObj(folder / "out.obj");
        ASSERT_EQ(obj.error, "");
        EXPECT_EQ(obj.Faces().faces.size(), c.written);
        ExpectBox(Bounds(obj.Used(obj.Faces())), c.low, c.high, 1e-6 * c.high[1]);
        const Json report = ReadJson(folder / "r.json");
        EXPECT_EQ(report["trianglesRead"].number, c.read);
        EXPECT_EQ(report["trianglesWritten"].number, c.written);
        double warned = 0;
        for (const auto& [kind, count] : report["warnings"].members)
            warned += count.number;
        EXPECT_EQ(report["warnings"].members.size(), c.warningKinds) << ReadText(folder / "r.json");
        EXPECT_EQ(warned, c.warnings) << ReadText(folder / "r.json");
    }
    // Each float of t.stl in the fewest digits that read back as it.
    ExpectHas(ReadText(folder / "out.obj"),
              {"v 0.1 0.2 0.3\n", "v 1e-07 123456.7 -2.5\n", "v 0.33333334 0 1\n"});
}

TEST(DunxTranslate, AssimpReadsTheWrittenFileWithTheSameCounts) {
    if (dunx::test::kWindows)
        GTEST_SKIP() << "the written OBJ is cross-checked with Debian's assimp on Linux only";
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

TEST(DunxAssembly, PlacementsUnitsAndSubAssembliesCompose) {
    ScratchFolder folder;
    std::filesystem::create_directory(folder / "parts");
    WriteText(folder / "parts/box.stl", BinaryStl(Box({0, 0, 0}, {10, 20, 30})));
    WriteText(folder / "parts/tetra.stl",
              AsciiStl({{"tetra", Tetrahedron({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1})}}));
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
    struct Case {
        const char* name;
        std::size_t faces, vertices; // welded within the part
        Point low, high, corner; // in mm; where the box's (10, 0, 0) or the tetrahedron's x goes
    };
    // By hand: a quarter turn about x takes (x, y, z) to (x, -z, y), a half turn about z to
    // (-x, -y, z); 5 cm is 50 mm, 1 in 25.4 mm; the sub-assembly's placement comes last.
    const Case cases[] = {
        {"first", 12, 8, {50, 0, 0}, {60, 20, 30}, {60, 0, 0}},
        {"second", 12, 8, {0, -30, 100}, {10, 0, 120}, {10, 0, 100}},
        {"sub/a1", 12, 8, {-10, 80, 0}, {0, 100, 30}, {-10, 100, 0}},
        {"sub/b1", 4, 4, {-100, 74.6, 0}, {-74.6, 100, 25.4}, {-100, 74.6, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::vector<Point> used = obj.Used(obj.Faces(c.name));
        EXPECT_EQ(obj.Faces(c.name).faces.size(), c.faces);
        EXPECT_EQ(used.size(), c.vertices);
        ExpectBox(Bounds(used), c.low, c.high, 1e-4);
        EXPECT_TRUE(std::any_of(used.begin(), used.end(), [&](const Point& v) {
            return std::hypot(v[0] - c.corner[0], v[1] - c.corner[1], v[2] - c.corner[2]) < 1e-4;
        })) << "the corner is not where the placements take it";
    }
    const Json report = ReadJson(folder / "r.json");
    EXPECT_EQ(report["components"].number, 4);
    EXPECT_EQ(report["trianglesWritten"].number, 3 * 12 + 4);
    EXPECT_EQ(report["vertices"].number, 3 * 8 + 4);
}

// The bundled example: the groups its README lists, the wheels standing on the ground. Its
// placements compose the way PlacementsUnitsAndSubAssembliesCompose checks.
TEST(DunxAssembly, BundledExampleGivesTheGroupsItsReadmeLists) {
    const std::string example = SourceFile("examples/assembly/trolley.cfg");
    ScratchFolder folder;
    const RunResult run = RunDunx({"translate", example, "trolley.obj", "--unit", "m", "--report",
                                   "r.json", "--log-dir", "logs"},
                                  folder.Path());
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    const ObjFile obj = ReadObj(folder / "trolley.obj");
    ASSERT_EQ(obj.error, "");
    std::vector<std::string> groups;
    for (const ObjGroup& group : obj.groups)
        groups.push_back(group.name);
    std::sort(groups.begin(), groups.end());
    EXPECT_EQ(groups, (std::vector<std::string>{
                          "deck", "front_axles/axle", "front_axles/left_wheel",
                          "front_axles/right_wheel", "handle/grip", "handle/posts",
                          "rear_axles/axle", "rear_axles/left_wheel", "rear_axles/right_wheel"}));
    // The four wheels are one part, placed on the ground.
    for (const char* wheel : {"front_axles/left_wheel", "front_axles/right_wheel",
                              "rear_axles/left_wheel", "rear_axles/right_wheel"}) {
        EXPECT_EQ(obj.Faces(wheel).faces.size(), obj.Faces(groups[2]).faces.size()) << wheel;
        EXPECT_NEAR(Bounds(obj.Used(obj.Faces(wheel))).first[2], 0.0, 1e-6) << wheel;
    }
    const Json report = ReadJson(folder / "r.json");
    EXPECT_EQ(report["trianglesWritten"].number, static_cast<double>(obj.Faces().faces.size()));
    EXPECT_EQ(report["unit"].text, "meter");
    ExpectHas(ReadTextFile(folder / "logs/travex_read.log"), {"Assembly             : trolley"});
}

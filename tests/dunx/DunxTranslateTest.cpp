// dunx translating good STL parts: the written OBJ read back and compared with
// the input, the report, the log files and the stage nest.
#include "DunxTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

using namespace dunxtest;

namespace {

void ExpectBox(const std::pair<Point, Point>& box, const Point& low, const Point& high,
               double tolerance) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(box.first[i], low[i], tolerance) << "low " << i;
        EXPECT_NEAR(box.second[i], high[i], tolerance) << "high " << i;
    }
}

Json ReadReport(const std::string& path) {
    Json report;
    std::string error;
    EXPECT_TRUE(ParseJson(ReadText(path), report, error)) << error << "\n" << ReadText(path);
    return report;
}

} // namespace

TEST(DunxTranslate, BinaryPartIsWeldedMeasuredReportedAndLogged) {
    ScratchFolder folder;
    WriteBinaryStl(folder / "box.stl", Box({0, 0, 0}, {10, 20, 30}));
    ASSERT_EQ(::mkdir((folder / "out").c_str(), 0755), 0);
    const RunResult run = RunDunx(
        {"translate", "box.stl", "out/box.obj", "--report", "box.json", "--log-dir", "logs"},
        folder.Path());
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;

    const ObjFile obj = ReadObj(folder / "out/box.obj");
    ASSERT_EQ(obj.error, "");
    ASSERT_EQ(obj.groups.size(), 1u);
    EXPECT_EQ(obj.FaceCount(), 12u);
    EXPECT_EQ(obj.groups[0].VertexCount(), 8u) << "the box's corners, welded";
    EXPECT_EQ(obj.vertices.size(), 8u);
    ExpectBox(obj.groups[0].Box(obj.vertices), {0, 0, 0}, {10, 20, 30}, 0);

    const Json report = ReadReport(folder / "box.json");
    EXPECT_EQ(report["components"].number, 1);
    EXPECT_EQ(report["trianglesRead"].number, 12);
    EXPECT_EQ(report["trianglesWritten"].number, 12);
    EXPECT_EQ(report["vertices"].number, 8);
    EXPECT_EQ(report["unit"].text, "millimeter");
    EXPECT_EQ(report["boundingBox"]["max"].items.size(), 3u);
    EXPECT_EQ(report["boundingBox"]["max"].items[2].number, 30);
    EXPECT_EQ(report["exitCode"].number, 0);
    EXPECT_EQ(report["error"].kind, Json::Null);
    for (const char* stage : {"Options", "Read File", "Translation", "File Write", "Product"})
        EXPECT_EQ(report["stageSeconds"][stage].kind, Json::Number) << stage;

    // Each direction's log, complete, in the folder asked for and nowhere else.
    const std::string readLog = ReadText(folder / "logs/travex_read.log");
    const std::string writeLog = ReadText(folder / "logs/travex_write.log");
    EXPECT_NE(readLog.find("Reading box.stl with "), std::string::npos) << readLog;
    EXPECT_NE(readLog.find("Read box.stl: Success (12 triangles, 1 component)\n"),
              std::string::npos)
        << readLog;
    EXPECT_NE(writeLog.find("Output File \"out/box.obj\" is Successfully Written"),
              std::string::npos)
        << writeLog;
    EXPECT_NE(writeLog.find("Wrote out/box.obj: Success (12 triangles, 8 vertices"),
              std::string::npos);
    EXPECT_FALSE(FileExists(folder / "travex_read.log"));

    // The console: the nest, then the summary naming where everything is.
    EXPECT_NE(run.out.find("Product              : dunx"), std::string::npos);
    EXPECT_NE(run.out.find("Product Completed Successfully"), std::string::npos);
    EXPECT_NE(run.out.find(folder / "out/box.obj"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(folder / "box.json"), std::string::npos);
    EXPECT_NE(run.out.find(folder / "logs/travex_write.log"), std::string::npos);
}

TEST(DunxTranslate, TimingSummaryShowsEveryStageOfTheNestOnce) {
    ScratchFolder folder;
    WriteBinaryStl(folder / "box.stl", Box({0, 0, 0}, {1, 1, 1}));
    const RunResult run =
        RunDunx({"translate", "box.stl", "box.obj"}, folder.Path(), {{"DUNXTaskTiming", "1"}});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // The timing logger times a task only when its start and end both came.
    for (const char* stage :
         {"Product", "Conversion", "Options", "Source Document Preprocessing", "Read File",
          "Translation", "Target Document Postprocessing", "File Write"}) {
        const std::string line = std::string(stage) + " = ";
        const std::size_t at = run.out.find(line);
        ASSERT_NE(at, std::string::npos) << stage << "\n" << run.out;
        const std::size_t end = run.out.find('\n', at);
        EXPECT_NE(run.out.substr(at, end - at).find(" 1x"), std::string::npos) << stage;
    }
}

TEST(DunxTranslate, ProgressBarIsDrawnOnATerminalOnly) {
    ScratchFolder folder;
    std::vector<Triangle> triangles;
    for (int i = 0; i < 20000; ++i)
        for (const Triangle& t : Box({i * 2.0, 0, 0}, {i * 2.0 + 1, 1, 1}))
            triangles.push_back(t);
    WriteBinaryStl(folder / "row.stl", triangles);

    const RunResult piped = RunDunx({"translate", "row.stl", "row.obj"}, folder.Path());
    ASSERT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.err.find('\r'), std::string::npos) << "a bar in a file";

    const RunResult shown = RunDunxOnTerminal({"translate", "row.stl", "row.obj"}, folder.Path());
    ASSERT_EQ(shown.exitCode, 0) << shown.out;
    for (const char* stage : {"% reading", "% writing", "[################################] 100% "})
        EXPECT_NE(shown.out.find(stage), std::string::npos) << stage;
    // The bar is wiped before each line the console prints, and at the end.
    EXPECT_NE(shown.out.find("\r\033[KProduct Completed Successfully"), std::string::npos);
    EXPECT_EQ(shown.out.find("] 100% writing\033[K\r\n"), std::string::npos);

    const RunResult off =
        RunDunxOnTerminal({"translate", "row.stl", "row.obj", "--no-progress"}, folder.Path());
    EXPECT_EQ(off.out.find("\033[K"), std::string::npos);
}

TEST(DunxTranslate, OutputUnitComesFromTheOptionTheCommandLineOrTheEnvironment) {
    struct Row {
        std::vector<std::string> args;
        std::vector<std::pair<std::string, std::string>> env;
        double millimetersPerUnit;
        const char* unit;
    };
    const Row rows[] = {
        {{}, {}, 1.0, "millimeter"},
        {{"--unit", "cm"}, {}, 10.0, "centimeter"},
        {{"-O", "WriteLengthUnit=inch"}, {}, 25.4, "inch"},
        {{"--unit", "m"}, {{"DUNXWriteLengthUnit", "ft"}}, 304.8, "foot"},
    };
    ScratchFolder folder;
    WriteBinaryStl(folder / "box.stl", Box({-50.8, 0, 12.7}, {254, 304.8, 25.4}));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.unit);
        std::vector<std::string> args = {"translate", "box.stl", "box.obj", "--report", "r.json"};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const RunResult run = RunDunx(args, folder.Path(), row.env);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ObjFile obj = ReadObj(folder / "box.obj");
        ASSERT_EQ(obj.groups.size(), 1u);
        const double k = 1.0 / row.millimetersPerUnit;
        ExpectBox(obj.groups[0].Box(obj.vertices), {-50.8 * k, 0, 12.7 * k},
                  {254 * k, 304.8 * k, 25.4 * k}, 1e-4);
        EXPECT_EQ(ReadReport(folder / "r.json")["unit"].text, row.unit);
    }
}

TEST(DunxTranslate, AsciiSolidsAndABinaryHeaderThatBeginsWithSolid) {
    ScratchFolder folder;
    WriteAsciiStl(folder / "two.stl",
                  {{"box", Box({0, 0, 0}, {2, 2, 2})},
                   {"tetra", Tetrahedron({5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {5, 0, 1})},
                   {"empty", {}}});
    WriteBinaryStl(folder / "solid.stl", Box({1, 2, 3}, {4, 5, 6}), "solid exported by a CAD");
    struct Row {
        const char* file;
        std::size_t faces;
        Point low, high;
    };
    for (const Row& row :
         {Row{"two.stl", 16, {0, 0, 0}, {6, 2, 2}}, Row{"solid.stl", 12, {1, 2, 3}, {4, 5, 6}}}) {
        SCOPED_TRACE(row.file);
        const RunResult run = RunDunx({"translate", row.file, "out.obj"}, folder.Path());
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ObjFile obj = ReadObj(folder / "out.obj");
        ASSERT_EQ(obj.error, "");
        EXPECT_EQ(obj.FaceCount(), row.faces);
        Point low{1e9, 1e9, 1e9}, high{-1e9, -1e9, -1e9};
        for (const ObjGroup& group : obj.groups) {
            const auto box = group.Box(obj.vertices);
            for (int i = 0; i < 3; ++i) {
                low[i] = std::min(low[i], box.first[i]);
                high[i] = std::max(high[i], box.second[i]);
            }
        }
        ExpectBox({low, high}, row.low, row.high, 1e-6);
    }
}

TEST(DunxTranslate, DamagedTrianglesAreDroppedWithCountedWarnings) {
    ScratchFolder folder;
    std::vector<Triangle> triangles = Box({0, 0, 0}, {1, 1, 1});
    triangles.push_back({Point{0, 0, 0}, Point{1, 1, 1}, Point{2, 2, 2}}); // collinear
    triangles.push_back({Point{3, 3, 3}, Point{3, 3, 3}, Point{4, 4, 4}}); // two equal corners
    triangles.push_back({Point{0, 0, 0}, Point{NAN, 0, 0}, Point{0, 1, 0}});
    WriteBinaryStl(folder / "damaged.stl", triangles);
    // The count says 20 where the size holds 15: the size wins.
    WriteBinaryStl(folder / "miscounted.stl", triangles, "count", 20);
    for (const char* file : {"damaged.stl", "miscounted.stl"}) {
        SCOPED_TRACE(file);
        const RunResult run =
            RunDunx({"translate", file, "out.obj", "--report", "r.json"}, folder.Path());
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ObjFile obj = ReadObj(folder / "out.obj");
        EXPECT_EQ(obj.FaceCount(), 12u);
        ExpectBox(obj.groups.at(0).Box(obj.vertices), {0, 0, 0}, {1, 1, 1}, 0);
        const Json report = ReadReport(folder / "r.json");
        EXPECT_EQ(report["trianglesRead"].number, 15);
        EXPECT_EQ(report["trianglesWritten"].number, 12);
        double warned = 0;
        for (const auto& [kind, count] : report["warnings"].members)
            warned += count.number;
        // Two degenerate and one non-finite, plus the count for the miscounted file.
        EXPECT_GE(report["warnings"].members.size(), 2u) << ReadText(folder / "r.json");
        EXPECT_EQ(warned, std::string(file) == "damaged.stl" ? 3 : 4)
            << ReadText(folder / "r.json");
    }
}

TEST(DunxTranslate, CoordinatesAreWrittenInTheShortestFormThatReadsBack) {
    ScratchFolder folder;
    WriteBinaryStl(folder / "t.stl",
                   {{Point{0.1, 0.2, 0.3}, Point{1e-7, 123456.7, -2.5}, Point{1.0 / 3.0, 0, 1}}});
    ASSERT_EQ(RunDunx({"translate", "t.stl", "t.obj"}, folder.Path()).exitCode, 0);
    const std::string text = ReadText(folder / "t.obj");
    EXPECT_NE(text.find("v 0.1 0.2 0.3\n"), std::string::npos) << text;
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
    std::vector<Triangle> triangles = Box({0, 0, 0}, {3, 2, 1});
    const auto tetra = Tetrahedron({5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {5, 0, 1});
    triangles.insert(triangles.end(), tetra.begin(), tetra.end());
    WriteBinaryStl(folder / "p.stl", triangles);
    ASSERT_EQ(RunDunx({"translate", "p.stl", "p.obj"}, folder.Path()).exitCode, 0);
    const std::string command = "cd '" + folder.Path() + "' && assimp info p.obj > info.txt 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << ReadText(folder / "info.txt");
    const std::string info = ReadText(folder / "info.txt");
    const ObjFile obj = ReadObj(folder / "p.obj");
    // assimp joins identical positions within each mesh (one per group): the welded counts.
    const auto count = [&](const char* label) {
        const std::size_t at = info.find(label);
        return at == std::string::npos
                   ? -1L
                   : std::strtol(info.c_str() + at + std::strlen(label), nullptr, 10);
    };
    std::size_t vertices = 0;
    for (const ObjGroup& group : obj.groups)
        vertices += group.VertexCount();
    EXPECT_EQ(obj.FaceCount(), 16u);
    EXPECT_EQ(count("Faces:"), static_cast<long>(obj.FaceCount())) << info;
    EXPECT_EQ(count("Vertices:"), static_cast<long>(vertices)) << info;
    EXPECT_EQ(count("Meshes:"), static_cast<long>(obj.groups.size())) << info;
    EXPECT_NE(info.find("Minimum point      (0.000000 0.000000 0.000000)"), std::string::npos)
        << info;
    EXPECT_NE(info.find("Maximum point      (6.000000 2.000000 1.000000)"), std::string::npos)
        << info;
}

TEST(DunxTranslate, TranslatorIsFoundByNameOrByAPathOfAnyLength) {
    ScratchFolder folder;
    WriteBinaryStl(folder / "box.stl", Box({0, 0, 0}, {1, 2, 3}));
    // The library manager keeps module names of at most 63 characters.
    std::string deep = folder.Path();
    while (deep.size() < 100)
        deep += "/a-folder-with-a-long-name";
    ASSERT_EQ(std::system(("mkdir -p '" + deep + "'").c_str()), 0);
    const std::string program = DUNX_PROGRAM;
    const std::string module = program.substr(0, program.rfind('/')) + "/libdunx_stl2obj.so";
    WriteText(deep + "/libcopy.so", ReadText(module));
    for (const std::string& translator : {std::string("dunx_stl2obj"), deep + "/libcopy.so"}) {
        SCOPED_TRACE(translator);
        const RunResult run = RunDunx(
            {"translate", "box.stl", "box.obj", "--translator", translator, "--report", "r.json"},
            folder.Path());
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(ReadObj(folder / "box.obj").FaceCount(), 12u);
        Json report;
        std::string error;
        ASSERT_TRUE(ParseJson(ReadText(folder / "r.json"), report, error));
        EXPECT_NE(report["translator"].text.find(translator), std::string::npos);
    }
}

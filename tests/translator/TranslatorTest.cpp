// The STL-to-OBJ translator through its core library: STL files as exporters write them and
// damaged ones, welding, assemblies with their placements, units and faults, the model read
// with its events and failures, and the OBJ file written, read back by a parser of our own.
#include "dunx/MeshFiles.h"
#include "support/TempDir.h"

#include "AssemblyReader.h"
#include "ModelReader.h"
#include "ObjWriter.h"
#include "StlReader.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXTaskEvent.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <sstream>

using namespace dunx::translator;
using namespace dunxtest;
using dunx::test::TempDir;

namespace {

// Passes when `text` is one line that begins with `prefix`.
testing::AssertionResult OneLine(const std::string& text, const std::string& prefix) {
    if (text.rfind(prefix, 0) == 0 && text.find('\n') == std::string::npos)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << text << "\n  is not one line beginning " << prefix;
}

// What reading `bytes` as an STL file gives: "binary" or "ASCII", " name:triangles" per solid,
// ", kind count" per warning; or "FILE: reason". Checks what holds for any file: each solid's
// unit and file, vertices distinct and used, triangles read = kept + dropped.
std::string Outcome(const TempDir& dir, const std::string& bytes) {
    const std::string file = dir.file("part.stl");
    try {
        dir.write("part.stl", bytes);
        const StlData data = ReadStl(file, DUNIUnitMillimeter, [](std::uint64_t) {});
        std::string outcome = data.binary ? "binary" : "ASCII";
        long long triangles = 0;
        for (const Part& solid : data.solids) {
            outcome += " " + solid.name + ":" + std::to_string(solid.indices.size() / 3);
            triangles += static_cast<long long>(solid.indices.size() / 3);
            EXPECT_EQ(solid.unit, DUNIUnitMillimeter);
            EXPECT_EQ(solid.file, file);
            std::set<std::array<float, 3>> positions;
            for (std::size_t v = 0; v < solid.positions.size(); v += 3)
                positions.insert(
                    {solid.positions[v], solid.positions[v + 1], solid.positions[v + 2]});
            const std::set<unsigned> used(solid.indices.begin(), solid.indices.end());
            EXPECT_EQ(3 * positions.size(), solid.positions.size()) << "welded";
            EXPECT_EQ(3 * used.size(), solid.positions.size()) << "used";
        }
        for (const Note& note : data.notes) {
            outcome += ", " + note.kind + " " + std::to_string(note.count);
            EXPECT_TRUE(OneLine(note.text, file + ": "));
            if (note.kind == "non-finite coordinates" || note.kind == "degenerate triangles")
                triangles += note.count;
        }
        EXPECT_EQ(data.triangles, triangles) << "the kept and the dropped";
        return outcome;
    } catch (const TranslationError& fault) {
        const std::string what = fault.what();
        return what.rfind(file, 0) == 0 ? "FILE" + what.substr(file.size()) : what;
    }
}

// Writes p.stl, a unit box, and `files` into `dir`, and plans its top.cfg.
AssemblyPlan Plan(const TempDir& dir, const std::map<std::string, std::string>& files,
                  std::size_t limit = 1000000) {
    dir.write("p.stl", BinaryStl(Box({0, 0, 0}, {1, 1, 1})));
    for (const auto& [name, text] : files)
        dir.write(name, text);
    return PlanAssembly(dir.file("top.cfg"), DUNIUnitMeter, limit);
}

// `text` with each '$' replaced by the folder's path.
std::string InFolder(std::string text, const TempDir& dir) {
    for (std::size_t at; (at = text.find('$')) != std::string::npos;)
        text.replace(at, 1, dir.path());
    return text;
}

// Keeps what a read announces.
struct Announcements : DUNXEventListener {
    Announcements() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~Announcements() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        names.emplace_back(event.GetEventName() ? event.GetEventName() : "");
        if (event.IsA("DUNXThirdPartyProgressEvent"))
            progress.push_back(static_cast<DUNXThirdPartyProgressEvent&>(event).GetProgress());
        if (event.IsA("DUNXWarningEvent") || event.IsA("DUNXErrorEvent"))
            messages.emplace_back(static_cast<DUNXTextEvent&>(event).GetMessage());
        if (event.IsA("Entity Reading"))
            endResult = static_cast<DUNXEndTaskEvent&>(event).getTaskResult();
    }
    std::vector<std::string> names, messages;
    std::vector<double> progress;
    DUNIResult endResult = DUNI_U_UNDETERMINED;
};

// ReadModel's outcome for `input`.
struct Read {
    explicit Read(const std::string& input, DUNIUnitValue unit = DUNIUnitMillimeter,
                  const DUNXOptions* options = nullptr)
        : result(ReadModel({input, input + ".obj", unit, options}, model, report)) {}
    Model model;
    Report report;
    long result;
};

long FilesIn(const TempDir& dir) { // hidden temporaries too
    return std::distance(std::filesystem::directory_iterator(dir.path()), {});
}

} // namespace

TEST(StlReader, ReadsWhatExportersWriteWarnsOfWhatItDropsAndFailsOnTheRest) {
    const auto box = Box({0, 0, 0}, {1, 2, 3});
    const float inf = INFINITY, nan = NAN;
    Mesh damaged = box;
    damaged.push_back({{{0, 0, 0}, {nan, 0, 0}, {0, 1, 0}}});
    damaged.push_back({{{0, 0, 0}, {1, 0, 0}, {0, -inf, 0}}});
    damaged.push_back({{{9, 9, 9}, {9, 9, 9}, {7, 7, 7}}});     // two corners at one position
    damaged.push_back({{{0, 0, 0}, {-0.0f, 0, 0}, {1, 1, 1}}}); // 0 and -0 are one position
    damaged.push_back({{{0, 0, 0}, {1, 2, 3}, {2, 4, 6}}});     // three corners in a line
    const std::string drops = ":12, non-finite coordinates 2, degenerate triangles 3";
    Mesh grid; // its inner corners shared by six triangles each
    for (float x = 0; x < 60; ++x)
        for (float y = 0; y < 60; ++y) {
            grid.push_back({{{x, y, 0}, {x + 1, y, 0}, {x + 1, y + 1, 0}}});
            grid.push_back({{{x, y, 0}, {x + 1, y + 1, 0}, {x, y + 1, 0}}});
        }
    const std::string facet = "solid a\nfacet normal 0 0 1\nouter loop\n";
    const std::string text = "FILE: not an STL file: text that does not begin with 'solid'";
    struct Row {
        std::string what, bytes, outcome; // a failure's outcome is matched by its beginning
    };
    const Row rows[] = {
        {"binary", BinaryStl(box), "binary part:12"},
        {"binary, header begins with solid", BinaryStl(box, "solid by a CAD"), "binary part:12"},
        {"binary, solid header, no triangle", BinaryStl({}, "solid"), "binary part:0"},
        {"ASCII", AsciiStl({{"box", box}}), "ASCII box:12"},
        {"ASCII, two solids", AsciiStl({{"a", box}, {"b", box}}), "ASCII a:12 b:12"},
        {"ASCII, welded through many growths of the table", AsciiStl({{"g", grid}}),
         "ASCII g:7200"},
        {"ASCII, empty solid after blanks", "\n  solid e\nendsolid e\n", "ASCII e:0"},
        {"ASCII, no names, upper case, no last newline",
         "SOLID\nFACET NORMAL 0 0 0 OUTER LOOP VERTEX 0 0 0 VERTEX 1 0 0 VERTEX 0 1 0 ENDLOOP "
         "ENDFACET\nENDSOLID",
         "ASCII part:1"},
        {"ASCII, CR LF lines, a facet without normal, a quad facet split into a fan",
         "solid x\r\nfacet\r\nouter loop\r\nvertex 0 0 0\r\nvertex 1 0 0\r\nvertex 0 1 0\r\n"
         "endloop\r\nendfacet\r\nfacet normal 0 0 1\r\nouter loop\r\nvertex 0 0 0\r\nvertex +1e0 "
         "0 0\r\nvertex 1 1 0\r\nvertex 0 1 0\r\nendloop\r\nendfacet\r\nendsolid x\r\n",
         "ASCII x:3"},
        // The size wins over a count that disagrees with it.
        {"count above the records", BinaryStl(box, "h", 20), "binary part:12, triangle count 1"},
        {"count below the records", BinaryStl(box, "h", 3), "binary part:12, triangle count 1"},
        {"count of 0", BinaryStl(box, "h", 0), "binary part:12, triangle count 1"},
        {"solid header, wrong count", BinaryStl(box, "solid x", 99),
         "binary part:12, triangle count 1"},
        {"bytes after the triangles", BinaryStl(box) + "junk", "binary part:12, trailing bytes 1"},
        {"text after the last solid", AsciiStl({{"a", box}}) + "trailer\n",
         "ASCII a:12, text after the last solid 1"},
        // to_string prints NaN and infinity as "nan" and "-inf", which the ASCII reader reads.
        {"binary, damaged", BinaryStl(damaged), "binary part" + drops},
        {"ASCII, damaged", AsciiStl({{"d", damaged}}), "ASCII d" + drops},
        {"misspelt", facet + "vertx 0 0 0\n", "FILE: line 4: expected 'vertex' but found 'vertx'"},
        {"not a number", facet + "vertex 0 zero 0\n", "FILE: line 4: 'zero' is not a number"},
        {"two vertices", "solid a\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nendloop\n",
         "FILE: line 6: a facet with 2 vertices; a facet needs three"},
        {"cut in a facet", facet + "vertex 0 0",
         "FILE: line 4: the file ends inside a facet: truncated"},
        {"no endsolid", "solid a\n", "FILE: line 2: the file ends inside a solid (no endsolid)"},
        {"a word without end", "solid a\nfacet " + std::string(5000, 'x'),
         "FILE: line 2: a word of more than 4096 characters: this is not STL text"},
        {"empty", "", "FILE: the file is empty"},
        {"zeros", std::string("\0\0\0", 3), "FILE: too short for an STL file: 3 bytes"},
        {"bytes that are not text are binary", "\x01\x02",
         "FILE: too short for an STL file: 2 bytes"},
        {"a word that only begins with solid", "solidworks part\n", text},
        {"an assembly", "assembly = a\n[x]\nfile = a.stl\n", text},
    };
    TempDir dir;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string outcome = Outcome(dir, row.bytes);
        if (row.outcome.rfind("FILE: ", 0) == 0)
            EXPECT_TRUE(OneLine(outcome, row.outcome));
        else
            EXPECT_EQ(outcome, row.outcome);
    }
}

TEST(StlReader, BinaryFileCutAtAnyByteFailsOrKeepsItsWholeTrianglesExactly) {
    auto triangles = Box({0, 0.1f, 2}, {3, 4, 5.25f});
    // -0 welds with the corner (0, 0.1, 2); a float away from (3, 4, 5.25) does not.
    triangles.push_back({{{-0.0f, 0.1f, 2}, {std::nextafter(3.0f, 4.0f), 4, 5.25f}, {1, 1, 1}}});
    const std::string whole = BinaryStl(triangles, "solid cut");
    TempDir dir;
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        const std::string outcome = Outcome(dir, whole.substr(0, size));
        if (size >= 84 && (size - 84) % 50 == 0) // whole records: the size wins over the count
            EXPECT_EQ(outcome, "binary part:" + std::to_string((size - 84) / 50) +
                                   (size < whole.size() ? ", triangle count 1" : ""));
        else
            EXPECT_TRUE(OneLine(outcome, "FILE: "));
    }
    // The last cut is the whole file.
    const auto none = [](std::uint64_t) {};
    const Part part = ReadStl(dir.file("part.stl"), DUNIUnitMillimeter, none).solids.at(0);
    EXPECT_EQ(part.positions.size(), 3u * 10);
    for (std::size_t i = 0; i < part.indices.size(); ++i)
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(part.positions[3 * part.indices[i] + axis], triangles[i / 3][i % 3][axis]);
    EXPECT_FALSE(std::signbit(part.positions[3 * part.indices[36]])) << "stored as the first +0";
}

TEST(AssemblyReader, PlacementsComposeThroughSubAssembliesWithTheNearestUnit) {
    TempDir dir;
    const std::string top =
        "assembly = top\nunit = Millimetres\n[sub]\nfile = sub.cfg\nunit = ft\n"
        "translation = 100, 0, 0\nrotation = 0, 0, 1, 90\n[again]\nfile = sub.cfg\n"
        "translation = 0, 0, 10\n[bare]\nfile = bare.cfg\nunit = ft\n[c]\nfile = ./p.stl\n"
        "unit = cm\nmatrix = -1, 0, 0, 0, 1, 0, 0, 0, 1\n[d]\nfile = p.stl\n[e]\nfile = p.stl\n"
        "rotation = 0, 0, 2, -90\n[f]\nfile = p.stl\nrotation = 1, 0, 0, 180\n[g]\nfile = p.stl\n"
        "rotation = 0, 1, 0, 450\n[h]\nfile = p.stl\nunit = cm\nrotation = 0, 0, 1, 45\n";
    const AssemblyPlan plan = Plan(
        dir,
        {{"top.cfg", top},
         {"sub.cfg", "assembly = sub\nunit = cm\n[p]\nfile = p.stl\ntranslation = 1, 2, 3\n"
                     "[inches]\nfile = p.stl\nunit = in\n"},
         {"bare.cfg", "assembly = bare\n[p]\nfile = p.stl\n[t]\nfile = p.stl\nunit = thou\n"}});
    EXPECT_EQ(plan.name, "top");
    EXPECT_EQ(plan.unit, DUNIUnitMillimeter) << "its own, not the default";
    EXPECT_EQ(plan.assemblyFiles, 3) << "sub.cfg read once";
    ASSERT_EQ(plan.partFiles.size(), 5u) << "p.stl and ./p.stl, one file, once per unit";
    struct Row {
        std::string name;
        DUNIUnitValue unit;              // of the part file, from the nearest declaration
        std::array<double, 3> point, at; // a point of p.stl and where it goes, in mm
    };
    const Row rows[] = {
        // By hand: (1, 0, 0) cm moved to (2, 2, 3) cm = (20, 20, 30) mm, turned a quarter about z
        // (-20, 20, 30), moved (80, 20, 30); sub.cfg's own cm wins over its component's ft.
        {"sub/p", DUNIUnitCentimeter, {1, 0, 0}, {80, 20, 30}},
        {"sub/inches", DUNIUnitInch, {1, 1, 1}, {74.6, 25.4, 25.4}},
        {"again/p", DUNIUnitCentimeter, {1, 0, 0}, {20, 20, 40}},
        {"again/inches", DUNIUnitInch, {1, 1, 1}, {25.4, 25.4, 35.4}},
        {"bare/p", DUNIUnitFoot, {1, 0, 0}, {304.8, 0, 0}}, // the placing component's unit
        {"bare/t", DUNIUnitMilliinch, {1, 0, 0}, {0.0254, 0, 0}},
        {"c", DUNIUnitCentimeter, {1, 1, 1}, {-10, 10, 10}},
        {"d", DUNIUnitMillimeter, {1, 2, 3}, {1, 2, 3}},  // the unit of the assembly above
        {"e", DUNIUnitMillimeter, {1, 2, 3}, {2, -1, 3}}, // the axis need not be of length 1
        {"f", DUNIUnitMillimeter, {1, 2, 3}, {1, -2, -3}},
        {"g", DUNIUnitMillimeter, {1, 2, 3}, {3, 2, -1}},
        {"h", DUNIUnitCentimeter, {1, 0, 0}, {10 * std::sqrt(0.5), 10 * std::sqrt(0.5), 0}},
    };
    ASSERT_EQ(plan.placements.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Placement& placement = plan.placements[i];
        SCOPED_TRACE(rows[i].name);
        EXPECT_EQ(placement.name, rows[i].name);
        EXPECT_EQ(plan.partFiles.at(std::size_t(placement.partFile)).unit, rows[i].unit);
        for (int r = 0; r < 3; ++r) {
            double x = placement.toTop.GetTranslationElement(r);
            for (int c = 0; c < 3; ++c)
                x += placement.toTop.GetRotationElement(r, c) * rows[i].point[c];
            // Unscaled, quarter turns and whole numbers are exact.
            const double tolerance = rows[i].unit == DUNIUnitMillimeter ? 0 : 1e-9;
            EXPECT_NEAR(x, rows[i].at[r], tolerance) << "coordinate " << r;
        }
    }
}

TEST(ModelReader, APartIsReadInsideItsStageWithProgressAndOneWarningPerKindOfDamage) {
    TempDir dir;
    Mesh triangles;
    for (int i = 0; i < 1000; ++i) // more than one block of records
        for (const Triangle& t : Box({2.0f * i, 0, 0}, {2.0f * i + 1, 1, 1}))
            triangles.push_back(t);
    triangles.push_back({{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}});
    triangles.push_back({{{3, 3, 3}, {3, 3, 3}, {4, 4, 4}}});
    triangles.push_back({{{0, 0, 0}, {NAN, 0, 0}, {0, 1, 0}}});
    dir.write("row.stl", BinaryStl(triangles, "solid row", 20));
    Announcements heard;
    const Read read(dir.file("row.stl"));
    ASSERT_EQ(read.result, DUNI_S_SUCCESS) << read.report.error;
    ASSERT_GE(heard.names.size(), 2u);
    EXPECT_EQ(heard.names.front(), "DUNXStarReadEntitiesTaskEvent");
    EXPECT_EQ(heard.names.back(), "Entity Reading");
    EXPECT_EQ(heard.endResult, DUNI_S_SUCCESS);
    ASSERT_GE(heard.progress.size(), 3u);
    EXPECT_TRUE(std::is_sorted(heard.progress.begin(), heard.progress.end()));
    EXPECT_GT(heard.progress.front(), 0.0);
    EXPECT_EQ(heard.progress.back(), 1.0);
    EXPECT_EQ(read.model.components.at(0).name, "row");
    EXPECT_EQ(read.model.parts.at(0).positions.size(), 8000u * 3);
    EXPECT_EQ(read.report.trianglesRead, 12003);
    EXPECT_EQ(read.report.components, 1);
    const std::map<std::string, int> warnings = {
        {"degenerate triangles", 2}, {"non-finite coordinates", 1}, {"triangle count", 1}};
    EXPECT_EQ(read.report.warnings, warnings);
    ASSERT_EQ(heard.messages.size(), 3u);
    for (const std::string& message : heard.messages)
        EXPECT_TRUE(OneLine(message, dir.file("row.stl") + ": "));
    EXPECT_EQ(std::count(heard.names.begin(), heard.names.end(), "DUNXStartTranslateRepairEvent"),
              2);
    EXPECT_EQ(read.model.header.GetHeaderText(0).ToUtf8(),
              "Input                : " + dir.file("row.stl") +
                  "\nFormat               : binary STL\nSTL Header           : solid row\n"
                  "Stated Triangles     : 20\nUnit                 : millimeter\n");
}

TEST(AssemblyReader, NamesAComponentThatIsNoAssemblyAndStopsARunawayExpansion) {
    struct Row {
        std::string top, kind, message; // top.cfg ("": eight levels); '$' stands for the folder
    };
    const Row rows[] = {
        {"assembly = t\n[notes]\nfile = text.txt\n", "not STL",
         "$/top.cfg: component 'notes': $/text.txt is neither an STL file nor an assembly"},
        {"unit = mm\n[p]\nfile = p.stl\n", "not an assembly", "$/top.cfg: not an assembly: no"},
        // Each level places the next ten times: 10^8 parts, were it expanded.
        {"", "too many components", "$/l7.cfg: component 'c6': more than 5000 components placed"},
    };
    for (const Row& row : rows) {
        TempDir dir;
        std::map<std::string, std::string> files = {{"top.cfg", row.top}, {"text.txt", "notes\n"}};
        for (int level = 0; row.top.empty() && level < 8; ++level) {
            std::string& text = files[level ? "l" + std::to_string(level) + ".cfg" : "top.cfg"];
            text = "assembly = level" + std::to_string(level) + "\n";
            for (int i = 0; i < 10; ++i)
                text += "[c" + std::to_string(i) + "]\nfile = " +
                        (level == 7 ? "p.stl" : "l" + std::to_string(level + 1) + ".cfg") + "\n";
        }
        try {
            Plan(dir, files, 5000);
            ADD_FAILURE() << "no fault";
        } catch (const TranslationError& fault) {
            EXPECT_EQ(fault.Kind(), row.kind);
            EXPECT_TRUE(OneLine(fault.what(), InFolder(row.message, dir)));
        }
    }
}

TEST(ModelReader, BadInputFailsWithOneLineNamingTheFileAndAnEmptyModel) {
    struct Row {
        // The input's text beside p.stl (a box) and sub.cfg (placing top.cfg); "": as it is.
        std::string bytes, kind, message; // the error line: '$' stands for the folder
        std::string input = "top.cfg";
        long result = DUNI_E_INVALID_FILE; // the kind "interrupted" asks for an abort
        const char* unit = nullptr;        // the option /XStl/Import/Unit
        double scale = 0;                  // on success: output millimetres per part unit
    };
    const std::string box = BinaryStl(Box({0, 0, 0}, {1, 1, 1})), syntax = "assembly syntax",
                      p = "assembly = t\n[p]\nfile = p.stl\n", at = "$/top.cfg: component 'p': ";
    const Row rows[] = {
        {"", "", "", "p.stl", DUNI_S_SUCCESS, nullptr, 1},
        {"", "", "", "p.stl", DUNI_S_SUCCESS, "inch", 25.4},
        {"", "", "", "p.stl", DUNI_S_SUCCESS, "Metres", 1000},
        {"assembly = a\n[p]\nfile = p.stl\n", "", "", "a.cfg", DUNI_S_SUCCESS, "inch", 25.4},
        {"", "unknown unit", "option /XStl/Import/Unit: unknown unit 'cubit'", "p.stl",
         DUNI_E_INVALID_ARGUMENT, "cubit"},
        {"", "interrupted", "translation of $/p.stl interrupted", "p.stl", DUNI_A_ABORTED},
        {"", "missing file", "$/none.stl: cannot open", "none.stl", DUNI_E_FILE_NOT_FOUND},
        {box.substr(0, 200), "truncated STL", "$/cut.stl: truncated: it states 12", "cut.stl"},
        {"dear reader\n", "not STL", "$/notes.txt: neither an STL file", "notes.txt"},
        {"solid x\nfacet normal 1 2 facet\n", "not STL", "$/bad.stl: line 2: 'facet' is",
         "bad.stl"},
        {"assembly = t\n[wheel]\nfile = nope.stl\n", "missing file",
         "$/top.cfg: component 'wheel': $/nope.stl: cannot open", "top.cfg", DUNI_E_FILE_NOT_FOUND},
        {p + "unit = furlong\n", "unknown unit", at + "unknown unit 'furlong' (use one of"},
        {"assembly = t\nunit = parsec\n", "unknown unit", "$/top.cfg: unknown unit 'parsec'"},
        {p + "translaton = 1, 2, 3\n", syntax, at + "unknown key 'translaton' (known:"},
        {p + "[p]\nfile = p.stl\n", syntax, at + "the key 'file' is given twice"},
        {p + "translation = 1, 2\n", syntax, at + "'translation' takes 3 numbers, not 2"},
        {p + "rotation = 0, 0, 1, right\n", syntax, at + "'rotation' value 4 'right' is not a"},
        {p + "rotation = 0, 0, 0, 90\n", syntax, at + "the rotation axis is 0, 0, 0"},
        {p + "matrix = 1,0,0, 0,1,0, 0,0,0\n", syntax, at + "the matrix is singular"},
        {p + "rotation = 0,0,1,9\nmatrix = 1,0,0,0,1,0,0,0,1\n", syntax, at + "give 'rotation' or"},
        {"assembly = t\n[p]\nunit = mm\n", syntax, at + "no 'file' names its part or sub-assembly"},
        {"assembly = t\n[p]\nfile p.stl\n", syntax, "$/top.cfg: Incorrect syntax: line 3"},
        {"assembly = t\n[me]\nfile = top.cfg\n", "assembly cycle",
         "$/top.cfg: component 'me': assemblies include each other: $/top.cfg -> $/top.cfg"},
        {"assembly = t\n[s]\nfile = sub.cfg\n", "assembly cycle",
         "$/sub.cfg: component 'back': assemblies include each other: $/top.cfg -> $/sub.cfg -> "
         "$/./top.cfg"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.input + ": " + row.bytes + (row.unit ? row.unit : ""));
        TempDir dir;
        dir.write("p.stl", box);
        dir.write("sub.cfg", "assembly = s\n[back]\nfile = ./top.cfg\n");
        if (!row.bytes.empty())
            dir.write(row.input, row.bytes);
        DUNXOptions options;
        if (row.unit)
            options.AddOption("/XStl/Import/Unit", row.unit);
        Announcements heard;
        if (row.kind == "interrupted")
            DUNXCallbackShared::m_AbortCallback = [] { return true; };
        const Read read(dir.file(row.input), DUNIUnitMillimeter, &options);
        DUNXCallbackShared::m_AbortCallback = nullptr;
        EXPECT_EQ(read.result, row.result);
        EXPECT_EQ(heard.endResult, row.result) << "the read-entities stage closes with it";
        if (row.result == DUNI_S_SUCCESS) {
            EXPECT_EQ(read.report.error, "");
            EXPECT_EQ(read.model.components.at(0).rotation[4], row.scale);
            continue;
        }
        EXPECT_TRUE(OneLine(read.report.error, InFolder(row.message, dir)));
        EXPECT_EQ(read.report.errors, (std::map<std::string, int>{{row.kind, 1}}));
        EXPECT_TRUE(read.model.parts.empty() && read.model.components.empty()) << "a model left";
        // The same line on the error channel; an abort is the user's own doing, not an error.
        const std::string said = heard.messages.empty() ? "" : heard.messages.back();
        EXPECT_EQ(said, row.kind == "interrupted" ? "" : read.report.error);
    }
}

TEST(ObjWriter, FloatsAreWrittenInTheShortestFormThatReadsBack) {
    const float values[] = {0.1f,  1e-7f,       123456.7f,   -0.0f,
                            -2.5f, 16777216.0f, 0.33333334f, 3.4028235e38f};
    const char* texts[] = {"0.1",  "1e-07",    "123456.7",   "0",
                           "-2.5", "16777216", "0.33333334", "3.4028235e+38"}; // one each
    for (std::size_t i = 0; i < std::size(values); ++i) {
        char buffer[16];
        EXPECT_EQ(std::string(buffer, FormatFloat(values[i], buffer, buffer + 16)), texts[i]);
    }
    // Random bit patterns: every finite float reads back exactly, and one digit fewer would not.
    std::mt19937 random(20240601);
    for (int i = 0; i < 200000; ++i) {
        const std::uint32_t bits = random();
        float value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
            continue;
        char buffer[17];
        char* end = FormatFloat(value, buffer, buffer + 16);
        ASSERT_LE(end - buffer, 15);
        *end = '\0';
        ASSERT_EQ(std::strtof(buffer, nullptr), value + 0.0f) << buffer;
        int digits = 0; // significant: from the first digit that is not 0
        for (const char* c = buffer; *c && *c != 'e'; ++c)
            digits += (*c >= '1' && *c <= '9') || (digits > 0 && *c == '0') ? 1 : 0;
        // Fewer significant digits may read back only where a whole number's
        // digits are all needed, and then that form is no shorter.
        char shorter[512]; // room for any %e text, as the compiler counts it
        std::snprintf(shorter, sizeof shorter, "%.*e", digits - 2, double(value));
        if (digits > 1 && std::strtof(shorter, nullptr) == value) {
            ASSERT_EQ(std::strpbrk(buffer, ".e"), nullptr) << buffer << " could be " << shorter;
            ASSERT_GE(std::strlen(shorter), std::strlen(buffer)) << buffer;
        }
    }
}

TEST(ObjWriter, WritesOneGroupPerPlacedPartThatReadsBackAsTheModelInTheOutputUnit) {
    TempDir dir;
    dir.write("p.stl", BinaryStl(Box({0, 0, 0}, {1, 1, 1})));
    dir.write("two.stl", AsciiStl({{"first part", Box({0, 0, 0}, {1, 1, 1})},
                                   {"second", Box({2, 2, 2}, {3, 3, 3})},
                                   {"empty", {}}}));
    dir.write("top.cfg", "assembly = top\nunit = mm\n"
                         "[left wheel]\nfile = p.stl\nunit = in\ntranslation = 0, 0, 254\n"
                         "[right wheel]\nfile = p.stl\nunit = in\nrotation = 0, 0, 1, 90\n"
                         "[pair]\nfile = two.stl\n[left_wheel]\nfile = p.stl\nunit = in\n");
    Read read(dir.file("top.cfg"), DUNIUnitInch);
    ASSERT_EQ(read.result, DUNI_S_SUCCESS) << read.report.error;
    EXPECT_EQ(read.model.parts.size(), 4u) << "p.stl once, two.stl's three solids";
    EXPECT_EQ(read.report.trianglesRead, 36);
    ASSERT_EQ(WriteObj({"model.cfg", dir.file("out.obj"), DUNIUnitInch}, read.model, read.report),
              DUNI_S_SUCCESS);
    EXPECT_EQ(dir.read("out.obj").rfind("# Wavefront OBJ written by dunx from model.cfg\n"
                                        "# 6 components, 60 triangles, lengths in inch\n",
                                        0),
              0u);
    const ObjFile obj = ReadObj(dir.file("out.obj"));
    ASSERT_EQ(obj.error, "");
    // Group names hold no blank, no two are the same, and a part without triangles has none.
    std::vector<std::string> groups;
    for (const ObjGroup& group : obj.groups)
        groups.push_back(group.name);
    EXPECT_EQ(groups, (std::vector<std::string>{"left_wheel", "right_wheel", "pair/first_part",
                                                "pair/second", "left_wheel_2"}));
    ASSERT_EQ(obj.vertices.size(), 8u * 5) << "each group has its own";
    // Each face of each group is its part's triangle, placed by its component.
    std::size_t g = 0;
    for (const Component& component : read.model.components) {
        const Part& part = read.model.parts.at(static_cast<std::size_t>(component.part));
        if (part.indices.empty() || g >= obj.groups.size())
            continue;
        ASSERT_EQ(3 * obj.groups[g].faces.size(), part.indices.size()) << component.name;
        for (std::size_t i = 0; i < part.indices.size(); ++i) {
            const long n = obj.groups[g].faces[i / 3][i % 3];
            EXPECT_TRUE(n >= long(8 * g) && n < long(8 * g + 8)) << "not its own vertex: " << n;
            const float* p = &part.positions[3 * part.indices[i]];
            const double* m = component.rotation;
            for (int r = 0; r < 3; ++r)
                EXPECT_FLOAT_EQ(float(obj.vertices.at(std::size_t(n))[r]),
                                float(m[3 * r] * p[0] + m[3 * r + 1] * p[1] + m[3 * r + 2] * p[2] +
                                      component.translation[r]))
                    << component.name;
        }
        ++g;
    }
    // By hand, in inches: the wheels are unit boxes, the first raised 254 mm = 10 in, the
    // second turned a quarter about z; the pair's second box reaches 3 mm = 3 / 25.4 in.
    EXPECT_EQ(read.model.components.at(3).rotation[0], 1 / 25.4);
    EXPECT_EQ(read.report.trianglesWritten, 60);
    EXPECT_EQ(read.report.vertices, 40);
    ASSERT_TRUE(read.report.hasBox);
    EXPECT_EQ(std::vector<double>(read.report.boxMin, read.report.boxMin + 3),
              (std::vector<double>{-1, 0, 0}));
    EXPECT_EQ(std::vector<double>(read.report.boxMax, read.report.boxMax + 3),
              (std::vector<double>{1, 1, 11}));
    EXPECT_EQ(FilesIn(dir), 4) << "the output beside the input, no temporary left";
}

TEST(ObjWriter, AFailedOrStoppedWriteLeavesNoFileAndTheEarlierOutputAlone) {
    struct Row {
        std::string what, output, kind; // the output in the test's folder; the error's kind
        double scale;                   // of the second placement of the box
        bool badIndex, abort;           // a triangle that points past the box's vertices; an abort
        long result;
    };
    const Row rows[] = {
        {"no folder", "no/out.obj", "unwritable output", 1, false, false, DUNI_E_FILE_SAVE},
        {"abort", "out.obj", "interrupted", 1, false, true, DUNI_A_ABORTED},
        {"overflow", "out.obj", "coordinate overflow", 1e39, false, false, DUNI_E_MODEL_TOO_LARGE},
        {"bad index", "out.obj", "invalid model", 1, true, false, DUNI_E_INVALID_ARGUMENT},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        TempDir dir;
        dir.write("p.stl", BinaryStl(Box({0, 0, 0}, {1, 1, 1})));
        Read read(dir.file("p.stl"));
        read.model.components.push_back(read.model.components.at(0));
        read.model.components[1].rotation[0] = row.scale;
        if (row.badIndex)
            read.model.parts[0].indices.back() = 8;
        dir.write("out.obj", "# an earlier translation\n");
        Report report;
        if (row.abort)
            DUNXCallbackShared::m_AbortCallback = [] { return true; };
        const long result =
            WriteObj({"model.cfg", dir.file(row.output), DUNIUnitInch}, read.model, report);
        DUNXCallbackShared::m_AbortCallback = nullptr;
        EXPECT_EQ(result, row.result);
        EXPECT_EQ(report.errors, (std::map<std::string, int>{{row.kind, 1}}));
        EXPECT_TRUE(OneLine(report.error, row.abort ? "translation of model.cfg interrupted"
                                                    : dir.file(row.output) + ": "));
        EXPECT_EQ(report.trianglesWritten, 0);
        EXPECT_EQ(dir.read("out.obj"), "# an earlier translation\n");
        EXPECT_EQ(FilesIn(dir), 2) << "the input and the earlier output";
    }
}

// The contract between the dunx driver and its translator modules.
//
// The driver is the host: it fires the stage events (product, conversion,
// options, preprocessing, read file, translation, postprocessing, write file),
// opens the per-direction log files and loads the module through
// DUNXLibraryManager. The module reads and writes: inside DunxRead it fires the
// read-entities stage, warnings, repair events and progress, and it polls
// DUNXCallbackShared::IsAborted; inside DunxWrite it writes the file.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNIUnit.h>
#include <dunx/DUNXFileHeader.h>
#include <dunx/DUNXOptions.h>

#include <map>
#include <string>
#include <vector>

namespace dunx::translator {

/// What a translation is asked to do.
struct Request {
    std::string input;                             ///< an STL part or an assembly file
    std::string output;                            ///< the OBJ file to write
    DUNIUnitValue outputUnit = DUNIUnitMillimeter; ///< the unit of the written lengths
    const DUNXOptions* options = nullptr;          ///< the user's options; may be null
};

/// One part: a mesh welded within itself (exactly equal positions are one vertex).
struct Part {
    std::string name;              ///< the component or file name it is known by
    std::string file;              ///< the STL file it was read from
    DUNIUnitValue unit;            ///< the unit of its coordinates
    std::vector<float> positions;  ///< x, y, z per vertex
    std::vector<unsigned> indices; ///< three vertex indices per triangle
};

/// One placement of a part: the part's coordinates mapped into the output unit.
struct Component {
    std::string name;   ///< one OBJ group per component
    int part;           ///< index into Model::parts
    double rotation[9]; ///< row-major 3x3, scale to the output unit included
    double translation[3];
};

/// Everything read from the input.
struct Model {
    std::vector<Part> parts;
    std::vector<Component> components;
    DUNXFileHeader header; ///< printed by the read-file end event
};

/// What the translation found and did, for the console summary and the JSON report.
struct Report {
    int components = 0;
    long long trianglesRead = 0;
    long long trianglesWritten = 0;
    long long vertices = 0; ///< after welding, over all written components
    bool hasBox = false;
    double boxMin[3] = {0, 0, 0}; ///< bounding box of the written geometry, in the output unit
    double boxMax[3] = {0, 0, 0};
    std::map<std::string, int> warnings; ///< kind => count ("degenerate triangles", ...)
    std::map<std::string, int> errors;   ///< kind => count
    std::string error;                   ///< one line naming the file and the reason; "" when none
};

/// Reads `request.input` into `model`; a DUNIResult code.
using ReadFunction = long (*)(const Request& request, Model& model, Report& report);
/// Writes `model` to `request.output`; a DUNIResult code. A failed write leaves no file.
using WriteFunction = long (*)(const Request& request, const Model& model, Report& report);
/// Called by the library manager without arguments when the module is loaded and freed.
using LifecycleFunction = void (*)();

inline constexpr const char* kReadFunction = "DunxRead";
inline constexpr const char* kWriteFunction = "DunxWrite";
inline constexpr const char* kInitFunction = "DunxTranslatorInitialize";
inline constexpr const char* kFinalizeFunction = "DunxTranslatorFinalize";

} // namespace dunx::translator

// Reading assembly files: components that place part files and sub-assemblies.
//
// An assembly file is a configuration file (DUNXCfgFile). Before the first
// section it names the assembly and may give its length unit; each section is
// one component, named by the section; a file named is relative to the
// assembly's folder:
//
//     assembly = trolley
//     unit = mm
//
//     # the unit of the part's own numbers; a translation in this assembly's
//     # unit; a rotation about the axis x, y, z by an angle in degrees
//     [wheel front left]
//     file = parts/wheel.stl
//     unit = in
//     translation = 0, 120, 40
//     rotation = 0, 0, 1, 90
//
// `matrix = 9 numbers` (row by row) may stand instead of `rotation`. A
// component's file is an STL part or another assembly, told apart by content.
#pragma once

#include "DunxTranslator.h"

#include <dunx/DUNXAssemblyComponentTransform.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace dunx::translator {

/// A part file an assembly needs: read once however often it is placed.
struct PartFile {
    std::string path;   ///< as the user can open it: the naming assembly's folder joined with it
    DUNIUnitValue unit; ///< the unit of its coordinates
    std::uint64_t size; ///< bytes, to weigh the progress of reading it
};

/// One placement of a part file.
struct Placement {
    std::string name; ///< the component names from the top down, joined with '/'
    int partFile;     ///< index into `AssemblyPlan::partFiles`
    /// Maps the part's coordinates to the top assembly's, in the top assembly's unit.
    DUNXAssemblyComponentTransform toTop;
};

/// An assembly resolved down to its part files, before any geometry is read.
struct AssemblyPlan {
    std::string name;      ///< the top assembly's name
    DUNIUnitValue unit;    ///< the top assembly's unit
    int assemblyFiles = 0; ///< distinct assembly files read
    std::vector<PartFile> partFiles;
    std::vector<Placement> placements;
};

/// Reads the assembly at `path` and every sub-assembly it names. Units: a
/// file's `unit` key, else the `unit` of the component that placed it, else
/// the unit of the assembly above, else `defaultUnit`. A part file placed with
/// the same unit twice is one `PartFile`.
///
/// Throws `TranslationError` (naming the assembly file and the component) for
/// a file without an `assembly` key (kind "not an assembly"),
/// a syntax error, an unknown or repeated key, a value that is not a number,
/// an unknown unit, a zero rotation axis or a singular matrix, a missing or
/// unreadable file, a file that is neither STL nor an assembly, a cycle of
/// assemblies, and more than `maxPlacements` components met while expanding
/// (an assembly that places a sub-assembly ten times that places ... grows
/// fast). A sub-assembly's own `unit` key wins over the placing component's.
AssemblyPlan PlanAssembly(const std::string& path, DUNIUnitValue defaultUnit,
                          std::size_t maxPlacements = 1000000);

/// The row-major rotation by `degrees` about the axis (x, y, z) (any length
/// but 0). Multiples of 90 degrees give exact 0s and 1s.
void AxisAngleMatrix(const double axis[3], double degrees, double matrix[9]);

} // namespace dunx::translator

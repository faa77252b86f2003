#include "AssemblyReader.h"

#include "StlReader.h"
#include "TranslationError.h"
#include "Units.h"

#include "System.h"

#include <dunx/DUNXCfgFile.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <set>

namespace dunx::translator {
namespace {

constexpr const char* kAssemblyKeys[] = {"assembly", "unit"};
constexpr const char* kComponentKeys[] = {"file", "unit", "translation", "rotation", "matrix"};

TranslationError invalid(const std::string& kind, const std::string& message) {
    return TranslationError(DUNI_E_INVALID_FILE, kind, message);
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of(dunx::driver::system::kPathSeparators);
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// The name `file` written in the assembly at `assembly`, as a path from here.
std::string resolve(const std::string& assembly, const std::string& file) {
    return file.empty() || dunx::driver::system::IsAbsolutePath(file) ? file
                                                                      : folderOf(assembly) + file;
}

// One file's identity, so that a file named by two paths is still one file.
std::string identity(const std::string& path) {
    return dunx::driver::system::ResolvedPath(path);
}

struct ComponentText {
    std::string name;
    std::string file;                               // resolved
    DUNIUnitValue unit = DUNIUnitUnknown;           // unknown: not given
    double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}; // row-major, without the unit scale
    double translation[3] = {0, 0, 0};
};

struct AssemblyText {
    std::string path;
    std::string name;
    DUNIUnitValue unit = DUNIUnitUnknown; // unknown: not given
    std::vector<ComponentText> components;
};

// Reads one section's keys: only known ones, each once.
class SectionReader {
public:
    SectionReader(DUNXCfgFile& file, const DUNXCfgFileSection& section, const std::string& where)
        : m_File(file), m_Section(section), m_Where(where) {}

    void Check(const char* const* known, std::size_t count) const {
        std::set<std::string> seen;
        for (int i = 0; i < m_Section.GetRowCount(); ++i) {
            const std::string key = m_Section.GetKey(i)->GetName().ToUtf8();
            if (std::find_if(known, known + count, [&](const char* k) { return key == k; }) ==
                known + count) {
                std::string list;
                for (std::size_t k = 0; k < count; ++k)
                    list += (k ? ", " : "") + std::string(known[k]);
                throw invalid("assembly syntax",
                              m_Where + "unknown key '" + key + "' (known: " + list + ")");
            }
            if (!seen.insert(key).second)
                throw invalid("assembly syntax", m_Where + "the key '" + key + "' is given twice");
        }
    }

    bool Has(const char* key) const { return m_Section.findKey(key) != nullptr; }

    // The whole value of `key` (commas included), trimmed; "" when missing.
    std::string Text(const char* key) const {
        const DUNXCfgFileKey* found = m_Section.findKey(key);
        return found ? trimmed(found->GetAllValues().ToUtf8()) : std::string();
    }

    // Exactly `count` numbers; false when the key is missing.
    bool Numbers(const char* key, double* values, int count) const {
        const DUNXCfgFileKey* found = m_Section.findKey(key);
        if (!found)
            return false;
        if (found->GetNumValues() != count)
            throw invalid("assembly syntax", m_Where + "'" + key + "' takes " +
                                                 std::to_string(count) + " numbers, not " +
                                                 std::to_string(found->GetNumValues()));
        const char* section = *m_Section.GetName() ? m_Section.GetName() : nullptr;
        for (int i = 0; i < count; ++i) {
            if (!m_File.GetDouble(key, values[i], i, section))
                throw invalid("assembly syntax",
                              m_Where + "'" + key + "' value " + std::to_string(i + 1) + " '" +
                                  trimmed(found->GetValue(i)->ToUtf8()) + "' is not a number");
        }
        return true;
    }

    DUNIUnitValue Unit() const {
        if (!Has("unit"))
            return DUNIUnitUnknown;
        const std::string text = Text("unit");
        const DUNIUnitValue unit = ParseLengthUnit(text);
        if (unit == DUNIUnitUnknown)
            throw invalid("unknown unit", m_Where + "unknown unit '" + text + "' (use one of " +
                                              KnownLengthUnits() + ")");
        return unit;
    }

private:
    DUNXCfgFile& m_File;
    const DUNXCfgFileSection& m_Section;
    std::string m_Where;
};

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::unique_ptr<DUNXCfgFile> loadConfiguration(const std::string& path) {
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "r"));
    if (!file)
        throw TranslationError(errno == ENOENT ? DUNI_E_FILE_NOT_FOUND : DUNI_E_FILE_OPEN,
                               errno == ENOENT ? "missing file" : "unreadable file",
                               path + ": cannot open: " + std::strerror(errno));
    auto configuration = std::make_unique<DUNXCfgFile>();
    configuration->Load(file.get());
    return configuration;
}

void readPlacement(const SectionReader& keys, ComponentText& component, const std::string& where) {
    keys.Numbers("translation", component.translation, 3);
    if (keys.Has("rotation") && keys.Has("matrix"))
        throw invalid("assembly syntax", where + "give 'rotation' or 'matrix', not both");
    double rotation[4];
    if (keys.Numbers("rotation", rotation, 4)) {
        if (rotation[0] == 0 && rotation[1] == 0 && rotation[2] == 0)
            throw invalid("assembly syntax", where + "the rotation axis is 0, 0, 0");
        AxisAngleMatrix(rotation, rotation[3], component.matrix);
    }
    if (keys.Numbers("matrix", component.matrix, 9)) {
        const double* m = component.matrix;
        const double determinant = m[0] * (m[4] * m[8] - m[5] * m[7]) -
                                   m[1] * (m[3] * m[8] - m[5] * m[6]) +
                                   m[2] * (m[3] * m[7] - m[4] * m[6]);
        if (!(std::fabs(determinant) > 0) || !std::isfinite(determinant))
            throw invalid("assembly syntax",
                          where + "the matrix is singular: it flattens the part");
    }
}

AssemblyText parseAssembly(const std::string& path) {
    std::unique_ptr<DUNXCfgFile> file = loadConfiguration(path);
    const DUNXCfgFileSection* top = file->GetSection("");
    std::string firstError;
    if (file->GetErrorCount() > 0) {
        firstError = file->GetErrorMessage(0);
        if (file->GetErrorCount() > 1)
            firstError += " (and " + std::to_string(file->GetErrorCount() - 1) + " more)";
    }
    if (!top || !top->findKey("assembly"))
        throw invalid("not an assembly",
                      path + ": not an assembly: no 'assembly' key before the first section" +
                          (firstError.empty() ? "" : "; " + firstError));
    if (!firstError.empty())
        throw invalid("assembly syntax", path + ": " + firstError);
    AssemblyText assembly;
    assembly.path = path;
    SectionReader keys(*file, *top, path + ": ");
    keys.Check(kAssemblyKeys, std::size(kAssemblyKeys));
    assembly.name = keys.Text("assembly");
    assembly.unit = keys.Unit();

    for (int s = 0; s < file->GetSectionCount(); ++s) {
        const DUNXCfgFileSection* section = file->GetSectionAt(s);
        if (section == top)
            continue;
        ComponentText component;
        component.name = section->GetName();
        const std::string where = path + ": component '" + component.name + "': ";
        SectionReader componentKeys(*file, *section, where);
        componentKeys.Check(kComponentKeys, std::size(kComponentKeys));
        const std::string name = componentKeys.Text("file");
        if (name.empty())
            throw invalid("assembly syntax", where + "no 'file' names its part or sub-assembly");
        component.file = resolve(path, name);
        component.unit = componentKeys.Unit();
        readPlacement(componentKeys, component, where);
        assembly.components.push_back(component);
    }
    return assembly;
}

// Builds the transform p -> matrix · (scale · p) + translation.
DUNXAssemblyComponentTransform placementOf(const ComponentText& component, double scale) {
    double columns[9];
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            columns[3 * column + row] = component.matrix[3 * row + column] * scale;
    DUNXAssemblyComponentTransform transform;
    transform.SetRotation(columns);
    transform.SetTranslation(component.translation);
    return transform;
}

class Planner {
public:
    Planner(AssemblyPlan& plan, std::size_t maxPlacements)
        : m_Plan(plan), m_MaxPlacements(maxPlacements) {}

    void Expand(const AssemblyText& assembly, const DUNXAssemblyComponentTransform& toTop,
                DUNIUnitValue unit, const std::string& prefix, std::vector<std::string>& stack) {
        for (const ComponentText& component : assembly.components) {
            // Only a refusal needs the place spelt out.
            const auto where = [&] {
                return assembly.path + ": component '" + component.name + "': ";
            };
            const DUNIUnitValue componentUnit =
                component.unit != DUNIUnitUnknown ? component.unit : unit;
            if (++m_Visited > m_MaxPlacements)
                throw invalid("too many components",
                              where() + "more than " + std::to_string(m_MaxPlacements) +
                                  " components placed: sub-assemblies multiply too much");
            const Probe& probe = probeOf(component.file, where);
            const std::string& key = probe.key;
            if (probe.kind != FileKind::Text) {
                const int part = partIndex(component.file, key, componentUnit, probe.size);
                m_Plan.placements.push_back(
                    {prefix + component.name, part,
                     toTop * placementOf(component, LengthScale(componentUnit, unit))});
                continue;
            }
            if (std::find(stack.begin(), stack.end(), key) != stack.end()) {
                std::string chain;
                for (auto at = std::find(stack.begin(), stack.end(), key); at != stack.end(); ++at)
                    chain += m_Shown[*at] + " -> ";
                throw invalid("assembly cycle",
                              where() + "assemblies include each other: " + chain + component.file);
            }
            const AssemblyText& sub = assemblyOf(component.file, key, where);
            const DUNIUnitValue subUnit = sub.unit != DUNIUnitUnknown ? sub.unit : componentUnit;
            stack.push_back(key);
            Expand(sub, toTop * placementOf(component, LengthScale(subUnit, unit)), subUnit,
                   prefix + component.name + "/", stack);
            stack.pop_back();
        }
    }

    const AssemblyText& Top(const std::string& path) {
        const std::string key = identity(path);
        auto parsed = std::make_unique<AssemblyText>(parseAssembly(path));
        m_Shown[key] = path;
        ++m_Plan.assemblyFiles;
        return *(m_Assemblies[key] = std::move(parsed));
    }

private:
    struct Probe {
        FileKind kind = FileKind::Text;
        std::uint64_t size = 0;
        std::string key; // identity()
    };

    // What a component's file is, looked at once per file: assemblies that multiply
    // their sub-assemblies meet the same files many times over.
    template <typename Where> const Probe& probeOf(const std::string& path, const Where& where) {
        auto found = m_Probes.find(path);
        if (found != m_Probes.end())
            return found->second;
        Probe probe;
        try {
            probe.kind = ProbeFile(path, probe.size);
        } catch (const TranslationError& fault) {
            throw TranslationError(fault.Code(), fault.Kind(), where() + fault.what());
        }
        probe.key = identity(path);
        return m_Probes.emplace(path, std::move(probe)).first->second;
    }

    template <typename Where>
    const AssemblyText& assemblyOf(const std::string& path, const std::string& key,
                                   const Where& where) {
        auto found = m_Assemblies.find(key);
        if (found != m_Assemblies.end())
            return *found->second;
        std::unique_ptr<AssemblyText> parsed;
        try {
            parsed = std::make_unique<AssemblyText>(parseAssembly(path));
        } catch (const TranslationError& fault) {
            if (fault.Kind() != "not an assembly")
                throw;
            // Reported under the kind the top file gets, so that the caller does not
            // take it for the top file's own refusal and name the wrong file.
            throw invalid("not STL", where() + path +
                                         " is neither an STL file nor an assembly (no "
                                         "'assembly' key before the first section)");
        }
        m_Shown[key] = path;
        ++m_Plan.assemblyFiles;
        return *(m_Assemblies[key] = std::move(parsed));
    }

    int partIndex(const std::string& path, const std::string& key, DUNIUnitValue unit,
                  std::uint64_t size) {
        const auto found = m_Parts.find({key, unit});
        if (found != m_Parts.end())
            return found->second;
        const int index = static_cast<int>(m_Plan.partFiles.size());
        m_Plan.partFiles.push_back({path, unit, size});
        m_Parts[{key, unit}] = index;
        return index;
    }

    AssemblyPlan& m_Plan;
    std::size_t m_MaxPlacements;
    std::size_t m_Visited = 0; // components met, sub-assemblies included
    std::map<std::string, std::unique_ptr<AssemblyText>> m_Assemblies;
    std::map<std::string, std::string> m_Shown; // identity => the path first used for it
    std::map<std::pair<std::string, DUNIUnitValue>, int> m_Parts;
    std::map<std::string, Probe> m_Probes; // component file as written => what it is
};

} // namespace

AssemblyPlan PlanAssembly(const std::string& path, DUNIUnitValue defaultUnit,
                          std::size_t maxPlacements) {
    AssemblyPlan plan;
    Planner planner(plan, maxPlacements);
    const AssemblyText& top = planner.Top(path);
    plan.name = top.name.empty() ? FileStem(path) : top.name;
    plan.unit = top.unit != DUNIUnitUnknown ? top.unit : defaultUnit;
    std::vector<std::string> stack = {identity(path)};
    planner.Expand(top, DUNXAssemblyComponentTransform(), plan.unit, "", stack);
    return plan;
}

void AxisAngleMatrix(const double axis[3], double degrees, double matrix[9]) {
    const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    const double x = axis[0] / length, y = axis[1] / length, z = axis[2] / length;
    double turn = std::fmod(degrees, 360.0);
    if (turn < 0)
        turn += 360.0;
    double c, s;
    // Quarter turns are exact, so that parts placed at right angles meet exactly.
    if (turn == 0 || turn == 90 || turn == 180 || turn == 270) {
        const double cosines[] = {1, 0, -1, 0};
        const double sines[] = {0, 1, 0, -1};
        c = cosines[static_cast<int>(turn) / 90];
        s = sines[static_cast<int>(turn) / 90];
    } else {
        const double radians = turn * 3.14159265358979323846 / 180.0;
        c = std::cos(radians);
        s = std::sin(radians);
    }
    const double t = 1 - c;
    const double rows[9] = {t * x * x + c,     t * x * y - s * z, t * x * z + s * y,
                            t * x * y + s * z, t * y * y + c,     t * y * z - s * x,
                            t * x * z - s * y, t * y * z + s * x, t * z * z + c};
    std::copy(rows, rows + 9, matrix);
}

} // namespace dunx::translator

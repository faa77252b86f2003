#include "ModelReader.h"

#include "AssemblyReader.h"
#include "StlReader.h"
#include "TranslationError.h"
#include "Units.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOption.h>
#include <dunx/DUNXOptionName.h>
#include <dunx/DUNXTaskEvent.h>
#include <dunx/DUNXTrace.h>

#include <new>
#include <set>

namespace dunx::translator {
namespace {

// OBJ group names end at a blank: blanks and control characters become '_'.
std::string groupName(const std::string& name) {
    std::string text = name.empty() ? std::string("component") : name;
    for (char& c : text)
        if (static_cast<unsigned char>(c) <= 0x20 || static_cast<unsigned char>(c) == 0x7F)
            c = '_';
    return text;
}

void addEntry(DUNXFileHeader& header, const char* label, const std::string& value) {
    header.AddEntry(0, DUNXString(label), DUNXString::FromUtf8(value.c_str()));
}

class Reading {
public:
    Reading(const Request& request, Model& model, Report& report)
        : m_Request(request), m_Model(model), m_Report(report) {}

    void Run() {
        const DUNIUnitValue partUnit = DefaultPartUnit(m_Request.options);
        const std::string& input = m_Request.input;
        std::uint64_t size = 0;
        const FileKind kind = ProbeFile(input, size);
        m_Model.header.Clear();
        m_Model.header.AddModel();
        addEntry(m_Model.header, "Input", input);

        AssemblyPlan plan;
        if (kind == FileKind::Text) {
            try {
                plan = PlanAssembly(input, partUnit);
            } catch (const TranslationError& fault) {
                if (fault.Kind() != "not an assembly")
                    throw;
                throw TranslationError(fault.Code(), "not STL",
                                       input + ": neither an STL file (no 'solid' at its start) "
                                               "nor an assembly (no 'assembly' key)");
            }
            addEntry(m_Model.header, "Format", "assembly");
            addEntry(m_Model.header, "Assembly", plan.name);
            addEntry(m_Model.header, "Unit", UnitName(plan.unit));
            addEntry(m_Model.header, "Assembly Files", std::to_string(plan.assemblyFiles));
            addEntry(m_Model.header, "Part Files", std::to_string(plan.partFiles.size()));
            addEntry(m_Model.header, "Placed Parts", std::to_string(plan.placements.size()));
        } else {
            plan.name = FileStem(input);
            plan.unit = partUnit;
            plan.partFiles.push_back({input, partUnit, size});
            plan.placements.push_back({"", 0, DUNXAssemblyComponentTransform()});
        }
        DUNXUnitValue::SetReadUnit(plan.unit);

        const std::vector<std::vector<int>> solids = readParts(plan, kind != FileKind::Text);
        place(plan, solids);
        m_Report.components = static_cast<int>(m_Model.components.size());
        DUNXThirdPartyProgressEvent::Fire(1.0);
    }

private:
    // Reads every part file; gives the model's parts made of each.
    std::vector<std::vector<int>> readParts(const AssemblyPlan& plan, bool describe) {
        std::uint64_t total = 0, done = 0;
        for (const PartFile& file : plan.partFiles)
            total += file.size;
        std::vector<std::vector<int>> solids(plan.partFiles.size());
        for (std::size_t i = 0; i < plan.partFiles.size(); ++i) {
            DUNXCallbackShared::IsAborted();
            const PartFile& file = plan.partFiles[i];
            const ProgressFunction progress = [&](std::uint64_t bytes) {
                DUNXCallbackShared::IsAborted();
                DUNXThirdPartyProgressEvent::Fire(total ? double(done + bytes) / double(total)
                                                        : 1.0);
            };
            StlData data = ReadStl(file.path, file.unit, progress);
            done += file.size;
            m_Report.trianglesRead += data.triangles;
            for (const Note& note : data.notes) {
                DUNXWarning::Printf("%s", note.text.c_str());
                m_Report.warnings[note.kind] += static_cast<int>(note.count);
                if (note.kind == "degenerate triangles" || note.kind == "non-finite coordinates")
                    DUNXStartTranslateRepairEvent::Fire(("dropped " + note.kind).c_str(),
                                                        file.path.c_str(),
                                                        static_cast<int>(note.count));
            }
            if (describe) {
                addEntry(m_Model.header, "Format", data.binary ? "binary STL" : "ASCII STL");
                if (data.binary) {
                    if (!data.header.empty())
                        addEntry(m_Model.header, "STL Header", data.header);
                    addEntry(m_Model.header, "Stated Triangles",
                             std::to_string(data.declaredCount));
                } else {
                    addEntry(m_Model.header, "Solids", std::to_string(data.solids.size()));
                }
                addEntry(m_Model.header, "Unit", UnitName(file.unit));
            }
            for (Part& part : data.solids) {
                solids[i].push_back(static_cast<int>(m_Model.parts.size()));
                m_Model.parts.push_back(std::move(part));
            }
        }
        return solids;
    }

    // One component per placement and solid, mapped into the output unit.
    void place(const AssemblyPlan& plan, const std::vector<std::vector<int>>& solids) {
        const double scale = LengthScale(plan.unit, m_Request.outputUnit);
        std::set<std::string> taken;
        for (const Placement& placement : plan.placements) {
            DUNXCallbackShared::IsAborted();
            const std::vector<int>& parts = solids[static_cast<std::size_t>(placement.partFile)];
            for (const int part : parts) {
                Component component;
                const std::string& solid = m_Model.parts[static_cast<std::size_t>(part)].name;
                if (placement.name.empty())
                    component.name = solid;
                else
                    component.name =
                        parts.size() > 1 ? placement.name + "/" + solid : placement.name;
                component.name = groupName(component.name);
                // Names are unique, so that no OBJ reader merges two groups.
                const std::string base = component.name;
                for (int n = 2; !taken.insert(component.name).second; ++n)
                    component.name = base + "_" + std::to_string(n);
                component.part = part;
                for (int row = 0; row < 3; ++row) {
                    for (int column = 0; column < 3; ++column)
                        component.rotation[3 * row + column] =
                            placement.toTop.GetRotationElement(row, column) * scale;
                    component.translation[row] = placement.toTop.GetTranslationElement(row) * scale;
                }
                m_Model.components.push_back(component);
            }
        }
    }

    const Request& m_Request;
    Model& m_Model;
    Report& m_Report;
};

} // namespace

DUNIUnitValue DefaultPartUnit(const DUNXOptions* options) {
    const char* key = DUNXOptionName::XStl_Import_Unit;
    DUNXOption* option = nullptr;
    if (!options || options->GetOption(DUNXString(key), option).IsFailure() || !option)
        return DUNIUnitMillimeter;
    DUNXString text;
    option->GetValue(text, true);
    const DUNIUnitValue unit = ParseLengthUnit(text.ToUtf8());
    if (unit == DUNIUnitUnknown)
        throw TranslationError(DUNI_E_INVALID_ARGUMENT, "unknown unit",
                               std::string("option ") + key + ": unknown unit '" + text.ToUtf8() +
                                   "' (use one of " + KnownLengthUnits() + ")");
    return unit;
}

long ReadModel(const Request& request, Model& model, Report& report) {
    DUNXStartReadEntitiesTaskEvent::Fire();
    long result = DUNI_S_SUCCESS;
    try {
        Reading(request, model, report).Run();
    } catch (const DUNXAbortException&) {
        result = DUNI_A_ABORTED;
        if (report.error.empty())
            report.error = "translation of " + request.input + " interrupted by the user";
        ++report.errors["interrupted"];
    } catch (const TranslationError& fault) {
        result = RecordFailure(report, fault.Code(), fault.Kind(), fault.what());
    } catch (const std::bad_alloc&) {
        result = RecordFailure(report, DUNI_E_FAIL, "out of memory",
                               request.input + ": out of memory while reading");
    } catch (const std::exception& fault) {
        result = RecordFailure(report, DUNI_E_UNEXPECTED, "unexpected",
                               request.input + ": " + fault.what());
    }
    if (DUNIResult(result).IsFailure()) {
        model.parts.clear();
        model.components.clear();
    }
    DUNXEndReadEntitiesTaskEvent::Fire(DUNIResult(result));
    return result;
}

} // namespace dunx::translator

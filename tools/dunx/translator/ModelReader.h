// Reading a translation's input, an STL part or an assembly, into a model.
#pragma once

#include "DunxTranslator.h"

namespace dunx::translator {

/// Reads `request.input` into `model`: one part per solid of each part file
/// (each file read once, however often it is placed) and one component per
/// placement of each part, mapped into `request.outputUnit` (into the top
/// file's unit when that unit has no size: unknown or model unit).
///
/// Announces its work on the event bus: the read-entities start and end events
/// around it, progress from 0 to 1 (by bytes of part files read), one warning
/// per kind of damage per file, and a repair event per kind of dropped
/// triangles. Polls `DUNXCallbackShared::IsAborted` between files and
/// components and every few thousand triangles.
///
/// Returns a DUNIResult code and never throws: success, `DUNI_A_ABORTED`, or a
/// failure with `report.error` naming the file and the reason, the kind
/// counted in `report.errors`, and the same line on the error channel. After a
/// failure the model holds no part and no component (its header stays).
long ReadModel(const Request& request, Model& model, Report& report);

/// The unit of an STL part when no assembly says: the option
/// `/XStl/Import/Unit` of `options` (the environment may override it),
/// millimetre when there is none. Throws `TranslationError` for an unknown unit.
DUNIUnitValue DefaultPartUnit(const DUNXOptions* options);

} // namespace dunx::translator

// Writing a model as a Wavefront OBJ file.
#pragma once

#include "DunxTranslator.h"

namespace dunx::translator {

/// Writes `model` to `request.output`: a comment header, then for each
/// component with triangles one group ("g name"), its part's vertices mapped
/// by the component's placement ("v x y z", each the shortest text that
/// reads back as the same float) and its triangles ("f a b c", 1-based over
/// the whole file). Components place a part anew, so each group has its own
/// vertices. Adds the triangles and vertices written and the bounding box to
/// `report`, fires progress from 0 to 1, and polls
/// `DUNXCallbackShared::IsAborted` between components and every few
/// thousand lines.
///
/// The text goes to a new file beside the output, renamed over it only once
/// complete: a failed or interrupted write leaves no file and any earlier
/// output as it was. Returns a DUNIResult code and never throws: success,
/// `DUNI_A_ABORTED`, or a failure recorded in `report` as `ReadModel` does
/// (an unwritable folder, a full disk, a coordinate that overflows a float
/// in the output unit, a model whose indices point past its vertices).
long WriteObj(const Request& request, const Model& model, Report& report);

/// Writes into [first, last) the shortest decimal text that reads back as
/// exactly `value` ("0.1", "1e-07", "123456.7"; 0 for -0) and returns its end.
/// 16 characters always suffice.
char* FormatFloat(float value, char* first, char* last);

} // namespace dunx::translator

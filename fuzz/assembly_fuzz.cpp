// The driver's assembly reader over arbitrary assembly files that place a small
// valid part, each other and themselves: it reads, or refuses with one line.
#include "ModelReader.h"
#include "TempFolder.h"

#include <cstdint>
#include <cstdlib>

namespace {

// One binary STL triangle, for the assemblies to place.
std::string triangle() {
    std::string bytes(80, ' ');
    const std::uint32_t count = 1;
    bytes.append(reinterpret_cast<const char*>(&count), 4);
    const float values[12] = {0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0};
    bytes.append(reinterpret_cast<const char*>(values), sizeof values);
    bytes.append(2, '\0');
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dunx::translator;
    static const bool ready = (dunx::fuzz::WriteFile("part.stl", triangle()), true);
    (void)ready;
    Request request;
    request.input =
        dunx::fuzz::WriteFile("top.cfg", std::string(reinterpret_cast<const char*>(data), size));
    Model model;
    Report report;
    const DUNIResult result = ReadModel(request, model, report);
    if (result.IsFailure() && report.error.empty())
        std::abort();
    for (const Component& component : model.components)
        if (component.part < 0 || component.part >= static_cast<int>(model.parts.size()))
            std::abort();
    return 0;
}

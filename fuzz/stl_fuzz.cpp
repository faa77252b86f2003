// The driver's STL reader, binary and ASCII, over arbitrary file contents: it
// reads, or refuses with one line naming the file; it never crashes.
#include "ModelReader.h"
#include "TempFolder.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dunx::translator;
    Request request;
    request.input =
        dunx::fuzz::WriteFile("part.stl", std::string(reinterpret_cast<const char*>(data), size));
    request.outputUnit = DUNIUnitInch;
    Model model;
    Report report;
    const DUNIResult result = ReadModel(request, model, report);
    if (result.IsFailure() && report.error.empty())
        std::abort(); // every refusal says why
    for (const Part& part : model.parts) {
        if (part.indices.size() % 3 != 0)
            std::abort();
        for (unsigned index : part.indices)
            if (3u * index + 2 >= part.positions.size())
                std::abort(); // an index past the welded vertices
    }
    return 0;
}

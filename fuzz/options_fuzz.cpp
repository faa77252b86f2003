// The option set: dotted names with wildcards added and looked up, values parsed from text;
// the index of stored names against the token tree it stands in front of.
#include <dunx/DUNXOptions.h>

#include "FuzzInput.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dunx::fuzz::FuzzInput input(data, size);
    DUNXOptions options;
    while (!input.empty()) {
        const std::string name = input.text(48);
        switch (input.below(5)) {
        case 0:
            options.AddOptionParseValue(name.c_str(), DUNXString(input.text(24).c_str()));
            break;
        case 1:
            options.AddOption(name.c_str(), input.below(1000) - 500);
            break;
        case 2:
            options.AddOption(name.c_str(), input.text(16).c_str());
            break;
        case 3: {
            DUNXOption* found = nullptr;
            const bool success = options.GetOption(DUNXString(name.c_str()), found).IsSuccess();
            if (success && !found)
                std::abort(); // success must hand back an option
            // A leading empty token sends the lookup through the token tree, past the
            // index of stored names: both must find the same option.
            DUNXOption* walked = nullptr;
            const bool walkedSuccess =
                options.GetOption(DUNXString(("." + name).c_str()), walked).IsSuccess();
            if (walkedSuccess != success || walked != found)
                std::abort();
            break;
        }
        default: {
            DUNXOptions copy(options);
            copy.AddOptions(options, input.below(2) == 0);
            if (copy.Size() != options.Size())
                std::abort(); // adding a set to a copy of itself adds nothing new
            break;
        }
        }
    }
    options.InitEnumeration();
    int seen = 0;
    for (DUNXOption* option = nullptr; options.GetNext(option).IsSuccess();)
        ++seen;
    if (seen != options.Size())
        std::abort();
    return 0;
}

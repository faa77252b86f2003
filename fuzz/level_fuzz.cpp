// Event levels from text, and booleans read from the environment.
#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXEvent.h>

#include "FuzzInput.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dunx::fuzz::FuzzInput input(data, size);
    const std::string text = input.text(32);
    const DUNXEventLevel level = DUNXEvent::GetLevel(DUNXString(text.c_str()), DUNXLevelWarning);
    switch (level) {
    case DUNXLevelAll:
    case DUNXLevelDebug:
    case DUNXLevelVerbose:
    case DUNXLevelInfo:
    case DUNXLevelWarning:
    case DUNXLevelError:
    case DUNXLevelAbort:
    case DUNXLevelNone:
        break;
    default:
        std::abort(); // only a keyword's level or the default
    }
    // One variable, set again each time, so the environment does not grow.
    const std::string value = input.text(32);
    if (value.find('\0') != std::string::npos)
        return 0;
    DUNXEnvironment::PutVariable(DUNXString("DUNXFuzzFlag"), DUNXString(value.c_str()));
    bool flag = true;
    DUNXEnvironment::GetVariable(DUNXString("DUNXFuzzFlag"), flag);
    return 0;
}

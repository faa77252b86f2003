#include "platform/Platform.h"

#include <windows.h>

namespace dunx::platform {

namespace {

// The system's text for `error`, without the line end it carries.
std::string systemMessage(DWORD error) {
    char* text = nullptr;
    const DWORD size = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, error, 0, reinterpret_cast<char*>(&text), 0, nullptr);
    std::string message = size && text ? std::string(text, size) : std::string();
    if (text)
        LocalFree(text);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r' ||
                                message.back() == ' ' || message.back() == '.'))
        message.pop_back();
    return message.empty() ? "error " + std::to_string(error)
                           : message + " (error " + std::to_string(error) + ")";
}

} // namespace

void* LoadModule(const char* name, std::string& reason) {
    // LoadLibraryA(nullptr) is no call at all, and "" names no module.
    if (!name || !*name) {
        reason = "no module name given";
        return nullptr;
    }
    // A missing dependency must come back as an error code, not as a dialog box
    // that waits for a user who is not there.
    DWORD previousMode = 0;
    const BOOL quiet = SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previousMode);
    HMODULE module = LoadLibraryA(name);
    const DWORD error = module ? 0 : GetLastError();
    if (quiet)
        SetThreadErrorMode(previousMode, nullptr);
    if (!module)
        reason = systemMessage(error);
    return reinterpret_cast<void*>(module);
}

void* FindModuleSymbol(void* module, const char* symbol) {
    if (!module || !symbol)
        return nullptr;
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), symbol));
}

void* RetainModule(void* module) {
    // A module handle is the address it is mapped at: asking for the module
    // that holds that address takes one more reference on it.
    HMODULE retained = nullptr;
    if (!module || !GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                                       static_cast<LPCWSTR>(module), &retained))
        return nullptr;
    return reinterpret_cast<void*>(retained);
}

void ReleaseModule(void* module) {
    if (module)
        FreeLibrary(static_cast<HMODULE>(module));
}

} // namespace dunx::platform

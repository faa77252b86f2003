#include "platform/Platform.h"

#include <dlfcn.h>
#include <link.h>

namespace dunx::platform {

void* LoadModule(const char* name, std::string& reason) {
    // dlopen("") would hand back the program itself, which no caller means by a module.
    if (!name || !*name) {
        reason = "no module name given";
        return nullptr;
    }
    dlerror(); // forget any earlier failure, so the text read below is this one's
    // Symbols resolved now, so a module with an unresolved reference fails here
    // with the loader's reason, not later in the middle of a call; kept local
    // so that two modules exporting the same names do not capture each other.
    void* module = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        const char* text = dlerror();
        reason = text ? text : "unknown loader error";
    }
    return module;
}

void* FindModuleSymbol(void* module, const char* symbol) {
    if (!module || !symbol)
        return nullptr;
    return dlsym(module, symbol);
}

void* RetainModule(void* module) {
    // The loader counts opens per module: opening the file it was mapped from
    // again, without loading anything new, takes one more reference on it.
    link_map* map = nullptr;
    if (!module || dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || !map || !map->l_name ||
        !*map->l_name)
        return nullptr;
    return dlopen(map->l_name, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
}

void ReleaseModule(void* module) {
    if (module)
        dlclose(module);
}

} // namespace dunx::platform

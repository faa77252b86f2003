#include <dunx/DUNXLibrary.h>

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXError.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXHashMap.h>

#include "platform/Platform.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

DUNXTrace DUNXLibraryManager::log("DUNXLibraryManager");

namespace {

using LibraryMap =
    DUNXHashMap<DUNXString, DUNXLibraryHandle, DUNXStringHashIgnoreCase, DUNXStringEqualIgnoreCase>;

// The registry, and what happens to the libraries still in it when the library unloads.
class Registry {
public:
    // The bus is made first so that it is destroyed after the registry: the
    // libraries released below still trace through it.
    Registry() { DUNXEventBus::GetEventBus(); }

    // Each library is finalised while the map is whole and empty, so a
    // finalisation function that comes back into the manager finds it usable;
    // what such a function registers is released by the next round.
    ~Registry() {
        while (!m_Map.IsEmpty()) {
            std::vector<DUNXLibraryHandle> released;
            m_Map.ForEach([&released](const DUNXString&, const DUNXLibraryHandle& handle) {
                released.push_back(handle);
            });
            m_Map.Clear();
        }
    }

    LibraryMap m_Map;
};

LibraryMap& libraries() {
    static Registry registry;
    return registry.m_Map;
}

// The name a library stores, and so the key it is registered under.
DUNXString registeredName(const char* name) {
    const std::size_t length =
        std::min(std::strlen(name), std::size_t{DUNXLibrary::kNameCapacity - 1});
    return DUNXString(std::string(name, length).c_str());
}

// DUNXError::Printf reads its text a second time as a format; doubled percent
// signs come through that second reading as the single ones of the name.
std::string doublePercents(const char* text) {
    std::string result;
    for (const char* p = text; *p; ++p) {
        if (*p == '%')
            result += '%';
        result += *p;
    }
    return result;
}

// Clears the flag however the guarded call ends, a module's exception included.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : m_Flag(flag) { m_Flag = true; }
    ~FlagScope() { m_Flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_Flag;
};

// Init and finalisation functions take nothing; whatever they return is ignored.
void callWithoutArguments(void* function) {
    reinterpret_cast<void (*)()>(function)();
}

} // namespace

// --- DUNXLibrary -----------------------------------------------------------------

DUNXLibrary::DUNXLibrary(const char* name, const char* initFunction, const char* finalizeFunction)
    : m_InitFunctionName(initFunction), m_FinalizeFunctionName(finalizeFunction) {
    if (!name)
        name = "";
    const std::size_t length = std::strlen(name);
    const std::size_t kept = std::min(length, sizeof m_Name - 1);
    std::memcpy(m_Name, name, kept);
    m_Name[kept] = '\0';
    if (kept < length) {
        DUNXDebug::Printf("%s library name is too long and was truncated to %s.\n", name, m_Name);
        DUNXDebug::Printf("%s library will not be loaded.\n", name);
    }
}

DUNXLibrary::DUNXLibrary(const DUNXLibrary& other)
    : DUNXReferenceCount(other), m_Module(dunx::platform::RetainModule(other.m_Module)),
      m_Unloadable(other.m_Unloadable), m_Initializing(other.m_Initializing),
      m_InitFunctionName(other.m_InitFunctionName),
      m_FinalizeFunctionName(other.m_FinalizeFunctionName) {
    std::memcpy(m_Name, other.m_Name, sizeof m_Name);
    // Without its own reference the copy starts unloaded, and so uninitialised.
    m_Initialized = other.m_Initialized && m_Module;
}

DUNXLibrary::~DUNXLibrary() {
    FinalizeAndUnload();
}

unsigned long long DUNXLibrary::RaiseReference() {
    const unsigned long long count = DUNXReferenceCount::RaiseReference();
    DUNXLibraryManager::log.Printf(DUNXTraceDebug, "%s Library refcount=%llu", m_Name, count);
    return count;
}

unsigned long long DUNXLibrary::LowerReference() {
    const unsigned long long count = DUNXReferenceCount::LowerReference();
    DUNXLibraryManager::log.Printf(DUNXTraceDebug, "%s Library refcount=%llu", m_Name, count);
    return count;
}

DUNIResult DUNXLibrary::LoadAndInitialize() {
    if (!m_Module) {
        DUNXLibraryManager::log.Printf(DUNXTraceVerbose, "Loading %s library", m_Name);
        std::string reason;
        m_Module = dunx::platform::LoadModule(m_Name, reason);
        if (!m_Module) {
            DUNXWarning::Printf("%s library not loaded.", m_Name);
            DUNXWarning::Printf("%s library load error: %s", m_Name, reason.c_str());
            return DUNI_E_FAIL;
        }
    }
    if (!m_Initialized && !m_Initializing) {
        // While the init function runs, a lookup in this library (by the init
        // function itself, say) must not start it again.
        FlagScope initializing(m_Initializing);
        void* init = nullptr;
        if (GetFunction(static_cast<const char*>(m_InitFunctionName), init).IsSuccess()) {
            callWithoutArguments(init);
            m_Initialized = true;
        }
    }
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXLibrary::GetFunction(const char* name, void*& function) {
    if (!name || !*name)
        return DUNI_E_INVALID_ARGUMENT;
    DUNIResult result = DUNI_S_SUCCESS;
    if (!m_Module || !m_Initialized)
        result &= LoadAndInitialize();
    if (result.IsFailure())
        return result;
    function = dunx::platform::FindModuleSymbol(m_Module, name);
    if (!function) {
        DUNXError::Printf("No %s function in %s library.\n", doublePercents(name).c_str(),
                          doublePercents(m_Name).c_str());
        return DUNI_E_FAIL;
    }
    return result;
}

DUNIResult DUNXLibrary::FinalizeAndUnload() {
    if (!m_Module)
        return DUNI_S_SUCCESS;
    if (m_Initialized && m_FinalizeFunctionName.length() > 0) {
        void* finalize = nullptr;
        if (GetFunction(static_cast<const char*>(m_FinalizeFunctionName), finalize).IsSuccess()) {
            callWithoutArguments(finalize);
            m_Initialized = false;
        }
    }
    bool unloadingAllowed = true;
    if (DUNXEnvironment::GetVariable("DUNXFreeLibraries", unloadingAllowed).IsFailure())
        unloadingAllowed = true; // absent: unload
    if (!unloadingAllowed)
        DUNXLibraryManager::log.Printf(DUNXTraceVerbose, "Unloading %s library disabled", m_Name);
    if (m_Module && m_Unloadable && unloadingAllowed) {
        DUNXLibraryManager::log.Printf(DUNXTraceVerbose, "Unloading %s library", m_Name);
        dunx::platform::ReleaseModule(std::exchange(m_Module, nullptr));
        // A module mapped afresh starts with its own state: it needs its init
        // function again, even when it has no finalisation function to undo it.
        m_Initialized = false;
    }
    return DUNI_S_SUCCESS;
}

// --- DUNXLibraryManager ----------------------------------------------------------

DUNIResult DUNXLibraryManager::CreateLibrary(const char* name, const char* initFunction,
                                             const char* finalizeFunction, DUNXLibrary*& library) {
    library = nullptr;
    if (!name)
        return DUNI_E_INVALID_ARGUMENT;
    DUNIResult result = DUNI_S_SUCCESS;
    DUNXLibraryHandle handle;
    const DUNXLibraryHandle* registered = libraries().Find(registeredName(name));
    if (registered && registered->IsValid()) {
        handle = *registered;
    } else {
        handle = new DUNXLibrary(name, initFunction, finalizeFunction);
        result &= AddLibrary(handle);
    }
    library = handle;
    return result;
}

DUNIResult DUNXLibraryManager::AddLibrary(DUNXLibrary* library) {
    if (!library)
        return DUNI_E_INVALID_ARGUMENT;
    const DUNXLibraryHandle handle(library);
    log.Printf(DUNXTraceVerbose, "Adding %s library", library->GetLibraryName());
    const DUNXString name(library->GetLibraryName());
    const DUNXLibraryHandle* registered = libraries().Find(name);
    if (!registered || !registered->IsValid())
        libraries().Set(name, handle);
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXLibraryManager::FreeLibraries() {
    log.Printf(DUNXTraceVerbose, "Freeing libraries");
    std::vector<DUNXString> unheld;
    libraries().ForEach([&unheld](const DUNXString& name, const DUNXLibraryHandle& handle) {
        // Held by the registry and these two local handles: three means nobody else.
        const std::pair<DUNXString, DUNXLibraryHandle> entry(name, handle);
        const DUNXLibraryHandle probe(entry.second);
        if (probe.IsValid() && probe->GetReferenceCount() == 3)
            unheld.push_back(entry.first);
    });
    for (const DUNXString& name : unheld) {
        DUNXLibraryHandle* registered = libraries().Find(name);
        // A finalisation function run earlier in this loop may have come back
        // into the manager: free only what is still registered and still unheld.
        if (!registered || !registered->IsValid() || (*registered)->GetReferenceCount() != 1)
            continue;
        log.Printf(DUNXTraceVerbose, "Freeing %s library", (*registered)->GetLibraryName());
        // Out of the map before it goes: its finalisation may change the map.
        const DUNXLibraryHandle last = std::move(*registered);
        libraries().Remove(name);
    }
    return DUNI_S_SUCCESS;
}

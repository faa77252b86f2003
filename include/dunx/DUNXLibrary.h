// DUNXLibrary, its handle, and DUNXLibraryManager: modules loaded at run time.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXReferenceCount.h>
#include <dunx/DUNXString.h>
#include <dunx/DUNXTrace.h>

/// One module loaded at run time, known by the exact name handed to the
/// system loader, with the optional names of an initialisation and a
/// finalisation function it exports (both called without arguments, their
/// results ignored). Nothing is loaded until the first `GetFunction` or
/// `LoadAndInitialize`. Counted: hold it in a `DUNXLibraryHandle`, or get it
/// from `DUNXLibraryManager::CreateLibrary`, whose registry holds it.
///
///     lifecycle: created (not loaded) -> loaded -> initialised -> finalised
///                -> unloaded -> deleted with its last handle
class DUNX_EXPORT DUNXLibrary : public DUNXReferenceCount {
public:
    /// Room for the name, terminator included: longer names are cut.
    static constexpr int kNameCapacity = 64;

    /// A library not yet loaded. Null function names mean "none". A name of 64
    /// characters or more is cut to 63 and two debug lines say so ("... was
    /// truncated to ...", "... will not be loaded."); the cut name is kept and
    /// loaded all the same. A null name is taken as "", which never loads.
    DUNXLibrary(const char* name, const char* initFunction, const char* finalizeFunction);
    /// Copies every field: a loaded original gives a loaded copy of the same
    /// module, holding its own reference on it, so each object releases it
    /// on its own (and each runs the finalisation function when finalised).
    DUNXLibrary(const DUNXLibrary& other);
    /// Runs `FinalizeAndUnload`.
    ~DUNXLibrary() override;
    DUNXLibrary& operator=(const DUNXLibrary&) = delete;

    /// Adds one holder and traces "<name> Library refcount=<count>" (trace
    /// level 1 on `DUNXLibraryManager::log`); returns the new count.
    unsigned long long RaiseReference() override;
    /// Removes one holder (never below 0) and traces the count as
    /// `RaiseReference` does; returns the new count.
    unsigned long long LowerReference() override;

    /// The stored (possibly cut) module name; never null.
    const char* GetLibraryName() const { return m_Name; }
    /// True while a module is mapped for this library.
    bool IsLoaded() const { return m_Module != nullptr; }
    /// False keeps the module mapped when the library is finalised or deleted
    /// (its finalisation function still runs). True after construction.
    void SetUnloadable(bool unloadable) { m_Unloadable = unloadable; }

    /// Loads the module if needed, then runs the initialisation function once.
    /// `DUNI_E_FAIL` when the loader refuses the module, announced by the
    /// warnings "<name> library not loaded." and "<name> library load error:
    /// <the loader's reason>"; the next call tries again. A missing
    /// initialisation function is no failure here: it is reported by
    /// `GetFunction` and the library stays uninitialised, so every later
    /// lookup looks for it again.
    DUNIResult LoadAndInitialize();
    /// Puts into `function` the address the module exports under `name`
    /// (a function or data), loading and initialising the module first when
    /// needed. `DUNI_E_INVALID_ARGUMENT` for a null or empty `name` (nothing
    /// loaded, `function` untouched); the result of a failed load (`function`
    /// untouched); `DUNI_E_FAIL` with `function` set to null and the error
    /// "No <name> function in <library> library." when the module does not
    /// export it (the module stays loaded).
    DUNIResult GetFunction(const char* name, void*& function);
    /// Runs the finalisation function of an initialised library (a missing one
    /// is reported as `GetFunction` does), then unmaps the module unless
    /// `SetUnloadable(false)` was called or the environment variable
    /// `DUNXFreeLibraries` reads false (then the trace says "Unloading <name>
    /// library disabled" and the module stays mapped until the process ends).
    /// Always succeeds. A later lookup loads and initialises the module again.
    DUNIResult FinalizeAndUnload();

private:
    void* m_Module = nullptr;
    char m_Name[kNameCapacity] = {};
    bool m_Unloadable = true;
    bool m_Initialized = false;
    bool m_Initializing = false; // breaks the loop when the init function looks itself up
    DUNXString m_InitFunctionName;
    DUNXString m_FinalizeFunctionName;
};

/// Holds a `DUNXLibrary`: copies raise its count, the last handle to go
/// deletes it (which finalises and unloads its module).
class DUNXLibraryHandle : public DUNXTypedHandle<DUNXLibrary> {
public:
    using DUNXTypedHandle<DUNXLibrary>::DUNXTypedHandle;
    using DUNXTypedHandle<DUNXLibrary>::operator=;

    /// The held library, or null.
    operator DUNXLibrary*() const { return Get(); }
};

/// The process-wide registry of run-time modules, one library per name (names
/// compare without regard to case: "ModA" and "moda" are one library). Not
/// locked: one thread at a time. What is still registered when the process
/// ends is finalised and released then.
class DUNX_EXPORT DUNXLibraryManager {
public:
    /// The trace channel of the manager and its libraries, named
    /// "DUNXLibraryManager" (switched on when `DUNXLoggers` holds that name).
    static DUNXTrace log;

    /// Gives in `library` the registered library called `name` (ignoring case;
    /// a name of 64 characters or more is compared by its first 63), or makes
    /// and registers a new one: an earlier library keeps its own function
    /// names and this call's are ignored. Loads nothing. The registry owns the
    /// library: hold a `DUNXLibraryHandle` to keep it across `FreeLibraries`.
    /// `DUNI_E_INVALID_ARGUMENT`, with `library` null, for a null `name`.
    static DUNIResult CreateLibrary(const char* name, const char* initFunction,
                                    const char* finalizeFunction, DUNXLibrary*& library);
    /// Registers `library` (which must be heap-made) under its name, tracing
    /// "Adding <name> library". When the name is registered already nothing
    /// changes, and a `library` that nobody holds is deleted. Succeeds in both
    /// cases; `DUNI_E_INVALID_ARGUMENT` for a null `library`.
    static DUNIResult AddLibrary(DUNXLibrary* library);
    /// Deletes, finalising and unloading them, the registered libraries that
    /// nobody else holds; the others stay registered and loaded. One pass: a
    /// library released by another's finalisation waits for the next call. A
    /// freed name can be created afresh. Always succeeds.
    static DUNIResult FreeLibraries();

    DUNXLibraryManager() = delete;
};

#include <dunx/DUNXLibrary.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/TempDir.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The modules call back into the test program: a Windows program exports only what it marks.
#define DUNX_FIXTURE_EXPORT __declspec(dllexport)
#else
#include <dlfcn.h>
#define DUNX_FIXTURE_EXPORT
#endif

using namespace dunx::test;
using Texts = std::vector<std::string>;

namespace {

const std::string kModuleSuffix = DUNX_MODULE_SUFFIX; // ".so" or ".dll"

// The fixture modules' folder under a short name: a library name keeps 63 characters at most.
// Windows, whose temporary folder is longer, gets copies under short names instead of a link.
struct ShortFolder : TempDir {
    ShortFolder() {
        if (!kWindows)
            std::filesystem::create_directory_symlink(DUNX_FIXTURE_DIR, file("f"));
        else
            for (const char* name : {"alpha", "beta", "dependent"})
                std::filesystem::copy_file(DUNX_FIXTURE_DIR "/" DUNX_MODULE_PREFIX "dunx_fixture_" +
                                               std::string(name) + kModuleSuffix,
                                           module(name));
    }
    std::string module(const char* name) const {
        return kWindows ? file(name) + kModuleSuffix
                        : file("f/" DUNX_MODULE_PREFIX "dunx_fixture_") + name + kModuleSuffix;
    }
};
const ShortFolder g_Folder;
const std::string kAlpha = g_Folder.module("alpha"), kBeta = g_Folder.module("beta");

Texts g_Calls;                             // "alpha:init", ... as the modules report them
std::function<void(std::string)> g_OnCall; // run after each report, with a copy of it

// Whether the system has `path` mapped, asked without loading it.
bool isMapped(const std::string& path) {
#ifdef _WIN32
    return GetModuleHandleA(path.c_str()) != nullptr;
#else
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    return module && dlclose(module) == 0;
#endif
}

// Gives back one reference on `path` when it is mapped.
void releaseOnce(const std::string& path) {
#ifdef _WIN32
    if (HMODULE kept = GetModuleHandleA(path.c_str()))
        FreeLibrary(kept);
#else
    if (void* kept = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD))
        dlclose(kept), dlclose(kept);
#endif
}

// Makes `link` load the module `target`: a symbolic link, or a copy on Windows.
void linkModule(const std::string& target, const std::string& link) {
    if (kWindows)
        std::filesystem::copy_file(target, link);
    else
        std::filesystem::create_symlink(target, link);
}

// The texts of the events called `eventName` that `recorder` holds, in order.
Texts texts(const EventRecorder& recorder, const std::string& eventName) {
    Texts texts;
    for (const EventRecorder::Entry& entry : recorder.entries())
        if (entry.name == eventName)
            texts.push_back(entry.text);
    return texts;
}

const auto says = [](std::string what, std::string lib) { return what + " " + lib + " library\n"; };

DUNXLibrary* create(const std::string& name, const char* init = "FixtureInit") {
    DUNXLibrary* library = nullptr;
    EXPECT_EQ(DUNXLibraryManager::CreateLibrary(name.c_str(), init, "FixtureFinalize", library), 0);
    return library;
}

void* lookup(DUNXLibrary* library, const char* symbol = "FixtureInitCount", long expected = 0) {
    void* function = nullptr;
    EXPECT_EQ(library->GetFunction(symbol, function), expected) << symbol;
    return function;
}

// Every test runs with the trace channel on and unloading allowed, and leaves nothing registered
// and no report behind. The channel is made again, as it reads DUNXLoggers when made.
struct DUNXLibraryTest : testing::Test {
    DUNXLibraryTest() { DUNXLibraryManager::log = DUNXTrace("DUNXLibraryManager"); }
    ~DUNXLibraryTest() override {
        g_OnCall = nullptr;
        DUNXLibraryManager::FreeLibraries();
        DUNXLibraryManager::FreeLibraries();
        DUNXLibraryManager::log = m_Log;
        g_Calls.clear();
    }
    ScopedEnvironmentVariable m_Loggers{"DUNXLoggers", "DUNXLibraryManager"};
    ScopedEnvironmentVariable m_FreeLibraries{"DUNXFreeLibraries", nullptr};
    DUNXTrace m_Log = DUNXLibraryManager::log;
};

} // namespace

extern "C" DUNX_FIXTURE_EXPORT void dunxFixtureCall(const char* module, const char* what) {
    g_Calls.push_back(std::string(module) + ":" + what);
    if (auto hook = g_OnCall) // a copy: the hook may replace itself
        hook(g_Calls.back());
}

TEST_F(DUNXLibraryTest, LoadsAtFirstLookupInitialisesOnceAndIsFreedOnceNobodyHoldsIt) {
    EventRecorder recorder;
    DUNXLibrary *alpha = create(kAlpha), *beta = create(kBeta);
    EXPECT_FALSE(alpha->IsLoaded() || beta->IsLoaded() || isMapped(kAlpha) || isMapped(kBeta));
    DUNXLibraryHandle held(alpha);
    bool nested = false;
    g_OnCall = [&](std::string call) {
        if (call == "beta:init") // loads another module, and looks itself up without a second init
            nested = lookup(create(kAlpha)) && lookup(beta);
        if (call == "beta:finalize") // lets go of alpha after the scan of FreeLibraries passed it
            held = nullptr;
    };
    for (DUNXLibrary* library : {beta, alpha, beta, alpha})
        EXPECT_EQ(*static_cast<int*>(lookup(library)), 1);
    EXPECT_TRUE(nested && alpha->IsLoaded());
    EXPECT_EQ(g_Calls, (Texts{"beta:init", "alpha:init"}));
    EXPECT_EQ(DUNXLibraryManager::FreeLibraries(), 0);
    EXPECT_FALSE(held.IsValid() || isMapped(kBeta));
    EXPECT_EQ(create(kAlpha), alpha); // still registered and loaded, until the next call
    EXPECT_TRUE(alpha->IsLoaded() && isMapped(kAlpha));
    DUNXLibraryManager::FreeLibraries();
    EXPECT_EQ(g_Calls, (Texts{"beta:init", "alpha:init", "beta:finalize", "alpha:finalize"}));
    EXPECT_FALSE(isMapped(kAlpha));
    EXPECT_EQ(texts(recorder, "DUNXVerboseEvent"),
              (Texts{says("Adding", kAlpha), says("Adding", kBeta), says("Loading", kBeta),
                     says("Loading", kAlpha), "Freeing libraries\n", says("Freeing", kBeta),
                     says("Unloading", kBeta), "Freeing libraries\n", says("Freeing", kAlpha),
                     says("Unloading", kAlpha)}));
    EXPECT_NE(recorder.texts().find(kAlpha + " Library refcount=3\n"), std::string::npos); // rising
    EXPECT_EQ(texts(recorder, "DUNXDebugEvent").back(), kAlpha + " Library refcount=0\n");
    EXPECT_EQ(*static_cast<int*>(lookup(create(kAlpha))), 1); // afresh, into a fresh mapping
}

TEST_F(DUNXLibraryTest, OneLibraryPerNameIgnoringCaseWithTheFunctionNamesItWasMadeWith) {
    DUNXLibrary* first = create(kAlpha);
    std::string shouted = kAlpha;
    std::transform(shouted.begin(), shouted.end(), shouted.begin(), ::toupper);
    EXPECT_EQ(create(shouted, "NoSuchInit"), first);
    for (int i = 0; i < 40; ++i) // enough for a table in which letter case would move the slot
        EXPECT_EQ(create("Module" + std::to_string(i)), create("MODULE" + std::to_string(i))) << i;
    DUNXLibraryHandle duplicate(new DUNXLibrary(shouted.c_str(), nullptr, nullptr));
    EXPECT_EQ(DUNXLibraryManager::AddLibrary(duplicate), 0);
    EXPECT_EQ(duplicate->GetReferenceCount(), 1u); // not kept: the first stays registered
    auto* added = new DUNXLibrary(kBeta.c_str(), nullptr, nullptr);
    EXPECT_EQ(DUNXLibraryManager::AddLibrary(added), 0);
    EXPECT_EQ(create(kBeta), added);
    EXPECT_EQ(DUNXLibraryManager::AddLibrary(nullptr), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(DUNXLibraryManager::CreateLibrary(nullptr, nullptr, nullptr, first),
              DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(first, nullptr);
    lookup(create(kAlpha));
    EXPECT_EQ(g_Calls, Texts{"alpha:init"}); // the first call's init function
}

TEST_F(DUNXLibraryTest, MissingExportsAreReportedAtEachLookupAndTheModuleStaysLoaded) {
    DUNXLibrary* library = create(kAlpha, "NoSuchInit");
    EventRecorder recorder;
    void* function = &recorder; // what the argument faults must leave alone
    EXPECT_EQ(library->GetFunction(nullptr, function), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(library->GetFunction("", function), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(function, &recorder);
    EXPECT_TRUE(recorder.entries().empty());
    EXPECT_EQ(lookup(library, "Missing", DUNI_E_FAIL), nullptr);
    EXPECT_TRUE(library->IsLoaded());
    EXPECT_NE(lookup(library, "FixtureInit"), nullptr); // a missing init function is no failure,
    const std::string noInit = "Error : No NoSuchInit function in " + kAlpha + " library.\n\n";
    const std::string missing = "Error : No Missing function in " + kAlpha + " library.\n\n";
    EXPECT_EQ(texts(recorder, "DUNXErrorEvent"), (Texts{noInit, missing, noInit}));
    EXPECT_EQ(texts(recorder, "DUNXVerboseEvent"), Texts{says("Loading", kAlpha)});
    EXPECT_TRUE(g_Calls.empty());
}

TEST_F(DUNXLibraryTest, AModuleThatDoesNotLoadIsReportedWithTheLoadersReasonAndTriedAgain) {
    TempDir dir;
    dir.write("garbage" + kModuleSuffix, std::string(256, 'x'));
    struct Row {
        std::string name;
        const char* partOfTheLoadersReason;
    };
    // Windows names the fault by its code (126: module not found, 193: not a valid image), and
    // cannot build a module with an unresolved reference.
    // clang-format off
    const std::vector<Row> rows = kWindows ? std::vector<Row>{
        {dir.file("absent.dll"), "error 126"},
        {dir.file("garbage.dll"), "error 193"},
        {g_Folder.module("dependent"), "error 126"}} : std::vector<Row>{
        {dir.file("absent.so"), "No such file or directory"},
        {dir.file("garbage.so"), "invalid ELF header"},
        {g_Folder.module("dependent"), "libdunx_fixture_dependency.so"},
        {g_Folder.module("unresolved"), "undefined symbol: dunxFixtureDependency"}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EventRecorder recorder;
        DUNXLibrary library(row.name.c_str(), "FixtureInit", nullptr);
        void* function = &recorder;
        for (int attempt = 0; attempt < 2; ++attempt)
            EXPECT_EQ(library.GetFunction("FixtureValue", function), DUNI_E_FAIL);
        EXPECT_EQ(function, &recorder);
        EXPECT_FALSE(library.IsLoaded());
        const Texts warnings = texts(recorder, "DUNXWarningEvent");
        ASSERT_EQ(warnings.size(), 4u); // two lines per attempt
        EXPECT_EQ(warnings[0], "Warning : " + row.name + " library not loaded.\n");
        EXPECT_EQ(warnings[1].rfind("Warning : " + row.name + " library load error: ", 0), 0u);
        EXPECT_NE(warnings[1].find(row.partOfTheLoadersReason), std::string::npos) << warnings[1];
    }
    DUNXLibrary later(dir.file("later" + kModuleSuffix).c_str(), "FixtureInit", nullptr);
    lookup(&later, "FixtureInitCount", DUNI_E_FAIL);
    linkModule(kAlpha, dir.file("later" + kModuleSuffix));
    EXPECT_EQ(*static_cast<int*>(lookup(&later)), 1);
}

TEST_F(DUNXLibraryTest, AModuleKeptByTheVariableOrByItsLibraryIsFinalisedButStaysMapped) {
    const std::string disabled = "Unloading " + kAlpha + " library disabled\n";
    // clang-format off
    const struct { const char* freeLibraries; bool unloadable, mapped, saysDisabled; } rows[] = {
        {nullptr, true, false, false}, {"TRUE", true, false, false}, {"false", true, true, true},
        {"No", true, true, true}, {"maybe", true, true, true}, {nullptr, false, true, false}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ScopedEnvironmentVariable variable("DUNXFreeLibraries", row.freeLibraries); // null: unset
        g_Calls.clear();
        EventRecorder recorder;
        DUNXLibrary* library = create(kAlpha);
        library->SetUnloadable(row.unloadable);
        lookup(library);
        DUNXLibraryManager::FreeLibraries();
        EXPECT_EQ(g_Calls, (Texts{"alpha:init", "alpha:finalize"}));
        EXPECT_EQ(isMapped(kAlpha), row.mapped);
        EXPECT_EQ(recorder.texts().find(disabled) != std::string::npos, row.saysDisabled);
        releaseOnce(kAlpha); // and the one left behind
    }
}

TEST_F(DUNXLibraryTest, NamesOf64CharactersOrMoreAreCutTo63AndLoadedAllTheSame) {
    TempDir dir;
    ASSERT_LT(dir.path().size(), 60u);
    const std::string kept = dir.file(std::string(62 - dir.path().size(), 'm'));
    // Windows' loader adds its default extension to a name that has none.
    linkModule(kAlpha, kWindows ? kept + ".dll" : kept);
    for (const std::string& name : {kept, kept + "x", kept + std::string(100, 'y')}) {
        SCOPED_TRACE(name);
        EventRecorder recorder;
        DUNXLibrary library(name.c_str(), "FixtureInit", "FixtureFinalize");
        EXPECT_EQ(library.GetLibraryName(), kept);
        const Texts cut{name + " library name is too long and was truncated to " + kept + ".\n",
                        name + " library will not be loaded.\n"};
        EXPECT_EQ(texts(recorder, "DUNXDebugEvent"), name == kept ? Texts{} : cut);
        lookup(&library); // loaded all the same
        EXPECT_EQ(create(name), create(kept)) << "registered under the cut name";
    }
}

TEST_F(DUNXLibraryTest, FinalizeAndUnloadLeavesALibraryToLoadAgainAndACopyHoldsItsOwnReference) {
    auto* original = new DUNXLibrary(kAlpha.c_str(), "FixtureInit", "FixtureFinalize");
    lookup(original);
    EXPECT_EQ(original->FinalizeAndUnload(), 0);
    EXPECT_FALSE(original->IsLoaded() || isMapped(kAlpha));
    void* count = lookup(original);
    DUNXLibrary copy(*original);
    delete original; // finalises, and gives back its own reference only
    EXPECT_TRUE(copy.IsLoaded() && isMapped(kAlpha));
    EXPECT_EQ(lookup(&copy), count);
    copy.FinalizeAndUnload();
    EXPECT_FALSE(isMapped(kAlpha));
    DUNXLibrary bare(kBeta.c_str(), "FixtureInit", nullptr); // no finalisation to undo the init
    for (int round = 0; round < 2; ++round, bare.FinalizeAndUnload())
        lookup(&bare);
    DUNXLibrary uninitialised(kBeta.c_str(), "NoSuchInit", "FixtureFinalize");
    lookup(&uninitialised); // loaded, never initialised: nothing to finalise
    uninitialised.FinalizeAndUnload();
    EXPECT_EQ(g_Calls, (Texts{"alpha:init", "alpha:finalize", "alpha:init", "alpha:finalize",
                              "alpha:finalize", "beta:init", "beta:init"}));
}

#include "Host.h"

#include "Interrupt.h"
#include "Progress.h"
#include "Settings.h"
#include "Summary.h"
#include "System.h"
#include "translator/DunxTranslator.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXLibrary.h>
#include <dunx/DUNXLogger.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXTaskEvent.h>
#include <dunx/DUNXTimingLogger.h>
#include <dunx/DUNXTrace.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace dunx::driver {
namespace {

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of(system::kPathSeparators);
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Creates `folder` and its missing parents.
bool makeFolders(const std::string& folder) {
    struct stat info;
    if (::stat(folder.c_str(), &info) == 0)
        return S_ISDIR(info.st_mode);
    const std::string parent = folderOf(folder);
    if (parent != folder && parent != "." && !makeFolders(parent))
        return false;
    return system::MakeFolder(folder);
}

// Keeps the texts of the warnings and errors fired while a module loads: the
// loader's reason is in one of them.
class MessageCatcher : public DUNXEventListener {
public:
    MessageCatcher() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~MessageCatcher() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        if (event.IsA("DUNXWarningEvent") || event.IsA("DUNXErrorEvent"))
            if (const char* message = static_cast<DUNXTextEvent&>(event).GetMessage())
                m_Messages.emplace_back(message);
    }
    // The text after `marker` in the last message holding it, else "".
    std::string After(const char* marker) const {
        for (auto message = m_Messages.rbegin(); message != m_Messages.rend(); ++message) {
            const std::size_t at = message->find(marker);
            if (at != std::string::npos) {
                std::string reason = message->substr(at + std::strlen(marker));
                while (!reason.empty() && (reason.back() == '\n' || reason.back() == '.'))
                    reason.pop_back();
                return reason;
            }
        }
        return {};
    }

private:
    std::vector<std::string> m_Messages;
};

class Translation {
public:
    Translation(const CommandLine& line, Outcome& outcome)
        : m_Line(line), m_Outcome(outcome), m_Input(line.operands[0]), m_Output(line.operands[1]) {
        m_Outcome.input = m_Input;
        m_Outcome.output = m_Output;
        const std::string folder = line.logDir.empty() ? std::string() : line.logDir + "/";
        m_ReadLog = folder + "travex_read.log";
        m_WriteLog = folder + "travex_write.log";
    }

    DUNIResult Run() {
        const auto start = std::chrono::steady_clock::now();
        DUNXStartProductEvent product(
            "dunx", m_Line.translator.empty() ? kDefaultTranslator : m_Line.translator.c_str());
        product.AddOption("Input", m_Input.c_str());
        product.AddOption("Output", m_Output.c_str());
        if (!m_Line.configFile.empty())
            product.AddOption("Configuration File", m_Line.configFile.c_str());
        for (const std::string& assignment : m_Line.optionAssignments) {
            const std::size_t equal = assignment.find('=');
            if (equal != std::string::npos && equal > 0)
                product.AddOption(assignment.substr(0, equal).c_str(),
                                  assignment.c_str() + equal + 1);
        }
        if (!m_Line.unit.empty())
            product.AddOption(kUnitOption, m_Line.unit.c_str());
        DUNXEventBus::Fire(product);

        DUNXStartConversionTaskEvent::Fire();
        const DUNIResult result = conversion();
        // The product's text knows only success, abort and failure: a success
        // with a remark (no geometry, partial) completed all the same, and the
        // stage that made the remark has already printed it.
        const DUNIResult ended = result.IsSuccess() ? DUNIResult(DUNI_S_SUCCESS) : result;
        DUNXEndTaskEvent::Fire(ended, "Conversion", "Conversion", DUNXLevelInfo, true);
        DUNXEndProductEvent::Fire(ended);
        m_Outcome.result = result;
        m_Outcome.seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return result;
    }

private:
    DUNIResult conversion() {
        DUNXStartOptionsTaskEvent::Fire();
        DUNIResult result = guarded("options", [&] { return options(); });
        DUNXEndOptionsTaskEvent::Fire(result);
        if (result.IsFailure())
            return result;

        DUNXStartPreprocessDocumentEvent::Fire(true);
        result = guarded("input", [&] { return preprocess(); });
        DUNXEndPreprocessDocumentEvent::Fire(result, true);
        if (result.IsFailure())
            return result;

        DUNIResult overall = read();
        if (overall.IsFailure())
            return overall;

        DUNXStartTaskEvent::Fire("Translation", "Translation", DUNXLevelInfo);
        result = guarded("translation", [&] { return translate(); });
        DUNXEndTranslationTaskEvent::Fire(result, false);
        overall &= result;
        if (overall.IsFailure())
            return overall;

        DUNXStartPostprocessDocumentEvent::Fire();
        result = guarded("output", [&] {
            DUNXCallbackShared::IsAborted();
            DUNXUnitValue::SetWriteUnit(m_Request.outputUnit);
            return DUNIResult(DUNI_S_SUCCESS);
        });
        DUNXEndPostprocessDocumentEvent::Fire(result);
        overall &= result;
        if (overall.IsFailure())
            return overall;

        overall &= write();
        return overall;
    }

    // The options set: built, the output unit read from it, and dumped on the
    // information channel under the options stage's banner.
    DUNIResult options() {
        ConfigFileFindings findings;
        std::string error;
        DUNIResult result = BuildOptions(m_Line, m_Options, findings, error);
        if (result.IsFailure())
            return fail(result, "options", error);
        for (const std::string& key : findings.ignoredKeys)
            DUNXWarning::Printf("%s: %s is in a named section, which the translator does not read",
                                m_Line.configFile.c_str(), key.c_str());
        result = ResolveOutputUnit(m_Options, m_Request.outputUnit, m_Outcome.unit, error);
        if (result.IsFailure())
            return fail(result, "options", error);
        m_Options.Dump("--------------------- Options Set by User ------------------", "%-28s : %s",
                       nullptr);
        m_Request.options = &m_Options;
        return DUNI_S_SUCCESS;
    }

    // Everything that can be checked before reading: the input, the output's
    // folder, the log folder, and the translator module.
    DUNIResult preprocess() {
        struct stat info;
        if (::stat(m_Input.c_str(), &info) != 0)
            return fail(errno == ENOENT ? DUNI_E_FILE_NOT_FOUND : DUNI_E_FILE_OPEN, "input",
                        m_Input + ": cannot read the input: " + std::strerror(errno));
        if (S_ISDIR(info.st_mode))
            return fail(DUNI_E_FILE_OPEN, "input",
                        m_Input + ": cannot read the input: it is a folder");
        if (::access(m_Input.c_str(), R_OK) != 0)
            return fail(DUNI_E_FILE_OPEN, "input",
                        m_Input + ": cannot read the input: " + std::strerror(errno));
        if (::stat(m_Output.c_str(), &info) == 0) {
            if (S_ISDIR(info.st_mode))
                return fail(DUNI_E_FILE_SAVE, "output",
                            m_Output + ": cannot write the output: it is a folder");
            if (system::StampOf(m_Output).SameFileAs(system::StampOf(m_Input)))
                return fail(DUNI_E_FILE_SAVE, "output",
                            m_Output + ": cannot write the output: it is the input file");
        }
        const std::string outputFolder = folderOf(m_Output);
        if (::stat(outputFolder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            return fail(DUNI_E_FILE_SAVE, "output",
                        m_Output + ": cannot write the output: the folder " + outputFolder +
                            " does not exist");
        if (!system::CanWriteInFolder(outputFolder))
            return fail(DUNI_E_FILE_SAVE, "output",
                        m_Output + ": cannot write the output: the folder " + outputFolder +
                            " is not writable (" + std::strerror(errno) + ")");
        if (!m_Line.reportFile.empty()) {
            const std::string reportFolder = folderOf(m_Line.reportFile);
            if (::stat(reportFolder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
                return fail(DUNI_E_FILE_SAVE, "report",
                            m_Line.reportFile + ": cannot write the report: the folder " +
                                reportFolder + " does not exist");
        }

        const std::string logFolder = m_Line.logDir.empty() ? "." : m_Line.logDir;
        errno = ENOTDIR; // what a failed makeFolders means when a file holds the path
        if (!makeFolders(logFolder) || !system::CanWriteInFolder(logFolder))
            return fail(DUNI_E_FILE_OPEN, "log folder",
                        logFolder + ": cannot write the log files there: " + std::strerror(errno));
        // Logs of an earlier run would pass for this run's.
        std::remove(m_ReadLog.c_str());
        std::remove(m_WriteLog.c_str());

        m_Request.input = m_Input;
        m_Request.output = m_Output;
        return loadTranslator();
    }

    DUNIResult loadTranslator() {
        std::string path, error;
        DUNIResult result = LocateTranslator(m_Line.translator, path, error);
        if (result.IsFailure())
            return fail(result, "translator", error);
        m_Outcome.translator = path;

        // The library manager keeps names of at most 63 characters: a longer
        // path is loaded from the module's own folder under its short name.
        std::string name = path;
        system::FolderVisit moduleFolder;
        if (path.size() >= static_cast<std::size_t>(DUNXLibrary::kNameCapacity)) {
            const std::size_t slash = path.find_last_of(system::kPathSeparators);
            if (moduleFolder.Enter(path.substr(0, slash)))
                name = "./" + path.substr(slash + 1);
        }
        DUNXLibrary* library = nullptr;
        void* read = nullptr;
        void* write = nullptr;
        {
            MessageCatcher catcher;
            result = DUNXLibraryManager::CreateLibrary(name.c_str(), translator::kInitFunction,
                                                       translator::kFinalizeFunction, library);
            if (result.IsSuccess() && library)
                result = library->GetFunction(translator::kReadFunction, read);
            if (result.IsSuccess() && library)
                result = library->GetFunction(translator::kWriteFunction, write);
            if (!library || !library->IsLoaded())
                error = "translator " + path +
                        " cannot be loaded: " + catcher.After("library load error: ");
            else if (!read || !write)
                error = "translator " + path + " is not a dunx translator: it has no " +
                        (read ? translator::kWriteFunction : translator::kReadFunction) +
                        " function";
        }
        if (!moduleFolder.Leave())
            error = std::string("cannot return to the current folder: ") + std::strerror(errno);
        if (!error.empty())
            return fail(DUNI_E_INVALID_ARGUMENT, "translator", error);
        m_Read = reinterpret_cast<translator::ReadFunction>(read);
        m_Write = reinterpret_cast<translator::WriteFunction>(write);
        return DUNI_S_SUCCESS;
    }

    DUNIResult read() {
        DUNIResult result = DUNI_E_FAIL;
        {
            // Opened and closed around the read, so that it holds the whole direction.
            DUNXLogFileWrapper log(m_ReadLog.c_str());
            if (log.GetFile())
                m_Outcome.readLog = m_ReadLog;
            DUNXStartReadFileTaskEvent::Fire(DUNXString::FromUtf8(m_Input.c_str()));
            DUNXInfo::Printf("Reading %s with %s", m_Input.c_str(), m_Outcome.translator.c_str());
            result = guarded("input", [&] {
                DUNXCallbackShared::IsAborted();
                return DUNIResult(m_Read(m_Request, m_Model, m_Outcome.report));
            });
            if (result.IsFailure())
                fail(result, "input", m_Input + ": reading failed: " + result.GetMessage());
            DUNXEndReadFileTaskEvent::Fire(result, &m_Model.header);
            // The last line of the log, whatever happened: a reader can tell
            // a finished log from a cut one.
            const int components = static_cast<int>(m_Model.components.size());
            DUNXInfo::Printf("Read %s: %s (%lld triangles, %d component%s)", m_Input.c_str(),
                             result.GetMessage(), m_Outcome.report.trianglesRead, components,
                             components == 1 ? "" : "s");
        }
        return result;
    }

    DUNIResult translate() {
        DUNXCallbackShared::IsAborted();
        bool anyTriangle = false;
        for (const translator::Part& part : m_Model.parts)
            anyTriangle = anyTriangle || !part.indices.empty();
        if (m_Model.components.empty() || !anyTriangle) {
            DUNXWarning::Printf("%s: no triangle to write", m_Input.c_str());
            return DUNI_S_NO_GEOMETRY;
        }
        return DUNI_S_SUCCESS;
    }

    DUNIResult write() {
        DUNIResult result = DUNI_E_FAIL;
        {
            DUNXLogFileWrapper log(m_WriteLog.c_str());
            if (log.GetFile())
                m_Outcome.writeLog = m_WriteLog;
            DUNXStartWriteFileTaskEvent::Fire(DUNXFilePath(DUNXString::FromUtf8(m_Output.c_str())));
            DUNXInfo::Printf("Writing %s with lengths in %s", m_Output.c_str(),
                             m_Outcome.unit.c_str());
            const system::FileStamp before = system::StampOf(m_Output);
            result = guarded("output", [&] {
                DUNXCallbackShared::IsAborted();
                return DUNIResult(m_Write(m_Request, m_Model, m_Outcome.report));
            });
            if (result.IsFailure()) {
                fail(result, "output", m_Output + ": writing failed: " + result.GetMessage());
                // A file this write made or changed is partial: it goes.
                const system::FileStamp after = system::StampOf(m_Output);
                if (after.exists && !(after == before))
                    std::remove(m_Output.c_str());
            } else {
                m_Outcome.outputWritten = true;
            }
            DUNXEndWriteFileTaskEvent::Fire(DUNXString::FromUtf8(m_Output.c_str()), result);
            DUNXInfo::Printf("Wrote %s: %s (%lld triangles, %lld vertices, lengths in %s)",
                             m_Output.c_str(), result.GetMessage(),
                             m_Outcome.report.trianglesWritten, m_Outcome.report.vertices,
                             m_Outcome.unit.c_str());
        }
        return result;
    }

    // Runs one stage, turning an abort request and a thrown fault into its result.
    template <class Stage> DUNIResult guarded(const char* kind, Stage stage) {
        try {
            return stage();
        } catch (const DUNXAbortException&) {
            return fail(DUNI_A_ABORTED, "interrupted",
                        "translation of " + m_Input + " interrupted by the user");
        } catch (const std::bad_alloc&) {
            return fail(DUNI_E_FAIL, kind, m_Input + ": out of memory");
        } catch (const std::exception& fault) {
            return fail(DUNI_E_UNEXPECTED, kind, m_Input + ": " + fault.what());
        }
    }

    // Records the first failure's one-line message (the module's own, when it
    // gave one, wins) and its kind, and returns `result`.
    DUNIResult fail(DUNIResult result, const std::string& kind, const std::string& message) {
        translator::Report& report = m_Outcome.report;
        if (report.error.empty())
            report.error = message;
        if (report.errors.empty())
            ++report.errors[kind];
        return result;
    }

    const CommandLine& m_Line;
    Outcome& m_Outcome;
    std::string m_Input;
    std::string m_Output;
    std::string m_ReadLog;
    std::string m_WriteLog;
    DUNXOptions m_Options;
    translator::Request m_Request;
    translator::Model m_Model;
    translator::ReadFunction m_Read = nullptr;
    translator::WriteFunction m_Write = nullptr;
};

} // namespace

void PrintError(const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "dunx: error: %s\n", message.c_str());
}

int RunTranslate(const CommandLine& line) {
    if (line.operands.size() != 2) {
        PrintError(line.operands.size() < 2
                       ? "translate needs INPUT and OUTPUT.obj (see dunx --help)"
                       : "translate takes INPUT and OUTPUT.obj only; unexpected '" +
                             line.operands[2] + "'");
        return DUNIResult(DUNI_E_INVALID_ARGUMENT).GetReturnCode();
    }

    Outcome outcome;
    StageMonitor stages(line.progress && !line.quiet && ::isatty(STDERR_FILENO));
    DUNXProcessPerformanceMonitor performance;
    stages.Attach();
    DUNXConsoleLogger::SetUp(line.consoleLevel, &performance);
    stages.AttachAfter();
    InstallInterruptHandler();
    {
        // The model is gone before the module that filled it is unloaded.
        Translation translation(line, outcome);
        translation.Run();
    }
    DUNXTimingLogger::Stop();
    stages.Detach();
    RemoveInterruptHandler();
    DUNXLibraryManager::FreeLibraries();
    outcome.stages = stages.GetStageSeconds();

    DUNIResult result = outcome.result;
    std::string reportError;
    if (!line.reportFile.empty() && !WriteJsonReport(line.reportFile, outcome, reportError)) {
        if (result.IsSuccess())
            result = DUNI_E_FILE_SAVE;
        if (outcome.report.error.empty())
            outcome.report.error = reportError;
    }
    // A run that never got to read has nothing to sum up but its error.
    if (!line.quiet && (result.IsSuccess() || !outcome.readLog.empty())) {
        PrintSummary(stdout, outcome, reportError.empty() ? line.reportFile : std::string());
        std::fflush(stdout);
    }
    if (result.IsFailure())
        PrintError(outcome.report.error.empty() ? std::string(result.GetMessage())
                                                : outcome.report.error);
    DUNXConsoleLogger::GetInstance().Finalize();
    return result.GetReturnCode();
}

} // namespace dunx::driver

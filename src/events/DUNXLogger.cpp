#include <dunx/DUNXLogger.h>

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXTimingLogger.h>

#include "platform/Platform.h"

namespace {

constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

DUNXEventLevel levelFromEnvironment(const char* variable, DUNXEventLevel unset,
                                    DUNXEventLevel unknown) {
    DUNXString text;
    if (DUNXEnvironment::GetVariable(DUNXString(variable), text).IsFailure())
        return unset;
    return DUNXEvent::GetLevel(text, unknown);
}

} // namespace

// --- DUNXLogger ----------------------------------------------------------------

DUNXLogger::DUNXLogger() = default;

DUNXLogger::~DUNXLogger() {
    DUNXLogger::Finalize();
}

void DUNXLogger::HandleEvent(DUNXEvent& event) {
    if (m_Stream && event.GetLevel() >= m_Threshold)
        event.GetFormattedDescription(m_Stream.get());
}

void DUNXLogger::Initialize(DUNXOutputStream* stream, DUNXEventLevel level) {
    if (m_Stream || !stream)
        return;
    if (level == DUNXLevelUnset)
        level = levelFromEnvironment("DUNXLogLevel", DUNXLevelInfo, DUNXLevelInfo);
    m_Threshold = level;
    m_Stream.reset(stream);
    DUNXEventBus::GetEventBus().AddListener(this);
}

template <class Make> void DUNXLogger::initializeBuilt(Make make, DUNXEventLevel level) {
    std::unique_ptr<DUNXOutputStream> stream = make();
    Initialize(stream.get(), level);
    if (m_Stream.get() == stream.get())
        stream.release(); // taken over; otherwise the unused stream goes here
}

void DUNXLogger::Initialize(std::FILE* file, DUNXEventLevel level) {
    if (!file)
        return;
    initializeBuilt([file] { return std::make_unique<DUNXFileOutputStream>(file); }, level);
}

void DUNXLogger::Initialize(const char* path, DUNXEventLevel level) {
    if (!path || !*path)
        return;
    try {
        initializeBuilt([path] { return std::make_unique<DUNXFileOutputStream>(path); }, level);
    } catch (const DUNXAbortException&) {
        throw DUNXAbortException();
    } catch (...) {
        // Any other fault leaves the logger uninitialised: logging never stops a translation.
    }
}

void DUNXLogger::Initialize(DUNXFilePath& path, DUNXEventLevel level) {
    if (!path.IsValid())
        return;
    try {
        const DUNXString text = path.GetPath();
        const char* narrow = text;
        initializeBuilt([narrow] { return std::make_unique<DUNXFileOutputStream>(narrow); }, level);
    } catch (const DUNXAbortException&) {
        throw DUNXAbortException();
    } catch (...) {
    }
}

void DUNXLogger::Finalize() {
    m_Threshold = DUNXLevelNone;
    DUNXEventBus::GetEventBus().RemoveListener(this);
    m_Stream.reset();
}

// --- DUNXConsoleLogger -----------------------------------------------------------

DUNXConsoleLogger::DUNXConsoleLogger() = default;

DUNXConsoleLogger::~DUNXConsoleLogger() {
    DUNXConsoleLogger::Finalize();
}

void DUNXConsoleLogger::HandleEvent(DUNXEvent& event) {
    if (!IsInitialized() || event.GetLevel() < GetThreshold())
        return;
    DUNXOutputStream* stream =
        event.GetLevel() >= DUNXLevelWarning ? m_StdErr.get() : m_StdOut.get();
    event.GetFormattedDescription(stream);
}

void DUNXConsoleLogger::Finalize() {
    DUNXLogger::Finalize();
    m_StdOut.reset();
    m_StdErr.reset();
}

void DUNXConsoleLogger::Initialize(DUNXEventLevel level) {
    if (IsInitialized())
        return;
    // The descriptor objects do not close 1 and 2 when the streams go.
    m_StdOut =
        std::make_unique<DUNXFileOutputStream>(DUNXFileHandle(new DUNXFile(kStandardOutput, "w")));
    m_StdErr =
        std::make_unique<DUNXFileOutputStream>(DUNXFileHandle(new DUNXFile(kStandardError, "w")));
    // Kept asymmetric on purpose: the variable overrides even an explicit level,
    // and unreadable text silences the console.
    const DUNXEventLevel fallback = level == DUNXLevelUnset ? DUNXLevelInfo : level;
    SetThreshold(levelFromEnvironment("DUNXConsoleTracesLevel", fallback, DUNXLevelNone));
    DUNXEventBus::GetEventBus().AddListener(this);
}

DUNXConsoleLogger& DUNXConsoleLogger::GetInstance() {
    static DUNXConsoleLogger console;
    return console;
}

void DUNXConsoleLogger::SetUp(DUNXEventLevel level, DUNXBasePerformanceMonitor* monitor) {
    GetInstance().Initialize(level);
    DUNXTimingLogger::SetUp(monitor);
}

// --- DUNXLogFileWrapper ----------------------------------------------------------

DUNXLogFileWrapper::DUNXLogFileWrapper(bool reading) {
    open(reading ? "travex_read.log" : "travex_write.log");
}

DUNXLogFileWrapper::DUNXLogFileWrapper(const char* path) {
    if (path && *path)
        open(path);
}

DUNXLogFileWrapper::DUNXLogFileWrapper(std::FILE* file) : m_File(file), m_Borrowed(true) {
    if (m_File)
        m_Logger.Initialize(m_File, DUNXLevelUnset);
}

DUNXLogFileWrapper::~DUNXLogFileWrapper() {
    // The logger's stream goes first: it must never touch the file after fclose.
    m_Logger.Finalize();
    if (m_File && !m_Borrowed)
        std::fclose(m_File);
    m_File = nullptr;
    m_Borrowed = false;
}

void DUNXLogFileWrapper::open(const char* path) {
    m_File = dunx::platform::OpenFile(path, "w");
    if (m_File)
        m_Logger.Initialize(m_File, DUNXLevelUnset);
}

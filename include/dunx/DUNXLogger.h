// Loggers: the listeners that turn events into text on streams, files and the console.
#pragma once

#include <dunx/DUNXEvent.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXFilePath.h>

#include <cstdio>
#include <memory>

class DUNXOutputStream;
class DUNXBasePerformanceMonitor;

/// Writes every event at or above its threshold into one stream, as the event
/// describes itself (no time stamp, prefix, line end or flush of its own).
/// Passes nothing until initialised (threshold 999, no stream) and again after
/// `Finalize`. The first initialisation wins until `Finalize`.
class DUNX_EXPORT DUNXLogger : public DUNXEventListener {
public:
    /// Threshold 999, no stream, not on the bus.
    DUNXLogger();
    /// As `Finalize`.
    ~DUNXLogger() override;
    DUNXLogger(const DUNXLogger&) = delete;
    DUNXLogger& operator=(const DUNXLogger&) = delete;

    /// Writes `event`'s text into the stream when its level reaches the threshold.
    void HandleEvent(DUNXEvent& event) override;
    /// Takes over `stream` (deleting it later), sets the threshold and joins the
    /// bus. `level` -1 reads `DUNXLogLevel` (unset or unknown text: 50, "INFO").
    /// Does nothing, and does not take `stream`, when already initialised or
    /// when `stream` is null.
    virtual void Initialize(DUNXOutputStream* stream, DUNXEventLevel level);
    /// Writes into `file`, which the caller keeps and closes (never closed here).
    /// Null does nothing. Exceptions pass through.
    virtual void Initialize(std::FILE* file, DUNXEventLevel level);
    /// Writes into the file at `path`, created or truncated. Null or empty does
    /// nothing. `DUNXAbortException` passes through; other exceptions leave the
    /// logger uninitialised.
    virtual void Initialize(const char* path, DUNXEventLevel level);
    /// As the text form, for a valid `path`.
    virtual void Initialize(DUNXFilePath& path, DUNXEventLevel level);
    /// Threshold back to 999, off the bus, stream deleted (its file flushed and,
    /// when opened here, closed). The logger may be initialised again.
    virtual void Finalize();

    /// The threshold (999 until initialised).
    DUNXEventLevel GetThreshold() const { return m_Threshold; }
    /// True while the logger has a stream.
    bool HasStream() const { return m_Stream != nullptr; }

protected:
    /// Sets the threshold.
    void SetThreshold(DUNXEventLevel level) { m_Threshold = level; }

private:
    template <class Make> void initializeBuilt(Make make, DUNXEventLevel level);

    DUNXEventLevel m_Threshold = DUNXLevelNone;
    std::unique_ptr<DUNXOutputStream> m_Stream;
};

/// Writes events to the console: warnings (level 70) and worse to standard
/// error, the rest to standard output. Descriptors 1 and 2 are never closed.
class DUNX_EXPORT DUNXConsoleLogger : public DUNXLogger {
public:
    DUNXConsoleLogger();
    /// Off the bus, console streams deleted.
    ~DUNXConsoleLogger() override;

    void HandleEvent(DUNXEvent& event) override;
    /// Also drops the console streams, so that the logger can be initialised again.
    void Finalize() override;
    /// Opens the console streams and joins the bus, unless already initialised.
    /// The threshold is `DUNXConsoleTracesLevel` when that is set (unknown text:
    /// 999, nothing printed), otherwise `level`, or 50 when `level` is -1.
    virtual void Initialize(DUNXEventLevel level);
    using DUNXLogger::Initialize;

    /// The library's console logger, the one `SetUp` initialises.
    static DUNXConsoleLogger& GetInstance();
    /// Switches console output on (`GetInstance().Initialize(level)`), then
    /// task timing (`DUNXTimingLogger::SetUp(monitor)`, which does nothing
    /// unless `DUNXTaskTiming` is set). The host keeps `monitor` alive until
    /// `DUNXTimingLogger::Stop`.
    static void SetUp(DUNXEventLevel level, DUNXBasePerformanceMonitor* monitor = nullptr);

protected:
    /// True when either console stream exists.
    bool IsInitialized() const { return m_StdOut || m_StdErr; }

private:
    std::unique_ptr<DUNXOutputStream> m_StdOut;
    std::unique_ptr<DUNXOutputStream> m_StdErr;
};

/// A logger that owns the C file it writes into, for one translation direction.
/// Construct it when reading or writing starts and destroy it when it ends: the
/// log file is then complete, also when a `DUNXAbortException` unwinds the
/// translation. A file that cannot be opened leaves the wrapper inert.
class DUNX_EXPORT DUNXLogFileWrapper {
public:
    /// Opens "travex_read.log" (reading) or "travex_write.log" (writing) in the
    /// current folder, truncating it; threshold from `DUNXLogLevel` (default 50).
    explicit DUNXLogFileWrapper(bool reading);
    /// Opens `path` the same way; null or empty gives an inert wrapper.
    explicit DUNXLogFileWrapper(const char* path);
    /// Writes into `file`, which the caller keeps and closes; null gives an inert wrapper.
    explicit DUNXLogFileWrapper(std::FILE* file);
    /// Finalises the logger first, so that nothing writes into the file once
    /// it is closed, then closes the file unless it was the caller's.
    ~DUNXLogFileWrapper();
    DUNXLogFileWrapper(const DUNXLogFileWrapper&) = delete;
    DUNXLogFileWrapper& operator=(const DUNXLogFileWrapper&) = delete;

    /// The file written into, or null for an inert wrapper.
    std::FILE* GetFile() const { return m_File; }
    /// The logger.
    DUNXLogger& GetLogger() { return m_Logger; }

private:
    void open(const char* path);

    std::FILE* m_File = nullptr;
    DUNXLogger m_Logger;
    bool m_Borrowed = false;
};

// Task timing: the timing logger and the performance monitors that feed it.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXEvent.h>
#include <dunx/DUNXExport.h>

#include <string>
#include <vector>

/// What the host knows about the process: CPU times and memory. The timing
/// logger asks it at every task start and end, and prints its report in the
/// summary. The host owns it and keeps it alive until `DUNXTimingLogger::Stop`.
class DUNX_EXPORT DUNXBasePerformanceMonitor {
public:
    virtual ~DUNXBasePerformanceMonitor();
    /// Prints the memory report on the information channel.
    virtual void PrintMemoryReport() = 0;
    /// Fills the CPU seconds the process has spent so far in the kernel and in
    /// user code; a failure leaves both as they were.
    virtual DUNIResult GetCpuTimes(double& kernelSeconds, double& userSeconds) = 0;
    /// Prints the CPU times and the memory report on the information channel.
    virtual DUNIResult PrintStatistics() = 0;
};

/// The monitor of this process, from the operating system: CPU times and the
/// peak and current resident memory.
class DUNX_EXPORT DUNXProcessPerformanceMonitor : public DUNXBasePerformanceMonitor {
public:
    DUNXProcessPerformanceMonitor();
    ~DUNXProcessPerformanceMonitor() override;
    /// Prints "Peak Resident Memory" and "Current Resident Memory" lines in
    /// megabytes, or one line saying the figures are unavailable.
    void PrintMemoryReport() override;
    /// `DUNI_E_FAIL` when the system cannot tell.
    DUNIResult GetCpuTimes(double& kernelSeconds, double& userSeconds) override;
    /// Prints kernel, user and total CPU seconds, then the memory report.
    /// `DUNI_E_FAIL` (after printing what is known) when the CPU times cannot be read.
    DUNIResult PrintStatistics() override;
    /// Peak and current resident memory in bytes; `DUNI_E_FAIL` (both untouched)
    /// when the system cannot tell.
    DUNIResult GetResidentMemory(unsigned long long& peakBytes,
                                 unsigned long long& currentBytes) const;
};

/// Measures every translation task from its start event to the matching end
/// event (same task identifier), adds the time to a total per task, and
/// prints a summary on the information channel when a product ends and when
/// it is finalised. Switched on by `SetUp` when the environment variable
/// `DUNXTaskTiming` holds a non-zero number.
///
/// Tasks up to 600 seconds are measured on the millisecond clock stamped on
/// the events, longer ones on calendar seconds. Repair stages (identifier
/// "Repair") and events without identifier or stamp are never timed. An end
/// closes the most recent open task of its identifier; tasks opened after it
/// and never ended are dropped; an end without any open task of its identifier
/// changes nothing. The summary lists the tasks in the order of the logger's
/// hash table, with elapsed, kernel, user and kernel+user seconds and calls:
///
///                                              Read File =     0.0420     0.0000     0.0400 0.0400
///                                              1x
class DUNX_EXPORT DUNXTimingLogger : public DUNXEventListener {
public:
    /// A disabled logger with an empty table of 17 slots; not on the bus.
    DUNXTimingLogger();
    /// Leaves the bus.
    ~DUNXTimingLogger() override;
    DUNXTimingLogger(const DUNXTimingLogger&) = delete;
    DUNXTimingLogger& operator=(const DUNXTimingLogger&) = delete;

    /// Times task events while enabled; every other event is ignored. With the
    /// detailed flag set, prints a line at each start and a line and a task
    /// report at each end. The end of the "Product" task prints the summary
    /// and empties the table and the open tasks for the next product.
    void HandleEvent(DUNXEvent& event) override;
    /// Enables the logger with an empty table and no open tasks (it does not
    /// join the bus: `SetUp` does that for the library's logger).
    void Initialize();
    /// When enabled and some task was timed since the last summary, prints the
    /// summary; then disables the logger and leaves the bus.
    void Finalize();

    /// True while the logger times events.
    bool IsEnabled() const { return m_Enabled; }
    /// Number of tasks in the table.
    int GetTaskCount() const { return m_Count; }
    /// Number of slots of the table (17, growing past three quarters full).
    int GetSlotCount() const { return static_cast<int>(m_Used.size()); }
    /// Number of open tasks (started and not ended).
    int GetOpenTaskCount() const { return static_cast<int>(m_Open.size()); }
    /// The totals of the task `identifier`; false (outputs untouched) when it
    /// was never timed.
    bool GetTaskTotals(const char* identifier, int& calls, double& elapsed, double& kernel,
                       double& user) const;

    /// Switches timing on when `DUNXTaskTiming` is set to a non-zero number:
    /// keeps `monitor` when not null (else the earlier one), takes the detailed
    /// flag from `DUNXTaskInfoDetailed` when set, and the first time prints
    /// "Task Timing On", enables the library's logger and adds it to the bus.
    /// Otherwise does nothing.
    static void SetUp(DUNXBasePerformanceMonitor* monitor);
    /// Finalises the library's logger (printing what is pending), forgets the
    /// monitor and the detailed flag: the next `SetUp` starts afresh.
    static void Stop();
    /// The library's logger, the one `SetUp` puts on the bus.
    static DUNXTimingLogger& GetInstance();
    /// The monitor kept by `SetUp`, or null.
    static DUNXBasePerformanceMonitor* GetPerformanceMonitor();
    /// The detailed flag (non-zero: lines at each task start and end).
    static int GetDetailedFlag();

private:
    struct StartRecord {
        std::string identifier;
        long long time;
        long clock;
        double kernel;
        double user;
        bool haveCpu; // kernel and user were read from a monitor
    };
    struct TaskTotals {
        int calls = 0;
        double elapsed = 0.0;
        double kernel = 0.0;
        double user = 0.0;
    };

    void start(const char* identifier, long long time, long clock);
    void end(const char* identifier, long long time, long clock);
    int findSlot(const std::string& identifier, unsigned hash) const;
    TaskTotals& entry(const std::string& identifier);
    void grow();
    void clear();
    void printSummary() const;

    bool m_Enabled = false;
    std::vector<StartRecord> m_Open; // the stack of open tasks, innermost last
    // The task table: an open hash table in three parallel arrays.
    std::vector<std::string> m_Keys;
    std::vector<TaskTotals> m_Values;
    std::vector<unsigned char> m_Used;
    int m_Count = 0;
    bool m_Pending = false; // a task was timed since the last summary
};

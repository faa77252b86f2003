#include <dunx/DUNXTimingLogger.h>

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXTaskEvent.h>
#include <dunx/DUNXTrace.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kInitialSlots = 17;
constexpr double kLoadFactor = 0.75;
// Tasks up to this long are measured on the millisecond clock, longer ones on
// calendar seconds (the clock may wrap on long runs).
constexpr double kClockLimitSeconds = 600.0;

// The library's timing state, as set by SetUp and cleared by Stop.
DUNXBasePerformanceMonitor* g_Monitor = nullptr;
int g_Detailed = 0;
bool g_Registered = false;

// The environment variable `name` read as an integer the way atoi reads it
// (text that is not a number is 0); false when it is not set.
bool integerVariable(const char* name, int& value) {
    DUNXString text;
    if (DUNXEnvironment::GetVariable(DUNXString(name), text).IsFailure())
        return false;
    const char* narrow = text;
    value = narrow ? static_cast<int>(std::strtol(narrow, nullptr, 10)) : 0;
    return true;
}

// DUNXString::hashCode of the identifier. ASCII text is hashed from its bytes
// (each byte is one unit); other text goes through the string, whose units
// depend on the locale.
unsigned identifierHash(const std::string& identifier) {
    unsigned hash = 0;
    for (unsigned char c : identifier) {
        if (c >= 0x80)
            return DUNXString(identifier.c_str()).hashCode();
        hash = hash * 33u + c;
    }
    return hash;
}

bool cpuTimes(double& kernel, double& user) {
    kernel = user = 0.0;
    return g_Monitor && g_Monitor->GetCpuTimes(kernel, user).IsSuccess();
}

void printSecondsLine(const char* label, double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%10.4f seconds.", seconds);
    DUNXInfo::Printf("%50s = %s ", label, text);
}

} // namespace

DUNXBasePerformanceMonitor::~DUNXBasePerformanceMonitor() = default;

// --- DUNXTimingLogger -------------------------------------------------------------

DUNXTimingLogger::DUNXTimingLogger()
    : m_Keys(kInitialSlots), m_Values(kInitialSlots), m_Used(kInitialSlots, 0) {}

DUNXTimingLogger::~DUNXTimingLogger() {
    DUNXEventBus::GetEventBus().RemoveListener(this);
}

void DUNXTimingLogger::HandleEvent(DUNXEvent& event) {
    if (!m_Enabled || !event.IsTimed())
        return;
    const auto* task = dynamic_cast<const DUNXTaskEvent*>(&event);
    if (!task)
        return;
    const char* identifier = task->GetTaskIdentifier();
    if (!identifier || std::strcmp(identifier, "Repair") == 0)
        return; // repair stages are too many and too short to be worth timing
    long long time = 0;
    long clock = 0;
    if (event.GetTime(time).IsFailure() || event.GetClock(clock).IsFailure())
        return;
    if (task->IsEndTask())
        end(identifier, time, clock);
    else
        start(identifier, time, clock);
}

void DUNXTimingLogger::start(const char* identifier, long long time, long clock) {
    if (g_Detailed)
        DUNXInfo::Printf("***************************%s Started***************************",
                         identifier);
    StartRecord record{identifier, time, clock, 0.0, 0.0, false};
    record.haveCpu = cpuTimes(record.kernel, record.user);
    m_Open.push_back(std::move(record));
}

void DUNXTimingLogger::end(const char* identifier, long long time, long clock) {
    if (g_Detailed)
        DUNXInfo::Printf("***************************%s Ending***************************",
                         identifier);
    // The most recent open task of this identifier; the tasks opened after it
    // were never ended and are dropped. Without one the event changes nothing.
    auto match = m_Open.end();
    while (match != m_Open.begin() && (match - 1)->identifier != identifier)
        --match;
    if (match == m_Open.begin())
        return;
    const StartRecord record = std::move(*(match - 1));
    m_Open.erase(match - 1, m_Open.end());

    double elapsed = static_cast<double>(time - record.time);
    if (elapsed <= kClockLimitSeconds)
        elapsed = static_cast<double>(clock - record.clock) / 1000.0;
    double kernel = 0.0, user = 0.0;
    if (record.haveCpu && cpuTimes(kernel, user)) {
        kernel -= record.kernel;
        user -= record.user;
    } else {
        kernel = user = 0.0;
    }
    TaskTotals& totals = entry(record.identifier);
    ++totals.calls;
    totals.elapsed += elapsed;
    totals.kernel += kernel;
    totals.user += user;
    m_Pending = true;

    if (g_Detailed) {
        DUNXInfo::Printf("================ Start Task Performance Info ================");
        printSecondsLine(" Elapsed Time", elapsed);
        printSecondsLine(" CPU Time", kernel + user);
        printSecondsLine(" User Time", user);
        printSecondsLine(" Kernel Time", kernel);
        DUNXInfo::Printf("================= End Task Performance Info =================");
    }
    if (record.identifier == "Product") {
        printSummary();
        clear();
    }
}

int DUNXTimingLogger::findSlot(const std::string& identifier, unsigned hash) const {
    // Linear probing: the first slot that holds the key or is free.
    const std::size_t slots = m_Used.size();
    std::size_t slot = hash % slots;
    while (m_Used[slot] && m_Keys[slot] != identifier)
        slot = (slot + 1) % slots;
    return static_cast<int>(slot);
}

DUNXTimingLogger::TaskTotals& DUNXTimingLogger::entry(const std::string& identifier) {
    const unsigned hash = identifierHash(identifier);
    std::size_t slot = static_cast<std::size_t>(findSlot(identifier, hash));
    if (m_Used[slot])
        return m_Values[slot];
    if (m_Count + 1 > kLoadFactor * static_cast<double>(m_Used.size())) {
        grow();
        slot = static_cast<std::size_t>(findSlot(identifier, hash));
    }
    m_Keys[slot] = identifier;
    m_Values[slot] = TaskTotals();
    m_Used[slot] = 1;
    ++m_Count;
    return m_Values[slot];
}

void DUNXTimingLogger::grow() {
    // Twice as many slots plus one keeps the count odd, as 17 is.
    std::vector<std::string> keys(2 * m_Used.size() + 1);
    std::vector<TaskTotals> values(keys.size());
    std::vector<unsigned char> used(keys.size(), 0);
    keys.swap(m_Keys);
    values.swap(m_Values);
    used.swap(m_Used);
    for (std::size_t i = 0; i < used.size(); ++i) {
        if (!used[i])
            continue;
        const std::size_t slot =
            static_cast<std::size_t>(findSlot(keys[i], identifierHash(keys[i])));
        m_Keys[slot] = std::move(keys[i]);
        m_Values[slot] = values[i];
        m_Used[slot] = 1;
    }
}

void DUNXTimingLogger::clear() {
    m_Open.clear();
    m_Keys.assign(kInitialSlots, std::string());
    m_Values.assign(kInitialSlots, TaskTotals());
    m_Used.assign(kInitialSlots, 0);
    m_Count = 0;
    m_Pending = false;
}

bool DUNXTimingLogger::GetTaskTotals(const char* identifier, int& calls, double& elapsed,
                                     double& kernel, double& user) const {
    if (!identifier)
        return false;
    const std::string key(identifier);
    const std::size_t slot = static_cast<std::size_t>(findSlot(key, identifierHash(key)));
    if (!m_Used[slot])
        return false;
    const TaskTotals& totals = m_Values[slot];
    calls = totals.calls;
    elapsed = totals.elapsed;
    kernel = totals.kernel;
    user = totals.user;
    return true;
}

void DUNXTimingLogger::printSummary() const {
    if (g_Monitor) {
        DUNXInfo::Printf("================ Start Memory Performance Summary ================");
        g_Monitor->PrintMemoryReport();
        DUNXInfo::Printf("================= End Memory Performance Summary =================");
        DUNXInfo::Printf("================ Start Timing Performance Summary ================");
        double kernel = 0.0, user = 0.0;
        if (g_Monitor->GetCpuTimes(kernel, user).IsSuccess())
            DUNXInfo::Printf("%50s = %10.4f seconds", "Process total CPU Time", kernel + user);
    }
    if (m_Count > 0) {
        DUNXInfo::Printf("                # task = elapsed(s), kernel(s), user(s), "
                         "cpu=kernel+user(s), #calls ");
        DUNXInfo::Printf("                #        elapsed= wall clock time");
        DUNXInfo::Printf("                #        kernel = system calls time");
        DUNXInfo::Printf("                #        user   = user code time");
        DUNXInfo::Printf("                #        cpu    = actual cpu time");
    }
    for (std::size_t slot = 0; slot < m_Used.size(); ++slot) {
        if (!m_Used[slot])
            continue;
        const TaskTotals& t = m_Values[slot];
        DUNXInfo::Printf("%50s = %10.4f %10.4f %10.4f %10.4f %8dx", m_Keys[slot].c_str(), t.elapsed,
                         t.kernel, t.user, t.kernel + t.user, t.calls);
    }
    DUNXInfo::Printf("================= End Timing Performance Summary =================");
}

void DUNXTimingLogger::Initialize() {
    clear();
    m_Enabled = true;
}

void DUNXTimingLogger::Finalize() {
    if (m_Enabled && m_Pending)
        printSummary();
    clear();
    m_Enabled = false;
    DUNXEventBus::GetEventBus().RemoveListener(this);
    if (this == &GetInstance())
        g_Registered = false;
}

void DUNXTimingLogger::SetUp(DUNXBasePerformanceMonitor* monitor) {
    int timing = 0;
    if (!integerVariable("DUNXTaskTiming", timing) || timing == 0)
        return;
    if (monitor)
        g_Monitor = monitor;
    int detailed = 0;
    if (integerVariable("DUNXTaskInfoDetailed", detailed))
        g_Detailed = detailed;
    if (!g_Registered) {
        DUNXInfo::Printf("Task Timing On");
        DUNXTimingLogger& logger = GetInstance();
        logger.Initialize();
        DUNXEventBus::GetEventBus().AddListener(&logger);
        g_Registered = true;
    }
}

void DUNXTimingLogger::Stop() {
    GetInstance().Finalize();
    g_Monitor = nullptr;
    g_Detailed = 0;
}

DUNXTimingLogger& DUNXTimingLogger::GetInstance() {
    static DUNXTimingLogger logger;
    return logger;
}

DUNXBasePerformanceMonitor* DUNXTimingLogger::GetPerformanceMonitor() {
    return g_Monitor;
}

int DUNXTimingLogger::GetDetailedFlag() {
    return g_Detailed;
}

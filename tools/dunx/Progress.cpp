#include "Progress.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXTaskEvent.h>

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace dunx::driver {
namespace {

// The share of the bar each stage of the host's nest takes: reading and
// writing are nearly all of a translation's time.
struct Share {
    const char* identifier;
    double share;
    const char* label;
};
constexpr Share kShares[] = {
    {"Options", 0.01, "options"},
    {"Source Document Preprocessing", 0.01, "preparing"},
    {"Read File", 0.55, "reading"},
    {"Translation", 0.02, "translating"},
    {"Target Document Postprocessing", 0.01, "preparing output"},
    {"File Write", 0.40, "writing"},
};

const Share* shareOf(const char* identifier) {
    for (const Share& share : kShares)
        if (std::strcmp(share.identifier, identifier) == 0)
            return &share;
    return nullptr;
}

void writeAll(const std::string& text) {
    const char* data = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, data, left);
        if (written <= 0)
            return;
        data += written;
        left -= static_cast<std::size_t>(written);
    }
}

// Start events and progress events print nothing, so they need no wiping.
bool writesNothing(DUNXEvent& event) {
    if (event.IsA("DUNXThirdPartyProgressEvent"))
        return true;
    const auto* task = dynamic_cast<const DUNXTaskEvent*>(&event);
    return task && !task->IsEndTask();
}

} // namespace

StageMonitor::StageMonitor(bool drawBar) : m_DrawBar(drawBar), m_Wiper(*this) {}

StageMonitor::~StageMonitor() {
    Detach();
}

void StageMonitor::Attach() {
    if (m_DrawBar)
        DUNXEventBus::GetEventBus().AddListener(&m_Wiper);
}

void StageMonitor::AttachAfter() {
    DUNXEventBus::GetEventBus().AddListener(this);
}

void StageMonitor::Detach() {
    DUNXEventBus::GetEventBus().RemoveListener(&m_Wiper);
    DUNXEventBus::GetEventBus().RemoveListener(this);
    wipe();
}

void StageMonitor::Wiper::HandleEvent(DUNXEvent& event) {
    if (!writesNothing(event))
        m_Owner.wipe();
}

void StageMonitor::HandleEvent(DUNXEvent& event) {
    if (event.IsA("DUNXThirdPartyProgressEvent")) {
        progressed(static_cast<DUNXThirdPartyProgressEvent&>(event).GetProgress());
        return;
    }
    const auto* task = dynamic_cast<const DUNXTaskEvent*>(&event);
    const char* identifier = task ? task->GetTaskIdentifier() : nullptr;
    if (identifier) {
        if (task->IsEndTask())
            ended(identifier);
        else
            started(identifier);
    }
    // Whatever the console printed has wiped the bar: put it back below.
    draw(!m_Shown);
}

void StageMonitor::started(const char* identifier) {
    m_Open.push_back({identifier, Clock::now()});
    if (const Share* share = shareOf(identifier)) {
        m_StageShare = share->share;
        m_StageFraction = 0.0;
        m_Label = share->label;
    }
}

void StageMonitor::ended(const char* identifier) {
    // The most recent open task of this identifier; tasks opened after it and
    // never ended are dropped, as the timing logger does.
    auto open = std::find_if(m_Open.rbegin(), m_Open.rend(),
                             [&](const Open& o) { return o.identifier == identifier; });
    if (open == m_Open.rend())
        return;
    const double seconds = std::chrono::duration<double>(Clock::now() - open->start).count();
    m_Open.erase(std::next(open).base(), m_Open.end());
    auto known = std::find_if(m_Seconds.begin(), m_Seconds.end(),
                              [&](const auto& entry) { return entry.first == identifier; });
    if (known == m_Seconds.end())
        m_Seconds.emplace_back(identifier, seconds);
    else
        known->second += seconds;
    if (const Share* share = shareOf(identifier)) {
        m_Done = std::min(1.0, m_Done + share->share);
        m_StageShare = 0.0;
        m_StageFraction = 0.0;
    }
}

void StageMonitor::progressed(double value) {
    if (!(value >= 0.0))
        return;
    // A fraction of the stage; a module that counts in percent is understood too.
    if (value > 1.0)
        value = value <= 100.0 ? value / 100.0 : 1.0;
    m_StageFraction = std::max(m_StageFraction, value);
    draw(false);
}

void StageMonitor::draw(bool force) {
    if (!m_DrawBar)
        return;
    const Clock::time_point now = Clock::now();
    if (!force && m_Shown && now - m_LastDraw < std::chrono::milliseconds(80))
        return;
    m_LastDraw = now;
    constexpr int kWidth = 32;
    const double fraction = std::min(1.0, GetFraction());
    const int filled = static_cast<int>(fraction * kWidth);
    std::string line = "\r[";
    line.append(static_cast<std::size_t>(filled), '#');
    line.append(static_cast<std::size_t>(kWidth - filled), '.');
    char percent[16];
    std::snprintf(percent, sizeof percent, "] %3d%% ", static_cast<int>(fraction * 100.0));
    line += percent;
    line += m_Label;
    line += "\033[K";
    writeAll(line);
    m_Shown = true;
}

void StageMonitor::wipe() {
    if (!m_Shown)
        return;
    writeAll("\r\033[K");
    m_Shown = false;
}

} // namespace dunx::driver

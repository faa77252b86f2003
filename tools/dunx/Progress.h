// Following a translation's stages: the time of each and a progress bar.
#pragma once

#include <dunx/DUNXEvent.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace dunx::driver {

/// Listens to the stage events of a translation. It measures every task
/// (start to matching end, by identifier) for the summary, and, when asked,
/// draws one progress bar on standard error: each stage of the host's nest has
/// a share of the bar, and `DUNXThirdPartyProgressEvent`s (a fraction from 0 to
/// 1 of the stage under way) move it within the stage.
///
/// The console logger writes on the same terminal: `Attach` must be called
/// before the console logger joins the bus and `AttachAfter` after it, so that
/// the bar is wiped before a line is printed and drawn again below it.
class StageMonitor : public DUNXEventListener {
public:
    /// `drawBar`: draw on standard error (the caller checks that it is a terminal).
    explicit StageMonitor(bool drawBar);
    /// Leaves the bus and wipes the bar.
    ~StageMonitor() override;
    StageMonitor(const StageMonitor&) = delete;
    StageMonitor& operator=(const StageMonitor&) = delete;

    /// Joins the bus ahead of the console logger (wiping the bar).
    void Attach();
    /// Joins the bus behind the console logger (timing, drawing).
    void AttachAfter();
    /// Leaves the bus and wipes the bar for good.
    void Detach();

    void HandleEvent(DUNXEvent& event) override;

    /// Seconds per task identifier, in the order the tasks first started.
    const std::vector<std::pair<std::string, double>>& GetStageSeconds() const { return m_Seconds; }
    /// The bar's position, from 0 to 1.
    double GetFraction() const { return m_Done + m_StageShare * m_StageFraction; }

private:
    using Clock = std::chrono::steady_clock;

    // Registered ahead of the console logger: wipes the bar before a line is printed.
    class Wiper : public DUNXEventListener {
    public:
        explicit Wiper(StageMonitor& owner) : m_Owner(owner) {}
        void HandleEvent(DUNXEvent& event) override;

    private:
        StageMonitor& m_Owner;
    };

    void started(const char* identifier);
    void ended(const char* identifier);
    void progressed(double value);
    void draw(bool force);
    void wipe();

    struct Open {
        std::string identifier;
        Clock::time_point start;
    };

    bool m_DrawBar;
    bool m_Shown = false; // the bar is on the screen
    Wiper m_Wiper;
    std::vector<Open> m_Open;
    std::vector<std::pair<std::string, double>> m_Seconds;
    std::string m_Label;
    double m_Done = 0.0;          // shares of the stages ended
    double m_StageShare = 0.0;    // share of the stage under way
    double m_StageFraction = 0.0; // how far it is, from 0 to 1
    Clock::time_point m_LastDraw;
};

} // namespace dunx::driver

// EventRecorder: while alive, records the name, level and formatted description of each event.
#pragma once

#include <dunx/DUNXEvent.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOutputStream.h>

#include <string>
#include <vector>

namespace dunx::test {

class EventRecorder : public DUNXEventListener {
public:
    struct Entry {
        std::string name;
        int level;
        std::string text;
    };

    EventRecorder() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~EventRecorder() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        DUNXStringOutputStream text;
        event.GetFormattedDescription(&text);
        const char* name = event.GetEventName();
        m_Entries.push_back({name ? name : "", static_cast<int>(event.GetLevel()),
                             std::string(text.GetText(), static_cast<size_t>(text.GetLength()))});
    }

    const std::vector<Entry>& entries() const { return m_Entries; }
    /// All recorded texts, one after the other.
    std::string texts() const {
        std::string all;
        for (const Entry& entry : m_Entries)
            all += entry.text;
        return all;
    }

private:
    std::vector<Entry> m_Entries;
};

} // namespace dunx::test

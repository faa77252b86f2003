// EventRecorder: a listener that keeps what each event would print.
#pragma once

#include <dunx/DUNXEvent.h>

#include <string>
#include <vector>

namespace dunx::test {

/// Registers itself on the bus for its lifetime and records, for every event,
/// its name, level and the text its `GetFormattedDescription` writes.
class EventRecorder : public DUNXEventListener {
public:
    struct Entry {
        std::string name;
        int level;
        std::string text;
    };

    EventRecorder();
    ~EventRecorder() override;
    void HandleEvent(DUNXEvent& event) override;

    const std::vector<Entry>& entries() const { return m_Entries; }
    /// All recorded texts, one after the other.
    std::string texts() const;

private:
    std::vector<Entry> m_Entries;
};

} // namespace dunx::test

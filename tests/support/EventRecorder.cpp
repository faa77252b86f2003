#include "support/EventRecorder.h"

#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOutputStream.h>

namespace dunx::test {

EventRecorder::EventRecorder() {
    DUNXEventBus::GetEventBus().AddListener(this);
}

EventRecorder::~EventRecorder() {
    DUNXEventBus::GetEventBus().RemoveListener(this);
}

void EventRecorder::HandleEvent(DUNXEvent& event) {
    DUNXStringOutputStream text;
    event.GetFormattedDescription(&text);
    m_Entries.push_back({event.GetEventName() ? event.GetEventName() : "",
                         static_cast<int>(event.GetLevel()),
                         std::string(text.GetText(), static_cast<std::size_t>(text.GetLength()))});
}

std::string EventRecorder::texts() const {
    std::string all;
    for (const Entry& entry : m_Entries)
        all += entry.text;
    return all;
}

} // namespace dunx::test

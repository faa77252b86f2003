#include <dunx/DUNXEvent.h>

#include <dunx/DUNXEventBus.h>

#include <cstring>

namespace {

struct LevelKeyword {
    const char* text;
    DUNXEventLevel level;
};

// In the order they are tried for each initial letter.
constexpr LevelKeyword kKeywords[] = {
    {"ALL", DUNXLevelAll},         {"ABORT", DUNXLevelAbort}, {"DEBUG", DUNXLevelDebug},
    {"ERROR", DUNXLevelError},     {"INFO", DUNXLevelInfo},   {"NONE", DUNXLevelNone},
    {"VERBOSE", DUNXLevelVerbose},
};

bool sameText(const DUNXString& text, const char* keyword) {
    const int length = text.length();
    for (int i = 0; i < length; ++i)
        if (keyword[i] == '\0' || text[i] != static_cast<unsigned char>(keyword[i]))
            return false;
    return keyword[length] == '\0';
}

} // namespace

DUNXEvent::DUNXEvent(const DUNXEvent& other)
    : DUNXObject(other), m_EventName(other.m_EventName), m_Level(other.m_Level),
      m_TimeStamped(other.m_TimeStamped), m_Time(other.m_Time), m_Clock(other.m_Clock) {}

DUNXEvent::~DUNXEvent() = default;

void DUNXEvent::GetFormattedDescription(DUNXOutputStream*) {}

bool DUNXEvent::IsTimed() const {
    return false;
}

void DUNXEvent::SetEventName(const char* name) {
    if (name && *name)
        m_EventName.assign(name);
}

bool DUNXEvent::IsA(const char* name) const {
    const char* own = m_EventName.get();
    return name && own && std::strcmp(name, own) == 0;
}

DUNIResult DUNXEvent::SetTime(const long long& time) {
    m_Time = time;
    m_TimeStamped = true;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXEvent::SetClock(const long& clock) {
    m_Clock = clock;
    m_TimeStamped = true;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXEvent::GetTime(long long& time) const {
    time = m_Time;
    return m_TimeStamped ? DUNI_S_SUCCESS : DUNI_E_FAIL;
}

DUNIResult DUNXEvent::GetClock(long& clock) const {
    clock = m_Clock;
    return m_TimeStamped ? DUNI_S_SUCCESS : DUNI_E_FAIL;
}

DUNXEventLevel DUNXEvent::GetLevel(const DUNXString& text, DUNXEventLevel defaultLevel) {
    if (text.length() == 0)
        return defaultLevel;
    // Only the first letter selects the keywords tried; anything outside
    // 'A'..'V' (lower case, digits, "WARNING") is the default at once.
    const unsigned short first = text[0];
    if (first < 'A' || first > 'V')
        return defaultLevel;
    for (const LevelKeyword& keyword : kKeywords)
        if (static_cast<unsigned char>(keyword.text[0]) == first && sameText(text, keyword.text))
            return keyword.level;
    return defaultLevel;
}

DUNXEventListener::DUNXEventListener() {
    // Touching the bus here makes it older than every listener, so it is
    // destroyed after them: a static listener may still remove itself at exit.
    DUNXEventBus::GetEventBus();
}

DUNXEventListener::DUNXEventListener(const DUNXEventListener&) : DUNXEventListener() {}

DUNXEventListener::~DUNXEventListener() = default;

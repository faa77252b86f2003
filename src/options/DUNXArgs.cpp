#include <dunx/DUNXArgs.h>

#include <cstring>

DUNXArgs::DUNXArgs(int argc, char** argv)
    : m_LastIndex(argv && argc > 0 ? argc - 1 : -1), m_Argv(argv) {
    for (int i = m_LastIndex; i >= 0; --i) {
        const char* argument = At(i);
        if (argument && argument[0] == '-') {
            m_LastOptionIndex = i;
            break;
        }
    }
}

DUNXArgs::~DUNXArgs() {
    m_LastIndex = 0;
    m_Argv = nullptr;
    m_Current = 0;
    m_LastOptionIndex = 0;
    m_InCluster = false;
    m_ClusterLetter = '?';
    m_ClusterPos = 0;
}

const char* DUNXArgs::At(int i) const {
    return m_Argv && i >= 0 && i <= m_LastIndex ? m_Argv[i] : nullptr;
}

char* DUNXArgs::GetNextArg() {
    if (m_Current >= m_LastIndex)
        return nullptr;
    ++m_Current;
    return m_Argv[m_Current];
}

bool DUNXArgs::GetOptionArgument(char** argument) {
    // At the end of the line there is nothing to take (argv[argc] is null).
    const char* next = At(m_Current + 1);
    if (!argument || !next || next[0] == '-')
        return false;
    *argument = m_Argv[++m_Current];
    return true;
}

bool DUNXArgs::Shift() {
    const bool wasBelow = m_Current < m_LastIndex;
    if (m_Current <= m_LastIndex)
        ++m_Current;
    return wasBelow;
}

bool DUNXArgs::IsAnOption(int count, char** options, const char* argument, int* index) const {
    // Kept as it always was: the argument's text is compared over its own
    // length only, so an abbreviation selects the first option it starts, and
    // a lone '-' selects the first option of the list.
    const char* text = argument + 1;
    const std::size_t length = std::strlen(text);
    for (int i = 0; i < count; ++i) {
        if (options[i] && std::strncmp(text, options[i], length) == 0) {
            *index = i;
            return true;
        }
    }
    return false;
}

bool DUNXArgs::IsLetterAnOption(int count, char** options, char letter, int* index) const {
    for (int i = 0; letter != '\0' && i < count; ++i) {
        const char* name = options[i];
        if (name && name[0] == letter && (name[1] == '\0' || (name[1] == ':' && name[2] == '\0'))) {
            *index = i;
            return true;
        }
    }
    *index = -1;
    return false;
}

bool DUNXArgs::GetNextOption(int count, char** options, int* index) {
    int found = -1;
    if (m_InCluster) {
        const char* argument = At(m_Current);
        ++m_ClusterPos;
        if (argument && m_ClusterPos < static_cast<int>(std::strlen(argument))) {
            m_ClusterLetter = argument[m_ClusterPos];
            const bool known = options && IsLetterAnOption(count, options, m_ClusterLetter, &found);
            if (index)
                *index = found;
            return known;
        }
        m_InCluster = false;
    }
    while (options && m_Current < m_LastIndex) {
        const char* argument = m_Argv[++m_Current];
        if (!argument || argument[0] != '-')
            continue;
        if (IsAnOption(count, options, argument, &found)) {
            if (index)
                *index = found;
            return true;
        }
        if (IsLetterAnOption(count, options, argument[1], &found)) {
            m_InCluster = true;
            m_ClusterLetter = argument[1];
            m_ClusterPos = 1;
            if (index)
                *index = found;
            return true;
        }
    }
    if (index)
        *index = -1;
    return false;
}

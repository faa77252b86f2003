#include <dunx/DUNXOptionName.h>

DUNXOptionName::DUNXOptionName(const DUNXString& key) : m_Key(key) {}
DUNXOptionName::DUNXOptionName(const char* key) : m_Key(key) {}
DUNXOptionName::DUNXOptionName(const DUNXOptionName& other) = default;
DUNXOptionName& DUNXOptionName::operator=(const DUNXOptionName& other) = default;
DUNXOptionName::~DUNXOptionName() = default;

bool DUNXOptionName::IsIdentifierOf(const char* identifier, const char* key) {
    if (!identifier || !key)
        return false;
    if (*key == '/')
        ++key;
    for (; *key; ++key, ++identifier) {
        const bool separator = *key == '/' || *key == '.' || *key == '|' || *key == '!';
        if (*identifier != (separator ? '_' : *key))
            return false;
    }
    return *identifier == '\0';
}

#define DUNX_DEFINE_LIBRARY_KEY(identifier, key)                                                   \
    DUNX_DEFINE_OPTION_KEY(DUNXOptionName, identifier, key)
DUNX_LIBRARY_OPTION_KEYS(DUNX_DEFINE_LIBRARY_KEY)
#undef DUNX_DEFINE_LIBRARY_KEY

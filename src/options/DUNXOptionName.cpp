#include <dunx/DUNXOptionName.h>

DUNXOptionName::DUNXOptionName(const DUNXString& key) : m_Key(key) {}
DUNXOptionName::DUNXOptionName(const char* key) : m_Key(key) {}
DUNXOptionName::DUNXOptionName(const DUNXOptionName& other) = default;
DUNXOptionName& DUNXOptionName::operator=(const DUNXOptionName& other) = default;
DUNXOptionName::~DUNXOptionName() = default;

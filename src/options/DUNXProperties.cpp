#include <dunx/DUNXProperties.h>

DUNXProperties::DUNXProperties() = default;
DUNXProperties::DUNXProperties(const DUNXProperties& other) = default;
DUNXProperties& DUNXProperties::operator=(const DUNXProperties& other) = default;
DUNXProperties::~DUNXProperties() = default;

DUNIResult DUNXProperties::Set(const DUNXString& nameEqualsValue) {
    const int equals = nameEqualsValue.indexOf(static_cast<unsigned short>('='));
    if (equals < 0)
        return Set(nameEqualsValue, DUNXString(""));
    const DUNXString value = nameEqualsValue.substring(equals + 1);
    // substring() gives the null string for "NAME=": the value is then empty.
    return Set(nameEqualsValue.substring(0, equals), value.length() ? value : DUNXString(""));
}

DUNIResult DUNXProperties::Set(const DUNXString& name, const DUNXString& value) {
    if (name.length() == 0)
        return DUNI_E_INVALID_ARGUMENT;
    if (const int* index = m_Index.Find(name)) {
        m_Values[*index] = value;
        return DUNI_S_SUCCESS;
    }
    m_Index.Set(name, m_Names.Size());
    m_Names.Add(name);
    m_Values.Add(value);
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXProperties::Get(const DUNXString& name, DUNXString& value) const {
    const int* index = m_Index.Find(name);
    if (!index)
        return DUNI_E_FAIL;
    value = m_Values[*index];
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXProperties::GetAt(int index, DUNXString& name, DUNXString& value) const {
    if (index < 0 || index >= m_Names.Size())
        return DUNI_E_INVALID_ARGUMENT;
    name = m_Names[index];
    value = m_Values[index];
    return DUNI_S_SUCCESS;
}

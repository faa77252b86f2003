// DUNXOptionName: the key an option is created under.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

/// Holds one option key. Options are built from option names so that the
/// family's keys are named constants rather than free text.
class DUNX_EXPORT DUNXOptionName {
public:
    /// The key `key`.
    explicit DUNXOptionName(const DUNXString& key);
    /// The key converted from narrow `key` (null gives the null string).
    explicit DUNXOptionName(const char* key);
    DUNXOptionName(const DUNXOptionName& other);
    DUNXOptionName& operator=(const DUNXOptionName& other);
    ~DUNXOptionName();

    /// The key.
    operator DUNXString() const { return m_Key; }
    /// The narrow key, identical to the text it was built from.
    operator const char*() const { return m_Key; }
    /// The key, without a copy.
    const DUNXString& GetKey() const { return m_Key; }

private:
    DUNXString m_Key;
};

// DUNXProperties: a set of named text values, looked up without regard to case.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXHashMap.h>
#include <dunx/DUNXString.h>

/// Named text values kept in the order their names were first set. Names are
/// compared without regard to case; the first spelling of a name is kept.
///
///     props.Set("Mode=fast");        // name "Mode", value "fast"
///     props.Get("MODE", value);      // value => "fast"
class DUNX_EXPORT DUNXProperties {
public:
    DUNXProperties();
    DUNXProperties(const DUNXProperties& other);
    DUNXProperties& operator=(const DUNXProperties& other);
    virtual ~DUNXProperties();

    /// Splits `nameEqualsValue` at its first '=' and stores the value under the
    /// name, replacing the value of a name already set. A text without '='
    /// sets the whole text as a name with an empty value. `DUNI_E_INVALID_ARGUMENT`
    /// (and nothing stored) for a null text or an empty name ("=x").
    DUNIResult Set(const DUNXString& nameEqualsValue);
    /// Stores `value` under `name`, replacing an earlier value.
    /// `DUNI_E_INVALID_ARGUMENT` for an empty or null name.
    DUNIResult Set(const DUNXString& name, const DUNXString& value);
    /// Copies the value of `name` (any case) into `value`; `DUNI_E_FAIL` and
    /// `value` untouched when the name is not set.
    DUNIResult Get(const DUNXString& name, DUNXString& value) const;
    /// Number of names set.
    int Size() const { return m_Names.Size(); }
    /// The `index`-th name and its value, in the order names were first set;
    /// `DUNI_E_INVALID_ARGUMENT` (outputs untouched) when `index` is out of range.
    DUNIResult GetAt(int index, DUNXString& name, DUNXString& value) const;

private:
    DUNXDynamicArray<DUNXString> m_Names;
    DUNXDynamicArray<DUNXString> m_Values;
    DUNXHashMap<DUNXString, int, DUNXStringHashIgnoreCase, DUNXStringEqualIgnoreCase> m_Index;
};

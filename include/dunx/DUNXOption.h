// DUNXOption: a named, typed option with a default and a current value.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXOptionName.h>
#include <dunx/DUNXString.h>
#include <dunx/DUNXValue.h>

/// A named option. Its type is the type of the first value it receives (its
/// default), and never changes: setters of another type are refused with an
/// "DUNXOption::SetValue: Specified type (...) doesn't match stored type (...)
/// for option '...'." message (a warning for the int setter, an error for the
/// others) and `DUNI_E_ERROR`. Getters convert as `DUNXValue` does.
///
/// With `useEnvironment`, the variable "DUNX" + name overrides the stored value
/// (option "SewTolerance" => variable `DUNXSewTolerance`), announced by a warning
/// "... value overridden to ... by environment variable". An int or double
/// override is taken when the number is non-zero or the text is exactly "0";
/// otherwise ("00", "0.0", "x") the stored value is used and the result is
/// the stored value's.
class DUNX_EXPORT DUNXOption {
public:
    /// A nameless option without value.
    DUNXOption();
    /// An option named `name` whose default and current value are `value`.
    DUNXOption(const DUNXOptionName& name, int value, bool isPrivate = false);
    DUNXOption(const DUNXOptionName& name, double value, bool isPrivate = false);
    DUNXOption(const DUNXOptionName& name, bool value, bool isPrivate = false);
    DUNXOption(const DUNXOptionName& name, const DUNXString& value, bool isPrivate = false);
    /// A string option (spares a text literal from becoming a bool).
    DUNXOption(const DUNXOptionName& name, const char* value, bool isPrivate = false);
    DUNXOption(const DUNXOptionName& name, const DUNXValue& value, bool isPrivate = false);
    DUNXOption(const DUNXOption& other);
    DUNXOption& operator=(const DUNXOption& other);
    ~DUNXOption();

    /// The name; `DUNI_E_NO_VALUE` while the option has no value.
    DUNIResult GetName(DUNXString& name) const;
    /// The private flag; `DUNI_E_NO_VALUE` while the option has no value.
    DUNIResult IsPrivate(bool& isPrivate) const;
    /// The type of the default; `DUNI_E_NO_VALUE` while the option has no value.
    DUNIResult GetValueType(DUNXValue::DUNXValueType& type) const;
    /// Renames the option; succeeds.
    DUNIResult ChangeName(const DUNXString& name);
    /// The name whatever the state of the value (null string when none).
    const DUNXString& GetNameText() const { return m_Name; }

    /// The default value, converted.
    DUNIResult GetDefaultValue(int& value) const;
    DUNIResult GetDefaultValue(double& value) const;
    DUNIResult GetDefaultValue(bool& value) const;
    DUNIResult GetDefaultValue(DUNXString& value) const;
    DUNIResult GetDefaultValue(DUNXValue& value) const;

    /// The current value, converted, optionally overridden by the environment.
    /// `DUNI_E_NO_VALUE` while the option has no value; `DUNI_E_INVALID_ARGUMENT`
    /// with a debug message when the conversion fails. Each read is traced on
    /// the debug channel as "DUNXOption::GetValue('name'): value".
    DUNIResult GetValue(int& value, bool useEnvironment = false) const;
    DUNIResult GetValue(double& value, bool useEnvironment = false) const;
    DUNIResult GetValue(bool& value, bool useEnvironment = false) const;
    DUNIResult GetValue(DUNXString& value, bool useEnvironment = false) const;
    /// A copy of the current value; `DUNI_E_NO_VALUE` while the option has none.
    DUNIResult GetValue(DUNXValue& value) const;

    /// Sets the current value (and the default while there is none). An int on
    /// a bool option stores (value != 0); anything else of another type is refused.
    DUNIResult SetValue(int value);
    DUNIResult SetValue(double value);
    DUNIResult SetValue(bool value);
    DUNIResult SetValue(const DUNXString& value);
    /// A string value (spares a text literal from becoming a bool).
    DUNIResult SetValue(const char* value);
    /// A value of any type; a bool option takes an int value as (value != 0).
    DUNIResult SetValue(const DUNXValue& value);

private:
    friend class DUNXOptions;
    explicit DUNXOption(const DUNXString& name);
    template <class T> DUNIResult readValue(T& value, bool useEnvironment) const;
    template <class T> DUNIResult writeValue(const T& value, DUNXValue::DUNXValueType type);
    void refuse(DUNXValue::DUNXValueType given, bool asWarning) const;

    DUNXValue m_Default;
    DUNXValue m_Current;
    DUNXString m_Name;
    bool m_Private = false;
};

/// A growable array of options, for passing options as a plain list.
class DUNX_EXPORT DUNXOptionsArray : public DUNXDynamicArray<DUNXOption> {
public:
    DUNXOptionsArray();
    DUNXOptionsArray(const DUNXOptionsArray& other);
    DUNXOptionsArray& operator=(const DUNXOptionsArray& other);
    virtual ~DUNXOptionsArray();
};

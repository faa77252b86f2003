#include <dunx/DUNXOption.h>

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXError.h>
#include <dunx/DUNXTrace.h>

#include "internal/Text.h"

#include <cstdlib>
#include <cstring>

using dunx::internal::NarrowOrEmpty;

namespace {

using Type = DUNXValue::DUNXValueType;

// The environment's text for an override, taken when the number is non-zero
// or the text is exactly "0" ("00", "0.0" and words are not taken).
template <class T> bool parseOverride(const DUNXString& text, T& value);

template <> bool parseOverride(const DUNXString& text, int& value) {
    const char* narrow = NarrowOrEmpty(text);
    const int number = std::atoi(narrow);
    if (number == 0 && std::strcmp(narrow, "0") != 0)
        return false;
    value = number;
    return true;
}

template <> bool parseOverride(const DUNXString& text, double& value) {
    const char* narrow = NarrowOrEmpty(text);
    const double number = std::atof(narrow);
    if (number == 0.0 && std::strcmp(narrow, "0") != 0)
        return false;
    value = number;
    return true;
}

void announceOverride(const DUNXString& variable, int value) {
    DUNXWarning::Printf("%s value overridden to %d by environment variable",
                        NarrowOrEmpty(variable), value);
}

void announceOverride(const DUNXString& variable, double value) {
    DUNXWarning::Printf("%s value overridden to %7.3g by environment variable",
                        NarrowOrEmpty(variable), value);
}

void announceOverride(const DUNXString& variable, const char* text) {
    DUNXWarning::Printf("%s value overridden to %s by environment variable",
                        NarrowOrEmpty(variable), text);
}

// Reads the override of type T from the environment; true when one was taken.
bool environmentOverride(const DUNXString& variable, int& value) {
    DUNXString text;
    if (!DUNXEnvironment::GetVariable(variable, text).IsSuccess() || !parseOverride(text, value))
        return false;
    announceOverride(variable, value);
    return true;
}

bool environmentOverride(const DUNXString& variable, double& value) {
    DUNXString text;
    if (!DUNXEnvironment::GetVariable(variable, text).IsSuccess() || !parseOverride(text, value))
        return false;
    announceOverride(variable, value);
    return true;
}

bool environmentOverride(const DUNXString& variable, bool& value) {
    bool flag = false;
    if (!DUNXEnvironment::GetVariable(variable, flag).IsSuccess())
        return false;
    announceOverride(variable, flag ? "true" : "false");
    value = flag;
    return true;
}

bool environmentOverride(const DUNXString& variable, DUNXString& value) {
    DUNXString text;
    if (!DUNXEnvironment::GetVariable(variable, text).IsSuccess())
        return false;
    announceOverride(variable, NarrowOrEmpty(text));
    value = text;
    return true;
}

Type typeOf(int) {
    return DUNXValue::TypeInt;
}
Type typeOf(double) {
    return DUNXValue::TypeDouble;
}
Type typeOf(bool) {
    return DUNXValue::TypeBool;
}
Type typeOf(const DUNXString&) {
    return DUNXValue::TypeString;
}

void traceRead(const char* name, int value) {
    DUNXDebug::Printf("DUNXOption::GetValue('%s'): %i", name, value);
}
void traceRead(const char* name, double value) {
    DUNXDebug::Printf("DUNXOption::GetValue('%s'): %f", name, value);
}
void traceRead(const char* name, bool value) {
    DUNXDebug::Printf("DUNXOption::GetValue('%s'): %s", name, value ? "TRUE" : "FALSE");
}
void traceRead(const char* name, const DUNXString& value) {
    DUNXDebug::Printf("DUNXOption::GetValue('%s'): %s", name, NarrowOrEmpty(value));
}

} // namespace

DUNXOption::DUNXOption() = default;

DUNXOption::DUNXOption(const DUNXString& name) : m_Name(name) {}

DUNXOption::DUNXOption(const DUNXOptionName& name, int value, bool isPrivate)
    : DUNXOption(name, DUNXValue(value), isPrivate) {}

DUNXOption::DUNXOption(const DUNXOptionName& name, double value, bool isPrivate)
    : DUNXOption(name, DUNXValue(value), isPrivate) {}

DUNXOption::DUNXOption(const DUNXOptionName& name, bool value, bool isPrivate)
    : DUNXOption(name, DUNXValue(value), isPrivate) {}

DUNXOption::DUNXOption(const DUNXOptionName& name, const DUNXString& value, bool isPrivate)
    : DUNXOption(name, DUNXValue(value), isPrivate) {}

DUNXOption::DUNXOption(const DUNXOptionName& name, const char* value, bool isPrivate)
    : DUNXOption(name, DUNXValue(value), isPrivate) {}

DUNXOption::DUNXOption(const DUNXOptionName& name, const DUNXValue& value, bool isPrivate)
    : m_Default(value), m_Current(value), m_Name(name.GetKey()), m_Private(isPrivate) {}

DUNXOption::DUNXOption(const DUNXOption& other) = default;
DUNXOption& DUNXOption::operator=(const DUNXOption& other) = default;
DUNXOption::~DUNXOption() = default;

DUNIResult DUNXOption::GetName(DUNXString& name) const {
    if (!m_Default.IsValid())
        return DUNI_E_NO_VALUE;
    name = m_Name;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXOption::IsPrivate(bool& isPrivate) const {
    if (!m_Default.IsValid())
        return DUNI_E_NO_VALUE;
    isPrivate = m_Private;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXOption::GetValueType(DUNXValue::DUNXValueType& type) const {
    if (!m_Default.IsValid())
        return DUNI_E_NO_VALUE;
    return m_Default.GetValueType(type);
}

DUNIResult DUNXOption::ChangeName(const DUNXString& name) {
    m_Name = name;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXOption::GetDefaultValue(int& value) const {
    return m_Default.GetValue(value);
}
DUNIResult DUNXOption::GetDefaultValue(double& value) const {
    return m_Default.GetValue(value);
}
DUNIResult DUNXOption::GetDefaultValue(bool& value) const {
    return m_Default.GetValue(value);
}
DUNIResult DUNXOption::GetDefaultValue(DUNXString& value) const {
    return m_Default.GetValue(value);
}
DUNIResult DUNXOption::GetDefaultValue(DUNXValue& value) const {
    value = m_Default;
    return DUNI_S_SUCCESS;
}

template <class T> DUNIResult DUNXOption::readValue(T& value, bool useEnvironment) const {
    if (useEnvironment && environmentOverride(DUNXString("DUNX") + m_Name, value))
        return DUNI_S_SUCCESS;
    if (!m_Default.IsValid())
        return DUNI_E_NO_VALUE;
    const DUNIResult result = m_Current.GetValue(value);
    DUNXValue::DUNXValueType stored = DUNXValue::TypeUnknown;
    m_Current.GetValueType(stored);
    if (result.IsFailure())
        DUNXDebug::Printf("DUNXOption::GetValue: Requested type (%s) doesn't match stored type "
                          "(%s) for option '%.256s'.",
                          DUNXValue::GetTypeName(typeOf(value)), DUNXValue::GetTypeName(stored),
                          NarrowOrEmpty(m_Name));
    traceRead(NarrowOrEmpty(m_Name), value);
    return result;
}

DUNIResult DUNXOption::GetValue(int& value, bool useEnvironment) const {
    return readValue(value, useEnvironment);
}
DUNIResult DUNXOption::GetValue(double& value, bool useEnvironment) const {
    return readValue(value, useEnvironment);
}
DUNIResult DUNXOption::GetValue(bool& value, bool useEnvironment) const {
    return readValue(value, useEnvironment);
}
DUNIResult DUNXOption::GetValue(DUNXString& value, bool useEnvironment) const {
    return readValue(value, useEnvironment);
}

DUNIResult DUNXOption::GetValue(DUNXValue& value) const {
    if (!m_Default.IsValid())
        return DUNI_E_NO_VALUE;
    value = m_Current;
    return DUNI_S_SUCCESS;
}

void DUNXOption::refuse(DUNXValue::DUNXValueType given, bool asWarning) const {
    DUNXValue::DUNXValueType stored = DUNXValue::TypeUnknown;
    m_Default.GetValueType(stored);
    const char* format = "DUNXOption::SetValue: Specified type (%s) doesn't match stored type "
                         "(%s) for option '%.256s'.";
    // Kept as it always was: the int setter warns, the others report an error.
    if (asWarning)
        DUNXWarning::Printf(format, DUNXValue::GetTypeName(given), DUNXValue::GetTypeName(stored),
                            NarrowOrEmpty(m_Name));
    else
        DUNXError::Printf(format, DUNXValue::GetTypeName(given), DUNXValue::GetTypeName(stored),
                          NarrowOrEmpty(m_Name));
}

template <class T>
DUNIResult DUNXOption::writeValue(const T& value, DUNXValue::DUNXValueType type) {
    DUNXValue::DUNXValueType stored = DUNXValue::TypeUnknown;
    m_Default.GetValueType(stored);
    if (stored == DUNXValue::TypeUnknown) {
        m_Default = DUNXValue(value);
        m_Current = m_Default;
    } else if (stored == type) {
        m_Current = DUNXValue(value);
    } else {
        refuse(type, false);
        return DUNI_E_ERROR;
    }
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXOption::SetValue(int value) {
    DUNXValue::DUNXValueType stored = DUNXValue::TypeUnknown;
    m_Default.GetValueType(stored);
    if (stored == DUNXValue::TypeBool) {
        m_Current = DUNXValue(value != 0);
        return DUNI_S_SUCCESS;
    }
    if (stored != DUNXValue::TypeUnknown && stored != DUNXValue::TypeInt) {
        refuse(DUNXValue::TypeInt, true);
        return DUNI_E_ERROR;
    }
    return writeValue(value, DUNXValue::TypeInt);
}

DUNIResult DUNXOption::SetValue(double value) {
    return writeValue(value, DUNXValue::TypeDouble);
}

DUNIResult DUNXOption::SetValue(bool value) {
    return writeValue(value, DUNXValue::TypeBool);
}

DUNIResult DUNXOption::SetValue(const DUNXString& value) {
    return writeValue(value, DUNXValue::TypeString);
}

DUNIResult DUNXOption::SetValue(const char* value) {
    return SetValue(DUNXString(value));
}

DUNIResult DUNXOption::SetValue(const DUNXValue& value) {
    DUNXValue::DUNXValueType stored = DUNXValue::TypeUnknown;
    DUNXValue::DUNXValueType given = DUNXValue::TypeUnknown;
    m_Default.GetValueType(stored);
    value.GetValueType(given);
    if (stored == DUNXValue::TypeUnknown) {
        m_Default = value;
        m_Current = value;
    } else if (stored == given) {
        m_Current = value;
    } else if (stored == DUNXValue::TypeBool && given == DUNXValue::TypeInt) {
        int number = 0;
        value.GetValue(number);
        m_Current = DUNXValue(number != 0);
    } else {
        refuse(given, false);
        return DUNI_E_ERROR;
    }
    return DUNI_S_SUCCESS;
}

DUNXOptionsArray::DUNXOptionsArray() = default;
DUNXOptionsArray::DUNXOptionsArray(const DUNXOptionsArray& other) = default;
DUNXOptionsArray& DUNXOptionsArray::operator=(const DUNXOptionsArray& other) = default;
DUNXOptionsArray::~DUNXOptionsArray() = default;

// DUNIValue: a public typed value (int, double, bool or string).
#pragma once

#include <dunx/DUNIObject.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXValue.h>

/// The implementation of a value: one `DUNXValue`. Type name "DUNIValue".
class DUNX_EXPORT DUNIValueImpl : public DUNIObjectImpl {
public:
    explicit DUNIValueImpl(const DUNXValue& value);
    ~DUNIValueImpl() override;
    /// The value held.
    DUNXValue& GetValue() { return m_Value; }

private:
    DUNXValue m_Value;
};

/// A public value. Conversions convert as `DUNXValue` does (2.7 read as int
/// => 1, "on" read as bool => true, 7 read as text => "7"); a value without
/// implementation or type gives 0, 0.0, false and null.
/// Copy construction is uncounted (see `DUNIObject`).
class DUNX_EXPORT DUNIValue : public DUNIObject {
public:
    /// The public types. A bool reports `TypeNone`: kept, callers rely on it.
    enum DUNIValueType { TypeNone = 0, TypeInt = 1, TypeDouble = 2, TypeString = 3 };

    /// A value without type.
    DUNIValue();
    DUNIValue(int value);
    DUNIValue(double value);
    DUNIValue(bool value);
    /// A string value; null gives the null string.
    DUNIValue(const char* text);
    /// A string value from 0-terminated UTF-16 units; null gives the null string.
    DUNIValue(const unsigned short* text);
    DUNIValue(const DUNIValue& other) = default;
    DUNIValue& operator=(const DUNIValue& other);
    ~DUNIValue() override;

    operator int() const;
    operator double() const;
    operator bool() const;
    /// The value as narrow text, valid until the value changes or goes.
    operator const char*() const;
    /// The value as UTF-16 text, valid until the value changes or goes.
    operator const unsigned short*() const;
    /// Int 1, double 2, string 3; bool and no type 0.
    DUNIValueType GetType() const;

private:
    explicit DUNIValue(const DUNXValue& value);
    DUNXValue* value() const;
};

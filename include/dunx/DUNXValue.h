// DUNXValue: a small tagged value (int, double, bool or string).
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

class DUNXStreamFormatter;

/// An int, double, bool or string value, or no value yet (type "unknown").
/// Getters convert between the types:
///
///     DUNXValue(2.7)   read as int    => 1   (a truth test, not a truncation)
///     DUNXValue("on")  read as bool   => true   (Yes/True/On, No/False/Off, any case)
///     DUNXValue("12")  read as int    => 12  (atoi; "abc" => 0)
///     DUNXValue(7)     read as string => "7"; 0.25 => "0.25"; true => "True"
class DUNX_EXPORT DUNXValue {
public:
    /// The type of the payload; `GetTypeName` gives its display name.
    enum DUNXValueType {
        TypeUnknown = 0,
        TypeDouble = 1,
        TypeInt = 2,
        TypeBool = 3,
        TypeString = 4
    };

    /// "unknown", "double", "int", "bool" or "string"; "unknown" for any other value.
    static const char* GetTypeName(DUNXValueType type);

    /// No value (type "unknown").
    DUNXValue();
    DUNXValue(int value);
    DUNXValue(bool value);
    DUNXValue(double value);
    /// A string value (a null `text` gives the null string).
    DUNXValue(const char* text);
    DUNXValue(const DUNXString& text);
    DUNXValue(const DUNXValue& other);
    DUNXValue& operator=(const DUNXValue& other);
    ~DUNXValue();

    /// Each setter stores the payload and sets the type; succeeds. Setting a
    /// scalar keeps the text field as it was.
    DUNIResult SetValue(int value);
    DUNIResult SetValue(bool value);
    DUNIResult SetValue(double value);
    DUNIResult SetValue(const DUNXString& text);

    /// Copies the type into `type`; succeeds.
    DUNIResult GetValueType(DUNXValueType& type) const;
    /// True once the value has a type.
    bool IsValid() const { return m_Type != TypeUnknown; }
    /// True for an int value.
    bool IsInteger() const { return m_Type == TypeInt; }

    /// Each getter converts as the class comment shows; `DUNI_E_INVALID_ARGUMENT`
    /// (output untouched) for a value without type.
    DUNIResult GetValue(int& value) const;
    DUNIResult GetValue(bool& value) const;
    DUNIResult GetValue(double& value) const;
    /// Ints as "%d"; doubles in the shortest "%g"-style text that reads back
    /// exactly (up to 17 digits); bools "True"/"False"; strings copied.
    DUNIResult GetValue(DUNXString& value) const;

    /// Writes the value as text into the value's own text field and returns its
    /// narrow form (valid until the value changes); null for a value without
    /// type that never held text.
    operator const char*();
    /// The same with the wide form.
    operator const unsigned short*();

    /// Same type and same payload (strings unit-wise, doubles with ==); two
    /// values without type are unequal.
    bool operator==(const DUNXValue& other) const;
    /// String values: the text's `hashCode`; no type: 0; bool, int and double
    /// (truncated to its low 32 bits) through `GetHashCode(int)`.
    unsigned GetHashCode() const;
    /// Thomas Wang's 32-bit integer mix (arithmetic right shifts).
    static unsigned GetHashCode(int key);

    /// Writes the value with the formatter's number formats; bools as "True"
    /// or "False"; nothing for a value without type.
    void Dump(DUNXStreamFormatter& formatter) const;

private:
    DUNXString m_Text;
    union Scalar {
        int asInt;
        double asDouble;
        bool asBool;
    } m_Scalar{};
    DUNXValueType m_Type = TypeUnknown;
};

/// `value.Dump(formatter)`.
DUNX_EXPORT DUNXStreamFormatter& operator<<(DUNXStreamFormatter& formatter, const DUNXValue& value);

#include <dunx/DUNXValue.h>

#include <dunx/DUNXStreamFormatter.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "internal/Text.h"

using dunx::internal::NarrowOrEmpty;
using dunx::internal::WordValue;

namespace {

const char* const kTypeNames[] = {"unknown", "double", "int", "bool", "string"};

// The shortest "%g" text that reads back as the same double.
DUNXString doubleText(double value) {
    char text[40];
    for (int digits = 15; digits <= 17; ++digits) {
        std::snprintf(text, sizeof text, "%.*g", digits, value);
        if (std::strtod(text, nullptr) == value || std::isnan(value))
            break;
    }
    return DUNXString(text);
}

} // namespace

const char* DUNXValue::GetTypeName(DUNXValueType type) {
    const int index = static_cast<int>(type);
    return index >= 0 && index <= TypeString ? kTypeNames[index] : kTypeNames[0];
}

DUNXValue::DUNXValue() = default;
DUNXValue::DUNXValue(int value) : m_Type(TypeInt) {
    m_Scalar.asInt = value;
}
DUNXValue::DUNXValue(bool value) : m_Type(TypeBool) {
    m_Scalar.asBool = value;
}
DUNXValue::DUNXValue(double value) : m_Type(TypeDouble) {
    m_Scalar.asDouble = value;
}
DUNXValue::DUNXValue(const char* text) : m_Text(text), m_Type(TypeString) {}
DUNXValue::DUNXValue(const DUNXString& text) : m_Text(text), m_Type(TypeString) {}
DUNXValue::DUNXValue(const DUNXValue& other) = default;
DUNXValue& DUNXValue::operator=(const DUNXValue& other) = default;

DUNXValue::~DUNXValue() = default;

DUNIResult DUNXValue::SetValue(int value) {
    m_Scalar.asInt = value;
    m_Type = TypeInt;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::SetValue(bool value) {
    m_Scalar.asBool = value;
    m_Type = TypeBool;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::SetValue(double value) {
    m_Scalar.asDouble = value;
    m_Type = TypeDouble;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::SetValue(const DUNXString& text) {
    m_Text = text;
    m_Type = TypeString;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::GetValueType(DUNXValueType& type) const {
    type = m_Type;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::GetValue(int& value) const {
    switch (m_Type) {
    case TypeDouble:
        value = m_Scalar.asDouble != 0.0 ? 1 : 0; // a truth test: NaN counts as non-zero
        break;
    case TypeInt:
        value = m_Scalar.asInt;
        break;
    case TypeBool:
        value = m_Scalar.asBool ? 1 : 0;
        break;
    case TypeString: {
        const int word = WordValue(m_Text);
        value = word >= 0 ? word : std::atoi(NarrowOrEmpty(m_Text));
        break;
    }
    default:
        return DUNI_E_INVALID_ARGUMENT;
    }
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::GetValue(bool& value) const {
    if (m_Type == TypeBool) {
        value = m_Scalar.asBool;
        return DUNI_S_SUCCESS;
    }
    int number = 0;
    const DUNIResult result = GetValue(number);
    if (result.IsSuccess())
        value = number != 0;
    return result;
}

DUNIResult DUNXValue::GetValue(double& value) const {
    switch (m_Type) {
    case TypeDouble:
        value = m_Scalar.asDouble;
        break;
    case TypeInt:
        value = m_Scalar.asInt;
        break;
    case TypeBool:
        value = m_Scalar.asBool ? 1.0 : 0.0;
        break;
    case TypeString: {
        const int word = WordValue(m_Text);
        value = word >= 0 ? word : std::atof(NarrowOrEmpty(m_Text));
        break;
    }
    default:
        return DUNI_E_INVALID_ARGUMENT;
    }
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXValue::GetValue(DUNXString& value) const {
    switch (m_Type) {
    case TypeDouble:
        value = doubleText(m_Scalar.asDouble);
        break;
    case TypeInt:
        value = DUNXString::valueOf(m_Scalar.asInt);
        break;
    case TypeBool:
        value = m_Scalar.asBool ? DUNXString::DUNX_TRUE : DUNXString::DUNX_FALSE;
        break;
    case TypeString:
        value = m_Text;
        break;
    default:
        return DUNI_E_INVALID_ARGUMENT;
    }
    return DUNI_S_SUCCESS;
}

DUNXValue::operator const char*() {
    GetValue(m_Text);
    return m_Text;
}

DUNXValue::operator const unsigned short*() {
    GetValue(m_Text);
    return m_Text;
}

bool DUNXValue::operator==(const DUNXValue& other) const {
    if (m_Type != other.m_Type)
        return false;
    switch (m_Type) {
    case TypeDouble:
        return m_Scalar.asDouble == other.m_Scalar.asDouble;
    case TypeInt:
        return m_Scalar.asInt == other.m_Scalar.asInt;
    case TypeBool:
        return m_Scalar.asBool == other.m_Scalar.asBool;
    case TypeString:
        return m_Text.equals(other.m_Text);
    default:
        return false;
    }
}

unsigned DUNXValue::GetHashCode() const {
    switch (m_Type) {
    case TypeString:
        return m_Text.hashCode();
    case TypeBool:
        return GetHashCode(m_Scalar.asBool ? 1 : 0);
    case TypeInt:
        return GetHashCode(m_Scalar.asInt);
    case TypeDouble: {
        // Truncated to 64 bits, then its low 32; out of range (as the processor's
        // conversion does) reads as 0.
        const bool inRange =
            std::isfinite(m_Scalar.asDouble) && std::fabs(m_Scalar.asDouble) < 9.2e18;
        const auto whole = inRange ? static_cast<int64_t>(m_Scalar.asDouble) : 0;
        return GetHashCode(static_cast<int>(static_cast<uint32_t>(whole)));
    }
    default:
        return 0;
    }
}

unsigned DUNXValue::GetHashCode(int key) {
    // Signed 32-bit mix computed in unsigned arithmetic (no overflow), with the
    // right shifts arithmetic as on the signed key.
    auto shiftRight = [](uint32_t k, int n) {
        return static_cast<uint32_t>(static_cast<int32_t>(k) >> n);
    };
    uint32_t k = static_cast<uint32_t>(key);
    k += ~(k << 15);
    k ^= shiftRight(k, 10);
    k *= 9u;
    k ^= shiftRight(k, 6);
    k += ~(k << 11);
    k ^= shiftRight(k, 16);
    return k;
}

void DUNXValue::Dump(DUNXStreamFormatter& formatter) const {
    switch (m_Type) {
    case TypeDouble:
        formatter << m_Scalar.asDouble;
        break;
    case TypeInt:
        formatter << m_Scalar.asInt;
        break;
    case TypeBool:
        formatter << (m_Scalar.asBool ? "True" : "False");
        break;
    case TypeString:
        formatter << m_Text;
        break;
    default:
        break;
    }
}

DUNXStreamFormatter& operator<<(DUNXStreamFormatter& formatter, const DUNXValue& value) {
    value.Dump(formatter);
    return formatter;
}

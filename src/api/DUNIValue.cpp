#include <dunx/DUNIValue.h>

DUNIValueImpl::DUNIValueImpl(const DUNXValue& value)
    : DUNIObjectImpl("DUNIValue"), m_Value(value) {}

DUNIValueImpl::~DUNIValueImpl() = default;

DUNIValue::DUNIValue() : DUNIValue(DUNXValue()) {}
DUNIValue::DUNIValue(int value) : DUNIValue(DUNXValue(value)) {}
DUNIValue::DUNIValue(double value) : DUNIValue(DUNXValue(value)) {}
DUNIValue::DUNIValue(bool value) : DUNIValue(DUNXValue(value)) {}
DUNIValue::DUNIValue(const char* text) : DUNIValue(DUNXValue(text)) {}
DUNIValue::DUNIValue(const unsigned short* text) : DUNIValue(DUNXValue(DUNXString(text))) {}

DUNIValue::DUNIValue(const DUNXValue& value) : DUNIObject("DUNIValue") {
    SetData(new DUNIValueImpl(value));
}

DUNIValue& DUNIValue::operator=(const DUNIValue& other) = default;

DUNIValue::~DUNIValue() = default;

DUNXValue* DUNIValue::value() const {
    return GetData() ? &static_cast<DUNIValueImpl*>(GetImpl())->GetValue() : nullptr;
}

DUNIValue::operator int() const {
    int result = 0;
    if (value())
        value()->GetValue(result);
    return result;
}

DUNIValue::operator double() const {
    double result = 0.0;
    if (value())
        value()->GetValue(result);
    return result;
}

DUNIValue::operator bool() const {
    bool result = false;
    if (value())
        value()->GetValue(result);
    return result;
}

DUNIValue::operator const char*() const {
    return value() ? static_cast<const char*>(*value()) : nullptr;
}

DUNIValue::operator const unsigned short*() const {
    return value() ? static_cast<const unsigned short*>(*value()) : nullptr;
}

DUNIValue::DUNIValueType DUNIValue::GetType() const {
    DUNXValue::DUNXValueType type = DUNXValue::TypeUnknown;
    if (value())
        value()->GetValueType(type);
    switch (type) {
    case DUNXValue::TypeInt:
        return TypeInt;
    case DUNXValue::TypeDouble:
        return TypeDouble;
    case DUNXValue::TypeString:
        return TypeString;
    default:
        return TypeNone; // bool included: kept, callers rely on it
    }
}

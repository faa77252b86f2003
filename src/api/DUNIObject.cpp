#include <dunx/DUNIObject.h>

#include <string>

int DUNIObjectImpl::_objectCounter = 0;

DUNIObjectImpl::DUNIObjectImpl(const char* typeName) {
    const int number = ++_objectCounter;
    m_Name = DUNXString(
        (std::string(typeName ? typeName : "") + "[" + std::to_string(number) + "]").c_str());
}

DUNIObjectImpl::~DUNIObjectImpl() = default;

// --- DUNIObject ------------------------------------------------------------------

DUNIObject::DUNIObject(const char* typeName) : m_TypeName(typeName) {}

// Kept uncounted on purpose: see the class comment.
DUNIObject::DUNIObject(const DUNIObject& other)
    : m_TypeName(other.m_TypeName), m_Data(other.m_Data) {}

DUNIObject& DUNIObject::operator=(const DUNIObject& other) {
    SetData(other.m_Data); // the same implementation again changes nothing
    return *this;
}

DUNIObject::~DUNIObject() {
    Unref();
    m_TypeName = nullptr;
    m_Data = nullptr;
}

bool DUNIObject::IsValid() const {
    return m_TypeName && m_Data;
}

void DUNIObject::SetData(void* data) {
    if (data == m_Data)
        return;
    Unref();
    m_Data = data;
    Ref();
}

int DUNIObject::Ref() {
    return m_Data ? GetImpl()->Ref() : 0;
}

int DUNIObject::Unref() {
    if (!m_Data)
        return 0;
    const int count = GetImpl()->Unref();
    if (count < 1) {
        delete GetImpl();
        m_Data = nullptr;
    }
    return count;
}

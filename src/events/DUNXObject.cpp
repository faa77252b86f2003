#include <dunx/DUNXObject.h>

#include <cstring>

DUNXObject::DUNXObject(const DUNXObject& other)
    : DUNXReferenceCount(other), m_TypeName(other.m_TypeName) {}

DUNXObject::~DUNXObject() = default;

bool DUNXObject::IsKindOf(const char* typeName) const {
    const char* own = m_TypeName.get();
    return typeName && own && std::strcmp(typeName, own) == 0;
}

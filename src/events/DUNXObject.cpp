#include <dunx/DUNXObject.h>

#include "internal/Text.h"

#include <cstring>

using dunx::internal::CopyName;

DUNXObject::DUNXObject(const char* typeName)
    : DUNXReferenceCount(0), m_TypeName(CopyName(typeName)) {}

DUNXObject::DUNXObject(const DUNXObject& other)
    : DUNXReferenceCount(other), m_TypeName(CopyName(other.m_TypeName.get())) {}

DUNXObject::~DUNXObject() = default;

bool DUNXObject::IsKindOf(const char* typeName) const {
    return typeName && m_TypeName && std::strcmp(typeName, m_TypeName.get()) == 0;
}

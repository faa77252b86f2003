#include <dunx/DUNXReferenceCount.h>

#include <functional>
#include <utility>

DUNXReferenceCount::DUNXReferenceCount(unsigned long long initialCount)
    : m_ReferenceCount(initialCount) {}

DUNXReferenceCount::DUNXReferenceCount(const DUNXReferenceCount&) : m_ReferenceCount(0) {}

DUNXReferenceCount::~DUNXReferenceCount() = default;

unsigned long long DUNXReferenceCount::RaiseReference() {
    return ++m_ReferenceCount;
}

unsigned long long DUNXReferenceCount::LowerReference() {
    if (m_ReferenceCount != 0)
        --m_ReferenceCount;
    return m_ReferenceCount;
}

const char* DUNXReferenceCount::GetName() const {
    return nullptr;
}

DUNXReferenceHandle::DUNXReferenceHandle(DUNXReferenceCount* object) : m_Object(object) {
    if (m_Object)
        m_Object->RaiseReference();
}

DUNXReferenceHandle::DUNXReferenceHandle(const DUNXReferenceHandle& other)
    : DUNXReferenceHandle(other.m_Object) {}

DUNXReferenceHandle::DUNXReferenceHandle(DUNXReferenceHandle&& other) noexcept
    : m_Object(std::exchange(other.m_Object, nullptr)) {}

DUNXReferenceHandle::~DUNXReferenceHandle() {
    reset(nullptr);
}

DUNXReferenceHandle& DUNXReferenceHandle::operator=(const DUNXReferenceHandle& other) {
    return *this = other.m_Object;
}

DUNXReferenceHandle& DUNXReferenceHandle::operator=(DUNXReferenceHandle&& other) noexcept {
    if (this != &other) {
        reset(nullptr);
        m_Object = std::exchange(other.m_Object, nullptr);
    }
    return *this;
}

DUNXReferenceHandle& DUNXReferenceHandle::operator=(DUNXReferenceCount* object) {
    if (object != m_Object) {
        // Raise first: `object` may be owned, through a chain, by the one released.
        if (object)
            object->RaiseReference();
        reset(object);
    }
    return *this;
}

bool DUNXReferenceHandle::operator<(const DUNXReferenceHandle& other) const {
    return std::less<DUNXReferenceCount*>()(m_Object, other.m_Object);
}

void DUNXReferenceHandle::reset(DUNXReferenceCount* object) {
    DUNXReferenceCount* old = std::exchange(m_Object, object);
    if (old && old->LowerReference() == 0)
        delete old;
}

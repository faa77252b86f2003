// DUNXReferenceCount and the handles that hold counted objects.
#pragma once

#include <dunx/DUNXExport.h>

/// Intrusive count at the root of every counted object. The count never
/// deletes anything: deleting at zero is the holder's business (see
/// `DUNXReferenceHandle`).
class DUNX_EXPORT DUNXReferenceCount {
public:
    /// Starts with `initialCount` holders.
    explicit DUNXReferenceCount(unsigned long long initialCount = 0);
    /// A copy starts at 0: its holders are not the source's holders.
    DUNXReferenceCount(const DUNXReferenceCount& other);
    /// Destroys the object; the count is not checked.
    virtual ~DUNXReferenceCount();

    /// Adds one holder and returns the new count.
    virtual unsigned long long RaiseReference();
    /// Removes one holder and returns the count afterwards; at 0 it stays 0.
    virtual unsigned long long LowerReference();
    /// The object's name; null in this class.
    virtual const char* GetName() const;

    /// The current count.
    unsigned long long GetReferenceCount() const { return m_ReferenceCount; }
    /// True exactly when the count is 1 (the caller is the last holder).
    bool IsLastCall() const { return m_ReferenceCount == 1; }

    DUNXReferenceCount& operator=(const DUNXReferenceCount&) = delete;

private:
    unsigned long long m_ReferenceCount;
};

/// Holds one counted object: construction and copying raise its count, the
/// destructor lowers it and deletes the object when `LowerReference()` reaches 0.
/// Base of every `...Handle` class.
class DUNX_EXPORT DUNXReferenceHandle {
public:
    /// Holds nothing (`IsValid()` is false).
    DUNXReferenceHandle() = default;
    /// Holds `object` (null allowed) and raises its count.
    explicit DUNXReferenceHandle(DUNXReferenceCount* object);
    /// Holds the same object as `other` and raises its count.
    DUNXReferenceHandle(const DUNXReferenceHandle& other);
    /// Takes over `other`'s object without touching its count; `other` becomes empty.
    DUNXReferenceHandle(DUNXReferenceHandle&& other) noexcept;
    /// Lowers the held object's count and deletes it when that reaches 0.
    virtual ~DUNXReferenceHandle();

    /// Holds `other`'s object instead of the current one (which is released as
    /// by the destructor). Holding the same object again changes nothing.
    DUNXReferenceHandle& operator=(const DUNXReferenceHandle& other);
    /// Takes over `other`'s object; the current one is released first.
    DUNXReferenceHandle& operator=(DUNXReferenceHandle&& other) noexcept;
    /// Holds `object` instead of the current one; the same pointer again changes nothing.
    DUNXReferenceHandle& operator=(DUNXReferenceCount* object);

    /// True when an object is held.
    bool IsValid() const { return m_Object != nullptr; }
    /// The held object (may be null); the handle keeps its reference.
    DUNXReferenceCount* GetObject() const { return m_Object; }

    /// Same object (pointer equality).
    bool operator==(const DUNXReferenceHandle& other) const { return m_Object == other.m_Object; }
    /// Different objects (pointer inequality).
    bool operator!=(const DUNXReferenceHandle& other) const { return m_Object != other.m_Object; }
    /// Pointer order, for sorted containers.
    bool operator<(const DUNXReferenceHandle& other) const;

private:
    void reset(DUNXReferenceCount* object);

    DUNXReferenceCount* m_Object = nullptr;
};

/// A handle that knows the type of what it holds, for the `...Handle` classes:
///
///     class DUNXFileHandle : public DUNXTypedHandle<DUNXFile> { using
///     DUNXTypedHandle::DUNXTypedHandle; }; DUNXFileHandle h(new DUNXFile(...));   // count 1,
///     deleted with the last handle h->GetFilePath();
template <class T> class DUNXTypedHandle : public DUNXReferenceHandle {
public:
    /// Holds nothing.
    DUNXTypedHandle() = default;
    /// Holds `object` (null allowed) and raises its count.
    explicit DUNXTypedHandle(T* object) : DUNXReferenceHandle(object) {}

    /// Holds `object` instead of the current one.
    DUNXTypedHandle& operator=(T* object) {
        DUNXReferenceHandle::operator=(object);
        return *this;
    }

    /// The held object, or null.
    T* Get() const { return static_cast<T*>(GetObject()); }
    /// The held object; the handle must be valid.
    T* operator->() const { return Get(); }
    /// The held object; the handle must be valid.
    T& operator*() const { return *Get(); }
};

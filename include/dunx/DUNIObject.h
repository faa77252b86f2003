// DUNIObject: the handle base of the public interface, and its counted implementation.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

/// The state behind a public handle, counted by the handles that hold it.
/// Each one is named "<type>[<n>]" after the n-th implementation made in the
/// process (all kinds counted together, from 1): the first name made in a run
/// is "DUNIName[1]". Counts and the counter are plain integers: keep the
/// handles of one implementation on one thread.
class DUNX_EXPORT DUNIObjectImpl {
public:
    /// Count 0; raises the process-wide counter and takes its new value into
    /// the name. A null `typeName` is taken as "".
    explicit DUNIObjectImpl(const char* typeName);
    virtual ~DUNIObjectImpl();
    DUNIObjectImpl(const DUNIObjectImpl&) = delete;
    DUNIObjectImpl& operator=(const DUNIObjectImpl&) = delete;

    /// Count + 1; returns it.
    int Ref() { return ++m_ReferenceCount; }
    /// Count - 1, with no floor; returns it. Deleting is the holder's business.
    int Unref() { return --m_ReferenceCount; }
    /// The "<type>[<n>]" name.
    const char* GetName() const { return m_Name; }

    /// The implementation a handle's data pointer stands for.
    static DUNIObjectImpl* Cast(void* data) { return static_cast<DUNIObjectImpl*>(data); }

    /// Implementations made so far in this process; never lowered.
    static int _objectCounter;

protected:
    /// Replaces the name.
    void SetName(const DUNXString& name) { m_Name = name; }

private:
    int m_ReferenceCount = 0;
    DUNXString m_Name;
};

/// A public handle over a counted `DUNIObjectImpl`. Handles made by the
/// library's constructors and `SetData` each hold one reference; the handle
/// that lowers the count below 1 deletes the implementation.
///
/// Copy construction is deliberately uncounted: the copy shares the source's
/// implementation without taking a reference, and since each handle releases
/// one reference when destroyed, the first of the two to go deletes the
/// implementation and leaves the other dangling. Copies must therefore never
/// outlive, nor be outlived by, their source. To share safely, assign
/// (`operator=` takes a reference) or call `SetData(other.GetData())`:
///
///     DUNIName a("IGES");
///     DUNIName b("x");
///     b = a;                  // counted: both may go in any order
///     DUNIName c(a);          // uncounted: do not let c and a both be destroyed
class DUNX_EXPORT DUNIObject {
public:
    /// Shares `other`'s implementation without taking a reference (see above).
    DUNIObject(const DUNIObject& other);
    /// Takes a reference on `other`'s implementation, releasing the current one.
    DUNIObject& operator=(const DUNIObject& other);

    /// True when the handle has a type name and an implementation.
    virtual bool IsValid() const;
    /// The type name ("DUNIName", "DUNIFile", ...), or null.
    const char* GetTypeName() const { return m_TypeName; }
    /// The implementation (a `DUNIObjectImpl`), or null.
    void* GetData() const { return m_Data; }
    /// Holds `data` instead of the current implementation: releases the
    /// current one (deleting it when its count falls below 1), then takes a
    /// reference on `data` (which may be null). The pointer already held
    /// changes nothing.
    void SetData(void* data);

protected:
    /// A handle of type `typeName` (a static text, not copied) without data.
    explicit DUNIObject(const char* typeName);
    /// Releases the implementation as `Unref` does.
    virtual ~DUNIObject();

    /// Raises the implementation's count and returns it; 0 without data.
    int Ref();
    /// Lowers the implementation's count; below 1 the implementation is
    /// deleted and the handle forgets it. Returns the count (0 without data).
    int Unref();
    /// The implementation as its base class, or null.
    DUNIObjectImpl* GetImpl() const { return DUNIObjectImpl::Cast(m_Data); }

private:
    const char* m_TypeName;
    void* m_Data = nullptr;
};

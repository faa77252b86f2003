// DUNXObject: a counted object that knows the one type name it was made with.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXReferenceCount.h>

#include <memory>

/// A reference-counted object (count 0 at construction) carrying a type name.
/// There is no class hierarchy walk: an object is of one kind only, the name
/// it was constructed with.
class DUNX_EXPORT DUNXObject : public DUNXReferenceCount {
public:
    /// Keeps a private copy of `typeName`; a null or empty name leaves it null.
    explicit DUNXObject(const char* typeName);
    /// Copies `other`'s type name into a buffer of its own; the count starts at 0.
    DUNXObject(const DUNXObject& other);
    /// Frees the type name.
    ~DUNXObject() override;

    /// True exactly when `typeName` equals the type name, character for
    /// character (case-sensitive); false for a null `typeName` or a null type name.
    virtual bool IsKindOf(const char* typeName) const;

    /// The type name, or null when the object was made without one.
    const char* GetTypeName() const { return m_TypeName.get(); }

private:
    std::unique_ptr<char[]> m_TypeName;
};

// DUNXObject: a counted object that knows the one type name it was made with.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXReferenceCount.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

/// A reference-counted object (count 0 at construction) carrying a type name.
/// There is no class hierarchy walk: an object is of one kind only, the name
/// it was constructed with.
class DUNX_EXPORT DUNXObject : public DUNXReferenceCount {
public:
    /// Keeps a private copy of `typeName`; a null or empty name leaves it null.
    /// Inline, so that the length of a literal name is known where it is built.
    explicit DUNXObject(const char* typeName) : DUNXReferenceCount(0), m_TypeName(typeName) {}
    /// Copies `other`'s type name into a buffer of its own; the count starts at 0.
    DUNXObject(const DUNXObject& other);
    /// Frees the type name.
    ~DUNXObject() override;

    /// True exactly when `typeName` equals the type name, character for
    /// character (case-sensitive); false for a null `typeName` or a null type name.
    virtual bool IsKindOf(const char* typeName) const;

    /// The type name, or null when the object was made without one.
    const char* GetTypeName() const { return m_TypeName.get(); }

    /// Type and event names of up to this many bytes are kept inside the
    /// object; longer ones cost a heap block. Either way the name reads the same.
    static constexpr std::size_t kInlineNameLength = 31;

protected:
    /// A private copy of a text, or null: the empty text is kept as null.
    /// A text of fewer than `InlineSize` bytes lives inside the object and a
    /// longer one in a heap block, so that the short names and messages of the
    /// events built on the stack for every diagnostic line cost no allocation.
    /// A copy owns its own bytes. The layout is private to the library: code
    /// built against one layout must be rebuilt when it changes.
    template <std::size_t InlineSize> class OwnedText {
    public:
        /// The null text.
        OwnedText() = default;
        /// A copy of `text` up to its terminator; null or "" gives the null text.
        explicit OwnedText(const char* text) { assign(text); }
        /// A copy of `other`'s bytes, independent of `other` from now on.
        OwnedText(const OwnedText& other) { assign(other.get(), other.m_Length); }
        OwnedText& operator=(const OwnedText&) = delete;

        /// The text, terminated, or null.
        const char* get() const {
            if (m_Length == 0)
                return nullptr;
            return m_Heap ? m_Heap.get() : m_Inline;
        }
        /// The number of bytes before the terminator; 0 for the null text.
        std::size_t length() const { return m_Length; }

        /// Replaces the text with a copy of `text` up to its terminator; null or
        /// "" gives the null text.
        void assign(const char* text) { assign(text, text ? std::strlen(text) : 0); }
        /// Replaces the text with a copy of the `length` bytes at `text`, which
        /// must not hold a terminator; 0 gives the null text. `text` may point
        /// into this object's own bytes.
        void assign(const char* text, std::size_t length) {
            if (length < InlineSize) {
                if (length > 0)
                    std::memmove(m_Inline, text, length);
                m_Inline[length] = '\0';
                m_Heap.reset(); // only now: `text` may have been in it
            } else {
                std::unique_ptr<char[]> heap(std::make_unique<char[]>(length + 1));
                std::memcpy(heap.get(), text, length);
                m_Heap = std::move(heap);
            }
            m_Length = length;
        }

    private:
        std::unique_ptr<char[]> m_Heap; // the text when it does not fit inline
        std::size_t m_Length = 0;
        char m_Inline[InlineSize];
    };

private:
    OwnedText<kInlineNameLength + 1> m_TypeName;
};

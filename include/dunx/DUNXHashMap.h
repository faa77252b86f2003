// DUNXHashMap: an open-addressing hash map with caller-supplied hash and equality.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// Hash of a `DUNXString` that ignores case (units folded with `towlower`), to
/// key a `DUNXHashMap` together with `DUNXStringEqualIgnoreCase`.
struct DUNX_EXPORT DUNXStringHashIgnoreCase {
    /// h = h * 33 + towlower(unit), as `hashCode` does on the lower-cased string.
    unsigned operator()(const DUNXString& text) const;
};

/// Equality of two `DUNXString`s without regard to case (`equalsIgnoreCase`).
struct DUNX_EXPORT DUNXStringEqualIgnoreCase {
    /// True when the strings are equal ignoring case (null equals only null).
    bool operator()(const DUNXString& a, const DUNXString& b) const {
        return a.equalsIgnoreCase(b);
    }
};

/// Case-sensitive hash of a `DUNXString` (its `hashCode`).
struct DUNXStringHash {
    /// The string's `hashCode()`.
    unsigned operator()(const DUNXString& text) const { return text.hashCode(); }
};

/// Case-sensitive equality of two `DUNXString`s (`equals`).
struct DUNXStringEqual {
    /// True when the strings are unit-wise equal (null equals only null).
    bool operator()(const DUNXString& a, const DUNXString& b) const { return a.equals(b); }
};

/// A hash map with open addressing and linear probing. The table doubles when
/// live and removed slots would pass three quarters of it, so a lookup probes
/// a few slots at most. `Hash` maps a key to an integer; `Equal` says whether
/// two keys are the same key. Pointers returned by `Find` stay valid until the
/// next `Set` of a new key, `Remove` or `Clear`.
///
///     DUNXHashMap<DUNXString, int, DUNXStringHashIgnoreCase, DUNXStringEqualIgnoreCase> m;
///     m.Set("Reader", 1);
///     *m.Find("READER") => 1
template <class K, class V, class Hash = std::hash<K>, class Equal = std::equal_to<K>>
class DUNXHashMap {
public:
    /// An empty map with the given hash and equality.
    explicit DUNXHashMap(Hash hash = Hash(), Equal equal = Equal())
        : m_Hash(std::move(hash)), m_Equal(std::move(equal)) {}

    /// Stores `value` under `key`, replacing the value of an equal key (the first
    /// key stored is kept). True when the key is new.
    bool Set(const K& key, V value) {
        if (Slot* slot = findSlot(key)) {
            slot->entry->second = std::move(value);
            return false;
        }
        if (4 * (m_Size + m_Removed + 1) > 3 * m_Slots.size())
            rehash(2 * (m_Size + 1) > m_Slots.size() ? grownCapacity() : m_Slots.size());
        std::size_t i = home(key);
        while (m_Slots[i].entry)
            i = next(i);
        if (m_Slots[i].removed) {
            m_Slots[i].removed = false;
            --m_Removed;
        }
        m_Slots[i].entry.emplace(key, std::move(value));
        ++m_Size;
        return true;
    }

    /// The value stored under a key equal to `key`, or null.
    V* Find(const K& key) {
        Slot* slot = findSlot(key);
        return slot ? &slot->entry->second : nullptr;
    }
    /// The value stored under a key equal to `key`, or null.
    const V* Find(const K& key) const {
        const Slot* slot = const_cast<DUNXHashMap*>(this)->findSlot(key);
        return slot ? &slot->entry->second : nullptr;
    }
    /// True when a key equal to `key` is stored.
    bool Contains(const K& key) const { return Find(key) != nullptr; }

    /// Removes the key equal to `key`; false when there is none.
    bool Remove(const K& key) {
        Slot* slot = findSlot(key);
        if (!slot)
            return false;
        slot->entry.reset();
        slot->removed = true;
        --m_Size;
        ++m_Removed;
        return true;
    }

    /// Removes every key and frees the table.
    void Clear() {
        m_Slots.clear();
        m_Size = 0;
        m_Removed = 0;
    }

    /// Number of keys stored.
    int Size() const { return static_cast<int>(m_Size); }
    /// True when no key is stored.
    bool IsEmpty() const { return m_Size == 0; }
    /// Number of slots in the table (0 before the first `Set`, then a power of two).
    int Capacity() const { return static_cast<int>(m_Slots.size()); }

    /// Calls `visit(key, value)` for every stored key, in table order.
    template <class Visit> void ForEach(Visit visit) const {
        for (const Slot& slot : m_Slots)
            if (slot.entry)
                visit(slot.entry->first, slot.entry->second);
    }

private:
    struct Slot {
        std::optional<std::pair<K, V>> entry;
        bool removed = false; // keeps probe chains through emptied slots intact
    };

    static constexpr std::size_t kInitialCapacity = 8;

    std::size_t home(const K& key) const {
        return static_cast<std::size_t>(m_Hash(key)) & (m_Slots.size() - 1);
    }
    std::size_t next(std::size_t i) const { return (i + 1) & (m_Slots.size() - 1); }
    std::size_t grownCapacity() const {
        return m_Slots.empty() ? kInitialCapacity : 2 * m_Slots.size();
    }

    Slot* findSlot(const K& key) {
        if (m_Size == 0)
            return nullptr;
        for (std::size_t i = home(key);; i = next(i)) {
            Slot& slot = m_Slots[i];
            if (slot.entry) {
                if (m_Equal(slot.entry->first, key))
                    return &slot;
            } else if (!slot.removed) {
                return nullptr; // the load limit guarantees an empty slot ends every chain
            }
        }
    }

    void rehash(std::size_t capacity) {
        std::vector<Slot> old;
        old.swap(m_Slots);
        m_Slots.resize(capacity);
        m_Removed = 0;
        for (Slot& slot : old) {
            if (!slot.entry)
                continue;
            std::size_t i = home(slot.entry->first);
            while (m_Slots[i].entry)
                i = next(i);
            m_Slots[i].entry = std::move(slot.entry);
        }
    }

    std::vector<Slot> m_Slots;
    std::size_t m_Size = 0;
    std::size_t m_Removed = 0;
    Hash m_Hash;
    Equal m_Equal;
};

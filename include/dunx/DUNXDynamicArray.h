// The ordered containers: DUNXDynamicArray, DUNXStack, DUNXList and DUNXMap.
// Thin wrappers over the standard containers that give the library one
// vocabulary; each also offers begin()/end() for range-for loops.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <utility>
#include <vector>

/// A growable array. Indexes are `int`; an index outside [0, Size()) is a
/// programming error for `operator[]` and is refused (false / -1) elsewhere.
template <class T> class DUNXDynamicArray {
public:
    /// An empty array.
    DUNXDynamicArray() = default;
    /// An empty array with room for `initialCapacity` entries before it grows.
    explicit DUNXDynamicArray(int initialCapacity) {
        if (initialCapacity > 0)
            m_Items.reserve(static_cast<std::size_t>(initialCapacity));
    }

    /// Number of entries.
    int Size() const { return static_cast<int>(m_Items.size()); }
    /// Entries that fit before the next growth.
    int Capacity() const { return static_cast<int>(m_Items.capacity()); }
    /// True when there are no entries.
    bool IsEmpty() const { return m_Items.empty(); }

    /// Appends `item` at the end.
    void Add(const T& item) { m_Items.push_back(item); }
    /// Appends `item` at the end.
    void Add(T&& item) { m_Items.push_back(std::move(item)); }
    /// Inserts `item` before `index` (Size() appends); false when `index` is outside [0, Size()].
    bool InsertAt(int index, const T& item) {
        if (index < 0 || index > Size())
            return false;
        m_Items.insert(m_Items.begin() + index, item);
        return true;
    }
    /// Removes the entry at `index`, moving the later ones down in order;
    /// false when `index` is outside [0, Size()).
    bool RemoveAt(int index) {
        if (index < 0 || index >= Size())
            return false;
        m_Items.erase(m_Items.begin() + index);
        return true;
    }
    /// Index of the first entry equal to `item`, or -1.
    int Find(const T& item) const {
        for (std::size_t i = 0; i < m_Items.size(); ++i)
            if (m_Items[i] == item)
                return static_cast<int>(i);
        return -1;
    }
    /// Removes the first entry equal to `item`; false when there is none.
    bool Remove(const T& item) { return RemoveAt(Find(item)); }
    /// Removes every entry equal to `item`, keeping the others in order;
    /// returns how many went.
    int RemoveAll(const T& item) {
        auto last = std::remove(m_Items.begin(), m_Items.end(), item);
        const int removed = static_cast<int>(m_Items.end() - last);
        m_Items.erase(last, m_Items.end());
        return removed;
    }
    /// Removes every entry; the capacity is kept.
    void Clear() { m_Items.clear(); }
    /// Makes room for `capacity` entries without growing again.
    void Reserve(int capacity) {
        if (capacity > 0)
            m_Items.reserve(static_cast<std::size_t>(capacity));
    }

    /// The entry at `index`, unchecked.
    T& operator[](int index) { return m_Items[static_cast<std::size_t>(index)]; }
    /// The entry at `index`, unchecked.
    const T& operator[](int index) const { return m_Items[static_cast<std::size_t>(index)]; }

    typename std::vector<T>::iterator begin() { return m_Items.begin(); }
    typename std::vector<T>::iterator end() { return m_Items.end(); }
    typename std::vector<T>::const_iterator begin() const { return m_Items.begin(); }
    typename std::vector<T>::const_iterator end() const { return m_Items.end(); }

private:
    std::vector<T> m_Items;
};

/// A last-in, first-out stack.
template <class T> class DUNXStack {
public:
    /// Pushes `item` on top.
    void Push(const T& item) { m_Items.push_back(item); }
    /// Pushes `item` on top.
    void Push(T&& item) { m_Items.push_back(std::move(item)); }
    /// Removes the top entry into `item`; false (and `item` untouched) when empty.
    bool Pop(T& item) {
        if (m_Items.empty())
            return false;
        item = std::move(m_Items.back());
        m_Items.pop_back();
        return true;
    }
    /// Removes the top entry; false when empty.
    bool Pop() {
        if (m_Items.empty())
            return false;
        m_Items.pop_back();
        return true;
    }
    /// The top entry, or null when empty.
    T* Top() { return m_Items.empty() ? nullptr : &m_Items.back(); }
    /// The top entry, or null when empty.
    const T* Top() const { return m_Items.empty() ? nullptr : &m_Items.back(); }
    /// Number of entries.
    int Size() const { return static_cast<int>(m_Items.size()); }
    /// True when there are no entries.
    bool IsEmpty() const { return m_Items.empty(); }
    /// Removes every entry.
    void Clear() { m_Items.clear(); }

private:
    std::vector<T> m_Items;
};

/// A doubly linked list: entries keep their place (and address) while others
/// are added or removed.
template <class T> class DUNXList {
public:
    /// Appends `item`.
    void AddTail(const T& item) { m_Items.push_back(item); }
    /// Prepends `item`.
    void AddHead(const T& item) { m_Items.push_front(item); }
    /// Removes the first entry equal to `item`; false when there is none.
    bool Remove(const T& item) {
        for (auto it = m_Items.begin(); it != m_Items.end(); ++it) {
            if (*it == item) {
                m_Items.erase(it);
                return true;
            }
        }
        return false;
    }
    /// True when an entry equals `item`.
    bool Contains(const T& item) const {
        for (const T& entry : m_Items)
            if (entry == item)
                return true;
        return false;
    }
    /// The first entry, or null when empty.
    T* Head() { return m_Items.empty() ? nullptr : &m_Items.front(); }
    /// The last entry, or null when empty.
    T* Tail() { return m_Items.empty() ? nullptr : &m_Items.back(); }
    /// Number of entries.
    int Size() const { return static_cast<int>(m_Items.size()); }
    /// True when there are no entries.
    bool IsEmpty() const { return m_Items.empty(); }
    /// Removes every entry.
    void Clear() { m_Items.clear(); }

    typename std::list<T>::iterator begin() { return m_Items.begin(); }
    typename std::list<T>::iterator end() { return m_Items.end(); }
    typename std::list<T>::const_iterator begin() const { return m_Items.begin(); }
    typename std::list<T>::const_iterator end() const { return m_Items.end(); }

private:
    std::list<T> m_Items;
};

/// A map sorted by key (`Less` orders the keys); iteration visits keys in order.
template <class K, class V, class Less = std::less<K>> class DUNXMap {
public:
    /// Stores `value` under `key`, replacing an earlier value; true when the key is new.
    bool Set(const K& key, const V& value) {
        auto result = m_Items.insert_or_assign(key, value);
        return result.second;
    }
    /// The value stored under `key`, or null.
    V* Find(const K& key) {
        auto it = m_Items.find(key);
        return it == m_Items.end() ? nullptr : &it->second;
    }
    /// The value stored under `key`, or null.
    const V* Find(const K& key) const {
        auto it = m_Items.find(key);
        return it == m_Items.end() ? nullptr : &it->second;
    }
    /// True when `key` is stored.
    bool Contains(const K& key) const { return m_Items.find(key) != m_Items.end(); }
    /// Removes `key`; false when it was not stored.
    bool Remove(const K& key) { return m_Items.erase(key) != 0; }
    /// Number of keys.
    int Size() const { return static_cast<int>(m_Items.size()); }
    /// True when there are no keys.
    bool IsEmpty() const { return m_Items.empty(); }
    /// Removes every key.
    void Clear() { m_Items.clear(); }

    typename std::map<K, V, Less>::iterator begin() { return m_Items.begin(); }
    typename std::map<K, V, Less>::iterator end() { return m_Items.end(); }
    typename std::map<K, V, Less>::const_iterator begin() const { return m_Items.begin(); }
    typename std::map<K, V, Less>::const_iterator end() const { return m_Items.end(); }

private:
    std::map<K, V, Less> m_Items;
};

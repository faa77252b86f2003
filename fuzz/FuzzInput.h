// FuzzInput: hands out the fuzzer's bytes as the small decisions and texts a target needs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace dunx::fuzz {

class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : m_Data(data), m_Size(size) {}

    bool empty() const { return m_Position >= m_Size; }
    /// The next byte, or 0 when none is left.
    std::uint8_t byte() { return empty() ? 0 : m_Data[m_Position++]; }
    /// A number in [0, limit).
    int below(int limit) { return limit <= 0 ? 0 : byte() % limit; }
    /// A text of up to `limit` bytes (its length taken from the next byte).
    std::string text(std::size_t limit = 64) {
        std::size_t length = byte();
        if (length > limit)
            length = limit;
        if (length > m_Size - m_Position)
            length = m_Size - m_Position;
        std::string result(reinterpret_cast<const char*>(m_Data + m_Position), length);
        m_Position += length;
        return result;
    }
    /// Everything not used yet.
    std::string rest() {
        std::string result(reinterpret_cast<const char*>(m_Data + m_Position), m_Size - m_Position);
        m_Position = m_Size;
        return result;
    }

private:
    const std::uint8_t* m_Data;
    std::size_t m_Size;
    std::size_t m_Position = 0;
};

} // namespace dunx::fuzz

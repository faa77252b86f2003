#include "MeshBuilder.h"

#include <cassert>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace dunx::translator {
namespace {

// The bits of a coordinate with -0 taken as 0, so that equal positions weld.
std::uint32_t bitsOf(float value) {
    value += 0.0f; // -0 + 0 is +0
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

std::uint64_t hashOf(const std::uint32_t key[3]) {
    std::uint64_t h = key[0] * 0x9E3779B97F4A7C15ull;
    h ^= (key[1] + 0x632BE59BD9B4E019ull) * 0xC2B2AE3D27D4EB4Full;
    h ^= (key[2] + 0x165667B19E3779F9ull) * 0x85EBCA77C2B2AE63ull;
    // The finaliser of MurmurHash3: every input bit reaches the low bits used as the slot.
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDull;
    h ^= h >> 33;
    h *= 0xC4CEB9FE1A85EC53ull;
    h ^= h >> 33;
    return h;
}

bool collinear(const float* a, const float* b, const float* c) {
    const double u[3] = {double(b[0]) - a[0], double(b[1]) - a[1], double(b[2]) - a[2]};
    const double v[3] = {double(c[0]) - a[0], double(c[1]) - a[1], double(c[2]) - a[2]};
    return u[1] * v[2] - u[2] * v[1] == 0.0 && u[2] * v[0] - u[0] * v[2] == 0.0 &&
           u[0] * v[1] - u[1] * v[0] == 0.0;
}

} // namespace

MeshBuilder::MeshBuilder(Part& part, std::size_t expectedTriangles) : m_Part(part) {
    assert(part.positions.empty() && "the weld table knows only the vertices it added");
    // A closed mesh has about half as many vertices as triangles.
    std::size_t slots = 1024;
    while (slots < expectedTriangles + 16)
        slots *= 2;
    m_Slots.assign(slots, 0);
    if (expectedTriangles) {
        m_Part.indices.reserve(m_Part.indices.size() + 3 * expectedTriangles);
        m_Part.positions.reserve(m_Part.positions.size() + 3 * (expectedTriangles / 2 + 2));
    }
}

bool MeshBuilder::AddTriangle(const float corners[9]) {
    for (int i = 0; i < 9; ++i) {
        if (!std::isfinite(corners[i])) {
            ++m_NonFinite;
            return false;
        }
    }
    std::uint32_t keys[3][3];
    for (int corner = 0; corner < 3; ++corner)
        for (int axis = 0; axis < 3; ++axis)
            keys[corner][axis] = bitsOf(corners[3 * corner + axis]);
    const auto same = [&](int a, int b) { return std::memcmp(keys[a], keys[b], 12) == 0; };
    if (same(0, 1) || same(1, 2) || same(0, 2) || collinear(corners, corners + 3, corners + 6)) {
        ++m_Degenerate;
        return false;
    }
    for (int corner = 0; corner < 3; ++corner)
        m_Part.indices.push_back(weld(keys[corner]));
    return true;
}

std::uint32_t MeshBuilder::weld(const std::uint32_t key[3]) {
    if (2 * (m_Used + 1) > m_Slots.size())
        grow();
    const std::size_t mask = m_Slots.size() - 1;
    std::size_t slot = static_cast<std::size_t>(hashOf(key)) & mask;
    std::vector<float>& positions = m_Part.positions;
    for (;; slot = (slot + 1) & mask) {
        const std::uint32_t held = m_Slots[slot];
        if (held == 0)
            break;
        const float* p = &positions[3 * std::size_t(held - 1)];
        if (bitsOf(p[0]) == key[0] && bitsOf(p[1]) == key[1] && bitsOf(p[2]) == key[2])
            return held - 1;
    }
    const std::size_t index = positions.size() / 3;
    if (index >= 0xFFFFFFFEu)
        throw std::length_error("more than 4 billion vertices in one part");
    float xyz[3];
    std::memcpy(xyz, key, sizeof xyz);
    positions.insert(positions.end(), xyz, xyz + 3);
    m_Slots[slot] = static_cast<std::uint32_t>(index + 1);
    ++m_Used;
    return static_cast<std::uint32_t>(index);
}

void MeshBuilder::grow() {
    std::vector<std::uint32_t> old(m_Slots.size() * 2, 0);
    old.swap(m_Slots);
    const std::size_t mask = m_Slots.size() - 1;
    for (const std::uint32_t held : old) {
        if (held == 0)
            continue;
        const float* p = &m_Part.positions[3 * std::size_t(held - 1)];
        const std::uint32_t key[3] = {bitsOf(p[0]), bitsOf(p[1]), bitsOf(p[2])};
        std::size_t slot = static_cast<std::size_t>(hashOf(key)) & mask;
        while (m_Slots[slot] != 0)
            slot = (slot + 1) & mask;
        m_Slots[slot] = held;
    }
}

} // namespace dunx::translator

// Building a part's welded mesh from loose triangles, dropping the damaged ones.
#pragma once

#include "DunxTranslator.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dunx::translator {

/// Adds triangles to a `Part`, one vertex per distinct position: corners whose
/// three coordinates are exactly equal (0 and -0 count as equal) share one
/// index. Triangles that cannot be drawn are dropped and counted instead:
/// - non-finite: a coordinate is infinite or NaN;
/// - degenerate: two corners at the same position, or three in a line (the
///   cross product of two edges, in double precision, is exactly zero).
/// A dropped triangle adds no vertex, so the part holds only used vertices.
class MeshBuilder {
public:
    /// Builds into `part`, which has no vertex yet.
    /// `expectedTriangles` sizes the storage ahead; 0 lets it grow.
    explicit MeshBuilder(Part& part, std::size_t expectedTriangles = 0);

    /// Adds the triangle of `corners` (x, y, z of each corner in turn);
    /// false when it was dropped.
    bool AddTriangle(const float corners[9]);

    /// Triangles dropped for a non-finite coordinate.
    long long NonFinite() const { return m_NonFinite; }
    /// Triangles dropped as degenerate.
    long long Degenerate() const { return m_Degenerate; }

private:
    std::uint32_t weld(const std::uint32_t key[3]);
    void grow();

    Part& m_Part;
    std::vector<std::uint32_t> m_Slots; // vertex index + 1; 0 is an empty slot
    std::size_t m_Used = 0;
    long long m_NonFinite = 0;
    long long m_Degenerate = 0;
};

} // namespace dunx::translator

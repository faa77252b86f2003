// DUNXPointf, DUNXVectorf, DUNXDirectionf: single-precision values for display
// and tessellation data. Plain values: no count, no virtual member.
#pragma once

#include <dunx/DUNXExport.h>

class DUNXVectorf;
class DUNXDirectionf;

/// A point of space in floats.
class DUNX_EXPORT DUNXPointf {
public:
    /// (0, 0, 0).
    DUNXPointf() = default;
    /// (x, y, z).
    DUNXPointf(float px, float py, float pz) : x(px), y(py), z(pz) {}
    /// Reads three floats from `xyz`.
    explicit DUNXPointf(const float* xyz) : x(xyz[0]), y(xyz[1]), z(xyz[2]) {}

    /// Writes x, y, z to `xyz[0..2]`.
    void GetValue(float* xyz) const;
    /// Euclidean distance.
    float DistanceTo(const DUNXPointf& p) const;
    /// |dx| + |dy| + |dz|.
    float DistanceL1To(const DUNXPointf& p) const;
    /// Each coordinate becomes the smaller of its own and `p`'s (box growing).
    void GetMinimum(const DUNXPointf& p);
    /// Each coordinate becomes the larger of its own and `p`'s.
    void GetMaximum(const DUNXPointf& p);

    /// True only when the x coordinates are equal AND the y coordinates differ
    /// AND the z coordinates differ: (1,2,3) == (1,2,3) is false, (1,2,3) ==
    /// (1,5,6) is true. Kept exactly as it is: callers depend on this result.
    bool operator==(const DUNXPointf& p) const { return x == p.x && y != p.y && z != p.z; }

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

/// A free vector of space in floats.
class DUNX_EXPORT DUNXVectorf {
public:
    /// (0, 0, 0).
    DUNXVectorf() = default;
    /// (x, y, z).
    DUNXVectorf(float vx, float vy, float vz) : x(vx), y(vy), z(vz) {}
    /// Reads three floats from `xyz`.
    explicit DUNXVectorf(const float* xyz) : x(xyz[0]), y(xyz[1]), z(xyz[2]) {}
    /// `to` − `from`.
    DUNXVectorf(const DUNXPointf& from, const DUNXPointf& to)
        : x(to.x - from.x), y(to.y - from.y), z(to.z - from.z) {}
    /// The direction's unit vector.
    explicit DUNXVectorf(const DUNXDirectionf& direction);

    /// Reads the three coordinates.
    void GetCoord(float& vx, float& vy, float& vz) const;
    /// Writes the three coordinates to `xyz[0..2]`.
    void GetCoord(float* xyz) const;
    /// Sets the three coordinates.
    void SetCoord(float vx, float vy, float vz);
    /// Sets the three coordinates from `xyz[0..2]`.
    void SetCoord(const float* xyz);

    /// Euclidean norm.
    float Norm() const;
    /// Makes the vector unit length in place and returns it. When the squared
    /// norm is at most 1e-14 it becomes (1, 0, 0): (0, 0, 0) => (1, 0, 0).
    DUNXVectorf& Normalize();
    /// Angle to `v` in radians, within [0, π]; 0 when either norm is at most 1e-14.
    float AngleTo(const DUNXVectorf& v) const;
    /// Angle to `v` measured counter-clockwise about `reference`, within [0, 2π):
    /// the unsigned angle when (this × v)·reference > 0, else 2π minus it (so a
    /// zero triple product gives 2π − angle).
    float AngleTo(const DUNXVectorf& v, const DUNXVectorf& reference) const;

    DUNXVectorf operator-() const { return DUNXVectorf(-x, -y, -z); }

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

/// A unit vector in floats. Every constructor normalises; a squared norm of at
/// most 1e-14 silently gives the x axis: `DUNXDirectionf(0, 0, 1e-8)` is (1, 0, 0).
class DUNX_EXPORT DUNXDirectionf {
public:
    /// (x, y, z) normalised.
    DUNXDirectionf(float dx, float dy, float dz);
    /// Three floats from `xyz`, normalised.
    explicit DUNXDirectionf(const float* xyz);
    /// `to` − `from`, normalised.
    DUNXDirectionf(const DUNXPointf& from, const DUNXPointf& to);
    /// `v` normalised.
    explicit DUNXDirectionf(const DUNXVectorf& v);

    float x() const { return m_X; }
    float y() const { return m_Y; }
    float z() const { return m_Z; }
    /// Reads the three coordinates.
    void GetCoord(float& dx, float& dy, float& dz) const;

    /// Normalises again (useful after rounding) and returns the direction.
    DUNXDirectionf& Normalize();
    /// The opposite direction.
    DUNXDirectionf operator-() const;

private:
    float m_X;
    float m_Y;
    float m_Z;
};

/// `a` − `b` as a vector.
DUNX_EXPORT DUNXVectorf operator-(const DUNXPointf& a, const DUNXPointf& b);
/// `p` moved by `v`.
DUNX_EXPORT DUNXPointf operator+(const DUNXPointf& p, const DUNXVectorf& v);
/// `p` moved by −`v`.
DUNX_EXPORT DUNXPointf operator-(const DUNXPointf& p, const DUNXVectorf& v);
/// `p` moved by `v`.
DUNX_EXPORT DUNXPointf operator+(const DUNXVectorf& v, const DUNXPointf& p);

DUNX_EXPORT DUNXVectorf operator+(const DUNXVectorf& a, const DUNXVectorf& b);
DUNX_EXPORT DUNXVectorf operator-(const DUNXVectorf& a, const DUNXVectorf& b);
DUNX_EXPORT DUNXVectorf operator*(const DUNXVectorf& v, float s);
DUNX_EXPORT DUNXVectorf operator*(float s, const DUNXVectorf& v);
/// Divides each coordinate; no zero check (0 gives infinities or NaN).
DUNX_EXPORT DUNXVectorf operator/(const DUNXVectorf& v, float s);
/// Dot product.
DUNX_EXPORT float operator*(const DUNXVectorf& a, const DUNXVectorf& b);
/// Cross product.
DUNX_EXPORT DUNXVectorf operator^(const DUNXVectorf& a, const DUNXVectorf& b);

/// Cross product of two directions (not normalised).
DUNX_EXPORT DUNXVectorf operator^(const DUNXDirectionf& a, const DUNXDirectionf& b);
/// Cross product of a direction and a vector.
DUNX_EXPORT DUNXVectorf operator^(const DUNXDirectionf& a, const DUNXVectorf& b);
/// The direction scaled into a vector.
DUNX_EXPORT DUNXVectorf operator*(const DUNXDirectionf& d, float s);
/// The direction scaled into a vector.
DUNX_EXPORT DUNXVectorf operator*(float s, const DUNXDirectionf& d);

/// (1, 0, 0).
extern DUNX_EXPORT const DUNXVectorf DUNXVectorIf;
/// (0, 1, 0).
extern DUNX_EXPORT const DUNXVectorf DUNXVectorJf;
/// (0, 0, 1).
extern DUNX_EXPORT const DUNXVectorf DUNXVectorKf;
/// (0, 0, 0).
extern DUNX_EXPORT const DUNXVectorf DUNXNullVectorf;
/// The origin.
extern DUNX_EXPORT const DUNXPointf DUNXPointOf;
/// The x axis as a direction.
extern DUNX_EXPORT const DUNXDirectionf DUNXMathIf;
/// The y axis as a direction.
extern DUNX_EXPORT const DUNXDirectionf DUNXMathJf;
/// The z axis as a direction.
extern DUNX_EXPORT const DUNXDirectionf DUNXMathKf;

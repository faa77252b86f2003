// DUNXPoint, DUNXPoint2D, DUNXPoint3D: the counted double-precision coordinates that
// serve as point and as vector alike, and their handles.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXReferenceCount.h>

class DUNXAffine2D;
class DUNXAffine3D;
class DUNXMorph2D;
class DUNXMorph3D;
class DUNXStreamFormatter;

/// An n-dimensional coordinate tuple (dimension 1 to 3), used as a point or as a
/// vector. Counted, so that handles can share it; copies start with count 0.
/// Nothing here reports an error: indices are clamped, a zero divisor is skipped.
class DUNX_EXPORT DUNXPoint : public DUNXReferenceCount {
public:
    /// A point of `dimension` coordinates (1..3), all 0.0. The dimension never changes.
    explicit DUNXPoint(int dimension);
    /// Copies the dimension and the coordinates; the count starts at 0.
    DUNXPoint(const DUNXPoint& other);
    /// Copies the coordinates only: the dimension and the count stay as they are.
    DUNXPoint& operator=(const DUNXPoint& other);
    ~DUNXPoint() override;

    /// Coordinate `i`, clamped: below 0 gives coordinate 0, at or past the
    /// dimension gives the last one. `DUNXPoint3D(1, 2, 3)[5]` => 3, `[-1]` => 1.
    virtual double operator[](int i) const;
    /// Writable coordinate `i`, clamped as the const form.
    virtual double& operator[](int i);
    /// Euclidean norm of the coordinates in use.
    virtual double Length() const;
    /// Changes the sign of every coordinate (through `Multiply(-1.0)`).
    virtual void Negate();
    /// Multiplies every coordinate by `s`.
    virtual void Multiply(double s);
    /// Divides every coordinate by `s`; a divisor of exactly 0.0 changes nothing.
    virtual void Divide(double s);
    /// Subtracts `p[i]` (read through `p`'s `operator[]`) from each coordinate.
    /// Polls the abort flag first (may throw `DUNXAbortException`); a dimension
    /// mismatch fires an assertion in debug builds and goes on with this dimension.
    virtual void Substract(const DUNXPoint& p);
    /// Adds `p[i]` to each coordinate; abort poll and dimension check as `Substract`.
    virtual void Add(const DUNXPoint& p);
    /// Writes this point's coordinates into `target`; abort poll and dimension
    /// check as `Substract`.
    virtual void CopyIn(DUNXPoint& target) const;
    /// Prints each coordinate with the formatter's double format, each followed
    /// by one blank: "1.000000 2.000000 ".
    virtual void Dump(DUNXStreamFormatter& out) const;

    /// The number of coordinates in use (1..3).
    int GetDimension() const { return m_Dimension; }
    /// Euclidean distance over this point's dimension (weights are not seen);
    /// abort poll and dimension check as `Substract`.
    double DistanceTo(const DUNXPoint& other) const;
    /// True when |this[i] - other[i]| <= |tolerance| for each coordinate (a
    /// difference equal to the tolerance passes; a negative tolerance acts as its
    /// absolute value). Weight points compare their weight too. Abort poll and
    /// dimension check as `Substract`.
    bool IsWithinTolerance(const DUNXPoint& other, double tolerance) const;
    /// As above with one tolerance per coordinate, read from `tolerances[i]`.
    bool IsWithinTolerance(const DUNXPoint& other, const DUNXPoint& tolerances) const;

protected:
    /// Polls the abort flag and checks that `other` has this dimension.
    void CheckOther(const DUNXPoint& other) const;
    /// Index clamped into 0..dimension-1.
    int ClampIndex(int i) const { return i < 0 ? 0 : (i >= m_Dimension ? m_Dimension - 1 : i); }

    double m_Coords[3];
    int m_Dimension;
};

/// A point or vector of the plane.
class DUNX_EXPORT DUNXPoint2D : public DUNXPoint {
public:
    /// (0, 0).
    DUNXPoint2D();
    /// (x, y).
    DUNXPoint2D(double x, double y);
    DUNXPoint2D(const DUNXPoint2D& other);
    DUNXPoint2D& operator=(const DUNXPoint2D& other);
    ~DUNXPoint2D() override;

    /// Applies `morph`: affine part, then scale, then (unless `noTranslation`)
    /// translation. The identity morph changes nothing. Pass `noTranslation` for
    /// vectors such as tangents.
    virtual void Transform(const DUNXMorph2D& morph, bool noTranslation = false);
    /// Replaces the point by A·p (the point is a column vector).
    virtual void Transform(const DUNXAffine2D& affine);

    /// A copy.
    DUNXPoint2D Copy() const;
    /// The negated copy.
    DUNXPoint2D operator-() const;
    DUNXPoint2D& operator+=(const DUNXPoint2D& p);
    DUNXPoint2D& operator-=(const DUNXPoint2D& p);
    DUNXPoint2D& operator*=(double s);
    /// Divides in place; a divisor of exactly 0.0 changes nothing.
    DUNXPoint2D& operator/=(double s);
    /// Adds `p` in place.
    void Shift(const DUNXPoint2D& p);
    /// The unit vector of this direction; a zero vector comes back as it is (no tolerance).
    DUNXPoint2D Normalize() const;
    /// A unit vector perpendicular to this one: (y, -x)/L when x >= y, else
    /// (-y, x)/L. A vector shorter than `Gk_Def::FuzzReal` gives a unit axis.
    DUNXPoint2D Orthogonalize() const;
};

/// A point or vector of space.
class DUNX_EXPORT DUNXPoint3D : public DUNXPoint {
public:
    /// (0, 0, 0).
    DUNXPoint3D();
    /// (x, y, z).
    DUNXPoint3D(double x, double y, double z);
    /// Reads three doubles from `xyz`.
    explicit DUNXPoint3D(const double* xyz);
    DUNXPoint3D(const DUNXPoint3D& other);
    DUNXPoint3D& operator=(const DUNXPoint3D& other);
    ~DUNXPoint3D() override;

    /// Applies `morph`: affine part, then scale, then (unless `noTranslation`)
    /// translation. The identity morph changes nothing.
    virtual void Transform(const DUNXMorph3D& morph, bool noTranslation = false);
    /// Replaces the point by A·p (the point is a column vector).
    virtual void Transform(const DUNXAffine3D& affine);
    /// Applies `morph` to each of the `count` points of the array `points`,
    /// bit for bit as `Transform(morph, noTranslation)` does one point. The
    /// bulk path for arrays of points: the morph's flags are read once and no
    /// call is made per point. The elements of an array are `DUNXPoint3D`
    /// objects themselves, so no override of `Transform` is involved.
    static void TransformArray(DUNXPoint3D* points, int count, const DUNXMorph3D& morph,
                               bool noTranslation = false);

    /// A copy.
    DUNXPoint3D Copy() const;
    /// The negated copy.
    DUNXPoint3D operator-() const;
    DUNXPoint3D& operator+=(const DUNXPoint3D& p);
    DUNXPoint3D& operator-=(const DUNXPoint3D& p);
    DUNXPoint3D& operator*=(double s);
    /// Divides in place; a divisor of exactly 0.0 changes nothing.
    DUNXPoint3D& operator/=(double s);
    /// Adds `p` in place.
    void Shift(const DUNXPoint3D& p);
    /// The unit vector of this direction; a zero vector comes back as it is (no tolerance).
    DUNXPoint3D Normalize() const;
    /// A unit vector perpendicular to this one. The coordinates are ordered only
    /// partly (signed values, two swaps) before the perpendicular is built, so
    /// (0, 0, 1) gives (1, -0, 0) with a negative zero; a vector shorter than
    /// `Gk_Def::FuzzReal` gives a unit axis.
    DUNXPoint3D Orthogonalize() const;
    /// The cross product a × b.
    static DUNXPoint3D VectorProduct(const DUNXPoint3D& a, const DUNXPoint3D& b);
};

/// Coordinate-wise sum.
DUNX_EXPORT DUNXPoint2D operator+(const DUNXPoint2D& a, const DUNXPoint2D& b);
/// Coordinate-wise difference.
DUNX_EXPORT DUNXPoint2D operator-(const DUNXPoint2D& a, const DUNXPoint2D& b);
/// Scaled copy.
DUNX_EXPORT DUNXPoint2D operator*(const DUNXPoint2D& p, double s);
/// Scaled copy.
DUNX_EXPORT DUNXPoint2D operator*(double s, const DUNXPoint2D& p);
/// Divided copy; a divisor of exactly 0.0 gives an unchanged copy.
DUNX_EXPORT DUNXPoint2D operator/(const DUNXPoint2D& p, double s);
/// Dot product.
DUNX_EXPORT double operator*(const DUNXPoint2D& a, const DUNXPoint2D& b);

/// Coordinate-wise sum.
DUNX_EXPORT DUNXPoint3D operator+(const DUNXPoint3D& a, const DUNXPoint3D& b);
/// Coordinate-wise difference.
DUNX_EXPORT DUNXPoint3D operator-(const DUNXPoint3D& a, const DUNXPoint3D& b);
/// Scaled copy.
DUNX_EXPORT DUNXPoint3D operator*(const DUNXPoint3D& p, double s);
/// Scaled copy.
DUNX_EXPORT DUNXPoint3D operator*(double s, const DUNXPoint3D& p);
/// Divided copy; a divisor of exactly 0.0 gives an unchanged copy.
DUNX_EXPORT DUNXPoint3D operator/(const DUNXPoint3D& p, double s);
/// Dot product.
DUNX_EXPORT double operator*(const DUNXPoint3D& a, const DUNXPoint3D& b);

/// Writes x, y, z of `p` to `out[0..2]`.
DUNX_EXPORT void DUNXGetDoublesFromDUNXPoint3D(const DUNXPoint3D& p, double* out);

/// Prints `p` through its `Dump`.
DUNX_EXPORT DUNXStreamFormatter& operator<<(DUNXStreamFormatter& out, const DUNXPoint& p);

/// A handle for points of the family shared between owners. `==` and `<`
/// compare which object is held, never the coordinates.
template <class T> class DUNXPointHandleOf : public DUNXTypedHandle<T> {
public:
    /// Holds nothing.
    DUNXPointHandleOf() = default;
    /// Holds `point` (null allowed) and raises its count.
    explicit DUNXPointHandleOf(T* point) : DUNXTypedHandle<T>(point) {}
    /// The held point, or null; the handle keeps its reference.
    operator T*() const { return this->Get(); }
};

/// Shares a `DUNXPoint`.
class DUNXPointHandle : public DUNXPointHandleOf<DUNXPoint> {
public:
    using DUNXPointHandleOf<DUNXPoint>::DUNXPointHandleOf;
};

/// Shares a `DUNXPoint2D`.
class DUNXPoint2DHandle : public DUNXPointHandleOf<DUNXPoint2D> {
public:
    using DUNXPointHandleOf<DUNXPoint2D>::DUNXPointHandleOf;
};

/// Shares a `DUNXPoint3D`.
class DUNXPoint3DHandle : public DUNXPointHandleOf<DUNXPoint3D> {
public:
    using DUNXPointHandleOf<DUNXPoint3D>::DUNXPointHandleOf;
};

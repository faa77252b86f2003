// DUNXWeightPoint2D and DUNXWeightPoint3D: rational (homogeneous) points for
// weighted control points.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXPoint.h>

/// A weighted point of the plane. The stored coordinates are the weighted ones
/// (w·x, w·y); `GetCoords` divides them back. Index 2 and every larger index
/// read or write the weight, so arithmetic and tolerance tests see it as a
/// third coordinate.
class DUNX_EXPORT DUNXWeightPoint2D : public DUNXPoint {
public:
    /// Coordinates 0 and weight 0 (not 1).
    DUNXWeightPoint2D();
    /// Every stored coordinate and the weight set to `v`.
    explicit DUNXWeightPoint2D(double v);
    /// Weight `w`; stores p·w when `multiplyByWeight` is true and w is not 1.0
    /// (a NaN weight counts as not 1), else p as it is.
    DUNXWeightPoint2D(const DUNXPoint2D& p, double w, bool multiplyByWeight);
    DUNXWeightPoint2D(const DUNXWeightPoint2D& other);
    DUNXWeightPoint2D& operator=(const DUNXWeightPoint2D& other);
    ~DUNXWeightPoint2D() override;

    /// Stored coordinate `i`; below 0 gives coordinate 0, 2 and above the weight.
    double operator[](int i) const override;
    /// Writable form of the above.
    double& operator[](int i) override;
    /// sqrt(x² + y² + w²) over the stored coordinates: the weight counts.
    double Length() const override;
    /// Multiplies the stored coordinates and the weight by `s`.
    void Multiply(double s) override;
    /// Divides the stored coordinates and the weight; 0.0 changes nothing at all.
    void Divide(double s) override;
    /// Subtracts `p[0]`, `p[1]` and, from the weight, `p[2]`.
    void Substract(const DUNXPoint& p) override;
    /// Adds `p[0]`, `p[1]` and, to the weight, `p[2]`.
    void Add(const DUNXPoint& p) override;
    /// Writes the stored coordinates into `target`, and the weight when `target`
    /// is a weight point too.
    void CopyIn(DUNXPoint& target) const override;
    /// Applies `morph` to the stored coordinates; the translation is multiplied by
    /// the weight first, which moves the Cartesian point by it. The weight stays.
    virtual void Transform(const DUNXMorph2D& morph, bool noTranslation = false);
    /// Applies A to the stored coordinates; the weight stays.
    virtual void Transform(const DUNXAffine2D& affine);

    /// The weight.
    double GetWeight() const { return m_Weight; }
    /// Sets the weight only; the stored coordinates stay.
    void SetWeight(double w) { m_Weight = w; }
    /// The stored (weighted) coordinates.
    DUNXPoint2D GetWeightedCoords() const;
    /// Stores `p`'s coordinates as they are.
    void SetWeightedCoords(const DUNXPoint2D& p);
    /// The Cartesian point: stored coordinates divided by the weight, except for
    /// a weight of exactly 1.0 or 0.0, which give them undivided.
    DUNXPoint2D GetCoords() const;

    /// A copy.
    DUNXWeightPoint2D Copy() const;
    /// The copy with coordinates and weight negated.
    DUNXWeightPoint2D operator-() const;
    DUNXWeightPoint2D& operator+=(const DUNXWeightPoint2D& p);
    DUNXWeightPoint2D& operator-=(const DUNXWeightPoint2D& p);
    /// Scales coordinates and weight.
    DUNXWeightPoint2D& operator*=(double s);
    /// Divides coordinates and weight; 0.0 changes nothing.
    DUNXWeightPoint2D& operator/=(double s);
    /// Moves the Cartesian point by `p`: adds p[i]·w to each stored coordinate.
    void Shift(const DUNXPoint2D& p);
    /// This point divided by `Length()` (weight included); a zero length gives a copy.
    DUNXWeightPoint2D Normalize() const;

private:
    double m_Weight;
};

/// A weighted point of space; see `DUNXWeightPoint2D` (index 3 and above is the weight).
class DUNX_EXPORT DUNXWeightPoint3D : public DUNXPoint {
public:
    /// Coordinates 0 and weight 0 (not 1).
    DUNXWeightPoint3D();
    /// Every stored coordinate and the weight set to `v`.
    explicit DUNXWeightPoint3D(double v);
    /// Weight `w`; stores p·w when `multiplyByWeight` is true and w is not 1.0
    /// (a NaN weight counts as not 1), else p as it is.
    /// `DUNXWeightPoint3D(DUNXPoint3D(1, 2, 3), 2.0, true)` stores (2, 4, 6).
    DUNXWeightPoint3D(const DUNXPoint3D& p, double w, bool multiplyByWeight);
    DUNXWeightPoint3D(const DUNXWeightPoint3D& other);
    DUNXWeightPoint3D& operator=(const DUNXWeightPoint3D& other);
    ~DUNXWeightPoint3D() override;

    /// Stored coordinate `i`; below 0 gives coordinate 0, 3 and above the weight.
    double operator[](int i) const override;
    /// Writable form of the above.
    double& operator[](int i) override;
    /// sqrt(x² + y² + z² + w²) over the stored coordinates: the weight counts.
    double Length() const override;
    /// Multiplies the stored coordinates and the weight by `s`.
    void Multiply(double s) override;
    /// Divides the stored coordinates and the weight; 0.0 changes nothing at all.
    void Divide(double s) override;
    /// Subtracts `p[0..2]` and, from the weight, `p[3]`.
    void Substract(const DUNXPoint& p) override;
    /// Adds `p[0..2]` and, to the weight, `p[3]`.
    void Add(const DUNXPoint& p) override;
    /// Writes the stored coordinates into `target`, and the weight when `target`
    /// is a weight point too.
    void CopyIn(DUNXPoint& target) const override;
    /// Prints the Cartesian point (`GetCoords()`), not the stored coordinates.
    void Dump(DUNXStreamFormatter& out) const override;
    /// Applies `morph` to the stored coordinates; the translation is multiplied by
    /// the weight first, which moves the Cartesian point by it. The weight stays.
    virtual void Transform(const DUNXMorph3D& morph, bool noTranslation = false);
    /// Applies A to the stored coordinates; the weight stays.
    virtual void Transform(const DUNXAffine3D& affine);

    /// The weight.
    double GetWeight() const { return m_Weight; }
    /// Sets the weight only; the stored coordinates stay.
    void SetWeight(double w) { m_Weight = w; }
    /// The stored (weighted) coordinates.
    DUNXPoint3D GetWeightedCoords() const;
    /// Stores `p`'s coordinates as they are.
    void SetWeightedCoords(const DUNXPoint3D& p);
    /// The Cartesian point: stored coordinates divided by the weight, except for
    /// a weight of exactly 1.0 or 0.0, which give them undivided.
    DUNXPoint3D GetCoords() const;

    /// A copy.
    DUNXWeightPoint3D Copy() const;
    /// The copy with coordinates and weight negated.
    DUNXWeightPoint3D operator-() const;
    DUNXWeightPoint3D& operator+=(const DUNXWeightPoint3D& p);
    DUNXWeightPoint3D& operator-=(const DUNXWeightPoint3D& p);
    /// Scales coordinates and weight.
    DUNXWeightPoint3D& operator*=(double s);
    /// Divides coordinates and weight; 0.0 changes nothing.
    DUNXWeightPoint3D& operator/=(double s);
    /// Moves the Cartesian point by `p`: adds p[i]·w to each stored coordinate.
    void Shift(const DUNXPoint3D& p);
    /// This point divided by `Length()` (weight included); a zero length gives a copy.
    DUNXWeightPoint3D Normalize() const;

private:
    double m_Weight;
};

/// Sum of stored coordinates and of weights.
DUNX_EXPORT DUNXWeightPoint2D operator+(const DUNXWeightPoint2D& a, const DUNXWeightPoint2D& b);
/// Difference of stored coordinates and of weights.
DUNX_EXPORT DUNXWeightPoint2D operator-(const DUNXWeightPoint2D& a, const DUNXWeightPoint2D& b);
/// Coordinates and weight scaled.
DUNX_EXPORT DUNXWeightPoint2D operator*(const DUNXWeightPoint2D& p, double s);
/// Coordinates and weight scaled.
DUNX_EXPORT DUNXWeightPoint2D operator*(double s, const DUNXWeightPoint2D& p);
/// Coordinates and weight divided; 0.0 gives an unchanged copy.
DUNX_EXPORT DUNXWeightPoint2D operator/(const DUNXWeightPoint2D& p, double s);
/// Σ stored[i]·other[i] + w·w'.
DUNX_EXPORT double operator*(const DUNXWeightPoint2D& a, const DUNXWeightPoint2D& b);

/// Sum of stored coordinates and of weights.
DUNX_EXPORT DUNXWeightPoint3D operator+(const DUNXWeightPoint3D& a, const DUNXWeightPoint3D& b);
/// Difference of stored coordinates and of weights.
DUNX_EXPORT DUNXWeightPoint3D operator-(const DUNXWeightPoint3D& a, const DUNXWeightPoint3D& b);
/// Coordinates and weight scaled.
DUNX_EXPORT DUNXWeightPoint3D operator*(const DUNXWeightPoint3D& p, double s);
/// Coordinates and weight scaled.
DUNX_EXPORT DUNXWeightPoint3D operator*(double s, const DUNXWeightPoint3D& p);
/// Coordinates and weight divided; 0.0 gives an unchanged copy.
DUNX_EXPORT DUNXWeightPoint3D operator/(const DUNXWeightPoint3D& p, double s);
/// Σ stored[i]·other[i] + w·w'.
DUNX_EXPORT double operator*(const DUNXWeightPoint3D& a, const DUNXWeightPoint3D& b);

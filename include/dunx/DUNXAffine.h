// DUNXAffine, DUNXAffine2D, DUNXAffine3D: square linear maps of the plane and of
// space in double precision.
#pragma once

#include <dunx/DUNXExport.h>

class DUNXPoint2D;
class DUNXPoint3D;
class DUNXStreamFormatter;

/// A square linear map of dimension 2 or 3, stored row-major in a 3 × 3 array
/// (a 2D map uses the top-left 2 × 2 and leaves the rest as it is). Points are
/// column vectors: the map sends p to A·p. Nothing is refused: a singular map
/// inverts to infinities, a zero divisor gives infinities.
class DUNX_EXPORT DUNXAffine {
public:
    /// A zero map of `dimension` (2 or 3): every element 0.
    explicit DUNXAffine(int dimension);
    /// Copies the dimension and the used elements.
    DUNXAffine(const DUNXAffine& other);
    /// Copies the dimension and the used elements; the others stay.
    DUNXAffine& operator=(const DUNXAffine& other);
    virtual ~DUNXAffine();

    /// The dimension (2 or 3).
    int GetDimension() const { return m_Dimension; }
    /// Element at (`row`, `column`), both from 0.
    double GetElement(int row, int column) const { return m_Elements[3 * row + column]; }
    /// Sets the element at (`row`, `column`).
    void SetElement(int row, int column, double value) { m_Elements[3 * row + column] = value; }
    /// Writes row `row` (dimension values) to `values`.
    void GetRow(int row, double* values) const;
    /// Sets row `row` from `values` (dimension values).
    void SetRow(int row, const double* values);
    /// Writes column `column` (dimension values) to `values`.
    void GetColumn(int column, double* values) const;
    /// Sets column `column` from `values` (dimension values).
    void SetColumn(int column, const double* values);

    /// Multiplies every used element by `s`.
    void Multiply(double s);
    /// Multiplies every used element by 1/`d`; 0 is not guarded (infinities).
    void Divide(double d);
    /// result = this × b, so that result·p = this·(b·p). `result` may be this or `b`.
    void Multiply(const DUNXAffine& b, DUNXAffine& result) const;
    /// Determinant by cofactor expansion along the first row.
    double Determinant() const;
    /// Signed cofactor (−1)^(row+column) · minor of (`row`, `column`).
    double DeterminantOfCofactor(int row, int column) const;
    /// Writes the transpose into `result` (which may be this).
    void GetTranspose(DUNXAffine& result) const;
    /// Transposes in place.
    void Transpose();
    /// Writes the inverse into `result`: the adjugate (transposed cofactors)
    /// times 1/det. A singular map is not refused: it gives infinities or NaN.
    void GetInverse(DUNXAffine& result) const;
    /// 1 when each used row has a diagonal element within `Gk_Def::FuzzReal` of 1
    /// and an element sum within `Gk_Def::FuzzReal` of 1, else 0. Off-diagonal
    /// elements are not tested one by one: the row (1, 0.5, −0.5) passes. Kept
    /// lenient on purpose; callers use it as a cheap "nothing to do" test.
    int IsIdentity() const;
    /// 1 on the used diagonal, 0 elsewhere in the used block.
    void MakeIdentity();
    /// Copies `other` (as assignment).
    void SetTo(const DUNXAffine& other);
    /// Same dimension and exactly the same used elements.
    bool operator==(const DUNXAffine& other) const;

    /// Prints one line per used row, each preceded by the margin and each
    /// element followed by one blank.
    void Dump(DUNXStreamFormatter& out) const;

protected:
    int m_Dimension;
    double m_Elements[9];
};

/// A linear map of the plane; the default is the zero map (call `MakeIdentity`).
class DUNX_EXPORT DUNXAffine2D : public DUNXAffine {
public:
    /// The zero map.
    DUNXAffine2D();
    DUNXAffine2D(const DUNXAffine2D& other);
    DUNXAffine2D& operator=(const DUNXAffine2D& other);
    ~DUNXAffine2D() override;

    using DUNXAffine::SetColumn;
    /// Sets column `column` from the coordinates of `p`.
    void SetColumn(int column, const DUNXPoint2D& p);
};

/// A linear map of space; the default is the zero map (call `MakeIdentity`).
class DUNX_EXPORT DUNXAffine3D : public DUNXAffine {
public:
    /// The zero map.
    DUNXAffine3D();
    DUNXAffine3D(const DUNXAffine3D& other);
    DUNXAffine3D& operator=(const DUNXAffine3D& other);
    ~DUNXAffine3D() override;

    using DUNXAffine::SetColumn;
    /// Sets column `column` from the coordinates of `p`.
    void SetColumn(int column, const DUNXPoint3D& p);

    /// Replaces each of `count` packed points (x, y, z, x, y, z, ...) by A·p.
    /// The bulk path: no allocation, no virtual call.
    void Apply(double* xyz, int count) const {
        const double* a = m_Elements;
        for (int i = 0; i < count; ++i, xyz += 3) {
            const double x = xyz[0], y = xyz[1], z = xyz[2];
            xyz[0] = a[0] * x + a[1] * y + a[2] * z;
            xyz[1] = a[3] * x + a[4] * y + a[5] * z;
            xyz[2] = a[6] * x + a[7] * y + a[8] * z;
        }
    }
};

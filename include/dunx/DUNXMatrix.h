// DUNXMath3x3Matrixf and DUNX4x4Matrix: single-precision matrices used with
// DUNXPointf, DUNXVectorf and DUNXDirectionf.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXVectorf.h>

class DUNXMath3x3Matrixf;

/// A 3 × 3 float matrix, row-major (element (r, c) at 3·r + c), with a cached
/// kind that lets `Inverse` take a shortcut:
///   1 rotation (isometry, determinant +1), −1 isometry with reflection,
///   2 positive uniform scaling, −2 negative uniform scaling, 0 general.
/// Operations that cannot vouch for the kind give 0, which is always safe.
class DUNX_EXPORT DUNXMath3x3Matrixf {
public:
    /// The identity, kind 1.
    DUNXMath3x3Matrixf();
    /// s on the diagonal; kind 1 for s = 1, −1 for s = −1, 2 for other s > 0,
    /// −2 for other s < 0, 0 for s = 0 (or NaN).
    explicit DUNXMath3x3Matrixf(float s);
    /// The matrix whose columns are `c0`, `c1`, `c2`; kind 0.
    DUNXMath3x3Matrixf(const DUNXVectorf& c0, const DUNXVectorf& c1, const DUNXVectorf& c2);
    /// The frame with columns `c0`, `c1` and `c0` ^ `c1`; kind 0.
    DUNXMath3x3Matrixf(const DUNXVectorf& c0, const DUNXVectorf& c1);
    /// The cross-product matrix of `v`: M·w = v ^ w; kind 0.
    explicit DUNXMath3x3Matrixf(const DUNXVectorf& v);
    /// The rotation by `angle` radians counter-clockwise about `axis` (Rodrigues'
    /// formula; the axis is normalised, a zero axis counts as the x axis); kind 1.
    DUNXMath3x3Matrixf(const DUNXVectorf& axis, const double& angle);
    DUNXMath3x3Matrixf(const DUNXMath3x3Matrixf& other) = default;
    DUNXMath3x3Matrixf& operator=(const DUNXMath3x3Matrixf& other) = default;

    /// Element (`row`, `column`).
    float GetCoef(int row, int column) const { return m_Coef[3 * row + column]; }
    /// Sets element (`row`, `column`); the kind becomes 0.
    void SetCoef(int row, int column, float value);
    /// Sets all nine elements from `rowMajor`; the kind becomes 0.
    void SetMatrix(const float* rowMajor);
    /// Writes the nine elements row-major to `rowMajor`.
    void GetMatrix(float* rowMajor) const;
    /// Column 0 (elements 0, 3, 6).
    DUNXVectorf GetFirstColumn() const;
    /// Column 1 (elements 1, 4, 7).
    DUNXVectorf GetSecondColumn() const;
    /// Column 2 (elements 2, 5, 8).
    DUNXVectorf GetThirdColumn() const;
    /// Sets column 0; the kind becomes 0.
    void SetFirstColumn(const DUNXVectorf& v);
    /// Sets column 1; the kind becomes 0.
    void SetSecondColumn(const DUNXVectorf& v);
    /// Sets column 2; the kind becomes 0.
    void SetThirdColumn(const DUNXVectorf& v);

    /// The kind (1, −1, 2, −2 or 0).
    int GetKind() const { return m_Kind; }
    /// Kind not 0: rotations and reflections count as scalings too.
    bool IsScaling() const { return m_Kind != 0; }
    /// Kind 1 or −1.
    bool IsIsometry() const { return m_Kind == 1 || m_Kind == -1; }

    /// The determinant.
    float Determinant() const;
    /// The sum of the diagonal.
    float Trace() const;
    /// The maximum row sum of absolute values (the matrix norm induced by the
    /// vector infinity norm).
    float InfiniteNorm() const;
    /// Transposes in place (the kind stays) and returns the matrix.
    DUNXMath3x3Matrixf& Transpose();
    /// Writes the inverse to `out` and returns true. An isometry is inverted by
    /// transposition and keeps its kind; otherwise a determinant of magnitude at
    /// most 1e-14 returns false and leaves `out` as it was; else the adjugate over
    /// the determinant (kind 0, or ±2 kept for a uniform scaling).
    bool Inverse(DUNXMath3x3Matrixf& out) const;
    /// The inverse, or the identity when the matrix is singular.
    DUNXMath3x3Matrixf Inverse() const;

private:
    friend DUNXMath3x3Matrixf operator+(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b);
    friend DUNXMath3x3Matrixf operator-(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b);
    friend DUNXMath3x3Matrixf operator*(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b);
    friend DUNXMath3x3Matrixf operator*(const DUNXMath3x3Matrixf& m, float s);
    friend DUNXMath3x3Matrixf operator/(const DUNXMath3x3Matrixf& m, float s);
    // Kind of a product of matrices of kinds a and b, and of kind times s.
    static int ProductKind(int a, int b);
    static int ScaledKind(int kind, float s);

    float m_Coef[9];
    int m_Kind;
};

// Declared after the class, whose friend declarations come first: a Windows DLL import
// (dllimport) is lost when a friend declaration repeats a function without it.

/// Element-wise sum; kind 0.
DUNX_EXPORT DUNXMath3x3Matrixf operator+(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b);
/// Element-wise difference; kind 0.
DUNX_EXPORT DUNXMath3x3Matrixf operator-(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b);
/// Matrix product a·b (b applied first). Isometries give an isometry, uniform
/// scalings a uniform scaling; other mixes kind 0.
DUNX_EXPORT DUNXMath3x3Matrixf operator*(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b);
/// Every element times `s`; a uniform scaling stays one (kind by sign).
DUNX_EXPORT DUNXMath3x3Matrixf operator*(const DUNXMath3x3Matrixf& m, float s);
/// Every element times `s`.
DUNX_EXPORT DUNXMath3x3Matrixf operator*(float s, const DUNXMath3x3Matrixf& m);
/// Every element divided by `s` (no zero check).
DUNX_EXPORT DUNXMath3x3Matrixf operator/(const DUNXMath3x3Matrixf& m, float s);

/// M·v.
DUNX_EXPORT DUNXVectorf operator*(const DUNXMath3x3Matrixf& m, const DUNXVectorf& v);
/// The outer product a·bᵀ (element (r, c) = a[r]·b[c]); kind 0.
DUNX_EXPORT DUNXMath3x3Matrixf operator%(const DUNXVectorf& a, const DUNXVectorf& b);

/// A homogeneous 4 × 4 float matrix, column-major (column c at 4·c .. 4·c + 3;
/// the translation is elements 12, 13, 14). The determinant of the upper-left
/// 3 × 3 block and the scaling derived from it are cached on first use, so the
/// const getters write to the object: do not share one between threads without a lock.
class DUNX_EXPORT DUNX4x4Matrix {
public:
    /// The identity.
    DUNX4x4Matrix();
    /// 16 floats, column-major.
    explicit DUNX4x4Matrix(const float* columnMajor);
    /// Columns `xAxis`, `yAxis`, `zAxis`, then the translation `origin`; bottom row (0, 0, 0, 1).
    DUNX4x4Matrix(const DUNXVectorf& xAxis, const DUNXVectorf& yAxis, const DUNXVectorf& zAxis,
                  const DUNXVectorf& origin);
    /// The frame at `origin` with axes `xAxis`, `yAxis` and `xAxis` ^ `yAxis`, each
    /// multiplied by `scale` (the axes are taken as given, not normalised).
    DUNX4x4Matrix(const DUNXVectorf& xAxis, const DUNXVectorf& yAxis, const DUNXPointf& origin,
                  float scale);
    /// The rotation by `angle` radians about the line through `point` along `axis`
    /// (see `SetRotation`).
    DUNX4x4Matrix(const DUNXVectorf& axis, const DUNXPointf& point, float angle);
    /// The rotation by `angle` radians about the line through the origin along `axis`.
    DUNX4x4Matrix(const DUNXVectorf& axis, float angle);
    /// Linear part from three rows, then `translation`.
    DUNX4x4Matrix(const float rows[3][3], const DUNXVectorf& translation);
    DUNX4x4Matrix(const DUNX4x4Matrix& other) = default;
    DUNX4x4Matrix& operator=(const DUNX4x4Matrix& other) = default;
    virtual ~DUNX4x4Matrix();

    /// Element (`row`, `column`).
    float GetElement(int row, int column) const { return m_Elements[4 * column + row]; }
    /// Sets element (`row`, `column`).
    void SetElement(int row, int column, float value);
    /// Writes the 16 elements column-major.
    void GetMatrix(float* columnMajor) const;
    /// Sets elements 12, 13, 14.
    void SetTranslation(const DUNXVectorf& translation);
    /// Elements 12, 13, 14.
    DUNXVectorf GetTranslation() const;
    /// Sets the three axis columns and the origin; bottom row (0, 0, 0, 1).
    void SetComponents(const DUNXVectorf& xAxis, const DUNXVectorf& yAxis, const DUNXVectorf& zAxis,
                       const DUNXPointf& origin);
    /// Reads the three axis columns and the origin.
    void GetComponents(DUNXVectorf& xAxis, DUNXVectorf& yAxis, DUNXVectorf& zAxis,
                       DUNXPointf& origin) const;
    /// The rotation by `angle` radians counter-clockwise about the line through
    /// `point` along `axis` (Rodrigues' formula for R, translation p − R·p; the
    /// axis is normalised, a zero axis counts as the x axis).
    void SetRotation(const DUNXVectorf& axis, const DUNXPointf& point, float angle);

    /// p ← M·p with the translation.
    void multiply(DUNXPointf& p) const {
        const float* m = m_Elements;
        const float x = p.x, y = p.y, z = p.z;
        p.x = m[0] * x + m[4] * y + m[8] * z + m[12];
        p.y = m[1] * x + m[5] * y + m[9] * z + m[13];
        p.z = m[2] * x + m[6] * y + m[10] * z + m[14];
    }
    /// v ← M·v without the translation.
    void multiply(DUNXVectorf& v) const {
        const float* m = m_Elements;
        const float x = v.x, y = v.y, z = v.z;
        v.x = m[0] * x + m[4] * y + m[8] * z;
        v.y = m[1] * x + m[5] * y + m[9] * z;
        v.z = m[2] * x + m[6] * y + m[10] * z;
    }
    /// d ← M·d without the translation, normalised again (a degenerate image
    /// becomes the x axis).
    void multiply(DUNXDirectionf& d) const;
    /// `multiply` on `count` points. The bulk path: no allocation, no virtual call.
    void multiply(DUNXPointf* points, int count) const {
        for (int i = 0; i < count; ++i)
            multiply(points[i]);
    }
    /// This matrix becomes a·b (b applied first). `a` or `b` may be this matrix.
    void multiply(const DUNX4x4Matrix& a, const DUNX4x4Matrix& b);
    /// This·other (other applied first).
    DUNX4x4Matrix operator*(const DUNX4x4Matrix& other) const;
    /// This matrix becomes this·other.
    DUNX4x4Matrix& operator*=(const DUNX4x4Matrix& other);
    /// All 16 elements equal.
    bool operator==(const DUNX4x4Matrix& other) const;
    /// All 16 elements exactly those of the identity (no tolerance).
    bool IsIdentity() const;

    /// Determinant of the upper-left 3 × 3 block, cached.
    float GetDeterminant() const;
    /// 1.0 when the determinant lies within 1e-6 of 1 or of −1, else |det|^(1/3). Cached.
    float GetScaling() const;
    /// Writes the inverse of the affine map (the bottom row is taken as
    /// (0, 0, 0, 1)) to `out`: A⁻¹ by adjugate over determinant, translation
    /// −A⁻¹·t. Returns false and leaves `out` as it was when |det| <= 1e-14.
    bool GetInvertedMatrix(DUNX4x4Matrix& out) const;
    /// Writes the third column of (A⁻¹)ᵀ, normalised, to `out[0..2]`: the
    /// transformed normal of the xy plane, (c0 ^ c1)·sign(det). A degenerate
    /// block gives the x axis.
    void ComputeInverseTransposeThirdColumnNormalized(float* out) const;

private:
    void Forget() { m_CachesKnown = false; }
    void ComputeCaches() const;

    float m_Elements[16];
    mutable float m_Determinant = 0.0f;
    mutable float m_Scaling = 1.0f;
    mutable bool m_CachesKnown = false;
};

/// The identity.
extern DUNX_EXPORT const DUNX4x4Matrix DUNX4x4MatrixI;

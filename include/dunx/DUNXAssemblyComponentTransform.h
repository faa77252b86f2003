// DUNXAssemblyComponentTransform: the placement of a component in an assembly, as
// exchanged with readers and writers.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>

/// A rotation part R (3 × 3, stored column-major: element (r, c) at 3·c + r), a
/// translation t and a separate scale that is carried along but never applied.
/// The determinant and the identity, mirror and validity flags are computed
/// lazily and cached, so even the const tests write to the object: do not share
/// one between threads without a lock.
///
/// Every operation returns a result: `DUNI_S_SUCCESS`, or
/// `DUNI_E_INVALID_ARGUMENT` for a null array, which changes nothing.
class DUNX_EXPORT DUNXAssemblyComponentTransform {
public:
    /// Identity rotation, zero translation, scale 1.0, nothing cached.
    DUNXAssemblyComponentTransform();
    DUNXAssemblyComponentTransform(const DUNXAssemblyComponentTransform& other) = default;
    DUNXAssemblyComponentTransform&
    operator=(const DUNXAssemblyComponentTransform& other) = default;
    virtual ~DUNXAssemblyComponentTransform();

    /// Sets all from 12 doubles: the rotation column by column, then the translation.
    DUNIResult Set(const double* values);
    /// Writes 12 doubles in the order `Set` reads them.
    DUNIResult Get(double* values) const;
    /// Sets the 9 rotation values in storage (column-major) order.
    DUNIResult SetRotation(const double* values);
    /// Writes the 9 rotation values in storage order.
    DUNIResult GetRotation(double* values) const;
    /// Sets the translation from 3 doubles.
    DUNIResult SetTranslation(const double* values);
    /// Writes the translation (3 doubles).
    DUNIResult GetTranslation(double* values) const;
    /// Sets the separate scale; the cached flags stay (the scale is not part of them).
    DUNIResult SetScale(double scale);
    /// Reads the separate scale.
    DUNIResult GetScale(double& scale) const;
    /// Sets all from 12 floats, three rows of four: row r = (R(r,0), R(r,1), R(r,2), t(r)).
    DUNIResult Set3x4ByRow(const float* values);
    /// Sets all from a 4 × 4 matrix of 16 floats, column-major; elements 3, 7, 11
    /// and 15 (the bottom row) are ignored.
    DUNIResult Set4x4ByColumn(const float* values);
    /// Writes the 4 × 4 matrix row-major (16 floats); the last row is (0, 0, 0, 1).
    DUNIResult Get4x4ByRow(float* values) const;
    /// Writes the 4 × 4 matrix column-major (16 floats); the bottom row is (0, 0, 0, 1).
    DUNIResult Get4x4ByColumn(float* values) const;
    /// The determinant of the rotation part, computed once and cached.
    DUNIResult GetDeterminant(double& determinant) const;

    /// p ← R·p + t in place, computed in double precision. The identity leaves p
    /// untouched; the scale is never applied.
    DUNIResult ApplyTransform(float* xyz) const;
    /// p ← R·p in place, as `ApplyTransform` without the translation.
    DUNIResult ApplyRotation(float* xyz) const;
    /// `ApplyTransform` on `count` packed points (x, y, z, ...). The bulk path:
    /// no allocation, no virtual call. A negative count is taken as 0.
    DUNIResult ApplyTransform(float* xyz, int count) const;
    /// `ApplyRotation` on `count` packed points.
    DUNIResult ApplyRotation(float* xyz, int count) const;

    /// Every rotation element within 1e-6 (strictly) of the identity and every
    /// translation value below 1e-6 in magnitude. The scale is not looked at.
    bool IsIdentityTransform() const;
    /// The determinant is negative.
    bool IsMirrorTransform() const;
    /// The determinant is not exactly 0.
    bool IsValid() const;

    /// Rotation element (`row`, `column`).
    double GetRotationElement(int row, int column) const { return m_Rotation[3 * column + row]; }
    /// Translation value `i`.
    double GetTranslationElement(int i) const { return m_Translation[i]; }

    /// The composition that applies `other` first and this second: the product of
    /// the 4 × 4 homogeneous forms. Its scale is 1.0 whatever the operands'
    /// scales (the scales are not composed), and nothing is cached.
    DUNXAssemblyComponentTransform operator*(const DUNXAssemblyComponentTransform& other) const;

private:
    void Forget();
    void SetFlags() const;
    void EnsureFlags() const {
        if (!m_FlagsKnown)
            SetFlags();
    }

    double m_Rotation[9];
    double m_Translation[3];
    mutable double m_Determinant;
    double m_Scale;
    mutable bool m_DeterminantKnown;
    mutable bool m_FlagsKnown;
    mutable bool m_Valid;
    mutable bool m_Identity;
    mutable bool m_Mirror;
};

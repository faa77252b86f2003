// DUNXMorph, DUNXMorph2D, DUNXMorph3D: an affine part, one uniform scale and a
// translation, p => scale · A · p + t.
#pragma once

#include <dunx/DUNXAffine.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXPoint.h>

class DUNXStreamFormatter;

/// A similarity-like transform p => scale · A · p + t (affine part first, then the
/// scale, then the translation). Three flags say which parts are not the identity;
/// they are fixed after every change, so the tests below are cheap.
class DUNX_EXPORT DUNXMorph {
public:
    /// Sets the scale factor and fixes the flags.
    virtual void setScale(double scale) = 0;
    /// Writes the inverse into `result` (a morph of the same class; otherwise
    /// nothing is written). The affine part is taken to be orthonormal and is
    /// inverted by transposition: a general linear part is not inverted.
    virtual void Inverse(DUNXMorph& result) const = 0;
    /// Writes the morph that applies this one first and `other` second into
    /// `result` (both of this class; otherwise nothing is written). `result` may
    /// be this or `other`.
    virtual void Multiply(const DUNXMorph& other, DUNXMorph& result) const = 0;
    /// True when the scales and the affine elements agree within
    /// `Gk_Def::FuzzReal` and the translations within `Gk_Def::FuzzPos`; false
    /// for a morph of another class.
    virtual bool isEqual(const DUNXMorph& other) const = 0;
    /// The translation.
    virtual const DUNXPoint& GetTranslation() const = 0;
    /// The affine part.
    virtual const DUNXAffine& GetAffine() const = 0;

    /// Scale, affine part and translation all the identity.
    bool isIdentity() const { return m_IdentityScale && m_IdentityAffine && m_NoTranslation; }
    /// The scale factor is not exactly 1.0.
    bool isScale() const { return !m_IdentityScale; }
    /// The affine part fails the (lenient) `DUNXAffine::IsIdentity` test.
    bool isAffine() const { return !m_IdentityAffine; }
    /// The translation is longer than `Gk_Def::FuzzPos` (1e-6): shorter ones count as none.
    bool isTranslation() const { return !m_NoTranslation; }
    /// The affine part's determinant is negative.
    bool isMirror() const;
    /// The uniform scale factor.
    double scaleFactor() const { return m_Scale; }

protected:
    DUNXMorph();
    DUNXMorph(const DUNXMorph& other) = default;
    DUNXMorph& operator=(const DUNXMorph& other) = default;
    ~DUNXMorph() = default;

    /// Recomputes the three flags from the parts.
    void FixFlags(const DUNXAffine& affine, const DUNXPoint& translation);

    double m_Scale;
    bool m_IdentityScale;
    bool m_IdentityAffine;
    bool m_NoTranslation;
};

/// A morph of the plane. Final: the morphs are values without a virtual
/// destructor, so nothing may be deleted through a base.
class DUNX_EXPORT DUNXMorph2D final : public DUNXMorph {
public:
    /// The identity.
    DUNXMorph2D();
    /// A pure translation.
    explicit DUNXMorph2D(const DUNXPoint2D& translation);
    /// Scale, then translation.
    DUNXMorph2D(const DUNXPoint2D& translation, double scale);
    /// Affine part, then scale, then translation.
    DUNXMorph2D(const DUNXAffine2D& affine, const DUNXPoint2D& translation, double scale);
    DUNXMorph2D(const DUNXMorph2D& other) = default;
    DUNXMorph2D& operator=(const DUNXMorph2D& other) = default;

    void setScale(double scale) override;
    void Inverse(DUNXMorph& result) const override;
    void Multiply(const DUNXMorph& other, DUNXMorph& result) const override;
    bool isEqual(const DUNXMorph& other) const override;
    const DUNXPoint& GetTranslation() const override { return m_Translation; }
    const DUNXAffine& GetAffine() const override { return m_Affine; }

    /// The affine part.
    const DUNXAffine2D& affine() const { return m_Affine; }
    /// The translation.
    const DUNXPoint2D& translation() const { return m_Translation; }
    /// Replaces the affine part and fixes the flags.
    void SetAffine(const DUNXAffine2D& affine);
    /// Replaces the translation and fixes the flags.
    void SetTranslation(const DUNXPoint2D& translation);
    /// The inverse (see `Inverse`).
    DUNXMorph2D inverse() const;
    /// This morph first, then `other`.
    DUNXMorph2D multiply(const DUNXMorph2D& other) const;
    /// Back to the identity.
    void SetToIdentity();

private:
    void fixMorphFlags() { FixFlags(m_Affine, m_Translation); }

    DUNXAffine2D m_Affine;
    DUNXPoint2D m_Translation;
};

/// A morph of space.
class DUNX_EXPORT DUNXMorph3D final : public DUNXMorph {
public:
    /// The identity.
    DUNXMorph3D();
    /// A pure translation.
    explicit DUNXMorph3D(const DUNXPoint3D& translation);
    /// Scale, then translation.
    DUNXMorph3D(const DUNXPoint3D& translation, double scale);
    /// Affine part, then scale, then translation.
    DUNXMorph3D(const DUNXAffine3D& affine, const DUNXPoint3D& translation, double scale);
    DUNXMorph3D(const DUNXMorph3D& other) = default;
    DUNXMorph3D& operator=(const DUNXMorph3D& other) = default;

    void setScale(double scale) override;
    void Inverse(DUNXMorph& result) const override;
    void Multiply(const DUNXMorph& other, DUNXMorph& result) const override;
    bool isEqual(const DUNXMorph& other) const override;
    const DUNXPoint& GetTranslation() const override { return m_Translation; }
    const DUNXAffine& GetAffine() const override { return m_Affine; }

    /// The affine part.
    const DUNXAffine3D& affine() const { return m_Affine; }
    /// The translation.
    const DUNXPoint3D& translation() const { return m_Translation; }
    /// Replaces the affine part and fixes the flags.
    void SetAffine(const DUNXAffine3D& affine);
    /// Replaces the translation and fixes the flags.
    void SetTranslation(const DUNXPoint3D& translation);
    /// The inverse (see `Inverse`).
    DUNXMorph3D inverse() const;
    /// This morph first, then `other`.
    DUNXMorph3D multiply(const DUNXMorph3D& other) const;
    /// Back to the identity.
    void SetToIdentity();
    /// Moves a scale other than 1 into the translation (t becomes t · scale) and
    /// sets the scale to 1; the affine part is left as it is.
    void FixScaleFactor();

    /// Applies the morph to `count` packed points (x, y, z, ...) in place, exactly
    /// as `DUNXPoint3D::Transform` does one point. The bulk path: no allocation,
    /// no virtual call.
    void Apply(double* xyz, int count, bool noTranslation = false) const;

private:
    void fixMorphFlags() { FixFlags(m_Affine, m_Translation); }

    DUNXAffine3D m_Affine;
    DUNXPoint3D m_Translation;
};

/// Prints "Affine:" and a line end, the rows of the affine part (margin, each
/// element followed by a blank, line end), then "Translation: " with the
/// translation's dump and a line end, then "Scale: " with the scale and a line end.
DUNX_EXPORT DUNXStreamFormatter& operator<<(DUNXStreamFormatter& out, const DUNXMorph& morph);

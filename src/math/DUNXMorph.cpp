#include <dunx/DUNXMorph.h>

#include <dunx/DUNXStreamFormatter.h>
#include <dunx/Gk_Def.h>

#include "MorphEach.h"

#include <cmath>
#include <cstddef>

namespace {

bool sameAffine(const DUNXAffine& a, const DUNXAffine& b) {
    if (a.GetDimension() != b.GetDimension())
        return false;
    for (int i = 0; i < a.GetDimension(); ++i)
        for (int j = 0; j < a.GetDimension(); ++j)
            if (!Gk_Func::equal(a.GetElement(i, j), b.GetElement(i, j), Gk_Def::FuzzReal))
                return false;
    return true;
}

bool sameMorph(const DUNXMorph& a, const DUNXMorph& b) {
    return Gk_Func::equal(a.scaleFactor(), b.scaleFactor(), Gk_Def::FuzzReal) &&
           sameAffine(a.GetAffine(), b.GetAffine()) &&
           a.GetTranslation().IsWithinTolerance(b.GetTranslation(), Gk_Def::FuzzPos);
}

} // namespace

// --- DUNXMorph ---------------------------------------------------------------------

DUNXMorph::DUNXMorph()
    : m_Scale(1.0), m_IdentityScale(true), m_IdentityAffine(true), m_NoTranslation(true) {}

bool DUNXMorph::isMirror() const {
    return GetAffine().Determinant() < 0.0;
}

void DUNXMorph::FixFlags(const DUNXAffine& affine, const DUNXPoint& translation) {
    m_IdentityScale = m_Scale == 1.0;
    m_IdentityAffine = affine.IsIdentity() != 0;
    m_NoTranslation = Gk_Func::equal(translation.Length(), 0.0, Gk_Def::FuzzPos);
}

DUNXStreamFormatter& operator<<(DUNXStreamFormatter& out, const DUNXMorph& morph) {
    out << "Affine:" << DUNXLineEnd();
    morph.GetAffine().Dump(out);
    out << "Translation: " << morph.GetTranslation() << DUNXLineEnd();
    out << "Scale: " << morph.scaleFactor() << DUNXLineEnd();
    return out;
}

// --- DUNXMorph2D -------------------------------------------------------------------

DUNXMorph2D::DUNXMorph2D() {
    m_Affine.MakeIdentity();
}

DUNXMorph2D::DUNXMorph2D(const DUNXPoint2D& translation) : m_Translation(translation) {
    m_Affine.MakeIdentity();
    fixMorphFlags();
}

DUNXMorph2D::DUNXMorph2D(const DUNXPoint2D& translation, double scale)
    : m_Translation(translation) {
    m_Scale = scale;
    m_Affine.MakeIdentity();
    fixMorphFlags();
}

DUNXMorph2D::DUNXMorph2D(const DUNXAffine2D& affine, const DUNXPoint2D& translation, double scale)
    : m_Affine(affine), m_Translation(translation) {
    m_Scale = scale;
    fixMorphFlags();
}

void DUNXMorph2D::setScale(double scale) {
    m_Scale = scale;
    fixMorphFlags();
}

void DUNXMorph2D::Inverse(DUNXMorph& result) const {
    auto* target = dynamic_cast<DUNXMorph2D*>(&result);
    if (!target)
        return;
    DUNXMorph2D inverse;
    m_Affine.GetTranspose(inverse.m_Affine);
    inverse.m_Translation = m_Translation / -m_Scale;
    inverse.m_Scale = 1.0 / m_Scale;
    inverse.m_Translation.Transform(inverse.m_Affine);
    inverse.fixMorphFlags();
    *target = inverse;
}

void DUNXMorph2D::Multiply(const DUNXMorph& other, DUNXMorph& result) const {
    const auto* second = dynamic_cast<const DUNXMorph2D*>(&other);
    auto* target = dynamic_cast<DUNXMorph2D*>(&result);
    if (!second || !target)
        return;
    DUNXMorph2D product;
    second->m_Affine.Multiply(m_Affine, product.m_Affine);
    product.m_Scale = second->m_Scale * m_Scale;
    product.m_Translation = m_Translation;
    product.m_Translation.Transform(*second, false);
    product.fixMorphFlags();
    *target = product;
}

bool DUNXMorph2D::isEqual(const DUNXMorph& other) const {
    return dynamic_cast<const DUNXMorph2D*>(&other) != nullptr && sameMorph(*this, other);
}

void DUNXMorph2D::SetAffine(const DUNXAffine2D& affine) {
    m_Affine = affine;
    fixMorphFlags();
}

void DUNXMorph2D::SetTranslation(const DUNXPoint2D& translation) {
    m_Translation = translation;
    fixMorphFlags();
}

DUNXMorph2D DUNXMorph2D::inverse() const {
    DUNXMorph2D result;
    Inverse(result);
    return result;
}

DUNXMorph2D DUNXMorph2D::multiply(const DUNXMorph2D& other) const {
    DUNXMorph2D result;
    Multiply(other, result);
    return result;
}

void DUNXMorph2D::SetToIdentity() {
    *this = DUNXMorph2D();
}

// --- DUNXMorph3D -------------------------------------------------------------------

DUNXMorph3D::DUNXMorph3D() {
    m_Affine.MakeIdentity();
}

DUNXMorph3D::DUNXMorph3D(const DUNXPoint3D& translation) : m_Translation(translation) {
    m_Affine.MakeIdentity();
    fixMorphFlags();
}

DUNXMorph3D::DUNXMorph3D(const DUNXPoint3D& translation, double scale)
    : m_Translation(translation) {
    m_Scale = scale;
    m_Affine.MakeIdentity();
    fixMorphFlags();
}

DUNXMorph3D::DUNXMorph3D(const DUNXAffine3D& affine, const DUNXPoint3D& translation, double scale)
    : m_Affine(affine), m_Translation(translation) {
    m_Scale = scale;
    fixMorphFlags();
}

void DUNXMorph3D::setScale(double scale) {
    m_Scale = scale;
    fixMorphFlags();
}

void DUNXMorph3D::Inverse(DUNXMorph& result) const {
    auto* target = dynamic_cast<DUNXMorph3D*>(&result);
    if (!target)
        return;
    DUNXMorph3D inverse;
    m_Affine.GetTranspose(inverse.m_Affine);
    inverse.m_Translation = m_Translation / -m_Scale;
    inverse.m_Scale = 1.0 / m_Scale;
    inverse.m_Translation.Transform(inverse.m_Affine);
    inverse.fixMorphFlags();
    *target = inverse;
}

void DUNXMorph3D::Multiply(const DUNXMorph& other, DUNXMorph& result) const {
    const auto* second = dynamic_cast<const DUNXMorph3D*>(&other);
    auto* target = dynamic_cast<DUNXMorph3D*>(&result);
    if (!second || !target)
        return;
    DUNXMorph3D product;
    second->m_Affine.Multiply(m_Affine, product.m_Affine);
    product.m_Scale = second->m_Scale * m_Scale;
    product.m_Translation = m_Translation;
    product.m_Translation.Transform(*second, false);
    product.fixMorphFlags();
    *target = product;
}

bool DUNXMorph3D::isEqual(const DUNXMorph& other) const {
    return dynamic_cast<const DUNXMorph3D*>(&other) != nullptr && sameMorph(*this, other);
}

void DUNXMorph3D::SetAffine(const DUNXAffine3D& affine) {
    m_Affine = affine;
    fixMorphFlags();
}

void DUNXMorph3D::SetTranslation(const DUNXPoint3D& translation) {
    m_Translation = translation;
    fixMorphFlags();
}

DUNXMorph3D DUNXMorph3D::inverse() const {
    DUNXMorph3D result;
    Inverse(result);
    return result;
}

DUNXMorph3D DUNXMorph3D::multiply(const DUNXMorph3D& other) const {
    DUNXMorph3D result;
    Multiply(other, result);
    return result;
}

void DUNXMorph3D::SetToIdentity() {
    *this = DUNXMorph3D();
}

void DUNXMorph3D::FixScaleFactor() {
    if (m_IdentityScale)
        return;
    m_Translation *= m_Scale;
    m_Scale = 1.0;
    m_IdentityScale = true;
}

void DUNXMorph3D::Apply(double* xyz, int count, bool noTranslation) const {
    const double translation[3] = {m_Translation[0], m_Translation[1], m_Translation[2]};
    dunx::internal::MorphEach(count, *this, translation, noTranslation,
                              [xyz](int i) { return xyz + 3 * static_cast<std::ptrdiff_t>(i); });
}

#include <dunx/DUNXPoint.h>

#include <dunx/DUNXAffine.h>
#include <dunx/DUNXMorph.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/DUNXTrace.h>
#include <dunx/DUNXWeightPoint.h>
#include <dunx/Gk_Def.h>
#include <dunx/Gk_ErrMgr.h>

#include "MorphEach.h"

#include <cmath>
#include <utility>

namespace {

// Weight points compare their weight as one more coordinate, reached through
// operator[] at index "dimension".
int comparedCount(const DUNXPoint& p) {
    const bool weighted = dynamic_cast<const DUNXWeightPoint2D*>(&p) != nullptr ||
                          dynamic_cast<const DUNXWeightPoint3D*>(&p) != nullptr;
    return p.GetDimension() + (weighted ? 1 : 0);
}

} // namespace

// --- DUNXPoint -------------------------------------------------------------------

DUNXPoint::DUNXPoint(int dimension) : m_Coords{0.0, 0.0, 0.0}, m_Dimension(dimension) {}

DUNXPoint::DUNXPoint(const DUNXPoint& other)
    : DUNXReferenceCount(other), m_Coords{0.0, 0.0, 0.0}, m_Dimension(other.m_Dimension) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] = other.m_Coords[i];
}

DUNXPoint& DUNXPoint::operator=(const DUNXPoint& other) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] = other.m_Coords[i];
    return *this;
}

DUNXPoint::~DUNXPoint() = default;

double DUNXPoint::operator[](int i) const {
    return m_Coords[ClampIndex(i)];
}

double& DUNXPoint::operator[](int i) {
    return m_Coords[ClampIndex(i)];
}

double DUNXPoint::Length() const {
    double sum = 0.0;
    for (int i = 0; i < m_Dimension; ++i)
        sum += m_Coords[i] * m_Coords[i];
    return std::sqrt(sum);
}

void DUNXPoint::Negate() {
    Multiply(-1.0);
}

void DUNXPoint::Multiply(double s) {
    for (int i = 0; i < m_Dimension; ++i)
        m_Coords[i] *= s;
}

void DUNXPoint::Divide(double s) {
    if (s == 0.0)
        return;
    for (int i = 0; i < m_Dimension; ++i)
        m_Coords[i] /= s;
}

void DUNXPoint::Substract(const DUNXPoint& p) {
    CheckOther(p);
    for (int i = 0; i < m_Dimension; ++i)
        m_Coords[i] -= p[i];
}

void DUNXPoint::Add(const DUNXPoint& p) {
    CheckOther(p);
    for (int i = 0; i < m_Dimension; ++i)
        m_Coords[i] += p[i];
}

void DUNXPoint::CopyIn(DUNXPoint& target) const {
    CheckOther(target);
    for (int i = 0; i < m_Dimension; ++i)
        target[i] = m_Coords[i];
}

void DUNXPoint::Dump(DUNXStreamFormatter& out) const {
    for (int i = 0; i < m_Dimension; ++i)
        out << m_Coords[i] << ' ';
}

double DUNXPoint::DistanceTo(const DUNXPoint& other) const {
    CheckOther(other);
    double sum = 0.0;
    for (int i = 0; i < m_Dimension; ++i) {
        const double d = m_Coords[i] - other[i];
        sum += d * d;
    }
    return std::sqrt(sum);
}

bool DUNXPoint::IsWithinTolerance(const DUNXPoint& other, double tolerance) const {
    CheckOther(other);
    const double tol = std::fabs(tolerance);
    const int count = comparedCount(*this);
    for (int i = 0; i < count; ++i) {
        if (!(std::fabs((*this)[i] - other[i]) <= tol))
            return false;
    }
    return true;
}

bool DUNXPoint::IsWithinTolerance(const DUNXPoint& other, const DUNXPoint& tolerances) const {
    CheckOther(other);
    const int count = comparedCount(*this);
    for (int i = 0; i < count; ++i) {
        if (!(std::fabs((*this)[i] - other[i]) <= std::fabs(tolerances[i])))
            return false;
    }
    return true;
}

void DUNXPoint::CheckOther([[maybe_unused]] const DUNXPoint& other) const {
    Gk_ErrMgr::checkAbort();
#ifndef NDEBUG
    if (other.m_Dimension != m_Dimension)
        DUNXAssert::Printf("DUNXBase/DUNXMath.m/src/DUNXPoint: dimension %d met dimension %d",
                           m_Dimension, other.m_Dimension);
#endif
}

DUNXStreamFormatter& operator<<(DUNXStreamFormatter& out, const DUNXPoint& p) {
    p.Dump(out);
    return out;
}

// --- DUNXPoint2D -----------------------------------------------------------------

DUNXPoint2D::DUNXPoint2D() : DUNXPoint(2) {}

DUNXPoint2D::DUNXPoint2D(double x, double y) : DUNXPoint(2) {
    m_Coords[0] = x;
    m_Coords[1] = y;
}

DUNXPoint2D::DUNXPoint2D(const DUNXPoint2D& other) = default;

DUNXPoint2D& DUNXPoint2D::operator=(const DUNXPoint2D& other) {
    DUNXPoint::operator=(other);
    return *this;
}

DUNXPoint2D::~DUNXPoint2D() = default;

void DUNXPoint2D::Transform(const DUNXMorph2D& morph, bool noTranslation) {
    if (morph.isIdentity())
        return;
    if (morph.isAffine())
        Transform(morph.affine());
    const bool scale = morph.isScale();
    const bool translate = !noTranslation && morph.isTranslation();
    const double s = morph.scaleFactor();
    const DUNXPoint2D& t = morph.translation();
    for (int i = 0; i < 2; ++i) {
        if (scale)
            m_Coords[i] *= s;
        if (translate)
            m_Coords[i] += t[i];
    }
}

void DUNXPoint2D::Transform(const DUNXAffine2D& affine) {
    const double x = m_Coords[0], y = m_Coords[1];
    m_Coords[0] = affine.GetElement(0, 0) * x + affine.GetElement(0, 1) * y;
    m_Coords[1] = affine.GetElement(1, 0) * x + affine.GetElement(1, 1) * y;
}

DUNXPoint2D DUNXPoint2D::Copy() const {
    return *this;
}

DUNXPoint2D DUNXPoint2D::operator-() const {
    DUNXPoint2D result(*this);
    result.Negate();
    return result;
}

DUNXPoint2D& DUNXPoint2D::operator+=(const DUNXPoint2D& p) {
    Add(p);
    return *this;
}

DUNXPoint2D& DUNXPoint2D::operator-=(const DUNXPoint2D& p) {
    Substract(p);
    return *this;
}

DUNXPoint2D& DUNXPoint2D::operator*=(double s) {
    Multiply(s);
    return *this;
}

DUNXPoint2D& DUNXPoint2D::operator/=(double s) {
    Divide(s);
    return *this;
}

void DUNXPoint2D::Shift(const DUNXPoint2D& p) {
    Add(p);
}

DUNXPoint2D DUNXPoint2D::Normalize() const {
    DUNXPoint2D result(*this);
    const double length = Length();
    if (length != 0.0) {
        result.m_Coords[0] /= length;
        result.m_Coords[1] /= length;
    }
    return result;
}

DUNXPoint2D DUNXPoint2D::Orthogonalize() const {
    // Order the two coordinates by signed value, then rotate by a quarter turn
    // in that order and put the values back by index.
    double value[2] = {m_Coords[0], m_Coords[1]};
    int index[2] = {0, 1};
    if (value[0] < value[1]) {
        std::swap(value[0], value[1]);
        std::swap(index[0], index[1]);
    }
    double t[2] = {value[1], -value[0]};
    double length = std::sqrt(t[0] * t[0] + t[1] * t[1]);
    if (Gk_Func::equal(length, 0.0, Gk_Def::FuzzReal)) {
        t[0] = 1.0;
        length = 1.0;
    }
    DUNXPoint2D result;
    for (int k = 0; k < 2; ++k)
        result.m_Coords[index[k]] = t[k] / length;
    return result;
}

DUNXPoint2D operator+(const DUNXPoint2D& a, const DUNXPoint2D& b) {
    return DUNXPoint2D(a[0] + b[0], a[1] + b[1]);
}

DUNXPoint2D operator-(const DUNXPoint2D& a, const DUNXPoint2D& b) {
    return DUNXPoint2D(a[0] - b[0], a[1] - b[1]);
}

DUNXPoint2D operator*(const DUNXPoint2D& p, double s) {
    return DUNXPoint2D(p[0] * s, p[1] * s);
}

DUNXPoint2D operator*(double s, const DUNXPoint2D& p) {
    return p * s;
}

DUNXPoint2D operator/(const DUNXPoint2D& p, double s) {
    DUNXPoint2D result(p);
    result.Divide(s);
    return result;
}

double operator*(const DUNXPoint2D& a, const DUNXPoint2D& b) {
    return a[0] * b[0] + a[1] * b[1];
}

// --- DUNXPoint3D -----------------------------------------------------------------

DUNXPoint3D::DUNXPoint3D() : DUNXPoint(3) {}

DUNXPoint3D::DUNXPoint3D(double x, double y, double z) : DUNXPoint(3) {
    m_Coords[0] = x;
    m_Coords[1] = y;
    m_Coords[2] = z;
}

DUNXPoint3D::DUNXPoint3D(const double* xyz) : DUNXPoint(3) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] = xyz[i];
}

DUNXPoint3D::DUNXPoint3D(const DUNXPoint3D& other) = default;

DUNXPoint3D& DUNXPoint3D::operator=(const DUNXPoint3D& other) {
    DUNXPoint::operator=(other);
    return *this;
}

DUNXPoint3D::~DUNXPoint3D() = default;

void DUNXPoint3D::Transform(const DUNXMorph3D& morph, bool noTranslation) {
    if (morph.isIdentity())
        return;
    if (morph.isAffine())
        Transform(morph.affine());
    const bool scale = morph.isScale();
    const bool translate = !noTranslation && morph.isTranslation();
    const double s = morph.scaleFactor();
    const DUNXPoint3D& t = morph.translation();
    for (int i = 0; i < 3; ++i) {
        if (scale)
            m_Coords[i] *= s;
        if (translate)
            m_Coords[i] += t[i];
    }
}

void DUNXPoint3D::TransformArray(DUNXPoint3D* points, int count, const DUNXMorph3D& morph,
                                 bool noTranslation) {
    dunx::internal::MorphEach(count, morph, morph.translation().m_Coords, noTranslation,
                              [points](int i) { return points[i].m_Coords; });
}

void DUNXPoint3D::Transform(const DUNXAffine3D& affine) {
    affine.Apply(m_Coords, 1);
}

DUNXPoint3D DUNXPoint3D::Copy() const {
    return *this;
}

DUNXPoint3D DUNXPoint3D::operator-() const {
    DUNXPoint3D result(*this);
    result.Negate();
    return result;
}

DUNXPoint3D& DUNXPoint3D::operator+=(const DUNXPoint3D& p) {
    Add(p);
    return *this;
}

DUNXPoint3D& DUNXPoint3D::operator-=(const DUNXPoint3D& p) {
    Substract(p);
    return *this;
}

DUNXPoint3D& DUNXPoint3D::operator*=(double s) {
    Multiply(s);
    return *this;
}

DUNXPoint3D& DUNXPoint3D::operator/=(double s) {
    Divide(s);
    return *this;
}

void DUNXPoint3D::Shift(const DUNXPoint3D& p) {
    Add(p);
}

DUNXPoint3D DUNXPoint3D::Normalize() const {
    DUNXPoint3D result(*this);
    const double length = Length();
    if (length != 0.0) {
        for (int i = 0; i < 3; ++i)
            result.m_Coords[i] /= length;
    }
    return result;
}

DUNXPoint3D DUNXPoint3D::Orthogonalize() const {
    // Two swaps on signed values, not a full sort: the largest value need not
    // end first. Kept as is: stored directions were built with this choice of
    // perpendicular, and a full sort would pick another one.
    double value[3] = {m_Coords[0], m_Coords[1], m_Coords[2]};
    int index[3] = {0, 1, 2};
    if (value[1] < value[2]) {
        std::swap(value[1], value[2]);
        std::swap(index[1], index[2]);
    }
    if (value[0] < value[1]) {
        std::swap(value[0], value[1]);
        std::swap(index[0], index[1]);
    }
    const double b = value[1];
    const double c = value[2];
    double t[3] = {0.0, c, -b};
    double length = std::sqrt(t[0] * t[0] + t[1] * t[1] + t[2] * t[2]);
    if (Gk_Func::equal(length, 0.0, Gk_Def::FuzzReal)) {
        t[1] = 1.0;
        length = 1.0;
    }
    DUNXPoint3D result;
    for (int k = 0; k < 3; ++k)
        result.m_Coords[index[k]] = t[k] / length;
    return result;
}

DUNXPoint3D DUNXPoint3D::VectorProduct(const DUNXPoint3D& a, const DUNXPoint3D& b) {
    return DUNXPoint3D(a.m_Coords[1] * b.m_Coords[2] - a.m_Coords[2] * b.m_Coords[1],
                       a.m_Coords[2] * b.m_Coords[0] - a.m_Coords[0] * b.m_Coords[2],
                       a.m_Coords[0] * b.m_Coords[1] - a.m_Coords[1] * b.m_Coords[0]);
}

DUNXPoint3D operator+(const DUNXPoint3D& a, const DUNXPoint3D& b) {
    return DUNXPoint3D(a[0] + b[0], a[1] + b[1], a[2] + b[2]);
}

DUNXPoint3D operator-(const DUNXPoint3D& a, const DUNXPoint3D& b) {
    return DUNXPoint3D(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

DUNXPoint3D operator*(const DUNXPoint3D& p, double s) {
    return DUNXPoint3D(p[0] * s, p[1] * s, p[2] * s);
}

DUNXPoint3D operator*(double s, const DUNXPoint3D& p) {
    return p * s;
}

DUNXPoint3D operator/(const DUNXPoint3D& p, double s) {
    DUNXPoint3D result(p);
    result.Divide(s);
    return result;
}

double operator*(const DUNXPoint3D& a, const DUNXPoint3D& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void DUNXGetDoublesFromDUNXPoint3D(const DUNXPoint3D& p, double* out) {
    for (int i = 0; i < 3; ++i)
        out[i] = p[i];
}

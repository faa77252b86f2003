#include <dunx/DUNXWeightPoint.h>

#include <dunx/DUNXAffine.h>
#include <dunx/DUNXMorph.h>
#include <dunx/DUNXStreamFormatter.h>

#include <cmath>

namespace {

// The Cartesian coordinate of a stored one. Weights of exactly 1 and 0 give the
// stored value undivided: 1 needs no division, and 0 marks a point at infinity
// whose direction callers read from the stored coordinates.
double cartesian(double stored, double weight) {
    return (weight == 1.0 || weight == 0.0) ? stored : stored / weight;
}

// Stores p·w unless asked not to or w is 1.0 (a NaN weight is "not 1").
double weighted(double value, double weight, bool multiplyByWeight) {
    return (multiplyByWeight && !(weight == 1.0)) ? value * weight : value;
}

} // namespace

// --- DUNXWeightPoint2D ---------------------------------------------------------------

DUNXWeightPoint2D::DUNXWeightPoint2D() : DUNXPoint(2), m_Weight(0.0) {}

DUNXWeightPoint2D::DUNXWeightPoint2D(double v) : DUNXPoint(2), m_Weight(v) {
    m_Coords[0] = v;
    m_Coords[1] = v;
}

DUNXWeightPoint2D::DUNXWeightPoint2D(const DUNXPoint2D& p, double w, bool multiplyByWeight)
    : DUNXPoint(2), m_Weight(w) {
    for (int i = 0; i < 2; ++i)
        m_Coords[i] = weighted(p[i], w, multiplyByWeight);
}

DUNXWeightPoint2D::DUNXWeightPoint2D(const DUNXWeightPoint2D& other) = default;

DUNXWeightPoint2D& DUNXWeightPoint2D::operator=(const DUNXWeightPoint2D& other) {
    DUNXPoint::operator=(other);
    m_Weight = other.m_Weight;
    return *this;
}

DUNXWeightPoint2D::~DUNXWeightPoint2D() = default;

double DUNXWeightPoint2D::operator[](int i) const {
    return i < 0 ? m_Coords[0] : (i >= 2 ? m_Weight : m_Coords[i]);
}

double& DUNXWeightPoint2D::operator[](int i) {
    return i < 0 ? m_Coords[0] : (i >= 2 ? m_Weight : m_Coords[i]);
}

double DUNXWeightPoint2D::Length() const {
    return std::sqrt(m_Coords[0] * m_Coords[0] + m_Coords[1] * m_Coords[1] + m_Weight * m_Weight);
}

void DUNXWeightPoint2D::Multiply(double s) {
    DUNXPoint::Multiply(s);
    m_Weight *= s;
}

void DUNXWeightPoint2D::Divide(double s) {
    if (s == 0.0)
        return;
    DUNXPoint::Divide(s);
    m_Weight /= s;
}

void DUNXWeightPoint2D::Substract(const DUNXPoint& p) {
    DUNXPoint::Substract(p);
    m_Weight -= p[2];
}

void DUNXWeightPoint2D::Add(const DUNXPoint& p) {
    DUNXPoint::Add(p);
    m_Weight += p[2];
}

void DUNXWeightPoint2D::CopyIn(DUNXPoint& target) const {
    DUNXPoint::CopyIn(target);
    if (auto* weightPoint = dynamic_cast<DUNXWeightPoint2D*>(&target))
        weightPoint->m_Weight = m_Weight;
}

void DUNXWeightPoint2D::Transform(const DUNXMorph2D& morph, bool noTranslation) {
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
            m_Coords[i] += t[i] * m_Weight;
    }
}

void DUNXWeightPoint2D::Transform(const DUNXAffine2D& affine) {
    const double x = m_Coords[0], y = m_Coords[1];
    m_Coords[0] = affine.GetElement(0, 0) * x + affine.GetElement(0, 1) * y;
    m_Coords[1] = affine.GetElement(1, 0) * x + affine.GetElement(1, 1) * y;
}

DUNXPoint2D DUNXWeightPoint2D::GetWeightedCoords() const {
    return DUNXPoint2D(m_Coords[0], m_Coords[1]);
}

void DUNXWeightPoint2D::SetWeightedCoords(const DUNXPoint2D& p) {
    m_Coords[0] = p[0];
    m_Coords[1] = p[1];
}

DUNXPoint2D DUNXWeightPoint2D::GetCoords() const {
    return DUNXPoint2D(cartesian(m_Coords[0], m_Weight), cartesian(m_Coords[1], m_Weight));
}

DUNXWeightPoint2D DUNXWeightPoint2D::Copy() const {
    return *this;
}

DUNXWeightPoint2D DUNXWeightPoint2D::operator-() const {
    DUNXWeightPoint2D result(*this);
    result.Negate();
    return result;
}

DUNXWeightPoint2D& DUNXWeightPoint2D::operator+=(const DUNXWeightPoint2D& p) {
    Add(p);
    return *this;
}

DUNXWeightPoint2D& DUNXWeightPoint2D::operator-=(const DUNXWeightPoint2D& p) {
    Substract(p);
    return *this;
}

DUNXWeightPoint2D& DUNXWeightPoint2D::operator*=(double s) {
    Multiply(s);
    return *this;
}

DUNXWeightPoint2D& DUNXWeightPoint2D::operator/=(double s) {
    Divide(s);
    return *this;
}

void DUNXWeightPoint2D::Shift(const DUNXPoint2D& p) {
    for (int i = 0; i < 2; ++i)
        m_Coords[i] += p[i] * m_Weight;
}

DUNXWeightPoint2D DUNXWeightPoint2D::Normalize() const {
    DUNXWeightPoint2D result(*this);
    const double length = Length();
    if (length != 0.0)
        result.Divide(length);
    return result;
}

DUNXWeightPoint2D operator+(const DUNXWeightPoint2D& a, const DUNXWeightPoint2D& b) {
    DUNXWeightPoint2D result(a);
    result += b;
    return result;
}

DUNXWeightPoint2D operator-(const DUNXWeightPoint2D& a, const DUNXWeightPoint2D& b) {
    DUNXWeightPoint2D result(a);
    result -= b;
    return result;
}

DUNXWeightPoint2D operator*(const DUNXWeightPoint2D& p, double s) {
    DUNXWeightPoint2D result(p);
    result.Multiply(s);
    return result;
}

DUNXWeightPoint2D operator*(double s, const DUNXWeightPoint2D& p) {
    return p * s;
}

DUNXWeightPoint2D operator/(const DUNXWeightPoint2D& p, double s) {
    DUNXWeightPoint2D result(p);
    result.Divide(s);
    return result;
}

double operator*(const DUNXWeightPoint2D& a, const DUNXWeightPoint2D& b) {
    return a[0] * b[0] + a[1] * b[1] + a.GetWeight() * b.GetWeight();
}

// --- DUNXWeightPoint3D ---------------------------------------------------------------

DUNXWeightPoint3D::DUNXWeightPoint3D() : DUNXPoint(3), m_Weight(0.0) {}

DUNXWeightPoint3D::DUNXWeightPoint3D(double v) : DUNXPoint(3), m_Weight(v) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] = v;
}

DUNXWeightPoint3D::DUNXWeightPoint3D(const DUNXPoint3D& p, double w, bool multiplyByWeight)
    : DUNXPoint(3), m_Weight(w) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] = weighted(p[i], w, multiplyByWeight);
}

DUNXWeightPoint3D::DUNXWeightPoint3D(const DUNXWeightPoint3D& other) = default;

DUNXWeightPoint3D& DUNXWeightPoint3D::operator=(const DUNXWeightPoint3D& other) {
    DUNXPoint::operator=(other);
    m_Weight = other.m_Weight;
    return *this;
}

DUNXWeightPoint3D::~DUNXWeightPoint3D() = default;

double DUNXWeightPoint3D::operator[](int i) const {
    return i < 0 ? m_Coords[0] : (i >= 3 ? m_Weight : m_Coords[i]);
}

double& DUNXWeightPoint3D::operator[](int i) {
    return i < 0 ? m_Coords[0] : (i >= 3 ? m_Weight : m_Coords[i]);
}

double DUNXWeightPoint3D::Length() const {
    return std::sqrt(m_Coords[0] * m_Coords[0] + m_Coords[1] * m_Coords[1] +
                     m_Coords[2] * m_Coords[2] + m_Weight * m_Weight);
}

void DUNXWeightPoint3D::Multiply(double s) {
    DUNXPoint::Multiply(s);
    m_Weight *= s;
}

void DUNXWeightPoint3D::Divide(double s) {
    if (s == 0.0)
        return;
    DUNXPoint::Divide(s);
    m_Weight /= s;
}

void DUNXWeightPoint3D::Substract(const DUNXPoint& p) {
    DUNXPoint::Substract(p);
    m_Weight -= p[3];
}

void DUNXWeightPoint3D::Add(const DUNXPoint& p) {
    DUNXPoint::Add(p);
    m_Weight += p[3];
}

void DUNXWeightPoint3D::CopyIn(DUNXPoint& target) const {
    DUNXPoint::CopyIn(target);
    if (auto* weightPoint = dynamic_cast<DUNXWeightPoint3D*>(&target))
        weightPoint->m_Weight = m_Weight;
}

void DUNXWeightPoint3D::Dump(DUNXStreamFormatter& out) const {
    GetCoords().Dump(out);
}

void DUNXWeightPoint3D::Transform(const DUNXMorph3D& morph, bool noTranslation) {
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
            m_Coords[i] += t[i] * m_Weight;
    }
}

void DUNXWeightPoint3D::Transform(const DUNXAffine3D& affine) {
    affine.Apply(m_Coords, 1);
}

DUNXPoint3D DUNXWeightPoint3D::GetWeightedCoords() const {
    return DUNXPoint3D(m_Coords);
}

void DUNXWeightPoint3D::SetWeightedCoords(const DUNXPoint3D& p) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] = p[i];
}

DUNXPoint3D DUNXWeightPoint3D::GetCoords() const {
    return DUNXPoint3D(cartesian(m_Coords[0], m_Weight), cartesian(m_Coords[1], m_Weight),
                       cartesian(m_Coords[2], m_Weight));
}

DUNXWeightPoint3D DUNXWeightPoint3D::Copy() const {
    return *this;
}

DUNXWeightPoint3D DUNXWeightPoint3D::operator-() const {
    DUNXWeightPoint3D result(*this);
    result.Negate();
    return result;
}

DUNXWeightPoint3D& DUNXWeightPoint3D::operator+=(const DUNXWeightPoint3D& p) {
    Add(p);
    return *this;
}

DUNXWeightPoint3D& DUNXWeightPoint3D::operator-=(const DUNXWeightPoint3D& p) {
    Substract(p);
    return *this;
}

DUNXWeightPoint3D& DUNXWeightPoint3D::operator*=(double s) {
    Multiply(s);
    return *this;
}

DUNXWeightPoint3D& DUNXWeightPoint3D::operator/=(double s) {
    Divide(s);
    return *this;
}

void DUNXWeightPoint3D::Shift(const DUNXPoint3D& p) {
    for (int i = 0; i < 3; ++i)
        m_Coords[i] += p[i] * m_Weight;
}

DUNXWeightPoint3D DUNXWeightPoint3D::Normalize() const {
    DUNXWeightPoint3D result(*this);
    const double length = Length();
    if (length != 0.0)
        result.Divide(length);
    return result;
}

DUNXWeightPoint3D operator+(const DUNXWeightPoint3D& a, const DUNXWeightPoint3D& b) {
    DUNXWeightPoint3D result(a);
    result += b;
    return result;
}

DUNXWeightPoint3D operator-(const DUNXWeightPoint3D& a, const DUNXWeightPoint3D& b) {
    DUNXWeightPoint3D result(a);
    result -= b;
    return result;
}

DUNXWeightPoint3D operator*(const DUNXWeightPoint3D& p, double s) {
    DUNXWeightPoint3D result(p);
    result.Multiply(s);
    return result;
}

DUNXWeightPoint3D operator*(double s, const DUNXWeightPoint3D& p) {
    return p * s;
}

DUNXWeightPoint3D operator/(const DUNXWeightPoint3D& p, double s) {
    DUNXWeightPoint3D result(p);
    result.Divide(s);
    return result;
}

double operator*(const DUNXWeightPoint3D& a, const DUNXWeightPoint3D& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a.GetWeight() * b.GetWeight();
}

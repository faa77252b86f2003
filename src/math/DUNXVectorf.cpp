#include <dunx/DUNXVectorf.h>

#include <cmath>

namespace {

// The single-precision family's zero threshold (9.9999998245167e-15 once rounded
// to float), compared with squared norms when normalising and with norms in AngleTo.
constexpr float kTiny = 1e-14f;
constexpr double kTwoPi = 6.283185307179586;

// Unit vector of (x, y, z); the x axis when the squared norm is at most kTiny.
void normalize(float& x, float& y, float& z) {
    const float q = x * x + y * y + z * z;
    if (q <= kTiny) {
        x = 1.0f;
        y = 0.0f;
        z = 0.0f;
        return;
    }
    const float inverse = 1.0f / std::sqrt(q);
    x *= inverse;
    y *= inverse;
    z *= inverse;
}

} // namespace

const DUNXVectorf DUNXVectorIf(1.0f, 0.0f, 0.0f);
const DUNXVectorf DUNXVectorJf(0.0f, 1.0f, 0.0f);
const DUNXVectorf DUNXVectorKf(0.0f, 0.0f, 1.0f);
const DUNXVectorf DUNXNullVectorf(0.0f, 0.0f, 0.0f);
const DUNXPointf DUNXPointOf(0.0f, 0.0f, 0.0f);
const DUNXDirectionf DUNXMathIf(1.0f, 0.0f, 0.0f);
const DUNXDirectionf DUNXMathJf(0.0f, 1.0f, 0.0f);
const DUNXDirectionf DUNXMathKf(0.0f, 0.0f, 1.0f);

// --- DUNXPointf ------------------------------------------------------------------

void DUNXPointf::GetValue(float* xyz) const {
    xyz[0] = x;
    xyz[1] = y;
    xyz[2] = z;
}

float DUNXPointf::DistanceTo(const DUNXPointf& p) const {
    const float dx = x - p.x, dy = y - p.y, dz = z - p.z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

float DUNXPointf::DistanceL1To(const DUNXPointf& p) const {
    return std::fabs(x - p.x) + std::fabs(y - p.y) + std::fabs(z - p.z);
}

void DUNXPointf::GetMinimum(const DUNXPointf& p) {
    x = p.x < x ? p.x : x;
    y = p.y < y ? p.y : y;
    z = p.z < z ? p.z : z;
}

void DUNXPointf::GetMaximum(const DUNXPointf& p) {
    x = p.x > x ? p.x : x;
    y = p.y > y ? p.y : y;
    z = p.z > z ? p.z : z;
}

DUNXVectorf operator-(const DUNXPointf& a, const DUNXPointf& b) {
    return DUNXVectorf(a.x - b.x, a.y - b.y, a.z - b.z);
}

DUNXPointf operator+(const DUNXPointf& p, const DUNXVectorf& v) {
    return DUNXPointf(p.x + v.x, p.y + v.y, p.z + v.z);
}

DUNXPointf operator-(const DUNXPointf& p, const DUNXVectorf& v) {
    return DUNXPointf(p.x - v.x, p.y - v.y, p.z - v.z);
}

DUNXPointf operator+(const DUNXVectorf& v, const DUNXPointf& p) {
    return p + v;
}

// --- DUNXVectorf -----------------------------------------------------------------

DUNXVectorf::DUNXVectorf(const DUNXDirectionf& direction)
    : x(direction.x()), y(direction.y()), z(direction.z()) {}

void DUNXVectorf::GetCoord(float& vx, float& vy, float& vz) const {
    vx = x;
    vy = y;
    vz = z;
}

void DUNXVectorf::GetCoord(float* xyz) const {
    xyz[0] = x;
    xyz[1] = y;
    xyz[2] = z;
}

void DUNXVectorf::SetCoord(float vx, float vy, float vz) {
    x = vx;
    y = vy;
    z = vz;
}

void DUNXVectorf::SetCoord(const float* xyz) {
    x = xyz[0];
    y = xyz[1];
    z = xyz[2];
}

float DUNXVectorf::Norm() const {
    return std::sqrt(x * x + y * y + z * z);
}

DUNXVectorf& DUNXVectorf::Normalize() {
    normalize(x, y, z);
    return *this;
}

float DUNXVectorf::AngleTo(const DUNXVectorf& v) const {
    if (Norm() <= kTiny || v.Norm() <= kTiny)
        return 0.0f;
    // atan2 of sine and cosine terms keeps full accuracy near 0 and π, where
    // acos of the normalised dot product does not.
    const DUNXVectorf cross = *this ^ v;
    return std::atan2(cross.Norm(), *this * v);
}

float DUNXVectorf::AngleTo(const DUNXVectorf& v, const DUNXVectorf& reference) const {
    const float angle = AngleTo(v);
    if ((*this ^ v) * reference > 0.0f)
        return angle;
    return static_cast<float>(kTwoPi - angle);
}

DUNXVectorf operator+(const DUNXVectorf& a, const DUNXVectorf& b) {
    return DUNXVectorf(a.x + b.x, a.y + b.y, a.z + b.z);
}

DUNXVectorf operator-(const DUNXVectorf& a, const DUNXVectorf& b) {
    return DUNXVectorf(a.x - b.x, a.y - b.y, a.z - b.z);
}

DUNXVectorf operator*(const DUNXVectorf& v, float s) {
    return DUNXVectorf(v.x * s, v.y * s, v.z * s);
}

DUNXVectorf operator*(float s, const DUNXVectorf& v) {
    return v * s;
}

DUNXVectorf operator/(const DUNXVectorf& v, float s) {
    return DUNXVectorf(v.x / s, v.y / s, v.z / s);
}

float operator*(const DUNXVectorf& a, const DUNXVectorf& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

DUNXVectorf operator^(const DUNXVectorf& a, const DUNXVectorf& b) {
    return DUNXVectorf(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

// --- DUNXDirectionf --------------------------------------------------------------

DUNXDirectionf::DUNXDirectionf(float dx, float dy, float dz) : m_X(dx), m_Y(dy), m_Z(dz) {
    normalize(m_X, m_Y, m_Z);
}

DUNXDirectionf::DUNXDirectionf(const float* xyz) : DUNXDirectionf(xyz[0], xyz[1], xyz[2]) {}

DUNXDirectionf::DUNXDirectionf(const DUNXPointf& from, const DUNXPointf& to)
    : DUNXDirectionf(to.x - from.x, to.y - from.y, to.z - from.z) {}

DUNXDirectionf::DUNXDirectionf(const DUNXVectorf& v) : DUNXDirectionf(v.x, v.y, v.z) {}

void DUNXDirectionf::GetCoord(float& dx, float& dy, float& dz) const {
    dx = m_X;
    dy = m_Y;
    dz = m_Z;
}

DUNXDirectionf& DUNXDirectionf::Normalize() {
    normalize(m_X, m_Y, m_Z);
    return *this;
}

DUNXDirectionf DUNXDirectionf::operator-() const {
    return DUNXDirectionf(-m_X, -m_Y, -m_Z);
}

DUNXVectorf operator^(const DUNXDirectionf& a, const DUNXDirectionf& b) {
    return DUNXVectorf(a) ^ DUNXVectorf(b);
}

DUNXVectorf operator^(const DUNXDirectionf& a, const DUNXVectorf& b) {
    return DUNXVectorf(a) ^ b;
}

DUNXVectorf operator*(const DUNXDirectionf& d, float s) {
    return DUNXVectorf(d) * s;
}

DUNXVectorf operator*(float s, const DUNXDirectionf& d) {
    return DUNXVectorf(d) * s;
}

#include <dunx/DUNXMatrix.h>

#include "math/Rotation.h"

#include <cmath>

namespace {

constexpr float kSingular = 1e-14f;

int diagonalKind(float s) {
    if (s == 1.0f)
        return 1;
    if (s == -1.0f)
        return -1;
    if (s > 0.0f)
        return 2;
    if (s < 0.0f)
        return -2;
    return 0;
}

} // namespace

DUNXMath3x3Matrixf::DUNXMath3x3Matrixf() : DUNXMath3x3Matrixf(1.0f) {}

DUNXMath3x3Matrixf::DUNXMath3x3Matrixf(float s)
    : m_Coef{s, 0.0f, 0.0f, 0.0f, s, 0.0f, 0.0f, 0.0f, s}, m_Kind(diagonalKind(s)) {}

DUNXMath3x3Matrixf::DUNXMath3x3Matrixf(const DUNXVectorf& c0, const DUNXVectorf& c1,
                                       const DUNXVectorf& c2)
    : m_Coef{c0.x, c1.x, c2.x, c0.y, c1.y, c2.y, c0.z, c1.z, c2.z}, m_Kind(0) {}

DUNXMath3x3Matrixf::DUNXMath3x3Matrixf(const DUNXVectorf& c0, const DUNXVectorf& c1)
    : DUNXMath3x3Matrixf(c0, c1, c0 ^ c1) {}

DUNXMath3x3Matrixf::DUNXMath3x3Matrixf(const DUNXVectorf& v)
    : m_Coef{0.0f, -v.z, v.y, v.z, 0.0f, -v.x, -v.y, v.x, 0.0f}, m_Kind(0) {}

DUNXMath3x3Matrixf::DUNXMath3x3Matrixf(const DUNXVectorf& axis, const double& angle) : m_Kind(1) {
    double rotation[9];
    dunx::internal::AxisAngleRotation(axis, angle, rotation);
    for (int i = 0; i < 9; ++i)
        m_Coef[i] = static_cast<float>(rotation[i]);
}

void DUNXMath3x3Matrixf::SetCoef(int row, int column, float value) {
    m_Coef[3 * row + column] = value;
    m_Kind = 0;
}

void DUNXMath3x3Matrixf::SetMatrix(const float* rowMajor) {
    for (int i = 0; i < 9; ++i)
        m_Coef[i] = rowMajor[i];
    m_Kind = 0;
}

void DUNXMath3x3Matrixf::GetMatrix(float* rowMajor) const {
    for (int i = 0; i < 9; ++i)
        rowMajor[i] = m_Coef[i];
}

DUNXVectorf DUNXMath3x3Matrixf::GetFirstColumn() const {
    return DUNXVectorf(m_Coef[0], m_Coef[3], m_Coef[6]);
}

DUNXVectorf DUNXMath3x3Matrixf::GetSecondColumn() const {
    return DUNXVectorf(m_Coef[1], m_Coef[4], m_Coef[7]);
}

DUNXVectorf DUNXMath3x3Matrixf::GetThirdColumn() const {
    return DUNXVectorf(m_Coef[2], m_Coef[5], m_Coef[8]);
}

void DUNXMath3x3Matrixf::SetFirstColumn(const DUNXVectorf& v) {
    m_Coef[0] = v.x;
    m_Coef[3] = v.y;
    m_Coef[6] = v.z;
    m_Kind = 0;
}

void DUNXMath3x3Matrixf::SetSecondColumn(const DUNXVectorf& v) {
    m_Coef[1] = v.x;
    m_Coef[4] = v.y;
    m_Coef[7] = v.z;
    m_Kind = 0;
}

void DUNXMath3x3Matrixf::SetThirdColumn(const DUNXVectorf& v) {
    m_Coef[2] = v.x;
    m_Coef[5] = v.y;
    m_Coef[8] = v.z;
    m_Kind = 0;
}

float DUNXMath3x3Matrixf::Determinant() const {
    return static_cast<float>(dunx::internal::Determinant3(m_Coef, 3, 1));
}

float DUNXMath3x3Matrixf::Trace() const {
    return m_Coef[0] + m_Coef[4] + m_Coef[8];
}

float DUNXMath3x3Matrixf::InfiniteNorm() const {
    float norm = 0.0f;
    for (int r = 0; r < 3; ++r) {
        const float rowSum =
            std::fabs(m_Coef[3 * r]) + std::fabs(m_Coef[3 * r + 1]) + std::fabs(m_Coef[3 * r + 2]);
        if (rowSum > norm)
            norm = rowSum;
    }
    return norm;
}

DUNXMath3x3Matrixf& DUNXMath3x3Matrixf::Transpose() {
    for (int r = 0; r < 3; ++r)
        for (int c = r + 1; c < 3; ++c) {
            const float swapped = m_Coef[3 * r + c];
            m_Coef[3 * r + c] = m_Coef[3 * c + r];
            m_Coef[3 * c + r] = swapped;
        }
    return *this;
}

bool DUNXMath3x3Matrixf::Inverse(DUNXMath3x3Matrixf& out) const {
    if (IsIsometry()) {
        out = *this;
        out.Transpose();
        return true;
    }
    const float determinant = Determinant();
    if (std::fabs(determinant) <= kSingular)
        return false;
    // Adjugate over determinant: inverse(r, c) = cofactor(c, r) / det.
    const auto e = [this](int r, int c) { return static_cast<double>(m_Coef[3 * r + c]); };
    const double inverse = 1.0 / static_cast<double>(determinant);
    DUNXMath3x3Matrixf result;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            // Cofactor (c, r) through cyclic indices, which carry the sign.
            const int r1 = (c + 1) % 3, r2 = (c + 2) % 3, c1 = (r + 1) % 3, c2 = (r + 2) % 3;
            const double cofactor = e(r1, c1) * e(r2, c2) - e(r1, c2) * e(r2, c1);
            result.m_Coef[3 * r + c] = static_cast<float>(cofactor * inverse);
        }
    result.m_Kind = (m_Kind == 2 || m_Kind == -2) ? m_Kind : 0;
    out = result;
    return true;
}

DUNXMath3x3Matrixf DUNXMath3x3Matrixf::Inverse() const {
    DUNXMath3x3Matrixf result;
    Inverse(result);
    return result;
}

int DUNXMath3x3Matrixf::ProductKind(int a, int b) {
    const bool isometries = (a == 1 || a == -1) && (b == 1 || b == -1);
    const bool scalings = (a == 2 || a == -2) && (b == 2 || b == -2);
    if (isometries)
        return a * b;
    if (scalings)
        return (a > 0) == (b > 0) ? 2 : -2;
    return 0;
}

int DUNXMath3x3Matrixf::ScaledKind(int kind, float s) {
    if (s == 1.0f)
        return kind;
    if ((kind == 2 || kind == -2) && s != 0.0f && s == s)
        return (kind > 0) == (s > 0.0f) ? 2 : -2;
    return 0;
}

DUNXMath3x3Matrixf operator+(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b) {
    DUNXMath3x3Matrixf result;
    for (int i = 0; i < 9; ++i)
        result.m_Coef[i] = a.m_Coef[i] + b.m_Coef[i];
    result.m_Kind = 0;
    return result;
}

DUNXMath3x3Matrixf operator-(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b) {
    DUNXMath3x3Matrixf result;
    for (int i = 0; i < 9; ++i)
        result.m_Coef[i] = a.m_Coef[i] - b.m_Coef[i];
    result.m_Kind = 0;
    return result;
}

DUNXMath3x3Matrixf operator*(const DUNXMath3x3Matrixf& a, const DUNXMath3x3Matrixf& b) {
    DUNXMath3x3Matrixf result;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            result.m_Coef[3 * r + c] = a.m_Coef[3 * r] * b.m_Coef[c] +
                                       a.m_Coef[3 * r + 1] * b.m_Coef[3 + c] +
                                       a.m_Coef[3 * r + 2] * b.m_Coef[6 + c];
    result.m_Kind = DUNXMath3x3Matrixf::ProductKind(a.m_Kind, b.m_Kind);
    return result;
}

DUNXMath3x3Matrixf operator*(const DUNXMath3x3Matrixf& m, float s) {
    DUNXMath3x3Matrixf result;
    for (int i = 0; i < 9; ++i)
        result.m_Coef[i] = m.m_Coef[i] * s;
    result.m_Kind = DUNXMath3x3Matrixf::ScaledKind(m.m_Kind, s);
    return result;
}

DUNXMath3x3Matrixf operator*(float s, const DUNXMath3x3Matrixf& m) {
    return m * s;
}

DUNXMath3x3Matrixf operator/(const DUNXMath3x3Matrixf& m, float s) {
    DUNXMath3x3Matrixf result;
    for (int i = 0; i < 9; ++i)
        result.m_Coef[i] = m.m_Coef[i] / s;
    result.m_Kind = DUNXMath3x3Matrixf::ScaledKind(m.m_Kind, 1.0f / s);
    return result;
}

DUNXVectorf operator*(const DUNXMath3x3Matrixf& m, const DUNXVectorf& v) {
    return DUNXVectorf(m.GetCoef(0, 0) * v.x + m.GetCoef(0, 1) * v.y + m.GetCoef(0, 2) * v.z,
                       m.GetCoef(1, 0) * v.x + m.GetCoef(1, 1) * v.y + m.GetCoef(1, 2) * v.z,
                       m.GetCoef(2, 0) * v.x + m.GetCoef(2, 1) * v.y + m.GetCoef(2, 2) * v.z);
}

DUNXMath3x3Matrixf operator%(const DUNXVectorf& a, const DUNXVectorf& b) {
    const float values[9] = {a.x * b.x, a.x * b.y, a.x * b.z, a.y * b.x, a.y * b.y,
                             a.y * b.z, a.z * b.x, a.z * b.y, a.z * b.z};
    DUNXMath3x3Matrixf result;
    result.SetMatrix(values);
    return result;
}

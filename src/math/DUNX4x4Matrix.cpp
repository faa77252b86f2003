#include <dunx/DUNXMatrix.h>

#include "math/Rotation.h"

#include <cmath>

namespace {

constexpr float kSingular = 1e-14f;

// Determinants this close to ±1 count as no scaling at all: rotations read from
// files carry rounding, and a cube root of 0.9999995 would spread it.
constexpr float kUnitLow = 0.999999f;
constexpr float kUnitHigh = 1.000001f;

constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace

const DUNX4x4Matrix DUNX4x4MatrixI;

DUNX4x4Matrix::DUNX4x4Matrix() : DUNX4x4Matrix(kIdentity) {}

DUNX4x4Matrix::DUNX4x4Matrix(const float* columnMajor) {
    for (int i = 0; i < 16; ++i)
        m_Elements[i] = columnMajor[i];
}

DUNX4x4Matrix::DUNX4x4Matrix(const DUNXVectorf& xAxis, const DUNXVectorf& yAxis,
                             const DUNXVectorf& zAxis, const DUNXVectorf& origin)
    : DUNX4x4Matrix() {
    SetComponents(xAxis, yAxis, zAxis, DUNXPointf(origin.x, origin.y, origin.z));
}

DUNX4x4Matrix::DUNX4x4Matrix(const DUNXVectorf& xAxis, const DUNXVectorf& yAxis,
                             const DUNXPointf& origin, float scale)
    : DUNX4x4Matrix() {
    SetComponents(xAxis * scale, yAxis * scale, (xAxis ^ yAxis) * scale, origin);
}

DUNX4x4Matrix::DUNX4x4Matrix(const DUNXVectorf& axis, const DUNXPointf& point, float angle)
    : DUNX4x4Matrix() {
    SetRotation(axis, point, angle);
}

DUNX4x4Matrix::DUNX4x4Matrix(const DUNXVectorf& axis, float angle) : DUNX4x4Matrix() {
    SetRotation(axis, DUNXPointf(0.0f, 0.0f, 0.0f), angle);
}

DUNX4x4Matrix::DUNX4x4Matrix(const float rows[3][3], const DUNXVectorf& translation)
    : DUNX4x4Matrix() {
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            m_Elements[4 * c + r] = rows[r][c];
    SetTranslation(translation);
}

DUNX4x4Matrix::~DUNX4x4Matrix() = default;

void DUNX4x4Matrix::SetElement(int row, int column, float value) {
    m_Elements[4 * column + row] = value;
    Forget();
}

void DUNX4x4Matrix::GetMatrix(float* columnMajor) const {
    for (int i = 0; i < 16; ++i)
        columnMajor[i] = m_Elements[i];
}

void DUNX4x4Matrix::SetTranslation(const DUNXVectorf& translation) {
    m_Elements[12] = translation.x;
    m_Elements[13] = translation.y;
    m_Elements[14] = translation.z;
}

DUNXVectorf DUNX4x4Matrix::GetTranslation() const {
    return DUNXVectorf(m_Elements[12], m_Elements[13], m_Elements[14]);
}

void DUNX4x4Matrix::SetComponents(const DUNXVectorf& xAxis, const DUNXVectorf& yAxis,
                                  const DUNXVectorf& zAxis, const DUNXPointf& origin) {
    const DUNXVectorf* axes[3] = {&xAxis, &yAxis, &zAxis};
    for (int c = 0; c < 3; ++c) {
        m_Elements[4 * c] = axes[c]->x;
        m_Elements[4 * c + 1] = axes[c]->y;
        m_Elements[4 * c + 2] = axes[c]->z;
        m_Elements[4 * c + 3] = 0.0f;
    }
    m_Elements[12] = origin.x;
    m_Elements[13] = origin.y;
    m_Elements[14] = origin.z;
    m_Elements[15] = 1.0f;
    Forget();
}

void DUNX4x4Matrix::GetComponents(DUNXVectorf& xAxis, DUNXVectorf& yAxis, DUNXVectorf& zAxis,
                                  DUNXPointf& origin) const {
    xAxis = DUNXVectorf(m_Elements[0], m_Elements[1], m_Elements[2]);
    yAxis = DUNXVectorf(m_Elements[4], m_Elements[5], m_Elements[6]);
    zAxis = DUNXVectorf(m_Elements[8], m_Elements[9], m_Elements[10]);
    origin = DUNXPointf(m_Elements[12], m_Elements[13], m_Elements[14]);
}

void DUNX4x4Matrix::SetRotation(const DUNXVectorf& axis, const DUNXPointf& point, float angle) {
    double r[9];
    dunx::internal::AxisAngleRotation(axis, angle, r);
    const double p[3] = {point.x, point.y, point.z};
    for (int row = 0; row < 3; ++row) {
        for (int c = 0; c < 3; ++c)
            m_Elements[4 * c + row] = static_cast<float>(r[3 * row + c]);
        // The point on the axis stays where it is: t = p − R·p.
        const double moved = r[3 * row] * p[0] + r[3 * row + 1] * p[1] + r[3 * row + 2] * p[2];
        m_Elements[12 + row] = static_cast<float>(p[row] - moved);
        m_Elements[4 * row + 3] = 0.0f;
    }
    m_Elements[15] = 1.0f;
    Forget();
}

void DUNX4x4Matrix::multiply(DUNXDirectionf& d) const {
    DUNXVectorf v(d);
    multiply(v);
    d = DUNXDirectionf(v);
}

void DUNX4x4Matrix::multiply(const DUNX4x4Matrix& a, const DUNX4x4Matrix& b) {
    float product[16];
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r) {
            float sum = 0.0f;
            for (int k = 0; k < 4; ++k)
                sum += a.m_Elements[4 * k + r] * b.m_Elements[4 * c + k];
            product[4 * c + r] = sum;
        }
    for (int i = 0; i < 16; ++i)
        m_Elements[i] = product[i];
    Forget();
}

DUNX4x4Matrix DUNX4x4Matrix::operator*(const DUNX4x4Matrix& other) const {
    DUNX4x4Matrix result;
    result.multiply(*this, other);
    return result;
}

DUNX4x4Matrix& DUNX4x4Matrix::operator*=(const DUNX4x4Matrix& other) {
    multiply(*this, other);
    return *this;
}

bool DUNX4x4Matrix::operator==(const DUNX4x4Matrix& other) const {
    for (int i = 0; i < 16; ++i)
        if (!(m_Elements[i] == other.m_Elements[i]))
            return false;
    return true;
}

bool DUNX4x4Matrix::IsIdentity() const {
    for (int i = 0; i < 16; ++i)
        if (!(m_Elements[i] == kIdentity[i]))
            return false;
    return true;
}

void DUNX4x4Matrix::ComputeCaches() const {
    if (m_CachesKnown)
        return;
    // Element (r, c) of the upper-left block is at 4·c + r: row stride 1, column stride 4.
    m_Determinant = static_cast<float>(dunx::internal::Determinant3(m_Elements, 1, 4));
    const float d = m_Determinant;
    if ((d >= kUnitLow && d <= kUnitHigh) || (d >= -kUnitHigh && d <= -kUnitLow))
        m_Scaling = 1.0f;
    else
        m_Scaling = static_cast<float>(std::pow(std::fabs(d), 0.3333333333333333));
    m_CachesKnown = true;
}

float DUNX4x4Matrix::GetDeterminant() const {
    ComputeCaches();
    return m_Determinant;
}

float DUNX4x4Matrix::GetScaling() const {
    ComputeCaches();
    return m_Scaling;
}

bool DUNX4x4Matrix::GetInvertedMatrix(DUNX4x4Matrix& out) const {
    // Affine inverse: A⁻¹ = adj(A) / det(A), then the translation −A⁻¹·t.
    const double determinant = dunx::internal::Determinant3(m_Elements, 1, 4);
    if (std::fabs(determinant) <= kSingular)
        return false;
    const auto e = [this](int r, int c) { return static_cast<double>(m_Elements[4 * c + r]); };
    double inverse[3][3];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            // inverse(r, c) = cofactor(c, r) / det; cyclic indices carry the sign.
            const int r1 = (c + 1) % 3, r2 = (c + 2) % 3, c1 = (r + 1) % 3, c2 = (r + 2) % 3;
            inverse[r][c] = (e(r1, c1) * e(r2, c2) - e(r1, c2) * e(r2, c1)) / determinant;
        }
    float result[16];
    for (int r = 0; r < 3; ++r) {
        double moved = 0.0;
        for (int c = 0; c < 3; ++c) {
            result[4 * c + r] = static_cast<float>(inverse[r][c]);
            moved += inverse[r][c] * m_Elements[12 + c];
        }
        result[12 + r] = static_cast<float>(-moved);
        result[4 * r + 3] = 0.0f;
    }
    result[15] = 1.0f;
    out = DUNX4x4Matrix(result);
    return true;
}

void DUNX4x4Matrix::ComputeInverseTransposeThirdColumnNormalized(float* out) const {
    // (A⁻¹)ᵀ = cof(A) / det, whose third column is (c0 ^ c1) / det for the
    // columns c0, c1 of A. Normalising drops |det| but keeps its sign.
    const DUNXVectorf c0(m_Elements[0], m_Elements[1], m_Elements[2]);
    const DUNXVectorf c1(m_Elements[4], m_Elements[5], m_Elements[6]);
    DUNXVectorf normal = c0 ^ c1;
    if (GetDeterminant() < 0.0f)
        normal = -normal;
    normal.Normalize();
    normal.GetCoord(out);
}

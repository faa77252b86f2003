#include <dunx/DUNXAssemblyComponentTransform.h>

#include <cmath>

namespace {

constexpr double kIdentityTolerance = 1e-6;

// Element (row, column) of a column-major 3 × 3 array.
inline double at(const double* r, int row, int column) {
    return r[3 * column + row];
}

} // namespace

DUNXAssemblyComponentTransform::DUNXAssemblyComponentTransform()
    : m_Rotation{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, m_Translation{0.0, 0.0, 0.0},
      m_Determinant(0.0), m_Scale(1.0), m_DeterminantKnown(false), m_FlagsKnown(false),
      m_Valid(false), m_Identity(false), m_Mirror(false) {}

DUNXAssemblyComponentTransform::~DUNXAssemblyComponentTransform() = default;

void DUNXAssemblyComponentTransform::Forget() {
    m_DeterminantKnown = false;
    m_FlagsKnown = false;
}

DUNIResult DUNXAssemblyComponentTransform::Set(const double* values) {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int i = 0; i < 9; ++i)
        m_Rotation[i] = values[i];
    for (int i = 0; i < 3; ++i)
        m_Translation[i] = values[9 + i];
    Forget();
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::Get(double* values) const {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int i = 0; i < 9; ++i)
        values[i] = m_Rotation[i];
    for (int i = 0; i < 3; ++i)
        values[9 + i] = m_Translation[i];
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::SetRotation(const double* values) {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int i = 0; i < 9; ++i)
        m_Rotation[i] = values[i];
    Forget();
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::GetRotation(double* values) const {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int i = 0; i < 9; ++i)
        values[i] = m_Rotation[i];
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::SetTranslation(const double* values) {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int i = 0; i < 3; ++i)
        m_Translation[i] = values[i];
    Forget();
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::GetTranslation(double* values) const {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int i = 0; i < 3; ++i)
        values[i] = m_Translation[i];
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::SetScale(double scale) {
    m_Scale = scale;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::GetScale(double& scale) const {
    scale = m_Scale;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::Set3x4ByRow(const float* values) {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
            m_Rotation[3 * c + r] = values[4 * r + c];
        m_Translation[r] = values[4 * r + 3];
    }
    Forget();
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::Set4x4ByColumn(const float* values) {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int c = 0; c < 3; ++c)
        for (int r = 0; r < 3; ++r)
            m_Rotation[3 * c + r] = values[4 * c + r];
    for (int r = 0; r < 3; ++r)
        m_Translation[r] = values[12 + r];
    Forget();
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::Get4x4ByRow(float* values) const {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
            values[4 * r + c] = static_cast<float>(at(m_Rotation, r, c));
        values[4 * r + 3] = static_cast<float>(m_Translation[r]);
    }
    values[12] = values[13] = values[14] = 0.0f;
    values[15] = 1.0f;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::Get4x4ByColumn(float* values) const {
    if (!values)
        return DUNI_E_INVALID_ARGUMENT;
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r)
            values[4 * c + r] = static_cast<float>(at(m_Rotation, r, c));
        values[4 * c + 3] = 0.0f;
    }
    for (int r = 0; r < 3; ++r)
        values[12 + r] = static_cast<float>(m_Translation[r]);
    values[15] = 1.0f;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::GetDeterminant(double& determinant) const {
    if (!m_DeterminantKnown) {
        const double* r = m_Rotation;
        m_Determinant = at(r, 0, 0) * (at(r, 1, 1) * at(r, 2, 2) - at(r, 1, 2) * at(r, 2, 1)) -
                        at(r, 0, 1) * (at(r, 1, 0) * at(r, 2, 2) - at(r, 1, 2) * at(r, 2, 0)) +
                        at(r, 0, 2) * (at(r, 1, 0) * at(r, 2, 1) - at(r, 1, 1) * at(r, 2, 0));
        m_DeterminantKnown = true;
    }
    determinant = m_Determinant;
    return DUNI_S_SUCCESS;
}

void DUNXAssemblyComponentTransform::SetFlags() const {
    double determinant = 0.0;
    GetDeterminant(determinant);
    m_Valid = determinant != 0.0;
    m_Mirror = determinant < 0.0;
    bool identity = true;
    for (int r = 0; r < 3 && identity; ++r)
        for (int c = 0; c < 3 && identity; ++c)
            identity = std::fabs(at(m_Rotation, r, c) - (r == c ? 1.0 : 0.0)) < kIdentityTolerance;
    for (int i = 0; i < 3 && identity; ++i)
        identity = std::fabs(m_Translation[i]) < kIdentityTolerance;
    m_Identity = identity;
    m_FlagsKnown = true;
}

DUNIResult DUNXAssemblyComponentTransform::ApplyTransform(float* xyz) const {
    return ApplyTransform(xyz, 1);
}

DUNIResult DUNXAssemblyComponentTransform::ApplyRotation(float* xyz) const {
    return ApplyRotation(xyz, 1);
}

DUNIResult DUNXAssemblyComponentTransform::ApplyTransform(float* xyz, int count) const {
    if (!xyz)
        return DUNI_E_INVALID_ARGUMENT;
    EnsureFlags();
    if (m_Identity)
        return DUNI_S_SUCCESS;
    // Local copies let the compiler keep the twelve values in registers.
    const double r00 = m_Rotation[0], r10 = m_Rotation[1], r20 = m_Rotation[2];
    const double r01 = m_Rotation[3], r11 = m_Rotation[4], r21 = m_Rotation[5];
    const double r02 = m_Rotation[6], r12 = m_Rotation[7], r22 = m_Rotation[8];
    const double t0 = m_Translation[0], t1 = m_Translation[1], t2 = m_Translation[2];
    for (int i = 0; i < count; ++i, xyz += 3) {
        const double x = xyz[0], y = xyz[1], z = xyz[2];
        xyz[0] = static_cast<float>(r00 * x + r01 * y + r02 * z + t0);
        xyz[1] = static_cast<float>(r10 * x + r11 * y + r12 * z + t1);
        xyz[2] = static_cast<float>(r20 * x + r21 * y + r22 * z + t2);
    }
    return DUNI_S_SUCCESS;
}

DUNIResult DUNXAssemblyComponentTransform::ApplyRotation(float* xyz, int count) const {
    if (!xyz)
        return DUNI_E_INVALID_ARGUMENT;
    EnsureFlags();
    if (m_Identity)
        return DUNI_S_SUCCESS;
    const double r00 = m_Rotation[0], r10 = m_Rotation[1], r20 = m_Rotation[2];
    const double r01 = m_Rotation[3], r11 = m_Rotation[4], r21 = m_Rotation[5];
    const double r02 = m_Rotation[6], r12 = m_Rotation[7], r22 = m_Rotation[8];
    for (int i = 0; i < count; ++i, xyz += 3) {
        const double x = xyz[0], y = xyz[1], z = xyz[2];
        xyz[0] = static_cast<float>(r00 * x + r01 * y + r02 * z);
        xyz[1] = static_cast<float>(r10 * x + r11 * y + r12 * z);
        xyz[2] = static_cast<float>(r20 * x + r21 * y + r22 * z);
    }
    return DUNI_S_SUCCESS;
}

bool DUNXAssemblyComponentTransform::IsIdentityTransform() const {
    EnsureFlags();
    return m_Identity;
}

bool DUNXAssemblyComponentTransform::IsMirrorTransform() const {
    EnsureFlags();
    return m_Mirror;
}

bool DUNXAssemblyComponentTransform::IsValid() const {
    EnsureFlags();
    return m_Valid;
}

DUNXAssemblyComponentTransform
DUNXAssemblyComponentTransform::operator*(const DUNXAssemblyComponentTransform& other) const {
    // [R t; 0 1] · [R' t'; 0 1] = [R·R', R·t' + t; 0 1].
    DUNXAssemblyComponentTransform product;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            double sum = 0.0;
            for (int k = 0; k < 3; ++k)
                sum += at(m_Rotation, r, k) * at(other.m_Rotation, k, c);
            product.m_Rotation[3 * c + r] = sum;
        }
        double moved = 0.0;
        for (int k = 0; k < 3; ++k)
            moved += at(m_Rotation, r, k) * other.m_Translation[k];
        product.m_Translation[r] = moved + m_Translation[r];
    }
    return product;
}

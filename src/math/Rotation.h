// Rotation matrices from an axis and an angle, shared by the float matrices.
#pragma once

#include <dunx/DUNXVectorf.h>

#include <cmath>

namespace dunx::internal {

/// Rodrigues' formula R = cos·I + sin·[k]× + (1 − cos)·k·kᵀ for the unit axis k
/// (normalised as `DUNXDirectionf` does), row-major into `rowMajor[9]`.
inline void AxisAngleRotation(const DUNXVectorf& axis, double angle, double* rowMajor) {
    const DUNXDirectionf k(axis);
    const double x = k.x(), y = k.y(), z = k.z();
    const double c = std::cos(angle), s = std::sin(angle), v = 1.0 - c;
    rowMajor[0] = c + x * x * v;
    rowMajor[1] = x * y * v - z * s;
    rowMajor[2] = x * z * v + y * s;
    rowMajor[3] = y * x * v + z * s;
    rowMajor[4] = c + y * y * v;
    rowMajor[5] = y * z * v - x * s;
    rowMajor[6] = z * x * v - y * s;
    rowMajor[7] = z * y * v + x * s;
    rowMajor[8] = c + z * z * v;
}

/// Determinant of a row-major 3 × 3 array, by cofactors along the first row.
template <class T> double Determinant3(const T* m, int rowStride, int columnStride) {
    const auto e = [&](int r, int c) {
        return static_cast<double>(m[r * rowStride + c * columnStride]);
    };
    return e(0, 0) * (e(1, 1) * e(2, 2) - e(1, 2) * e(2, 1)) -
           e(0, 1) * (e(1, 0) * e(2, 2) - e(1, 2) * e(2, 0)) +
           e(0, 2) * (e(1, 0) * e(2, 1) - e(1, 1) * e(2, 0));
}

} // namespace dunx::internal

// RandomMotion: reproducible random rotations (from unit quaternions, independent of
// the library's own axis/angle code) and random vectors for property tests.
#pragma once

#include <cmath>
#include <random>

namespace dunx::test {

class RandomMotion {
public:
    explicit RandomMotion(unsigned seed) : m_Engine(seed) {}

    double uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(m_Engine);
    }

    /// A rotation, row-major: the matrix of a uniformly drawn unit quaternion.
    void rotation(double r[9]) {
        std::normal_distribution<double> normal;
        double w = normal(m_Engine), x = normal(m_Engine), y = normal(m_Engine),
               z = normal(m_Engine);
        const double n = std::sqrt(w * w + x * x + y * y + z * z);
        w /= n, x /= n, y /= n, z /= n;
        r[0] = 1 - 2 * (y * y + z * z), r[1] = 2 * (x * y - w * z), r[2] = 2 * (x * z + w * y);
        r[3] = 2 * (x * y + w * z), r[4] = 1 - 2 * (x * x + z * z), r[5] = 2 * (y * z - w * x);
        r[6] = 2 * (x * z - w * y), r[7] = 2 * (y * z + w * x), r[8] = 1 - 2 * (x * x + y * y);
    }

    /// Three coordinates in [-range, range].
    void vector(double v[3], double range) {
        for (int i = 0; i < 3; ++i)
            v[i] = uniform(-range, range);
    }

private:
    std::mt19937 m_Engine;
};

/// y = M·x for a row-major 3 × 3 matrix.
inline void multiply3(const double m[9], const double x[3], double y[3]) {
    for (int r = 0; r < 3; ++r)
        y[r] = m[3 * r] * x[0] + m[3 * r + 1] * x[1] + m[3 * r + 2] * x[2];
}

} // namespace dunx::test

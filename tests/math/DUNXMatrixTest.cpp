#include <dunx/DUNXMatrix.h>

#include "MathTestSupport.h"

using namespace dunx::test;
using M3 = DUNXMath3x3Matrixf;
using M4 = DUNX4x4Matrix;
using V = DUNXVectorf;
using P = DUNXPointf;

namespace {

constexpr float kHalfPi = 1.5707963267948966f;

M3 fromRows(std::vector<float> rowMajor) {
    M3 m;
    m.SetMatrix(rowMajor.data());
    return m;
}

Values elements(const M3& m) {
    float e[9];
    m.GetMatrix(e);
    return Values(e, e + 9);
}

// A homogeneous matrix from the upper-left 3 × 3 block (column-major) and a translation:
// value i of the twelve goes to i + i / 3, past the bottom row of the columns before it.
M4 fromColumns(const double columns[9], const double t[3] = nullptr) {
    float e[16] = {};
    for (int i = 0; i < 12; ++i)
        e[i + i / 3] = static_cast<float>(i < 9 ? columns[i] : (t ? t[i - 9] : 0.0));
    e[15] = 1;
    return M4(e);
}

M4 randomRigid(RandomMotion& random, double scale) {
    double r[9], columns[9], t[3];
    random.rotation(r);
    random.vector(t, 10);
    for (int i = 0; i < 9; ++i)
        columns[i] = scale * r[3 * (i % 3) + i / 3];
    return fromColumns(columns, t);
}

} // namespace

TEST(DUNXMath3x3Matrixf, DiagonalConstructorSetsTheKind) {
    const auto kind = [](const M3& m) { return join(m.GetKind(), m.IsScaling(), m.IsIsometry()); };
    expectCases(CASE(kind(M3()), 1, true, true), CASE(kind(M3(1.0f)), 1, true, true),
                CASE(kind(M3(-1.0f)), -1, true, true), CASE(kind(M3(2.5f)), 2, true, false),
                CASE(kind(M3(0.5f)), 2, true, false), CASE(kind(M3(-3.0f)), -2, true, false),
                CASE(kind(M3(0.0f)), 0, false, false),
                CASE(elements(M3()), 1, 0, 0, 0, 1, 0, 0, 0, 1),
                CASE(elements(M3(-3.0f)), -3, 0, 0, 0, -3, 0, 0, 0, -3));
}

TEST(DUNXMath3x3Matrixf, InverseByKind) {
    M3 out = fromRows({9, 9, 9, 9, 9, 9, 9, 9, 9}), turned, flipped, general, quarter;
    const M3 singular = fromRows({1, 2, 3, 2, 4, 6, 1, 1, 1}),
             m = fromRows({1, 1, 0, 0, 1, 1, 1, 0, 1});
    EXPECT_FALSE(M3(0.0f).Inverse(out));
    EXPECT_FALSE(singular.Inverse(out));
    ASSERT_TRUE(M3(V(0, 0, 1), kHalfPi).Inverse(turned));
    ASSERT_TRUE(M3(-1.0f).Inverse(flipped));
    ASSERT_TRUE(m.Inverse(general));
    ASSERT_TRUE(M3(4.0f).Inverse(quarter));
    // An isometry is inverted by transposition and keeps its kind; so does a uniform scaling.
    EXPECT_EQ(turned.GetKind(), 1);
    EXPECT_EQ(flipped.GetKind(), -1);
    EXPECT_EQ(general.GetKind(), 0);
    EXPECT_EQ(quarter.GetKind(), 2);
    expectCases(CASE(elements(out), 9, 9, 9, 9, 9, 9, 9, 9, 9), // left as it was
                CASE(elements(general), 0.5, -0.5, 0.5, 0.5, 0.5, -0.5, -0.5, 0.5, 0.5),
                CASE(elements(quarter), 0.25, 0, 0, 0, 0.25, 0, 0, 0, 0.25),
                CASE(elements(singular.Inverse()), 1, 0, 0, 0, 1, 0, 0, 0, 1)); // the identity
    expectNear(1e-6, CASE(elements(turned), 0, 1, 0, -1, 0, 0, 0, 0, 1),
               CASE(elements(m * m.Inverse()), 1, 0, 0, 0, 1, 0, 0, 0, 1));
}

TEST(DUNXMath3x3Matrixf, MeasuresColumnsAndElements) {
    M3 m = fromRows({2, -7, 1, 0, 3, -4, 5, 1, 1}), changed;
    EXPECT_EQ(m.GetKind(), 0);
    expectCases(CASE(m.Determinant(), 2 * (3 + 4) + 7 * (0 + 20) + 1 * (0 - 15)),
                CASE(m.Trace(), 6), CASE(m.InfiniteNorm(), 2 + 7 + 1),
                CASE(join(m.GetFirstColumn(), m.GetSecondColumn(), m.GetThirdColumn()), 2, 0, 5, -7,
                     3, 1, 1, -4, 1));
    m.Transpose();
    EXPECT_EQ(elements(m), Values({2, 0, 5, -7, 3, 1, 1, -4, 1}));
    m.SetFirstColumn(V(1, 2, 3));
    m.SetSecondColumn(V(4, 5, 6));
    m.SetThirdColumn(V(7, 8, 9));
    changed.SetCoef(1, 2, 5);
    expectCases(CASE(elements(m), 1, 4, 7, 2, 5, 8, 3, 6, 9), CASE(changed.GetCoef(1, 2), 5));
    EXPECT_EQ(changed.GetKind(), 0) << "a changed element voids the kind";
}

TEST(DUNXMath3x3Matrixf, VectorConstructorsAndOperators) {
    const V a(1, 2, 3), b(4, 5, 6), c(7, 8, 10);
    const M3 m = fromRows({1, 2, 3, 4, 5, 6, 7, 8, 9}), i,
             n = fromRows({0, 1, 0, 0, 0, 1, 1, 0, 0});
    expectCases(CASE(elements(M3(a, b, c)), 1, 4, 7, 2, 5, 8, 3, 6, 10),
                CASE(elements(M3(a, b)), 1, 4, -3, 2, 5, 6, 3, 6, -3), // a ^ b = (-3, 6, -3)
                CASE(M3(a) * b, -3, 6, -3), CASE(elements(a % b), 4, 5, 6, 8, 10, 12, 12, 15, 18),
                CASE(M3(a, b, c) * V(1, 0, -1), -6, -6, -7),
                CASE(elements(m + i), 2, 2, 3, 4, 6, 6, 7, 8, 10),
                CASE(elements(m - i), 0, 2, 3, 4, 4, 6, 7, 8, 8),
                CASE(elements(m * 2.0f), 2, 4, 6, 8, 10, 12, 14, 16, 18),
                CASE(elements(0.5f * m), 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5),
                CASE(elements(m / 2.0f), 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5),
                CASE(elements(m * n), 3, 1, 2, 6, 4, 5, 9, 7, 8), // n acts first: columns permuted
                CASE(elements(n * m), 4, 5, 6, 7, 8, 9, 1, 2, 3));
    // Products and multiples keep a kind they can vouch for, else 0.
    const M3 turn(V(1, 1, 0), 0.3), flip(-1.0f), grow(2.0f), shrink(-0.5f);
    expectCases(CASE((turn * turn).GetKind(), 1), CASE((turn * flip).GetKind(), -1),
                CASE((flip * flip).GetKind(), 1), CASE((grow * shrink).GetKind(), -2),
                CASE((shrink * shrink).GetKind(), 2), CASE((turn * grow).GetKind(), 0),
                CASE((grow * 3.0f).GetKind(), 2), CASE((grow * -1.0f).GetKind(), -2),
                CASE((grow / -4.0f).GetKind(), -2), CASE((turn * 2.0f).GetKind(), 0),
                CASE((turn * 1.0f).GetKind(), 1), CASE((grow * 0.0f).GetKind(), 0),
                CASE((turn + i).GetKind(), 0), CASE((turn - i).GetKind(), 0));
}

TEST(DUNXMath3x3Matrixf, AxisAngleRotationsMatchIndependentRotations) {
    expectNear(1e-7, CASE(M3(V(0, 0, 2), kHalfPi) * V(1, 0, 0), 0, 1, 0),
               CASE(M3(V(1, 0, 0), kHalfPi) * V(0, 1, 0), 0, 0, 1),
               CASE(M3(V(0, 0, 0), kHalfPi) * V(0, 1, 0), 0, 0, 1)); // a zero axis counts as x
    RandomMotion random(29);
    for (int trial = 0; trial < 20; ++trial) {
        SCOPED_TRACE(trial);
        double r[9];
        random.rotation(r);
        // The axis and angle of r, read back by the standard formulas.
        const double angle = std::acos((r[0] + r[4] + r[8] - 1) / 2);
        const V axis(float(r[7] - r[5]), float(r[2] - r[6]), float(r[3] - r[1])), v(1, -2, 0.5f);
        const M3 m(axis, angle);
        EXPECT_TRUE(near(elements(m), Values(r, r + 9), 2e-5));
        EXPECT_NEAR(m.Determinant(), 1.0f, 1e-5f);
        EXPECT_NEAR((m * v).Norm(), v.Norm(), 1e-5f);
    }
}

TEST(DUNX4x4Matrix, DeterminantAndScalingAreCachedUntilAChange) {
    const auto measures = [](float x, float y, float z) {
        M4 m;
        m.SetElement(0, 0, x), m.SetElement(1, 1, y), m.SetElement(2, 2, z);
        return join(m.GetDeterminant(), m.GetScaling());
    };
    // The scaling is exactly 1 within 1e-6 of a unit determinant, else its cube root.
    expectNear(1e-6, CASE(measures(2, 2, 2), 8, 2), CASE(measures(-2, 4, 1), -8, 2),
               CASE(measures(1, 1, 0.9999f), 0.9999f, std::cbrt(0.9999f)),
               CASE(measures(0, 1, 1), 0, 0));
    expectCases(CASE(measures(1.0000005f, 1, 1), 1.0000005f, 1),
                CASE(measures(-1, 1, 1.0000009f), -1.0000009f, 1));
    M4 m;
    const Values identity = join(m.GetDeterminant(), m.GetScaling());
    m.SetElement(1, 1, 27);
    const Values changed = join(m.GetDeterminant(), m.GetScaling());
    m.multiply(M4(), M4());
    const Values multiplied = values(m.GetDeterminant());
    m *= M4(V(0, 0, 2), V(0, 3, 0), P(), 1); // x · (y × (x ^ y)) = |x ^ y|²
    expectNear(1e-5, CASE(identity, 1, 1), CASE(changed, 27, 3), CASE(multiplied, 1),
               CASE(m.GetDeterminant(), 36));
}

TEST(DUNX4x4Matrix, IsIdentityHasNoTolerance) {
    EXPECT_TRUE(DUNX4x4MatrixI.IsIdentity() && M4().IsIdentity());
    float identity[16];
    M4().GetMatrix(identity);
    expectCases(CASE(identity, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    EXPECT_TRUE(M4(DUNX4x4MatrixI) == DUNX4x4MatrixI);
    for (int i = 0; i < 16; ++i) {
        M4 m;
        m.SetElement(i % 4, i / 4, m.GetElement(i % 4, i / 4) + 1e-7f);
        EXPECT_FALSE(m.IsIdentity()) << i;
        EXPECT_FALSE(m == DUNX4x4MatrixI) << i;
    }
}

TEST(DUNX4x4Matrix, TransformsPointsVectorsAndDirectionsWithoutAllocating) {
    const double columns[9] = {0, 1, 0, -2, 0, 0, 0, 0, 3}, t[3] = {10, 20, 30};
    const M4 m = fromColumns(columns, t);
    P p(1, 2, 3);
    V v(1, 2, 3);
    DUNXDirectionf d(0, 1, 0);
    float out[16];
    m.multiply(p);
    m.multiply(v);
    m.multiply(d);
    m.GetMatrix(out);
    std::vector<P> points(40, P(1, 2, 3));
    EXPECT_EQ(allocationsOf([&] { m.multiply(points.data(), int(points.size())); }), 0);
    expectCases(CASE(p, 6, 21, 39), CASE(v, -4, 1, 9), CASE(d, -1, 0, 0), // normalised again
                CASE(m.GetTranslation(), 10, 20, 30),
                CASE(join(points[0], points[39]), 6, 21, 39, 6, 21, 39),
                CASE(out, 0, 1, 0, 0, -2, 0, 0, 0, 0, 0, 3, 0, 10, 20, 30, 1));
}

TEST(DUNX4x4Matrix, ConstructorsAndComponents) {
    V x, y, z, x2, y2, z2;
    P origin, origin2, onAxis(1, 1, 5), off(2, 1, 0), q(0, 1, 0), p(1, 0, 0);
    M4(V(1, 2, 3), V(4, 5, 6), V(7, 8, 9), V(-1, -2, -3)).GetComponents(x, y, z, origin);
    M4(V(1, 0, 0), V(0, 1, 0), P(5, 6, 7), 2).GetComponents(x2, y2, z2, origin2);
    const float rows[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    const M4 byRows(rows, V(1, 1, 1));
    M4 m;
    m.SetComponents(V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), P(1, 2, 3));
    m.SetTranslation(V(4, 5, 6));
    m.multiply(p);
    const M4 about(V(0, 0, 1), P(1, 1, 0), kHalfPi); // keeps the points of its line
    about.multiply(onAxis);
    about.multiply(off);
    M4(V(1, 0, 0), kHalfPi).multiply(q);
    expectNear(1e-6, CASE(join(x, y, z, origin), 1, 2, 3, 4, 5, 6, 7, 8, 9, -1, -2, -3),
               CASE(join(x2, y2, z2, origin2), 2, 0, 0, 0, 2, 0, 0, 0, 2, 5, 6, 7),
               CASE(join(byRows.GetElement(0, 1), byRows.GetElement(2, 0), byRows.GetElement(3, 3),
                         byRows.GetElement(1, 3)),
                    2, 7, 1, 1),
               CASE(m.GetTranslation(), 4, 5, 6), CASE(m.GetElement(1, 0), 1), CASE(p, 4, 6, 6),
               CASE(onAxis, 1, 1, 5), CASE(off, 1, 2, 0), CASE(q, 0, 0, 1));
}

TEST(DUNX4x4Matrix, RandomMotionsComposeInOrderAndInvert) {
    RandomMotion random(31);
    for (int trial = 0; trial < 25; ++trial) {
        SCOPED_TRACE(trial);
        const M4 a = randomRigid(random, random.uniform(0.5, 2)), b = randomRigid(random, 1);
        const P p(float(random.uniform(-3, 3)), 1.5f, float(random.uniform(-3, 3)));
        P once(p), twice(p), back(p);
        (a * b).multiply(once);
        b.multiply(twice);
        a.multiply(twice);
        EXPECT_NEAR(once.DistanceTo(twice), 0, 1e-4f);
        M4 product, inverse;
        product.multiply(a, b);
        EXPECT_TRUE(product == a * b);
        ASSERT_TRUE(a.GetInvertedMatrix(inverse));
        a.multiply(back);
        inverse.multiply(back);
        EXPECT_NEAR(back.DistanceTo(p), 0, 1e-4f);
        EXPECT_NEAR(inverse.GetDeterminant() * a.GetDeterminant(), 1, 1e-5f);
        // b is a rotation: lengths stay, the scaling is exactly 1, the inverse transpose is b.
        V v(1, 2, 2);
        b.multiply(v);
        EXPECT_NEAR(v.Norm(), 3, 1e-5f);
        EXPECT_EQ(b.GetScaling(), 1.0f);
        float normal[3];
        b.ComputeInverseTransposeThirdColumnNormalized(normal);
        EXPECT_TRUE(near(Values(normal, normal + 3),
                         join(b.GetElement(0, 2), b.GetElement(1, 2), b.GetElement(2, 2)), 1e-5));
    }
    M4 singular, untouched(V(1, 0, 0), 1.0f);
    singular.SetElement(2, 2, 0);
    const M4 before(untouched);
    EXPECT_FALSE(singular.GetInvertedMatrix(untouched));
    EXPECT_TRUE(untouched == before);
}

TEST(DUNX4x4Matrix, InverseTransposeThirdColumnIsTheTransformedNormal) {
    const auto normal = [](Values columns) {
        float n[3];
        fromColumns(columns.data()).ComputeInverseTransposeThirdColumnNormalized(n);
        return values(n);
    };
    const double h = std::sqrt(0.5);
    expectNear(
        1e-6, CASE(normal({2, 0, 0, 0, 1, 0, 0, 0, 5}), 0, 0, 1), // non-uniform scale
        CASE(normal({1, 0, 0, 1, 1, 0, 0, 0, 1}), 0, 0, 1),       // shear in the plane
        CASE(normal({1, 0, 0, 0, 1, 1, 0, 0, 1}), 0, -h, h),      // shear out of it
        CASE(normal({-1, 0, 0, 0, 1, 0, 0, 0, 1}), 0, 0, 1), // mirror: det's sign turns it back
        CASE(normal({0, 0, 0, 0, 0, 0, 0, 0, 1}), 1, 0, 0)); // degenerate: the x axis
}

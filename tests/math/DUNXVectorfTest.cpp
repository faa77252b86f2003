#include <dunx/DUNXVectorf.h>

#include "MathTestSupport.h"

#include <cmath>

using namespace dunx::test;

using V = DUNXVectorf;
using P = DUNXPointf;
using D = DUNXDirectionf;
constexpr float kPi = 3.14159265f;

TEST(DUNXPointf, EqualityIsTheInvertedTestCallersRelyOn) {
    const P p(1, 2, 3);
    EXPECT_FALSE(p == P(1, 2, 3)) << "equal points";
    EXPECT_TRUE(p == P(1, 5, 6)) << "x equal, y and z differ";
    EXPECT_FALSE(p == P(0, 5, 6));
    EXPECT_FALSE(p == P(1, 2, 6));
    EXPECT_FALSE(p == P(1, 5, 3));
}

TEST(DUNXPointf, DistancesBoundsAndMixedOperators) {
    const P a(1, 2, 3), b(4, -2, 15);
    P low(a), high(a);
    low.GetMinimum(b);
    high.GetMaximum(b);
    float xyz[3];
    b.GetValue(xyz);
    expectCases(CASE(a.DistanceTo(b), 13), CASE(a.DistanceL1To(b), 19), CASE(low, 1, -2, 3),
                CASE(high, 4, 2, 15), CASE(P(xyz), 4, -2, 15), CASE(b - a, 3, -4, 12),
                CASE(V(a, b), 3, -4, 12), CASE(a + V(1, 1, 1), 2, 3, 4),
                CASE(a - V(1, 1, 1), 0, 1, 2), CASE(V(0, 0, 1) + a, 1, 2, 4),
                CASE(DUNXPointOf, 0, 0, 0));
    // A tie keeps the point's own coordinate, as the sign of a zero shows.
    P zero(0, 0, 0), negativeZero(-0.0f, -0.0f, -0.0f);
    zero.GetMinimum(negativeZero);
    negativeZero.GetMaximum(P(0, 0, 0));
    for (float c : {zero.x, zero.y, zero.z})
        EXPECT_FALSE(std::signbit(c));
    for (float c : {negativeZero.x, negativeZero.y, negativeZero.z})
        EXPECT_TRUE(std::signbit(c));
}

TEST(DUNXVectorf, ArithmeticProductsAndAccessors) {
    const V a(1, 2, 3), b(4, -5, 6);
    const float floats[3] = {-1, -2, -3};
    V c;
    c.SetCoord(7, 8, 9);
    float x, y, z, xyz[3];
    c.GetCoord(x, y, z);
    c.SetCoord(floats);
    c.GetCoord(xyz);
    expectCases(CASE(a + b, 5, -3, 9), CASE(a - b, -3, 7, -3), CASE(-a, -1, -2, -3),
                CASE(a * 2.0f, 2, 4, 6), CASE(0.5f * b, 2, -2.5, 3), CASE(b / 2.0f, 2, -2.5, 3),
                CASE(a * b, 12), CASE(V(2, 3, 6).Norm(), 7), CASE(a ^ b, 27, 6, -13),
                CASE(DUNXVectorIf ^ DUNXVectorJf, 0, 0, 1),
                CASE(DUNXVectorJf ^ DUNXVectorKf, 1, 0, 0),
                CASE(DUNXVectorIf + DUNXVectorJf + DUNXVectorKf + DUNXNullVectorf, 1, 1, 1),
                CASE(join(x, y, z), 7, 8, 9), CASE(join(xyz[0], xyz[1], xyz[2]), -1, -2, -3),
                CASE(V(floats), -1, -2, -3));
    const V divided = a / 0.0f;
    EXPECT_TRUE(std::isinf(divided.x) && std::isinf(divided.z)) << "no zero check";
    EXPECT_TRUE(std::isnan((DUNXNullVectorf / 0.0f).y));
}

TEST(DUNXVectorf, NormalizeAndDirectionsFallBackToTheXAxis) {
    struct Row {
        V input, expected;
    };
    for (const Row& row :
         {Row{{0, 0, 0}, {1, 0, 0}}, Row{{0, 1e-8f, 0}, {1, 0, 0}}, Row{{0, 1e-6f, 0}, {0, 1, 0}},
          Row{{0, -3, 4}, {0, -0.6f, 0.8f}}, Row{{2, 3, 6}, {2 / 7.0f, 3 / 7.0f, 6 / 7.0f}}}) {
        SCOPED_TRACE(testing::PrintToString(values(row.input)));
        V v(row.input);
        EXPECT_TRUE(near(values(v.Normalize()), values(row.expected), 1e-7));
        EXPECT_TRUE(near(values(v), values(row.expected), 1e-7)) << "in place";
        EXPECT_TRUE(near(values(D(row.input)), values(row.expected), 1e-7));
    }
    const float xyz[3] = {3, 0, 4};
    D d(0, 2, 0);
    float x, y, z;
    D(0, 0, 3).GetCoord(x, y, z);
    expectNear(1e-7, CASE(D(0, 0, 1e-8f), 1, 0, 0), CASE(D(0, 0, -5), 0, 0, -1),
               CASE(D(xyz), 0.6, 0, 0.8), CASE(D(P(1, 1, 1), P(1, 3, 1)), 0, 1, 0),
               CASE(D(P(1, 1, 1), P(1, 1, 1)), 1, 0, 0), CASE(-D(1, 0, 0), -1, 0, 0),
               CASE(d.Normalize(), 0, 1, 0), CASE(join(x, y, z), 0, 0, 1),
               CASE(DUNXMathIf ^ DUNXMathJf, 0, 0, 1), CASE(DUNXMathJf ^ V(0, 0, 2), 2, 0, 0),
               CASE(DUNXMathKf * 3.0f, 0, 0, 3), CASE(-2.0f * DUNXMathJf, 0, -2, 0),
               CASE(V(DUNXMathKf), 0, 0, 1), CASE(DUNXMathIf, 1, 0, 0));
}

TEST(DUNXVectorf, AngleToWithAndWithoutReference) {
    struct Row {
        V from, to;
        float angle;  // unsigned, in [0, π]
        float aboutZ; // measured counter-clockwise about +z
    };
    const float twoPi = 2 * kPi;
    for (const Row& row : {
             Row{{1, 0, 0}, {2, 0, 0}, 0, twoPi},         // zero triple product: 2π − 0
             Row{{1, 0, 0}, {0, 3, 0}, kPi / 2, kPi / 2}, // anti-clockwise: below π
             Row{{0, 3, 0}, {1, 0, 0}, kPi / 2, 3 * kPi / 2}, Row{{1, 0, 0}, {-1, 0, 0}, kPi, kPi},
             Row{{1, 1, 0}, {-1, 0, 0}, 3 * kPi / 4, 3 * kPi / 4},
             Row{{1, 0, 0}, {1, -1, 0}, kPi / 4, 7 * kPi / 4}, Row{{0, 0, 0}, {1, 0, 0}, 0, twoPi},
             Row{{1e-15f, 0, 0}, {0, 1, 0}, 0, 0}, // angle 0, but a positive triple product
         }) {
        SCOPED_TRACE(testing::PrintToString(join(row.from, row.to)));
        EXPECT_NEAR(row.from.AngleTo(row.to), row.angle, 1e-6f);
        EXPECT_NEAR(row.from.AngleTo(row.to, DUNXVectorKf), row.aboutZ, 2e-6f);
    }
    const V a(1, 2, 3), b(-2, 0.5f, 1);
    EXPECT_NEAR(a.AngleTo(b), std::acos((a * b) / (a.Norm() * b.Norm())), 1e-6f);
    EXPECT_NEAR(a.AngleTo(b, a ^ b) + b.AngleTo(a, a ^ b), twoPi, 1e-5f);
}

#include <dunx/DUNXVectorf.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float kPi = 3.14159265f;

void expectVector(const DUNXVectorf& v, float x, float y, float z, float tolerance = 0.0f) {
    EXPECT_NEAR(v.x, x, tolerance);
    EXPECT_NEAR(v.y, y, tolerance);
    EXPECT_NEAR(v.z, z, tolerance);
}

void expectDirection(const DUNXDirectionf& d, float x, float y, float z, float tolerance = 0.0f) {
    EXPECT_NEAR(d.x(), x, tolerance);
    EXPECT_NEAR(d.y(), y, tolerance);
    EXPECT_NEAR(d.z(), z, tolerance);
}

} // namespace

TEST(DUNXPointf, EqualityIsTheInvertedTestCallersRelyOn) {
    struct Row {
        DUNXPointf other;
        bool expected;
    };
    const DUNXPointf p(1, 2, 3);
    for (const Row& row : {Row{{1, 2, 3}, false}, Row{{1, 5, 6}, true}, Row{{0, 5, 6}, false},
                           Row{{1, 2, 6}, false}, Row{{1, 5, 3}, false}}) {
        SCOPED_TRACE(testing::Message() << row.other.x << ' ' << row.other.y << ' ' << row.other.z);
        EXPECT_EQ(p == row.other, row.expected);
    }
}

TEST(DUNXPointf, DistancesBoundsAndMixedOperators) {
    const DUNXPointf a(1, 2, 3), b(4, -2, 15);
    EXPECT_EQ(a.DistanceTo(b), 13.0f);
    EXPECT_EQ(a.DistanceL1To(b), 19.0f);
    DUNXPointf low(a), high(a);
    low.GetMinimum(b);
    high.GetMaximum(b);
    EXPECT_TRUE(low.x == 1 && low.y == -2 && low.z == 3);
    EXPECT_TRUE(high.x == 4 && high.y == 2 && high.z == 15);
    float xyz[3];
    b.GetValue(xyz);
    const DUNXPointf fromArray(xyz);
    EXPECT_TRUE(fromArray.x == 4 && fromArray.y == -2 && fromArray.z == 15);

    expectVector(b - a, 3, -4, 12);
    expectVector(DUNXVectorf(a, b), 3, -4, 12);
    const DUNXPointf moved = a + DUNXVectorf(1, 1, 1), back = moved - DUNXVectorf(1, 1, 1),
                     other = DUNXVectorf(0, 0, 1) + a;
    EXPECT_TRUE(moved.x == 2 && moved.y == 3 && moved.z == 4);
    EXPECT_TRUE(back.x == 1 && back.y == 2 && back.z == 3);
    EXPECT_TRUE(other.x == 1 && other.y == 2 && other.z == 4);
    EXPECT_TRUE(DUNXPointOf.x == 0 && DUNXPointOf.y == 0 && DUNXPointOf.z == 0);
}

TEST(DUNXVectorf, ArithmeticAndProducts) {
    const DUNXVectorf a(1, 2, 3), b(4, -5, 6);
    expectVector(a + b, 5, -3, 9);
    expectVector(a - b, -3, 7, -3);
    expectVector(-a, -1, -2, -3);
    expectVector(a * 2.0f, 2, 4, 6);
    expectVector(0.5f * b, 2, -2.5f, 3);
    expectVector(b / 2.0f, 2, -2.5f, 3);
    const DUNXVectorf divided = a / 0.0f;
    EXPECT_TRUE(std::isinf(divided.x) && std::isinf(divided.z)) << "no zero check";
    EXPECT_TRUE(std::isnan((DUNXNullVectorf / 0.0f).y));
    EXPECT_EQ(a * b, 12.0f);
    expectVector(a ^ b, 27, 6, -13);
    expectVector(DUNXVectorIf ^ DUNXVectorJf, 0, 0, 1);
    expectVector(DUNXVectorJf ^ DUNXVectorKf, 1, 0, 0);
    EXPECT_EQ(DUNXVectorf(2, 3, 6).Norm(), 7.0f);

    DUNXVectorf c;
    c.SetCoord(7, 8, 9);
    float x, y, z, xyz[3];
    c.GetCoord(x, y, z);
    EXPECT_TRUE(x == 7 && y == 8 && z == 9);
    const float values[3] = {-1, -2, -3};
    c.SetCoord(values);
    c.GetCoord(xyz);
    EXPECT_TRUE(xyz[0] == -1 && xyz[1] == -2 && xyz[2] == -3);
    expectVector(DUNXVectorf(values), -1, -2, -3);
}

TEST(DUNXVectorf, NormalizeFallsBackToTheXAxis) {
    struct Row {
        DUNXVectorf input;
        DUNXVectorf expected;
    };
    for (const Row& row :
         {Row{{0, 0, 0}, {1, 0, 0}}, Row{{0, 1e-8f, 0}, {1, 0, 0}}, Row{{0, 1e-6f, 0}, {0, 1, 0}},
          Row{{0, -3, 4}, {0, -0.6f, 0.8f}}, Row{{2, 3, 6}, {2 / 7.0f, 3 / 7.0f, 6 / 7.0f}}}) {
        SCOPED_TRACE(testing::Message() << row.input.x << ' ' << row.input.y << ' ' << row.input.z);
        DUNXVectorf v(row.input);
        expectVector(v.Normalize(), row.expected.x, row.expected.y, row.expected.z, 1e-7f);
        expectVector(v, row.expected.x, row.expected.y, row.expected.z, 1e-7f);
        const DUNXDirectionf d(row.input);
        expectDirection(d, row.expected.x, row.expected.y, row.expected.z, 1e-7f);
    }
}

TEST(DUNXVectorf, AngleToWithAndWithoutReference) {
    struct Row {
        DUNXVectorf from, to;
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
        SCOPED_TRACE(testing::Message() << row.to.x << ' ' << row.to.y);
        EXPECT_NEAR(row.from.AngleTo(row.to), row.angle, 1e-6f);
        EXPECT_NEAR(row.from.AngleTo(row.to, DUNXVectorKf), row.aboutZ, 2e-6f);
    }
    const DUNXVectorf a(1, 2, 3), b(-2, 0.5f, 1);
    EXPECT_NEAR(a.AngleTo(b), std::acos((a * b) / (a.Norm() * b.Norm())), 1e-6f);
    EXPECT_NEAR(a.AngleTo(b, a ^ b) + b.AngleTo(a, a ^ b), twoPi, 1e-5f);
}

TEST(DUNXDirectionf, AlwaysUnitLength) {
    expectDirection(DUNXDirectionf(0, 0, 1e-8f), 1, 0, 0);
    expectDirection(DUNXDirectionf(0, 0, -5), 0, 0, -1);
    const float xyz[3] = {3, 0, 4};
    expectDirection(DUNXDirectionf(xyz), 0.6f, 0, 0.8f, 1e-7f);
    expectDirection(DUNXDirectionf(DUNXPointf(1, 1, 1), DUNXPointf(1, 3, 1)), 0, 1, 0);
    expectDirection(DUNXDirectionf(DUNXPointf(1, 1, 1), DUNXPointf(1, 1, 1)), 1, 0, 0);
    expectDirection(-DUNXDirectionf(1, 0, 0), -1, 0, 0);
    DUNXDirectionf d(0, 2, 0);
    expectDirection(d.Normalize(), 0, 1, 0);
    float x, y, z;
    DUNXDirectionf(0, 0, 3).GetCoord(x, y, z);
    EXPECT_TRUE(x == 0 && y == 0 && z == 1);

    expectVector(DUNXMathIf ^ DUNXMathJf, 0, 0, 1);
    expectVector(DUNXMathJf ^ DUNXVectorf(0, 0, 2), 2, 0, 0);
    expectVector(DUNXMathKf * 3.0f, 0, 0, 3);
    expectVector(-2.0f * DUNXMathJf, 0, -2, 0);
    expectVector(DUNXVectorf(DUNXMathKf), 0, 0, 1);
    expectDirection(DUNXMathIf, 1, 0, 0);
    expectVector(DUNXVectorIf + DUNXVectorJf + DUNXVectorKf + DUNXNullVectorf, 1, 1, 1);
}

#include <dunx/DUNXMatrix.h>

#include "RandomMotion.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

constexpr float kHalfPi = 1.5707963267948966f;

DUNXMath3x3Matrixf fromRows(std::vector<float> rowMajor) {
    DUNXMath3x3Matrixf m;
    m.SetMatrix(rowMajor.data());
    return m;
}

void expectMatrix(const DUNXMath3x3Matrixf& m, std::vector<float> rowMajor, float tolerance = 0) {
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(m.GetCoef(i / 3, i % 3), rowMajor[static_cast<size_t>(i)], tolerance) << i;
}

void expectVector(const DUNXVectorf& v, float x, float y, float z, float tolerance = 0) {
    EXPECT_NEAR(v.x, x, tolerance);
    EXPECT_NEAR(v.y, y, tolerance);
    EXPECT_NEAR(v.z, z, tolerance);
}

DUNX4x4Matrix randomRigid(dunx::test::RandomMotion& random, float scale) {
    double r[9], t[3];
    random.rotation(r);
    random.vector(t, 10);
    float elements[16] = {};
    for (int row = 0; row < 3; ++row) {
        for (int c = 0; c < 3; ++c)
            elements[4 * c + row] = static_cast<float>(scale * r[3 * row + c]);
        elements[12 + row] = static_cast<float>(t[row]);
    }
    elements[15] = 1;
    return DUNX4x4Matrix(elements);
}

} // namespace

TEST(DUNXMath3x3Matrixf, DiagonalConstructorSetsTheKind) {
    struct Row {
        float s;
        int kind;
        bool scaling, isometry;
    };
    for (const Row& row :
         {Row{1, 1, true, true}, Row{-1, -1, true, true}, Row{2.5f, 2, true, false},
          Row{0.5f, 2, true, false}, Row{-3, -2, true, false}, Row{0, 0, false, false}}) {
        SCOPED_TRACE(row.s);
        const DUNXMath3x3Matrixf m(row.s);
        EXPECT_EQ(m.GetKind(), row.kind);
        EXPECT_EQ(m.IsScaling(), row.scaling);
        EXPECT_EQ(m.IsIsometry(), row.isometry);
        expectMatrix(m, {row.s, 0, 0, 0, row.s, 0, 0, 0, row.s});
    }
    EXPECT_EQ(DUNXMath3x3Matrixf().GetKind(), 1);
    expectMatrix(DUNXMath3x3Matrixf(), {1, 0, 0, 0, 1, 0, 0, 0, 1});
}

TEST(DUNXMath3x3Matrixf, InverseByKind) {
    const DUNXMath3x3Matrixf sentinel = fromRows({9, 9, 9, 9, 9, 9, 9, 9, 9});
    DUNXMath3x3Matrixf out = sentinel;
    EXPECT_FALSE(DUNXMath3x3Matrixf(0.0f).Inverse(out));
    expectMatrix(out, {9, 9, 9, 9, 9, 9, 9, 9, 9});
    EXPECT_FALSE(fromRows({1, 2, 3, 2, 4, 6, 1, 1, 1}).Inverse(out));
    expectMatrix(fromRows({1, 2, 3, 2, 4, 6, 1, 1, 1}).Inverse(), {1, 0, 0, 0, 1, 0, 0, 0, 1});

    // An isometry is inverted by transposition and keeps its kind.
    const DUNXMath3x3Matrixf turn(DUNXVectorf(0, 0, 1), kHalfPi);
    ASSERT_TRUE(turn.Inverse(out));
    EXPECT_EQ(out.GetKind(), 1);
    expectMatrix(out, {0, 1, 0, -1, 0, 0, 0, 0, 1}, 1e-7f);
    ASSERT_TRUE(DUNXMath3x3Matrixf(-1.0f).Inverse(out));
    EXPECT_EQ(out.GetKind(), -1);

    // General matrices: adjugate over determinant.
    const DUNXMath3x3Matrixf general = fromRows({1, 1, 0, 0, 1, 1, 1, 0, 1});
    ASSERT_TRUE(general.Inverse(out));
    EXPECT_EQ(out.GetKind(), 0);
    expectMatrix(out, {0.5f, -0.5f, 0.5f, 0.5f, 0.5f, -0.5f, -0.5f, 0.5f, 0.5f});
    expectMatrix(general * general.Inverse(), {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-6f);
    ASSERT_TRUE(DUNXMath3x3Matrixf(4.0f).Inverse(out));
    expectMatrix(out, {0.25f, 0, 0, 0, 0.25f, 0, 0, 0, 0.25f});
    EXPECT_EQ(out.GetKind(), 2);
}

TEST(DUNXMath3x3Matrixf, MeasuresAndColumns) {
    DUNXMath3x3Matrixf m = fromRows({2, -7, 1, 0, 3, -4, 5, 1, 1});
    EXPECT_EQ(m.GetKind(), 0);
    EXPECT_EQ(m.Determinant(), 2 * (3 + 4) + 7 * (0 + 20) + 1 * (0 - 15)); // 139
    EXPECT_EQ(m.Trace(), 6.0f);
    EXPECT_EQ(m.InfiniteNorm(), 10.0f); // |2| + |−7| + |1|
    expectVector(m.GetFirstColumn(), 2, 0, 5);
    expectVector(m.GetSecondColumn(), -7, 3, 1);
    expectVector(m.GetThirdColumn(), 1, -4, 1);
    m.Transpose();
    expectMatrix(m, {2, 0, 5, -7, 3, 1, 1, -4, 1});
    m.SetFirstColumn(DUNXVectorf(1, 2, 3));
    m.SetSecondColumn(DUNXVectorf(4, 5, 6));
    m.SetThirdColumn(DUNXVectorf(7, 8, 9));
    expectMatrix(m, {1, 4, 7, 2, 5, 8, 3, 6, 9});
    DUNXMath3x3Matrixf rotation;
    rotation.SetCoef(1, 2, 5);
    EXPECT_EQ(rotation.GetCoef(1, 2), 5.0f);
    EXPECT_EQ(rotation.GetKind(), 0) << "a changed element voids the kind";
    float values[9];
    m.GetMatrix(values);
    EXPECT_TRUE(values[1] == 4 && values[8] == 9);
}

TEST(DUNXMath3x3Matrixf, VectorConstructorsAndOperators) {
    const DUNXVectorf a(1, 2, 3), b(4, 5, 6), c(7, 8, 10);
    expectMatrix(DUNXMath3x3Matrixf(a, b, c), {1, 4, 7, 2, 5, 8, 3, 6, 10});
    expectMatrix(DUNXMath3x3Matrixf(a, b), {1, 4, -3, 2, 5, 6, 3, 6, -3}); // a ^ b = (−3, 6, −3)
    expectVector(DUNXMath3x3Matrixf(a) * b, -3, 6, -3);                    // a ^ b again
    expectMatrix(a % b, {4, 5, 6, 8, 10, 12, 12, 15, 18});
    expectVector(DUNXMath3x3Matrixf(a, b, c) * DUNXVectorf(1, 0, -1), -6, -6, -7);

    const DUNXMath3x3Matrixf m = fromRows({1, 2, 3, 4, 5, 6, 7, 8, 9}), i;
    expectMatrix(m + i, {2, 2, 3, 4, 6, 6, 7, 8, 10});
    expectMatrix(m - i, {0, 2, 3, 4, 4, 6, 7, 8, 8});
    expectMatrix(m * 2.0f, {2, 4, 6, 8, 10, 12, 14, 16, 18});
    expectMatrix(0.5f * m, {0.5f, 1, 1.5f, 2, 2.5f, 3, 3.5f, 4, 4.5f});
    expectMatrix(m / 2.0f, {0.5f, 1, 1.5f, 2, 2.5f, 3, 3.5f, 4, 4.5f});
    const DUNXMath3x3Matrixf n = fromRows({0, 1, 0, 0, 0, 1, 1, 0, 0});
    expectMatrix(m * n, {3, 1, 2, 6, 4, 5, 9, 7, 8}); // columns permuted: n acts first
    expectMatrix(n * m, {4, 5, 6, 7, 8, 9, 1, 2, 3});

    struct Row {
        DUNXMath3x3Matrixf product;
        int kind;
    };
    const DUNXMath3x3Matrixf turn(DUNXVectorf(1, 1, 0), 0.3), flip(-1.0f), grow(2.0f),
        shrink(-0.5f);
    for (const Row& row :
         {Row{turn * turn, 1}, Row{turn * flip, -1}, Row{flip * flip, 1}, Row{grow * shrink, -2},
          Row{shrink * shrink, 2}, Row{turn * grow, 0}, Row{grow * 3.0f, 2}, Row{grow * -1.0f, -2},
          Row{grow / -4.0f, -2}, Row{turn * 2.0f, 0}, Row{turn * 1.0f, 1}, Row{grow * 0.0f, 0},
          Row{turn + i, 0}, Row{turn - i, 0}}) {
        EXPECT_EQ(row.product.GetKind(), row.kind);
    }
}

TEST(DUNXMath3x3Matrixf, AxisAngleRotationsMatchIndependentRotations) {
    expectVector(DUNXMath3x3Matrixf(DUNXVectorf(0, 0, 2), kHalfPi) * DUNXVectorf(1, 0, 0), 0, 1, 0,
                 1e-7f);
    expectVector(DUNXMath3x3Matrixf(DUNXVectorf(1, 0, 0), kHalfPi) * DUNXVectorf(0, 1, 0), 0, 0, 1,
                 1e-7f);
    expectVector(DUNXMath3x3Matrixf(DUNXVectorf(0, 0, 0), kHalfPi) * DUNXVectorf(0, 1, 0), 0, 0, 1,
                 1e-7f); // a zero axis counts as x
    dunx::test::RandomMotion random(29);
    for (int trial = 0; trial < 20; ++trial) {
        double r[9];
        random.rotation(r);
        // The axis and angle of r, read back by the standard formulas.
        const double angle = std::acos((r[0] + r[4] + r[8] - 1) / 2);
        const DUNXVectorf axis(static_cast<float>(r[7] - r[5]), static_cast<float>(r[2] - r[6]),
                               static_cast<float>(r[3] - r[1]));
        const DUNXMath3x3Matrixf m(axis, angle);
        for (int i = 0; i < 9; ++i)
            EXPECT_NEAR(m.GetCoef(i / 3, i % 3), r[i], 2e-5) << trial << ' ' << i;
        EXPECT_NEAR(m.Determinant(), 1.0f, 1e-5f);
        const DUNXVectorf v(1, -2, 0.5f);
        EXPECT_NEAR((m * v).Norm(), v.Norm(), 1e-5f);
    }
}

TEST(DUNX4x4Matrix, DeterminantAndScalingAreCachedUntilAChange) {
    struct Row {
        float diagonal[3];
        float determinant;
        float scaling;
    };
    for (const Row& row : {Row{{2, 2, 2}, 8, 2}, Row{{1.0000005f, 1, 1}, 1.0000005f, 1},
                           Row{{-1, 1, 1.0000009f}, -1.0000009f, 1}, Row{{-2, 4, 1}, -8, 2},
                           Row{{1, 1, 0.9999f}, 0.9999f, static_cast<float>(std::cbrt(0.9999))},
                           Row{{0, 1, 1}, 0, 0}}) {
        SCOPED_TRACE(row.determinant);
        DUNX4x4Matrix m;
        for (int i = 0; i < 3; ++i)
            m.SetElement(i, i, row.diagonal[i]);
        EXPECT_FLOAT_EQ(m.GetDeterminant(), row.determinant);
        if (row.scaling == 1)
            EXPECT_EQ(m.GetScaling(), 1.0f) << "exactly 1 near a unit determinant";
        else
            EXPECT_FLOAT_EQ(m.GetScaling(), row.scaling);
    }
    DUNX4x4Matrix m;
    EXPECT_EQ(m.GetDeterminant(), 1.0f);
    m.SetElement(1, 1, 27);
    EXPECT_EQ(m.GetDeterminant(), 27.0f);
    EXPECT_FLOAT_EQ(m.GetScaling(), 3);
    m.multiply(DUNX4x4Matrix(), DUNX4x4Matrix());
    EXPECT_EQ(m.GetDeterminant(), 1.0f);
    m *= DUNX4x4Matrix(DUNXVectorf(0, 0, 2), DUNXVectorf(0, 3, 0), DUNXPointf(), 1);
    EXPECT_FLOAT_EQ(m.GetDeterminant(), 36); // x · (y × (x ^ y)) = |x ^ y|²
}

TEST(DUNX4x4Matrix, IsIdentityHasNoTolerance) {
    EXPECT_TRUE(DUNX4x4MatrixI.IsIdentity());
    EXPECT_TRUE(DUNX4x4Matrix().IsIdentity());
    for (int i = 0; i < 16; ++i) {
        DUNX4x4Matrix m;
        m.SetElement(i % 4, i / 4, m.GetElement(i % 4, i / 4) + 1e-7f);
        EXPECT_FALSE(m.IsIdentity()) << i;
        EXPECT_FALSE(m == DUNX4x4MatrixI);
    }
    EXPECT_TRUE(DUNX4x4Matrix(DUNX4x4MatrixI) == DUNX4x4MatrixI);
}

TEST(DUNX4x4Matrix, TransformsPointsVectorsAndDirections) {
    const float elements[16] = {0, 1, 0, 0, -2, 0, 0, 0, 0, 0, 3, 0, 10, 20, 30, 1};
    const DUNX4x4Matrix m(elements);
    DUNXPointf p(1, 2, 3);
    m.multiply(p);
    EXPECT_TRUE(p.x == 6 && p.y == 21 && p.z == 39);
    DUNXVectorf v(1, 2, 3);
    m.multiply(v);
    expectVector(v, -4, 1, 9);
    DUNXDirectionf d(0, 1, 0);
    m.multiply(d);
    EXPECT_TRUE(d.x() == -1 && d.y() == 0 && d.z() == 0);
    expectVector(m.GetTranslation(), 10, 20, 30);
    float out[16];
    m.GetMatrix(out);
    EXPECT_TRUE(out[4] == -2 && out[14] == 30);

    std::vector<DUNXPointf> points(40, DUNXPointf(1, 2, 3));
    long allocations = 0;
    {
        dunx::test::AllocationCounter counter;
        m.multiply(points.data(), static_cast<int>(points.size()));
        allocations = counter.count();
    }
    EXPECT_EQ(allocations, 0);
    EXPECT_TRUE(points[39].x == 6 && points[39].y == 21 && points[39].z == 39);
}

TEST(DUNX4x4Matrix, ConstructorsAndComponents) {
    DUNXVectorf x, y, z;
    DUNXPointf origin;
    DUNX4x4Matrix(DUNXVectorf(1, 2, 3), DUNXVectorf(4, 5, 6), DUNXVectorf(7, 8, 9),
                  DUNXVectorf(-1, -2, -3))
        .GetComponents(x, y, z, origin);
    expectVector(y, 4, 5, 6);
    EXPECT_TRUE(origin.x == -1 && origin.z == -3);
    DUNX4x4Matrix(DUNXVectorf(1, 0, 0), DUNXVectorf(0, 1, 0), DUNXPointf(5, 6, 7), 2)
        .GetComponents(x, y, z, origin);
    expectVector(x, 2, 0, 0);
    expectVector(z, 0, 0, 2);
    EXPECT_TRUE(origin.x == 5 && origin.y == 6);
    const float rows[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    const DUNX4x4Matrix fromRows(rows, DUNXVectorf(1, 1, 1));
    EXPECT_TRUE(fromRows.GetElement(0, 1) == 2 && fromRows.GetElement(2, 0) == 7 &&
                fromRows.GetElement(3, 3) == 1 && fromRows.GetElement(1, 3) == 1);
    DUNX4x4Matrix m;
    m.SetComponents(DUNXVectorf(0, 1, 0), DUNXVectorf(-1, 0, 0), DUNXVectorf(0, 0, 1),
                    DUNXPointf(1, 2, 3));
    m.SetTranslation(DUNXVectorf(4, 5, 6));
    expectVector(m.GetTranslation(), 4, 5, 6);
    EXPECT_EQ(m.GetElement(1, 0), 1.0f);
    DUNXPointf p(1, 0, 0);
    m.multiply(p);
    EXPECT_TRUE(p.x == 4 && p.y == 6 && p.z == 6);

    // A rotation about a line keeps the line's points where they are.
    const DUNX4x4Matrix about(DUNXVectorf(0, 0, 1), DUNXPointf(1, 1, 0), kHalfPi);
    DUNXPointf onAxis(1, 1, 5), off(2, 1, 0);
    about.multiply(onAxis);
    about.multiply(off);
    EXPECT_NEAR(onAxis.x, 1, 1e-6f);
    EXPECT_NEAR(onAxis.y, 1, 1e-6f);
    EXPECT_NEAR(onAxis.z, 5, 1e-6f);
    EXPECT_NEAR(off.x, 1, 1e-6f);
    EXPECT_NEAR(off.y, 2, 1e-6f);
    DUNXPointf q(0, 1, 0);
    DUNX4x4Matrix(DUNXVectorf(1, 0, 0), kHalfPi).multiply(q);
    EXPECT_NEAR(q.z, 1, 1e-6f);
}

TEST(DUNX4x4Matrix, RandomMotionsComposeInOrderAndInvert) {
    dunx::test::RandomMotion random(31);
    for (int trial = 0; trial < 25; ++trial) {
        SCOPED_TRACE(trial);
        const DUNX4x4Matrix a = randomRigid(random, static_cast<float>(random.uniform(0.5, 2))),
                            b = randomRigid(random, 1);
        const DUNXPointf p(static_cast<float>(random.uniform(-3, 3)), 1.5f,
                           static_cast<float>(random.uniform(-3, 3)));
        DUNXPointf once(p), twice(p);
        (a * b).multiply(once);
        b.multiply(twice);
        a.multiply(twice);
        EXPECT_NEAR(once.DistanceTo(twice), 0, 1e-4f);
        DUNX4x4Matrix product;
        product.multiply(a, b);
        EXPECT_TRUE(product == a * b);
        DUNX4x4Matrix inverse;
        ASSERT_TRUE(a.GetInvertedMatrix(inverse));
        DUNXPointf back(p);
        a.multiply(back);
        inverse.multiply(back);
        EXPECT_NEAR(back.DistanceTo(p), 0, 1e-4f);
        EXPECT_NEAR(inverse.GetDeterminant() * a.GetDeterminant(), 1, 1e-5f);
        // b is a rotation: lengths stay, scaling is exactly 1.
        DUNXVectorf v(1, 2, 2);
        b.multiply(v);
        EXPECT_NEAR(v.Norm(), 3, 1e-5f);
        EXPECT_EQ(b.GetScaling(), 1.0f);
        // For a rotation the inverse transpose is the matrix itself.
        float normal[3];
        b.ComputeInverseTransposeThirdColumnNormalized(normal);
        EXPECT_NEAR(normal[0], b.GetElement(0, 2), 1e-5f);
        EXPECT_NEAR(normal[2], b.GetElement(2, 2), 1e-5f);
    }
    DUNX4x4Matrix singular, untouched(DUNXVectorf(1, 0, 0), 1.0f);
    singular.SetElement(2, 2, 0);
    const DUNX4x4Matrix before(untouched);
    EXPECT_FALSE(singular.GetInvertedMatrix(untouched));
    EXPECT_TRUE(untouched == before);
}

TEST(DUNX4x4Matrix, InverseTransposeThirdColumnIsTheTransformedNormal) {
    struct Row {
        float columns[9];
        float expected[3];
    };
    for (const Row& row : {
             Row{{2, 0, 0, 0, 1, 0, 0, 0, 5}, {0, 0, 1}}, // non-uniform scale
             Row{{1, 0, 0, 1, 1, 0, 0, 0, 1}, {0, 0, 1}}, // shear in the plane
             Row{{1, 0, 0, 0, 1, 1, 0, 0, 1}, {0, -0.70710677f, 0.70710677f}},
             Row{{-1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 1}}, // mirror: the sign of det turns it back
             Row{{0, 0, 0, 0, 0, 0, 0, 0, 1}, {1, 0, 0}},  // degenerate: the x axis
         }) {
        float elements[16] = {};
        for (int c = 0; c < 3; ++c)
            for (int r = 0; r < 3; ++r)
                elements[4 * c + r] = row.columns[3 * c + r];
        elements[15] = 1;
        float normal[3];
        DUNX4x4Matrix(elements).ComputeInverseTransposeThirdColumnNormalized(normal);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(normal[i], row.expected[i], 1e-6f) << row.columns[4] << ' ' << i;
    }
}

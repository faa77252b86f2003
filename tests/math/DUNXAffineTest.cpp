#include <dunx/DUNXAffine.h>
#include <dunx/DUNXPoint.h>

#include "RandomMotion.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

DUNXAffine3D affine3(const double (&rows)[3][3]) {
    DUNXAffine3D a;
    for (int r = 0; r < 3; ++r)
        a.SetRow(r, rows[r]);
    return a;
}

void expectElements(const DUNXAffine& a, const double (&expected)[3][3], int n,
                    double tolerance = 0.0) {
    for (int r = 0; r < n; ++r)
        for (int c = 0; c < n; ++c)
            EXPECT_NEAR(a.GetElement(r, c), expected[r][c], tolerance) << r << ',' << c;
}

} // namespace

TEST(DUNXAffine, DefaultIsTheZeroMapAndIdentityIsAskedFor) {
    DUNXAffine3D a;
    DUNXAffine2D b;
    expectElements(a, {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}, 3);
    EXPECT_EQ(a.IsIdentity(), 0);
    EXPECT_EQ(a.Determinant(), 0.0);
    a.MakeIdentity();
    b.MakeIdentity();
    expectElements(a, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, 3);
    EXPECT_EQ(a.IsIdentity(), 1);
    EXPECT_EQ(b.IsIdentity(), 1);
    EXPECT_EQ(b.GetDimension(), 2);
    EXPECT_EQ(b.GetElement(2, 2), 0.0) << "a plane map leaves the third row and column alone";
}

TEST(DUNXAffine, IdentityTestChecksDiagonalAndRowSumsOnly) {
    struct Row {
        double rows[3][3];
        int expected;
    };
    const double fuzz = 1e-10;
    for (const Row& row : {
             Row{{{1, 0.5, -0.5}, {0, 1, 0}, {0, 0, 1}}, 1}, // lenient on purpose
             Row{{{1, 0, 0}, {0.3, 1, -0.3}, {2, -2, 1}}, 1},
             Row{{{1 + fuzz / 2, 0, 0}, {0, 1, 0}, {0, 0, 1}}, 1},
             Row{{{1 + 3 * fuzz, 0, 0}, {0, 1, 0}, {0, 0, 1}}, 0},
             Row{{{1, 0.5, 0}, {0, 1, 0}, {0, 0, 1}}, 0},   // row sum 1.5
             Row{{{0, 0.5, 0.5}, {0, 1, 0}, {0, 0, 1}}, 0}, // sum 1, diagonal 0
             Row{{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}, 0},
         }) {
        SCOPED_TRACE(row.rows[0][1]);
        EXPECT_EQ(affine3(row.rows).IsIdentity(), row.expected);
    }
}

TEST(DUNXAffine, DeterminantAndInverseByCofactors) {
    const DUNXAffine3D a = affine3({{1, 1, 0}, {0, 1, 1}, {1, 0, 1}});
    EXPECT_EQ(a.Determinant(), 2.0); // 1·(1−0) − 1·(0−1) + 0
    EXPECT_EQ(a.DeterminantOfCofactor(0, 0), 1.0);
    EXPECT_EQ(a.DeterminantOfCofactor(0, 1), 1.0); // −(0·1 − 1·1)
    EXPECT_EQ(a.DeterminantOfCofactor(1, 2), 1.0); // −(1·0 − 1·1)
    EXPECT_EQ(a.DeterminantOfCofactor(2, 1), -1.0);
    DUNXAffine3D inverse;
    a.GetInverse(inverse);
    expectElements(inverse, {{0.5, -0.5, 0.5}, {0.5, 0.5, -0.5}, {-0.5, 0.5, 0.5}}, 3);
    DUNXAffine3D product;
    a.Multiply(inverse, product);
    EXPECT_EQ(product.IsIdentity(), 1);

    DUNXAffine2D b;
    const double r0[] = {4, 7}, r1[] = {2, 6};
    b.SetRow(0, r0);
    b.SetRow(1, r1);
    EXPECT_EQ(b.Determinant(), 10.0);
    DUNXAffine2D bInverse;
    b.GetInverse(bInverse);
    expectElements(bInverse, {{0.6, -0.7, 0}, {-0.2, 0.4, 0}, {0, 0, 0}}, 2, 1e-15);

    DUNXAffine3D singular = affine3({{1, 2, 3}, {2, 4, 6}, {0, 0, 1}});
    singular.GetInverse(inverse);
    EXPECT_FALSE(std::isfinite(inverse.GetElement(0, 0))) << "a singular map is not refused";
    singular.GetInverse(singular); // in place
    EXPECT_FALSE(std::isfinite(singular.GetElement(1, 1)));
}

TEST(DUNXAffine, RandomMapsInvertAndComposeInMatrixOrder) {
    dunx::test::RandomMotion random(3);
    for (int trial = 0; trial < 25; ++trial) {
        double m[9], n[9], p[3];
        for (double& v : m)
            v = random.uniform(-2, 2);
        for (double& v : n)
            v = random.uniform(-2, 2);
        random.vector(p, 3);
        DUNXAffine3D a, b, ab, inverse, check;
        for (int r = 0; r < 3; ++r) {
            a.SetRow(r, m + 3 * r);
            b.SetRow(r, n + 3 * r);
        }
        a.Multiply(b, ab);
        // (a × b)·p must equal a·(b·p).
        DUNXPoint3D viaProduct(p), stepwise(p);
        viaProduct.Transform(ab);
        stepwise.Transform(b);
        stepwise.Transform(a);
        EXPECT_TRUE(viaProduct.IsWithinTolerance(stepwise, 1e-12));
        EXPECT_NEAR(ab.Determinant(), a.Determinant() * b.Determinant(), 1e-11);
        // inverse undoes forward
        a.GetInverse(inverse);
        DUNXPoint3D there(p);
        there.Transform(a);
        there.Transform(inverse);
        EXPECT_TRUE(there.IsWithinTolerance(DUNXPoint3D(p), 1e-9 / std::fabs(a.Determinant())));
        // transpose: (aᵀ)(i, j) = a(j, i), twice gives a back
        a.GetTranspose(check);
        EXPECT_EQ(check.GetElement(0, 2), a.GetElement(2, 0));
        check.Transpose();
        EXPECT_TRUE(check == a);
    }
}

TEST(DUNXAffine, RowsColumnsScalingAndCopies) {
    DUNXAffine3D a = affine3({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    double row[3], column[3];
    a.GetRow(1, row);
    a.GetColumn(2, column);
    EXPECT_TRUE(row[0] == 4 && row[1] == 5 && row[2] == 6);
    EXPECT_TRUE(column[0] == 3 && column[1] == 6 && column[2] == 9);
    const double newColumn[] = {-1, -2, -3};
    a.SetColumn(0, newColumn);
    a.SetColumn(1, DUNXPoint3D(10, 20, 30));
    a.SetElement(2, 2, 0.5);
    expectElements(a, {{-1, 10, 3}, {-2, 20, 6}, {-3, 30, 0.5}}, 3);
    a.Multiply(2.0);
    a.Divide(4.0);
    expectElements(a, {{-0.5, 5, 1.5}, {-1, 10, 3}, {-1.5, 15, 0.25}}, 3);
    DUNXAffine3D copy(a), assigned;
    assigned = a;
    EXPECT_TRUE(copy == a && assigned == a);
    assigned.SetElement(0, 0, 7);
    EXPECT_FALSE(assigned == a);
    DUNXAffine3D setTo;
    setTo.SetTo(a);
    EXPECT_TRUE(setTo == a);
    a.Divide(0.0);
    EXPECT_TRUE(std::isinf(a.GetElement(0, 1))) << "no guard on a zero divisor";

    DUNXAffine2D b;
    b.SetColumn(1, DUNXPoint2D(3, 4));
    b.SetElement(0, 0, 1);
    DUNXAffine2D c(b);
    EXPECT_TRUE(c == b);
    EXPECT_FALSE(DUNXAffine(2) == DUNXAffine(3)) << "dimensions differ";
    DUNXPoint2D p(1, 1);
    p.Transform(c);
    EXPECT_TRUE(p[0] == 4 && p[1] == 4);
}

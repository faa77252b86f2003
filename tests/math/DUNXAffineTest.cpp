#include <dunx/DUNXAffine.h>
#include <dunx/DUNXPoint.h>

#include "MathTestSupport.h"

using namespace dunx::test;

namespace {

// The used block, row by row.
Values elements(const DUNXAffine& a) {
    Values v;
    for (int r = 0; r < a.GetDimension(); ++r)
        for (int c = 0; c < a.GetDimension(); ++c)
            v.push_back(a.GetElement(r, c));
    return v;
}

DUNXAffine3D fromRows(Values rowMajor) {
    DUNXAffine3D a;
    for (int r = 0; r < 3; ++r)
        a.SetRow(r, rowMajor.data() + 3 * r);
    return a;
}

} // namespace

TEST(DUNXAffine, DefaultIsTheZeroMapAndTheIdentityTestIsLenient) {
    DUNXAffine3D a;
    DUNXAffine2D b;
    EXPECT_EQ(elements(a), Values(9, 0.0));
    EXPECT_EQ(a.IsIdentity(), 0);
    EXPECT_EQ(a.Determinant(), 0.0);
    a.MakeIdentity();
    b.MakeIdentity();
    EXPECT_EQ(join(elements(a), elements(b)), Values({1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1}));
    EXPECT_EQ(a.IsIdentity() + b.IsIdentity(), 2);
    EXPECT_EQ(b.GetElement(2, 2), 0.0) << "a plane map leaves the third row and column alone";
    struct Row {
        const char* what;
        Values rows;
        int expected;
    };
    const double fuzz = 1e-10;
    for (const Row& row : {Row{"shear with row sum 1", {1, 0.5, -0.5, 0, 1, 0, 0, 0, 1}, 1},
                           Row{"lower rows too", {1, 0, 0, 0.3, 1, -0.3, 2, -2, 1}, 1},
                           Row{"within FuzzReal", {1 + fuzz / 2, 0, 0, 0, 1, 0, 0, 0, 1}, 1},
                           Row{"past FuzzReal", {1 + 3 * fuzz, 0, 0, 0, 1, 0, 0, 0, 1}, 0},
                           Row{"row sum 1.5", {1, 0.5, 0, 0, 1, 0, 0, 0, 1}, 0},
                           Row{"row sum 1, diagonal 0", {0, 0.5, 0.5, 0, 1, 0, 0, 0, 1}, 0},
                           Row{"mirror", {1, 0, 0, 0, 1, 0, 0, 0, -1}, 0}}) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(fromRows(row.rows).IsIdentity(), row.expected);
    }
}

TEST(DUNXAffine, DeterminantAndInverseByCofactors) {
    const DUNXAffine3D a = fromRows({1, 1, 0, 0, 1, 1, 1, 0, 1});
    DUNXAffine3D inverse, product, singular = fromRows({1, 2, 3, 2, 4, 6, 0, 0, 1}),
                                   singularInverse;
    a.GetInverse(inverse);
    a.Multiply(inverse, product);
    DUNXAffine2D b, bInverse;
    const double r0[] = {4, 7}, r1[] = {2, 6};
    b.SetRow(0, r0);
    b.SetRow(1, r1);
    b.GetInverse(bInverse);
    // 1·(1−0) − 1·(0−1) + 0; the cofactors (0,0), −(0·1 − 1·1), −(1·0 − 1·1), −(1·1 − 0·0)
    expectCases(CASE(a.Determinant(), 2),
                CASE(join(a.DeterminantOfCofactor(0, 0), a.DeterminantOfCofactor(0, 1),
                          a.DeterminantOfCofactor(1, 2), a.DeterminantOfCofactor(2, 1)),
                     1, 1, 1, -1),
                CASE(elements(inverse), 0.5, -0.5, 0.5, 0.5, 0.5, -0.5, -0.5, 0.5, 0.5),
                CASE(elements(product), 1, 0, 0, 0, 1, 0, 0, 0, 1), CASE(b.Determinant(), 10));
    EXPECT_TRUE(near(elements(bInverse), {0.6, -0.7, -0.2, 0.4}, 1e-15));
    singular.GetInverse(singularInverse);
    EXPECT_FALSE(std::isfinite(singularInverse.GetElement(0, 0)))
        << "a singular map is not refused";
    singular.GetInverse(singular); // in place
    EXPECT_FALSE(std::isfinite(singular.GetElement(1, 1)));
}

TEST(DUNXAffine, ComposesInMatrixOrderAppliesAndTransposes) {
    const DUNXAffine3D a = fromRows({1, 2, 0, 0, 1, 3, 4, 0, 1}),
                       b = fromRows({0, -1, 0, 1, 0, 0, 0, 0, 2});
    DUNXAffine3D ab, ba, transposed;
    a.Multiply(b, ab);
    b.Multiply(a, ba);
    a.GetTranspose(transposed);
    DUNXPoint3D viaProduct(1, 2, 3), stepwise(1, 2, 3); // (a × b)·p = a·(b·p)
    viaProduct.Transform(ab);
    stepwise.Transform(b);
    stepwise.Transform(a);
    double packed[6] = {1, 2, 3, -1, 0, 2}; // the bulk path: A·p for each
    a.Apply(packed, 2);
    expectCases(CASE(elements(ab), 2, -1, 0, 1, 0, 6, 0, -4, 2),
                CASE(elements(ba), 0, -1, -3, 1, 2, 0, 8, 0, 2), CASE(viaProduct, 0, 19, -2),
                CASE(stepwise, 0, 19, -2), CASE(packed, 5, 11, 7, -1, 6, -2),
                CASE(join(a.Determinant(), b.Determinant(), ab.Determinant()), 25, 2, 50),
                CASE(elements(transposed), 1, 0, 4, 2, 1, 0, 0, 3, 1));
    transposed.Transpose(); // twice gives a back
    EXPECT_TRUE(transposed == a);
}

TEST(DUNXAffine, RowsColumnsScalingAndCopies) {
    DUNXAffine3D a = fromRows({1, 2, 3, 4, 5, 6, 7, 8, 9}), copy, assigned, setTo;
    double row[3], column[3];
    const double newColumn[] = {-1, -2, -3};
    a.GetRow(1, row);
    a.GetColumn(2, column);
    EXPECT_EQ(Values(row, row + 3), Values({4, 5, 6}));
    EXPECT_EQ(Values(column, column + 3), Values({3, 6, 9}));
    a.SetColumn(0, newColumn);
    a.SetColumn(1, DUNXPoint3D(10, 20, 30));
    a.SetElement(2, 2, 0.5);
    EXPECT_EQ(elements(a), Values({-1, 10, 3, -2, 20, 6, -3, 30, 0.5}));
    a.Multiply(2.0);
    a.Divide(4.0);
    EXPECT_EQ(elements(a), Values({-0.5, 5, 1.5, -1, 10, 3, -1.5, 15, 0.25}));
    copy = DUNXAffine3D(a);
    assigned = a;
    setTo.SetTo(a);
    EXPECT_TRUE(copy == a && assigned == a && setTo == a);
    assigned.SetElement(0, 0, 7);
    EXPECT_FALSE(assigned == a);
    a.Divide(0.0);
    EXPECT_TRUE(std::isinf(a.GetElement(0, 1))) << "no guard on a zero divisor";
    DUNXAffine2D b;
    b.SetColumn(1, DUNXPoint2D(3, 4));
    b.SetElement(0, 0, 1);
    const DUNXAffine2D c(b);
    EXPECT_TRUE(c == b);
    EXPECT_FALSE(DUNXAffine(2) == DUNXAffine(3)) << "dimensions differ";
    DUNXPoint2D p(1, 1);
    p.Transform(c);
    EXPECT_EQ(values(p), Values({4, 4}));
}

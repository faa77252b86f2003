#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXPoint.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/Gk_ErrMgr.h>

#include "support/EventRecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace {

void expectPoint(const DUNXPoint& p, std::vector<double> expected, double tolerance = 0.0) {
    ASSERT_EQ(p.GetDimension(), static_cast<int>(expected.size()));
    for (int i = 0; i < p.GetDimension(); ++i)
        EXPECT_NEAR(p[i], expected[static_cast<size_t>(i)], tolerance) << "coordinate " << i;
}

std::string dumped(const DUNXPoint& p) {
    DUNXStringOutputStream stream;
    DUNXStreamFormatter out(&stream);
    out << p;
    return stream.GetText();
}

} // namespace

TEST(DUNXPoint, ClampsIndicesInsteadOfRejectingThem) {
    struct Row {
        int index;
        double expected2D;
        double expected3D;
    };
    DUNXPoint2D p2(7, 8);
    DUNXPoint3D p3(1, 2, 3);
    for (const Row& row : {Row{-1, 7, 1}, Row{-100, 7, 1}, Row{0, 7, 1}, Row{1, 8, 2}, Row{2, 8, 3},
                           Row{3, 8, 3}, Row{5, 8, 3}}) {
        SCOPED_TRACE(row.index);
        EXPECT_EQ(p2[row.index], row.expected2D);
        EXPECT_EQ(p3[row.index], row.expected3D);
    }
    p3[9] = 30; // writes through the same clamping
    p3[-4] = 10;
    expectPoint(p3, {10, 2, 30});
    DUNXPoint one(1);
    one[3] = 4;
    EXPECT_EQ(one[-1], 4);
    EXPECT_EQ(one.Length(), 4);
}

TEST(DUNXPoint, ArithmeticInPlaceAndByOperators) {
    struct Row {
        const char* what;
        std::function<DUNXPoint3D()> compute;
        std::vector<double> expected;
    };
    const DUNXPoint3D a(1, 2, 3), b(4, -5, 6);
    const std::vector<Row> rows = {
        {"a + b", [&] { return a + b; }, {5, -3, 9}},
        {"a - b", [&] { return a - b; }, {-3, 7, -3}},
        {"-a", [&] { return -a; }, {-1, -2, -3}},
        {"a * 2", [&] { return a * 2.0; }, {2, 4, 6}},
        {"0.5 * b", [&] { return 0.5 * b; }, {2, -2.5, 3}},
        {"b / 2", [&] { return b / 2.0; }, {2, -2.5, 3}},
        {"b / 0 is b", [&] { return b / 0.0; }, {4, -5, 6}},
        {"+=",
         [&] {
             DUNXPoint3D p(a);
             p += b;
             return p;
         },
         {5, -3, 9}},
        {"-=",
         [&] {
             DUNXPoint3D p(a);
             p -= b;
             return p;
         },
         {-3, 7, -3}},
        {"*=",
         [&] {
             DUNXPoint3D p(a);
             p *= -3.0;
             return p;
         },
         {-3, -6, -9}},
        {"/=",
         [&] {
             DUNXPoint3D p(b);
             p /= 4.0;
             return p;
         },
         {1, -1.25, 1.5}},
        {"/= 0",
         [&] {
             DUNXPoint3D p(b);
             p /= 0.0;
             return p;
         },
         {4, -5, 6}},
        {"Divide(0)",
         [&] {
             DUNXPoint3D p(b);
             p.Divide(0.0);
             return p;
         },
         {4, -5, 6}},
        {"Negate",
         [&] {
             DUNXPoint3D p(b);
             p.Negate();
             return p;
         },
         {-4, 5, -6}},
        {"Shift",
         [&] {
             DUNXPoint3D p(a);
             p.Shift(b);
             return p;
         },
         {5, -3, 9}},
        {"a x b", [&] { return DUNXPoint3D::VectorProduct(a, b); }, {27, 6, -13}},
        {"b x a", [&] { return DUNXPoint3D::VectorProduct(b, a); }, {-27, -6, 13}},
        {"Copy", [&] { return a.Copy(); }, {1, 2, 3}},
        {"from doubles",
         [] {
             const double xyz[] = {9, 8, 7};
             return DUNXPoint3D(xyz);
         },
         {9, 8, 7}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        expectPoint(row.compute(), row.expected);
    }
    EXPECT_EQ(a * b, 12.0);
    EXPECT_EQ(DUNXPoint3D(2, 3, 6).Length(), 7.0);
    EXPECT_EQ(a.DistanceTo(DUNXPoint3D(3, 5, 9)), 7.0);
    double out[3] = {};
    DUNXGetDoublesFromDUNXPoint3D(b, out);
    EXPECT_TRUE(out[0] == 4 && out[1] == -5 && out[2] == 6);

    const DUNXPoint2D c(3, -4), d(1, 2);
    expectPoint(c + d, {4, -2});
    expectPoint(c - d, {2, -6});
    expectPoint(-c, {-3, 4});
    expectPoint(c * 2.0, {6, -8});
    expectPoint(2.0 * c, {6, -8});
    expectPoint(c / 0.0, {3, -4});
    expectPoint(c / 2.0, {1.5, -2});
    EXPECT_EQ(c * d, -5.0);
    EXPECT_EQ(c.Length(), 5.0);
    EXPECT_EQ(c.DistanceTo(d), std::sqrt(40.0));
    DUNXPoint2D e(c);
    e += d;
    e -= DUNXPoint2D(0, 1);
    e *= 2.0;
    e /= 0.0;
    e /= 4.0;
    e.Shift(DUNXPoint2D(1, 1));
    expectPoint(e, {3, -0.5});
}

TEST(DUNXPoint, AssignmentCopiesCoordinatesButNotDimensionOrCount) {
    DUNXPoint3D* shared = new DUNXPoint3D(1, 2, 3);
    DUNXPoint3DHandle holder(shared);
    DUNXPoint3D copy(*shared);
    EXPECT_EQ(shared->GetReferenceCount(), 1u);
    EXPECT_EQ(copy.GetReferenceCount(), 0u);
    DUNXPoint2D flat(5, 6);
    static_cast<DUNXPoint&>(flat) = *shared;
    EXPECT_EQ(flat.GetDimension(), 2);
    EXPECT_EQ(flat.Length(), std::sqrt(5.0));
    EXPECT_EQ(shared->GetName(), nullptr);
}

TEST(DUNXPoint, NormalizeLeavesTheZeroVectorAlone) {
    expectPoint(DUNXPoint3D(0, 0, 0).Normalize(), {0, 0, 0});
    expectPoint(DUNXPoint2D(0, 0).Normalize(), {0, 0});
    expectPoint(DUNXPoint3D(2, -3, 6).Normalize(), {2.0 / 7, -3.0 / 7, 6.0 / 7}, 1e-15);
    expectPoint(DUNXPoint2D(-3, 4).Normalize(), {-0.6, 0.8}, 1e-15);
    expectPoint(DUNXPoint3D(1e-300, 0, 0).Normalize(),
                {1e-300, 0, 0}); // no tolerance: 1e-300² is 0
}

TEST(DUNXPoint, OrthogonalizeOrdersCoordinatesOnlyPartly) {
    struct Row {
        DUNXPoint3D input;
        std::vector<double> expected;
    };
    const double s5 = std::sqrt(5.0), s13 = std::sqrt(13.0);
    for (const Row& row : {
             Row{{0, 0, 1}, {1, 0, 0}}, Row{{1, 2, 3}, {2 / s5, -1 / s5, 0}},
             // Not fully sorted after the two swaps: position 2 keeps the 2.
             Row{{1, 3, 2}, {2 / s5, 0, -1 / s5}}, Row{{3, 1, 2}, {0, -2 / s5, 1 / s5}},
             Row{{-1, -2, -3}, {0, -3 / s13, 2 / s13}},
             Row{{1e-11, 0, 0}, {0, 1, 0}}, // shorter than FuzzReal: a unit axis
         }) {
        SCOPED_TRACE(testing::PrintToString(row.expected));
        const DUNXPoint3D r = row.input.Orthogonalize();
        expectPoint(r, row.expected, 1e-15);
        EXPECT_NEAR(r.Length(), 1.0, 1e-15);
    }
    // The zero test keeps t[2] = -0: the result of (0, 0, 1) is (1, -0, 0).
    EXPECT_TRUE(std::signbit(DUNXPoint3D(0, 0, 1).Orthogonalize()[1]));

    struct Row2 {
        DUNXPoint2D input;
        std::vector<double> expected;
    };
    const double s10 = std::sqrt(10.0);
    for (const Row2& row :
         {Row2{{3, 1}, {1 / s10, -3 / s10}}, Row2{{1, 3}, {-3 / s10, 1 / s10}},
          Row2{{0, 0}, {1, 0}}, Row2{{-2, -2}, {-1 / std::sqrt(2.0), 1 / std::sqrt(2.0)}}}) {
        SCOPED_TRACE(testing::PrintToString(row.expected));
        expectPoint(row.input.Orthogonalize(), row.expected, 1e-15);
    }
    EXPECT_TRUE(std::signbit(DUNXPoint2D(0, 0).Orthogonalize()[1]));

    // Property: always a unit vector perpendicular to the input.
    for (double x : {-2.0, 0.0, 0.5, 3.0})
        for (double y : {-1.0, 0.0, 4.0})
            for (double z : {-3.0, 0.0, 2.0}) {
                const DUNXPoint3D v(x, y, z), r = v.Orthogonalize();
                EXPECT_NEAR(v * r, 0.0, 1e-14) << x << ' ' << y << ' ' << z;
                EXPECT_NEAR(r.Length(), 1.0, 1e-15);
            }
}

TEST(DUNXPoint, ToleranceIsTakenAsItsAbsoluteValueAndInclusive) {
    struct Row {
        DUNXPoint3D other;
        double tolerance;
        bool expected;
    };
    const DUNXPoint3D p(1, 2, 3);
    for (const Row& row : {Row{{1.25, 2, 3}, 0.25, true}, Row{{1.25, 2, 3}, -0.25, true},
                           Row{{1, 2, 3.5}, 0.25, false}, Row{{1, 2, 3}, 0.0, true},
                           Row{{1.05, 1.95, 3.05}, -0.1, true}, Row{{1, 2.2, 3}, -0.1, false}}) {
        SCOPED_TRACE(row.tolerance);
        EXPECT_EQ(p.IsWithinTolerance(row.other, row.tolerance), row.expected);
    }
    EXPECT_TRUE(p.IsWithinTolerance(DUNXPoint3D(1.5, 2, 2.75), DUNXPoint3D(-0.5, 0, 0.25)));
    EXPECT_FALSE(p.IsWithinTolerance(DUNXPoint3D(1.5, 2, 2.75), DUNXPoint3D(0.25, 0, 0.5)));
}

TEST(DUNXPoint, TwoPointOperationsPollTheAbortFlagFirst) {
    struct Row {
        const char* what;
        std::function<void(DUNXPoint3D&, DUNXPoint3D&)> call;
    };
    const std::vector<Row> rows = {
        {"DistanceTo", [](DUNXPoint3D& a, DUNXPoint3D& b) { a.DistanceTo(b); }},
        {"CopyIn", [](DUNXPoint3D& a, DUNXPoint3D& b) { a.CopyIn(b); }},
        {"Add", [](DUNXPoint3D& a, DUNXPoint3D& b) { a.Add(b); }},
        {"Substract", [](DUNXPoint3D& a, DUNXPoint3D& b) { a.Substract(b); }},
        {"IsWithinTolerance", [](DUNXPoint3D& a, DUNXPoint3D& b) { a.IsWithinTolerance(b, 1.0); }},
        {"IsWithinTolerance(point)",
         [](DUNXPoint3D& a, DUNXPoint3D& b) { a.IsWithinTolerance(b, b); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        DUNXPoint3D a(1, 2, 3), b(4, 5, 6);
        Gk_ErrMgr::setAbort(true);
        EXPECT_THROW(row.call(a, b), DUNXAbortException);
        Gk_ErrMgr::setAbort(false);
        expectPoint(a, {1, 2, 3});
        expectPoint(b, {4, 5, 6});
        EXPECT_NO_THROW(row.call(a, b));
    }
}

TEST(DUNXPoint, MismatchedDimensionsGoOnWithThisDimension) {
    dunx::test::EventRecorder recorder;
    DUNXPoint2D flat(1, 2);
    flat.Add(DUNXPoint3D(10, 20, 30));
    expectPoint(flat, {11, 22});
    DUNXPoint3D solid(1, 2, 3);
    solid.Substract(DUNXPoint2D(1, 1)); // index 2 of the plane point clamps to its y
    expectPoint(solid, {0, 1, 2});
    DUNXPoint3D target(7, 8, 9);
    flat.CopyIn(target);
    expectPoint(target, {11, 22, 9});
#ifndef NDEBUG
    ASSERT_EQ(recorder.entries().size(), 3u);
    EXPECT_NE(recorder.texts().find("DUNXBase/DUNXMath.m/src/DUNXPoint"), std::string::npos);
#else
    EXPECT_TRUE(recorder.entries().empty());
#endif
}

TEST(DUNXPoint, DumpsEachCoordinateFollowedByABlank) {
    EXPECT_EQ(dumped(DUNXPoint3D(1, -2.5, 3)), "1.000000 -2.500000 3.000000 ");
    EXPECT_EQ(dumped(DUNXPoint2D(0.25, 4)), "0.250000 4.000000 ");
}

TEST(DUNXPoint, HandlesShareOnePointAndCompareIdentity) {
    DUNXPoint3DHandle first(new DUNXPoint3D(1, 2, 3));
    DUNXPoint3DHandle same(first);
    DUNXPoint3DHandle twin(new DUNXPoint3D(1, 2, 3));
    EXPECT_EQ(first->GetReferenceCount(), 2u);
    EXPECT_TRUE(first == same);
    EXPECT_FALSE(first == twin) << "equal coordinates, different points";
    EXPECT_NE(first < twin, twin < first);
    same->Shift(DUNXPoint3D(1, 1, 1));
    const DUNXPoint3D* raw = first;
    expectPoint(*raw, {2, 3, 4});
    same = twin;
    EXPECT_EQ(first->GetReferenceCount(), 1u);
    EXPECT_EQ(twin->GetReferenceCount(), 2u);

    DUNXPointHandle general(new DUNXPoint2D(5, 6));
    DUNXPoint2DHandle plane(new DUNXPoint2D(7, 8));
    EXPECT_EQ((*general)[1], 6);
    EXPECT_EQ(static_cast<DUNXPoint2D*>(plane)->Length(), std::sqrt(113.0));
    EXPECT_FALSE(DUNXPointHandle().IsValid());
}

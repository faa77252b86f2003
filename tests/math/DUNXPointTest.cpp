#include <dunx/DUNXPoint.h>
#include <dunx/Gk_ErrMgr.h>

#include "MathTestSupport.h"
#include "support/EventRecorder.h"

using namespace dunx::test;
using P2 = DUNXPoint2D;
using P3 = DUNXPoint3D;

TEST(DUNXPoint, ClampsIndicesInsteadOfRejectingThem) {
    const P2 p2(7, 8);
    const P3 p3(1, 2, 3);
    P3 written(1, 2, 3);
    written[9] = 30, written[-4] = 10; // writes clamp the same way
    DUNXPoint one(1);
    one[3] = 4;
    expectCases(CASE(join(p2[-100], p2[-1], p2[0], p2[1], p2[2], p2[5]), 7, 7, 7, 8, 8, 8),
                CASE(join(p3[-100], p3[-1], p3[0], p3[1], p3[2], p3[5]), 1, 1, 1, 2, 3, 3),
                CASE(written, 10, 2, 30), CASE(join(one[-1], one.Length()), 4, 4));
}

TEST(DUNXPoint, ArithmeticInPlaceAndByOperators) {
    const P3 a(1, 2, 3), b(4, -5, 6), far(3, 5, 9);
    const P2 c(3, -4), d(1, 2);
    const double xyz[] = {9, 8, 7};
    double out[3] = {};
    DUNXGetDoublesFromDUNXPoint3D(b, out);
    P3 changed(b);
    changed.Divide(0.0); // skipped
    changed.Negate();
    changed.Shift(a);
    P2 shifted(c);
    shifted.Shift(d);
    expectCases(
        CASE(a + b, 5, -3, 9), CASE(a - b, -3, 7, -3), CASE(-a, -1, -2, -3), CASE(a * 2.0, 2, 4, 6),
        CASE(0.5 * b, 2, -2.5, 3), CASE(b / 2.0, 2, -2.5, 3), CASE(b / 0.0, 4, -5, 6),
        CASE(P3(a) += b, 5, -3, 9), CASE(P3(a) -= b, -3, 7, -3), CASE(P3(a) *= -3.0, -3, -6, -9),
        CASE(P3(b) /= 4.0, 1, -1.25, 1.5), CASE(P3(b) /= 0.0, 4, -5, 6), CASE(changed, -3, 7, -3),
        CASE(P3::VectorProduct(a, b), 27, 6, -13), CASE(P3::VectorProduct(b, a), -27, -6, 13),
        CASE(a.Copy(), 1, 2, 3), CASE(P3(xyz), 9, 8, 7), CASE(out, 4, -5, 6), CASE(a * b, 12),
        CASE(P3(2, 3, 6).Length(), 7), CASE(a.DistanceTo(far), 7), CASE(c + d, 4, -2),
        CASE(c - d, 2, -6), CASE(-c, -3, 4), CASE(c * 2.0, 6, -8), CASE(2.0 * c, 6, -8),
        CASE(c / 2.0, 1.5, -2), CASE(c / 0.0, 3, -4), CASE(P2(c) += d, 4, -2),
        CASE(P2(c) -= d, 2, -6), CASE(P2(c) *= -1.0, -3, 4), CASE(P2(c) /= 2.0, 1.5, -2),
        CASE(P2(c) /= 0.0, 3, -4), CASE(shifted, 4, -2), CASE(c * d, -5), CASE(c.Length(), 5),
        CASE(c.DistanceTo(d), std::sqrt(40.0)));
}

TEST(DUNXPoint, CopiesStartUncountedAndAssignmentKeepsTheDimension) {
    DUNXPoint3DHandle holder(new P3(1, 2, 3));
    const P3 copy(*holder);
    P3 assigned;
    assigned = copy;
    P2 flat(5, 6);
    static_cast<DUNXPoint&>(flat) = *holder; // (1, 2, 3) into a plane point: (1, 2)
    EXPECT_EQ(holder->GetName(), nullptr);
    expectCases(CASE(holder->GetReferenceCount(), 1), CASE(copy.GetReferenceCount(), 0),
                CASE(copy, 1, 2, 3), CASE(assigned, 1, 2, 3),
                CASE(join(flat.GetDimension(), flat.Length()), 2, std::sqrt(5.0)));
}

TEST(DUNXPoint, NormalizeKeepsZeroAndOrthogonalizeOrdersOnlyPartly) {
    const double s5 = std::sqrt(5.0), s10 = std::sqrt(10.0), s13 = std::sqrt(13.0),
                 h = std::sqrt(0.5);
    expectNear(1e-15, CASE(P3().Normalize(), 0, 0, 0), CASE(P2().Normalize(), 0, 0),
               CASE(P3(1e-300, 0, 0).Normalize(), 1e-300, 0, 0), // no tolerance: its square is 0
               CASE(P3(2, -3, 6).Normalize(), 2.0 / 7, -3.0 / 7, 6.0 / 7),
               CASE(P2(-3, 4).Normalize(), -0.6, 0.8), CASE(P3(0, 0, 1).Orthogonalize(), 1, 0, 0),
               CASE(P3(1, 2, 3).Orthogonalize(), 2 / s5, -1 / s5, 0),
               // Not fully sorted after the two swaps: position 2 keeps the 2.
               CASE(P3(1, 3, 2).Orthogonalize(), 2 / s5, 0, -1 / s5),
               CASE(P3(3, 1, 2).Orthogonalize(), 0, -2 / s5, 1 / s5),
               CASE(P3(-1, -2, -3).Orthogonalize(), 0, -3 / s13, 2 / s13),
               CASE(P3(1e-11, 0, 0).Orthogonalize(), 0, 1, 0), // shorter than FuzzReal: an axis
               CASE(P2(3, 1).Orthogonalize(), 1 / s10, -3 / s10),
               CASE(P2(1, 3).Orthogonalize(), -3 / s10, 1 / s10),
               CASE(P2(0, 0).Orthogonalize(), 1, 0), CASE(P2(-2, -2).Orthogonalize(), -h, h));
    // The zero test keeps the negated 0: (0, 0, 1) gives (1, -0, 0), (0, 0) gives (1, -0).
    EXPECT_TRUE(std::signbit(P3(0, 0, 1).Orthogonalize()[1]));
    EXPECT_TRUE(std::signbit(P2(0, 0).Orthogonalize()[1]));
    for (double x : {-2.0, 0.0, 0.5, 3.0}) // always a unit vector perpendicular to the input
        for (double y : {-1.0, 0.0, 4.0})
            for (double z : {-3.0, 0.0, 2.0}) {
                const P3 v(x, y, z), r = v.Orthogonalize();
                EXPECT_TRUE(near(join(v * r, r.Length()), {0, 1}, 1e-14))
                    << x << ' ' << y << ' ' << z;
            }
}

TEST(DUNXPoint, ToleranceIsTakenAsItsAbsoluteValueAndInclusive) {
    const P3 p(1, 2, 3), q(1.25, 2, 3), r(1.5, 2, 2.75);
    expectCases(CASE(p.IsWithinTolerance(q, 0.25), true), CASE(p.IsWithinTolerance(q, -0.25), true),
                CASE(p.IsWithinTolerance(P3(1, 2, 3.5), 0.25), false),
                CASE(p.IsWithinTolerance(p, 0.0), true),
                CASE(p.IsWithinTolerance(P3(1.05, 1.95, 3.05), -0.1), true),
                CASE(p.IsWithinTolerance(P3(1, 2.2, 3), -0.1), false),
                CASE(p.IsWithinTolerance(r, P3(-0.5, 0, 0.25)), true),
                CASE(p.IsWithinTolerance(r, P3(0.25, 0, 0.5)), false));
}

TEST(DUNXPoint, TwoPointOperationsPollTheAbortFlagFirst) {
    P3 a(1, 2, 3), b(4, 5, 6);
    Gk_ErrMgr::setAbort(true);
    EXPECT_THROW(a.DistanceTo(b), DUNXAbortException);
    EXPECT_THROW(a.CopyIn(b), DUNXAbortException);
    EXPECT_THROW(a.Add(b), DUNXAbortException);
    EXPECT_THROW(a.Substract(b), DUNXAbortException);
    EXPECT_THROW(a.IsWithinTolerance(b, 1.0), DUNXAbortException);
    EXPECT_THROW(a.IsWithinTolerance(b, b), DUNXAbortException);
    Gk_ErrMgr::setAbort(false);
    EXPECT_EQ(join(a, b), Values({1, 2, 3, 4, 5, 6})) << "polled before anything changed";
    EXPECT_EQ(a.DistanceTo(b), std::sqrt(27.0)) << "the poll clears with the flag";
}

TEST(DUNXPoint, MismatchedDimensionsGoOnWithThisDimension) {
    EventRecorder recorder;
    P2 flat(1, 2);
    P3 solid(1, 2, 3), target(7, 8, 9);
    flat.Add(P3(10, 20, 30));
    solid.Substract(P2(1, 1)); // index 2 of the plane point clamps to its y
    flat.CopyIn(target);
    const bool close = P2(1, 2).IsWithinTolerance(P3(1, 2, 99), 0.0); // z is never looked at
    expectCases(CASE(flat, 11, 22), CASE(solid, 0, 1, 2), CASE(target, 11, 22, 9),
                CASE(close, true));
#ifndef NDEBUG
    ASSERT_EQ(recorder.entries().size(), 4u);
    EXPECT_NE(recorder.texts().find("DUNXBase/DUNXMath.m/src/DUNXPoint"), std::string::npos);
#else
    EXPECT_TRUE(recorder.entries().empty());
#endif
}

TEST(DUNXPoint, DumpsEachCoordinateFollowedByABlank) {
    EXPECT_EQ(printed(P3(1, -2.5, 3)), "1.000000 -2.500000 3.000000 ");
    EXPECT_EQ(printed(P2(0.25, 4)), "0.250000 4.000000 ");
}

TEST(DUNXPoint, HandlesShareOnePointAndCompareIdentity) {
    DUNXPoint3DHandle first(new P3(1, 2, 3)), twin(new P3(1, 2, 3)), same(first);
    DUNXPointHandle general(new P2(5, 6));
    DUNXPoint2DHandle plane(new P2(7, 8));
    EXPECT_TRUE(first == same);
    EXPECT_FALSE(first == twin) << "equal coordinates, different points";
    EXPECT_NE(first < twin, twin < first);
    EXPECT_FALSE(DUNXPointHandle().IsValid());
    const Values countsBefore = join(first->GetReferenceCount(), twin->GetReferenceCount());
    same->Shift(P3(1, 1, 1));
    const P3* raw = first;
    same = twin;
    expectCases(CASE(countsBefore, 2, 1), CASE(*raw, 2, 3, 4),
                CASE(join(first->GetReferenceCount(), twin->GetReferenceCount()), 1, 2),
                CASE((*general)[1], 6), CASE(static_cast<P2*>(plane)->Length(), std::sqrt(113.0)));
}

#include <dunx/DUNXMorph.h>
#include <dunx/DUNXWeightPoint.h>

#include "MathTestSupport.h"

#include <limits>

using namespace dunx::test;

using W2 = DUNXWeightPoint2D;
using W3 = DUNXWeightPoint3D;
using P2 = DUNXPoint2D;
using P3 = DUNXPoint3D;

TEST(DUNXWeightPoint, ConstructorsStoreWeightedCoordinatesAndGetCoordsDividesBack) {
    const P3 p(1, 2, 3);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(W3(p, nan, true)[0])) << "NaN is not 1: multiplied";
    expectCases(
        CASE(stored(W3(p, 2, true)), 2, 4, 6, 2), CASE(W3(p, 2, true).GetCoords(), 1, 2, 3),
        CASE(stored(W3(p, 2, false)), 1, 2, 3, 2), CASE(W3(p, 2, false).GetCoords(), 0.5, 1, 1.5),
        CASE(stored(W3(p, 1, true)), 1, 2, 3, 1), CASE(W3(p, 1, true).GetCoords(), 1, 2, 3),
        CASE(stored(W3(p, 0, true)), 0, 0, 0, 0), CASE(W3(p, 0, true).GetCoords(), 0, 0, 0),
        // Weights 1 and 0 give the stored coordinates undivided.
        CASE(W3(p, 0, false).GetCoords(), 1, 2, 3), CASE(W2(P2(3, 4), 1, false).GetCoords(), 3, 4),
        CASE(W2(P2(3, 4), 0, false).GetCoords(), 3, 4),
        CASE(W2(P2(3, 4), 0.5, false).GetCoords(), 6, 8),
        CASE(stored(W3(p, -4, true)), -4, -8, -12, -4), CASE(W3(p, -4, true).GetCoords(), 1, 2, 3),
        CASE(W3(p, nan, false)[0], 1), CASE(stored(W2(P2(3, 4), 0.5, true)), 1.5, 2, 0.5),
        CASE(stored(W3()), 0, 0, 0, 0), CASE(stored(W2()), 0, 0, 0), // weight 0, not 1
        CASE(stored(W3(1.5)), 1.5, 1.5, 1.5, 1.5), CASE(stored(W2(-2)), -2, -2, -2));
}

TEST(DUNXWeightPoint, IndicesPastTheCoordinatesReachTheWeight) {
    W2 w2(P2(1, 2), 5, false);
    W3 w3(P3(1, 2, 3), 7, false);
    const W2& c2 = w2; // the const forms
    const W3& c3 = w3;
    expectCases(CASE(join(c2[-1], c2[1], c2[2], c2[7]), 1, 2, 5, 5),
                CASE(join(c3[-1], c3[2], c3[3], c3[100]), 1, 3, 7, 7));
    w3[9] = 0.5;
    w3[-2] = 20;
    w2[-3] = 10;
    EXPECT_EQ(join(w3.GetWeight(), w3[0], w2[0]), Values({0.5, 20, 10}));
}

TEST(DUNXWeightPoint, ArithmeticCarriesTheWeight) {
    const W3 a(P3(1, 2, 3), 2, false), b(P3(4, 5, 6), 3, false), c(P3(1, 2, 2), 4, false);
    const W2 d(P2(1, 2), 3, false), e(P2(-1, 4), 0.5, false), f(P2(-2, 8), 1, false);
    const double s69 = std::sqrt(69.0);
    expectCases(CASE(stored(a + b), 5, 7, 9, 5), CASE(stored(a - b), -3, -3, -3, -1),
                CASE(stored(-a), -1, -2, -3, -2), CASE(stored(a * 2.0), 2, 4, 6, 4),
                CASE(stored(2.0 * a), 2, 4, 6, 4), CASE(stored(b / 2.0), 2, 2.5, 3, 1.5),
                CASE(stored(b / 0.0), 4, 5, 6, 3), CASE(stored(W3(a) += b), 5, 7, 9, 5),
                CASE(stored(W3(b) -= a), 3, 3, 3, 1), CASE(stored(W3(a) *= -1.0), -1, -2, -3, -2),
                CASE(stored(W3(b) /= 2.0), 2, 2.5, 3, 1.5), CASE(stored(W3(b) /= 0.0), 4, 5, 6, 3),
                CASE(stored(a.Copy()), 1, 2, 3, 2), CASE(a * b, 4 + 10 + 18 + 6),
                CASE(c.Length(), 5), CASE(W2(P2(0, 3), 4, false).Length(), 5), // the weight counts
                CASE(stored(d + e), 0, 6, 3.5), CASE(stored(d - e), 2, -2, 2.5),
                CASE(stored(-d), -1, -2, -3), CASE(stored(d * 2.0), 2, 4, 6),
                CASE(stored(2.0 * d), 2, 4, 6), CASE(stored(d / 2.0), 0.5, 1, 1.5),
                CASE(stored(d / 0.0), 1, 2, 3), CASE(stored(W2(d) += e), 0, 6, 3.5),
                CASE(stored(W2(d) -= e), 2, -2, 2.5), CASE(stored(W2(e) *= 4.0), -4, 16, 2),
                CASE(stored(W2(d) /= 2.0), 0.5, 1, 1.5), CASE(stored(W2(d) /= 0.0), 1, 2, 3),
                CASE(stored(d.Copy()), 1, 2, 3), CASE(d * e, -1 + 8 + 1.5));
    expectNear(
        1e-15,
        CASE(stored(c.Normalize()), 0.2, 0.4, 0.4, 0.8), // divided by the length with the weight
        CASE(stored(f.Normalize()), -2 / s69, 8 / s69, 1 / s69),
        CASE(stored(W3().Normalize()), 0, 0, 0, 0), CASE(stored(W2().Normalize()), 0, 0, 0),
        // A length of 0.1 is not zero: only exactly 0 is left undivided.
        CASE(stored(W3(P3(0, 0, 0), 0.1, false).Normalize()), 0, 0, 0, 1),
        CASE(stored(W2(P2(0, 0), 0.1, false).Normalize()), 0, 0, 1));
}

TEST(DUNXWeightPoint, WeightAccessorsShiftAndCopyIn) {
    W3 w(P3(2, 4, 6), 2, false), target, shifted(P3(1, 2, 3), 4, true);
    w.SetWeight(4);
    const Values afterSetWeight = stored(w);
    w.SetWeightedCoords(P3(8, 8, 8));
    w.CopyIn(target);
    P3 plain(1, 1, 1);
    w.CopyIn(plain); // a plain point receives the coordinates only
    shifted.Shift(P3(1, -1, 0.5));
    W2 w2(P2(1, 2), 3, false), target2, shifted2(P2(1, 2), 0.5, true);
    w2.SetWeight(5);
    w2.SetWeightedCoords(P2(10, 20));
    w2.CopyIn(target2);
    shifted2.Shift(P2(2, 2));
    expectCases(CASE(afterSetWeight, 2, 4, 6, 4), CASE(w.GetWeightedCoords(), 8, 8, 8),
                CASE(w.GetCoords(), 2, 2, 2), CASE(stored(target), 8, 8, 8, 4),
                CASE(plain, 8, 8, 8), CASE(shifted.GetCoords(), 2, 1, 3.5),
                CASE(shifted.GetWeight(), 4), CASE(stored(target2), 10, 20, 5),
                CASE(w2.GetWeightedCoords(), 10, 20), CASE(w2.GetCoords(), 2, 4),
                CASE(stored(shifted2), 1.5, 2, 0.5));
}

TEST(DUNXWeightPoint, AddSubtractAndToleranceReadTheWeightThroughTheIndex) {
    W3 w(P3(1, 2, 3), 1, false);
    w.Add(W3(P3(1, 1, 1), 2, false));
    const Values added = stored(w);
    w.Substract(W3(P3(1, 1, 1), 0.5, false));
    W2 w2(P2(1, 2), 1, false);
    const W3 other(P3(1, 2, 3), 2.5, false), heavier(P3(1, 2, 3), 2.75, false);
    const W2 heavier2(P2(1, 2), 2, false);
    expectCases(
        CASE(added, 2, 3, 4, 3), CASE(stored(w), 1, 2, 3, 2.5),
        CASE(w.IsWithinTolerance(other, 0.0), true),
        CASE(w.IsWithinTolerance(heavier, 0.2), false), // only the weights differ
        CASE(w.IsWithinTolerance(heavier, -0.25), true),
        CASE(w.IsWithinTolerance(other, W3(P3(0, 0, 0), 0, false)), true),
        CASE(w.IsWithinTolerance(W3(P3(1, 2, 3), 0, false), W3(P3(0, 0, 0), 2, false)), false),
        CASE(w2.IsWithinTolerance(heavier2, 0.5), false),
        CASE(w2.IsWithinTolerance(heavier2, W2(P2(0, 0), 1, false)), true));
    w2.Add(W2(P2(1, 1), 1, false));
    w2.Substract(W2(P2(0, 2), 0.5, false));
    expectCases(CASE(stored(w2), 2, 1, 1.5),
                CASE(w2.DistanceTo(W2(P2(5, 5), 100, false)), 5)); // the distance skips the weight
}

TEST(DUNXWeightPoint, TransformMovesTheCartesianPointAndKeepsTheWeight) {
    DUNXAffine3D quarterTurnZ;
    quarterTurnZ.SetElement(0, 1, -1), quarterTurnZ.SetElement(1, 0, 1);
    quarterTurnZ.SetElement(2, 2, 1);
    // (1, 2, 3) turns to (-2, 1, 3), scales to (-4, 2, 6), moves to (-3, 2, 6): so does the
    // Cartesian point, the weight staying 2.
    W3 w(P3(1, 2, 3), 2, true);
    w.Transform(DUNXMorph3D(quarterTurnZ, P3(1, 0, 0), 2));
    W3 vector(P3(1, 0, 0), 2, true);
    vector.Transform(DUNXMorph3D(P3(5, 5, 5), 3), true); // scaled, not translated
    DUNXAffine2D quarterTurn;
    quarterTurn.SetElement(0, 1, -1);
    quarterTurn.SetElement(1, 0, 1);
    W2 w2(P2(1, 2), 2, true);
    w2.Transform(DUNXMorph2D(quarterTurn, P2(10, 0), 1)); // the translation times the weight
    const Values moved = stored(w2);
    w2.Transform(DUNXMorph2D());
    w2.Transform(DUNXMorph2D(P2(1, 1)), true);
    const Values unmoved = stored(w2);
    w2.Transform(quarterTurn);
    DUNXAffine2D shear; // (x, y) to (x + y, y)
    shear.SetElement(0, 0, 1), shear.SetElement(0, 1, 1), shear.SetElement(1, 1, 1);
    W2 sheared(P2(1, 2), 3, false);
    sheared.Transform(shear);
    expectCases(CASE(stored(w), -6, 4, 12, 2), CASE(stored(vector), 6, 0, 0, 2),
                CASE(moved, -4 + 20, 2, 2), CASE(unmoved, 16, 2, 2), CASE(stored(w2), -2, 16, 2),
                CASE(stored(sheared), 3, 2, 3));
}

TEST(DUNXWeightPoint, DumpPrintsCartesianIn3DAndStoredIn2D) {
    EXPECT_EQ(printed(W3(P3(1, 2, 3), 2, true)), "1.000000 2.000000 3.000000 ");
    EXPECT_EQ(printed(W2(P2(1, 2), 2, true)), "2.000000 4.000000 ");
}

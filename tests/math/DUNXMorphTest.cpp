#include <dunx/DUNXMorph.h>

#include "MathTestSupport.h"

using namespace dunx::test;

using P2 = DUNXPoint2D;
using P3 = DUNXPoint3D;

namespace {

// A quarter turn about z and a mirror in x: affine parts that do not commute.
DUNXAffine3D quarterTurnZ() {
    DUNXAffine3D a;
    a.SetElement(0, 1, -1), a.SetElement(1, 0, 1), a.SetElement(2, 2, 1);
    return a;
}
DUNXAffine3D mirrorX() {
    DUNXAffine3D a;
    a.MakeIdentity();
    a.SetElement(0, 0, -1);
    return a;
}
// A linear part without a zero element: each one shows in every coordinate it feeds.
DUNXAffine3D dense() {
    const double rows[9] = {1, 2, 3, 0.5, -1, 2, -2, 1, 1.5};
    DUNXAffine3D a;
    for (int i = 0; i < 9; ++i)
        a.SetElement(i / 3, i % 3, rows[i]);
    return a;
}

template <class P, class M> P moved(P p, const M& m, bool noTranslation = false) {
    p.Transform(m, noTranslation);
    return p;
}

} // namespace

TEST(DUNXMorph, ScaleThenTranslationAndTheInverseMapsBack) {
    const DUNXMorph3D m(P3(1, 0, 0), 2.0);
    const DUNXMorph2D m2(P2(1, -1), 3.0);
    const P3 p(1, 1, 1);
    const P2 q(1, 2);
    // A vector (noTranslation) is scaled only.
    expectNear(1e-15, CASE(moved(p, m), 3, 2, 2), CASE(moved(moved(p, m), m.inverse()), 1, 1, 1),
               CASE(moved(p, m, true), 2, 2, 2), CASE(moved(q, m2), 4, 5),
               CASE(moved(moved(q, m2), m2.inverse()), 1, 2), CASE(moved(q, m2, true), 3, 6));
}

TEST(DUNXMorph, FlagsAreFixedAfterEveryChange) {
    // isIdentity, isScale, isAffine, isTranslation, isMirror
    const auto flags = [](const DUNXMorph& m) {
        return join(m.isIdentity(), m.isScale(), m.isAffine(), m.isTranslation(), m.isMirror());
    };
    const DUNXAffine3D mirror = mirrorX();
    DUNXAffine3D lenient;
    lenient.MakeIdentity(); // passes the identity test although it shears
    lenient.SetElement(0, 1, 0.5);
    lenient.SetElement(0, 2, -0.5);
    DUNXAffine2D flip;
    flip.SetElement(0, 1, 1);
    flip.SetElement(1, 0, 1);
    DUNXMorph3D m, n;
    DUNXMorph2D plane, flat;
    m.setScale(2);
    n.SetTranslation(P3(0, 3, 0));
    flat.SetAffine(flip);
    plane.setScale(-1);
    plane.SetTranslation(P2(1, 0));
    const P3 o;
    expectCases(CASE(flags(DUNXMorph3D()), 1, 0, 0, 0, 0),
                CASE(flags(DUNXMorph2D()), 1, 0, 0, 0, 0),
                CASE(flags(DUNXMorph3D(P3(5e-7, 0, 0))), 1, 0, 0, 0, 0), // up to FuzzPos: none
                CASE(flags(DUNXMorph3D(P3(0, 1e-6, 0))), 1, 0, 0, 0, 0),
                CASE(flags(DUNXMorph3D(P3(0, 0, 2e-6))), 0, 0, 0, 1, 0),
                CASE(flags(DUNXMorph3D(o, 1.0)), 1, 0, 0, 0, 0),
                CASE(flags(DUNXMorph3D(o, 1.0 + 1e-15)), 0, 1, 0, 0, 0),
                CASE(flags(DUNXMorph3D(mirror, o, 1)), 0, 0, 1, 0, 1),
                CASE(flags(DUNXMorph3D(lenient, o, 1)), 1, 0, 0, 0, 0),
                CASE(flags(DUNXMorph3D(DUNXAffine3D(), P3(1, 2, 3), 2)), 0, 1, 1, 1, 0),
                CASE(flags(m), 0, 1, 0, 0, 0), CASE(flags(n), 0, 0, 0, 1, 0),
                CASE(flags(plane), 0, 1, 0, 1, 0), CASE(flags(flat), 0, 0, 1, 0, 1));
    m.setScale(1);
    m.SetAffine(mirror);
    n.SetToIdentity();
    plane.SetToIdentity();
    expectCases(CASE(flags(m), 0, 0, 1, 0, 1),
                CASE(join(flags(n), n.scaleFactor()), 1, 0, 0, 0, 0, 1),
                CASE(flags(plane), 1, 0, 0, 0, 0));
}

TEST(DUNXMorph, ComposesInOrderAndInvertsFromBothSides) {
    // a: (1, 2, 3) turns to (-2, 1, 3), scales to (-4, 2, 6), moves to (-3, 2, 6); b then
    // mirrors it to (3, 2, 6), scales to (9, 6, 18), moves to (9, 6, 19).
    const DUNXMorph3D a(quarterTurnZ(), P3(1, 0, 0), 2), b(mirrorX(), P3(0, 0, 1), 3);
    const DUNXMorph3D ab = a.multiply(b), inverse = a.inverse();
    DUNXMorph3D alias(a), inverted(a); // the result may alias an operand
    alias.Multiply(b, alias);
    inverted.Inverse(inverted);
    expectCases(CASE(moved(P3(1, 2, 3), a), -3, 2, 6), CASE(moved(P3(1, 2, 3), ab), 9, 6, 19),
                CASE(ab.scaleFactor(), 6), CASE(moved(P3(-3, 2, 6), inverse), 1, 2, 3),
                CASE(moved(moved(P3(1, 2, 3), inverse), a), 1, 2, 3),
                CASE(join(alias.isEqual(ab), inverted.isEqual(inverse), a.isEqual(b),
                          a.multiply(inverse).isTranslation()),
                     true, true, false, false));
    // Morphs that differ in the first element of their affine parts alone are not equal.
    EXPECT_FALSE(DUNXMorph3D(mirrorX(), P3(1, 2, 3), 2).isEqual(DUNXMorph3D(P3(1, 2, 3), 2)));
}

TEST(DUNXMorph, InverseTransposesTheAffinePartEvenWhenItIsNotOrthonormal) {
    DUNXAffine3D stretch;
    stretch.MakeIdentity();
    stretch.SetElement(0, 0, 2);
    stretch.SetElement(0, 1, 1);
    const DUNXMorph3D inverse = DUNXMorph3D(stretch, P3(2, 4, 6), 2).inverse();
    const DUNXAffine3D& a = inverse.affine();
    // Transposed, not inverted; the translation is Aᵀ·(t / −s) = Aᵀ·(−1, −2, −3).
    expectCases(CASE(join(a.GetElement(0, 0), a.GetElement(1, 0)), 2, 1),
                CASE(inverse.scaleFactor(), 0.5), CASE(inverse.translation(), -2, -3, -3));
}

TEST(DUNXMorph, CompositionAndInverseOfPlaneMorphs) {
    DUNXAffine2D quarter, mirror; // the mirror about x does not commute with the quarter turn
    quarter.SetElement(0, 1, -1);
    quarter.SetElement(1, 0, 1);
    mirror.MakeIdentity();
    mirror.SetElement(1, 1, -1);
    const DUNXMorph2D turn(quarter, P2(1, 0), 1), grow(mirror, P2(0, 1), 2);
    const P2 p(1, 0); // (1, 0) turns to (1, 1), grows to (2, −1)
    expectNear(1e-15, CASE(moved(p, turn.multiply(grow)), 2, -1),
               CASE(moved(moved(p, turn), grow), 2, -1),
               CASE(moved(P2(2, -1), turn.multiply(grow).inverse()), 1, 0));
    EXPECT_TRUE(turn.isEqual(DUNXMorph2D(quarter, P2(1, 1e-7), 1)));
    EXPECT_FALSE(turn.isEqual(DUNXMorph3D()));
    DUNXMorph3D untouched(P3(1, 2, 3));
    DUNXMorph2D kept(grow);
    turn.Multiply(grow, untouched); // a morph of another class is left alone
    turn.Inverse(untouched);
    untouched.Multiply(turn, untouched); // so is one multiplied by another class
    turn.Multiply(untouched, kept);
    EXPECT_EQ(values(untouched.translation()), Values({1, 2, 3}));
    EXPECT_TRUE(kept.isEqual(grow));
    EXPECT_TRUE(turn.GetAffine() == quarter);
    EXPECT_EQ(turn.GetTranslation()[0], 1.0);
}

TEST(DUNXMorph, FixScaleFactorMovesTheScaleIntoTheTranslation) {
    DUNXAffine3D a;
    a.MakeIdentity();
    a.SetElement(1, 1, -1);
    DUNXMorph3D m(a, P3(1, 2, 3), 4);
    m.FixScaleFactor();
    EXPECT_TRUE(m.scaleFactor() == 1.0 && !m.isScale());
    EXPECT_EQ(values(m.translation()), Values({4, 8, 12}));
    EXPECT_EQ(m.affine().GetElement(1, 1), -1.0) << "the affine part stays";
    m.FixScaleFactor();
    EXPECT_EQ(values(m.translation()), Values({4, 8, 12}));
}

TEST(DUNXMorph, PrintsAffineTranslationAndScale) {
    EXPECT_EQ(printed(DUNXMorph3D(P3(1, 2, 3), 0.5), "%g"),
              "Affine:\n1 0 0 \n0 1 0 \n0 0 1 \nTranslation: 1 2 3 \nScale: 0.5\n");
    DUNXStringOutputStream stream;
    DUNXStreamFormatter out(&stream);
    out.setDoubleFormat("%g");
    out.incrementMargin();
    out << DUNXMorph2D();
    EXPECT_EQ(std::string(stream.GetText()),
              "Affine:\n    1 0 \n    0 1 \nTranslation: 0 0 \nScale: 1\n");
}

TEST(DUNXMorph, BulkApplyMatchesOnePointAtATimeWithoutAllocating) {
    std::vector<double> xyz(3 * 64);
    for (std::size_t i = 0; i < xyz.size(); ++i)
        xyz[i] = 5 * std::sin(1.7 * double(i)); // spread over [-5, 5]
    for (const DUNXMorph3D& m :
         {DUNXMorph3D(quarterTurnZ(), P3(1, 0, 0), 2), DUNXMorph3D(), DUNXMorph3D(P3(1, 2, 3)),
          DUNXMorph3D(P3(), 3), DUNXMorph3D(mirrorX(), P3(), 1),
          DUNXMorph3D(dense(), P3(1, -2, 3), 0.5)})
        for (bool noTranslation : {false, true}) {
            std::vector<double> bulk = xyz;
            EXPECT_EQ(allocationsOf([&] { m.Apply(bulk.data(), 64, noTranslation); }), 0);
            std::vector<P3> points;
            for (size_t i = 0; i < 3 * 64; i += 3)
                points.emplace_back(&xyz[i]);
            EXPECT_EQ(
                allocationsOf([&] { P3::TransformArray(points.data(), 64, m, noTranslation); }), 0);
            for (size_t i = 0; i < 3 * 64; i += 3) { // bit for bit the single-point result
                ASSERT_EQ(Values(&bulk[i], &bulk[i] + 3),
                          values(moved(P3(&xyz[i]), m, noTranslation)));
                ASSERT_EQ(values(points[i / 3]), values(moved(P3(&xyz[i]), m, noTranslation)));
            }
        }
}

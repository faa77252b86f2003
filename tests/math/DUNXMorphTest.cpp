#include <dunx/DUNXMorph.h>

#include "MathTestSupport.h"

using namespace dunx::test;

using P2 = DUNXPoint2D;
using P3 = DUNXPoint3D;

namespace {

DUNXMorph3D randomMorph(RandomMotion& random) {
    double r[9], t[3];
    random.rotation(r);
    random.vector(t, 10);
    return DUNXMorph3D(affineFromRows(r), P3(t), random.uniform(0.25, 4));
}

// scale · A · p + t, written out independently of the morph code.
P3 applyByHand(const DUNXMorph3D& m, const P3& p) {
    P3 q;
    for (int r = 0; r < 3; ++r) {
        double sum = 0;
        for (int c = 0; c < 3; ++c)
            sum += m.affine().GetElement(r, c) * p[c];
        q[r] = m.scaleFactor() * sum + m.translation()[r];
    }
    return q;
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
    DUNXAffine3D mirror, lenient;
    mirror.MakeIdentity();
    mirror.SetElement(2, 2, -1);
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

TEST(DUNXMorph, RandomMotionsComposeInOrderAndInvert) {
    RandomMotion random(7);
    for (int trial = 0; trial < 30; ++trial) {
        SCOPED_TRACE(trial);
        const DUNXMorph3D a = randomMorph(random), b = randomMorph(random);
        double p[3];
        random.vector(p, 5);
        const P3 point(p);
        EXPECT_TRUE(moved(point, a).IsWithinTolerance(applyByHand(a, point), 1e-12));
        const DUNXMorph3D ab = a.multiply(b); // a first, then b
        EXPECT_TRUE(moved(point, ab).IsWithinTolerance(moved(moved(point, a), b), 1e-11));
        EXPECT_NEAR(ab.scaleFactor(), a.scaleFactor() * b.scaleFactor(), 1e-15);
        // Rotations keep lengths: a vector's length grows by the scale alone.
        EXPECT_NEAR(moved(point, a, true).Length(), a.scaleFactor() * point.Length(), 1e-12);
        const DUNXMorph3D inverse = a.inverse(); // undoes the morph from both sides
        EXPECT_TRUE(moved(moved(point, a), inverse).IsWithinTolerance(point, 1e-12));
        EXPECT_TRUE(moved(moved(point, inverse), a).IsWithinTolerance(point, 1e-12));
        EXPECT_FALSE(a.multiply(inverse).isTranslation());
        DUNXMorph3D alias(a), inverted(a); // the result may alias an operand
        alias.Multiply(b, alias);
        inverted.Inverse(inverted);
        EXPECT_TRUE(alias.isEqual(ab) && inverted.isEqual(inverse));
        EXPECT_FALSE(a.isEqual(b));
    }
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
    RandomMotion random(5);
    std::vector<double> xyz(3 * 64);
    for (double& v : xyz)
        v = random.uniform(-5, 5);
    for (const DUNXMorph3D& m :
         {randomMorph(random), DUNXMorph3D(), DUNXMorph3D(P3(1, 2, 3)), DUNXMorph3D(P3(), 3)})
        for (bool noTranslation : {false, true}) {
            std::vector<double> bulk = xyz;
            EXPECT_EQ(allocationsOf([&] { m.Apply(bulk.data(), 64, noTranslation); }), 0);
            for (size_t i = 0; i < 3 * 64; i += 3) // bit for bit the single-point result
                ASSERT_EQ(Values(&bulk[i], &bulk[i] + 3),
                          values(moved(P3(&xyz[i]), m, noTranslation)));
        }
}

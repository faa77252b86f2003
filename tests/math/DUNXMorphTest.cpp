#include <dunx/DUNXMorph.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXStreamFormatter.h>

#include "RandomMotion.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

DUNXAffine3D rotationAffine(const double r[9]) {
    DUNXAffine3D a;
    for (int row = 0; row < 3; ++row)
        a.SetRow(row, r + 3 * row);
    return a;
}

DUNXMorph3D randomMorph(dunx::test::RandomMotion& random) {
    double r[9], t[3];
    random.rotation(r);
    random.vector(t, 10);
    return DUNXMorph3D(rotationAffine(r), DUNXPoint3D(t), random.uniform(0.25, 4));
}

// scale · A · p + t written out independently of the morph code.
DUNXPoint3D applyByHand(const DUNXMorph3D& m, const DUNXPoint3D& p) {
    DUNXPoint3D q;
    for (int r = 0; r < 3; ++r) {
        double sum = 0;
        for (int c = 0; c < 3; ++c)
            sum += m.affine().GetElement(r, c) * p[c];
        q[r] = m.scaleFactor() * sum + m.translation()[r];
    }
    return q;
}

DUNXPoint3D moved(DUNXPoint3D p, const DUNXMorph3D& m, bool noTranslation = false) {
    p.Transform(m, noTranslation);
    return p;
}

} // namespace

TEST(DUNXMorph, ScaleThenTranslationAndTheInverseMapsBack) {
    const DUNXMorph3D m(DUNXPoint3D(1, 0, 0), 2.0);
    const DUNXPoint3D image = moved(DUNXPoint3D(1, 1, 1), m);
    EXPECT_TRUE(image.IsWithinTolerance(DUNXPoint3D(3, 2, 2), 0.0));
    EXPECT_TRUE(moved(image, m.inverse()).IsWithinTolerance(DUNXPoint3D(1, 1, 1), 1e-15));
    EXPECT_TRUE(moved(DUNXPoint3D(1, 1, 1), m, true).IsWithinTolerance(DUNXPoint3D(2, 2, 2), 0.0))
        << "no translation for vectors";

    const DUNXMorph2D m2(DUNXPoint2D(1, -1), 3.0);
    DUNXPoint2D p(1, 2);
    p.Transform(m2);
    EXPECT_TRUE(p[0] == 4 && p[1] == 5);
    p.Transform(m2.inverse());
    EXPECT_TRUE(p.IsWithinTolerance(DUNXPoint2D(1, 2), 1e-15));
    p.Transform(m2, true);
    EXPECT_TRUE(p.IsWithinTolerance(DUNXPoint2D(3, 6), 1e-15));
}

TEST(DUNXMorph, FlagsAreFixedAfterEveryChange) {
    struct Row {
        const char* what;
        DUNXMorph3D morph;
        bool identity, scale, affine, translation, mirror;
    };
    DUNXAffine3D mirror;
    mirror.MakeIdentity();
    mirror.SetElement(2, 2, -1);
    DUNXAffine3D lenient; // passes the identity test although it shears
    lenient.MakeIdentity();
    lenient.SetElement(0, 1, 0.5);
    lenient.SetElement(0, 2, -0.5);
    const std::vector<Row> rows = {
        {"default", DUNXMorph3D(), true, false, false, false, false},
        {"translation 5e-7", DUNXMorph3D(DUNXPoint3D(5e-7, 0, 0)), true, false, false, false,
         false},
        {"translation 1e-6", DUNXMorph3D(DUNXPoint3D(0, 1e-6, 0)), true, false, false, false,
         false},
        {"translation 2e-6", DUNXMorph3D(DUNXPoint3D(0, 0, 2e-6)), false, false, false, true,
         false},
        {"scale 1 exactly", DUNXMorph3D(DUNXPoint3D(), 1.0), true, false, false, false, false},
        {"scale 1+1e-15", DUNXMorph3D(DUNXPoint3D(), 1.0 + 1e-15), false, true, false, false,
         false},
        {"mirror", DUNXMorph3D(mirror, DUNXPoint3D(), 1), false, false, true, false, true},
        {"lenient identity", DUNXMorph3D(lenient, DUNXPoint3D(), 1), true, false, false, false,
         false},
        {"zero affine", DUNXMorph3D(DUNXAffine3D(), DUNXPoint3D(1, 2, 3), 2), false, true, true,
         true, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.morph.isIdentity(), row.identity);
        EXPECT_EQ(row.morph.isScale(), row.scale);
        EXPECT_EQ(row.morph.isAffine(), row.affine);
        EXPECT_EQ(row.morph.isTranslation(), row.translation);
        EXPECT_EQ(row.morph.isMirror(), row.mirror);
    }
    DUNXMorph3D m;
    m.setScale(2);
    EXPECT_TRUE(m.isScale() && !m.isIdentity());
    m.setScale(1);
    m.SetTranslation(DUNXPoint3D(0, 3, 0));
    EXPECT_TRUE(m.isTranslation() && !m.isScale());
    m.SetAffine(mirror);
    EXPECT_TRUE(m.isAffine() && m.isMirror());
    m.SetToIdentity();
    EXPECT_TRUE(m.isIdentity());
    EXPECT_EQ(m.scaleFactor(), 1.0);

    DUNXMorph2D plane;
    EXPECT_TRUE(plane.isIdentity());
    plane.setScale(-1);
    plane.SetTranslation(DUNXPoint2D(1, 0));
    EXPECT_TRUE(plane.isScale() && plane.isTranslation() && !plane.isAffine());
    DUNXAffine2D flip;
    flip.SetElement(0, 1, 1);
    flip.SetElement(1, 0, 1);
    plane.SetAffine(flip);
    EXPECT_TRUE(plane.isMirror() && plane.isAffine());
    plane.SetToIdentity();
    EXPECT_TRUE(plane.isIdentity());
}

TEST(DUNXMorph, RandomMotionsComposeInOrderAndInvert) {
    dunx::test::RandomMotion random(7);
    for (int trial = 0; trial < 30; ++trial) {
        const DUNXMorph3D a = randomMorph(random), b = randomMorph(random);
        double p[3];
        random.vector(p, 5);
        const DUNXPoint3D point(p);
        SCOPED_TRACE(trial);
        EXPECT_TRUE(moved(point, a).IsWithinTolerance(applyByHand(a, point), 1e-12));
        // a.multiply(b) applies a first, then b.
        const DUNXMorph3D ab = a.multiply(b);
        EXPECT_TRUE(moved(point, ab).IsWithinTolerance(moved(moved(point, a), b), 1e-11));
        EXPECT_NEAR(ab.scaleFactor(), a.scaleFactor() * b.scaleFactor(), 1e-15);
        // Rotations keep lengths: a vector's length grows by the scale alone.
        EXPECT_NEAR(moved(point, a, true).Length(), a.scaleFactor() * point.Length(), 1e-12);
        // The inverse undoes the morph from both sides.
        const DUNXMorph3D inverse = a.inverse();
        EXPECT_TRUE(moved(moved(point, a), inverse).IsWithinTolerance(point, 1e-12));
        EXPECT_TRUE(moved(moved(point, inverse), a).IsWithinTolerance(point, 1e-12));
        EXPECT_TRUE(a.multiply(inverse).isIdentity() || !a.multiply(inverse).isTranslation());
        // Through the virtual interface, the result may alias an operand.
        DUNXMorph3D alias(a);
        alias.Multiply(b, alias);
        EXPECT_TRUE(alias.isEqual(ab));
        DUNXMorph3D bulk[1] = {a};
        bulk[0].Inverse(bulk[0]);
        EXPECT_TRUE(bulk[0].isEqual(inverse));
        EXPECT_FALSE(a.isEqual(b));
    }
}

TEST(DUNXMorph, InverseTransposesTheAffinePartEvenWhenItIsNotOrthonormal) {
    DUNXAffine3D stretch;
    stretch.MakeIdentity();
    stretch.SetElement(0, 0, 2);
    stretch.SetElement(0, 1, 1);
    const DUNXMorph3D m(stretch, DUNXPoint3D(2, 4, 6), 2);
    const DUNXMorph3D inverse = m.inverse();
    EXPECT_EQ(inverse.affine().GetElement(0, 0), 2.0) << "transposed, not inverted";
    EXPECT_EQ(inverse.affine().GetElement(1, 0), 1.0);
    EXPECT_EQ(inverse.scaleFactor(), 0.5);
    // translation: Aᵀ·(t / −s) = Aᵀ·(−1, −2, −3)
    EXPECT_TRUE(inverse.translation().IsWithinTolerance(DUNXPoint3D(-2, -3, -3), 1e-15));
}

TEST(DUNXMorph, CompositionAndInverseOfPlaneMorphs) {
    DUNXAffine2D quarter;
    quarter.SetElement(0, 1, -1);
    quarter.SetElement(1, 0, 1);
    DUNXAffine2D mirror; // about the x axis: does not commute with the quarter turn
    mirror.MakeIdentity();
    mirror.SetElement(1, 1, -1);
    const DUNXMorph2D turn(quarter, DUNXPoint2D(1, 0), 1), grow(mirror, DUNXPoint2D(0, 1), 2);
    DUNXPoint2D p(1, 0), q(1, 0);
    p.Transform(turn.multiply(grow));
    q.Transform(turn);
    q.Transform(grow);
    EXPECT_TRUE(p.IsWithinTolerance(q, 1e-15));
    EXPECT_TRUE(p.IsWithinTolerance(DUNXPoint2D(2, -1), 1e-15)); // (1,0) → (1,1) → (2,−1)
    p.Transform(turn.multiply(grow).inverse());
    EXPECT_TRUE(p.IsWithinTolerance(DUNXPoint2D(1, 0), 1e-15));
    EXPECT_TRUE(turn.isEqual(DUNXMorph2D(quarter, DUNXPoint2D(1, 1e-7), 1)));
    EXPECT_FALSE(turn.isEqual(DUNXMorph3D()));
    DUNXMorph3D untouched(DUNXPoint3D(1, 2, 3));
    turn.Multiply(grow, untouched); // a morph of another class is left alone
    turn.Inverse(untouched);
    EXPECT_TRUE(untouched.translation().IsWithinTolerance(DUNXPoint3D(1, 2, 3), 0.0));
    EXPECT_TRUE(turn.GetAffine() == quarter);
    EXPECT_EQ(turn.GetTranslation()[0], 1.0);
}

TEST(DUNXMorph, FixScaleFactorMovesTheScaleIntoTheTranslation) {
    DUNXAffine3D a;
    a.MakeIdentity();
    a.SetElement(1, 1, -1);
    DUNXMorph3D m(a, DUNXPoint3D(1, 2, 3), 4);
    m.FixScaleFactor();
    EXPECT_EQ(m.scaleFactor(), 1.0);
    EXPECT_FALSE(m.isScale());
    EXPECT_TRUE(m.translation().IsWithinTolerance(DUNXPoint3D(4, 8, 12), 0.0));
    EXPECT_EQ(m.affine().GetElement(1, 1), -1.0) << "the affine part stays";
    m.FixScaleFactor();
    EXPECT_TRUE(m.translation().IsWithinTolerance(DUNXPoint3D(4, 8, 12), 0.0));
}

TEST(DUNXMorph, PrintsAffineTranslationAndScale) {
    DUNXStringOutputStream stream;
    DUNXStreamFormatter out(&stream);
    out.setDoubleFormat("%g");
    out << DUNXMorph3D(DUNXPoint3D(1, 2, 3), 0.5);
    EXPECT_EQ(std::string(stream.GetText()), "Affine:\n1 0 0 \n0 1 0 \n0 0 1 \n"
                                             "Translation: 1 2 3 \nScale: 0.5\n");
    stream.Clear();
    out.incrementMargin();
    out << DUNXMorph2D();
    EXPECT_EQ(std::string(stream.GetText()),
              "Affine:\n    1 0 \n    0 1 \nTranslation: 0 0 \nScale: 1\n");
}

TEST(DUNXMorph, BulkApplyMatchesOnePointAtATimeWithoutAllocating) {
    dunx::test::RandomMotion random(5);
    std::vector<DUNXMorph3D> morphs = {randomMorph(random), DUNXMorph3D(),
                                       DUNXMorph3D(DUNXPoint3D(1, 2, 3)),
                                       DUNXMorph3D(DUNXPoint3D(), 3)};
    std::vector<double> xyz(3 * 64);
    for (double& v : xyz)
        v = random.uniform(-5, 5);
    for (const DUNXMorph3D& m : morphs)
        for (bool noTranslation : {false, true}) {
            std::vector<double> bulk = xyz;
            long allocations = 0;
            {
                dunx::test::AllocationCounter counter;
                m.Apply(bulk.data(), 64, noTranslation);
                allocations = counter.count();
            }
            EXPECT_EQ(allocations, 0);
            for (int i = 0; i < 64; ++i) {
                const DUNXPoint3D one =
                    moved(DUNXPoint3D(&xyz[3 * static_cast<size_t>(i)]), m, noTranslation);
                for (int k = 0; k < 3; ++k)
                    ASSERT_EQ(bulk[3 * static_cast<size_t>(i) + static_cast<size_t>(k)], one[k]);
            }
        }
}

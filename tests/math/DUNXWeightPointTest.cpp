#include <dunx/DUNXAffine.h>
#include <dunx/DUNXMorph.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/DUNXWeightPoint.h>

#include "RandomMotion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

// Stored coordinates then the weight, read through operator[].
void expectStored(const DUNXPoint& p, std::vector<double> expected, double tolerance = 0.0) {
    ASSERT_EQ(p.GetDimension() + 1, static_cast<int>(expected.size()));
    for (int i = 0; i <= p.GetDimension(); ++i)
        EXPECT_NEAR(p[i], expected[static_cast<size_t>(i)], tolerance) << "index " << i;
}

std::string dumped(const DUNXPoint& p) {
    DUNXStringOutputStream stream;
    DUNXStreamFormatter out(&stream);
    out << p;
    return stream.GetText();
}

} // namespace

TEST(DUNXWeightPoint, ConstructorsStoreWeightedCoordinates) {
    struct Row {
        double weight;
        bool multiply;
        std::vector<double> stored; // x, y, z, w
        std::vector<double> cartesian;
    };
    const DUNXPoint3D p(1, 2, 3);
    for (const Row& row :
         {Row{2.0, true, {2, 4, 6, 2}, {1, 2, 3}}, Row{2.0, false, {1, 2, 3, 2}, {0.5, 1, 1.5}},
          Row{1.0, true, {1, 2, 3, 1}, {1, 2, 3}}, Row{0.0, true, {0, 0, 0, 0}, {0, 0, 0}},
          Row{0.0, false, {1, 2, 3, 0}, {1, 2, 3}}, // weight 0: undivided
          Row{-4.0, true, {-4, -8, -12, -4}, {1, 2, 3}}}) {
        SCOPED_TRACE(testing::Message() << row.weight << ' ' << row.multiply);
        const DUNXWeightPoint3D w(p, row.weight, row.multiply);
        expectStored(w, row.stored);
        const DUNXPoint3D c = w.GetCoords();
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(c[i], row.cartesian[static_cast<size_t>(i)]);
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(DUNXWeightPoint3D(p, nan, true)[0])) << "NaN is not 1: multiplied";
    EXPECT_EQ(DUNXWeightPoint3D(p, nan, false)[0], 1.0);

    expectStored(DUNXWeightPoint3D(), {0, 0, 0, 0});
    expectStored(DUNXWeightPoint2D(), {0, 0, 0});
    expectStored(DUNXWeightPoint3D(1.5), {1.5, 1.5, 1.5, 1.5});
    expectStored(DUNXWeightPoint2D(-2), {-2, -2, -2});
    expectStored(DUNXWeightPoint2D(DUNXPoint2D(3, 4), 0.5, true), {1.5, 2, 0.5});
    const DUNXPoint2D c2 = DUNXWeightPoint2D(DUNXPoint2D(3, 4), 0.5, false).GetCoords();
    EXPECT_TRUE(c2[0] == 6 && c2[1] == 8);
}

TEST(DUNXWeightPoint, IndicesPastTheCoordinatesReachTheWeight) {
    DUNXWeightPoint2D w2(DUNXPoint2D(1, 2), 5, false);
    DUNXWeightPoint3D w3(DUNXPoint3D(1, 2, 3), 7, false);
    EXPECT_EQ(w2[-1], 1);
    EXPECT_EQ(w2[2], 5);
    EXPECT_EQ(w2[7], 5);
    EXPECT_EQ(w3[2], 3);
    EXPECT_EQ(w3[3], 7);
    EXPECT_EQ(w3[100], 7);
    w3[9] = 0.5;
    w2[-3] = 10;
    EXPECT_EQ(w3.GetWeight(), 0.5);
    EXPECT_EQ(w2[0], 10);
}

TEST(DUNXWeightPoint, ArithmeticCarriesTheWeight) {
    const DUNXWeightPoint3D a(DUNXPoint3D(1, 2, 3), 2, false), b(DUNXPoint3D(4, 5, 6), 3, false);
    expectStored(a + b, {5, 7, 9, 5});
    expectStored(a - b, {-3, -3, -3, -1});
    expectStored(-a, {-1, -2, -3, -2});
    expectStored(a * 2.0, {2, 4, 6, 4});
    expectStored(2.0 * a, {2, 4, 6, 4});
    expectStored(b / 2.0, {2, 2.5, 3, 1.5});
    expectStored(b / 0.0, {4, 5, 6, 3});
    EXPECT_EQ(a * b, 4 + 10 + 18 + 6.0);
    EXPECT_EQ(DUNXWeightPoint3D(DUNXPoint3D(1, 2, 2), 4, false).Length(), 5.0) << "weight counts";
    EXPECT_EQ(DUNXWeightPoint2D(DUNXPoint2D(0, 3), 4, false).Length(), 5.0);

    DUNXWeightPoint3D c(a);
    c += b;
    c -= a;
    c *= 2.0;
    c /= 0.0;
    c /= 4.0;
    expectStored(c, {2, 2.5, 3, 1.5});
    c.Divide(0.0);
    c.Negate();
    expectStored(c, {-2, -2.5, -3, -1.5});
    expectStored(a.Copy(), {1, 2, 3, 2});
    expectStored(DUNXWeightPoint3D(DUNXPoint3D(0, 0, 0), 0, false).Normalize(), {0, 0, 0, 0});
    expectStored(DUNXWeightPoint3D(DUNXPoint3D(1, 2, 2), 4, false).Normalize(),
                 {0.2, 0.4, 0.4, 0.8}, 1e-15);

    const DUNXWeightPoint2D d(DUNXPoint2D(1, 2), 3, false), e(DUNXPoint2D(-1, 4), 0.5, false);
    expectStored(d + e, {0, 6, 3.5});
    expectStored(d - e, {2, -2, 2.5});
    expectStored(-d, {-1, -2, -3});
    expectStored(d * 2.0, {2, 4, 6});
    expectStored(2.0 * d, {2, 4, 6});
    expectStored(d / 0.0, {1, 2, 3});
    expectStored(d / 2.0, {0.5, 1, 1.5});
    EXPECT_EQ(d * e, -1 + 8 + 1.5);
    DUNXWeightPoint2D f(d);
    f += e;
    f -= d;
    f *= 4.0;
    f /= 0.0;
    f /= 2.0;
    expectStored(f, {-2, 8, 1});
    expectStored(f.Copy().Normalize(),
                 {-2 / std::sqrt(69.0), 8 / std::sqrt(69.0), 1 / std::sqrt(69.0)}, 1e-15);
}

TEST(DUNXWeightPoint, ShiftMovesTheCartesianPoint) {
    DUNXWeightPoint3D w(DUNXPoint3D(1, 2, 3), 4, true);
    w.Shift(DUNXPoint3D(1, -1, 0.5));
    const DUNXPoint3D c = w.GetCoords();
    EXPECT_TRUE(c[0] == 2 && c[1] == 1 && c[2] == 3.5);
    EXPECT_EQ(w.GetWeight(), 4);
    DUNXWeightPoint2D w2(DUNXPoint2D(1, 2), 0.5, true);
    w2.Shift(DUNXPoint2D(2, 2));
    expectStored(w2, {1.5, 2, 0.5});
}

TEST(DUNXWeightPoint, WeightAccessorsAndCopies) {
    DUNXWeightPoint3D w(DUNXPoint3D(2, 4, 6), 2, false);
    w.SetWeight(4);
    expectStored(w, {2, 4, 6, 4}); // the stored coordinates stay
    w.SetWeightedCoords(DUNXPoint3D(8, 8, 8));
    const DUNXPoint3D stored = w.GetWeightedCoords(), c = w.GetCoords();
    EXPECT_TRUE(stored[0] == 8 && stored[2] == 8 && c[1] == 2);

    DUNXWeightPoint3D target;
    w.CopyIn(target);
    expectStored(target, {8, 8, 8, 4});
    DUNXPoint3D plain(1, 1, 1);
    w.CopyIn(plain); // a plain point receives the coordinates only
    EXPECT_TRUE(plain[0] == 8 && plain[2] == 8);

    DUNXWeightPoint2D w2(DUNXPoint2D(1, 2), 3, false), t2;
    w2.SetWeight(5);
    w2.SetWeightedCoords(DUNXPoint2D(10, 20));
    w2.CopyIn(t2);
    expectStored(t2, {10, 20, 5});
    const DUNXPoint2D stored2 = w2.GetWeightedCoords();
    EXPECT_TRUE(stored2[0] == 10 && stored2[1] == 20);
    const DUNXPoint2D c2 = w2.GetCoords();
    EXPECT_TRUE(c2[0] == 2 && c2[1] == 4);
}

TEST(DUNXWeightPoint, AddSubtractAndToleranceReadTheWeightThroughTheIndex) {
    DUNXWeightPoint3D w(DUNXPoint3D(1, 2, 3), 1, false);
    w.Add(DUNXWeightPoint3D(DUNXPoint3D(1, 1, 1), 2, false));
    expectStored(w, {2, 3, 4, 3});
    w.Substract(DUNXWeightPoint3D(DUNXPoint3D(1, 1, 1), 0.5, false));
    expectStored(w, {1, 2, 3, 2.5});
    const DUNXWeightPoint3D other(DUNXPoint3D(1, 2, 3), 2.5, false);
    EXPECT_TRUE(w.IsWithinTolerance(other, 0.0));
    EXPECT_FALSE(w.IsWithinTolerance(DUNXWeightPoint3D(DUNXPoint3D(1, 2, 3), 2.75, false), 0.2))
        << "only the weights differ";
    EXPECT_TRUE(w.IsWithinTolerance(DUNXWeightPoint3D(DUNXPoint3D(1, 2, 3), 2.75, false), -0.25));
    EXPECT_TRUE(w.IsWithinTolerance(other, DUNXWeightPoint3D(DUNXPoint3D(0, 0, 0), 0, false)));
    EXPECT_FALSE(w.IsWithinTolerance(DUNXWeightPoint3D(DUNXPoint3D(1, 2, 3), 0, false),
                                     DUNXWeightPoint3D(DUNXPoint3D(0, 0, 0), 2, false)));
    DUNXWeightPoint2D w2(DUNXPoint2D(1, 2), 1, false);
    EXPECT_FALSE(w2.IsWithinTolerance(DUNXWeightPoint2D(DUNXPoint2D(1, 2), 2, false), 0.5));
    EXPECT_TRUE(w2.IsWithinTolerance(DUNXWeightPoint2D(DUNXPoint2D(1, 2), 2, false),
                                     DUNXWeightPoint2D(DUNXPoint2D(0, 0), 1, false)));
    w2.Add(DUNXWeightPoint2D(DUNXPoint2D(1, 1), 1, false));
    w2.Substract(DUNXWeightPoint2D(DUNXPoint2D(0, 2), 0.5, false));
    expectStored(w2, {2, 1, 1.5});
    EXPECT_EQ(w2.DistanceTo(DUNXWeightPoint2D(DUNXPoint2D(5, 5), 100, false)), 5.0)
        << "the distance sees the stored coordinates only";
}

TEST(DUNXWeightPoint, TransformMovesTheCartesianPointAndKeepsTheWeight) {
    dunx::test::RandomMotion random(11);
    for (int trial = 0; trial < 20; ++trial) {
        double r[9], t[3], p[3];
        random.rotation(r);
        random.vector(t, 10);
        random.vector(p, 5);
        DUNXAffine3D affine;
        for (int row = 0; row < 3; ++row)
            affine.SetRow(row, r + 3 * row);
        const DUNXMorph3D morph(affine, DUNXPoint3D(t), random.uniform(0.5, 2));
        const double weight = random.uniform(0.2, 3);
        DUNXWeightPoint3D w(DUNXPoint3D(p), weight, true);
        DUNXPoint3D expected(p);
        expected.Transform(morph);
        w.Transform(morph);
        EXPECT_EQ(w.GetWeight(), weight);
        EXPECT_TRUE(w.GetCoords().IsWithinTolerance(expected, 1e-12));
    }
    DUNXWeightPoint3D vector(DUNXPoint3D(1, 0, 0), 2, true);
    vector.Transform(DUNXMorph3D(DUNXPoint3D(5, 5, 5), 3), true);
    expectStored(vector, {6, 0, 0, 2}); // scaled, not translated

    DUNXAffine2D quarterTurn;
    const double rows[2][2] = {{0, -1}, {1, 0}};
    quarterTurn.SetRow(0, rows[0]);
    quarterTurn.SetRow(1, rows[1]);
    DUNXWeightPoint2D w2(DUNXPoint2D(1, 2), 2, true);
    w2.Transform(DUNXMorph2D(quarterTurn, DUNXPoint2D(10, 0), 1));
    expectStored(w2, {-4 + 20, 2, 2});
    w2.Transform(DUNXMorph2D());
    w2.Transform(DUNXMorph2D(DUNXPoint2D(1, 1)), true);
    expectStored(w2, {16, 2, 2});
    w2.Transform(quarterTurn);
    expectStored(w2, {-2, 16, 2});
}

TEST(DUNXWeightPoint, DumpPrintsCartesianIn3DAndStoredIn2D) {
    EXPECT_EQ(dumped(DUNXWeightPoint3D(DUNXPoint3D(1, 2, 3), 2, true)),
              "1.000000 2.000000 3.000000 ");
    EXPECT_EQ(dumped(DUNXWeightPoint2D(DUNXPoint2D(1, 2), 2, true)), "2.000000 4.000000 ");
}

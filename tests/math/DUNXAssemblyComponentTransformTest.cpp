#include <dunx/DUNXAssemblyComponentTransform.h>

#include "MathTestSupport.h"

using namespace dunx::test;
using Transform = DUNXAssemblyComponentTransform;

namespace {

// A transform from a row-major rotation and a translation.
Transform make(const double rowMajor[9], const double t[3]) {
    double columnMajor[9];
    for (int i = 0; i < 9; ++i)
        columnMajor[3 * (i % 3) + i / 3] = rowMajor[i];
    Transform transform;
    transform.SetRotation(columnMajor);
    transform.SetTranslation(t);
    return transform;
}

// The determinant and the identity, mirror and validity tests.
Values flags(const Transform& t) {
    double determinant = 0;
    t.GetDeterminant(determinant);
    return join(determinant, t.IsIdentityTransform(), t.IsMirrorTransform(), t.IsValid());
}
Values flags(Values rowMajor, Values t) {
    return flags(make(rowMajor.data(), t.data()));
}

const double kIdentity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, kNone[3] = {0, 0, 0};
const double kQuarterTurnZ[9] = {0, -1, 0, 1, 0, 0, 0, 0, 1};

} // namespace

TEST(DUNXAssemblyComponentTransform, StartsAsTheIdentityAndRefusesNullArrays) {
    const Transform identity;
    double all[12], scale = 0;
    EXPECT_EQ(long(identity.Get(all)), DUNI_S_SUCCESS);
    EXPECT_EQ(long(identity.GetScale(scale)), DUNI_S_SUCCESS);
    expectCases(CASE(all, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0), CASE(scale, 1),
                CASE(flags(identity), 1, true, false, true));
    const double t0[3] = {1, 2, 3};
    Transform t = make(kQuarterTurnZ, t0);
    const long refused = DUNI_E_INVALID_ARGUMENT;
    expectCases(
        CASE(long(t.Set(nullptr)), refused), CASE(long(t.Get(nullptr)), refused),
        CASE(long(t.SetRotation(nullptr)), refused), CASE(long(t.GetRotation(nullptr)), refused),
        CASE(long(t.SetTranslation(nullptr)), refused),
        CASE(long(t.GetTranslation(nullptr)), refused), CASE(long(t.Set3x4ByRow(nullptr)), refused),
        CASE(long(t.Set4x4ByColumn(nullptr)), refused), CASE(long(t.Get4x4ByRow(nullptr)), refused),
        CASE(long(t.Get4x4ByColumn(nullptr)), refused),
        CASE(long(t.ApplyTransform(nullptr)), refused),
        CASE(long(t.ApplyRotation(nullptr)), refused),
        CASE(long(t.ApplyTransform(nullptr, 4)), refused),
        CASE(long(t.ApplyRotation(nullptr, 4)), refused));
    t.Get(all);
    EXPECT_EQ(values(all), Values({0, 1, 0, -1, 0, 0, 0, 0, 1, 1, 2, 3})) << "nothing changed";
}

TEST(DUNXAssemblyComponentTransform, ConvertsBetweenLayouts) {
    // A general 3 × 4 goes in by rows and comes out column-major, by rows and by columns.
    const float byRow[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const float columns[16] = {1, 5, 9, 0, 2, 6, 10, 0, 3, 7, 11, 0, 4, 8, 12, 1};
    Transform t, u, v;
    ASSERT_EQ(long(t.Set3x4ByRow(byRow)), DUNI_S_SUCCESS);
    double rotation[9], translation[3], twelve[12], back[12];
    float row[16], column[16], noisy[16];
    t.GetRotation(rotation);
    t.GetTranslation(translation);
    t.Get4x4ByRow(row);
    t.Get4x4ByColumn(column);
    for (int i = 0; i < 16; ++i) // Set4x4ByColumn ignores the bottom row
        noisy[i] = columns[i] + (i % 4 == 3 ? 99.0f : 0.0f);
    u.Set4x4ByColumn(noisy);
    u.Get(twelve);
    const float sevens[12] = {7, 0, 0, 0, 0, 7, 0, 0, 0, 0, 7, 0};
    v.Set3x4ByRow(sevens); // something else first: Set must write every element
    v.Set(twelve);
    v.Get(back);
    expectCases(CASE(join(t.GetRotationElement(0, 1), t.GetRotationElement(2, 0)), 2, 9),
                CASE(rotation, 1, 5, 9, 2, 6, 10, 3, 7, 11), CASE(translation, 4, 8, 12),
                CASE(row, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 0, 1),
                CASE(column, 1, 5, 9, 0, 2, 6, 10, 0, 3, 7, 11, 0, 4, 8, 12, 1),
                CASE(twelve, 1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12),
                CASE(back, 1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12),
                CASE(v.GetTranslationElement(1), 8));
}

TEST(DUNXAssemblyComponentTransform, FlagsAreComputedLazilyAndTheScaleIsLeftOut) {
    const double e = 9e-7; // determinant, identity, mirror, valid:
    expectCases(CASE(flags({1, 0, 0, 0, 1, 0, 0, 0, 1}, {5e-7, -5e-7, 0}), 1, true, false, true),
                CASE(flags({1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 1e-6}), 1, false, false, true),
                CASE(flags({1 + e, e, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 0}), 1 + e, true, false, true),
                CASE(flags({1, 0, 0, 0, -1, 0, 0, 0, 1}, {0, 0, 0}), -1, false, true, true),
                CASE(flags({1, 2, 3, 2, 4, 6, 0, 0, 1}, {0, 0, 0}), 0, false, false, false),
                CASE(flags({0, -1, 0, 1, 0, 0, 0, 0, 1}, {0, 0, 0}), 1, false, false, true),
                CASE(flags({2, 0, 0, 0, 2, 0, 0, 0, 2}, {1, 1, 1}), 8, false, false, true),
                CASE(flags({1, 2, 3, 4, 5, 6, 7, 8, 10}, {0, 0, 0}), -3, false, true, true));
    // SetScale keeps the cached answers (the scale is not part of them); the other setters forget.
    Transform w;
    double scale = 0;
    const double mirror[9] = {-1, 0, 0, 0, 1, 0, 0, 0, 1}, far[3] = {0, 0, 1};
    const double twelve[12] = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    const float byRow[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, zero[16] = {};
    EXPECT_EQ(flags(w), Values({1, true, false, true}));
    w.SetScale(3);
    w.GetScale(scale);
    EXPECT_EQ(join(flags(w), scale), Values({1, true, false, true, 3}));
    w.SetRotation(mirror);
    EXPECT_EQ(flags(w), Values({-1, false, true, true}));
    w.Set3x4ByRow(byRow);
    EXPECT_EQ(flags(w), Values({1, true, false, true}));
    w.SetTranslation(far);
    EXPECT_EQ(flags(w), Values({1, false, false, true}));
    w.Set(twelve);
    EXPECT_EQ(flags(w), Values({1, true, false, true}));
    w.Set4x4ByColumn(zero);
    EXPECT_EQ(flags(w), Values({0, false, false, false}));
}

TEST(DUNXAssemblyComponentTransform, ApplyWorksInDoubleAndSkipsTheIdentity) {
    const double t0[3] = {10, 20, 30}, tiny[3] = {5e-7, 0, 0};
    const double big[9] = {1, 1, 0, 0, 1, 0, 0, 0, 1}, shift[3] = {-1e8, 0, 0};
    Transform nearly = make(kIdentity, tiny);
    nearly.SetScale(10);
    const double symmetric[9] = {2, 1, 1, 1, 3, 1, 1, 1, 4}; // the same in either layout
    float p[3] = {1, 2, 3}, v[3] = {1, 2, 3}, q[3] = {1, 2, 3}, r[3] = {1e8f, 1, 0},
          s[3] = {1, 2, 3}, u[3] = {1, 2, 3};
    make(kQuarterTurnZ, t0).ApplyTransform(p);
    make(symmetric, t0).ApplyTransform(s); // every element counts
    make(kQuarterTurnZ, t0).ApplyRotation(v);
    make(symmetric, t0).ApplyRotation(u);
    nearly.ApplyTransform(q); // within 1e-6 of the identity nothing is applied, nor the scale
    make(big, shift).ApplyTransform(r); // 1e8 + 1 − 1e8 would be lost in float arithmetic
    expectCases(CASE(p, 8, 21, 33), CASE(v, -2, 1, 3), CASE(q, 1, 2, 3), CASE(r[0], 1),
                CASE(s, 17, 30, 45), CASE(u, 7, 10, 15));
}

TEST(DUNXAssemblyComponentTransform, CompositionAppliesTheRightOperandFirst) {
    const double right[3] = {1, 0, 0}, t1[3] = {1, 2, 3}, t2[3] = {0, 0, 5};
    const double quarterTurnX[9] = {1, 0, 0, 0, 0, -1, 0, 1, 0};
    Transform a = make(kIdentity, right), b = make(kQuarterTurnZ, kNone);
    a.SetScale(2);
    b.SetScale(3);
    const Transform c = a * b, mn = make(quarterTurnX, t1) * make(kQuarterTurnZ, t2);
    float p[3] = {1, 0, 0}, q[3] = {1, 2, 3}, turned[3] = {1, 2, 3};
    c.ApplyTransform(p);
    // (1, 2, 3) turns about z to (-2, 1, 3), moves to (-2, 1, 8), turns about x to (-2, -8, 1)
    // and moves to (-1, -6, 4); the rotation alone gives (-2, -3, 1).
    mn.ApplyTransform(q);
    mn.ApplyRotation(turned);
    double scale = 0;
    c.GetScale(scale);
    // Turned, then moved; the scales are not composed.
    expectCases(CASE(p, 1, 1, 0), CASE(scale, 1), CASE(q, -1, -6, 4), CASE(turned, -2, -3, 1),
                CASE(flags(mn), 1, false, false, true));
}

TEST(DUNXAssemblyComponentTransform, BulkApplyMatchesSinglePointsWithoutAllocating) {
    const double r[9] = {0.36, 0.48, -0.8, -0.8, 0.6, 0, 0.48, 0.64, 0.6}, t[3] = {4, -7, 0.5};
    const Transform transform = make(r, t);
    std::vector<float> points(3 * 50);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = 5 * std::sin(1.3f * float(i)); // spread over [-5, 5]
    std::vector<float> moved = points, turned = points, untouched = points;
    EXPECT_EQ(allocationsOf([&] {
                  transform.ApplyTransform(moved.data(), 50);
                  transform.ApplyRotation(turned.data(), 50);
                  transform.ApplyTransform(untouched.data(), -1); // a negative count is taken as 0
              }),
              0);
    EXPECT_TRUE(untouched == points);
    for (size_t i = 0; i < 3 * 50; i += 3) {
        float one[3] = {points[i], points[i + 1], points[i + 2]}, two[3] = {one[0], one[1], one[2]};
        transform.ApplyTransform(one);
        transform.ApplyRotation(two);
        ASSERT_EQ(Values(&moved[i], &moved[i] + 3), values(one));
        ASSERT_EQ(Values(&turned[i], &turned[i] + 3), values(two));
    }
}

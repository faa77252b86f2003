#include <dunx/DUNXAssemblyComponentTransform.h>

#include "RandomMotion.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace {

using Transform = DUNXAssemblyComponentTransform;

// A transform from a row-major rotation and a translation.
Transform make(const double rowMajor[9], const double t[3]) {
    double columnMajor[9];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            columnMajor[3 * c + r] = rowMajor[3 * r + c];
    Transform transform;
    transform.SetRotation(columnMajor);
    transform.SetTranslation(t);
    return transform;
}

const double kQuarterTurnZ[9] = {0, -1, 0, 1, 0, 0, 0, 0, 1};
const double kNoMove[3] = {0, 0, 0};

} // namespace

TEST(DUNXAssemblyComponentTransform, StartsAsTheIdentity) {
    Transform t;
    double values[12], scale = 0, determinant = 0;
    EXPECT_EQ(long(t.Get(values)), DUNI_S_SUCCESS);
    const double expected[12] = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(values[i], expected[i]) << i;
    t.GetScale(scale);
    t.GetDeterminant(determinant);
    EXPECT_EQ(scale, 1.0);
    EXPECT_EQ(determinant, 1.0);
    EXPECT_TRUE(t.IsIdentityTransform() && t.IsValid() && !t.IsMirrorTransform());
}

TEST(DUNXAssemblyComponentTransform, NullArraysAreRefusedAndChangeNothing) {
    struct Row {
        const char* what;
        std::function<DUNIResult(Transform&)> call;
    };
    const std::vector<Row> rows = {
        {"Set", [](Transform& t) { return t.Set(nullptr); }},
        {"Get", [](Transform& t) { return t.Get(nullptr); }},
        {"SetRotation", [](Transform& t) { return t.SetRotation(nullptr); }},
        {"GetRotation", [](Transform& t) { return t.GetRotation(nullptr); }},
        {"SetTranslation", [](Transform& t) { return t.SetTranslation(nullptr); }},
        {"GetTranslation", [](Transform& t) { return t.GetTranslation(nullptr); }},
        {"Set3x4ByRow", [](Transform& t) { return t.Set3x4ByRow(nullptr); }},
        {"Set4x4ByColumn", [](Transform& t) { return t.Set4x4ByColumn(nullptr); }},
        {"Get4x4ByRow", [](Transform& t) { return t.Get4x4ByRow(nullptr); }},
        {"Get4x4ByColumn", [](Transform& t) { return t.Get4x4ByColumn(nullptr); }},
        {"ApplyTransform", [](Transform& t) { return t.ApplyTransform(nullptr); }},
        {"ApplyRotation", [](Transform& t) { return t.ApplyRotation(nullptr); }},
        {"ApplyTransform(n)", [](Transform& t) { return t.ApplyTransform(nullptr, 4); }},
        {"ApplyRotation(n)", [](Transform& t) { return t.ApplyRotation(nullptr, 4); }},
    };
    const double t0[3] = {1, 2, 3};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Transform t = make(kQuarterTurnZ, t0);
        EXPECT_EQ(long(row.call(t)), 0x0100000BL);
        double values[12];
        t.Get(values);
        EXPECT_TRUE(values[1] == 1 && values[3] == -1 && values[9] == 1 && values[11] == 3);
    }
}

TEST(DUNXAssemblyComponentTransform, ConvertsBetweenLayouts) {
    Transform t;
    const float byRow[12] = {1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7};
    ASSERT_EQ(long(t.Set3x4ByRow(byRow)), DUNI_S_SUCCESS);
    double translation[3];
    t.GetTranslation(translation);
    EXPECT_TRUE(translation[0] == 5 && translation[1] == 6 && translation[2] == 7);
    float column[16];
    t.Get4x4ByColumn(column);
    EXPECT_TRUE(column[12] == 5 && column[13] == 6 && column[14] == 7 && column[15] == 1);

    // A general 3 × 4 goes in by rows and comes out by rows and by columns.
    const float general[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    t.Set3x4ByRow(general);
    EXPECT_EQ(t.GetRotationElement(0, 1), 2.0);
    EXPECT_EQ(t.GetRotationElement(2, 0), 9.0);
    double rotation[9];
    t.GetRotation(rotation);
    EXPECT_TRUE(rotation[1] == 5 && rotation[3] == 2) << "column-major storage";
    float row[16];
    t.Get4x4ByRow(row);
    const float expectedRows[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 0, 1};
    const float expectedColumns[16] = {1, 5, 9, 0, 2, 6, 10, 0, 3, 7, 11, 0, 4, 8, 12, 1};
    t.Get4x4ByColumn(column);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(row[i], expectedRows[i]) << i;
        EXPECT_EQ(column[i], expectedColumns[i]) << i;
    }
    // Set4x4ByColumn ignores the bottom row.
    float noisy[16];
    for (int i = 0; i < 16; ++i)
        noisy[i] = expectedColumns[i] + ((i % 4 == 3) ? 99.0f : 0.0f);
    Transform u;
    u.Set4x4ByColumn(noisy);
    u.Get4x4ByRow(row);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(row[i], expectedRows[i]) << i;
    double twelve[12], back[12];
    u.Get(twelve);
    Transform v;
    v.Set(twelve);
    v.Get(back);
    EXPECT_TRUE(back[3] == 2 && back[9] == 4 && back[11] == 12);
    EXPECT_EQ(v.GetTranslationElement(1), 8.0);
}

TEST(DUNXAssemblyComponentTransform, FlagsAreComputedLazilyAndTheScaleIsLeftOut) {
    Transform t;
    t.SetScale(3);
    EXPECT_TRUE(t.IsIdentityTransform()) << "the scale is not part of the test";
    double scale = 0;
    t.GetScale(scale);
    EXPECT_EQ(scale, 3.0);

    struct Row {
        const char* what;
        double rotation[9];
        double translation[3];
        bool identity, mirror, valid;
        double determinant;
    };
    for (const Row& row : {
             Row{"tiny translation",
                 {1, 0, 0, 0, 1, 0, 0, 0, 1},
                 {5e-7, -5e-7, 0},
                 true,
                 false,
                 true,
                 1},
             Row{"translation 1e-6",
                 {1, 0, 0, 0, 1, 0, 0, 0, 1},
                 {0, 0, 1e-6},
                 false,
                 false,
                 true,
                 1},
             Row{"near identity",
                 {1 + 9e-7, 9e-7, 0, 0, 1, 0, 0, 0, 1},
                 {0, 0, 0},
                 true,
                 false,
                 true,
                 1 + 9e-7},
             Row{"mirror", {1, 0, 0, 0, -1, 0, 0, 0, 1}, {0, 0, 0}, false, true, true, -1},
             Row{"singular", {1, 2, 3, 2, 4, 6, 0, 0, 1}, {0, 0, 0}, false, false, false, 0},
             Row{"quarter turn", {0, -1, 0, 1, 0, 0, 0, 0, 1}, {0, 0, 0}, false, false, true, 1},
             Row{"scaled", {2, 0, 0, 0, 2, 0, 0, 0, 2}, {1, 1, 1}, false, false, true, 8},
         }) {
        SCOPED_TRACE(row.what);
        const Transform u = make(row.rotation, row.translation);
        double determinant = 0;
        u.GetDeterminant(determinant);
        EXPECT_NEAR(determinant, row.determinant, 1e-15);
        EXPECT_EQ(u.IsIdentityTransform(), row.identity);
        EXPECT_EQ(u.IsMirrorTransform(), row.mirror);
        EXPECT_EQ(u.IsValid(), row.valid);
    }

    // Every setter but SetScale forgets the cached answers.
    Transform w;
    EXPECT_TRUE(w.IsIdentityTransform());
    const double mirror[9] = {-1, 0, 0, 0, 1, 0, 0, 0, 1};
    w.SetRotation(mirror);
    EXPECT_TRUE(w.IsMirrorTransform());
    const double far[3] = {0, 0, 1};
    w.Set3x4ByRow(std::vector<float>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}.data());
    EXPECT_TRUE(w.IsIdentityTransform());
    w.SetTranslation(far);
    EXPECT_FALSE(w.IsIdentityTransform());
    double twelve[12] = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    w.Set(twelve);
    EXPECT_TRUE(w.IsIdentityTransform());
    const float column[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    w.Set4x4ByColumn(column);
    EXPECT_FALSE(w.IsValid());
}

TEST(DUNXAssemblyComponentTransform, ApplyWorksInDoubleAndSkipsTheIdentity) {
    const double t0[3] = {10, 20, 30};
    const Transform t = make(kQuarterTurnZ, t0);
    float p[3] = {1, 2, 3};
    t.ApplyTransform(p);
    EXPECT_TRUE(p[0] == 8 && p[1] == 21 && p[2] == 33);
    float v[3] = {1, 2, 3};
    t.ApplyRotation(v);
    EXPECT_TRUE(v[0] == -2 && v[1] == 1 && v[2] == 3);

    // Near the identity (within 1e-6) nothing is applied at all.
    const double tiny[3] = {5e-7, 0, 0};
    const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    Transform nearly = make(identity, tiny);
    nearly.SetScale(10);
    float q[3] = {1, 2, 3};
    nearly.ApplyTransform(q);
    EXPECT_TRUE(q[0] == 1 && q[1] == 2 && q[2] == 3);

    // Double precision: 1e8 + 1 − 1e8 would be lost in float arithmetic.
    const double big[9] = {1, 1, 0, 0, 1, 0, 0, 0, 1};
    const double shift[3] = {-1e8, 0, 0};
    float r[3] = {1e8f, 1, 0};
    make(big, shift).ApplyTransform(r);
    EXPECT_EQ(r[0], 1.0f);
}

TEST(DUNXAssemblyComponentTransform, CompositionAppliesTheRightOperandFirst) {
    const double right[3] = {1, 0, 0};
    const double identityRotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    Transform a = make(identityRotation, right); // translation (1, 0, 0)
    Transform b = make(kQuarterTurnZ, kNoMove);  // 90° about z
    a.SetScale(2);
    b.SetScale(3);
    const Transform c = a * b;
    float p[3] = {1, 0, 0};
    c.ApplyTransform(p);
    EXPECT_TRUE(p[0] == 1 && p[1] == 1 && p[2] == 0);
    double scale = 0;
    c.GetScale(scale);
    EXPECT_EQ(scale, 1.0) << "scales are not composed";

    dunx::test::RandomMotion random(17);
    for (int trial = 0; trial < 25; ++trial) {
        double r1[9], r2[9], t1[3], t2[3], x[3];
        random.rotation(r1);
        random.rotation(r2);
        random.vector(t1, 10);
        random.vector(t2, 10);
        random.vector(x, 4);
        const Transform m = make(r1, t1), n = make(r2, t2), mn = m * n;
        float once[3], twice[3];
        for (int k = 0; k < 3; ++k)
            once[k] = twice[k] = static_cast<float>(x[k]);
        mn.ApplyTransform(once);
        n.ApplyTransform(twice);
        m.ApplyTransform(twice);
        double expected[3], inner[3];
        dunx::test::multiply3(r2, x, inner);
        for (int k = 0; k < 3; ++k)
            inner[k] += t2[k];
        dunx::test::multiply3(r1, inner, expected);
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(once[k], expected[k] + t1[k], 1e-4);
            EXPECT_NEAR(once[k], twice[k], 1e-4);
        }
        // Rotations keep lengths and have determinant 1.
        float v[3] = {static_cast<float>(x[0]), static_cast<float>(x[1]), static_cast<float>(x[2])};
        mn.ApplyRotation(v);
        EXPECT_NEAR(std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]),
                    std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]), 1e-5);
        double determinant = 0;
        mn.GetDeterminant(determinant);
        EXPECT_NEAR(determinant, 1.0, 1e-12);
    }
}

TEST(DUNXAssemblyComponentTransform, BulkApplyMatchesSinglePointsWithoutAllocating) {
    dunx::test::RandomMotion random(23);
    double r[9], t[3];
    random.rotation(r);
    random.vector(t, 10);
    const Transform transform = make(r, t);
    std::vector<float> points(3 * 50);
    for (float& v : points)
        v = static_cast<float>(random.uniform(-5, 5));
    std::vector<float> moved = points, turned = points;
    long allocations = 0;
    {
        dunx::test::AllocationCounter counter;
        transform.ApplyTransform(moved.data(), 50);
        transform.ApplyRotation(turned.data(), 50);
        allocations = counter.count();
    }
    EXPECT_EQ(allocations, 0);
    for (size_t i = 0; i < 50; ++i) {
        float one[3] = {points[3 * i], points[3 * i + 1], points[3 * i + 2]};
        float two[3] = {one[0], one[1], one[2]};
        transform.ApplyTransform(one);
        transform.ApplyRotation(two);
        for (size_t k = 0; k < 3; ++k) {
            ASSERT_EQ(moved[3 * i + k], one[k]);
            ASSERT_EQ(turned[3 * i + k], two[k]);
        }
    }
}

#include <dunx/DUNXMatrix.h>
#include <dunx/DUNXTrace.h>

#include "MathTestSupport.h"
#include "support/EventRecorder.h"

#include <functional>

using namespace dunx::test;
using M3 = DUNXMath3x3Matrixf;
using M4 = DUNX4x4Matrix;
using V = DUNXVectorf;
using P = DUNXPointf;

namespace {

constexpr float kHalfPi = 1.5707963267948966f;

M3 fromRows(std::vector<float> rowMajor) {
    M3 m;
    m.SetMatrix(rowMajor.data());
    return m;
}

Values elements(const M3& m) {
    float e[9];
    m.GetMatrix(e);
    return Values(e, e + 9);
}

// A homogeneous matrix from the upper-left 3 × 3 block (column-major) and a translation:
// value i of the twelve goes to i + i / 3, past the bottom row of the columns before it.
M4 fromColumns(const double columns[9], const double t[3] = nullptr) {
    float e[16] = {};
    for (int i = 0; i < 12; ++i)
        e[i + i / 3] = static_cast<float>(i < 9 ? columns[i] : (t ? t[i - 9] : 0.0));
    e[15] = 1;
    return M4(e);
}

} // namespace

TEST(DUNXMath3x3Matrixf, DiagonalConstructorSetsTheKind) {
    const auto kind = [](const M3& m) { return join(m.GetKind(), m.IsScaling(), m.IsIsometry()); };
    expectCases(CASE(kind(M3()), 1, true, true), CASE(kind(M3(1.0f)), 1, true, true),
                CASE(kind(M3(-1.0f)), -1, true, true), CASE(kind(M3(2.5f)), 2, true, false),
                CASE(kind(M3(0.5f)), 2, true, false), CASE(kind(M3(-3.0f)), -2, true, false),
                CASE(kind(M3(0.0f)), 0, false, false),
                CASE(kind(M3(2.5f) * 0.5f), 2, true, false), // still a positive scaling
                CASE(kind(M3(-3.0f) * 0.5f), -2, true, false),
                CASE(elements(M3()), 1, 0, 0, 0, 1, 0, 0, 0, 1),
                CASE(elements(M3(-3.0f)), -3, 0, 0, 0, -3, 0, 0, 0, -3));
}

TEST(DUNXMath3x3Matrixf, InverseByKind) {
    M3 out = fromRows({9, 9, 9, 9, 9, 9, 9, 9, 9}), turned, flipped, general, quarter, minusHalf;
    const M3 singular = fromRows({1, 2, 3, 2, 4, 6, 1, 1, 1}),
             m = fromRows({1, 1, 0, 0, 1, 1, 1, 0, 1});
    const Values answers =
        join(M3(0.0f).Inverse(out), singular.Inverse(out), M3(V(0, 0, 1), kHalfPi).Inverse(turned),
             M3(-1.0f).Inverse(flipped), m.Inverse(general), M3(4.0f).Inverse(quarter),
             M3(-2.0f).Inverse(minusHalf));
    // An isometry is inverted by transposition and keeps its kind; so does a uniform scaling.
    expectCases(CASE(answers, false, false, true, true, true, true, true),
                CASE(join(turned.GetKind(), flipped.GetKind(), general.GetKind(), quarter.GetKind(),
                          minusHalf.GetKind()),
                     1, -1, 0, 2, -2),
                CASE(elements(out), 9, 9, 9, 9, 9, 9, 9, 9, 9), // left as it was
                CASE(elements(general), 0.5, -0.5, 0.5, 0.5, 0.5, -0.5, -0.5, 0.5, 0.5),
                CASE(elements(quarter), 0.25, 0, 0, 0, 0.25, 0, 0, 0, 0.25),
                CASE(elements(minusHalf), -0.5, 0, 0, 0, -0.5, 0, 0, 0, -0.5),
                CASE(elements(singular.Inverse()), 1, 0, 0, 0, 1, 0, 0, 0, 1)); // the identity
    expectNear(1e-6, CASE(elements(turned), 0, 1, 0, -1, 0, 0, 0, 0, 1),
               CASE(elements(m * m.Inverse()), 1, 0, 0, 0, 1, 0, 0, 0, 1));
}

TEST(DUNXMath3x3Matrixf, MeasuresColumnsAndElements) {
    M3 m = fromRows({2, -7, 1, 0, 3, -4, 5, 1, 1}), changed, columns;
    expectCases(CASE(m.GetKind(), 0), CASE(m.Determinant(), 2 * 7 + 7 * 20 - 15),
                CASE(m.Trace(), 6), CASE(m.InfiniteNorm(), 2 + 7 + 1),
                CASE(join(m.GetFirstColumn(), m.GetSecondColumn(), m.GetThirdColumn()), 2, 0, 5, -7,
                     3, 1, 1, -4, 1),
                CASE(elements(M3(m).Transpose()), 2, 0, 5, -7, 3, 1, 1, -4, 1));
    columns.SetFirstColumn(V(1, 2, 3));
    columns.SetSecondColumn(V(4, 5, 6));
    columns.SetThirdColumn(V(7, 8, 9));
    changed.SetCoef(1, 2, 5);
    M3 first, second; // each setter voids the kind by itself
    first.SetFirstColumn(V(1, 0, 0));
    second.SetSecondColumn(V(0, 1, 0));
    // A changed element or column voids the kind.
    expectCases(CASE(join(elements(columns), columns.GetKind()), 1, 4, 7, 2, 5, 8, 3, 6, 9, 0),
                CASE(join(changed.GetCoef(1, 2), changed.GetKind()), 5, 0),
                CASE(join(first.GetKind(), second.GetKind()), 0, 0));
}

TEST(DUNXMath3x3Matrixf, VectorConstructorsAndOperators) {
    const V a(1, 2, 3), b(4, 5, 6), c(7, 8, 10);
    const M3 m = fromRows({1, 2, 3, 4, 5, 6, 7, 8, 9}), i,
             n = fromRows({0, 1, 0, 0, 0, 1, 1, 0, 0});
    expectCases(CASE(elements(M3(a, b, c)), 1, 4, 7, 2, 5, 8, 3, 6, 10),
                CASE(elements(M3(a, b)), 1, 4, -3, 2, 5, 6, 3, 6, -3), // a ^ b = (-3, 6, -3)
                CASE(M3(a) * b, -3, 6, -3), CASE(elements(a % b), 4, 5, 6, 8, 10, 12, 12, 15, 18),
                CASE(M3(a, b, c) * V(1, 0, -1), -6, -6, -7),
                CASE(elements(m + i), 2, 2, 3, 4, 6, 6, 7, 8, 10),
                CASE(elements(m - i), 0, 2, 3, 4, 4, 6, 7, 8, 8),
                CASE(elements(m * 2.0f), 2, 4, 6, 8, 10, 12, 14, 16, 18),
                CASE(elements(0.5f * m), 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5),
                CASE(elements(m / 2.0f), 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5),
                CASE(elements(m * n), 3, 1, 2, 6, 4, 5, 9, 7, 8), // n acts first: columns permuted
                CASE(elements(n * m), 4, 5, 6, 7, 8, 9, 1, 2, 3));
    // Products and multiples keep a kind they can vouch for, else 0.
    const M3 turn(V(1, 1, 0), 0.3), flip(-1.0f), grow(2.0f), shrink(-0.5f);
    expectCases(CASE((turn * turn).GetKind(), 1), CASE((turn * flip).GetKind(), -1),
                CASE((flip * flip).GetKind(), 1), CASE((grow * shrink).GetKind(), -2),
                CASE((shrink * shrink).GetKind(), 2), CASE((turn * grow).GetKind(), 0),
                CASE((grow * 3.0f).GetKind(), 2), CASE((grow * -1.0f).GetKind(), -2),
                CASE((grow / -4.0f).GetKind(), -2), CASE((turn * 2.0f).GetKind(), 0),
                CASE((turn * 1.0f).GetKind(), 1), CASE((grow * 0.0f).GetKind(), 0),
                CASE((turn + i).GetKind(), 0), CASE((turn - i).GetKind(), 0));
}

TEST(DUNXMath3x3Matrixf, AxisAngleRotationsTurnCounterClockwiseAboutTheAxis) {
    // A third of a turn about (1, 1, 1) takes x to y, y to z and z to x.
    const M3 third(V(1, 1, 1), 4 * kHalfPi / 3);
    expectNear(1e-6, CASE(M3(V(0, 0, 2), kHalfPi) * V(1, 0, 0), 0, 1, 0),
               CASE(M3(V(1, 0, 0), kHalfPi) * V(0, 1, 0), 0, 0, 1),
               CASE(M3(V(0, 0, 0), kHalfPi) * V(0, 1, 0), 0, 0, 1), // a zero axis counts as x
               CASE(elements(third), 0, 0, 1, 1, 0, 0, 0, 1, 0), CASE(third.Determinant(), 1));
}

TEST(DUNX4x4Matrix, DeterminantAndScalingAreCachedUntilAChange) {
    const auto measures = [](float x, float y, float z) {
        M4 m;
        m.SetElement(0, 0, x), m.SetElement(1, 1, y), m.SetElement(2, 2, z);
        return join(m.GetDeterminant(), m.GetScaling());
    };
    // The scaling is exactly 1 within 1e-6 of a unit determinant, else its cube root.
    expectNear(1e-6, CASE(measures(2, 2, 2), 8, 2), CASE(measures(-2, 4, 1), -8, 2),
               CASE(measures(1, 1, 0.9999f), 0.9999f, std::cbrt(0.9999f)),
               CASE(measures(0, 1, 1), 0, 0));
    // Both ends of each band count as a unit determinant.
    expectCases(CASE(measures(1.0000005f, 1, 1), 1.0000005f, 1),
                CASE(measures(-1, 1, 1.0000009f), -1.0000009f, 1),
                CASE(measures(0.999999f, 1, 1), 0.999999f, 1),
                CASE(measures(1.000001f, 1, 1), 1.000001f, 1),
                CASE(measures(-0.999999f, 1, 1), -0.999999f, 1),
                CASE(measures(1, -1.000001f, 1), -1.000001f, 1));
    M4 m;
    const Values identity = join(m.GetDeterminant(), m.GetScaling());
    m.SetElement(1, 1, 27);
    const Values changed = join(m.GetDeterminant(), m.GetScaling());
    m.multiply(M4(), M4());
    const Values multiplied = values(m.GetDeterminant());
    m *= M4(V(0, 0, 2), V(0, 3, 0), P(), 1); // x · (y × (x ^ y)) = |x ^ y|²
    expectNear(1e-5, CASE(identity, 1, 1), CASE(changed, 27, 3), CASE(multiplied, 1),
               CASE(m.GetDeterminant(), 36));
}

TEST(DUNX4x4Matrix, IsIdentityHasNoTolerance) {
    float identity[16];
    M4().GetMatrix(identity);
    expectCases(
        CASE(identity, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1),
        CASE(join(DUNX4x4MatrixI.IsIdentity(), M4(DUNX4x4MatrixI) == DUNX4x4MatrixI), 1, 1));
    for (int i = 0; i < 16; ++i) {
        M4 m;
        m.SetElement(i % 4, i / 4, m.GetElement(i % 4, i / 4) + 1e-7f);
        EXPECT_FALSE(m.IsIdentity() || m == DUNX4x4MatrixI) << i;
    }
}

TEST(DUNX4x4Matrix, TransformsPointsVectorsAndDirectionsWithoutAllocating) {
    const double columns[9] = {0, 1, 0, -2, 0, 0, 0, 0, 3}, t[3] = {10, 20, 30};
    const M4 m = fromColumns(columns, t);
    P p(1, 2, 3);
    V v(1, 2, 3);
    DUNXDirectionf d(0, 1, 0);
    float out[16];
    m.multiply(p);
    m.multiply(v);
    m.multiply(d);
    m.GetMatrix(out);
    std::vector<P> points(40, P(1, 2, 3));
    EXPECT_EQ(allocationsOf([&] { m.multiply(points.data(), int(points.size())); }), 0);
    expectCases(CASE(p, 6, 21, 39), CASE(v, -4, 1, 9), CASE(d, -1, 0, 0), // normalised again
                CASE(m.GetTranslation(), 10, 20, 30),
                CASE(join(points[0], points[39]), 6, 21, 39, 6, 21, 39),
                CASE(out, 0, 1, 0, 0, -2, 0, 0, 0, 0, 0, 3, 0, 10, 20, 30, 1));
}

TEST(DUNX4x4Matrix, ConstructorsAndComponents) {
    V x, y, z, x2, y2, z2;
    P origin, origin2, onAxis(1, 1, 5), off(2, 1, 0), q(0, 1, 0), p(1, 0, 0);
    M4(V(1, 2, 3), V(4, 5, 6), V(7, 8, 9), V(-1, -2, -3)).GetComponents(x, y, z, origin);
    M4(V(1, 0, 0), V(0, 1, 0), P(5, 6, 7), 2).GetComponents(x2, y2, z2, origin2);
    const float rows[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    const M4 byRows(rows, V(1, 1, 1));
    M4 m;
    m.SetComponents(V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), P(1, 2, 3));
    m.SetTranslation(V(4, 5, 6));
    m.multiply(p);
    // Keeps the points of its line, given by a point off the plane z = 0 so that every
    // coordinate of that point counts.
    const M4 about(V(0, 0, 1), P(1, 1, 2), kHalfPi);
    M4 reset(V(1, 0, 0), 1.0f);
    reset.SetRotation(V(0, 0, 1), P(1, 1, 2), kHalfPi); // replaces the whole matrix
    EXPECT_TRUE(reset == about);
    about.multiply(onAxis);
    about.multiply(off);
    M4(V(1, 0, 0), kHalfPi).multiply(q);
    expectNear(1e-6, CASE(join(x, y, z, origin), 1, 2, 3, 4, 5, 6, 7, 8, 9, -1, -2, -3),
               CASE(join(x2, y2, z2, origin2), 2, 0, 0, 0, 2, 0, 0, 0, 2, 5, 6, 7),
               CASE(join(byRows.GetElement(0, 1), byRows.GetElement(2, 0), byRows.GetElement(3, 3),
                         byRows.GetElement(1, 3)),
                    2, 7, 1, 1),
               CASE(m.GetTranslation(), 4, 5, 6), CASE(m.GetElement(1, 0), 1), CASE(p, 4, 6, 6),
               CASE(onAxis, 1, 1, 5), CASE(off, 1, 2, 0), CASE(q, 0, 0, 1),
               CASE(join(about.GetElement(3, 0), about.GetElement(3, 1), about.GetElement(3, 2),
                         about.GetElement(3, 3)),
                    0, 0, 0, 1)); // a rigid motion keeps the homogeneous row
}

TEST(DUNX4x4Matrix, ComposesInOrderAndInverts) {
    // a: twice a quarter turn about z, then (1, 2, 3); b: a quarter turn about x, then (0, 0, 5).
    const double turnZ[9] = {0, 2, 0, -2, 0, 0, 0, 0, 2}, turnX[9] = {1, 0, 0, 0, 0, 1, 0, -1, 0};
    const double ta[3] = {1, 2, 3}, tb[3] = {0, 0, 5};
    const M4 a = fromColumns(turnZ, ta), b = fromColumns(turnX, tb);
    P once(1, 2, 3), twice(once), back(-3, 4, 9); // a takes (1, 2, 3) to (-3, 4, 9)
    V v(1, 2, 2);
    M4 product, inverse;
    float inverted[16];
    product.multiply(a, b);
    ASSERT_TRUE(a.GetInvertedMatrix(inverse));
    inverse.GetMatrix(inverted);
    (a * b).multiply(once); // b first: (1, -3, 7), then a: (7, 4, 17)
    b.multiply(twice);
    a.multiply(twice);
    inverse.multiply(back);
    b.multiply(v); // a rotation keeps lengths: its scaling is exactly 1
    float normal[3];
    b.ComputeInverseTransposeThirdColumnNormalized(normal); // of a rotation, its third column
    EXPECT_TRUE(product == a * b);
    expectNear(
        1e-5, CASE(join(once, twice), 7, 4, 17, 7, 4, 17), CASE(back, 1, 2, 3),
        CASE(join(inverse.GetDeterminant(), a.GetScaling(), b.GetScaling()), 0.125, 2, 1),
        CASE(v, 1, -2, 2), CASE(normal, 0, -1, 0),
        // A quarter turn back at half the size, the translation undone, the homogeneous row kept.
        CASE(inverted, 0, -0.5, 0, 0, 0.5, 0, 0, 0, 0, 0, 0.5, 0, -1, 0.5, -1.5, 1));
    // A determinant of 1e-14 counts as singular, one of 2e-14 does not.
    M4 singular, tiny, small, untouched(V(1, 0, 0), 1.0f), smallInverse;
    singular.SetElement(2, 2, 0);
    tiny.SetElement(2, 2, 1e-14f);
    small.SetElement(2, 2, 2e-14f);
    const M4 before(untouched);
    EXPECT_FALSE(singular.GetInvertedMatrix(untouched) || tiny.GetInvertedMatrix(untouched));
    EXPECT_TRUE(untouched == before);
    EXPECT_TRUE(small.GetInvertedMatrix(smallInverse));
    EXPECT_FLOAT_EQ(smallInverse.GetElement(2, 2), 5e13f);
}

TEST(DUNX4x4Matrix, InverseTransposeThirdColumnIsTheTransformedNormal) {
    const auto normal = [](Values columns) {
        float n[3];
        fromColumns(columns.data()).ComputeInverseTransposeThirdColumnNormalized(n);
        return values(n);
    };
    const double h = std::sqrt(0.5);
    expectNear(
        1e-6, CASE(normal({2, 0, 0, 0, 1, 0, 0, 0, 5}), 0, 0, 1), // non-uniform scale
        CASE(normal({1, 0, 0, 1, 1, 0, 0, 0, 1}), 0, 0, 1),       // shear in the plane
        CASE(normal({1, 0, 0, 0, 1, 1, 0, 0, 1}), 0, -h, h),      // shear out of it
        CASE(normal({-1, 0, 0, 0, 1, 0, 0, 0, 1}), 0, 0, 1), // mirror: det's sign turns it back
        CASE(normal({0, 0, 0, 0, 0, 0, 0, 0, 1}), 1, 0, 0)); // degenerate: the x axis
}

// The static printers' matrix and point forms: one event per row, of the printer's channel.
TEST(DUNXChannelPrinter, PrintsMatricesAndPointArraysRowByRow) {
    const double m3[3][3] = {{1, -2.5, 0.1234}, {1234.5678, 0, -0.0004}, {7, 8, 9}};
    const double m43[4][3] = {{1, 0, 0}, {0, -1, 0.25}, {0, 0, 1}, {10, -20, 0.0626}};
    const double m44[4][4] = {{1, 2, 3, 4}, {0.5, -0.5, 0, 0}, {0, 0, 1, 0}, {-7, 8.125, 9, 1}};
    const double points[2][4] = {{1, 2, 3, 1}, {-0.5, 0, 12.25, 0.0626}};
    const std::string first = "[ 1.000,  2.000,  3.000,  1.000]";
    struct Row {
        std::function<void()> print;
        std::string event;
        int level;
        std::vector<std::string> texts; // of the events, in order
    };
    const std::string info = "DUNXMessageEvent";
    // clang-format off
    const Row rows[] = {
        {[&] { DUNXInfo::Print3x3Matrix(m3); }, info, 50,
         {"{ 1.000, -2.500,  0.123}\n", "{1234.568,  0.000, -0.000}\n",
          "{ 7.000,  8.000,  9.000}\n"}},
        {[&] { DUNXInfo::Print3x4Matrix(m43); }, info, 50, // the translation last
         {"[1.000, 0.000, 0.000]\n", "[0.000, -1.000, 0.250]\n", "[0.000, 0.000, 1.000]\n",
          "[10.000, -20.000, 0.063]\n"}},
        {[&] { DUNXInfo::Print4x4Matrix(m44); }, info, 50,
         {"[1.000, 2.000, 3.000, 4.000]\n", "[0.500, -0.500, 0.000, 0.000]\n",
          "[0.000, 0.000, 1.000, 0.000]\n", "[-7.000, 8.125, 9.000, 1.000]\n"}},
        {[&] { DUNXInfo::PrintPointArray(points, 2); }, info, 50,
         {first + "\n", "[-0.500,  0.000, 12.250,  0.063]\n"}},
        {[&] { DUNXInfo::PrintPointArray(points, 0); }, "", 0, {}},
        {[&] { DUNXInfo::PrintPointArray(points, -3); }, "", 0, {}},
        {[&] { DUNXInfo::PrintPointArray(nullptr, 2); }, "", 0, {}},
        {[&] { DUNXWarning::PrintPointArray(points, 1); }, "DUNXWarningEvent", 50,
         {"Warning : " + first + "\n"}},
        {[&] { DUNXVerbose::PrintPointArray(points, 1); }, "DUNXVerboseEvent", 30, {first + "\n"}},
        {[&] { DUNXDebug::PrintPointArray(points, 1); }, "DUNXDebugEvent", 10, {first + "\n"}},
        {[&] { DUNXAssert::PrintPointArray(points, 1); }, "DUNXAssertEvent", 30,
         {"Assert : " + first + "\n"}},
        {[&] { DUNXInfo::Tab(), DUNXInfo::PrintPointArray(points, 1), DUNXInfo::Untab(); }, info,
         50, {"    " + first + "\n"}}, // four blanks per tab level
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows);
        EventRecorder recorder;
        row.print();
        std::vector<std::string> texts;
        for (const EventRecorder::Entry& entry : recorder.entries()) {
            texts.push_back(entry.text);
            EXPECT_EQ(entry.name + " " + std::to_string(entry.level),
                      row.event + (" " + std::to_string(row.level)));
        }
        EXPECT_EQ(texts, row.texts);
    }
}

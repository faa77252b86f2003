// Helpers of the math tests: tables of computed values checked against expected ones,
// printed text and allocation counts.
#pragma once

#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXPoint.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/DUNXVectorf.h>

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace dunx::test {

using Values = std::vector<double>;

/// The values of a point (its coordinates through operator[]), of a float point, vector or
/// direction, of an array, or a number alone.
template <class T> Values values(const T& v) {
    if constexpr (std::is_base_of_v<DUNXPoint, T>) {
        Values coordinates;
        for (int i = 0; i < v.GetDimension(); ++i)
            coordinates.push_back(v[i]);
        return coordinates;
    } else if constexpr (std::is_same_v<T, DUNXDirectionf>) {
        return {v.x(), v.y(), v.z()};
    } else if constexpr (std::is_same_v<T, DUNXPointf> || std::is_same_v<T, DUNXVectorf>) {
        return {v.x, v.y, v.z};
    } else if constexpr (std::is_array_v<T> || std::is_same_v<T, Values>) {
        return Values(std::begin(v), std::end(v));
    } else {
        return {static_cast<double>(v)};
    }
}
/// A weight point's stored coordinates, then its weight (the index just past them).
inline Values stored(const DUNXPoint& p) {
    Values v;
    for (int i = 0; i <= p.GetDimension(); ++i)
        v.push_back(p[i]);
    return v;
}
/// The values of each part, one after the other.
template <class... Parts> Values join(const Parts&... parts) {
    Values all;
    for (const Values& part : {values(parts)...})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// Same length and each pair within `tolerance`; a NaN never matches.
inline testing::AssertionResult near(const Values& actual, const Values& expected,
                                     double tolerance = 0.0) {
    bool same = actual.size() == expected.size();
    for (size_t i = 0; same && i < actual.size(); ++i)
        same = std::fabs(actual[i] - expected[i]) <= tolerance;
    if (same)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(actual) << " is not within "
                                       << tolerance << " of " << testing::PrintToString(expected);
}

/// A row of a table of checks: what was computed, its values, the values expected and where
/// the row is written. Write it with CASE(expression, expected values...).
struct Case {
    const char* what;
    Values actual, expected;
    const char* file;
    int line;
};
#define CASE(actual, ...)                                                                          \
    dunx::test::makeCase(#actual, dunx::test::values(actual), {__VA_ARGS__}, __FILE__, __LINE__)
inline Case makeCase(const char* what, Values actual, Values expected, const char* file, int line) {
    return Case{what, std::move(actual), std::move(expected), file, line};
}
inline void expectCase(const Case& c, double tolerance) {
    testing::ScopedTrace trace(c.file, c.line, c.what);
    EXPECT_TRUE(near(c.actual, c.expected, tolerance));
}
/// Checks every row exactly.
template <class... Cases> void expectCases(const Cases&... cases) {
    (expectCase(cases, 0.0), ...);
}
/// Checks every row, each value within `tolerance`.
template <class... Cases> void expectNear(double tolerance, const Cases&... cases) {
    (expectCase(cases, tolerance), ...);
}

/// The text `out << value` prints, with the formatter's defaults unless a double format is given.
template <class T> std::string printed(const T& value, const char* doubleFormat = nullptr) {
    DUNXStringOutputStream stream;
    DUNXStreamFormatter out(&stream);
    if (doubleFormat)
        out.setDoubleFormat(doubleFormat);
    out << value;
    return stream.GetText();
}

/// The number of allocations `work` makes.
template <class Work> long allocationsOf(Work work) {
    AllocationCounter counter;
    work();
    return counter.count();
}

} // namespace dunx::test

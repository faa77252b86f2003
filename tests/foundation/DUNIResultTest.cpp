#include <dunx/DUNIResult.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <string>
#include <utility>

namespace {

std::string hex(long code) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(code) & 0xFFFFFFFFul);
    return text;
}

struct Combination {
    long current;
    long other;
    long expected;
};

// Folds `other` into `current` with `op` and checks both the new value and the copy returned.
template <class Op> void expectCombinations(const Combination* rows, size_t count, Op op) {
    for (size_t i = 0; i < count; ++i) {
        const Combination& row = rows[i];
        SCOPED_TRACE(hex(row.current) + " with " + hex(row.other));
        DUNIResult result(row.current);
        DUNIResult returned = op(result, DUNIResult(row.other));
        EXPECT_EQ(hex(result), hex(row.expected));
        EXPECT_EQ(hex(returned), hex(row.expected));
    }
}

// Short names for the combining tables.
constexpr long S = DUNI_S_SUCCESS, P = DUNI_S_PARTIAL_SUCCESS, NE = DUNI_S_NO_ENTITY,
               NG = DUNI_S_NO_GEOMETRY, F = DUNI_E_FAIL, NI = DUNI_E_NOT_IMPLEMENTED,
               IA = DUNI_E_INVALID_ARGUMENT, IF = DUNI_E_INVALID_FILE, A = DUNI_A_ABORTED,
               U = DUNI_U_UNDETERMINED;

} // namespace

TEST(DUNIResult, DefaultIsUndetermined) {
    DUNIResult result;
    EXPECT_EQ(static_cast<long>(result), DUNI_U_UNDETERMINED);
    EXPECT_TRUE(result.IsFailure());
    EXPECT_TRUE(result.IsUndetermined());
    EXPECT_FALSE(result.IsDeterminedFailure());
    EXPECT_EQ(result.GetReturnCode(), 6);
}

TEST(DUNIResult, ClassesFieldsAndReturnCodes) {
    struct Row {
        long code;
        int success, partial, complete, failure, undetermined, determined, returnCode;
        unsigned criticity, domain, number;
    };
    const Row rows[] = {
        {DUNI_S_SUCCESS, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0},
        {DUNI_S_PARTIAL_SUCCESS, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1},
        {DUNI_S_NO_ENTITY, 1, 0, 1, 0, 0, 0, 0, 0, 0, 2},
        {DUNI_S_NO_GEOMETRY, 1, 0, 1, 0, 0, 0, 0, 0, 0, 3},
        {DUNI_E_FAIL, 0, 0, 0, 1, 0, 1, 1, 1, 0, 1},
        {DUNI_E_NOT_IMPLEMENTED, 0, 0, 0, 1, 0, 1, 5, 1, 0, 5},
        {DUNI_E_INVALID_ARGUMENT, 0, 0, 0, 1, 0, 1, 11, 1, 0, 11},
        {DUNI_A_ABORTED, 0, 0, 0, 1, 0, 1, 3, 2, 0, 3},
        {DUNI_U_UNDETERMINED, 0, 0, 0, 1, 1, 0, 6, 3, 0, 6},
        // The top nibble is not interpreted: these are a success and a "not implemented".
        {0x10000000L, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0},
        {0xF1000005L, 0, 0, 0, 1, 0, 1, 5, 1, 0, 5},
        // A failure from another domain exits with 1 whatever its number.
        {0x01010005L, 0, 0, 0, 1, 0, 1, 1, 1, 1, 5},
        {0x01FFABCDL, 0, 0, 0, 1, 0, 1, 1, 1, 0xFF, 0xABCD},
        // In domain 0 the number is the exit code.
        {0x0100ABCDL, 0, 0, 0, 1, 0, 1, 0xABCD, 1, 0, 0xABCD},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(hex(row.code));
        const DUNIResult result(row.code);
        EXPECT_EQ(result.IsSuccess(), row.success);
        EXPECT_EQ(result.IsPartialSuccess(), row.partial);
        EXPECT_EQ(result.IsCompleteSuccess(), row.complete);
        EXPECT_EQ(result.IsFailure(), row.failure);
        EXPECT_EQ(result.IsUndetermined(), row.undetermined);
        EXPECT_EQ(result.IsDeterminedFailure(), row.determined);
        EXPECT_EQ(result.GetReturnCode(), row.returnCode);
        EXPECT_EQ(result.GetCriticity(), row.criticity);
        EXPECT_EQ(result.GetDomain(), row.domain);
        EXPECT_EQ(result.GetNumber(), row.number);
    }
}

TEST(DUNIResult, MessagesFollowTheTableAndOtherCodesAreUnknown) {
    const std::pair<long, const char*> rows[] = {
        {DUNI_S_SUCCESS, "Success"},
        {DUNI_S_PARTIAL_SUCCESS, "Partial Success"},
        {DUNI_S_NO_ENTITY, "No Entity to Translate"},
        {DUNI_S_NO_GEOMETRY, "No translatable geometry"},
        {DUNI_E_FAIL, "Failure"},
        {DUNI_E_ERROR, "Error Encountered"},
        {DUNI_E_NOT_SUPPORTED, "Not supported"},
        {DUNI_E_NOT_IMPLEMENTED, "Method is not implemented"},
        {DUNI_E_UNEXPECTED, "Unexpected Error"},
        {DUNI_E_INVALID_COMPONENT, "Invalid Component"},
        {DUNI_E_INVALID_OBJECT, "Invalid Object"},
        {DUNI_E_INVALID_ARGUMENT, "Invalid Argument"},
        {DUNI_E_FILE_NOT_FOUND, "File Not Found"},
        {DUNI_E_FILE_OPEN, "File Open Error"},
        {DUNI_E_FILE_SAVE, "File Save Error"},
        {DUNI_E_FILE_ENCRYPTED, "File is encrypted"},
        {DUNI_E_MODEL_TOO_LARGE, "Model size exceeds valid box"},
        {DUNI_E_MODEL_TOO_SMALL, "Model size is smaller than the valid box"},
        {DUNI_E_BAD_WRITE_UNIT, "File write unit is invalid"},
        {DUNI_E_VERSION_NOT_SUPPORTED, "File version is not supported"},
        {DUNI_E_INVALID_FILE, "Invalid file"},
        {DUNI_A_ABORTED, "Aborted"},
        {DUNI_U_UNDETERMINED, "Undetermined"},
        // Kept out of the table on purpose: a value without a type has no message.
        {DUNI_E_NO_VALUE, "Unknown Result"},
        {0x01000003L, "Unknown Result"},
        {0x0100000CL, "Unknown Result"},
        {0x00000004L, "Unknown Result"},
        {0x02000006L, "Unknown Result"},
        {0x01010005L, "Unknown Result"},
    };
    for (const auto& [code, message] : rows) {
        SCOPED_TRACE(hex(code));
        const char* text = DUNIResult(code).GetMessage();
        ASSERT_NE(text, nullptr);
        EXPECT_STREQ(text, message);
    }
}

TEST(DUNIResult, ComparesAndConvertsWithRawCodes) {
    DUNIResult result = DUNI_E_FAIL;
    EXPECT_EQ(result == DUNI_E_FAIL, 1);
    EXPECT_EQ(result != DUNI_E_FAIL, 0);
    EXPECT_EQ(result == DUNI_E_ERROR, 0);
    EXPECT_EQ(result != DUNI_E_ERROR, 1);
    result = DUNI_S_NO_GEOMETRY;
    EXPECT_EQ(static_cast<long>(result), DUNI_S_NO_GEOMETRY);
    DUNIResult copy(result);
    EXPECT_EQ(copy == DUNI_S_NO_GEOMETRY, 1);
    copy = DUNIResult(DUNI_A_ABORTED);
    EXPECT_EQ(static_cast<long>(copy), DUNI_A_ABORTED);
    EXPECT_EQ(static_cast<long>(result), DUNI_S_NO_GEOMETRY);

    // The code is 32 bits: a set top bit reads back as a negative long.
    DUNIResult negative(0xF1000005L);
    EXPECT_EQ(static_cast<long>(negative), static_cast<long>(static_cast<int32_t>(0xF1000005u)));
    EXPECT_EQ(negative == 0xF1000005L, 1);
    EXPECT_EQ(negative == DUNI_E_NOT_IMPLEMENTED, 0);
}

TEST(DUNIResult, FailResultConstantIsFailure) {
    EXPECT_EQ(static_cast<long>(DUNIResult::E_FAIL_RESULT), DUNI_E_FAIL);
    EXPECT_STREQ(DUNIResult::E_FAIL_RESULT.GetMessage(), "Failure");
}

TEST(DUNIResult, StaticReturnCodeAndOkKoString) {
    EXPECT_EQ(DUNIResult::GetReturnCode(true), 1);
    EXPECT_EQ(DUNIResult::GetReturnCode(false), 0);
    EXPECT_STREQ(DUNIResult::GetOKKOString(true), "OK");
    EXPECT_STREQ(DUNIResult::GetOKKOString(false), "KO");
}

TEST(DUNIResult, AndKeepsTheWorseOutcome) {
    // clang-format off
    const Combination rows[] = {
        // A complete success takes any worse outcome.
        {S, P, P}, {S, U, U}, {S, F, F}, {NE, A, A}, {NG, P, P},
        // Among complete successes No Geometry outranks No Entity, which outranks the rest.
        {S, NE, NE}, {NG, NE, NG}, {S, NG, NG}, {NE, NG, NG}, {NE, S, NE}, {NG, S, NG},
        {S, S, S}, {S, 0x00000004L, S}, {NE, 0x10000000L, NE},
        // Partial and undetermined give way to failures only.
        {P, F, F}, {P, U, U}, {P, S, P}, {P, NG, P}, {U, A, A}, {U, IF, IF}, {U, S, U}, {U, P, U},
        // A determined failure stays ...
        {F, S, F}, {F, IA, F}, {F, U, F}, {A, F, A}, {IF, P, IF},
        // ... except "not implemented", which never spoils the whole: it takes the other.
        {NI, S, S}, {NI, NE, NE}, {NI, P, P}, {NI, U, U}, {NI, F, F},
    };
    // clang-format on
    expectCombinations(rows, std::size(rows), [](DUNIResult& a, DUNIResult b) { return a &= b; });
}

TEST(DUNIResult, OrMakesPartialSuccessOfMixedOutcomes) {
    // clang-format off
    const Combination rows[] = {
        // A success mixed with a failure, either way round, is a partial success.
        {S, F, P}, {S, P, P}, {S, U, P}, {NG, A, P}, {F, S, P}, {F, P, P}, {A, NE, P}, {NI, S, P},
        // Otherwise a complete success, a determined failure and a partial success are kept.
        {S, NE, S}, {NE, S, NE}, {F, A, F}, {F, U, F}, {NI, F, NI}, {P, F, P}, {P, S, P}, {P, U, P},
        // Undetermined: a complete success makes it partial and a failure replaces it,
        // but a partial success or another undetermined leaves it undetermined.
        {U, S, P}, {U, NG, P}, {U, IF, IF}, {U, A, A}, {U, P, U}, {U, U, U},
    };
    // clang-format on
    expectCombinations(rows, std::size(rows), [](DUNIResult& a, DUNIResult b) { return a |= b; });
}

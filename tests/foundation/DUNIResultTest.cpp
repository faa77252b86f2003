#include <dunx/DUNIResult.h>

#include <gtest/gtest.h>

#include <vector>

constexpr long S = DUNI_S_SUCCESS, P = DUNI_S_PARTIAL_SUCCESS, NE = DUNI_S_NO_ENTITY,
               NG = DUNI_S_NO_GEOMETRY, F = DUNI_E_FAIL, NI = DUNI_E_NOT_IMPLEMENTED,
               IA = DUNI_E_INVALID_ARGUMENT, IF = DUNI_E_INVALID_FILE, A = DUNI_A_ABORTED,
               U = DUNI_U_UNDETERMINED;

TEST(DUNIResult, ClassesFieldsReturnCodesAndComparisons) {
    // clang-format off
    // long long: the codes above 0x7FFFFFFF do not fit a 32-bit long (Windows).
    const std::pair<long long, std::vector<long long>> rows[] = {
        {P, {1, 1, 0, 0, 0, 0, 0, 0, 0, 1}}, {NG, {1, 0, 1, 0, 0, 0, 0, 0, 0, 3}},
        {IA, {0, 0, 0, 1, 0, 1, 11, 1, 0, 11}}, {A, {0, 0, 0, 1, 0, 1, 3, 2, 0, 3}},
        {U, {0, 0, 0, 1, 1, 0, 6, 3, 0, 6}},
        // The top nibble is not interpreted; a failure of another domain exits with 1.
        {0x10000000L, {1, 0, 1, 0, 0, 0, 0, 0, 0, 0}}, {0xF1000005L, {0, 0, 0, 1, 0, 1, 5, 1, 0, 5}},
        {0x01FFABCDL, {0, 0, 0, 1, 0, 1, 1, 1, 0xFF, 0xABCD}},
        {0x0100ABCDL, {0, 0, 0, 1, 0, 1, 0xABCD, 1, 0, 0xABCD}},
    };
    // clang-format on
    for (const auto& [row, expected] : rows) {
        const long code = static_cast<long>(row); // the 32 bits of a code
        SCOPED_TRACE(testing::Message() << std::hex << code);
        DUNIResult r(code);
        EXPECT_EQ(static_cast<long>(r), static_cast<int32_t>(code)); // sign-extended 32 bits
        EXPECT_TRUE(r == code && !(r != code) && !(r == (code ^ 0x10000000L)));
        const std::vector<long long> got = {r.IsSuccess(),         r.IsPartialSuccess(),
                                            r.IsCompleteSuccess(), r.IsFailure(),
                                            r.IsUndetermined(),    r.IsDeterminedFailure(),
                                            r.GetReturnCode(),     r.GetCriticity(),
                                            r.GetDomain(),         r.GetNumber()};
        EXPECT_EQ(got, expected);
    }
}

TEST(DUNIResult, MessagesFollowTheTableAndOtherCodesAreUnknown) {
    // clang-format off
    const std::pair<long, const char*> rows[] = {
        {S, "Success"}, {P, "Partial Success"}, {NE, "No Entity to Translate"}, {F, "Failure"},
        {NG, "No translatable geometry"}, {DUNI_E_ERROR, "Error Encountered"}, {A, "Aborted"},
        {DUNI_E_NOT_SUPPORTED, "Not supported"}, {NI, "Method is not implemented"},
        {DUNI_E_UNEXPECTED, "Unexpected Error"}, {DUNI_E_INVALID_COMPONENT, "Invalid Component"},
        {DUNI_E_INVALID_OBJECT, "Invalid Object"}, {IA, "Invalid Argument"}, {IF, "Invalid file"},
        {DUNI_E_FILE_NOT_FOUND, "File Not Found"}, {DUNI_E_FILE_OPEN, "File Open Error"},
        {DUNI_E_FILE_SAVE, "File Save Error"}, {DUNI_E_FILE_ENCRYPTED, "File is encrypted"},
        {DUNI_E_MODEL_TOO_LARGE, "Model size exceeds valid box"}, {DUNIResult(), "Undetermined"},
        {DUNI_E_MODEL_TOO_SMALL, "Model size is smaller than the valid box"},
        {DUNI_E_BAD_WRITE_UNIT, "File write unit is invalid"}, {0x02000006L, "Unknown Result"},
        {DUNI_E_VERSION_NOT_SUPPORTED, "File version is not supported"},
        // Left out of the table on purpose: a value without a type has no message.
        {DUNI_E_NO_VALUE, "Unknown Result"}, {0x01010005L, "Unknown Result"},
        {DUNIResult::E_FAIL_RESULT, "Failure"},
    };
    // clang-format on
    for (const auto& [code, message] : rows)
        EXPECT_STREQ(DUNIResult(code).GetMessage(), message) << std::hex << code;
    EXPECT_STREQ(DUNIResult::GetOKKOString(true), "OK");
    EXPECT_STREQ(DUNIResult::GetOKKOString(false), "KO");
    EXPECT_EQ(DUNIResult::GetReturnCode(true), 1);
    EXPECT_EQ(DUNIResult::GetReturnCode(false), 0);
}

TEST(DUNIResult, AndKeepsTheWorseOutcomeOrMakesPartialSuccessOfMixedOnes) {
    // Each row: current, other, result of &=, result of |=. Note: No Geometry outranks No Entity,
    // &= gives way to anything after "not implemented", undetermined |= partial stays undetermined.
    // clang-format off
    const long rows[][4] = {
        {S, P, P, P}, {S, U, U, P}, {S, F, F, P}, {S, 0x4, S, S}, {NE, A, A, P}, {NG, A, A, P},
        {S, NE, NE, S}, {S, NG, NG, S}, {NE, NG, NG, NE}, {NE, S, NE, NE}, {NG, NE, NG, NG},
        {NG, S, NG, NG}, {NE, 0x10000000, NE, NE}, {P, F, F, P}, {P, U, U, P}, {P, S, P, P},
        {P, NG, P, P}, {F, S, F, P}, {F, P, F, P}, {F, IA, F, F}, {F, U, F, F}, {A, NE, A, P},
        {U, A, A, A}, {U, IF, IF, IF}, {U, S, U, P}, {U, NG, U, P}, {U, P, U, U}, {U, U, U, U},
        {NI, S, S, P}, {NI, NE, NE, P}, {NI, P, P, P}, {NI, U, U, NI}, {NI, F, F, NI},
    };
    // clang-format on
    for (const auto& [current, other, anded, ored] : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << current << " with " << other);
        DUNIResult a(current), o(current);
        EXPECT_EQ(static_cast<long>(a &= DUNIResult(other)), anded); // the copy returned
        EXPECT_EQ(static_cast<long>(o |= DUNIResult(other)), ored);
        EXPECT_EQ(static_cast<long>(a), anded);
        EXPECT_EQ(static_cast<long>(o), ored);
    }
}

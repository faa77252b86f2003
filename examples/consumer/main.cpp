// Uses an installed DUNXBase through its umbrella header and checks what it sees,
// so that a broken package (headers, library or link) fails this program.
#include <dunx/DUNXBase.h>

#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void expect(bool ok, const char* what) {
    if (!ok) {
        std::printf("FAILED: %s\n", what);
        ++failures;
    }
}

} // namespace

int main() {
    // Fold the outcome of three steps: the worse outcome wins.
    DUNIResult result = DUNI_S_SUCCESS;
    result &= DUNIResult(DUNI_S_NO_ENTITY);
    result &= DUNIResult(DUNI_S_SUCCESS);
    std::printf("steps: %s\n", result.GetMessage());
    expect(result == DUNI_S_NO_ENTITY, "Success &= No Entity gives No Entity");
    expect(result.IsSuccess() != 0, "No Entity is a success");
    expect(std::strcmp(result.GetMessage(), "No Entity to Translate") == 0, "message of No Entity");

    result &= DUNIResult(DUNI_E_INVALID_ARGUMENT);
    std::printf("with a failed step: %s\n", result.GetMessage());
    expect(result.IsFailure() != 0, "a failed step makes the whole a failure");
    expect(std::strcmp(result.GetMessage(), "Invalid Argument") == 0, "message of the failure");
    expect(result.GetReturnCode() == 11, "return code of Invalid Argument");

    // Build, concatenate and print a string.
    DUNXString greeting("Hello");
    DUNXString text = greeting + DUNXString(", ") + DUNXString::DUNX_YES;
    const char* narrow = text;
    std::printf("text: %s\n", narrow != nullptr ? narrow : "(null)");
    expect(narrow != nullptr && std::strcmp(narrow, "Hello, Yes") == 0, "concatenated text");
    expect(text.length() == 10, "length in units");
    expect(text.endsWith(DUNXString::DUNX_YES), "ends with the word constant");
    expect(DUNXString("yes").equalsIgnoreCase(DUNXString::DUNX_YES), "case-blind comparison");

    if (failures != 0) {
        std::printf("%d check(s) failed\n", failures);
        return 1;
    }
    std::printf("DUNXBase consumer: all checks passed\n");
    return 0;
}

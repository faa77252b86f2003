#include <dunx/DUNXProperties.h>

#include <gtest/gtest.h>

#include <string>

namespace {
std::string text(const DUNXString& s) {
    const char* narrow = s;
    return narrow ? narrow : "<null>";
}
} // namespace

TEST(DUNXProperties, KeepsTheFirstSpellingAndOrderAndGetAtStaysInRange) {
    DUNXProperties props;
    for (const char* set : {"Mode=fast", "Empty=", "Flag", "MODE=slow=1", "=nameless"})
        props.Set(DUNXString(set));
    EXPECT_EQ(long(props.Set("", "x")), DUNI_E_INVALID_ARGUMENT);
    DUNXString value("untouched");
    EXPECT_EQ(long(props.Get("absent", value)), DUNI_E_FAIL);
    EXPECT_EQ(long(props.Get("mode", value)), DUNI_S_SUCCESS);
    EXPECT_EQ(text(value), "slow=1");
    // Out of range, both outputs stay as they were.
    ASSERT_EQ(props.Size(), 3);
    struct Row {
        int index;
        const char* name;
        const char* value;
    };
    for (const Row& row : {Row{-1, nullptr, nullptr}, Row{0, "Mode", "slow=1"}, Row{1, "Empty", ""},
                           Row{2, "Flag", ""}, Row{3, nullptr, nullptr}}) {
        DUNXString name("before"), got("before");
        EXPECT_EQ(long(props.GetAt(row.index, name, got)),
                  row.name ? DUNI_S_SUCCESS : DUNI_E_INVALID_ARGUMENT);
        EXPECT_EQ(text(name) + "=" + text(got),
                  row.name ? std::string(row.name) + "=" + row.value : "before=before")
            << row.index;
    }
}

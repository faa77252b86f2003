#include <dunx/DUNXFile.h>

#include "support/TempDir.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>

static bool isOpen(int descriptor) {
    return dunx::test::IsDescriptorOpen(descriptor);
}

TEST(DUNXFile, KnownByPathOpensNothing) {
    dunx::test::TempDir dir;
    const DUNXFilePath path(dir.file("a.txt").c_str());
    const DUNXFileHandle file(new DUNXFile(path));
    EXPECT_STREQ(file->GetFilePath(), path);
    EXPECT_EQ(file->GetDescriptor(), -1);
    EXPECT_STREQ(file->GetMode(), "");
    EXPECT_FALSE(std::filesystem::exists(dir.file("a.txt")));
}

TEST(DUNXFile, KeepsTheModeAndClosesTheDescriptorWithTheLastHandleOnlyWhenOwned) {
    for (const bool owned : {false, true}) {
        SCOPED_TRACE(owned ? "owned" : "borrowed");
        const int descriptor = ::dup(1);
        DUNXFileHandle first(new DUNXFile(descriptor, owned ? "rb+" : nullptr, owned));
        DUNXFileHandle second = first;
        EXPECT_STREQ(first->GetMode(), owned ? "rb+" : "r");
        EXPECT_EQ(first->GetDescriptor(), descriptor);
        EXPECT_FALSE(first->GetFilePath().IsValid());
        first = DUNXFileHandle();
        EXPECT_TRUE(isOpen(descriptor)) << "closed before the last handle went";
        second = DUNXFileHandle();
        EXPECT_EQ(isOpen(descriptor), !owned);
        if (!owned)
            ::close(descriptor);
    }
    EXPECT_EQ(DUNXFileHandle(new DUNXFile(2, "w"))->GetDescriptor(), 2);
    EXPECT_TRUE(isOpen(2)) << "the console descriptor was closed";
    EXPECT_EQ(DUNXFileHandle(new DUNXFile(-5, "w", true))->GetDescriptor(), -1);
}

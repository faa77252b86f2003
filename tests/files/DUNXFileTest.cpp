#include <dunx/DUNXFile.h>

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <fcntl.h>
#include <unistd.h>

using dunx::test::TempDir;

namespace {

std::string textOf(const DUNXString& s) {
    const unsigned short* units = s;
    std::string text;
    for (int i = 0; units && units[i] != 0; ++i)
        text += static_cast<char>(units[i]);
    return text;
}

// A file whose deletion the test can see.
class WatchedFile : public DUNXFile {
public:
    WatchedFile(int descriptor, bool closeWithFile, bool& deleted)
        : DUNXFile(descriptor, "w", closeWithFile), m_Deleted(deleted) {}
    ~WatchedFile() override { m_Deleted = true; }

private:
    bool& m_Deleted;
};

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}

} // namespace

TEST(DUNXFile, KnownByPathOpensNothing) {
    TempDir dir;
    const DUNXFileHandle handle(new DUNXFile(DUNXFilePath(dir.file("a.txt").c_str())));
    EXPECT_EQ(handle->GetReferenceCount(), 1u);
    EXPECT_EQ(textOf(handle->GetFilePath().GetPath()),
              textOf(DUNXString(dir.file("a.txt").c_str()).replace('/', '\\')));
    EXPECT_EQ(handle->GetDescriptor(), -1);
    EXPECT_STREQ(handle->GetMode(), "");
    EXPECT_FALSE(std::filesystem::exists(dir.file("a.txt")));
}

TEST(DUNXFile, KnownByDescriptorKeepsItsMode) {
    const struct {
        const char* mode;
        const char* expected;
    } cases[] = {{"w", "w"}, {"rb+", "rb+"}, {nullptr, "r"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        const DUNXFileHandle handle(new DUNXFile(2, c.mode));
        EXPECT_EQ(handle->GetDescriptor(), 2);
        EXPECT_STREQ(handle->GetMode(), c.expected);
        EXPECT_FALSE(handle->GetFilePath().IsValid());
    }
    EXPECT_TRUE(isOpen(2));
}

TEST(DUNXFile, ClosesTheDescriptorWithTheLastHandleOnlyWhenOwned) {
    for (const bool owned : {false, true}) {
        SCOPED_TRACE(owned ? "owned" : "borrowed");
        const int descriptor = ::dup(1);
        ASSERT_GE(descriptor, 0);
        bool deleted = false;
        {
            DUNXFileHandle first(new WatchedFile(descriptor, owned, deleted));
            {
                const DUNXFileHandle second = first;
                EXPECT_EQ(first->GetReferenceCount(), 2u);
            }
            EXPECT_FALSE(deleted);
            EXPECT_TRUE(isOpen(descriptor)) << "closed before the last handle went";
        }
        EXPECT_TRUE(deleted);
        EXPECT_EQ(isOpen(descriptor), !owned);
        if (!owned)
            ::close(descriptor);
    }
}

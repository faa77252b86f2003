#include <dunx/DUNXReferenceCount.h>

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace {
int g_Deletions = 0;
struct Tracked : DUNXReferenceCount {
    using DUNXReferenceCount::DUNXReferenceCount;
    ~Tracked() override { ++g_Deletions; }
};
using Handle = DUNXTypedHandle<Tracked>;
} // namespace

TEST(DUNXReferenceCount, CountsInSixtyFourBitsAndStopsAtZero) {
    Tracked big(0xFFFFFFFFull), one(1);
    EXPECT_EQ(big.RaiseReference(), 0x100000000ull);
    EXPECT_EQ(Tracked(big).GetReferenceCount(), 0u); // a copy is a new object
    EXPECT_TRUE(one.IsLastCall());
    EXPECT_EQ(one.LowerReference(), 0u);
    EXPECT_EQ(one.LowerReference(), 0u); // never wraps
    EXPECT_FALSE(one.IsLastCall());
    EXPECT_EQ(one.GetName(), nullptr);
}

TEST(DUNXReferenceHandle, CopiesAssignmentsAndMovesKeepTheCountAndTheLastOneDeletes) {
    g_Deletions = 0;
    Tracked held(1); // an outside holder keeps it alive
    {
        Handle a(new Tracked), b(&held), c(a);
        EXPECT_EQ(a->GetReferenceCount(), 2u);
        EXPECT_EQ(held.GetReferenceCount(), 2u);
        a = a.Get(); // the same pointer again changes nothing
        a = b;
        EXPECT_EQ(c->GetReferenceCount(), 1u);
        EXPECT_EQ(held.GetReferenceCount(), 3u);
        c = std::move(b); // releases c's object, the last reference to it
        EXPECT_EQ(g_Deletions, 1);
        EXPECT_FALSE(b.IsValid());
        Handle d(std::move(c));
        EXPECT_EQ(held.GetReferenceCount(), 3u);
    }
    EXPECT_EQ(g_Deletions, 1);
    EXPECT_EQ(held.GetReferenceCount(), 1u);
}

TEST(DUNXReferenceHandle, ComparesPointers) {
    const Handle a(new Tracked), b(new Tracked), empty;
    EXPECT_TRUE(a == Handle(a));
    EXPECT_TRUE(a != b);
    EXPECT_EQ(a < b, std::less<Tracked*>()(a.Get(), b.Get()));
    EXPECT_FALSE(a < a);
    EXPECT_FALSE(empty.IsValid());
}

#include <dunx/DUNXReferenceCount.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

// A counted object that reports its own deletion.
class Tracked : public DUNXReferenceCount {
public:
    explicit Tracked(int& deletions, unsigned long long count = 0)
        : DUNXReferenceCount(count), m_Deletions(deletions) {}
    Tracked(const Tracked& other) = default;
    ~Tracked() override { ++m_Deletions; }
    int Value() const { return 42; }

private:
    int& m_Deletions;
};

using TrackedHandle = DUNXTypedHandle<Tracked>;

} // namespace

TEST(DUNXReferenceCount, RaiseAndLowerReturnTheNewCountAndStopAtZero) {
    int deletions = 0;
    Tracked object(deletions, 2);
    EXPECT_EQ(object.RaiseReference(), 3u);
    EXPECT_FALSE(object.IsLastCall());
    EXPECT_EQ(object.LowerReference(), 2u);
    EXPECT_EQ(object.LowerReference(), 1u);
    EXPECT_TRUE(object.IsLastCall());
    EXPECT_EQ(object.LowerReference(), 0u);
    EXPECT_EQ(object.LowerReference(), 0u); // stays at 0, never wraps
    EXPECT_EQ(object.GetReferenceCount(), 0u);
    EXPECT_EQ(object.GetName(), nullptr);
    EXPECT_EQ(deletions, 0); // the count never deletes by itself
}

TEST(DUNXReferenceCount, CountIsSixtyFourBits) {
    int deletions = 0;
    Tracked object(deletions, 0xFFFFFFFFull);
    EXPECT_EQ(object.RaiseReference(), 0x100000000ull);
}

TEST(DUNXReferenceCount, CopyStartsAtZero) {
    int deletions = 0;
    Tracked source(deletions, 5);
    Tracked copy(source);
    EXPECT_EQ(copy.GetReferenceCount(), 0u);
    EXPECT_EQ(source.GetReferenceCount(), 5u);
}

TEST(DUNXReferenceHandle, LastHandleDeletesTheObject) {
    int deletions = 0;
    {
        TrackedHandle first(new Tracked(deletions));
        EXPECT_TRUE(first.IsValid());
        EXPECT_EQ(first->GetReferenceCount(), 1u);
        {
            TrackedHandle second(first);
            EXPECT_EQ(first->GetReferenceCount(), 2u);
            EXPECT_TRUE(first == second);
        }
        EXPECT_EQ(deletions, 0);
        EXPECT_EQ(first->Value(), 42);
    }
    EXPECT_EQ(deletions, 1);
}

TEST(DUNXReferenceHandle, ObjectWithAnOutsideHolderSurvivesItsHandles) {
    int deletions = 0;
    Tracked object(deletions, 1); // held by this scope
    { TrackedHandle handle(&object); }
    EXPECT_EQ(object.GetReferenceCount(), 1u);
    EXPECT_EQ(deletions, 0);
}

TEST(DUNXReferenceHandle, AssignmentReleasesTheOldObjectAndIgnoresTheSameOne) {
    int deletions = 0;
    TrackedHandle a(new Tracked(deletions));
    TrackedHandle b(new Tracked(deletions));
    Tracked* held = a.Get();

    a = held; // the same pointer again changes nothing
    EXPECT_EQ(held->GetReferenceCount(), 1u);
    TrackedHandle& alias = a;
    a = alias; // nor does self-assignment
    EXPECT_EQ(held->GetReferenceCount(), 1u);

    a = b; // releases the only reference to the first object
    EXPECT_EQ(deletions, 1);
    EXPECT_EQ(b->GetReferenceCount(), 2u);

    a = nullptr;
    EXPECT_FALSE(a.IsValid());
    EXPECT_EQ(b->GetReferenceCount(), 1u);
}

TEST(DUNXReferenceHandle, MoveTransfersWithoutTouchingTheCount) {
    int deletions = 0;
    TrackedHandle a(new Tracked(deletions));
    TrackedHandle b(std::move(a));
    EXPECT_FALSE(a.IsValid());
    EXPECT_EQ(b->GetReferenceCount(), 1u);
    TrackedHandle c(new Tracked(deletions));
    c = std::move(b);
    EXPECT_EQ(deletions, 1); // c's first object went
    EXPECT_EQ(c->GetReferenceCount(), 1u);
}

TEST(DUNXReferenceHandle, ComparesByPointer) {
    int deletions = 0;
    TrackedHandle a(new Tracked(deletions));
    TrackedHandle b(new Tracked(deletions));
    TrackedHandle empty;
    EXPECT_FALSE(empty.IsValid());
    EXPECT_TRUE(a != b);
    EXPECT_NE(a < b, b < a);
    EXPECT_FALSE(a < a);
    EXPECT_TRUE(empty == TrackedHandle());
}

#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXHashMap.h>
#include <dunx/Gk_Def.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

TEST(DUNXDynamicArray, KeepsOrderThroughInsertAndRemove) {
    DUNXDynamicArray<int> array(10);
    EXPECT_GE(array.Capacity(), 10);
    for (int i = 0; i < 4; ++i)
        array.Add(i);
    EXPECT_TRUE(array.InsertAt(4, 9)); // at Size(): appends
    EXPECT_FALSE(array.InsertAt(6, 7));
    EXPECT_FALSE(array.InsertAt(-1, 7));
    EXPECT_TRUE(array.Remove(1));
    EXPECT_FALSE(array.Remove(1));
    EXPECT_FALSE(array.RemoveAt(4));
    EXPECT_FALSE(array.RemoveAt(-1));
    EXPECT_EQ(std::vector<int>(array.begin(), array.end()), (std::vector<int>{0, 2, 3, 9}));
    EXPECT_EQ(array.Find(3), 2);
    EXPECT_EQ(array.Find(7), -1);
}

TEST(DUNXStack, PopsInReverseOrderAndRefusesWhenEmpty) {
    DUNXStack<std::string> stack;
    stack.Push("a");
    stack.Push("b");
    ASSERT_NE(stack.Top(), nullptr);
    EXPECT_EQ(*stack.Top(), "b");
    std::string item = "untouched";
    EXPECT_TRUE(stack.Pop(item));
    EXPECT_EQ(item, "b");
    EXPECT_TRUE(stack.Pop());
    EXPECT_FALSE(stack.Pop(item));
    EXPECT_EQ(item, "b");
    EXPECT_EQ(stack.Top(), nullptr);
}

TEST(DUNXList, RemovesFirstMatchOnlyAndKeepsAddresses) {
    DUNXList<int> list;
    list.AddTail(2);
    list.AddHead(1);
    list.AddTail(2);
    int* head = list.Head();
    EXPECT_TRUE(list.Remove(2));
    EXPECT_EQ(list.Head(), head);
    EXPECT_EQ(std::vector<int>(list.begin(), list.end()), (std::vector<int>{1, 2}));
    EXPECT_TRUE(list.Contains(2));
    EXPECT_FALSE(list.Remove(3));
}

TEST(DUNXMap, ReplacesValuesAndIteratesInKeyOrder) {
    DUNXMap<std::string, int> map;
    EXPECT_TRUE(map.Set("b", 1));
    EXPECT_TRUE(map.Set("a", 2));
    EXPECT_FALSE(map.Set("b", 3));
    ASSERT_NE(map.Find("b"), nullptr);
    EXPECT_EQ(*map.Find("b"), 3);
    EXPECT_EQ(map.Find("c"), nullptr);
    std::string keys;
    for (const auto& entry : map)
        keys += entry.first;
    EXPECT_EQ(keys, "ab");
    EXPECT_TRUE(map.Remove("a"));
    EXPECT_FALSE(map.Remove("a"));
    EXPECT_EQ(map.Size(), 1);
}

namespace {
// Sends every key to the same slot, so every lookup walks a probe chain.
struct CollidingHash {
    unsigned operator()(int) const { return 7; }
};
} // namespace

TEST(DUNXHashMap, KeysAnsweredIgnoringCaseKeepTheFirstSpelling) {
    DUNXHashMap<DUNXString, int, DUNXStringHashIgnoreCase, DUNXStringEqualIgnoreCase> map;
    EXPECT_TRUE(map.Set("Reader", 1));
    EXPECT_FALSE(map.Set("READER", 2));
    ASSERT_NE(map.Find("reader"), nullptr);
    EXPECT_EQ(*map.Find("reader"), 2);
    EXPECT_EQ(map.Size(), 1);
    std::string spelled;
    map.ForEach([&](const DUNXString& key, int) { spelled = static_cast<const char*>(key); });
    EXPECT_EQ(spelled, "Reader");
    EXPECT_EQ(map.Find("Writer"), nullptr);
    EXPECT_EQ(DUNXStringHashIgnoreCase()("AbC"), DUNXString("abc").hashCode());
}

TEST(DUNXHashMap, RemovalKeepsLaterEntriesOfAProbeChainReachable) {
    DUNXHashMap<int, int, CollidingHash> map;
    for (int i = 0; i < 5; ++i)
        map.Set(i, i * 10);
    EXPECT_TRUE(map.Remove(1));
    EXPECT_FALSE(map.Remove(1));
    for (int i : {0, 2, 3, 4}) {
        SCOPED_TRACE(i);
        ASSERT_NE(map.Find(i), nullptr);
        EXPECT_EQ(*map.Find(i), i * 10);
    }
    EXPECT_EQ(map.Find(1), nullptr);
    EXPECT_TRUE(map.Set(1, 11)); // reuses a removed slot
    EXPECT_EQ(*map.Find(1), 11);
    EXPECT_EQ(map.Size(), 5);
}

TEST(DUNXHashMap, GrowsByDoublingAndKeepsEveryKey) {
    DUNXHashMap<int, int> map;
    EXPECT_EQ(map.Capacity(), 0);
    EXPECT_EQ(map.Find(3), nullptr);
    for (int i = 0; i < 1000; ++i)
        map.Set(i, -i);
    EXPECT_EQ(map.Size(), 1000);
    const int capacity = map.Capacity();
    EXPECT_EQ(capacity & (capacity - 1), 0) << "not a power of two";
    EXPECT_LE(4 * map.Size(), 3 * capacity) << "load factor exceeded";
    int sum = 0;
    map.ForEach([&](int key, int value) { sum += key + value; });
    EXPECT_EQ(sum, 0);
    // Many removals and insertions must not grow the table without bound.
    for (int round = 0; round < 20; ++round)
        for (int i = 0; i < 1000; ++i) {
            map.Remove(i);
            map.Set(i, i);
        }
    EXPECT_EQ(map.Capacity(), capacity);
    map.Clear();
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_EQ(map.Find(5), nullptr);
}

TEST(Gk_Func, EqualHoldsWithinTheToleranceInclusive) {
    EXPECT_TRUE(Gk_Func::equal(1.0, 1.5, 0.5));
    EXPECT_FALSE(Gk_Func::equal(1.0, 1.5000001, 0.5));
    EXPECT_TRUE(Gk_Func::equal(-2.0, -2.0, 0.0));
    EXPECT_FALSE(Gk_Func::equal(1.0, 1.0, -1.0));
    EXPECT_FALSE(Gk_Func::equal(std::nan(""), 0.0, 1.0));
    EXPECT_TRUE(Gk_Func::equal(0.0, Gk_Def::FuzzReal, Gk_Def::FuzzReal));
}

TEST(Gk_Def, TolerancesStartAtTheirDefaultsAndCanBeChanged) {
    EXPECT_EQ(Gk_Def::FuzzReal, 1e-10);
    EXPECT_EQ(Gk_Def::FuzzPos, 1e-06);
    EXPECT_EQ(Gk_Def::FuzzSnap, 0.001);
    EXPECT_EQ(Gk_Def::FuzzKnot, 1e-10);
    EXPECT_EQ(Gk_Def::DUNXPI, 3.141592653589793);
    EXPECT_EQ(Gk_Def::errorLevel, 1);
    const double saved = Gk_Def::FuzzPos;
    Gk_Def::FuzzPos = 1e-3;
    EXPECT_TRUE(Gk_Func::equal(1.0, 1.0005, Gk_Def::FuzzPos));
    Gk_Def::FuzzPos = saved;
}

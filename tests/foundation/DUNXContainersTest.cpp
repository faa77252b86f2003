#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXHashMap.h>
#include <dunx/Gk_Def.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

TEST(DUNXDynamicArray, InsertsAndRemovesOnlyWithinBounds) {
    DUNXDynamicArray<int> array;
    array.Add(0), array.Add(1);
    EXPECT_TRUE(array.InsertAt(2, 9) && array.Remove(1) && !array.Remove(1)); // 2 is Size()
    EXPECT_FALSE(array.InsertAt(3, 7) || array.InsertAt(-1, 7) || array.RemoveAt(2));
    EXPECT_EQ(std::vector<int>(array.begin(), array.end()), (std::vector<int>{0, 9}));
}

TEST(DUNXStack, PopsInReverseOrderAndRefusesWhenEmpty) {
    DUNXStack<int> stack;
    stack.Push(1), stack.Push(2);
    int item = 0;
    EXPECT_TRUE(stack.Pop(item) && item == 2 && stack.Top() && *stack.Top() == 1 && stack.Pop());
    EXPECT_FALSE(stack.Pop(item) || stack.Pop() || stack.Top() || item != 2);
}

TEST(DUNXHashMap, KeysAnsweredIgnoringCaseKeepTheFirstSpelling) {
    DUNXHashMap<DUNXString, int, DUNXStringHashIgnoreCase, DUNXStringEqualIgnoreCase> map;
    EXPECT_TRUE(map.Set("Reader", 1) && !map.Set("READER", 2) && map.Size() == 1);
    EXPECT_EQ(map.Find("reader") ? *map.Find("reader") : 0, 2);
    DUNXString spelled;
    map.ForEach([&](const DUNXString& key, int) { spelled = key; });
    EXPECT_STREQ(static_cast<const char*>(spelled), "Reader");
    EXPECT_EQ(DUNXStringHashIgnoreCase()("AbC"), DUNXString("abc").hashCode());
}

TEST(DUNXHashMap, RemovalKeepsProbeChainsAndChurnDoesNotGrowTheTable) {
    // Every key goes to one slot here, so every lookup walks one probe chain.
    DUNXHashMap<int, int, unsigned (*)(int)> chain([](int) { return 7u; });
    for (int i = 0; i < 5; ++i) // the first lookup finds no table at all
        EXPECT_TRUE(!chain.Find(i) && chain.Set(i, i));
    EXPECT_TRUE(chain.Remove(2) && !chain.Remove(2) && !chain.Find(2) && chain.Find(4));
    DUNXHashMap<int, int> map;
    for (int i = 0; i < 1000; ++i)
        map.Set(i, i);
    const int capacity = map.Capacity();
    EXPECT_TRUE((capacity & (capacity - 1)) == 0 && 4 * map.Size() <= 3 * capacity) << capacity;
    for (int i = 1000; i < 20000; ++i) // each new key takes the place of a removed one
        map.Remove(i - 1000), map.Set(i, i);
    EXPECT_EQ(map.Capacity(), capacity);
    int kept = 0;
    for (int i = 19000; i < 20000; ++i)
        kept += map.Find(i) && *map.Find(i) == i;
    EXPECT_EQ(kept, 1000);
}

TEST(Gk_Def, TolerancesStartAtTheirDefaultsAndEqualIsInclusive) {
    EXPECT_TRUE(Gk_Func::equal(1.0, 1.5, 0.5) && !Gk_Func::equal(1.0, 1.5000001, 0.5) &&
                !Gk_Func::equal(1.0, 1.0, -1.0) && !Gk_Func::equal(std::nan(""), 0.0, 1.0));
    EXPECT_EQ(std::vector<double>({Gk_Def::FuzzReal, Gk_Def::FuzzPos, Gk_Def::FuzzSnap,
                                   Gk_Def::FuzzKnot, Gk_Def::DUNXPI, 1.0 * Gk_Def::errorLevel}),
              std::vector<double>({1e-10, 1e-06, 0.001, 1e-10, 3.141592653589793, 1}));
}

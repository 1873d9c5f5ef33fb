#include "registers/combined_map.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace quillmere {
namespace {

using test::kMegabyte;
using test::NumberedItem;

TRegisterElement Element(u32 number, u16 nMovesMate, u16 nMovesNoMate = 0) {
    return {NumberedItem(number), nMovesMate, nMovesNoMate};
}

// A table of one bucket, so that all elements meet in it.
class CombinedMap : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_table.Resize(1, true)); }
    void Add(u32 number, u16 nMovesMate, u16 nMovesNoMate = 0) {
        const TRegisterElement element = Element(number, nMovesMate, nMovesNoMate);
        m_table.Add(element, Hash(element.item));
    }
    void AddMany(u32 first, u32 count, u16 nMovesMate) {
        for (u32 i = 0; i < count; ++i)
            Add(first + i, nMovesMate);
    }
    const TRegisterElement* Find(u32 number) const {
        const TChessboardRegisterItem item = NumberedItem(number);
        return m_table.Find(item, Hash(item));
    }
    // How many of the numbers are there.
    u32 CountOf(u32 first, u32 count) const {
        u32 found = 0;
        for (u32 i = 0; i < count; ++i)
            found += static_cast<u32>(Find(first + i) != nullptr);
        return found;
    }
    TRegisterCombinedMap::TView View() const { return m_table.View(0); }

    test::CMemoryGate m_gate;
    CRegisterMemory m_memory{16 * kMegabyte, m_gate.Function()};
    TRegisterCombinedMap m_table{m_memory, kLinearCapacity};
};

TEST_F(CombinedMap, TableWithoutArray_FindsNothingAndSweepsNothing) {
    TRegisterCombinedMap table(m_memory, kLinearCapacity);
    EXPECT_FALSE(table.HasArray());
    const TChessboardRegisterItem item = NumberedItem(1);
    EXPECT_EQ(table.Find(item, Hash(item)), nullptr);
    EXPECT_EQ(table.RemoveElements(9, 9), 0U);
    table.Clear(true);
    EXPECT_EQ(table.SweepCursor(), 0U);
}

TEST_F(CombinedMap, FirstElement_ReservesRoomForEight) {
    Add(1, 5);
    EXPECT_FALSE(View().isSorted);
    EXPECT_EQ(View().count, 1U);
    EXPECT_EQ(View().capacity, 8U);
    ASSERT_NE(Find(1), nullptr);
    EXPECT_EQ(Find(1)->nMovesMate, 5);
    EXPECT_EQ(Find(2), nullptr);
}

TEST_F(CombinedMap, LinearBucket_KeepsTheOrderOfInsertion) {
    for (const u32 number : {5U, 1U, 9U, 3U})
        Add(number, static_cast<u16>(number));
    for (u32 i = 0; i < 4; ++i)
        EXPECT_EQ(View().elements[i].nMovesMate, (std::vector<u16>{5, 1, 9, 3}[i]));
}

TEST_F(CombinedMap, SmallFirstCapacity_GrowsToEightByDoubling) {
    TRegisterCombinedMap table(m_memory, 2);
    ASSERT_TRUE(table.Resize(1, true));
    std::vector<u32> capacities;
    for (u32 i = 0; i < 8; ++i) {
        const TRegisterElement element = Element(i, 5);
        table.Add(element, Hash(element.item));
        capacities.push_back(table.View(0).capacity);
    }
    EXPECT_EQ(capacities, (std::vector<u32>{2, 2, 4, 4, 8, 8, 8, 8}));
    for (u32 i = 0; i < 8; ++i)
        EXPECT_NE(table.Find(NumberedItem(i), Hash(NumberedItem(i))), nullptr);
}

TEST_F(CombinedMap, NinthElement_TurnsTheBucketSorted) {
    AddMany(0, 8, 5);
    EXPECT_FALSE(View().isSorted);
    Add(8, 5);
    EXPECT_TRUE(View().isSorted);
    EXPECT_EQ(View().count, 9U);
    EXPECT_EQ(View().capacity, kFirstSortedCapacity);
    EXPECT_EQ(CountOf(0, 9), 9U);
    EXPECT_TRUE(std::is_sorted(View().elements,
                               View().elements + View().count,
                               [](const auto& a, const auto& b) { return a.item < b.item; }));
}

TEST_F(CombinedMap, SortedBucket_GrowsBySixtyPercent) {
    AddMany(0, 12, 5);
    EXPECT_EQ(View().capacity, 12U);
    Add(12, 5);
    EXPECT_EQ(View().capacity, 19U);
    AddMany(13, 7, 5);
    EXPECT_EQ(View().capacity, 30U);
    EXPECT_EQ(CountOf(0, 20), 20U);
}

// Items whose words lie far apart: an order by the sign of a wrapping difference loses some.
TEST_F(CombinedMap, SortedBucket_FindsItemsOfTheWholeRange) {
    std::vector<TRegisterElement> elements;
    for (int i = 0; i < 60; ++i) {
        TRegisterElement element{};
        element.item.bytes[7] = static_cast<u8>(i * 251 % 256);
        element.item.bytes[15] = static_cast<u8>(i);
        element.nMovesMate = static_cast<u16>(i + 1);
        elements.push_back(element);
        m_table.Add(element, Hash(element.item));
    }
    for (const TRegisterElement& element : elements) {
        const TRegisterElement* found = m_table.Find(element.item, Hash(element.item));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->nMovesMate, element.nMovesMate);
    }
}

TEST_F(CombinedMap, SweepOfLinearBucket_SkipsTheElementBehindARemovedOne) {
    AddMany(1, 3, 5);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 2U);
    EXPECT_EQ(Find(1), nullptr);
    EXPECT_NE(Find(2), nullptr);
    EXPECT_EQ(Find(3), nullptr);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 1U);
    EXPECT_EQ(Find(2), nullptr);
}

TEST_F(CombinedMap, Sweep_RemovesWhatIsNotAboveBothLimits) {
    Add(1, 5, 3);
    Add(2, 0, 9);
    Add(3, 7, 3);
    Add(4, 0, 9);
    Add(5, 5, 4);
    EXPECT_EQ(m_table.RemoveElements(5, 3), 1U);
    EXPECT_EQ(Find(1), nullptr);
    EXPECT_EQ(CountOf(2, 4), 4U);
}

TEST_F(CombinedMap, SweptEmptyLinearBucket_FreesItsArray) {
    const u64 before = m_memory.UsedBytes();
    Add(1, 5);
    EXPECT_GT(m_memory.UsedBytes(), before);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 1U);
    EXPECT_EQ(m_memory.UsedBytes(), before);
    EXPECT_EQ(View().capacity, 0U);
    Add(1, 5);
    EXPECT_NE(Find(1), nullptr);
}

TEST_F(CombinedMap, SweptEmptySortedBucket_StaysSortedAndFreesItsArray) {
    AddMany(0, 9, 5);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 9U);
    EXPECT_TRUE(View().isSorted);
    EXPECT_EQ(View().count, 0U);
    EXPECT_EQ(View().capacity, 0U);
    Add(3, 5);
    EXPECT_TRUE(View().isSorted);
    EXPECT_NE(Find(3), nullptr);
    // One or two matches free the array too when nothing is left.
    EXPECT_EQ(m_table.RemoveElements(5, 5), 1U);
    EXPECT_TRUE(View().isSorted);
    EXPECT_EQ(View().capacity, 0U);
}

TEST_F(CombinedMap, SweepOfSortedBucket_ClosesUpOneOrTwoMatchesInPlace) {
    AddMany(0, 10, 9);
    Add(20, 5);
    Add(21, 5);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 2U);
    EXPECT_EQ(View().count, 10U);
    EXPECT_EQ(View().capacity, 12U);
    EXPECT_EQ(CountOf(0, 10), 10U);
}

TEST_F(CombinedMap, SweepOfSortedBucket_ShrinksFromThreeMatchesOn) {
    AddMany(0, 6, 9);
    AddMany(20, 6, 5);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 6U);
    EXPECT_TRUE(View().isSorted);
    EXPECT_EQ(View().count, 6U);
    EXPECT_EQ(View().capacity, 9U);
    EXPECT_EQ(CountOf(0, 6), 6U);
    EXPECT_EQ(CountOf(20, 6), 0U);
}

TEST_F(CombinedMap, ShrinkingBucket_NeverTakesMoreThanItHad) {
    AddMany(0, 9, 9);
    AddMany(20, 3, 5);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 3U);
    EXPECT_EQ(View().count, 9U);
    EXPECT_EQ(View().capacity, 12U);
}

TEST_F(CombinedMap, SweepWithoutMemory_RemovesInPlace) {
    AddMany(0, 6, 9);
    AddMany(20, 6, 5);
    m_gate.Refuse();
    EXPECT_EQ(m_table.RemoveElements(5, 5), 6U);
    EXPECT_EQ(View().count, 6U);
    EXPECT_EQ(View().capacity, 12U);
    EXPECT_EQ(CountOf(0, 6), 6U);
    m_gate.Open();
}

TEST_F(CombinedMap, RefusedFirstArray_LeavesTheBucketEmpty) {
    const u64 before = m_memory.UsedBytes();
    m_gate.Refuse();
    EXPECT_THROW(Add(1, 5), std::bad_alloc);
    m_gate.Open();
    EXPECT_EQ(Find(1), nullptr);
    EXPECT_EQ(m_memory.UsedBytes(), before);
}

TEST_F(CombinedMap, RefusedConversion_LeavesTheLinearArrayValid) {
    AddMany(0, 8, 5);
    const u64 before = m_memory.UsedBytes();
    // The sorted container's own head, and its buffer.
    for (const int allowed : {0, 1}) {
        m_gate.Allow(allowed);
        EXPECT_THROW(Add(8, 5), std::bad_alloc) << allowed;
        EXPECT_FALSE(View().isSorted);
        EXPECT_EQ(View().count, 8U);
        EXPECT_EQ(m_memory.UsedBytes(), before);
    }
    m_gate.Open();
    EXPECT_EQ(CountOf(0, 9), 8U);
    Add(8, 5);
    EXPECT_EQ(CountOf(0, 9), 9U);
}

TEST_F(CombinedMap, RefusedGrowthOfSortedBucket_ChangesNothing) {
    AddMany(0, 12, 5);
    const u64 before = m_memory.UsedBytes();
    m_gate.Refuse();
    EXPECT_THROW(Add(12, 5), std::bad_alloc);
    m_gate.Open();
    EXPECT_EQ(View().count, 12U);
    EXPECT_EQ(CountOf(0, 13), 12U);
    EXPECT_EQ(m_memory.UsedBytes(), before);
}

TEST_F(CombinedMap, SweepCursor_MovesOnByOneBucketASweepAndRoundAgain) {
    ASSERT_TRUE(m_table.Resize(4, true));
    for (const u32 expected : {0U, 1U, 2U, 3U, 0U}) {
        EXPECT_EQ(m_table.SweepCursor(), expected);
        m_table.RemoveElements(1, 1);
    }
}

TEST_F(CombinedMap, Sweep_VisitsEveryBucketWhereverItBegins) {
    ASSERT_TRUE(m_table.Resize(16, true));
    for (u32 round = 0; round < 5; ++round) {
        AddMany(0, 200, 5);
        u32 left = 200;
        // Linear buckets lose half at a time.
        for (int sweep = 0; sweep < 4; ++sweep)
            left -= m_table.RemoveElements(5, 5);
        EXPECT_EQ(left, 0U);
        EXPECT_EQ(CountOf(0, 200), 0U);
    }
}

TEST_F(CombinedMap, LeastDepth_IsThatOfWhatIsLeft) {
    EXPECT_EQ(m_table.LeastDepth(), TRegisterCombinedMap::kNoDepth);
    Add(1, 9, 7);
    EXPECT_EQ(m_table.LeastDepth(), 9U);
    Add(2, 0, 5);
    Add(3, 5, 0);
    Add(4, 11, 0);
    EXPECT_EQ(m_table.LeastDepth(), 5U);
    // The third one, behind a removed one, is skipped.
    EXPECT_EQ(m_table.RemoveElements(5, 5), 1U);
    EXPECT_EQ(m_table.LeastDepth(), 5U);
    EXPECT_EQ(m_table.RemoveElements(5, 5), 1U);
    EXPECT_EQ(m_table.LeastDepth(), 9U);
    EXPECT_EQ(m_table.RemoveElements(8, 8), 0U);
    // Limits that differ: the greater one may still meet the element.
    EXPECT_EQ(m_table.RemoveElements(9, 7), 1U);
    EXPECT_EQ(m_table.LeastDepth(), 11U);
    m_table.Clear(false);
    EXPECT_EQ(m_table.LeastDepth(), TRegisterCombinedMap::kNoDepth);
}

TEST_F(CombinedMap, LeastDepth_FollowsSortedBucketsAndSwap) {
    AddMany(0, 20, 7);
    AddMany(100, 20, 13);
    EXPECT_EQ(m_table.LeastDepth(), 7U);
    EXPECT_EQ(m_table.RemoveElements(7, 7), 20U);
    EXPECT_EQ(m_table.LeastDepth(), 13U);
    TRegisterCombinedMap other(m_memory, kLinearCapacity);
    m_table.Swap(other);
    EXPECT_EQ(other.LeastDepth(), 13U);
    EXPECT_EQ(m_table.LeastDepth(), TRegisterCombinedMap::kNoDepth);
    EXPECT_EQ(other.RemoveElements(13, 13), 20U);
}

TEST_F(CombinedMap, SweepBelowTheLeastDepth_MovesTheCursorOn) {
    ASSERT_TRUE(m_table.Resize(4, true));
    AddMany(0, 8, 99);
    for (const u32 expected : {1U, 2U, 3U, 0U}) {
        EXPECT_EQ(m_table.RemoveElements(98, 98), 0U);
        EXPECT_EQ(m_table.SweepCursor(), expected);
    }
}

TEST_F(CombinedMap, Clear_LeavesEveryBucketLinearAndEmpty) {
    AddMany(0, 20, 5);
    m_table.Clear(false);
    EXPECT_TRUE(m_table.HasArray());
    EXPECT_FALSE(View().isSorted);
    EXPECT_EQ(View().count, 0U);
    EXPECT_EQ(m_memory.UsedBytes(), sizeof(TRegisterBucket) + kBlockOverheadBytes);
    m_table.Clear(true);
    EXPECT_FALSE(m_table.HasArray());
    EXPECT_EQ(m_memory.UsedBytes(), 0U);
}

TEST_F(CombinedMap, Clear_TellsProgressEvery1024Buckets) {
    ASSERT_TRUE(m_table.Resize(4096, true));
    AddMany(0, 500, 5);
    std::vector<u32> freed;
    m_table.Clear(false, [&](u32 elements) { freed.push_back(elements); });
    ASSERT_EQ(freed.size(), 4U);
    EXPECT_TRUE(std::is_sorted(freed.begin(), freed.end()));
    EXPECT_EQ(freed.back(), 500U);
}

TEST_F(CombinedMap, Resize_KeepsOrEmptiesATableOfTheSameSize) {
    ASSERT_TRUE(m_table.Resize(64, true));
    AddMany(0, 100, 5);
    EXPECT_TRUE(m_table.Resize(64, true));
    EXPECT_EQ(CountOf(0, 100), 100U);
    EXPECT_TRUE(m_table.Resize(64, false));
    EXPECT_EQ(CountOf(0, 100), 0U);
    EXPECT_EQ(m_table.BucketCount(), 64U);
    AddMany(0, 100, 5);
    EXPECT_TRUE(m_table.Resize(128, true));
    EXPECT_EQ(m_table.BucketCount(), 128U);
    EXPECT_EQ(CountOf(0, 100), 0U);
}

TEST_F(CombinedMap, ResizeWithoutMemory_LeavesATableWithoutArray) {
    AddMany(0, 10, 5);
    m_gate.Refuse();
    EXPECT_FALSE(m_table.Resize(64, true));
    m_gate.Open();
    EXPECT_FALSE(m_table.HasArray());
    EXPECT_EQ(m_memory.UsedBytes(), 0U);
    EXPECT_EQ(Find(0), nullptr);
    EXPECT_TRUE(m_table.Resize(64, true));
}

TEST_F(CombinedMap, Swap_ExchangesTablesWithTheirAccounts) {
    CRegisterMemory otherMemory(kMegabyte);
    TRegisterCombinedMap other(otherMemory, 2);
    AddMany(0, 10, 5);
    const u64 used = m_memory.UsedBytes();
    m_table.Swap(other);
    EXPECT_FALSE(m_table.HasArray());
    EXPECT_EQ(other.View(0).count, 10U);
    EXPECT_EQ(m_memory.UsedBytes(), used);
    other.Clear(true);
    EXPECT_EQ(m_memory.UsedBytes(), 0U);
}

TEST_F(CombinedMap, Buckets_TakeTheLowBitsOfTheHash) {
    ASSERT_TRUE(m_table.Resize(8, true));
    for (u32 i = 0; i < 50; ++i)
        Add(i, static_cast<u16>(i + 1));
    u32 visited = 0;
    for (u32 bucket = 0; bucket < 8; ++bucket) {
        const auto view = m_table.View(bucket);
        for (u32 i = 0; i < view.count; ++i) {
            EXPECT_EQ(Hash(view.elements[i].item) % 8, bucket);
            ++visited;
        }
    }
    u32 walked = 0;
    m_table.ForEach([&](const TRegisterElement&) { ++walked; });
    EXPECT_EQ(visited, 50U);
    EXPECT_EQ(walked, 50U);
}

}  // namespace
}  // namespace quillmere

#include "tests/support/register_audit.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace quillmere::test {
namespace {

using TSquarePair = std::pair<int, int>;

int Weight(int square) {
    return (square + 1) * (square + 1);
}

// Two pairs of squares whose weights have the same sum, as 1 + 64 = 16 + 49: a figure on both
// squares of the one or of the other gives one hash. No square is in two of them.
std::vector<std::pair<TSquarePair, TSquarePair>> EqualSumPairs() {
    std::map<int, std::vector<TSquarePair>> bySum;
    for (int a = 0; a < kSquareCount; ++a) {
        for (int b = a + 1; b < kSquareCount; ++b)
            bySum[Weight(a) + Weight(b)].emplace_back(a, b);
    }
    std::vector<std::pair<TSquarePair, TSquarePair>> result;
    std::set<int> used;
    for (const auto& [sum, pairs] : bySum) {
        if (pairs.size() < 2)
            continue;
        const std::set<int> squares{
            pairs[0].first, pairs[0].second, pairs[1].first, pairs[1].second};
        const bool isFree = std::none_of(
            squares.begin(), squares.end(), [&](int square) { return used.count(square) != 0; });
        if (squares.size() == 4 && isFree) {
            used.insert(squares.begin(), squares.end());
            result.emplace_back(pairs[0], pairs[1]);
        }
    }
    return result;
}

// One node of a map on the account.
template <class TMap, class FInsert>
u64 NodeBytes(FInsert insert) {
    CRegisterMemory memory(u64{1} << 20);
    TMap map(memory);
    const u64 empty = memory.UsedBytes();
    insert(map, memory);
    return memory.UsedBytes() - empty;
}

template <class T>
using TMapByKey = std::map<i64, T, std::less<>, CRegisterAllocator<std::pair<const i64, T>>>;

u64 BlockBytes(std::size_t bytes) {
    return bytes + kBlockOverheadBytes;
}

u64 TableBytes(const TRegisterCombinedMap& table) {
    if (!table.HasArray())
        return 0;
    u64 bytes = BlockBytes(table.BucketCount() * sizeof(TRegisterBucket));
    for (u32 i = 0; i < table.BucketCount(); ++i) {
        const TRegisterCombinedMap::TView view = table.View(i);
        const std::size_t room = view.capacity * sizeof(TRegisterElement);
        if (view.isSorted)
            bytes += BlockBytes(sizeof(CSortedElements)) + (room != 0 ? BlockBytes(room) : 0);
        else if (view.elements != nullptr)
            bytes += BlockBytes(sizeof(TLinearElements) + room);
    }
    return bytes;
}

u32 ElementsOf(const TRegisterCombinedMap& table) {
    u32 elements = 0;
    table.ForEach([&](const TRegisterElement& element) {
        ++elements;
        EXPECT_GE(std::max(element.nMovesMate, element.nMovesNoMate), table.LeastDepth());
    });
    return elements;
}

}  // namespace

std::vector<TChessboard> EqualHashBoards(u8 figure, int count) {
    const auto pairs = EqualSumPairs();
    std::vector<TChessboard> boards;
    for (int number = 0; number < count; ++number) {
        TChessboard& board = boards.emplace_back();
        InitBoard(board);
        for (int bit = 0; bit < kEqualHashBits; ++bit) {
            const auto& [zero, one] = pairs[static_cast<std::size_t>(bit)];
            const TSquarePair& chosen = (number >> bit & 1) != 0 ? one : zero;
            board.m_board[chosen.first] = figure;
            board.m_board[chosen.second] = figure;
        }
    }
    return boards;
}

u64 PinBytes() {
    static const u64 bytes =
        NodeBytes<TMapByKey<u32>>([](auto& map, auto&) { map.try_emplace(0, 0); });
    return bytes;
}

TRecount RecountRegister(const TAggregatedTemporaryChessboardRegister& aRegister) {
    static const u64 depthBytes = NodeBytes<TSubproblemMapByDepth>(
        [](auto& map, auto& memory) { map.try_emplace(1, memory); });
    static const u64 recordBytes = NodeBytes<TSubproblemMap>(
        [](auto& map, auto&) { map.try_emplace({}, TSubproblemRegisterInfo<bool>{}); });
    static const u64 settingBytes = NodeBytes<TMapByKey<std::unique_ptr<CSubRegister>>>(
        [](auto& map, auto&) { map.try_emplace(0, nullptr); });

    TRecount recount;
    recount.tableElements = ElementsOf(aRegister.Table());
    recount.bytes = TableBytes(aRegister.Table());
    aRegister.ForEachSubRegister([&](u32, u32, const TTemporaryChessboardRegister<true>& sub) {
        recount.doubtfulElements += ElementsOf(sub.Table());
        EXPECT_EQ(sub.TableElementsIn(), ElementsOf(sub.Table()));
        recount.bytes += TableBytes(sub.Table()) + settingBytes + BlockBytes(sizeof(CSubRegister));
    });
    for (const auto& [depth, positions] : aRegister) {
        recount.bytes += depthBytes + positions.size() * recordBytes;
        recount.mapElements += (depth & 1) != 0 ? static_cast<u32>(positions.size()) : 0;
    }
    return recount;
}

void ExpectRegisterAddsUp(const TAggregatedTemporaryChessboardRegister& aRegister, u32 pins) {
    const TRecount recount = RecountRegister(aRegister);
    EXPECT_EQ(aRegister.TableElementsIn(), recount.tableElements);
    EXPECT_EQ(aRegister.GetDoubtfulElementsIn(), recount.doubtfulElements);
    EXPECT_EQ(aRegister.MapElementsIn(), recount.mapElements);
    EXPECT_EQ(aRegister.GetElementsIn(),
              recount.tableElements + recount.doubtfulElements + recount.mapElements);
    ASSERT_GE(aRegister.BytesUsed(), recount.bytes);
    const u64 pinned = aRegister.BytesUsed() - recount.bytes;
    EXPECT_EQ(pinned % PinBytes(), 0U);
    EXPECT_LE(pinned / PinBytes(), pins);
    EXPECT_LE(aRegister.BytesUsed(), aRegister.ByteLimit());
}

}  // namespace quillmere::test

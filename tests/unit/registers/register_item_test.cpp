#include "registers/register_item.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace quillmere {
namespace {

TChessboardRegisterItem ItemOfWord(int index, u64 word) {
    TChessboardRegisterItem item{};
    std::memcpy(item.bytes + 8 * index, &word, sizeof(word));
    return item;
}

TEST(RegisterItem, Order_IsThatOfUnsignedWords) {
    constexpr u64 kHighest = std::numeric_limits<u64>::max();
    EXPECT_LT(ItemOfWord(0, 1), ItemOfWord(0, 2));
    EXPECT_LT(ItemOfWord(0, 1), ItemOfWord(0, kHighest));
    EXPECT_LT(ItemOfWord(0, kHighest >> 1), ItemOfWord(0, (kHighest >> 1) + 1));
}

TEST(RegisterItem, Order_FirstUnequalWordDecides) {
    EXPECT_LT(ItemOfWord(1, std::numeric_limits<u64>::max()), ItemOfWord(0, 1));
    EXPECT_LT(ItemOfWord(7, 5), ItemOfWord(6, 1));
}

TEST(RegisterItem, Order_LowestByteOfAWordCountsLeast) {
    TChessboardRegisterItem low{};
    TChessboardRegisterItem high{};
    low.bytes[0] = 200;
    high.bytes[7] = 1;
    EXPECT_LT(low, high);
}

// The sign of the wrapping difference would put these three in a circle.
TEST(RegisterItem, Order_IsTransitiveOverTheWholeRange) {
    const TChessboardRegisterItem a = ItemOfWord(0, 0);
    const TChessboardRegisterItem b = ItemOfWord(0, 0x6000000000000000);
    const TChessboardRegisterItem c = ItemOfWord(0, 0xc000000000000000);
    EXPECT_LT(a, b);
    EXPECT_LT(b, c);
    EXPECT_LT(a, c);
}

TEST(RegisterItem, Equality_LooksAtEverySquare) {
    const TChessboardRegisterItem item = test::NumberedItem(77);
    EXPECT_EQ(item, test::NumberedItem(77));
    for (int square = 0; square < kSquareCount; ++square) {
        TChessboardRegisterItem other = item;
        other.bytes[square] ^= 0x80;
        EXPECT_FALSE(other == item) << square;
        EXPECT_NE(other <=> item, std::strong_ordering::equal) << square;
    }
}

u32 SlowHash(const TChessboardRegisterItem& item) {
    u32 sum = 0;
    for (u32 i = 0; i < 64; ++i)
        sum += item.bytes[i] * (i + 1) * (i + 1);
    return sum;
}

TEST(Hash, EachSquare_CountsWithItsWeight) {
    for (int square = 0; square < kSquareCount; ++square) {
        for (const int code : {1, 65, 144, 148, 255}) {
            TChessboardRegisterItem item{};
            item.bytes[square] = static_cast<u8>(code);
            EXPECT_EQ(Hash(item), static_cast<u32>(code * (square + 1) * (square + 1)));
        }
    }
}

TEST(Hash, WholeBoards_AgreeWithThePlainSum) {
    TChessboardRegisterItem full;
    std::fill(std::begin(full.bytes), std::end(full.bytes), u8{255});
    EXPECT_EQ(Hash(full), SlowHash(full));
    EXPECT_EQ(Hash(full), 255U * 89'440U);
    for (u32 number = 1; number < 2'000'000'000; number += 99'999'989)
        EXPECT_EQ(Hash(test::NumberedItem(number)), SlowHash(test::NumberedItem(number)));
    EXPECT_EQ(Hash(TChessboardRegisterItem{}), 0U);
}

TEST(MakeRegisterItem, PlainBoard_IsItsSquares) {
    TChessboard board = test::NumberedBoard(5);
    for (const u8 mode : {kOneColourOff, kOneColourSeparated}) {
        board.m_captureState = mode;
        EXPECT_EQ(MakeRegisterItem(board), RegisterItemOfSquares(board.m_board)) << int{mode};
    }
}

TEST(MakeRegisterItem, OneColourPlay_PutsABishopOnTheFirstEmptySquareOfItsKind) {
    TChessboard board = test::NumberedBoard(5);
    board.m_board[0] = kWhiteRook;
    board.m_board[1] = kWhiteRook;
    const TChessboard before = board;
    board.m_captureState = kOneColourParity1;
    TChessboardRegisterItem odd = MakeRegisterItem(board);
    EXPECT_EQ(odd.bytes[3], kBlackBishop);
    board.m_captureState = kOneColourParity0;
    TChessboardRegisterItem even = MakeRegisterItem(board);
    EXPECT_EQ(even.bytes[2], kBlackBishop);
    // Nothing else differs, and the board itself is as it was.
    odd.bytes[3] = 0;
    even.bytes[2] = 0;
    EXPECT_EQ(odd, RegisterItemOfSquares(before.m_board));
    EXPECT_EQ(even, RegisterItemOfSquares(before.m_board));
    EXPECT_TRUE(std::equal(std::begin(board.m_board), std::end(board.m_board), before.m_board));
}

TEST(MakeRegisterItem, OtherBitsOfTheCaptureState_DoNotCount) {
    TChessboard board = test::NumberedBoard(5);
    board.m_captureState = kWhiteCapturedMask | kBlackCapturedMask | kCaptureStateKeepMask;
    EXPECT_EQ(MakeRegisterItem(board), RegisterItemOfSquares(board.m_board));
}

}  // namespace
}  // namespace quillmere

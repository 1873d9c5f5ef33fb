#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "core/fen.h"
#include "tests/support/game_line.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

constexpr const char* kAlphabet =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ()";

TChessboard EmptyBoard() {
    TChessboard board;
    InitBoard(board);
    return board;
}

TChessboard BoardOf(const char* fen) {
    TChessboard board = EmptyBoard();
    EXPECT_TRUE(SetFromFENCode(board, fen, nullptr, nullptr)) << fen;
    return board;
}

TChessboardId IdOfBits(const std::string& bits) {
    TChessboardId id;
    for (const char bit : bits)
        id.AddBit(bit == '1');
    return id;
}

std::string BitsOf(const TChessboardId& id) {
    std::string bits;
    for (int i = 0; i < id.BitCount(); ++i)
        bits += id.Bit(i) ? '1' : '0';
    return bits;
}

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const ChessException& e) {
        return e.what();
    }
    return "nothing thrown";
}

bool DecodesTo(const TChessboardId& id, const TChessboard& board) {
    u8 decoded[kSquareCount];
    std::memset(decoded, 0xaa, sizeof(decoded));
    id.ToBoard(decoded);
    return std::memcmp(decoded, board.m_board, sizeof(decoded)) == 0;
}

TEST(TChessboardId, EmptyBoard_IsSixtyFourZeroBits) {
    const TChessboardId id(EmptyBoard());
    EXPECT_EQ(id.BitCount(), 64);
    EXPECT_EQ(BitsOf(id), std::string(64, '0'));
    EXPECT_EQ(id.ToAlphanum6(), "00000000000");
    EXPECT_TRUE(DecodesTo(id, EmptyBoard()));
}

TEST(TChessboardId, StartPosition_Has192BitsAnd32Characters) {
    const TChessboard board = BoardOf(test::kStartPosition);
    const TChessboardId id(board);
    EXPECT_EQ(id.BitCount(), 192);
    // Computed outside of this program from the rule of the bits.
    EXPECT_EQ(id.ToAlphanum6(), "Jqc5yRmFkaBiF00000MVseDPVYKPRouv");
    EXPECT_TRUE(DecodesTo(id, board));
}

TEST(TChessboardId, EachFigure_IsAOneBitAndItsCodeLowestBitFirst) {
    const struct {
        u8 figure;
        const char* bits;
    } rows[] = {{kWhiteKing, "10000"},
                {kBlackKing, "11000"},
                {kWhitePawn, "10100"},
                {kBlackPawn, "11100"},
                {kWhiteQueen, "10010"},
                {kBlackQueen, "11010"},
                {kWhiteRook, "10110"},
                {kBlackRook, "11110"},
                {kWhiteBishop, "10001"},
                {kBlackBishop, "11001"},
                {kWhiteKnight, "10101"},
                {kBlackKnight, "11101"}};
    for (const auto& row : rows) {
        TChessboard board = EmptyBoard();
        board.m_board[3] = row.figure;
        const TChessboardId id(board);
        EXPECT_EQ(BitsOf(id), "000" + std::string(row.bits) + std::string(60, '0'));
        EXPECT_TRUE(DecodesTo(id, board));
    }
}

TEST(TChessboardId, CodeThatIsNoFigure_Throws) {
    for (int code = 1; code < 256; ++code) {
        TChessboard board = EmptyBoard();
        board.m_board[63] = static_cast<u8>(code);
        bool isFigure = false;
        for (const u8 kind : {kKing, kPawn, kBishop, kRook, kQueen, kKnight})
            isFigure = isFigure || code == (kWhite | kind) || code == (kBlack | kind);
        EXPECT_EQ(MessageOf([&] { const TChessboardId id(board); }),
                  isFigure ? "nothing thrown" : "Unknown figure code")
            << code;
    }
}

TEST(TChessboardId, FullBoard_UsesAllBitsAndRoundTrips) {
    TChessboard board = EmptyBoard();
    std::memset(board.m_board, kBlackKnight, sizeof(board.m_board));
    const TChessboardId id(board);
    EXPECT_EQ(id.BitCount(), 320);
    const std::string text = id.ToAlphanum6();
    EXPECT_EQ(text.size(), 54u);
    TChessboardId again;
    ASSERT_TRUE(again.FromAlphanum6(text));
    EXPECT_EQ(again, id);
    EXPECT_TRUE(DecodesTo(again, board));
}

TEST(TChessboardId, BitPastTheRoom_Throws) {
    TChessboardId id = IdOfBits(std::string(320, '1'));
    const TChessboardId before = id;
    EXPECT_EQ(MessageOf([&] { id.AddBit(false); }), "Exception in TChessboardId");
    EXPECT_EQ(MessageOf([&] { id.AddBit(true); }), "Exception in TChessboardId");
    EXPECT_EQ(id, before);
}

TEST(ToBoard, BitsThatEndTooEarly_Throw) {
    const std::string texts[] = {"",
                                 std::string(63, '0'),
                                 // the last figure is cut off
                                 std::string(63, '0') + "1",
                                 std::string(63, '0') + "1000",
                                 "1000010000"};
    for (const std::string& bits : texts) {
        u8 board[kSquareCount];
        std::memset(board, 0x55, sizeof(board));
        EXPECT_EQ(MessageOf([&] { IdOfBits(bits).ToBoard(board); }), "Wrong chessboard id") << bits;
        for (const u8 square : board)
            EXPECT_EQ(square, 0x55);
    }
}

TEST(ToBoard, CodeAbove11_Throws) {
    for (const std::string figureBits : {"10011", "11011", "10111", "11111"}) {
        u8 board[kSquareCount];
        std::memset(board, 0x55, sizeof(board));
        const TChessboardId id = IdOfBits(figureBits + std::string(63, '0'));
        EXPECT_EQ(MessageOf([&] { id.ToBoard(board); }), "Unknown figure short code") << figureBits;
        EXPECT_EQ(board[0], 0x55);
    }
}

TEST(ToBoard, BitsBehindTheLastSquare_AreIgnored) {
    EXPECT_TRUE(DecodesTo(IdOfBits(std::string(64, '0') + "11111"), EmptyBoard()));
}

TEST(ToAlphanum6, EverySixBitValue_HasItsCharacter) {
    for (int value = 0; value < 64; ++value) {
        TChessboardId id;
        for (int i = 0; i < 6; ++i)
            id.AddBit((value >> i & 1) != 0);
        EXPECT_EQ(id.ToAlphanum6(), std::string(1, kAlphabet[value]));
    }
}

TEST(ToAlphanum6, LastShortGroup_IsFilledWithZeroBits) {
    EXPECT_EQ(TChessboardId().ToAlphanum6(), "");
    EXPECT_EQ(IdOfBits("1").ToAlphanum6(), "1");
    EXPECT_EQ(IdOfBits("11111").ToAlphanum6(), "v");
    EXPECT_EQ(IdOfBits("111111").ToAlphanum6(), ")");
    EXPECT_EQ(IdOfBits("1111111").ToAlphanum6(), ")1");
}

TEST(FromAlphanum6, EveryCharacter_GivesItsSixBitsLowestFirst) {
    for (int value = 0; value < 64; ++value) {
        TChessboardId id;
        ASSERT_TRUE(id.FromAlphanum6(std::string(1, kAlphabet[value])));
        ASSERT_EQ(id.BitCount(), 6);
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(id.Bit(i), (value >> i & 1) != 0);
    }
}

TEST(FromAlphanum6, AnyOtherByte_IsRefusedAndLeavesTheId) {
    const TChessboardId before(BoardOf(test::kStartPosition));
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        if (character != '\0' && std::strchr(kAlphabet, character) != nullptr)
            continue;
        TChessboardId id = before;
        EXPECT_FALSE(id.FromAlphanum6(std::string("00") + character)) << byte;
        EXPECT_EQ(id, before);
    }
}

TEST(FromAlphanum6, SurplusZeroBits_DoNotDisturbTheBoard) {
    const TChessboard board = BoardOf("4k3/8/8/8/8/8/8/4K3");
    const TChessboardId id(board);
    EXPECT_EQ(id.BitCount(), 72);
    const TChessboard three = BoardOf("4k3/8/8/8/8/8/8/4K2R");
    const TChessboardId odd(three);
    EXPECT_EQ(odd.BitCount(), 76);
    TChessboardId again;
    ASSERT_TRUE(again.FromAlphanum6(odd.ToAlphanum6()));
    EXPECT_EQ(again.BitCount(), 78);
    EXPECT_TRUE(DecodesTo(again, three));
    EXPECT_EQ(again.ToAlphanum6(), odd.ToAlphanum6());
}

TEST(FromAlphanum6, TextBeyondTheRoom_IsRefusedAndLeavesTheId) {
    const TChessboardId before(BoardOf(test::kStartPosition));
    const std::string texts[] = {
        std::string(55, '0'),        // 330 bits
        std::string(53, '0') + "4",  // bit 320 is set
        std::string(1 << 20, '0'),
    };
    for (const std::string& text : texts) {
        TChessboardId id = before;
        EXPECT_FALSE(id.FromAlphanum6(text));
        EXPECT_EQ(id, before);
    }
}

TEST(FromAlphanum6, EmptyText_IsAnEmptyIdThatIsNoPosition) {
    TChessboardId id(BoardOf(test::kStartPosition));
    EXPECT_TRUE(id.FromAlphanum6(""));
    EXPECT_EQ(id.BitCount(), 0);
    u8 board[kSquareCount];
    EXPECT_EQ(MessageOf([&] { id.ToBoard(board); }), "Wrong chessboard id");
}

}  // namespace
}  // namespace quillmere

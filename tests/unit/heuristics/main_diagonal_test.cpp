#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr u32 kShutIn = SH_DONTLEAVEMAINDIAGONAL | SH_KEEPKINGONTHEEDGE;

struct TCase {
    const char* fen;
    const char* move;
    bool isLeftOut;
};

TEST(MainDiagonal, BishopThatLeavesTheKingsLongDiagonal_IsLeftOut) {
    constexpr TCase kCases[] = {
        {"7k/5K2/5p2/8/8/2B5/8/8", "c3b4", true},
        {"7k/5K2/5p2/8/8/2B5/8/8", "c3d4", false},
        {"7k/5K2/5p2/8/8/2B5/P7/8", "c3f6", false},
        {"7k/5K2/5p2/8/8/8/3B4/8", "d2e3", false},   // was off it
        {"6k1/4K3/5p2/8/8/2B5/8/8", "c3b4", false},  // the king is off it
        {"k7/2K5/1p6/8/8/2B5/8/8", "c3b4", false},   // another diagonal
        {"k7/2K5/8/3p4/4B3/8/8/8", "e4b1", true},
        {"7k/5K2/5p2/8/8/2Q5/8/8", "c3b4", false},  // a queen
    };
    for (const TCase& c : kCases) {
        test::CWhiteRuleBoard board(c.fen, 5, kShutIn);
        board.Settings().StrictKingMove = true;
        EXPECT_EQ(IsMoveLeftOut(board.Line(c.move)), c.isLeftOut) << c.fen << ' ' << c.move;
    }
}

TEST(MainDiagonal, KingThatMayMove_NeedsNoLid) {
    const std::string fen = "7k/5K2/5p2/8/8/2B5/8/8";
    EXPECT_FALSE(test::IsLineLeftOut(fen, 5, kShutIn, "c3b4"));
    test::CWhiteRuleBoard board(fen, 5, SH_DONTLEAVEMAINDIAGONAL);
    board.Settings().StrictKingMove = true;
    EXPECT_FALSE(IsMoveLeftOut(board.Line("c3b4")));
}

}  // namespace
}  // namespace quillmere

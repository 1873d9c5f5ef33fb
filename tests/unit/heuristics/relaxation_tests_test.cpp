#include "heuristics/relaxation_tests.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr u16 kHalfMoves = 9;

struct TRow {
    const char* fen;
    bool isTrue;
};

template <class TTest, std::size_t kCount>
void ExpectAnswers(const TRow (&rows)[kCount], TTest test) {
    for (const TRow& row : rows) {
        CSearchBoard board(std::string(row.fen) + " w - - 0 1", kHalfMoves);
        const TChessboard kept = board.Root();
        EXPECT_EQ(test(board.Root()), row.isTrue) << row.fen;
        EXPECT_EQ(std::memcmp(&kept, &board.Root(), sizeof kept), 0) << row.fen;
    }
}

TEST(RelaxationTests, WalledIn_IsAllNeighboursButOne) {
    constexpr TRow kRows[] = {
        {"kr6/p7/8/8/8/8/8/KQRRB3", true},      // corner: two
        {"kr6/8/8/8/8/8/8/KQRRB3", false},      // one, four white figures
        {"kr6/8/8/8/8/8/8/KQRR4", true},        // one, three white figures
        {"k7/8/8/8/8/8/8/KQRR4", false},        // none
        {"kr6/pp6/8/8/8/8/8/KQRR4", false},     // three
        {"2nkr3/2pp4/8/8/8/8/8/KQRRB3", true},  // edge: four
        {"3kr3/2pp4/8/8/8/8/8/KQRRB3", false},  // three
        {"3kr3/2pp4/8/8/8/8/8/KQRR4", true},
        {"3kr3/3p4/8/8/8/8/8/KQRR4", false},
        {"8/2ppp3/2pkp3/2rn4/8/8/8/KQRRB3", true},   // middle: seven
        {"8/2ppp3/2pkp3/2r5/8/8/8/KQR1B2R", false},  // six
        {"8/2ppp3/2pkp3/2r5/8/8/8/KQR5", true},
        {"8/2ppp3/2pkp3/8/8/8/8/KQR5", false},
    };
    ExpectAnswers(kRows, IsBlackKingWalledIn);
}

TEST(RelaxationTests, KingMoveExceptions_SuitFourPatterns) {
    constexpr TRow kRows[] = {
        {"k1K5/8/8/8/8/8/7Q/3nn3", true},     // a lone queen
        {"k1K5/7Q/8/8/8/8/8/3nn3", false},    // that leaves no square
        {"k1K5/8/8/8/8/8/7Q/4n3", false},     // against one figure
        {"k1K5/8/8/8/8/8/1R5Q/3nn3", false},  // not alone
        {"k7/2K5/8/8/8/8/7Q/3nn3", false},    // on no line
        {"k2K4/8/8/8/8/8/7Q/3nn3", false},    // too far
        {"kr6/p7/8/8/8/8/8/KQRRB3", true},    // walled in
        {"8/3k3r/8/8/8/8/7q/K7", true},       // safe checks
        {"8/3k4/8/8/8/8/7n/K7", false},       // no checks
    };
    ExpectAnswers(kRows, SuitsKingMoveExceptions);
}

TEST(RelaxationTests, Checks_MustBeTwoAndOneOfThemSafe) {
    constexpr TRow kRows[] = {
        // The knight checks on c2 and on b3.
        {"8/3k4/8/8/3n4/8/8/K6R", true},
        // b3 is covered.
        {"8/3k4/8/8/3n4/8/P7/K6R", true},
        // Both are.
        {"8/3k4/8/8/3n4/4B3/P2R4/K7", false},
        // A single check.
        {"8/3k4/8/8/8/8/8/K5bR", false},
    };
    ExpectAnswers(kRows, SuitsKingMoveExceptions);
}

TEST(RelaxationTests, RookBesideKing_NeedsOneMoveAndAKingWithoutRoom) {
    constexpr TRow kRows[] = {
        // Only Rg8 ends beside the king, which has h7 alone.
        {"r6k/p7/8/8/8/2K5/8/6R1", true},
        // Three moves of two rooks.
        {"r6k/pr6/5P2/8/8/8/8/6BK", false},
        // The king has three squares.
        {"r6k/p7/8/8/8/2K5/8/8", false},
    };
    ExpectAnswers(kRows, SuitsKingMoveExceptions);
}

TEST(RelaxationTests, KeyPin_StandsOnOneClearLine) {
    const struct {
        const char* fen;
        const char* key;
        const char* pinned;
        bool isTrue;
    } rows[] = {
        {"R5rk/8/8/8/8/8/8/KB6", "a8", "g8", true},
        {"R4nrk/8/8/8/8/8/8/KB6", "a8", "g8", false},  // a figure between
        {"R4nrk/8/8/8/8/8/8/KB6", "a8", "f8", false},  // a figure behind
        {"R5rk/8/8/8/8/8/8/KB6", "b1", "g8", false},   // another line
        {"B5rk/8/8/8/8/8/8/KR6", "a8", "g8", false},   // a bishop on a rank
        {"R5rk/8/8/8/8/8/8/KB6", "a7", "g8", false},   // nothing there
    };
    for (const auto& row : rows) {
        CSearchBoard board(std::string(row.fen) + " w - - 0 1", kHalfMoves);
        board.Thread().heuristics.KeyWhiteFigureSquare = static_cast<u8>(test::SquareOf(row.key));
        board.Thread().heuristics.KeyWhiteFigurePinned =
            static_cast<u8>(test::SquareOf(row.pinned));
        EXPECT_EQ(IsKeyPinStanding(board.Root()), row.isTrue) << row.fen << row.key << row.pinned;
    }
    CSearchBoard unset("R5rk/8/8/8/8/8/8/KB6 w - - 0 1", kHalfMoves);
    EXPECT_FALSE(IsKeyPinStanding(unset.Root()));
}

TEST(RelaxationTests, Corner_IsOneOfFour) {
    constexpr TRow kRows[] = {
        {"k7/8/8/8/8/8/8/4K3", true},
        {"8/8/8/8/8/8/8/4K2k", true},
        {"1k6/8/8/8/8/8/8/4K3", false},
        {"8/1k6/8/8/8/8/8/4K3", false},
    };
    ExpectAnswers(kRows, IsBlackKingInCorner);
}

TEST(RelaxationTests, CornerSquares_AreNextToTheCorners) {
    constexpr TRow kRows[] = {
        {"8/1k6/8/8/8/8/8/4K3", true},
        {"8/8/8/8/8/8/6k1/3K4", true},
        {"8/2k5/8/8/8/8/8/4K3", false},
        {"k7/8/8/8/8/8/8/4K3", false},
    };
    ExpectAnswers(kRows, IsBlackKingOnCornerSquare);
}

TEST(RelaxationTests, Closed_MeansKingCapturesOnly) {
    constexpr TRow kRows[] = {
        {"6Nk/8/7K/8/8/p7/P7/8", true},
        {"6Nk/8/7K/8/8/p7/8/8", false},   // the pawn moves
        {"6Nk/8/8/7K/8/p7/P7/8", false},  // the king moves
    };
    ExpectAnswers(kRows, IsClosedButForKingCaptures);
}

TEST(RelaxationTests, LosingNoFigures_SuitsAHarmlessPawn) {
    constexpr TRow kRows[] = {
        {"8/8/8/3k4/8/P7/8/KB6", true},
        {"8/8/8/1k6/8/P7/8/KB6", false},     // its square is covered
        {"8/8/8/3k4/p7/P7/8/KB6", false},    // it cannot move
        {"8/8/8/3k4/8/P7/8/KR6", false},     // a rook
        {"8/8/8/3k4/8/P7/8/KBBNN3", false},  // four figures
    };
    ExpectAnswers(kRows, [](TChessboard& node) {
        const TChessboard kept = node;
        node.m_searchFlags |= kSearchPromotionAhead;
        node.Heur = SH_ASSERTBLACKKINGSURROUNDED;
        const bool answer = SuitsLosingNoFigures(node);
        node = kept;
        return answer;
    });
}

}  // namespace
}  // namespace quillmere

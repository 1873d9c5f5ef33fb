#include "core/move_generation.h"
#include "search/mate_search.h"
#include "search/refuted_moves.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <memory>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::MoveOf;

int CountRefuted(CSearchBoard& board, CRefutedMoves& refuted) {
    TMoveList list;
    list.count = GetAllWhiteMoves(board.Root(), list.moves);
    int count = 0;
    for (const TMove move : list)
        count += refuted.Contains(move) ? 1 : 0;
    return count;
}

TEST(RefutedMoves, BeforeTheStart_NothingIsRefuted) {
    CSearchBoard board("4k3/8/8/8/8/8/8/R5K1", kFilteredLevel);
    CRefutedMoves refuted(board.Root());
    EXPECT_EQ(CountRefuted(board, refuted), 0);
}

TEST(RefutedMoves, WithoutAMemory_AStepOfTheKingIsTheFirstFilter) {
    CSearchBoard board("4k3/8/8/8/8/8/8/R5K1", kFilteredLevel);
    CRefutedMoves refuted(board.Root());
    refuted.Start();
    EXPECT_GT(CountRefuted(board, refuted), 0);
    refuted.Learn();  // and there is nothing to learn from
}

TEST(RefutedMoves, ARememberedRefutation_IsLaidOverTheList) {
    CSearchBoard board("kb5r/pp5p/8/8/8/8/1R6/6K1", kFilteredLevel);
    auto memory = std::make_unique<TMoveMemory>();
    board.Thread().moveMemory = memory.get();
    CRefutedMoves refuted(board.Root());
    refuted.Start();
    EXPECT_EQ(CountRefuted(board, refuted), 0) << "the king has no step, and nothing is remembered";
    memory->Killers(kFilteredLevel - 1).Note(MoveOf("h8g8"));
    refuted.Learn();
    EXPECT_TRUE(refuted.Contains(MoveOf("g1f1")));
}

TEST(RefutedMoves, Promotions_AreNeverRefuted) {
    CSearchBoard board("7k/P7/8/8/8/8/8/6K1", kFilteredLevel);
    CRefutedMoves refuted(board.Root());
    refuted.Start();
    EXPECT_FALSE(refuted.Contains(MoveOf("a7a8q")));
    EXPECT_FALSE(refuted.Contains(MoveOf("a7a8n")));
}

TEST(RefutedMoves, InOneColourPlay_NothingIsRefuted) {
    CSearchBoard board("4k3/8/8/8/8/8/8/R5K1", kFilteredLevel);
    auto memory = std::make_unique<TMoveMemory>();
    board.Thread().moveMemory = memory.get();
    memory->Killers(kFilteredLevel - 1).Note(MoveOf("e8e7"));
    board.Root().m_captureState |= kOneColourParity1;
    CRefutedMoves refuted(board.Root());
    refuted.Start();
    refuted.Learn();
    EXPECT_EQ(CountRefuted(board, refuted), 0);
}

TEST(RefutedMoves, MoreRepliesThanThereIsRoomFor_AreLeft) {
    CSearchBoard board("4k3/pppp4/8/8/8/8/8/R5K1", kFilteredLevel);
    auto memory = std::make_unique<TMoveMemory>();
    board.Thread().moveMemory = memory.get();
    CRefutedMoves refuted(board.Root());
    refuted.Start();
    for (int from = 0; from < kSquareCount; ++from) {
        for (int to = 0; to < kSquareCount; to += 5) {
            if (from == to)
                continue;
            memory->Killers(kFilteredLevel - 1).Note(MakeMove(from, to));
            refuted.Learn();
        }
    }
    EXPECT_GT(CountRefuted(board, refuted), 0);
}

// Moves of another position in the memory must not change a verdict.
TEST(RefutedMoves, ForeignMovesInTheMemory_DoNotChangeTheVerdict) {
    for (const auto& [fen, verdict] : {std::pair{"k7/8/8/2K5/8/8/8/1Q6", kMate},
                                       std::pair{"k7/pp5p/8/8/8/8/1R6/6K1", kNoMate}}) {
        for (int from = 0; from < kSquareCount; ++from) {
            for (int to = 0; to < kSquareCount; to += 3) {
                CSearchBoard board(fen, kFilteredLevel);
                auto memory = std::make_unique<TMoveMemory>();
                board.Thread().moveMemory = memory.get();
                memory->Killers(kFilteredLevel - 1).Note(MakeMove(from, to));
                memory->Killers(kFilteredLevel).Note(MakeMove(to, from));
                ASSERT_EQ(FindMate(board.Root(), true), verdict) << fen << ' ' << from << ' ' << to;
            }
        }
    }
}

}  // namespace
}  // namespace quillmere

#include "core/chess_exception.h"
#include "core/make_move.h"
#include "core/perft.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"
#include "tests/support/game_line.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

u64 CountMoves(const char* fen, bool whiteToMove, int depth) {
    TThreadContext thread(static_cast<u16>(depth + 1));
    TChessboard root = test::FilledBoard(fen);
    root.m_threadContext = &thread;
    thread.rootNode = &root;
    SetupPerftRoot(root, whiteToMove, depth);
    return Perft(root, depth);
}

TEST(Perft, StartPosition_HasThePublishedCounts) {
    const u64 counts[] = {1, 20, 400, 8902, 197281};
    for (int depth = 0; depth <= 4; ++depth)
        EXPECT_EQ(CountMoves(test::kStartPosition, true, depth), counts[depth]);
}

TEST(Perft, PositionWithEveryKindOfMove_HasThePublishedCounts) {
    constexpr const char* kFen = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R";
    EXPECT_EQ(CountMoves(kFen, true, 1), 48u);
    EXPECT_EQ(CountMoves(kFen, true, 2), 2039u);
    EXPECT_EQ(CountMoves(kFen, true, 3), 97862u);
}

TEST(Perft, BlackToMove_CountsTheColourSwappedTree) {
    constexpr const char* kWhite = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R";
    constexpr const char* kBlack = "r3k2r/pppbbppp/2n2q1P/1P2p3/3pn3/BN2PNP1/P1PPQPB1/R3K2R";
    for (int depth = 1; depth <= 3; ++depth)
        EXPECT_EQ(CountMoves(kBlack, false, depth), CountMoves(kWhite, true, depth));
}

// A game goes on with too little to mate.
TEST(Perft, MaterialThatCannotMate_IsCounted) {
    EXPECT_EQ(CountMoves("7k/8/8/8/8/8/8/K7", true, 1), 3u);
    EXPECT_EQ(CountMoves("7k/8/8/8/8/8/8/K7", true, 2), 9u);
    EXPECT_EQ(CountMoves("7k/8/8/8/8/8/8/KB6", true, 1), 2u + 7u);
}

TEST(SetupPerftRoot, HalfMoves_GetTheParityOfTheSide) {
    const struct {
        bool whiteToMove;
        int depth;
        int halfMoves;
    } rows[] = {{true, 0, 1},
                {true, 1, 1},
                {true, 2, 3},
                {true, 3, 3},
                {false, 0, 0},
                {false, 1, 2},
                {false, 2, 2},
                {false, 3, 4}};
    for (const auto& row : rows) {
        TChessboard root = test::FilledBoard("7k/8/8/8/8/8/8/K7");
        SetupPerftRoot(root, row.whiteToMove, row.depth);
        EXPECT_EQ(root.m_nMoves, row.halfMoves);
        EXPECT_EQ(root.IsWhiteToMove(), row.whiteToMove);
    }
}

TEST(SetupPerftRoot, SideThatJustMovedInCheck_IsRefused) {
    TChessboard root = test::FilledBoard("k6R/8/8/8/8/8/8/K7");
    EXPECT_THROW(SetupPerftRoot(root, true, 1), ChessException);
    EXPECT_NO_THROW(SetupPerftRoot(root, false, 1));
}

// Every half-move of the tree is made in full.
TEST(Perft, Moves_AreAllMade) {
    TThreadContext thread(4);
    TChessboard root = test::FilledBoard("7k/8/8/8/8/8/8/K7");
    root.m_threadContext = &thread;
    thread.rootNode = &root;
    SetupPerftRoot(root, true, 2);
    EXPECT_EQ(Perft(root, 2), 9u);
    EXPECT_EQ(thread.madeMoves, 3u + 9u);
}

}  // namespace
}  // namespace quillmere

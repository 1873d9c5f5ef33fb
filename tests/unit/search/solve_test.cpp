#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/notation.h"
#include "heuristics/heuristics_parser.h"
#include "search/best_defence.h"
#include "search/solve.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;

TSolveResult SolveFen(const std::string& fen, TSolveRequest request) {
    TChessboard board;
    InitBoard(board);
    if (!SetFromFENCode(board, fen.c_str(), nullptr, nullptr))
        throw std::runtime_error("no FEN code: " + fen);
    TSearchContext context;
    return Solve(board, request, context);
}

std::vector<std::string> Texts(const std::vector<TMove>& moves) {
    std::vector<std::string> texts;
    for (const TMove move : moves)
        texts.push_back(MoveToUci(move));
    return texts;
}

// The line is legal and its last move mates.
void ExpectMatingLine(const std::string& fen, u16 halfMoves, const std::vector<TMove>& line) {
    ASSERT_FALSE(line.empty());
    ASSERT_LE(line.size(), halfMoves);
    CSearchBoard board(fen, halfMoves);
    for (const TMove move : line) {
        ASSERT_TRUE(IsLegalMove(board.Node(), move)) << MoveToUci(move);
        ASSERT_EQ(board.Play(MoveToUci(move)), kMoveMade);
    }
    TMove list[kMoveListSize];
    EXPECT_GE(board.Node().m_blackInCheck, 0);
    EXPECT_EQ(GetLegalMoves(board.Node(), list), 0);
}

TEST(Solve, UniqueKey_IsTheOnlyKey) {
    const std::string fen = "8/6R1/7p/5K1k/8/6p1/5bPP/4N3";
    const TSolveResult result = SolveFen(fen, {.halfMoves = 5, .wantAllKeys = true});
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    EXPECT_TRUE(result.isComplete);
    EXPECT_EQ(Texts(result.keys), std::vector<std::string>{"g7g3"});
    EXPECT_EQ(result.mainLine.size(), 5u);
    ExpectMatingLine(fen, 5, result.mainLine);
}

TEST(Solve, OneMoveShort_IsProvedNoMate) {
    const TSolveResult result = SolveFen("8/6R1/7p/5K1k/8/6p1/5bPP/4N3", {.halfMoves = 3});
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedNoMate);
    EXPECT_TRUE(result.keys.empty());
    EXPECT_TRUE(result.mainLine.empty());
}

TEST(Solve, WithoutAllKeys_EndsAtTheFirst) {
    const std::string fen = "7k/8/6K1/8/8/8/8/R5R1";
    const TSolveResult first = SolveFen(fen, {.halfMoves = 3});
    const TSolveResult all = SolveFen(fen, {.halfMoves = 3, .wantAllKeys = true});
    EXPECT_EQ(first.keys.size(), 1u);
    EXPECT_GT(all.keys.size(), 1u);
    EXPECT_TRUE(MovesEqual(first.keys.front(), all.keys.front()));
}

TEST(Solve, NoLegalMove_IsNoMate) {
    EXPECT_EQ(SolveFen("7k/8/8/8/8/1q6/2n5/K7", {.halfMoves = 3}).verdict,
              ESolveVerdict::kProvedNoMate);
}

TEST(Solve, WhiteLeavesItselfWithoutMaterial_IsNoMate) {
    // Taking the last black man leaves king and bishop.
    EXPECT_EQ(SolveFen("8/8/8/8/8/k1K5/p7/1B6", {.halfMoves = 3}).verdict,
              ESolveVerdict::kProvedNoMate);
}

TEST(Solve, Tries_HaveExactlyOneRefutation) {
    // Checked by hand below: every try fails to its refutation only.
    const std::string fen = "8/8/2Q5/8/3N4/1pn5/3p4/4k1K1";
    const TSolveResult result = SolveFen(fen, {.halfMoves = 3, .wantTries = true});
    EXPECT_EQ(Texts(result.keys), std::vector<std::string>{"c6g2"});
    ASSERT_FALSE(result.tries.empty());
    for (const TTry& t : result.tries) {
        CSearchBoard board(fen, 3);
        ASSERT_EQ(board.Play(MoveToUci(t.move)), kMoveMade);
        TMoveList replies;
        replies.count = GetLegalMoves(board.Node(), replies.moves);
        int holding = 0;
        for (const TMove reply : replies) {
            CSearchBoard line(fen, 3);
            line.Play(MoveToUci(t.move));
            line.Play(MoveToUci(reply));
            TMoveList mates;
            mates.count = GetLegalMoves(line.Node(), mates.moves);
            bool isMated = false;
            for (const TMove mate : mates) {
                TChessboard child = line.Node();
                child.m_parent = &line.Node();
                TMove none[kMoveListSize];
                isMated |= MakeWhiteMoveLegal(child, mate) == kMoveMade &&
                           child.m_blackInCheck >= 0 && GetLegalMoves(child, none) == 0;
            }
            if (!isMated) {
                ++holding;
                EXPECT_TRUE(MovesEqual(reply, t.refutation)) << MoveToUci(reply);
            }
        }
        EXPECT_EQ(holding, 1) << MoveToUci(t.move);
    }
}

TEST(Solve, TriesOfOneMove_AreRefutedByAnyLegalReply) {
    // Ra1-a8+ leaves one reply, every other move more than one.
    const TSolveResult result =
        SolveFen("6k1/5p1p/8/8/8/8/8/R6K", {.halfMoves = 1, .wantTries = true});
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedNoMate);
    ASSERT_EQ(result.tries.size(), 1u);
    EXPECT_EQ(MoveToUci(result.tries.front().move), "a1a8");
    EXPECT_EQ(MoveToUci(result.tries.front().refutation), "g8g7");
}

// Mate-defence tasks

TEST(Solve, MateDefence_ListsEveryDefenceThatHolds) {
    const TSolveResult result =
        SolveFen("8/8/8/8/8/1KN5/2p1Q3/k7", {.halfMoves = 2, .wantAllKeys = true});
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedNoMate);
    EXPECT_EQ(Texts(result.defences), std::vector<std::string>{"c2c1n"});
    EXPECT_TRUE(result.keys.empty());
}

TEST(Solve, MateDefence_AllDefencesFail) {
    const std::string fen = "8/8/8/8/3N4/8/p1K3p1/k7";
    const TSolveResult result = SolveFen(fen, {.halfMoves = 2});
    EXPECT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    ExpectMatingLine(fen, 2, result.mainLine);
}

TEST(Solve, MateDefence_BlackMatedOrStalemated) {
    EXPECT_EQ(SolveFen("k7/1Q6/1K6/8/8/8/8/8", {.halfMoves = 2}).verdict,
              ESolveVerdict::kProvedMate);
    EXPECT_EQ(SolveFen("k7/8/1Q6/8/8/8/8/4K3", {.halfMoves = 2}).verdict,
              ESolveVerdict::kProvedNoMate);
}

// Limits

TEST(Solve, NodeLimit_IsTheSameInEveryRun) {
    const std::string fen = "n7/3p1p2/NpkNp1p1/1p2P3/3Q4/6B1/b7/4K3";
    TSolveRequest request{.halfMoves = 7};
    request.nodeLimit = 8'000;
    const TSolveResult a = SolveFen(fen, request);
    const TSolveResult b = SolveFen(fen, request);
    EXPECT_EQ(a.verdict, ESolveVerdict::kLimit);
    EXPECT_GE(a.nodes, 8'000u);
    EXPECT_LT(a.nodes, 9'000u);
    EXPECT_EQ(a.nodes, b.nodes);
    EXPECT_EQ(a.madeMoves, b.madeMoves);
}

TEST(Solve, NodeLimitAfterAKey_KeepsTheKey) {
    const std::string fen = "n7/3p1p2/NpkNp1p1/1p2P3/3Q4/6B1/b7/4K3";
    const TSolveResult first = SolveFen(fen, {.halfMoves = 7, .wantMainLine = false});
    TSolveRequest request{.halfMoves = 7, .wantAllKeys = true, .wantMainLine = false};
    const TSolveResult all = SolveFen(fen, request);
    ASSERT_EQ(first.keys.size(), 1u);
    ASSERT_GT(all.nodes, first.nodes + 2000);
    request.nodeLimit = first.nodes + 1000;
    request.wantMainLine = true;
    const TSolveResult limited = SolveFen(fen, request);
    EXPECT_EQ(limited.verdict, ESolveVerdict::kProvedMate);
    EXPECT_FALSE(limited.isComplete);
    EXPECT_EQ(limited.keys.size(), 1u);
    EXPECT_TRUE(limited.mainLine.empty());
}

TEST(Solve, StopAskedBeforeTheStart_Holds) {
    TChessboard board;
    InitBoard(board);
    ASSERT_TRUE(SetFromFENCode(board, "8/8/8/8/8/Q7/4p3/5k1K", nullptr, nullptr));
    TSearchContext context;
    SetStop(context, kStopAll);
    const TSolveResult result = Solve(board, {.halfMoves = 9}, context);
    EXPECT_EQ(result.verdict, ESolveVerdict::kStopped);
    EXPECT_EQ(result.nodes, 0u);
}

TEST(Solve, IllegalPosition_Throws) {
    TChessboard board;
    InitBoard(board);
    board.m_board[0] = kWhiteKing;
    TSearchContext context;
    EXPECT_THROW(Solve(board, {.halfMoves = 3}, context), ChessException);
    board.m_board[63] = kBlackKing;
    board.m_board[7] = kWhiteRook;
    EXPECT_THROW(Solve(board, {.halfMoves = 3}, context), ChessException) << "black in check";
}

// The main line

TEST(FindLongestDefence, PrefersTheDefenceThatLastsLonger) {
    // After 1.Rb7 one king move loses a move earlier than the other.
    const std::string fen = "8/8/8/8/8/Q7/4p3/5k1K";
    const TSolveResult result = SolveFen(fen, {.halfMoves = 9});
    ExpectMatingLine(fen, 9, result.mainLine);
    EXPECT_EQ(result.mainLine.size(), 9u) << "no shorter mate exists, so best play needs it all";
}

TEST(Solve, MainLine_StartsWithTheFirstKeyAndMates) {
    // A mate in two that is asked for within four: other first moves are keys as well, and the line
    // is that of the first of them.
    const std::string fen = "8/8/2Q5/8/3N4/1pn5/3p4/4k1K1";
    const TSolveResult result = SolveFen(fen, {.halfMoves = 7});
    ASSERT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    ExpectMatingLine(fen, 7, result.mainLine);
    EXPECT_TRUE(MovesEqual(result.mainLine.front(), result.keys.front()));
    const TSolveResult exact = SolveFen(fen, {.halfMoves = 3});
    EXPECT_EQ(exact.mainLine.size(), 3u);
}

TEST(Solve, EveryKey_HasItsBestDefence) {
    const std::string fen = "8/8/2Q5/8/3N4/1pn5/3p4/4k1K1";
    const TSolveResult result = SolveFen(fen, {.halfMoves = 5, .wantAllKeys = true});
    ASSERT_GT(result.keys.size(), 1u);
    ASSERT_EQ(result.bestDefences.size(), result.keys.size());
    EXPECT_TRUE(MovesEqual(result.bestDefences[0], result.mainLine[1]));
    for (std::size_t i = 0; i < result.keys.size(); ++i) {
        test::CSearchBoard board(fen, 5);
        ASSERT_EQ(board.Play(MoveToUci(result.keys[i])), kMoveMade);
        TMove best{};
        ASSERT_TRUE(GetBestDefence(board.Node(), &best));
        EXPECT_TRUE(MovesEqual(result.bestDefences[i], best)) << MoveToUci(result.keys[i]);
    }
}

TEST(Solve, KeyThatMatesAtOnce_HasNoBestDefence) {
    const TSolveResult result =
        SolveFen("k7/8/1K6/8/8/8/8/6RR", {.halfMoves = 1, .wantAllKeys = true});
    ASSERT_EQ(result.bestDefences.size(), 2u);
    EXPECT_TRUE(result.bestDefences[0].IsNull());
    EXPECT_TRUE(result.bestDefences[1].IsNull());
}

TEST(Solve, WithoutMainLine_NoBestDefenceIsLookedFor) {
    const TSolveResult result =
        SolveFen("8/8/2Q5/8/3N4/1pn5/3p4/4k1K1", {.halfMoves = 5, .wantMainLine = false});
    ASSERT_FALSE(result.keys.empty());
    EXPECT_TRUE(result.bestDefences.empty());
}

TEST(Solve, KeyProvedWithoutABlockedFigure_HasItsLine) {
    // The knight must be let go by a relaxation before the mate is found.
    const std::string fen = "5k2/5n2/8/5K2/8/R7/8/1R6";
    CSearchBoard given(fen, 7);
    ParseHeuristics(given.Root(),
                    "SH_KEEPKINGWITHINEXTEDGE(C1f,D1,incl.corner,strict), "
                    "SH_DONTLETFIGUREUNBLOCK(F7)");
    for (const int threads : {1, 2}) {
        const TSolveResult result =
            SolveFen(fen, {.halfMoves = 7, .threads = threads, .heuristics = &given.Root()});
        ASSERT_EQ(Texts(result.keys), std::vector<std::string>{"a3a7"});
        ASSERT_GE(result.keyPasses.front(), 0);
        EXPECT_EQ(result.passes[static_cast<std::size_t>(result.keyPasses.front())]
                      .settings.BlockedFigureCount,
                  0);
        ExpectMatingLine(fen, 7, result.mainLine);
    }
}

TEST(Solve, LineThatTheWordOfItsKeyGivesUp_IsFoundWithoutTheWord) {
    // The line is followed with fewer half-moves where a defence loses sooner; a test that was put
    // off falls due elsewhere then.
    const std::string fen = "8/7P/8/8/3K4/8/8/k7";
    CSearchBoard given(fen, 9);
    ParseHeuristics(given.Root(), "SH_KEEPKINGONTHEEDGE(STRICT,C1,A,D1)");
    given.Thread().heuristics.SkipDeferIfBalanceFixed = true;
    const TSolveResult result = SolveFen(fen, {.halfMoves = 9, .heuristics = &given.Root()});
    ASSERT_EQ(result.keys.size(), 1u);
    ASSERT_GE(result.keyPasses.front(), 0);
    EXPECT_NE(result.passes[static_cast<std::size_t>(result.keyPasses.front())].Heur, 0u);
    ExpectMatingLine(fen, 9, result.mainLine);
    EXPECT_TRUE(MovesEqual(result.bestDefences.front(), result.mainLine[1]));
}

TEST(SolveStackBytes, HasItsFloor) {
    EXPECT_EQ(SolveStackBytes(1), std::size_t{1} << 20);
    EXPECT_EQ(SolveStackBytes(539), std::size_t{539} * 4096);
}

}  // namespace
}  // namespace quillmere

#include "core/direct_mates.h"
#include "core/legality.h"
#include "registers/aggregated_register.h"
#include "search/mate_search.h"
#include "search/move_ordering.h"
#include "search/register_access.h"
#include "search/solve.h"
#include "tests/support/registers.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;

TVerdict MateIn(const std::string& fen, int fullMoves, u16 repetitionBound = 65535) {
    CSearchBoard board(fen, static_cast<u16>(HalfMovesOfMate(fullMoves)));
    board.Context().repetitionBound = repetitionBound;
    return FindMate(board.Root(), true);
}

// Ends of a line

TEST(FindMate, OneHalfMove_IsAskedOfTheMateTest) {
    EXPECT_EQ(MateIn("6k1/5ppp/8/8/8/8/8/R3K3", 1), kMate);
    EXPECT_EQ(MateIn("6k1/5pp1/8/8/8/8/8/R3K3", 1), kNoMate);
}

TEST(FindMate, WhiteMated_IsNoMateForAnybody) {
    EXPECT_EQ(MateIn("7k/8/8/8/8/6q1/5b2/7K", 2), kNoMate);
    EXPECT_EQ(MateIn("4k3/8/8/8/8/8/5PPP/1r4K1", 2), kNoMate);
}

TEST(FindMate, WhiteStalemated_IsNoMate) {
    EXPECT_EQ(MateIn("7k/8/8/8/8/1q6/2n5/K7", 2), kNoMate);
}

TEST(CheckDefences, BlackStalemated_IsNoMate) {
    CSearchBoard board("k7/8/1Q6/8/8/8/8/4K3", 2);
    EXPECT_EQ(CheckDefences(board.Root()), kNoMate);
}

TEST(CheckDefences, NoHalfMoveLeft_IsTheMateTest) {
    CSearchBoard mated("k7/1Q6/1K6/8/8/8/8/8", 2);
    mated.Root().m_nMoves = 0;
    EXPECT_EQ(CheckDefences(mated.Root()), kMate);
    CSearchBoard stalemated("k7/8/1Q6/8/8/8/8/4K3", 2);
    stalemated.Root().m_nMoves = 0;
    EXPECT_EQ(CheckDefences(stalemated.Root()), kNoMate);
}

TEST(FindMate, Stalemate_MakesWhiteTryItsNextMove) {
    // Most queen moves near the corner stalemate; two others mate in two.
    EXPECT_EQ(MateIn("k7/8/8/2K5/8/8/8/1Q6", 1), kNoMate);
    EXPECT_EQ(MateIn("k7/8/8/2K5/8/8/8/1Q6", 2), kMate);
}

// Rules that were found to cut too much, each with a position that shows it

struct TMateCase {
    const char* fen;
    int fullMoves;
};

class FindMateOfLength : public testing::TestWithParam<TMateCase> {};

TEST_P(FindMateOfLength, HasExactlyThisLength) {
    const TMateCase& c = GetParam();
    EXPECT_EQ(MateIn(c.fen, c.fullMoves), kMate);
    if (c.fullMoves > 1) {
        EXPECT_EQ(MateIn(c.fen, c.fullMoves - 1), kNoMate);
    }
    EXPECT_EQ(MateIn(c.fen, c.fullMoves, 0), kMate);
}

INSTANTIATE_TEST_SUITE_P(LastMinor,
                         FindMateOfLength,
                         testing::Values(TMateCase{"8/8/8/8/8/p2N4/k1K5/8", 3},
                                         TMateCase{"8/8/8/8/3N4/r7/8/k1K1N3", 3},
                                         TMateCase{"5N2/6k1/3N4/6K1/8/8/8/n7", 6}));

INSTANTIATE_TEST_SUITE_P(QuietMatesBesideFlights,
                         FindMateOfLength,
                         testing::Values(TMateCase{"8/2p1p3/2pkp3/4p3/8/3K4/8/3R4", 1},
                                         TMateCase{"8/3np3/R1pk2P1/1P1np3/8/7K/8/8", 1},
                                         TMateCase{"8/8/8/1b1p4/1k1P4/nP1p4/K7/2B5", 1},
                                         TMateCase{"8/8/8/8/2p2B2/3kP1N1/1P6/R3K3", 1},
                                         TMateCase{"8/8/4pPp1/3Ppk2/4p1pP/4p3/8/4K2R", 1}));

TEST(CheckDefences, KnightPromotion_IsNeverPruned) {
    // Queen, rook and bishop on c1 lose to the same mate; the knight checks.
    CSearchBoard board("8/8/8/8/8/1KN5/2p1Q3/k7", 2);
    EXPECT_EQ(CheckDefences(board.Root()), kNoMate);
    TSearchContext context;
    const TSolveResult result =
        Solve(board.Root(), TSolveRequest{.halfMoves = 2, .wantAllKeys = true}, context);
    ASSERT_EQ(result.defences.size(), 1u);
    EXPECT_EQ(MoveToUci(result.defences.front()), "c2c1n");
}

TEST(CheckDefences, RookAndBishopPromotion_AreNotTriedAfterTheQueens) {
    // Black can only promote, and Nd4-b3 mates whatever stands on g1.
    const std::string fen = "8/8/8/8/3N4/8/p1K3p1/k7";
    CSearchBoard board(fen, 2);
    ASSERT_EQ(CheckDefences(board.Root()), kMate);
    u64 queenAndKnight = 0;
    for (const char* move : {"g2g1Q", "g2g1N"}) {
        CSearchBoard single(fen, 2);
        ASSERT_EQ(single.Play(move), kMoveMade);
        ASSERT_TRUE(IsMateInOne(single.Node()));
        queenAndKnight += single.Thread().madeMoves;
    }
    constexpr u64 kKingMovesIntoCheck = 2;  // made and found illegal before the pawn's turn
    EXPECT_EQ(board.Thread().madeMoves, kKingMovesIntoCheck + queenAndKnight);
}

// Repetition

TEST(FindMate, BlackMoveIntoARepetition_IsADefenceThatHolds) {
    for (int n = 1; n <= 7; ++n)
        EXPECT_EQ(MateIn("k7/p2K4/P7/8/8/8/8/2B5", n), kNoMate) << n;
}

TEST(FindMate, RepetitionTestOff_ChangesNoVerdict) {
    for (const char* fen : {"k7/p2K4/P7/8/8/8/8/2B5",
                            "8/8/8/8/8/p2N4/k1K5/8",
                            "7k/7P/6BK/8/7N/8/6R1/6r1",
                            "8/6R1/7p/5K1k/8/6p1/5bPP/4N3",
                            "8/8/8/8/8/3k4/1R6/3K4",
                            "8/8/8/8/8/Q7/4p3/5k1K"}) {
        for (int n = 1; n <= 4; ++n)
            EXPECT_EQ(MateIn(fen, n), MateIn(fen, n, 0)) << fen << " #" << n;
    }
}

TEST(FindMate, NoMateWithRepetitions_IsExactAtTheRoot) {
    // White can only walk to and fro; every line repeats, and the root still answers for sure.
    EXPECT_EQ(MateIn("8/8/8/p1p1p3/P1P1P2k/8/8/K7", 4), kNoMate);
}

TEST(Solve, LineBackThroughTheRoot_DoesNotCostAKey) {
    // A key is asked of the position after it: whether the mate then comes back through the root
    // does not matter. Rd1-a1+ Kb8-c8, Ra1-d1 Kc8-b8 is the root again, and Rd1-d8 mates.
    const std::string fen = "1k6/8/1K6/8/8/8/8/3R4";
    for (const u16 bound : {0, 65535}) {
        CSearchBoard board(fen, 5);
        TSearchContext context;
        context.repetitionBound = bound;
        const TSolveResult result =
            Solve(board.Root(), TSolveRequest{.halfMoves = 5, .wantAllKeys = true}, context);
        std::string keys;
        for (const TMove key : result.keys)
            keys += MoveToUci(key) + " ";
        EXPECT_NE(keys.find("d1a1"), std::string::npos) << keys;
        EXPECT_NE(keys.find("b6c6"), std::string::npos) << keys;
    }
}

// Doubt

TEST(FindMate, HeuristicsInTheLastPass_AreDoubtful) {
    CSearchBoard board("7k/8/8/8/8/8/R7/K7", 3);
    ASSERT_EQ(FindMate(board.Root(), true), kNoMate);
    board.Root().Heur = 0x1;
    EXPECT_EQ(FindMate(board.Root(), true), kDoubtful);
}

TEST(FindMate, HeuristicsInTheirPass_AnswerWithinThePass) {
    CSearchBoard board("7k/8/8/8/8/8/R7/K7", 3);
    board.Root().Heur = 0x1;
    board.Root().m_pass = kPassHeuristics;
    EXPECT_EQ(FindMate(board.Root(), true), kNoMate);
    board.Context().isExact = true;
    EXPECT_EQ(FindMate(board.Root(), true), kDoubtful);
}

TEST(FindMate, MoveLeftOutByAnAssumption_TaintsTheNode) {
    // The white king may not go to any square: its moves are left out, not illegal. With three
    // half-moves left they would be known to be refuted before that is asked.
    CSearchBoard board("7k/8/8/8/8/8/R7/K7", 5);
    board.Root().Heur = SH_SINGLEQUEENMATE;
    board.Root().m_pass = kPassHeuristics;
    board.Thread().forbiddenKingSquares = ~u64{0};
    EXPECT_EQ(FindMate(board.Root(), true), kDoubtful);
}

TEST(CheckDefences, PawnMoveForbiddenByAnAssumption_IsDoubtful) {
    CSearchBoard board("k7/2K4p/1Q6/8/8/8/8/8", 2);
    // Without its pawn black is stalemated: a forbidden pawn move must not count as illegal.
    ASSERT_EQ(CheckDefences(board.Root()), kMate);
    board.Root().Heur = SH_USEBLOCKBLACKPAWNSLEVEL;
    board.Root().m_pass = kPassHeuristics;
    board.Thread().blockLevel = 2;
    EXPECT_EQ(CheckDefences(board.Root()), kDoubtful);
}

TEST(CheckDefences, RuleOfThumbAboutMaterial_IsDoubtfulOnlyUnderHeuristics) {
    CSearchBoard board("8/8/8/8/8/p2N4/k1K5/8", 5);
    ASSERT_EQ(FindMate(board.Root(), true), kMate);
    // A lone bishop and a black king with nothing around it.
    const char* fen = "8/8/8/3k3p/8/8/8/K1B5";
    CSearchBoard complete(fen, 4);
    EXPECT_EQ(CheckDefences(complete.Root()), kNoMate);
    CSearchBoard assumed(fen, 4);
    assumed.Root().Heur = 0x1;
    assumed.Root().m_pass = kPassHeuristics;
    EXPECT_EQ(CheckDefences(assumed.Root()), kDoubtful);
    assumed.Root().m_pass = kPassComplete;
    EXPECT_EQ(CheckDefences(assumed.Root()), kDoubtful) << "white's nodes doubt a word in pass 2";
}

// A repetition carries its doubt: white may step to g1, which repeats, and the squares on the second
// rank are left out by an assumption.
TEST(FindMate, RepetitionBesideALeftOutMove_HandsItsDoubtUp) {
    for (const bool isAssumed : {false, true}) {
        CSearchBoard board("k7/8/8/8/8/p5p1/P7/7K", 9);
        ASSERT_EQ(board.Play("h1g1"), kMoveMade);
        ASSERT_EQ(board.Play("a8b8"), kMoveMade);
        ASSERT_EQ(board.Play("g1h1"), kMoveMade);
        ASSERT_EQ(board.Play("b8a8"), kMoveMade);
        TChessboard& node = board.Node();
        if (isAssumed) {
            node.Heur = SH_SINGLEQUEENMATE;
            node.m_pass = kPassHeuristics;
            board.Thread().forbiddenKingSquares = u64{1} << String2Square("g2");
        }
        EXPECT_EQ(FindMate(node, true), kRepetition);
        EXPECT_GT(board.Thread().levels[node.m_nMoves].horizon, node.m_nMoves);
        EXPECT_EQ(board.Thread().levels[node.m_nMoves].isHorizonDoubtful, isAssumed);
    }
}

// The node that resolves the repetition answers with its doubt. Without it this one would say that
// there is no mate, though white's king was kept from squares.
TEST(FindMate, ResolvedRepetitionWithADoubtBelow_IsDoubtful) {
    CSearchBoard board("8/6P1/8/4Kp2/5P2/6p1/8/4k3", 7);
    board.Root().Heur = SH_SINGLEQUEENMATE;
    board.Root().m_pass = kPassHeuristics;
    board.Thread().forbiddenKingSquares = 0x20000004000000;
    EXPECT_EQ(FindMate(board.Root(), true), kDoubtful);
}

// One-colour play

TEST(CheckDefences, OneColourPlay_AddsAPassToBlacksMoves) {
    // Black is stalemated; with a pass white mates at once.
    CSearchBoard board("k7/8/1Q6/8/8/8/8/2R1K3", 2);
    ASSERT_EQ(CheckDefences(board.Root()), kNoMate);
    board.Root().m_captureState |= kOneColourParity1;
    EXPECT_EQ(CheckDefences(board.Root()), kMate);
}

TEST(FindMate, OneColourPlay_NeverSaysNoMate) {
    for (const u16 halfMoves : {1, 3}) {
        CSearchBoard board("7k/8/8/8/8/8/R7/K7", halfMoves);
        board.Root().m_captureState |= kOneColourParity1;
        board.Root().m_pass = kPassHeuristics;
        EXPECT_EQ(FindMate(board.Root(), true), kDoubtful) << halfMoves;
    }
    CSearchBoard black("7k/8/8/8/8/8/R7/K7", 2);
    black.Root().m_captureState |= kOneColourParity1;
    EXPECT_EQ(CheckDefences(black.Root()), kDoubtful);
    // King and knight cannot mate a bare king, but the king may have a bishop aside.
    CSearchBoard knight("7k/8/8/8/8/8/8/KN6", 4);
    ASSERT_EQ(CheckDefences(knight.Root()), kNoMate);
    knight.Root().m_captureState |= kOneColourParity1;
    EXPECT_EQ(CheckDefences(knight.Root()), kDoubtful);
}

// The register's guards

TEST(MayUseRegister, ShortTasks_DoWithoutIt) {
    CSearchBoard nine("7k/8/8/8/8/8/R7/K7", 9);
    EXPECT_FALSE(MayUseRegister(nine.Root()));
    CSearchBoard eleven("7k/8/8/8/8/8/R7/K7", 11);
    EXPECT_TRUE(MayUseRegister(eleven.Root()));
    eleven.Root().m_nMoves = 1;
    EXPECT_FALSE(MayUseRegister(eleven.Root()));
}

TEST(MayUseRegister, EnPassantPossible_IsNotStored) {
    CSearchBoard board("k7/p7/8/1P6/8/8/8/K6R", 12);
    ASSERT_EQ(board.Play("a7a5"), kMoveMade);
    EXPECT_FALSE(MayUseRegister(board.Node()));
    ASSERT_EQ(board.Play("b5b6"), kMoveMade);
    ASSERT_EQ(board.Play("a8b8"), kMoveMade);
    EXPECT_TRUE(MayUseRegister(board.Node())) << "its children are";
}

TEST(MayUseRegister, LostCastlingRightAtHome_IsNotStored) {
    CSearchBoard board("k7/p7/8/8/8/8/8/4K2R", 21);
    EXPECT_TRUE(MayUseRegister(board.Root()));
    for (const char* move : {"e1f1", "a8b8", "f1e1", "b8a8"})
        ASSERT_EQ(board.Play(move), kMoveMade);
    EXPECT_FALSE(MayUseRegister(board.Node()));
}

// Counting and stack

TEST(FindMate, Nodes_AreCountedBelowFourHalfMoves) {
    CSearchBoard one("6k1/5ppp/8/8/8/8/8/R3K3", 1);
    FindMate(one.Root(), true);
    FlushNodeCount(one.Root());
    EXPECT_EQ(one.Context().nodeCount.load(), 1u);
}

// The periodic hook is called at levels 25 and 9 of the first deep line; between the two calls lie
// sixteen half-moves of frames.
class CStackProbe : public ISearchProgress {
public:
    explicit CStackProbe(TSearchContext& context) : m_context(context) {}
    void OnPeriodicCheck(const TChessboard& node) override {
        const char here = 0;
        addresses.push_back(&here);
        levels.push_back(node.m_nMoves);
        if (node.m_nMoves == 9)
            SetStop(m_context, kStopAll);
    }
    std::vector<const char*> addresses;
    std::vector<int> levels;

private:
    TSearchContext& m_context;
};

TEST(FindMate, StackOfAHalfMove_FitsTheBudget) {
    CSearchBoard board("k7/p2K4/P7/8/8/8/8/2B5", 41);
    board.Context().repetitionBound = 0;
    CStackProbe probe(board.Context());
    board.Context().progress = &probe;
    FindMate(board.Root(), true);
    ASSERT_GE(probe.levels.size(), 2u);
    ASSERT_EQ(probe.levels.front(), 25);
    ASSERT_EQ(probe.levels.back(), 9);
    const auto bytes = probe.addresses[probe.levels.size() - 2] - probe.addresses.back();
    const long perHalfMove = static_cast<long>(SolveStackBytes(2000)) / 2000;
    EXPECT_LE(bytes / 16, perHalfMove);
}

// A split node's list is taken over once.
TEST(FindMate, Replay_SearchesOnlyTheGivenMoves) {
    const std::string fen = "6k1/5ppp/8/8/8/8/8/R3K3";
    CSearchBoard board(fen, 3);
    const TMove quiet[] = {MakeMove(4, 12)};
    const TMove mating[] = {MakeMove(4, 12), MakeMove(0, 56)};
    board.Thread().replay = TReplay{2, 1, quiet};
    EXPECT_EQ(FindMate(board.Root(), true), kNoMate);
    EXPECT_EQ(board.Thread().replay.flag, 0);
    board.Thread().replay = TReplay{2, 2, mating};
    EXPECT_EQ(FindMate(board.Root(), true), kMate);
}

// What an earlier search left behind must not drop black's promotions: a mate that the register
// tells says nothing about the square of the promotion.
TEST(CheckDefences, MateFromTheRegister_DropsNoPromotion) {
    // Only the bishop holds; the queen, tried first, is mated later.
    for (const char* fen :
         {"8/8/2Q5/8/8/2N5/3Kp3/k4R2", "8/8/8/8/8/B1K5/B3p3/k6Q", "8/8/8/8/Q7/4KR2/6p1/3Q3k"}) {
        TAggregatedTemporaryChessboardRegister store(test::QuietSettings(test::kMegabyte));
        store.Resize(kBucketsSmall, false);
        CSearchBoard board(fen, 4);
        board.Context().tempRegister = &store;
        board.Context().registerRoot = 1;
        auto memory = std::make_unique<TMoveMemory>();
        board.Thread().moveMemory = memory.get();
        TMoveList list;
        list.count = GetLegalMoves(board.Root(), list.moves);
        for (const TMove move : list) {
            TChessboard child = board.Root();
            child.m_parent = &board.Root();
            if (move.Promotion() == kQueen && MakeBlackMove(child, move, false) == kMoveMade) {
                EXPECT_EQ(FindMate(child, true), kMate);
                RememberMove(board.Root(), move);
            }
        }
        board.Thread().isPromotionSquareFree = true;
        EXPECT_EQ(CheckDefences(board.Root()), kNoMate) << fen;
    }
}

}  // namespace
}  // namespace quillmere

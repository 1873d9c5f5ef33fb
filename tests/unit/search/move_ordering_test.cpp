#include "core/direct_mates.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "search/mate_search.h"
#include "search/move_ordering.h"
#include "tests/support/boards.h"
#include "tests/support/crowded_positions.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::MoveOf;

TMoveList ListOf(const std::vector<std::string_view>& moves) {
    TMoveList list;
    for (const std::string_view move : moves)
        list[list.count++] = MoveOf(move);
    return list;
}

std::string TextOf(const TMoveList& list) {
    return test::TextOfMoves(list.moves, list.count);
}

std::set<std::string> TextsOf(const TMoveList& list) {
    std::set<std::string> texts;
    for (const TMove move : list)
        texts.insert(test::TextOfMove(move));
    return texts;
}

int KeyOf(const TMoveList& list, std::string_view text) {
    const TMove* found = std::find_if(
        list.begin(), list.end(), [&](TMove move) { return MovesEqual(move, MoveOf(text)); });
    return found == list.end() ? kKeyDropped : static_cast<i8>(found->enPassant);
}

TMoveList SortLean(CSearchBoard& board, const std::vector<std::string_view>& moves) {
    TMoveList list = ListOf(moves);
    list.count = SortWhiteMovesLean(board.Root(), list.count, list.moves);
    return list;
}

struct TFullSort {
    TMoveList list;
    int mateFound = 7;
    u8 quietCount = 77;
    u8 retry = 7;
};

TFullSort
SortFull(CSearchBoard& board, const std::vector<std::string_view>& moves, bool forced = false) {
    TFullSort sort;
    sort.list = ListOf(moves);
    sort.list.count = SortWhiteMoves(board.Root(),
                                     sort.list.count,
                                     sort.list.moves,
                                     &sort.mateFound,
                                     &sort.quietCount,
                                     forced,
                                     &sort.retry);
    return sort;
}

// The lean sort

TEST(SortWhiteMovesLean, ChecksComeBeforeThreatsBeforeQuietMoves) {
    CSearchBoard board("6k1/5ppp/8/8/8/8/1Q6/R5K1", 9);
    const TMoveList list = SortLean(board, {"g1h2", "a1c1", "b2b8"});
    EXPECT_EQ(TextOf(list), "b2b8 g1h2 a1c1");
    EXPECT_EQ(KeyOf(list, "b2b8"), -8);
    EXPECT_EQ(KeyOf(list, "a1c1"), -4);
    EXPECT_EQ(KeyOf(list, "g1h2"), -4) << "it leaves the mate on a8 threatened";
}

TEST(SortWhiteMovesLean, QuietMoveWithoutAThreat_HasTheKeyNought) {
    CSearchBoard board("4k3/8/8/8/8/8/8/R3K3", 9);
    EXPECT_EQ(KeyOf(SortLean(board, {"a1b1"}), "a1b1"), 0);
}

TEST(SortWhiteMovesLean, AFigureThatBlackMayTakeSafely_ComesTwoLater) {
    CSearchBoard board("4k3/8/3p4/8/8/8/8/1R2K2Q", 9);
    const TMoveList list = SortLean(board, {"b1b5", "h1h5", "h1e4", "b1b8", "h1h8", "b1b7"});
    EXPECT_EQ(KeyOf(list, "h1h8"), -8);
    EXPECT_EQ(KeyOf(list, "b1b8"), -8);
    EXPECT_EQ(KeyOf(list, "h1e4"), -8);
    // On e7 the king takes; on e5 and c5 the pawn.
    CSearchBoard taken("4k3/8/3p4/8/8/8/8/2R1K2Q", 9);
    const TMoveList others = SortLean(taken, {"c1c5", "c1c8", "c1c2"});
    EXPECT_EQ(KeyOf(others, "c1c5"), KeyOf(others, "c1c2") + 2);
    EXPECT_EQ(KeyOf(others, "c1c8"), -8);
    CSearchBoard king("4k3/8/8/8/8/8/8/4KQ2", 9);
    const TMoveList beside = SortLean(king, {"f1f7", "f1f8"});
    EXPECT_EQ(KeyOf(beside, "f1f7"), -6);
    EXPECT_EQ(KeyOf(beside, "f1f8"), -6);
}

TEST(SortWhiteMovesLean, IllegalMoves_AreCutOff) {
    CSearchBoard board("4r1k1/8/8/8/8/8/4N3/4K3", 9);
    EXPECT_EQ(TextOf(SortLean(board, {"e2c3", "e1d1", "e2g3", "e1f1"})), "e1d1 e1f1");
}

TEST(SortWhiteMovesLean, OneLegalMove_StaysWhateverItsKey) {
    CSearchBoard board("6k1/8/8/8/8/5n2/5p2/7K", 9);
    TMoveList list;
    list.count = GetAllWhiteMoves(board.Root(), list.moves);
    const int count = SortWhiteMovesLean(board.Root(), list.count, list.moves);
    TMoveList legal;
    legal.count = GetLegalMoves(board.Root(), legal.moves);
    EXPECT_EQ(legal.count, 1);
    EXPECT_EQ(count, 1);
    CSearchBoard loses("7k/6pp/8/8/8/8/5PPr/5rQK", 9);
    const TFullSort sort = SortFull(loses, {"h1h2"});
    EXPECT_EQ(sort.list.count, 1);
}

TEST(SortWhiteMovesLean, EmptyList_StaysEmpty) {
    CSearchBoard board("6k1/8/8/8/8/8/8/R3K3", 9);
    EXPECT_EQ(SortLean(board, {}).count, 0);
    EXPECT_EQ(SortFull(board, {}).list.count, 0);
}

TEST(WhiteSorts, AllMovesIllegal_LeaveNothingAndTheNodeSaysNoMate) {
    const char* mated = "7k/8/8/8/8/6q1/5b2/7K";
    const char* stalemated = "7k/8/8/8/8/1q6/2n5/K7";
    for (const char* fen : {mated, stalemated}) {
        CSearchBoard board(fen, 15);
        TMoveList list;
        list.count = GetAllWhiteMoves(board.Root(), list.moves);
        EXPECT_GT(list.count, 0) << fen;
        EXPECT_EQ(SortWhiteMovesLean(board.Root(), list.count, list.moves), 0) << fen;
        int mateFound = 0;
        u8 quietCount = 0;
        u8 retry = 0;
        EXPECT_EQ(SortWhiteMoves(
                      board.Root(), list.count, list.moves, &mateFound, &quietCount, false, &retry),
                  0);
        EXPECT_EQ(mateFound, 0);
        EXPECT_EQ(quietCount, 0);
        for (const u16 halfMoves : {7, 9, 11, 13, 15}) {
            CSearchBoard node(fen, halfMoves);
            EXPECT_EQ(FindMate(node.Root(), true), kNoMate) << fen << ' ' << halfMoves;
        }
    }
}

// The full sort

TEST(SortWhiteMoves, AMateInTheList_IsToldAndEndsTheSort) {
    CSearchBoard board("6k1/5ppp/8/8/8/8/8/R5K1", 15);
    const TFullSort sort = SortFull(board, {"g1f1", "a1a8", "a1a2"});
    EXPECT_EQ(sort.mateFound, 1);
    EXPECT_EQ(sort.retry, 0);
    CSearchBoard none("6k1/5pp1/8/8/8/8/8/R5K1", 15);
    EXPECT_EQ(SortFull(none, {"g1f1", "a1a8", "a1a2"}).mateFound, 0);
}

TEST(SortWhiteMoves, MateFound_IsTheVerdictOfItsNode) {
    for (const u16 halfMoves : {13, 15, 17}) {
        CSearchBoard board("6k1/5ppp/8/8/8/8/8/QR2R1K1", halfMoves);
        EXPECT_EQ(FindMate(board.Root(), true), kMate) << halfMoves;
    }
}

TEST(SortWhiteMoves, FewRepliesAndFlights_ComeFirst) {
    CSearchBoard board("4k3/8/8/8/8/8/8/R3K2Q", 15);
    const TFullSort sort = SortFull(board, {"e1e2", "h1h7"});
    EXPECT_EQ(TextOf(sort.list), "h1h7 e1e2");
}

TEST(SortWhiteMoves, Forced_DropsWhatDoesNotCheck) {
    CSearchBoard board("4k3/8/8/8/8/8/8/R3K2Q", 15);
    const TFullSort sort = SortFull(board, {"e1e2", "a1a8", "h1h7", "h1h5", "h1e4"}, true);
    EXPECT_EQ(TextsOf(sort.list), (std::set<std::string>{"a1a8", "h1h5", "h1e4"}));
    EXPECT_EQ(sort.quietCount, 0);
    EXPECT_EQ(SortFull(board, {"e1e2"}, true).list.count, 0);
}

TEST(SortWhiteMoves, Stalemate_ComesAlmostLast) {
    CSearchBoard board("k7/8/2K5/8/8/8/8/1Q6", 15);
    const TFullSort sort = SortFull(board, {"b1b6", "b1g1", "c6d5"});
    EXPECT_EQ(KeyOf(sort.list, "b1b6"), kKeyStalemate);
    EXPECT_EQ(test::TextOfMove(sort.list[sort.list.count - 1]), "b1b6");
    // Black's other men cannot move either.
    CSearchBoard blocked("k7/8/2K5/1Q5p/7P/8/8/8", 15);
    EXPECT_EQ(KeyOf(SortFull(blocked, {"b5b6"}).list, "b5b6"), kKeyStalemate);
    CSearchBoard pinned("kb5R/7p/K6P/8/8/8/8/Q7", 15);
    EXPECT_EQ(KeyOf(SortFull(pinned, {"a1b1"}).list, "a1b1"), kKeyStalemate);
    // Here a pawn may move.
    CSearchBoard free("k7/8/2K5/1Q5p/8/7P/8/8", 15);
    EXPECT_LT(KeyOf(SortFull(free, {"b5b6"}).list, "b5b6"), kKeyGreatest);
}

TEST(SortWhiteMoves, AQuietMoveThatLosesItsFigure_ComesBehindTheOthers) {
    CSearchBoard board("4k3/8/3p4/8/8/8/8/2R1K3", 15);
    const TFullSort sort = SortFull(board, {"c1c5", "c1c2"});
    EXPECT_EQ(TextOf(sort.list), "c1c2 c1c5");
    EXPECT_EQ(KeyOf(sort.list, "c1c5"), kKeyLoses);
    EXPECT_EQ(sort.quietCount, 2);
}

TEST(WhiteSorts, AMoveThatAnAssumptionLeavesOut_Stays) {
    // The node must hear of it: it is no proof that it does not mate.
    CSearchBoard board("4k3/8/8/8/8/8/8/R3K2Q", 15);
    board.Root().Heur = SH_SINGLEQUEENMATE;
    board.Thread().forbiddenKingSquares = u64{1} << test::SquareOf("e2");
    EXPECT_EQ(TextsOf(SortLean(board, {"e1e2", "e1d2"})), (std::set<std::string>{"e1e2", "e1d2"}));
    const TFullSort sort = SortFull(board, {"e1e2", "e1d2"});
    EXPECT_EQ(TextsOf(sort.list), (std::set<std::string>{"e1e2", "e1d2"}));
    EXPECT_EQ(KeyOf(sort.list, "e1e2"), kKeyGreatest);
}

// Every legal move stays in every sort, and black's holds no king move into check.
TEST(Sorts, CrowdedPositions_KeepEveryLegalMove) {
    const int cases = bridge::CasesOf(3000);
    auto memory = std::make_unique<TMoveMemory>();
    for (int number = 0; number < cases; ++number) {
        test::CRandom random(static_cast<std::uint64_t>(number));
        test::CCrowdedNode crowded(random, 15);
        TChessboard& node = crowded.Node();
        if (number % 2 == 0)
            node.m_threadContext->moveMemory = memory.get();
        TMoveList all;
        all.count = node.m_whiteInCheck >= 0 ? GetWhiteEvasions(node, all.moves)
                                             : GetAllWhiteMoves(node, all.moves);
        TMoveList legal;
        legal.count = GetLegalMoves(node, legal.moves);
        // A capture that leaves white unable to mate is pointless by proof, and dropped.
        TMoveList wanted;
        for (const TMove move : legal) {
            TChessboard child = node;
            child.m_parent = &node;
            if (MakeWhiteMove(child, move) == kMoveMade)
                wanted[wanted.count++] = move;
        }
        TMoveList lean = all;
        lean.count = SortWhiteMovesLean(node, lean.count, lean.moves);
        ASSERT_EQ(TextsOf(lean), TextsOf(wanted)) << ToFen(crowded.Position());
        ASSERT_EQ(lean.count, wanted.count);
        TMoveList full = all;
        int mateFound = 0;
        u8 quietCount = 0;
        u8 retry = 0;
        full.count =
            SortWhiteMoves(node, full.count, full.moves, &mateFound, &quietCount, false, &retry);
        ASSERT_EQ(mateFound != 0, reference::CBruteForce().MateIn(crowded.Position(), 1))
            << ToFen(crowded.Position());
        ASSERT_LE(quietCount, all.count);
        if (mateFound == 0) {
            ASSERT_EQ(TextsOf(full), TextsOf(wanted)) << ToFen(crowded.Position());
        }
        if (wanted.count != 0) {
            const TMove noted = wanted[random.Below(wanted.count)];
            RememberMove(node, noted);
            BringRememberedForward(node, lean.count, lean.moves);
            ASSERT_EQ(TextsOf(lean), TextsOf(wanted));
            if (node.m_threadContext->moveMemory != nullptr) {
                ASSERT_TRUE(MovesEqual(lean[0], noted));
            }
            // Black's reply to it.
            TChessboard& child = node.m_threadContext->ChildSlot(15);
            child = node;
            child.m_parent = &node;
            ASSERT_EQ(MakeWhiteMove(child, wanted[0]), kMoveMade);
            TMoveList black;
            black.count = child.m_blackInCheck >= 0 ? GetBlackEvasions(child, black.moves)
                                                    : GetAllBlackMoves(child, black.moves);
            black.count = SortBlackMoves(child, black.count, black.moves);
            ASSERT_GE(black.count, 0);
            TMoveList blackLegal;
            blackLegal.count = GetLegalMoves(child, blackLegal.moves);
            const std::set<std::string> sorted = TextsOf(black);
            const std::set<std::string> legalTexts = TextsOf(blackLegal);
            ASSERT_TRUE(
                std::includes(sorted.begin(), sorted.end(), legalTexts.begin(), legalTexts.end()))
                << ToFen(crowded.Position());
            for (const TMove move : black) {
                ASSERT_TRUE(move.from != child.BlackKingSquare() ||
                            legalTexts.count(test::TextOfMove(move)) != 0)
                    << ToFen(crowded.Position()) << ' ' << test::TextOfMove(wanted[0]) << ' '
                    << test::TextOfMove(move);
            }
            if (blackLegal.count != 0)
                RememberMove(child, blackLegal[random.Below(blackLegal.count)]);
        }
    }
}

// Black's sort

TEST(SortBlackMoves, KingStepsIntoCheck_AreDropped) {
    CSearchBoard board("4k2r/8/8/8/8/8/8/R4RK1", 8);
    TMoveList list = ListOf({"e8d8", "e8f8", "e8f7", "e8e7", "e8g8", "h8h7"});
    list.count = SortBlackMoves(board.Root(), list.count, list.moves);
    // g8 is safe; that the king passes f8 in check is the generator's matter.
    EXPECT_EQ(TextsOf(list), (std::set<std::string>{"e8d8", "e8e7", "e8g8", "h8h7"}));
}

TEST(SortBlackMoves, CastlingIntoCheck_IsDropped) {
    CSearchBoard board("4k2r/8/8/8/8/8/8/K5R1", 8);
    TMoveList list = ListOf({"e8g8", "h8h1"});
    list.count = SortBlackMoves(board.Root(), list.count, list.moves);
    EXPECT_EQ(TextOf(list), "h8h1");
}

// Ka1 is shut in, so that after a move of the h-pawn the knight mates at once; a promotion on g1
// checks and holds. Whatever the order of generation, what loses at once stands first.
TEST(SortBlackMoves, LoneKnightHunt_PutsDefencesThatLoseAtOnceFirst) {
    CSearchBoard board("8/7p/8/8/3N4/8/p5p1/k1K5", 4);
    board.Root().Heur = SH_KEEPKINGONTHEEDGE;
    TMoveList list;
    list.count = GetAllBlackMoves(board.Root(), list.moves);
    list.count = SortBlackMoves(board.Root(), list.count, list.moves);
    ASSERT_GT(list.count, 1);
    bool hasHeld = false;
    int lost = 0;
    for (const TMove move : list) {
        TChessboard child = board.Root();
        child.m_parent = &board.Root();
        if (MakeBlackMove(child, move, false) != kMoveMade)
            continue;
        const bool isLost = IsMateInTwo(child);
        EXPECT_FALSE(isLost && hasHeld) << int{move.from} << '-' << int{move.to};
        hasHeld |= !isLost;
        lost += isLost ? 1 : 0;
    }
    EXPECT_TRUE(hasHeld);
    EXPECT_GT(lost, 0);
}

TEST(SortBlackMoves, NoMove_IsAnEmptyList) {
    CSearchBoard board("k7/8/1Q6/8/8/8/8/4K3", 8);
    TMoveList list;
    list.count = GetAllBlackMoves(board.Root(), list.moves);
    EXPECT_EQ(SortBlackMoves(board.Root(), list.count, list.moves), 0);
}

TEST(SortBlackMoves, WithoutAMemory_TheOrderStays) {
    CSearchBoard board("4k3/pppp4/8/8/8/8/8/4K2R", 8);
    TMoveList list = ListOf({"d7d6", "a7a6", "c7c6", "b7b6"});
    RememberMove(board.Root(), MoveOf("b7b6"));
    list.count = SortBlackMoves(board.Root(), list.count, list.moves);
    EXPECT_EQ(TextOf(list), "d7d6 a7a6 c7c6 b7b6");
    EXPECT_EQ(BringRememberedForward(board.Root(), list.count, list.moves), 0);
    TMove remembered[kRememberedMoves];
    EXPECT_EQ(GetRememberedMoves(board.Root(), remembered), 0);
}

class Memory : public ::testing::Test {
protected:
    Memory() { m_board.Thread().moveMemory = m_memory.get(); }

    std::unique_ptr<TMoveMemory> m_memory = std::make_unique<TMoveMemory>();
    CSearchBoard m_board{"4k3/pppp4/8/8/8/8/8/4K2R", 8};
};

TEST_F(Memory, WhatRefutedLast_ComesFirst) {
    RememberMove(m_board.Root(), MoveOf("a7a6"));
    RememberMove(m_board.Root(), MoveOf("c7c6"));
    RememberMove(m_board.Root(), MoveOf("c7c6"));
    TMoveList list = ListOf({"d7d6", "a7a6", "b7b6", "c7c6"});
    list.count = SortBlackMoves(m_board.Root(), list.count, list.moves);
    EXPECT_EQ(TextOf(list), "c7c6 a7a6 d7d6 b7b6");
}

TEST_F(Memory, WhatRefutedOften_ComesBehindTheLastTwo) {
    for (const char* move : {"b7b6", "b7b6", "d7d6", "a7a6", "c7c6"})
        RememberMove(m_board.Root(), MoveOf(move));
    TMoveList list = ListOf({"d7d6", "a7a6", "b7b6", "c7c6", "d7d5"});
    list.count = SortBlackMoves(m_board.Root(), list.count, list.moves);
    EXPECT_EQ(TextOf(list), "c7c6 a7a6 b7b6 d7d6 d7d5");
}

TEST_F(Memory, AMoveThatIsNotInTheList_IsNotBroughtIn) {
    RememberMove(m_board.Root(), MoveOf("e8e7"));
    TMoveList list = ListOf({"d7d6", "a7a6"});
    EXPECT_EQ(BringRememberedForward(m_board.Root(), list.count, list.moves), 0);
    EXPECT_EQ(TextOf(list), "d7d6 a7a6");
}

TEST_F(Memory, NullMoves_AreNotNoted) {
    RememberMove(m_board.Root(), MakeMove(60, 60));
    TMove remembered[kRememberedMoves];
    EXPECT_EQ(GetRememberedMoves(m_board.Root(), remembered), 0);
}

TEST_F(Memory, AnswersBelongToTheOpponentsMove) {
    CSearchBoard board("4k3/pppp4/8/8/8/8/8/4K2R", 9);
    board.Thread().moveMemory = m_memory.get();
    ASSERT_EQ(board.Play("h1h7"), kMoveMade);
    RememberMove(board.Node(), MoveOf("b7b6"));
    m_memory->Killers(8) = {};
    TMove remembered[kRememberedMoves];
    EXPECT_EQ(GetRememberedMoves(board.Node(), remembered), 1);
    CSearchBoard other("4k3/pppp4/8/8/8/8/8/4K2R", 9);
    other.Thread().moveMemory = m_memory.get();
    ASSERT_EQ(other.Play("h1h6"), kMoveMade);
    EXPECT_EQ(GetRememberedMoves(other.Node(), remembered), 0);
}

TEST_F(Memory, AMoveKnownTwice_IsToldOnce) {
    CSearchBoard board("4k3/pppp4/8/8/8/8/8/4K2R", 9);
    board.Thread().moveMemory = m_memory.get();
    ASSERT_EQ(board.Play("h1h7"), kMoveMade);
    for (const char* move : {"b7b6", "a7a6"})
        RememberMove(board.Node(), MoveOf(move));
    TMove remembered[kRememberedMoves];
    ASSERT_EQ(GetRememberedMoves(board.Node(), remembered), 2);
    EXPECT_EQ(test::TextOfMoves(remembered, 2), "a7a6 b7b6");
}

TEST_F(Memory, DeepLevels_ShareTheirPlacesByParity) {
    EXPECT_EQ(TMoveMemory::Index(31), 31);
    for (int level = 32; level < 300; ++level) {
        EXPECT_LT(TMoveMemory::Index(level), TMoveMemory::kLevels);
        EXPECT_EQ(TMoveMemory::Index(level) & 1, level & 1);
    }
}

TEST_F(Memory, APromotionIsNotTheSameMoveAsAnother) {
    CSearchBoard board("4k3/8/8/8/8/8/p7/4K2R", 8);
    board.Thread().moveMemory = m_memory.get();
    RememberMove(board.Root(), MoveOf("a2a1n"));
    TMoveList list = ListOf({"a2a1q", "a2a1r", "a2a1b", "a2a1n"});
    EXPECT_EQ(BringRememberedForward(board.Root(), list.count, list.moves), 1);
    EXPECT_EQ(TextOf(list), "a2a1n a2a1q a2a1r a2a1b");
}

}  // namespace
}  // namespace quillmere

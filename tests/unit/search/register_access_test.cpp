#include "search/mate_search.h"
#include "search/pause.h"
#include "search/register_access.h"
#include "tests/support/registers.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr const char* kFen = "k7/8/8/2K5/8/8/8/1Q6";

class RegisterAccess : public ::testing::Test {
protected:
    RegisterAccess() { m_register.Resize(kBucketsSmall, false); }

    // The board with the register and its root bound lowered to 1.
    std::unique_ptr<CSearchBoard> BoardOf(const std::string& fen, u16 halfMoves) {
        auto board = std::make_unique<CSearchBoard>(fen, halfMoves);
        board->Context().tempRegister = &m_register;
        board->Context().registerRoot = 1;
        return board;
    }
    u32 Elements() const { return m_register.GetElementsIn(); }

    TAggregatedTemporaryChessboardRegister m_register{test::QuietSettings(16 * test::kMegabyte)};
};

// Who takes part

TEST_F(RegisterAccess, RootsBelowTheBound_DoNotTakePart) {
    auto board = BoardOf(kFen, 9);
    EXPECT_TRUE(MayUseRegister(board->Root()));
    board->Context().registerRoot = kRegisterRoot;
    EXPECT_FALSE(MayUseRegister(board->Root()));
    auto eleven = BoardOf(kFen, 11);
    eleven->Context().registerRoot = kRegisterRoot;
    EXPECT_TRUE(MayUseRegister(eleven->Root()));
}

TEST_F(RegisterAccess, TheLastMove_DoesNotTakePart) {
    EXPECT_TRUE(MayUseRegister(BoardOf(kFen, 3)->Root()));
    EXPECT_FALSE(MayUseRegister(BoardOf(kFen, 1)->Root()));
}

TEST_F(RegisterAccess, OneColourPlay_DoesNotTakePart) {
    auto board = BoardOf(kFen, 5);
    for (const u8 mode : {kOneColourParity1, kOneColourParity0, kOneColourSeparated}) {
        board->Root().m_captureState = mode;
        EXPECT_FALSE(MayUseRegister(board->Root())) << int{mode};
    }
}

TEST_F(RegisterAccess, PossibleEnPassant_DoesNotTakePart) {
    auto board = BoardOf("k7/3p4/8/4P3/8/8/8/1Q5K", 8);
    ASSERT_EQ(board->Play("d7d5"), kMoveMade);
    EXPECT_FALSE(MayUseRegister(board->Node()));
    auto single = BoardOf("k7/3p4/8/4P3/8/8/8/1Q5K", 8);
    ASSERT_EQ(single->Play("d7d6"), kMoveMade);
    EXPECT_TRUE(MayUseRegister(single->Node()));
    auto nobody = BoardOf("k7/3p4/8/6P1/8/8/8/1Q5K", 8);
    ASSERT_EQ(nobody->Play("d7d5"), kMoveMade);
    EXPECT_TRUE(MayUseRegister(nobody->Node())) << "a double step beside no pawn";
}

TEST_F(RegisterAccess, ALostRightWithKingAndRookAtHome_DoesNotTakePart) {
    for (const std::string side : {"white", "black"}) {
        const bool isWhite = side == "white";
        auto board = BoardOf(isWhite ? "1k6/8/8/8/8/8/8/R3K3" : "r3k3/8/8/8/8/8/8/1Q5K", 15);
        EXPECT_TRUE(MayUseRegister(board->Root())) << side;
        const char* moves[2][4] = {{"h1g1", "e8e7", "g1h1", "e7e8"},
                                   {"e1e2", "b8b7", "e2e1", "b7b8"}};
        for (const char* move : moves[isWhite ? 1 : 0]) {
            ASSERT_EQ(board->Play(move), kMoveMade) << side << ' ' << move;
        }
        EXPECT_FALSE(MayUseRegister(board->Node())) << side;
    }
}

// What is stored

TEST_F(RegisterAccess, WithoutARegister_NothingIsKnownAndNothingStored) {
    auto board = BoardOf(kFen, 5);
    board->Context().tempRegister = nullptr;
    StoreMate(board->Root());
    StoreNoMate(board->Root());
    StoreDoubtful(board->Root());
    EXPECT_EQ(FindInRegister(board->Root()), kNothingKnown);
    EXPECT_EQ(Elements(), 0U);
}

TEST_F(RegisterAccess, AMate_HoldsForMoreHalfMoves) {
    auto board = BoardOf(kFen, 5);
    StoreMate(board->Root());
    EXPECT_EQ(FindInRegister(board->Root()), kMate);
    EXPECT_EQ(FindInRegister(BoardOf(kFen, 7)->Root()), kMate);
    EXPECT_EQ(FindInRegister(BoardOf(kFen, 3)->Root()), kNothingKnown);
}

TEST_F(RegisterAccess, NoMate_HoldsForFewerHalfMoves) {
    auto board = BoardOf(kFen, 5);
    StoreNoMate(board->Root());
    EXPECT_EQ(FindInRegister(board->Root()), kNoMate);
    EXPECT_EQ(FindInRegister(BoardOf(kFen, 3)->Root()), kNoMate);
    EXPECT_EQ(FindInRegister(BoardOf(kFen, 7)->Root()), kNothingKnown);
}

TEST_F(RegisterAccess, NoMateUnderHeuristics_IsDoubtfulAndTheirsOnly) {
    auto board = BoardOf(kFen, 5);
    board->Root().Heur = 0x10;
    board->Root().HeurParams = 3;
    StoreNoMate(board->Root());
    EXPECT_EQ(FindInRegister(board->Root()), kDoubtful);
    board->Root().HeurParams = 4;
    EXPECT_EQ(FindInRegister(board->Root()), kNothingKnown);
    board->Root().Heur = 0;
    board->Root().HeurParams = 0;
    EXPECT_EQ(FindInRegister(board->Root()), kNothingKnown);
}

TEST_F(RegisterAccess, AMateUnderHeuristics_IsAMateForAll) {
    auto board = BoardOf(kFen, 5);
    board->Root().Heur = 0x10;
    StoreMate(board->Root());
    board->Root().Heur = 0;
    EXPECT_EQ(FindInRegister(board->Root()), kMate);
}

TEST_F(RegisterAccess, AfterAStop_NothingIsStored) {
    auto board = BoardOf(kFen, 5);
    board->Thread().stopLevel = kThreadStops;
    ASSERT_TRUE(IsStopped(board->Root()));
    StoreMate(board->Root());
    StoreNoMate(board->Root());
    StoreDoubtful(board->Root());
    EXPECT_EQ(Elements(), 0U);
}

// What the nodes make of it

TEST_F(RegisterAccess, ASearch_StoresItsVerdicts) {
    auto mate = BoardOf(kFen, 5);
    EXPECT_EQ(FindMate(mate->Root(), true), kMate);
    EXPECT_EQ(FindInRegister(mate->Root()), kMate);
    auto none = BoardOf("8/8/8/4k3/8/8/8/K6R", 5);
    EXPECT_EQ(FindMate(none->Root(), true), kNoMate);
    EXPECT_EQ(FindInRegister(none->Root()), kNoMate);
}

TEST_F(RegisterAccess, OnlyOddLevels_AreStored) {
    auto board = BoardOf("8/8/8/4k3/8/8/8/K6R", 9);
    EXPECT_EQ(FindMate(board->Root(), true), kNoMate);
    ASSERT_GT(Elements(), 0U);
    // An element that says no mate up to an odd depth knows nothing of the next even one.
    TChessboard even = board->Root();
    even.m_nMoves = 10;
    EXPECT_EQ(m_register.FindInRegister(10, even, 0, 0), kNothingKnown);
    EXPECT_EQ(m_register.FindInRegister(9, even, 0, 0), kNoMate);
}

TEST_F(RegisterAccess, ANodeThatMayNotTakePart_AsksNothing) {
    // A lie under its key: the node must not see it.
    auto board = BoardOf(kFen, 5);
    StoreNoMate(board->Root());
    board->Context().registerRoot = 100;
    EXPECT_EQ(FindMate(board->Root(), true), kMate);
    board->Context().registerRoot = 1;
    EXPECT_EQ(FindMate(board->Root(), true), kNoMate) << "here it is asked";
    EXPECT_EQ(FindMate(board->Root(), false), kMate) << "and here its own entry is not";
}

TEST_F(RegisterAccess, ADoubtfulEntry_IsTakenBeforeTheCompletePassOnly) {
    auto board = BoardOf(kFen, 5);
    board->Root().Heur = 0x10;
    StoreDoubtful(board->Root());
    board->Root().m_pass = kPassHeuristics;
    EXPECT_EQ(FindMate(board->Root(), true), kDoubtful);
    board->Root().m_pass = kPassComplete;
    EXPECT_EQ(FindMate(board->Root(), true), kMate);
}

}  // namespace
}  // namespace quillmere

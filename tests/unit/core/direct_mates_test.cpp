#include "core/direct_mates.h"
#include "core/make_move.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"
#include "tests/support/families.h"
#include "tests/support/game_line.h"
#include "tests/support/random_positions.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace quillmere {
namespace {

using test::CGameLine;
using test::TextOfMove;

// The mating move that is found, or "".
std::string MateOf(TChessboard& node) {
    TMove mate = {};
    return FindMateInOne(node, &mate) ? TextOfMove(mate) : "";
}

TEST(IsMateInOne, EveryKindOfMate_IsFound) {
    const struct {
        const char* name;
        const char* fen;
        const char* mate;
    } rows[] = {
        {"queen next to the king", "k7/7Q/2K5/8/8/8/8/8", "h7b7"},
        {"rook from a distance", "k7/8/1K6/8/8/8/8/7R", "h1h8"},
        {"knight, smothered", "6rk/6pp/7N/8/8/8/8/K7", "h6f7"},
        {"pawn steps", "kn6/p1K5/1P6/8/8/8/8/8", "b6b7"},
        {"pawn takes", "kn6/pnK5/2P5/8/8/8/8/8", "c6b7"},
        {"promotion", "k7/2P5/1K6/8/8/8/8/8", "c7c8q"},
        {"promotion to a knight", "rb6/k1P5/p1K5/8/8/8/8/8", "c7c8n"},
        {"promotion with capture", "k2b4/pp2P3/8/8/8/8/8/K7", "e7d8q"},
        {"king discovers", "8/8/8/8/8/8/R1K4k/8", ""},
        {"only along the line by capture", "R2r3k/6pp/8/8/8/8/8/K7", "a8d8"},
        {"no mate", "k7/8/8/8/8/8/8/KQ6", ""},
        {"stalemate is none", "k7/8/K7/8/8/8/1R6/8", ""},
    };
    for (const auto& row : rows) {
        const reference::TPosition position = reference::FromFen(row.fen);
        CGameLine line(row.fen, 1);
        const std::string mate = MateOf(line.Node());
        EXPECT_EQ(mate, row.mate) << row.name;
        EXPECT_EQ(IsMateInOne(line.Node()), *row.mate != 0) << row.name;
        reference::CBruteForce bruteForce;
        EXPECT_EQ(bruteForce.MateIn(position, 1), *row.mate != 0) << row.name;
    }
}

// Sparse positions in which the quick exclusion must not switch off the mating move.
TEST(IsMateInOne, PositionsOfTheQuickExclusion_MateNevertheless) {
    const struct {
        const char* fen;
        const char* mate;
    } rows[] = {
        {"8/2p1p3/2pkp3/4p3/8/3K4/8/3R4", "d3c4"},
        {"8/3np3/R1pk2P1/1P1np3/8/7K/8/8", "a6c6"},
        {"8/8/8/1b1p4/1k1P4/nP1p4/K7/2B5", "c1d2"},
        {"8/8/8/8/2p2B2/3kP1N1/1P6/R3K3", "e1c1"},
        {"8/8/4pPp1/3Ppk2/4p1pP/4p3/8/4K2R", "e1g1"},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 1);
        const reference::TPosition position = reference::FromFen(row.fen);
        reference::CBruteForce bruteForce;
        std::set<std::string> keys;
        for (const reference::TPlainMove key : bruteForce.Keys(position, 1))
            keys.insert(reference::ToText(key));
        ASSERT_EQ(keys.count(row.mate), 1u) << row.fen;
        EXPECT_EQ(keys.count(MateOf(line.Node())), 1u) << row.fen;
        // With the lists switched off, and without the exclusion, the test goes other ways.
        line.Node().m_figureListValid = 0;
        EXPECT_EQ(keys.count(MateOf(line.Node())), 1u) << row.fen;
        line.Node().m_figureListValid = 1;
        line.Node().m_positionFlags |= kPositionManyReplies;
        EXPECT_EQ(keys.count(MateOf(line.Node())), 1u) << row.fen;
    }
}

// White in check: the mating move must end the check as well.
TEST(IsMateInOne, Check_IsAnsweredByAMate) {
    const struct {
        const char* fen;
        const char* mate;
    } rows[] = {
        {"R2r2k1/5ppp/8/8/8/8/8/3K4", "a8d8"},  // takes the checker
        {"6k1/5ppp/8/8/8/8/R7/3K3r", ""},       // the mate on a8 leaves the check
        {"k7/7R/1K6/8/8/8/8/6b1", ""},
        {"k7/8/1K6/2R5/8/8/8/6b1", "c5c8"},  // not in check: the rook shields, and may not go
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 1);
        reference::CBruteForce bruteForce;
        const bool isMate = bruteForce.MateIn(reference::FromFen(row.fen), 1);
        EXPECT_EQ(IsMateInOne(line.Node()), isMate) << row.fen;
        EXPECT_EQ(MateOf(line.Node()), isMate ? row.mate : "") << row.fen;
    }
}

// After black's double step the capture in passing mates, and only then.
TEST(IsMateInOne, EnPassant_MatesOnlyAfterTheDoubleStep) {
    reference::CRandom random(9);
    int mates = 0;
    for (int i = 0; i < 40'000; ++i) {
        const reference::TPosition position = reference::RandomEnPassantNest(random, false);
        for (const reference::TPlainMove move : reference::LegalMoves(position)) {
            if (position.squares[move.from] != 'p' || move.from - move.to != 16)
                continue;
            const reference::TPosition after = reference::After(position, move);
            TThreadContext thread(4);
            TChessboard root;
            bridge::FillBoard(root, position);
            root.m_threadContext = &thread;
            thread.rootNode = &root;
            SetupAnalysisRoot(root, 4, true);
            TChessboard child = root;
            child.m_parent = &root;
            ASSERT_EQ(MakeBlackMoveLegal(child, MakeMove(move.from, move.to)), kMoveMade);
            reference::CBruteForce bruteForce;
            const bool isMate = bruteForce.MateIn(after, 1);
            ASSERT_EQ(IsMateInOne(child), isMate) << reference::ToFen(after);
            reference::TSimplification plain;
            plain.hasNoEnPassant = true;
            reference::CBruteForce withoutEnPassant(~std::uint64_t{0}, plain);
            mates += isMate && !withoutEnPassant.MateIn(after, 1) ? 1 : 0;
        }
    }
    EXPECT_GT(mates, 0);
}

TEST(FindMateInOne, WithoutAMate_LeavesTheMoveAlone) {
    CGameLine line("k7/8/8/8/8/8/8/KQ6", 1);
    TMove mate = {1, 2, 3, 4};
    EXPECT_FALSE(FindMateInOne(line.Node(), &mate));
    EXPECT_EQ(mate.from, 1);
    EXPECT_EQ(mate.to, 2);
    EXPECT_EQ(mate.flags, 3);
    EXPECT_EQ(mate.enPassant, 4);
}

// Many half-moves left, heuristics, one-colour play: the test is about the board.
TEST(IsMateInOne, StateOfTheSearch_DoesNotMatter) {
    CGameLine line("k7/8/1K6/8/8/8/8/7R", 41);
    TChessboard& node = line.Node();
    node.Heur = SH_SINGLEQUEENMATE;
    node.m_captureState |= kOneColourParity1;
    line.Thread().forbiddenKingSquares = ~u64{0};
    line.Thread().levels[40].horizon = 50;
    EXPECT_EQ(MateOf(node), "h1h8");
    EXPECT_EQ(line.Thread().levels[40].horizon, 50);
}

// Mate in two

TEST(IsMateInTwo, FamiliesOfSideRules_AgreeWithTheJudge) {
    int mates = 0;
    int others = 0;
    for (const reference::TFamily& family : reference::Families()) {
        reference::CRandom random(77);
        for (int i = 0; i < 60; ++i) {
            const reference::TPosition position =
                i % 2 == 0 ? family.draw(random, true)
                           : reference::DrawBeforeMate(random, family, 2);
            TThreadContext thread(3);
            TChessboard root;
            bridge::FillBoard(root, position);
            root.m_threadContext = &thread;
            thread.rootNode = &root;
            SetupAnalysisRoot(root, 3, true);
            reference::CBruteForce bruteForce;
            const bool isMate = bruteForce.MateIn(position, 2);
            EXPECT_EQ(IsMateInTwo(root), isMate)
                << family.name << " " << reference::ToFen(position);
            (isMate ? mates : others) += 1;
        }
    }
    EXPECT_GT(mates, 20);
    EXPECT_GT(others, 20);
}

// Whatever the half-moves left and whatever an assumption would leave out.
TEST(IsMateInTwo, StateOfTheSearch_DoesNotMatter) {
    // 1.Kb6 and 2.R#: the key is a king move.
    constexpr const char* kFen = "k7/8/2K5/8/8/8/8/7R";
    reference::CBruteForce bruteForce;
    ASSERT_EQ(bruteForce.ShortestMate(reference::FromFen(kFen), 2), 2);
    for (const u16 halfMoves : {3, 5, 41}) {
        CGameLine line(kFen, halfMoves);
        TChessboard& node = line.Node();
        EXPECT_TRUE(IsMateInTwo(node));
        node.Heur = SH_SINGLEQUEENMATE | SH_USEBLOCKBLACKPAWNSLEVEL;
        line.Thread().forbiddenKingSquares = ~u64{0};
        line.Thread().blockLevel = 2;
        EXPECT_TRUE(IsMateInTwo(node)) << halfMoves;
        EXPECT_EQ(node.m_nMoves, halfMoves);
        node.Heur = 0;
        for (const u8 mode : {kOneColourParity1, kOneColourParity0}) {
            node.m_captureState = mode;
            EXPECT_TRUE(IsMateInTwo(node)) << int{mode};
        }
    }
    // A black pawn's move is the answer to the threat, block level or not; here it does not help.
    CGameLine pawn("k7/7p/2K5/8/8/8/8/6R1", 3);
    reference::CBruteForce judge;
    const bool isMate = judge.MateIn(reference::FromFen("k7/7p/2K5/8/8/8/8/6R1"), 2);
    pawn.Node().Heur = SH_USEBLOCKBLACKPAWNSLEVEL;
    pawn.Thread().blockLevel = 2;
    EXPECT_TRUE(isMate);
    EXPECT_EQ(IsMateInTwo(pawn.Node()), isMate);
}

TEST(IsMateInTwo, HorizonsAbove_StayAsTheyAre) {
    CGameLine line("k7/8/2K5/8/8/8/8/7R", 9);
    for (TLevelState& level : line.Thread().levels)
        level.horizon = 9;
    EXPECT_TRUE(IsMateInTwo(line.Node()));
    for (std::size_t level = 3; level < line.Thread().levels.size(); ++level)
        EXPECT_EQ(line.Thread().levels[level].horizon, 9) << level;
}

// A composed position may hold many more white men than a game.
TEST(MateInOne, MoreMenThanAGame_AreAllTried) {
    test::CSearchBoard mate("6k1/R4ppp/8/8/NNNNNNNN/NNNNNNNN/NNNNNNNN/4K3", 1);
    EXPECT_TRUE(IsMateInOne(mate.Root()));
    test::CSearchBoard none("6k1/R4pp1/8/8/NNNNNNNN/NNNNNNNN/NNNNNNNN/4K3", 1);
    EXPECT_FALSE(IsMateInOne(none.Root()));
}

}  // namespace
}  // namespace quillmere

#include "core/direct_mates.h"
#include "core/make_move.h"
#include "core/mate_impossible.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"
#include "tests/support/game_line.h"
#include "tests/support/reference.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CGameLine;
using test::MoveOf;

// A node of white to move with the half-moves, as it stands after a black move.
struct TWhiteNode {
    TWhiteNode(const char* fen, u16 halfMoves, u32 heur = 0, u8 pass = kPassHeuristics)
        : line(fen, halfMoves) {
        line.Node().Heur = heur;
        line.Node().m_pass = pass;
    }
    int Test(bool isCapture = true) { return TestMateImpossible(line.Node(), isCapture); }
    CGameLine line;
};

// The rules that are proved act in every pass, with heuristics and without.
TEST(TestMateImpossible, ProvedRules_AnswerInEveryPass) {
    const struct {
        const char* name;
        const char* fen;
        bool isImpossible;
    } rows[] = {
        {"king alone", "8/8/8/8/8/p2r4/k1K5/8", true},
        {"king alone against men that shut their king in", "kr6/pp6/2n5/1K6/8/8/8/8", true},
        {"one bishop", "k7/8/1K6/8/8/8/8/B7", true},
        {"one knight", "k7/8/1K6/8/8/8/8/N7", true},
        {"bishops of one colour", "k7/8/1K6/8/8/8/8/B1B1B3", true},
        {"bishops of two colours", "k7/8/1K6/8/8/8/8/B4B2", false},
        {"bishop and knight", "k7/8/1K6/8/8/8/8/B5N1", false},
        {"two knights", "k7/8/1K6/8/8/8/8/N5N1", true},
        {"two knights that mate at once", "k7/8/NK6/3N4/8/8/8/8", false},
        {"three knights", "k7/8/1K6/8/8/8/8/N4NN1", false},
        {"one bishop and a queen", "k7/8/1K6/8/8/8/q7/B7", true},
        {"one knight and a rook", "k7/8/1K6/8/8/8/r7/N7", true},
        {"one knight and a bishop", "k7/8/1K6/8/8/8/b7/N7", true},
        {"one bishop and two figures", "k7/8/1K6/8/8/8/rr6/B7", false},
        {"one knight and a pawn", "8/8/8/8/8/p2N4/k1K5/8", false},
        {"two knights and a figure", "8/8/8/8/3N4/r7/8/k1K1N3", false},
        {"a pawn of white", "k7/8/1K6/8/8/8/P7/8", false},
        {"a knight and a pawn", "k7/8/1K6/8/8/8/P7/N7", false},
        {"a rook", "k7/8/1K6/8/8/8/8/7R", false},
        {"a queen", "k7/8/1K6/8/8/8/8/6Q1", false},
    };
    for (const auto& row : rows) {
        for (const u32 heur : {0u, 1u}) {
            for (const u8 pass : {kPassScan, kPassHeuristics, kPassComplete}) {
                TWhiteNode node(row.fen, 9, heur, pass);
                const int result = node.Test();
                if (row.isImpossible) {
                    EXPECT_EQ(result, kMateImpossible) << row.name;
                } else {
                    EXPECT_NE(result, kMateImpossible) << row.name;
                }
            }
        }
    }
}

// Rules of thumb need heuristics and a pass that proves nothing negative.
TEST(TestMateImpossible, RulesOfThumb_AreAssumptions) {
    const struct {
        const char* name;
        const char* fen;
        bool isImprobable;
    } rows[] = {
        {"two knights, the king off the edge", "8/8/2k5/8/3K4/8/r7/N5N1", true},
        {"two knights, the king on the edge, no mate near", "k7/8/8/8/3K4/8/7r/N5N1", true},
        {"two knights that mate in three: here the rule errs", "8/8/8/8/3N4/r7/8/k1K1N3", true},
        {"two knights that mate in two", "8/8/8/8/3N4/r7/k1N5/2K5", false},
        {"two knights and a pawn", "8/8/2k5/p7/3K4/8/8/N5N1", false},
        {"two knights and two figures", "8/8/2k5/8/3K4/8/rr6/N5N1", false},
        {"one bishop, nobody around the king", "8/8/2k5/8/3K4/8/rr6/B7", true},
        {"one bishop, one man around the king", "8/2r5/2k5/8/3K4/8/r7/B7", true},
        {"one bishop, two men around the king", "8/1rr5/2k5/8/3K4/8/8/B7", false},
        {"one bishop, the king in the corner", "kr6/7r/2K5/8/8/8/8/B7", false},
        {"one bishop, the king on b8", "1k6/1r5r/8/2K5/8/8/8/B7", false},
        {"one bishop, the king on g8", "6k1/r5r1/8/2K5/8/8/8/B7", false},
        {"one knight, the king off the corner", "8/8/2k5/p7/3K4/8/8/N7", true},
        {"one knight, two men", "8/8/2k5/pp6/3K4/8/8/N7", false},
        {"one knight, no pawns, king in the open", "8/8/2k5/8/3K4/8/rr6/N7", true},
        {"one knight, no pawns, king in the corner", "kr6/r7/2K5/8/8/8/8/N7", false},
        {"one knight, one man beside the king on the edge", "1k6/1n5r/2K5/8/8/8/8/N7", false},
        {"the same with the white king away", "1k6/1n5r/8/8/8/8/8/N3K3", true},
        {"one pawn that is too slow", "8/8/2k5/8/8/8/P7/K7", true},
        {"one pawn that is in time", "8/P7/2k5/8/8/8/8/K7", false},
    };
    for (const auto& row : rows) {
        const auto answer = [&](u32 heur, u8 pass) {
            TWhiteNode node(row.fen, 5, heur, pass);
            return node.Test();
        };
        const int assumed = row.isImprobable ? kMateImpossibleAssumed : kMoveMade;
        EXPECT_EQ(answer(1, kPassHeuristics), assumed) << row.name;
        EXPECT_EQ(answer(1, kPassScan), assumed) << row.name;
        EXPECT_EQ(answer(1, kPassComplete), kMoveMade) << row.name;
        EXPECT_EQ(answer(0, kPassScan), kMoveMade) << row.name;
        EXPECT_EQ(answer(0, kPassHeuristics), kMoveMade) << row.name;
        EXPECT_EQ(answer(0, kPassComplete), kMoveMade) << row.name;
    }
}

TEST(TestMateImpossible, LastHalfMove_IsLeftToTheMateTest) {
    EXPECT_EQ(TWhiteNode("k7/8/1K6/8/8/8/8/B7", 1).Test(), kMoveMade);
    EXPECT_EQ(TWhiteNode("k7/8/1K6/8/8/8/8/B7", 3).Test(), kMateImpossible);
}

// A line on which the rules were passed without result is asked again only after a capture.
TEST(TestMateImpossible, PassedLine_IsMarked) {
    TWhiteNode node("8/8/8/8/8/p2N4/k1K5/8", 9);
    EXPECT_EQ(node.Test(false), kMoveMade);
    EXPECT_NE(node.line.Node().m_searchFlags & kSearchImpossiblePassed, 0);
    TWhiteNode rook("k7/8/1K6/8/8/8/8/7R", 9);
    EXPECT_EQ(rook.Test(false), kMoveMade);
    EXPECT_EQ(rook.line.Node().m_searchFlags & kSearchImpossiblePassed, 0);
    for (const u16 flag : {kSearchImpossiblePassed, kSearchWrongCorner}) {
        TWhiteNode marked("k7/8/1K6/8/8/8/8/B7", 9);
        marked.line.Node().m_searchFlags |= flag;
        EXPECT_EQ(marked.Test(false), kMoveMade);
        EXPECT_EQ(marked.Test(true), kMateImpossible);
    }
}

// A capture in the last two half-moves leaves the two knights their chance.
TEST(TestMateImpossible, TwoKnightsAfterACapture_AreNotJudged) {
    CGameLine capture("7k/8/8/8/3K4/1N6/r7/n5N1", 9);
    capture.Node().Heur = 1;
    ASSERT_EQ(capture.PlayInSearch("b3a1"), kMoveMade);
    EXPECT_EQ(capture.PlayInSearch("h8g8"), kMoveMade);
    // The same position, the capture long past
    CGameLine quiet("7k/8/8/8/3K4/8/r7/N5N1", 8);
    quiet.Node().Heur = 1;
    EXPECT_EQ(quiet.PlayInSearch("h8g8"), kMateImpossibleAssumed);
    CGameLine later("7k/8/8/8/3K4/8/r7/N5N1", 9);
    later.Node().Heur = 1;
    ASSERT_EQ(later.PlayInSearch("d4d5"), kMoveMade);
    EXPECT_EQ(later.PlayInSearch("h8g8"), kMateImpossibleAssumed);
}

// The make-move hands the answers on.
TEST(MakeBlackMove, RulesOfMateImpossible_AreAnswered) {
    CGameLine capture("1k6/8/1K6/8/8/8/2b5/B2R4", 6);
    EXPECT_EQ(capture.PlayInSearch("c2d1"), kMateImpossible);
    EXPECT_NO_THROW(capture.Play("c2d1"));  // legal for people
    CGameLine two("1k6/8/1K6/8/8/8/2b5/B2R4", 2);
    EXPECT_EQ(two.PlayInSearch("c2d1"), kMoveMade);
    CGameLine quiet("1k6/8/1K6/8/8/8/8/B7", 6);
    EXPECT_EQ(quiet.PlayInSearch("b8c8"), kMateImpossible);
    CGameLine assumed("8/8/2k5/p7/3K4/8/8/N7", 6);
    assumed.Node().Heur = 1;
    EXPECT_EQ(assumed.PlayInSearch("c6d6"), kMateImpossibleAssumed);
    assumed.Node().m_pass = kPassComplete;
    EXPECT_EQ(assumed.PlayInSearch("c6d6"), kMoveMade);
}

// Positions that the rules of thumb would have called hopeless, and that are mates.
TEST(TestMateImpossible, KnownCounterexamples_AreMatesAndNotCutOff) {
    const struct {
        const char* fen;
        int fullMoves;
        const char* key;
    } rows[] = {
        {"8/8/8/8/8/p2N4/k1K5/8", 3, "d3b4"},
        {"8/8/8/8/3N4/r7/8/k1K1N3", 3, "e1c2"},
    };
    for (const auto& row : rows) {
        reference::CBruteForce bruteForce;
        const reference::TPosition position = reference::FromFen(row.fen);
        EXPECT_EQ(bruteForce.ShortestMate(position, row.fullMoves), row.fullMoves) << row.fen;
        const auto keys = bruteForce.Keys(position, row.fullMoves);
        ASSERT_EQ(keys.size(), 1u) << row.fen;
        EXPECT_EQ(reference::ToText(keys[0]), row.key) << row.fen;
        TWhiteNode node(row.fen, static_cast<u16>(HalfMovesOfMate(row.fullMoves)));
        EXPECT_EQ(node.Test(), kMoveMade) << row.fen;
        // Along the line of the key every reply leaves the mate open.
        CGameLine line(row.fen, static_cast<u16>(HalfMovesOfMate(row.fullMoves)));
        ASSERT_EQ(line.PlayInSearch(row.key), kMoveMade);
        const reference::TPosition after = reference::After(position, keys[0]);
        for (const reference::TPlainMove reply : reference::LegalMoves(after)) {
            CGameLine child(row.fen, static_cast<u16>(HalfMovesOfMate(row.fullMoves)));
            ASSERT_EQ(child.PlayInSearch(row.key), kMoveMade);
            EXPECT_EQ(child.PlayInSearch(MoveOf(reference::ToText(reply))), kMoveMade);
        }
    }
    // #6 with the knight: no rule may cut the root.
    TWhiteNode sixMoves("5N2/6k1/3N4/6K1/8/8/8/n7", 11);
    EXPECT_EQ(sixMoves.Test(), kMoveMade);
}

// Pawn ends

TEST(IsPawnEndHopeless, OnlyTheSinglePawnThatIsTooSlow_Is) {
    const struct {
        const char* name;
        const char* fen;
        u16 halfMoves;
        bool isHopeless;
    } rows[] = {
        {"five moves to go, four left", "7k/8/8/8/8/8/P7/K7", 7, true},
        {"five moves to go, five left", "7k/8/8/8/8/8/P7/K7", 9, false},
        {"five moves from the third rank", "7k/8/8/8/8/P7/8/K7", 9, false},
        {"four left from the third rank", "7k/8/8/8/8/P7/8/K7", 7, true},
        {"one move to go", "7k/P7/8/8/8/8/8/K7", 1, false},
        {"two moves to go, one left", "7k/8/P7/8/8/8/8/K7", 1, true},
        {"two pawns", "7k/8/8/8/8/8/PP6/K7", 3, false},
        {"black has a man", "7k/7p/8/8/8/8/P7/K7", 3, false},
        {"white has a figure", "7k/8/8/8/8/8/P7/KB6", 3, false},
        {"no pawn", "7k/8/8/8/8/8/8/K7", 3, false},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, row.halfMoves);
        EXPECT_EQ(IsPawnEndHopeless(line.Node()), row.isHopeless) << row.name;
    }
}

}  // namespace
}  // namespace quillmere

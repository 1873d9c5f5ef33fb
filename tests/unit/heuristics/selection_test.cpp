#include "heuristics/catalogue.h"
#include "heuristics/conflicts.h"
#include "heuristics/sea_snake_detector.h"
#include "heuristics/selection.h"
#include "heuristics/selection_candidates.h"
#include "heuristics/selection_facts.h"
#include "heuristics/selection_limits.h"
#include "tests/support/selected_root.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::CSelectedRoot;

constexpr const char* kQueenAndRook = "4k3/8/8/8/8/8/8/Q3K2R w - - 0 1";

TSelectionFacts FactsOf(const std::string& fen, u16 halfMoves = 11) {
    CSearchBoard board(fen, halfMoves);
    return FindSelectionFacts(board.Root(), 20, 5);
}

TEST(SelectionFacts, TellTheClassOfAPosition) {
    struct TRow {
        const char* fen;
        u32 classBit;
        bool isOn;
    };
    constexpr TRow kRows[] = {
        {kQueenAndRook, kClassBareKing, true},
        {"4k3/4p3/8/8/8/8/8/Q3K2R w - - 0 1", kClassBareKing, false},
        {"4k3/8/8/8/8/8/8/4KB2 w - - 0 1", kClassLoneBishop, true},
        {"4k3/8/8/8/8/8/7P/4KB2 w - - 0 1", kClassLoneBishop, false},
        {"4k3/8/8/3q4/8/8/8/K6R w - - 0 1", kClassManyReplies, true},
        {"k7/8/8/8/8/8/7p/K6R w - - 0 1", kClassManyReplies, false},
        {"k7/p7/P7/8/8/8/8/K6R w - - 0 1", kClassTied, true},
        {"4k3/8/8/3q4/8/8/6n1/K6R w - - 0 1", kClassTied, false},
        {kQueenAndRook, kClassTied, false},  // nothing is there to be tied
        {kQueenAndRook, kClassKingOnEdge, true},
        {"8/8/8/3k4/8/8/8/Q3K2R w - - 0 1", kClassKingOnEdge, false},
        {kQueenAndRook, kClassSmallMaterial, true},
        {"rnbqk3/8/8/8/8/8/8/RNB1K2R w - - 0 1", kClassSmallMaterial, false},
        {"4k3/1p2p1p1/1P2P1P1/8/8/1p2p1p1/1P2P1P1/4K3 w - - 0 1", kClassClosed, true},
        {"4k3/8/8/8/8/1p2p1p1/1P2P1P1/4K3 w - - 0 1", kClassClosed, false},
    };
    for (const TRow& row : kRows)
        EXPECT_EQ((FactsOf(row.fen).classWord & row.classBit) != 0, row.isOn)
            << row.fen << " 0x" << std::hex << row.classBit;
}

TEST(SelectionFacts, WeighTheMaterial) {
    const TSelectionFacts facts = FactsOf("qrbnk3/ppp5/8/8/8/8/PP6/QRBNK3 w - - 0 1");
    EXPECT_EQ(facts.whiteMaterial, 9 + 5 + 3 + 3 + 2);
    EXPECT_EQ(facts.blackMaterial, 9 + 5 + 3 + 3 + 3);
}

TEST(Selection, GivesALoneKingItsClassAndThreeMovesToMate) {
    CSelectedRoot root(kQueenAndRook, 11);
    const u16 flags = root.Select();
    EXPECT_NE(flags & kPositionBareKing, 0);
    EXPECT_TRUE(root.Has(SH_3MOVESTOMATE));
    EXPECT_FALSE(root.Has(SH_DONTLETBLACKQUEENCHECKTWICE));
}

TEST(Selection, NotesTheClassInTheNode) {
    CSelectedRoot many("4k3/8/8/3q4/8/8/8/K6R w - - 0 1", 7);
    EXPECT_NE(many.Select() & kPositionManyReplies, 0);
    CSelectedRoot tied("k7/p7/P7/8/8/8/8/K6R w - - 0 1", 7);
    EXPECT_NE(tied.Select() & kPositionTied, 0);
    EXPECT_EQ(tied.Root().m_positionFlags & kPositionManyReplies, 0);
}

TEST(Selection, NotesTheMaterialInTheThread) {
    CSelectedRoot root("3rk3/ppp5/8/8/8/8/PP6/Q3K3 w - - 0 1", 7);
    root.Select();
    EXPECT_EQ(root.Thread().rootWhiteMaterial, 11);
    EXPECT_EQ(root.Thread().rootBlackMaterial, 8);
    EXPECT_EQ(root.Thread().rootMovableBlackMen, 4);
}

TEST(Selection, LeavesShortTasksAlone) {
    CSelectedRoot root(kQueenAndRook, 3);
    root.Select();
    EXPECT_EQ(root.Root().Heur, 0U);
    EXPECT_EQ(root.Root().HeurParams, 0U);
    EXPECT_EQ(root.Record().whyNothing, EMessage::kReasonTooShort);
}

TEST(Selection, TriesNothingInATaskThatIsOverAtOnce) {
    CSelectedRoot root("8/8/8/8/8/Q7/4p3/5k1K w - - 0 1", kTrialHalfMoves - 2);
    root.Select();
    EXPECT_TRUE(root.Record().trials.empty());
    EXPECT_EQ(root.Root().Heur & ~u32{SH_3MOVESTOMATE}, 0U);
}

TEST(Selection, ResetsWhatAnEarlierChoiceLeft) {
    CSelectedRoot root(kQueenAndRook, 7);
    THeuristicSettings& s = root.Settings();
    s.KingMoveExceptions = s.ExtEdgeStrict = s.SurroundedStrict = true;
    s.NearCornerDistance = 3;
    s.RelaxAfterCaptures = 2;
    s.RelaxCapturesCountPawns = s.RelaxOnAdvancedPawn = true;
    s.LoseFiguresMode = 2;
    s.ApplyBlockDynamically = false;
    s.BlackFigureOnDiagonal = 9;
    s.FfmWithOther = 1;
    s.SeaSnakeApproach = 5;
    root.Root().Heur = SH_KEYLINE;
    root.Select();
    EXPECT_FALSE(s.KingMoveExceptions || s.ExtEdgeStrict || s.SurroundedStrict);
    EXPECT_EQ(s.NearCornerDistance, 0);
    EXPECT_EQ(s.RelaxAfterCaptures, 0);
    EXPECT_FALSE(s.RelaxCapturesCountPawns || s.RelaxOnAdvancedPawn);
    EXPECT_EQ(s.LoseFiguresMode, 0);
    EXPECT_TRUE(s.ApplyBlockDynamically);
    EXPECT_EQ(s.BlackFigureOnDiagonal, kNoSquare);
    EXPECT_EQ(s.FfmWithOther, -1);
    EXPECT_EQ(s.SeaSnakeApproach, kNoSquare);
    EXPECT_FALSE(root.Has(SH_KEYLINE));
}

TEST(Selection, RelaxesEdgeRulesByTheCapturesThatALoneFigureNeeds) {
    CSelectedRoot queen("3r2k1/2n2b2/8/8/8/8/8/Q3K3 w - - 0 1", 9);
    queen.Select();
    EXPECT_EQ(queen.Settings().RelaxAfterCaptures, 3);
    CSelectedRoot rook("3r2k1/2n5/8/8/8/8/8/R3K3 w - - 0 1", 9);
    rook.Select();
    EXPECT_EQ(rook.Settings().RelaxAfterCaptures, 1);
    CSelectedRoot more("3r2k1/2n5/8/8/8/8/8/R2RK3 w - - 0 1", 9);
    more.Select();
    EXPECT_EQ(more.Settings().RelaxAfterCaptures, 0);
}

TEST(Selection, HoldsPromotedFiguresWhereBlackCanPromote) {
    struct TRow {
        const char* fen;
        u32 bit;
    };
    // Any figure is held when white has no queen or is behind; else only a queen.
    constexpr TRow kRows[] = {
        {"7k/8/8/8/8/p7/8/R3K3 w - - 0 1", 0},  // the rook stands before it
        {"7k/8/8/8/8/1p6/8/R3K3 w - - 0 1", SH_DONTLETPROMOTEDFIGUREMOVE},
        {"6rk/5ppr/6pp/8/8/1p6/8/2Q1K3 w - - 0 1", SH_DONTLETPROMOTEDQUEENMOVE},
    };
    for (const TRow& row : kRows) {
        CSelectedRoot root(row.fen, kTrialHalfMoves + 4);
        root.Select();
        ASSERT_FALSE(root.Record().trials.empty());
        // What stands in every word stands in the last trial.
        const std::string& word = root.Record().trials.back().heuristics;
        for (const u32 bit : {SH_DONTLETPROMOTEDFIGUREMOVE, SH_DONTLETPROMOTEDQUEENMOVE})
            EXPECT_EQ(word.find(HeuristicName(bit)) != std::string::npos, bit == row.bit)
                << row.fen << " " << word;
    }
}

TEST(Selection, KeepsNothingWhereAllTrialsFailed) {
    CSelectedRoot root("6rk/5ppr/6pp/8/8/1p6/8/2Q1K3 w - - 0 1", kTrialHalfMoves + 2);
    root.Select();
    ASSERT_FALSE(root.Record().trials.empty());
    for (const TTrialRecord& trial : root.Record().trials)
        ASSERT_NE(trial.outcome, ETrialOutcome::kMateSeen);
    EXPECT_EQ(root.Root().Heur, 0U);
    EXPECT_EQ(root.Record().whyNothing, EMessage::kReasonNothingFits);
}

TEST(Selection, ComesBackToAStoredZugzwangInsteadOfHoldingPromotedFigures) {
    CSelectedRoot root("7k/8/8/8/8/1p6/8/R3K3 w - - 0 1", kTrialHalfMoves);
    root.Context().HasZugzwangPosition = true;
    root.Select();
    EXPECT_TRUE(root.Has(SH_ZUGZWANG));
    EXPECT_FALSE(root.Has(SH_DONTLETPROMOTEDFIGUREMOVE));
    EXPECT_FALSE(root.Has(SH_DONTLETPROMOTEDQUEENMOVE));
}

TEST(Selection, LeavesASeaSnakeAsItWasFound) {
    constexpr const char* kSnake = "8/3N2kP/6Pp/7K/8/8/1P6/8 w - - 0 1";
    for (const u16 halfMoves : {u16{15}, u16{21}}) {
        CSearchBoard board(kSnake, halfMoves);
        TSeaSnakeSquares found;
        SeaSnakeDetect(board.Root(), found, halfMoves);
        ASSERT_NE(found.approach, kNoSquare);
        CSelectedRoot root(kSnake, halfMoves);
        root.Select();
        EXPECT_TRUE(root.Has(SH_SEASNAKE));
        EXPECT_FALSE(root.Has(SH_FINDFORCEDMATE));
        EXPECT_FALSE(root.Has(SH_3MOVESTOMATE));
        const THeuristicSettings& s = root.Settings();
        EXPECT_EQ(s.SeaSnakeApproach, found.approach);
        EXPECT_EQ(s.SeaSnakeTurnBack, found.turnBack);
        EXPECT_EQ(s.SeaSnakePendulum1, found.pendulum1);
        EXPECT_EQ(s.SeaSnakePendulum2, found.pendulum2);
        EXPECT_FALSE(s.SeaSnakeByUser);
        EXPECT_TRUE(root.Record().trials.empty()) << "a plan that stands is no bet";
    }
    CSelectedRoot shorter(kSnake, 13);
    shorter.Select();
    EXPECT_FALSE(shorter.Has(SH_SEASNAKE));
}

TEST(Selection, TellsAReasonForEachBitAndTheWorkOfItsTrials) {
    CSelectedRoot root("7k/4p2P/4P1K1/2b5/8/8/2N5/8 w - - 0 1", 21);
    root.Select();
    u32 told = 0;
    for (const TChosenHeuristic& heuristic : root.Record().heuristics) {
        told |= heuristic.bit;
        EXPECT_FALSE(heuristic.text.empty());
        EXPECT_NE(heuristic.reason, EMessage::kCount);
    }
    EXPECT_EQ(told, root.Root().Heur);
    u64 work = 0;
    for (const TTrialRecord& trial : root.Record().trials) {
        work += trial.madeMoves;
        EXPECT_FALSE(trial.heuristics.empty());
        EXPECT_EQ(trial.halfMoves, 21);
    }
    EXPECT_FALSE(root.Record().trials.empty());
    EXPECT_LE(work, root.Record().madeMoves);
}

TEST(Selection, IsTheSameTwice) {
    CSelectedRoot one("7k/4p2P/4P1K1/2b5/8/8/2N5/8 w - - 0 1", 15);
    CSelectedRoot two("7k/4p2P/4P1K1/2b5/8/8/2N5/8 w - - 0 1", 15);
    one.Select();
    two.Select();
    EXPECT_EQ(one.Root().Heur, two.Root().Heur);
    EXPECT_EQ(one.Root().HeurParams, two.Root().HeurParams);
    EXPECT_EQ(one.Settings(), two.Settings());
    EXPECT_EQ(one.Record().madeMoves, two.Record().madeMoves);
}

TEST(Selection, AWordThatSawTheMateIsTheWordOfTheLastTrial) {
    CSelectedRoot root("2K2k2/4p3/4P1P1/r2n4/8/8/6B1/7Q w - - 0 1", 11);
    root.Select();
    const auto& trials = root.Record().trials;
    const auto seen = std::find_if(trials.begin(), trials.end(), [](const TTrialRecord& trial) {
        return trial.outcome == ETrialOutcome::kMateSeen;
    });
    ASSERT_NE(seen, trials.end()) << "this position was taken since a word of the table mates here";
    EXPECT_EQ(seen + 1, trials.end()) << "what follows a mate is spared";
    std::string text;
    for (const TChosenHeuristic& heuristic : root.Record().heuristics)
        text += (text.empty() ? "" : ", ") + heuristic.text;
    EXPECT_EQ(text, seen->heuristics);
}

// The limits

TEST(SelectionLimits, GrowWithTheTaskAndStayShares) {
    TSelectionFacts facts;
    facts.moveCount = 30;
    facts.men = 20;
    facts.blackMoves = 10;
    TTrialLimits before;
    for (facts.halfMoves = 1; facts.halfMoves < 200; facts.halfMoves += 2) {
        const TTrialLimits limits = TrialLimits(facts);
        EXPECT_EQ(limits.first == 0, facts.halfMoves < kTrialHalfMoves);
        EXPECT_GE(limits.total, before.total);
        EXPECT_LE(limits.first, limits.last);
        EXPECT_LE(limits.last, limits.total);
        EXPECT_LE(static_cast<double>(limits.total), 0.3 * AssumedPass(facts));
        before = limits;
    }
}

// The candidates

TEST(SelectionCandidates, TheTableHoldsNoWordThatExcludesItself) {
    TSelectionFacts facts;
    facts.blocked = {48};
    for (const TCandidateWord& row : CandidateWords()) {
        CSelectedRoot root("4k3/p7/8/8/8/8/8/Q3K2R w - - 0 1", 11);
        TakeCandidate(root.Root(), row, SH_3MOVESTOMATE, facts);
        EXPECT_FALSE(root.Has(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED));
        EXPECT_FALSE(root.Has(SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED));
        EXPECT_FALSE(
            FindHeuristicConflict(root.Root().Heur, root.Settings(), root.Context(), root.Root())
                .has_value());
    }
}

TEST(SelectionCandidates, NoRowIsPrecededByOneThatRefutesIt) {
    // A row behind a weaker one would hardly ever be reached.
    const auto rows = CandidateWords();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = i + 1; j < rows.size(); ++j)
            EXPECT_FALSE(IsAtLeastAsStrict(rows[j], rows[i])) << i << " " << j;
    }
}

}  // namespace
}  // namespace quillmere

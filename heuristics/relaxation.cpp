// The ladder of relaxations.
//
// A pass with heuristics ended without what was asked for. Either there is nothing to find, or one
// of the assumptions keeps the solution out. Giving up all of them at once would throw the speed of
// the next pass away, so they go one at a time, the most daring and the least related to the black
// king first, the rules that hold the king itself last, each of those in favour of a weaker one.
// The order is fixed: it is part of what the program means by "the same settings".
//
// Nothing is left out here. A step that gives up the wrong assumption costs a pass; when no step is
// left, the word is 0 and the pass without heuristics tells the truth. The ladder ends, since every
// step takes something away for good: SH_KEEPKINGONTHEEDGE may become SH_KEEPKINGWITHINEXTEDGE, and
// either of them SH_ASSERTBLACKKINGSURROUNDED, never the other way; SH_DONTLETFIGUREUNBLOCK and
// SH_KEYWHITEFIGURE may rest for a pass and come back, but only as part of a step that gives up
// something else.
//
// The tests of the position stand in heuristics/relaxation_tests.cpp, the rungs of the search for
// forced mates in heuristics/forced_mate_ladder.cpp.
#include "heuristics/relaxation.h"

#include "core/material.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/blocked_list.h"
#include "heuristics/forced_mate_ladder.h"
#include "heuristics/heur_params.h"
#include "heuristics/relaxation_log.h"
#include "heuristics/relaxation_tests.h"

#include <cassert>
#include <optional>

namespace quillmere {
namespace {

// The answer of the ladder, or nothing: the next step is tried.
using TAnswer = std::optional<int>;

THeuristicSettings& SettingsOf(TChessboard& node) {
    return node.m_threadContext->heuristics;
}

bool IsOn(const TChessboard& node, u32 heuristics) {
    return (node.Heur & heuristics) != 0;
}

bool IsStrictKingMove(TChessboard& node) {
    return IsOn(node, SH_KEEPKINGONTHEEDGE) && SettingsOf(node).StrictKingMove;
}

// The end of a step that wrote the word or a setting.
int Settle(TChessboard& node) {
    ComputeHeurParams(node);
    return node.Heur != 0 ? 1 : 0;
}

TAnswer Drop(TChessboard& node, u32 heuristic) {
    if (!IsOn(node, heuristic))
        return std::nullopt;
    node.Heur &= ~heuristic;
    return Settle(node);
}

int Replace(TChessboard& node, u32 oldHeuristic, u32 newHeuristic) {
    node.Heur = (node.Heur & ~oldHeuristic) | newHeuristic;
    return Settle(node);
}

// The program has done with letting blocked figures go on its own.
void EndDynamicBlock(TChessboard& node) {
    node.Heur &= ~SH_DONTLETFIGUREUNBLOCK;
    SettingsOf(node).ApplyBlockDynamically = false;
    SettingsOf(node).CanApplyBlockDynamically2 = false;
}

// Steps 7 and 12 share this.
TAnswer StrikeMarkedFigures(TChessboard& node) {
    THeuristicSettings& settings = SettingsOf(node);
    if (settings.PendingBlockRemovalCount == 0 || !settings.ApplyBlockDynamically ||
        !IsOn(node, SH_DONTLETFIGUREUNBLOCK))
        return std::nullopt;
    StrikePendingFigures(node);
    if (settings.BlockedFigureCount == 0)
        EndDynamicBlock(node);
    return Settle(node);
}

// Steps 9 and 13 share this. The key figure comes back once more, in the place of the block, when
// both stood beside a king that must not move.
TAnswer DropKeyFigure(TChessboard& node) {
    if (!IsOn(node, SH_KEYWHITEFIGURE))
        return std::nullopt;
    if (IsStrictKingMove(node) && IsOn(node, SH_DONTLETFIGUREUNBLOCK))
        SettingsOf(node).IsSwapBlockAndKeyFigurePending = true;
    return Drop(node, SH_KEYWHITEFIGURE);
}

// Step 1. The user wants no relaxation.
TAnswer RefuseRelaxation(TChessboard& node) {
    if (SettingsOf(node).LetRelaxHeuristics)
        return std::nullopt;
    SetHeur(node, 0);
    return 0;
}

// Step 2. With black to move, the steps belong to the position before.
TAnswer RelaxParent(TChessboard& node) {
    if (node.IsWhiteToMove())
        return std::nullopt;
    if (node.m_parent == nullptr) {
        SetHeur(node, 0);
        return 0;
    }
    const TChessboard kept = node;
    const THeuristicSettings before = SettingsOf(node);
    const int answer = TryRelaxSpecialHeuristics(*node.m_parent);
    node = kept;
    FollowStruckEntries(node, before);
    node.Heur = node.m_parent->Heur;
    node.HeurParams = node.m_parent->HeurParams;
    return answer;
}

// Step 3. Counts, and brings back what step 10 took away for one pass.
TAnswer CountRelaxation(TChessboard& node) {
    if (node.Heur == 0)
        return Settle(node);
    THeuristicSettings& settings = SettingsOf(node);
    ++settings.RelaxationCount;
    if (settings.IsReapplyBlockPending) {
        settings.IsReapplyBlockPending = false;
        SetHeur(node, node.Heur | SH_DONTLETFIGUREUNBLOCK);
    }
    return std::nullopt;
}

// Step 4. The key figure in the place of the block for one pass, then the block alone.
TAnswer SwapBlockAndKeyFigure(TChessboard& node) {
    THeuristicSettings& settings = SettingsOf(node);
    if (!settings.IsSwapBlockAndKeyFigurePending)
        return std::nullopt;
    if (IsOn(node, SH_DONTLETFIGUREUNBLOCK))
        return Replace(node, SH_DONTLETFIGUREUNBLOCK, SH_KEYWHITEFIGURE);
    settings.IsSwapBlockAndKeyFigurePending = false;
    Replace(node, SH_KEYWHITEFIGURE, SH_DONTLETFIGUREUNBLOCK);
    return std::nullopt;
}

// A sea snake that the program found itself and that failed puts all else in doubt.
TAnswer DropSeaSnake(TChessboard& node) {
    if (IsOn(node, SH_SEASNAKE) && !SettingsOf(node).SeaSnakeByUser &&
        node.m_searchContext != nullptr)
        node.m_searchContext->isExact = true;
    return Drop(node, SH_SEASNAKE);
}

TAnswer DropOneColourPlay(TChessboard& node) {
    if (IsOn(node, SH_ONECOLORPLAYPOSSIBLE))
        node.m_captureState &= static_cast<u8>(~kOneColourMask);
    return Drop(node, SH_ONECOLORPLAYPOSSIBLE);
}

TAnswer SwitchToSurrounded(TChessboard& node) {
    const THeuristicSettings& settings = SettingsOf(node);
    if (!IsStrictKingMove(node) || !settings.KingMoveExceptions ||
        settings.AllowSwitchToSurrounded == 0)
        return std::nullopt;
    return Replace(node, SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
}

// Step 5. What stands for a pattern of the whole solution.
TAnswer DropPatterns(TChessboard& node) {
    if (IsOn(node, SH_FINDFORCEDMATE))
        return std::nullopt;
    if (const TAnswer answer = Drop(node, SH_SWEEPINGWHITEROOK))
        return answer;
    if (const TAnswer answer = Drop(node, SH_ZUGZWANG))
        return answer;
    if (const TAnswer answer = DropSeaSnake(node))
        return answer;
    if (const TAnswer answer = DropOneColourPlay(node))
        return answer;
    if (const TAnswer answer = Drop(node, SH_KEEPKINGNEARCORNER))
        return answer;
    return SwitchToSurrounded(node);
}

// Step 6.
TAnswer RelaxForcedMate(TChessboard& node) {
    if (!IsOn(node, SH_FINDFORCEDMATE))
        return std::nullopt;
    return TryRelaxFfm(node);
}

// Step 7. With fewer than three black figures the list waits for step 12.
TAnswer StrikeMarkedOfMany(TChessboard& node) {
    constexpr int kManyFigures = 3;
    const u8* counts = SettingsOf(node).InitialBlackCounts;
    if (counts[0] + counts[1] + counts[2] + counts[3] < kManyFigures)
        return std::nullopt;
    return StrikeMarkedFigures(node);
}

// Step 8.
TAnswer DropMainDiagonal(TChessboard& node) {
    return Drop(node, SH_DONTLEAVEMAINDIAGONAL);
}

// Step 9. A king in its corner with a pinned guard needs the key figure least.
TAnswer DropKeyFigureAtCorner(TChessboard& node) {
    if (!IsOn(node, SH_KEYWHITEFIGURE) || CountWhiteFigures(node) < 2 ||
        !IsBlackKingInCorner(node) || !IsKeyPinStanding(node))
        return std::nullopt;
    return DropKeyFigure(node);
}

// Step 10. A lone white figure cannot hold both the king and a crowd of blocked figures: the block
// rests for one pass. Then the strict rule gets its exceptions.
TAnswer AllowKingMoveExceptions(TChessboard& node) {
    if (!IsStrictKingMove(node))
        return std::nullopt;
    constexpr int kCrowd = 3;
    THeuristicSettings& settings = SettingsOf(node);
    if (IsOn(node, SH_DONTLETFIGUREUNBLOCK) && !settings.IsReapplyBlockPending &&
        CountWhiteFigures(node) == 1 && settings.BlockedFigureCount >= kCrowd) {
        SetHeur(node, node.Heur & ~SH_DONTLETFIGUREUNBLOCK);
        settings.IsReapplyBlockPending = true;
    }
    if (settings.KingMoveExceptions || !SuitsKingMoveExceptions(node))
        return std::nullopt;
    settings.KingMoveExceptions = true;
    return Settle(node);
}

// Step 11. From "does not move" to "stays on the edge".
TAnswer EndStrictKingMove(TChessboard& node) {
    if (!IsStrictKingMove(node) || (node.m_searchFlags & kSearchEdgeReleased) != 0)
        return std::nullopt;
    SettingsOf(node).StrictKingMove = false;
    if (SettingsOf(node).AllowSwitchToSurrounded > 1 && SuitsSwitchToSurrounded(node))
        return Replace(node, SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
    return Settle(node);
}

// Step 13. Single figures.
TAnswer DropFigureRules(TChessboard& node) {
    if (const TAnswer answer = DropKeyFigure(node))
        return answer;
    if (SettingsOf(node).AllowRelaxQueenCheckTwice) {
        if (const TAnswer answer = Drop(node, SH_DONTLETBLACKQUEENCHECKTWICE))
            return answer;
    }
    if (SettingsOf(node).AllowRelaxPromotedQueen)
        return Drop(node, SH_DONTLETPROMOTEDQUEENMOVE);
    return std::nullopt;
}

// Step 14.
TAnswer MakeBlockEffective(TChessboard& node) {
    THeuristicSettings& settings = SettingsOf(node);
    if (settings.BlockedFigureCount == 0 || settings.BlockedFiguresEffective)
        return std::nullopt;
    settings.BlockedFiguresEffective = true;
    return Settle(node);
}

// Step 15.
TAnswer DropSingleQueenMate(TChessboard& node) {
    return Drop(node, SH_SINGLEQUEENMATE);
}

// Step 16.
TAnswer DropLosingNoFigures(TChessboard& node) {
    if (!IsOn(node, SH_DONTLOSEANYFIGURES) || SuitsLosingNoFigures(node))
        return std::nullopt;
    return Drop(node, SH_DONTLOSEANYFIGURES);
}

// Step 17. Strictness first. What step 16 kept goes with the rule that it was kept for.
TAnswer RelaxSurrounded(TChessboard& node) {
    if (!IsOn(node, SH_ASSERTBLACKKINGSURROUNDED))
        return Drop(node, SH_DONTLOSEANYFIGURES);
    if (!SettingsOf(node).SurroundedStrict)
        return Drop(node, SH_ASSERTBLACKKINGSURROUNDED);
    SettingsOf(node).SurroundedStrict = false;
    return Settle(node);
}

// Step 18. The edge gives way to a wider zone, to a king without room, or to nothing.
TAnswer ReplaceEdge(TChessboard& node) {
    if (!IsOn(node, SH_KEEPKINGONTHEEDGE))
        return std::nullopt;
    const TEdgeSuccessor next = SuccessorOfEdge(node, node.Heur & ~SH_KEEPKINGONTHEEDGE);
    if (next.findsCornerSquares)
        SettingsOf(node).EdgeSquaresInclCorner = IsBlackKingOnCornerSquare(node);
    return Replace(node, SH_KEEPKINGONTHEEDGE, next.heuristic);
}

// Step 19. One blocked figure after the other, unless the block is all that black has.
TAnswer StrikeOneFigure(TChessboard& node) {
    const bool isBlockOn =
        IsOn(node, SH_DONTLETFIGUREUNBLOCK) || SettingsOf(node).CanApplyBlockDynamically2;
    if (!isBlockOn || !IsOn(node, SH_KEEPKINGWITHINEXTEDGE) || IsClosedButForKingCaptures(node))
        return std::nullopt;
    if (!StrikeFreestBlockedFigure(node))
        EndDynamicBlock(node);
    return Settle(node);
}

// Step 20. The last rules without an edge; with none of them left, whatever else is on goes too.
TAnswer DropLastRules(TChessboard& node) {
    if (IsOn(node, SH_KEEPKINGWITHINEXTEDGE))
        return std::nullopt;
    for (const u32 heuristic : {SH_DONTLETBLACKQUEENCHECKTWICE,
                                SH_SKIPWORSTWHITEMOVES,
                                SH_SAVEQUEENROOK,
                                SH_AREKINGSNEAR}) {
        if (const TAnswer answer = Drop(node, heuristic))
            return answer;
    }
    SetHeur(node, 0);
    return 0;
}

// Step 21. The wider zone, strict form first.
TAnswer RelaxExtendedEdge(TChessboard& node) {
    if (SettingsOf(node).ExtEdgeStrict) {
        SettingsOf(node).ExtEdgeStrict = false;
        return Settle(node);
    }
    const bool isStuck = HasFewFlights(node, 1) || IsBlackKingWalledIn(node);
    const u32 next = isStuck ? u32{SH_ASSERTBLACKKINGSURROUNDED} : 0;
    return Replace(node, SH_KEEPKINGWITHINEXTEDGE, next);
}

using TStep = TAnswer (*)(TChessboard& node);

// From the top; the first step that answers ends the walk. One of the last two always does.
constexpr TStep kLadder[] = {
    RefuseRelaxation,         // 1
    RelaxParent,              // 2
    CountRelaxation,          // 3
    SwapBlockAndKeyFigure,    // 4
    DropPatterns,             // 5
    RelaxForcedMate,          // 6
    StrikeMarkedOfMany,       // 7
    DropMainDiagonal,         // 8
    DropKeyFigureAtCorner,    // 9
    AllowKingMoveExceptions,  // 10
    EndStrictKingMove,        // 11
    StrikeMarkedFigures,      // 12
    DropFigureRules,          // 13
    MakeBlockEffective,       // 14
    DropSingleQueenMate,      // 15
    DropLosingNoFigures,      // 16
    RelaxSurrounded,          // 17
    ReplaceEdge,              // 18
    StrikeOneFigure,          // 19
    DropLastRules,            // 20
    RelaxExtendedEdge,        // 21
};

int WalkFromTop(TChessboard& node) {
    for (const TStep step : kLadder) {
        if (const TAnswer answer = step(node))
            return *answer;
    }
    assert(false);
    return 0;
}

}  // namespace

int TryRelaxSpecialHeuristics(TChessboard& node) {
    LogRelaxation(node, true);
    const int answer = WalkFromTop(node);
    LogRelaxation(node, false);
    return answer;
}

}  // namespace quillmere

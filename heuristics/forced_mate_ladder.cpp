// The rungs of the search for forced mates.
//
// While SH_FINDFORCEDMATE is on, all relaxation is its own: the other rules stay as they are until
// the bit has gone. With the preliminary pass the first rung is the end of it: the weaker edge rule
// first, then the word as it was chosen. Then the mode rises as often as was asked for, from checks
// alone to threats of ever longer mates; behind that, some positions and fast passes earn one mode
// more; at last a cycle that is to run twice begins again, and in the end the bit goes.
//
// What is taken for certain, where a rung speaks of tests of the position:
//   - a position that the endgame tables know needs no wider list; only whether there are tables for
//     its material is asked, since what the register holds differs between runs;
//   - a stuck black king has at most one free square;
//   - the capture score is the material of both sides.
//
// A rung by the time of the passes: what was refuted in less than a second may be asked again more
// generously. CRelaxationTimes measures it, once for all threads; what decides by it stands here, and
// it is off where equal work in every run is promised (TSearchContext::mayRelaxByTime).
#include "heuristics/forced_mate_ladder.h"

#include "core/material.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/relaxation_log.h"
#include "heuristics/relaxation_tests.h"
#include "search/forcing_moves.h"

namespace quillmere {
namespace {

// Milliseconds from the start of the analysis. Empirical: a wait that nobody notices.
constexpr u64 kAdditionalRelaxationLimit = 1000;
// Between these, both included, the decision is worth a line in the log.
constexpr u64 kNearLimitLow = 800;
constexpr u64 kNearLimitHigh = 1200;

// A task of more half-moves is too long for threats of two and more.
constexpr int kPlusRoot = 21;

THeuristicSettings& SettingsOf(TChessboard& node) {
    return node.m_threadContext->heuristics;
}

// The end of a rung that wrote the word or a setting.
int Settle(TChessboard& node) {
    ComputeHeurParams(node);
    return node.Heur != 0 ? 1 : 0;
}

// The mode rises by one, and a mode with a plus that would take no other first move than the one
// before is passed over.
void RaiseMode(TChessboard& node) {
    u8& mode = SettingsOf(node).FfmMode;
    ++mode;
    const bool hasPlus = mode == kForcedThreatOfOnePlus || mode == kForcedThreatOfTwoPlus;
    if (hasPlus && !AddsForcingMoves(node, mode))
        ++mode;
}

bool RaisePlannedMode(TChessboard& node) {
    const THeuristicSettings& settings = SettingsOf(node);
    const int limit = settings.FfmCustom ? settings.FfmCustomRelaxations : settings.FfmRelaxations;
    if (settings.FfmMode - settings.FfmStartMode >= limit || settings.FfmMode >= kLastForcedMode)
        return false;
    RaiseMode(node);
    return true;
}

bool RaiseForQueenlessWhite(TChessboard& node) {
    u8& mode = SettingsOf(node).FfmMode;
    const bool hasManyReplies = (node.m_positionFlags & kPositionManyReplies) != 0;
    if (mode != kForcedThreatOfTwo || node.m_counts[kWhiteQueens] != 0)
        return false;
    if (node.m_nRootMoves > kPlusRoot && !(hasManyReplies && node.m_counts[kBlackQueens] != 0))
        return false;
    mode = kForcedThreatOfTwoPlus;
    return true;
}

// With the other rules at work, and the position one of the endgame tables.
bool AreTablesKnown(TChessboard& node) {
    const IMaterialTables* tables =
        node.m_searchContext != nullptr ? node.m_searchContext->materialTables : nullptr;
    return SettingsOf(node).FfmWithOther > 0 && tables != nullptr && tables->HasTables(node);
}

// 9 for a queen, 5 for a rook, 3 for a bishop or a knight, 1 for a pawn. first: the count of the
// side's queens.
int MaterialScore(const TChessboard& node, int first) {
    const u8* c = node.m_counts + first;
    return 9 * c[kWhiteQueens] + 5 * c[kWhiteRooks] + 3 * (c[kWhiteBishops] + c[kWhiteKnights]) +
           c[kWhitePawns];
}

bool IsOnEdge(int square) {
    const int file = FileOf(square);
    const int rank = RankOf(square);
    return file == 0 || file == 7 || rank == 0 || rank == 7;
}

// White forces too little, or black's king is held already: more threats are not what is missing.
bool IsWiderModeHopeless(TChessboard& node) {
    constexpr int kFewFigures = 2;
    constexpr int kManyFigures = 4;
    constexpr int kFiguresWithQueen = 3;
    const int figures = CountWhiteFigures(node);
    const bool hasQueen = node.m_counts[kWhiteQueens] != 0;
    if (figures < kFewFigures || (figures == kFewFigures && !hasQueen))
        return true;
    if (MaterialScore(node, kBlackQueens) > MaterialScore(node, kWhiteQueens))
        return true;
    const bool areBothOnEdge = IsOnEdge(node.WhiteKingSquare()) && IsOnEdge(node.BlackKingSquare());
    const bool isStuckAsked =
        (areBothOnEdge && figures >= kManyFigures) || (hasQueen && figures >= kFiguresWithQueen);
    return isStuckAsked && HasFewFlights(node, 1);
}

// The passes took so little time that one more costs next to nothing: it goes to the mode with a
// plus straight away. Checks alone are enough for a queen.
bool RaiseByTime(TChessboard& node) {
    THeuristicSettings& settings = SettingsOf(node);
    TSearchContext* context = node.m_searchContext;
    if (context == nullptr || !context->mayRelaxByTime ||
        settings.FfmMode >= kForcedThreatOfTwoPlus ||
        (settings.FfmMode == kForcedChecks && node.m_counts[kWhiteQueens] != 0))
        return false;
    const u64 elapsed =
        context->relaxationTimes.Elapsed(settings.RelaxationCount, context->relaxationClock());
    if (!IsAdditionalRelaxationAccepted(
            elapsed, [&node](const std::string& line) { LogRelaxationTime(node, line); }))
        return false;
    ++settings.FfmMode;
    if (settings.FfmMode == kForcedThreatOfOne || settings.FfmMode == kForcedThreatOfTwo)
        ++settings.FfmMode;
    return true;
}

bool BeginSecondRound(TChessboard& node) {
    THeuristicSettings& settings = SettingsOf(node);
    if (!settings.FfmCustom)
        return false;
    settings.FfmCustom = false;
    settings.FfmMode = settings.FfmStartMode;
    return true;
}

int DropForcedMate(TChessboard& node) {
    SetHeur(node, node.Heur & ~SH_FINDFORCEDMATE);
    return node.Heur != 0 ? 1 : 0;
}

}  // namespace

void ApplyFfmPreliminary(TChessboard& node) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    if (!settings.FfmPreliminary || (node.Heur & SH_FINDFORCEDMATE) == 0)
        return;
    settings.FfmSavedHeur = node.Heur;
    constexpr u32 kReplaced = SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED;
    SetHeur(node, (node.Heur & ~kReplaced) | SH_KEEPKINGWITHINEXTEDGE);
}

int TryRelaxFfm(TChessboard& node) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    // Step 1. The end of the preliminary pass.
    if (settings.FfmPreliminary) {
        settings.FfmPreliminary = false;
        SetHeur(node, settings.FfmSavedHeur);
        return node.Heur != 0 ? 1 : 0;
    }
    // Steps 2 and 3. A mode that was asked for, or that the position deserves.
    if (RaisePlannedMode(node) || RaiseForQueenlessWhite(node))
        return Settle(node);
    // Steps 4 to 7. A mode more because the passes were fast.
    if (!AreTablesKnown(node) && !IsWiderModeHopeless(node) && RaiseByTime(node))
        return -Settle(node);
    // Step 8. The second round, or the end.
    return BeginSecondRound(node) ? Settle(node) : DropForcedMate(node);
}

bool IsAdditionalRelaxationAccepted(u64 milliseconds,
                                    const std::function<void(const std::string& line)>& log) {
    const bool isAccepted = milliseconds < kAdditionalRelaxationLimit;
    if (milliseconds >= kNearLimitLow && milliseconds <= kNearLimitHigh) {
        log("Time dependent relaxation near the limit: calcTime=" + std::to_string(milliseconds) +
            " msec.; limit=" + std::to_string(kAdditionalRelaxationLimit) + " msec. " +
            (isAccepted ? "(additional relaxation accepted)" : "(additional relaxation refused)"));
    }
    return isAccepted;
}

}  // namespace quillmere

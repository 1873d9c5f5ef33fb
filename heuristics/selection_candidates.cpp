#include "heuristics/selection_candidates.h"

#include "core/thread_context.h"
#include "heuristics/blocked_list.h"
#include "heuristics/choice.h"
#include "heuristics/heur_params.h"

namespace quillmere {
namespace {

using TFacts = const TSelectionFacts&;

bool Always(TFacts) {
    return true;
}
bool IsOnEdge(TFacts f) {
    return f.edgeDistance == 0;
}
bool IsNearEdge(TFacts f) {
    return f.edgeDistance <= 1;
}
bool IsHeldOnEdge(TFacts f) {
    constexpr int kFewFlights = 1;
    return f.edgeDistance == 0 && f.flights <= kFewFlights;
}
bool IsHeldBeforeBlocked(TFacts f) {
    return !f.blocked.empty() && IsHeldOnEdge(f);
}

constexpr u32 kEdge = SH_KEEPKINGONTHEEDGE;
constexpr u32 kExt = SH_KEEPKINGWITHINEXTEDGE;
constexpr u32 kSurrounded = SH_ASSERTBLACKKINGSURROUNDED;
constexpr u32 kForced = SH_FINDFORCEDMATE;
constexpr u8 kChecks = 2;
constexpr u8 kThreat1 = 3;
constexpr u8 kThreat2 = 5;

// Checks alone.
constexpr TCandidateWord kCheckRows[] = {
    {kForced | kEdge, kStrictKing, kChecks, IsHeldOnEdge},
    {kForced | kSurrounded, kSurroundedStrict, kChecks, Always},
    {kForced | kEdge, 0, kChecks, IsOnEdge},
    {kForced, 0, kChecks, Always},
};

// The edge choice, the strong words first.
constexpr TCandidateWord kEdgeRows[] = {
    {kEdge, kStrictKing, 0, IsHeldOnEdge},
    {kEdge, kStrictKing | kKingExceptions, 0, IsHeldOnEdge},
    {kEdge, 0, 0, IsOnEdge},
    {kExt, kExtStrict, 0, IsNearEdge},
    {kExt, 0, 0, IsNearEdge},
    {kSurrounded, kSurroundedStrict, 0, Always},
    {kSurrounded, 0, 0, Always},
};

// All words, the cheap ones first: what only checks is over at once.
constexpr TCandidateWord kRows[] = {
    {kForced | kEdge, kStrictKing, kChecks, IsHeldOnEdge},
    {kForced | kSurrounded, kSurroundedStrict, kChecks, Always},
    {kForced | kEdge, 0, kChecks, IsOnEdge},
    {kForced, 0, kChecks, Always},
    {kForced | kEdge, kStrictKing, kThreat1, IsHeldOnEdge},
    {kForced | kSurrounded, kSurroundedStrict, kThreat1, Always},
    {kEdge, kStrictKing | kWithBlocked, 0, IsHeldBeforeBlocked},
    {kEdge, kStrictKing, 0, IsHeldOnEdge},
    {kForced | kEdge, 0, kThreat1, IsOnEdge},
    {kForced | kExt, kExtStrict, kThreat1, IsNearEdge},
    {kEdge, kStrictKing | kKingExceptions, 0, IsHeldOnEdge},
    {kForced | kSurrounded, 0, kThreat1, Always},
    {kForced | kSurrounded, kSurroundedStrict, kThreat2, Always},
    {kForced, 0, kThreat1, Always},
    {kForced | kEdge, 0, kThreat2, IsOnEdge},
    {kSurrounded, kSurroundedStrict, 0, Always},
    {kEdge, 0, 0, IsOnEdge},
    {kForced | kExt, 0, kThreat2, IsNearEdge},
    {kExt, kExtStrict, 0, IsNearEdge},
    {kSurrounded | SH_DONTLOSEANYFIGURES, 0, 0, Always},
    {kForced, 0, kThreat2, Always},
    {kExt, 0, 0, IsNearEdge},
    {kSurrounded, 0, 0, Always},
};

// 0 no restriction; the strictest is the greatest.
int StrictnessOfKing(const TCandidateWord& row) {
    if ((row.heur & kEdge) != 0)
        return (row.forms & kStrictKing) == 0 ? 3 : (row.forms & kKingExceptions) != 0 ? 4 : 5;
    if ((row.heur & kExt) != 0)
        return (row.forms & kExtStrict) != 0 ? 2 : 1;
    return 0;
}

int StrictnessOfSurrounding(const TCandidateWord& row) {
    if ((row.heur & kSurrounded) == 0)
        return 0;
    return (row.forms & kSurroundedStrict) != 0 ? 2 : 1;
}

// The search for forced mates is the wider, the greater its mode; widest without it.
int WidthOfForcing(const TCandidateWord& row) {
    constexpr int kAllMoves = 10;
    return row.ffmMode == 0 ? kAllMoves : row.ffmMode;
}

}  // namespace

std::span<const TCandidateWord> CandidateWords() {
    return kRows;
}

std::span<const TCandidateWord> CheckCandidates() {
    return kCheckRows;
}

std::span<const TCandidateWord> EdgeCandidates() {
    return kEdgeRows;
}

bool IsAtLeastAsStrict(const TCandidateWord& a, const TCandidateWord& b) {
    constexpr u32 kGraded = kEdge | kExt | kSurrounded | kForced;
    constexpr u8 kAdded = kWithBlocked;
    return StrictnessOfKing(a) >= StrictnessOfKing(b) &&
           StrictnessOfSurrounding(a) >= StrictnessOfSurrounding(b) &&
           WidthOfForcing(a) <= WidthOfForcing(b) && (b.heur & ~a.heur & ~kGraded) == 0 &&
           (b.forms & ~a.forms & kAdded) == 0;
}

void PutBlockedFigures(TChessboard& node, const TSelectionFacts& facts) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    ClearBlockedFigures(settings);
    for (const u8 square : facts.blocked)
        AddBlockedFigure(settings, square);
    TrackBlockedFigures(node);
}

void TakeCandidate(TChessboard& node,
                   const TCandidateWord& row,
                   u32 base,
                   const TSelectionFacts& facts) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    settings.StrictKingMove = (row.forms & kStrictKing) != 0;
    settings.KingMoveExceptions = (row.forms & kKingExceptions) != 0;
    settings.ExtEdgeStrict = (row.forms & kExtStrict) != 0;
    settings.SurroundedStrict = (row.forms & kSurroundedStrict) != 0;
    if (row.ffmMode != 0) {
        settings.FfmMode = settings.FfmStartMode = row.ffmMode;
        settings.FfmRelaxations = 0;
        settings.FfmWithOther = 1;  // the assumptions of the row hold together
    }
    constexpr u32 kReplaced = kEdge | kExt | kSurrounded | kForced | SH_DONTLETFIGUREUNBLOCK;
    u32 heur = (base & ~kReplaced) | row.heur;
    if ((row.forms & kWithBlocked) != 0) {
        PutBlockedFigures(node, facts);
        heur |= SH_DONTLETFIGUREUNBLOCK;
    }
    SetHeur(node, heur);
}

}  // namespace quillmere

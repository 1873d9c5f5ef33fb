// Dynamic relaxation: where the line has changed the game, the edge rules let the king go.
//
// The rules of the edge hold for the position of the root. When the attack has won material, or has
// a pawn about to promote, a king in the middle is no escape any more. So, where an edge rule is
// about to give up a reply, it asks here first. In this order:
//   1. The balance of figures (with `RelaxCapturesCountPawns` of figures and pawns) has risen by
//      `RelaxAfterCaptures` since the root: no doubt is raised. A black figure that has just taken
//      and can be taken back counts as gone.
//   2. With `RelaxOnAdvancedPawn`, a white pawn is advanced: no doubt is raised.
//   3. With `DeferCheckMoves` and one of the two triggers on, the test is put off for so many moves,
//      once in a line; the line carries a mark from there on. `SkipDeferIfBalanceFixed` spares this
//      where neither trigger can come. When the test falls due, 1 and 2 are asked again.
// Under SH_DONTLETKINGMOVE a king that was let go by 1 or 2 stays free: the line is marked released.
//
// A pawn is advanced when it has `DeferCheckMoves` ranks or fewer to go. The time at which a deferred
// test falls due belongs to the line, not to the thread: it is read off the node that first carried
// the mark, which is an ancestor. `DeferCheckLimit` of the settings only records the last value.
//
// Nothing is lost here; lines that would be given up are searched. The cost is a few counters, one
// test for a capture back where a single figure is missing, and the walk up the line at a deferred
// test.
#include "core/material.h"
#include "core/thread_context.h"
#include "heuristics/reply_rules.h"

#include <algorithm>
#include <numeric>

namespace quillmere {
namespace {

constexpr int kPromotionRank = 7;
constexpr int kFirstPawnRank = 1;
constexpr int kPawnsOfInitial = 4;  // place of the pawns in InitialWhiteCounts

int CountInitial(const u8* initial, bool countPawns) {
    return std::accumulate(initial, initial + kPawnsOfInitial + (countPawns ? 1 : 0), 0);
}

// What white has gained since the root.
int Gain(const TChessboard& node, const THeuristicSettings& settings) {
    const bool countPawns = settings.RelaxCapturesCountPawns;
    int balance = CountWhiteFigures(node) - CountBlackFigures(node);
    if (countPawns)
        balance += node.m_counts[kWhitePawns] - node.m_counts[kBlackPawns];
    return balance - CountInitial(settings.InitialWhiteCounts, countPawns) +
           CountInitial(settings.InitialBlackCounts, countPawns);
}

bool WillCapturerFall(const CBlackReply& reply) {
    const u8 capturer = reply.Child().m_board[reply.Move().to];
    const bool isCounted = IsFigure(capturer) ||
                           (KindOf(capturer) == kPawn && reply.Settings().RelaxCapturesCountPawns);
    return reply.Captured() != 0 && isCounted && reply.CanBeTaken();
}

bool IsBalanceReached(const CBlackReply& reply) {
    const THeuristicSettings& settings = reply.Settings();
    if (settings.RelaxAfterCaptures == 0)
        return false;
    const int missing = settings.RelaxAfterCaptures - Gain(reply.Child(), settings);
    return missing <= 0 || (missing == 1 && WillCapturerFall(reply));
}

// Of white's pawn nearest to promotion; -1 for none.
int FirstPawnRank(const TChessboard& node) {
    if (node.m_counts[kWhitePawns] == 0)
        return -1;
    for (int square = kSquareCount - 1; square >= 0; --square) {
        if (node.m_board[square] == kWhitePawn)
            return RankOf(square);
    }
    return -1;
}

int AdvancedRank(const THeuristicSettings& settings) {
    return std::max(0, kPromotionRank - settings.DeferCheckMoves);
}

bool HasAdvancedPawn(const TChessboard& node, const THeuristicSettings& settings) {
    return settings.RelaxOnAdvancedPawn && FirstPawnRank(node) >= AdvancedRank(settings);
}

// A pawn may become advanced while the test is put off.
bool MayPawnAdvance(const TChessboard& node, const THeuristicSettings& settings) {
    const int rank = FirstPawnRank(node);
    const int doubleStep = rank == kFirstPawnRank ? 1 : 0;
    return rank >= 0 && rank + doubleStep + settings.DeferCheckMoves >= AdvancedRank(settings);
}

bool MayTriggerCome(const TChessboard& node, const THeuristicSettings& settings) {
    const int menToTake = CountBlackFigures(node) +
                          (settings.RelaxCapturesCountPawns ? node.m_counts[kBlackPawns] : 0);
    return menToTake != 0 || MayPawnAdvance(node, settings);
}

// Puts the test off. The mark goes to the line under the rule of the outer rings only when the king
// has left them; a mere step off the edge is let through without it.
void Defer(CBlackReply& reply, EEdgeRule rule) {
    TChessboard& child = reply.Child();
    reply.MarkEvent();
    if (rule == EEdgeRule::kExtEdge && child.BlackKingEdgeDistance() <= 1)
        return;
    reply.SetFlags(kSearchEdgeDeferred);
    child.m_threadContext->heuristics.DeferCheckLimit = static_cast<u16>(DeferredUntil(child));
}

bool IsPutOff(CBlackReply& reply, EEdgeRule rule) {
    const TChessboard& child = reply.Child();
    const THeuristicSettings& settings = reply.Settings();
    if (settings.DeferCheckMoves == 0)
        return false;
    if (IsEdgeTestDeferred(child))
        return child.m_nMoves >= DeferredUntil(child);
    if (settings.SkipDeferIfBalanceFixed && !MayTriggerCome(child, settings))
        return false;
    Defer(reply, rule);
    return true;
}

}  // namespace

int DeferredUntil(const TChessboard& node) {
    const TChessboard* first = &node;
    while (first->m_parent != nullptr && IsEdgeTestDeferred(*first->m_parent))
        first = first->m_parent;
    return std::max(1, first->m_nMoves - 2 * node.m_threadContext->heuristics.DeferCheckMoves);
}

bool IsEdgeRuleRelaxed(CBlackReply& reply, EEdgeRule rule) {
    const THeuristicSettings& settings = reply.Settings();
    const bool isTriggerOn = settings.RelaxAfterCaptures != 0 || settings.RelaxOnAdvancedPawn;
    if (!isTriggerOn || (rule == EEdgeRule::kEdge && settings.RelaxOnlyExtEdge))
        return false;
    if (!IsBalanceReached(reply) && !HasAdvancedPawn(reply.Child(), settings))
        return IsPutOff(reply, rule);
    if (rule == EEdgeRule::kEdge && settings.StrictKingMove)
        reply.SetFlags(kSearchEdgeReleased);
    return true;
}

}  // namespace quillmere

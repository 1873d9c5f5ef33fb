// The position test: which replies of black are given up under the heuristics of the node.
//
// The rules stand in files of their own (heuristics/reply_rules.h); here is their order, the cheap
// and sharp ones first, those that look around on the board behind them. The first that fires
// decides.
//
// With one half-move left nothing is given up: the search answers such a node exactly with a single
// mate test, which costs no more than the rules, and its "no mate" is worth more than their doubt.
#include "heuristics/reply_rules.h"
#include "heuristics/rules.h"

#include <algorithm>
#include <iterator>

namespace quillmere {
namespace {

struct TReplyRule {
    u32 bit;
    bool (*isLeftOut)(CBlackReply& reply);
};

constexpr TReplyRule kReplyRules[] = {
    {SH_3MOVESTOMATE, rules::IsTooFreeForThreeMoves},
    {SH_DONTLETPROMOTEDQUEENMOVE, rules::HasPromotedQueenMoved},
    {SH_DONTLETPROMOTEDFIGUREMOVE, rules::HasPromotedFigureMoved},
    {SH_DONTLETFIGUREUNBLOCK, rules::HasBlockedFigureMoved},
    {SH_KEYLINE, rules::HasRookMovedAlongKeyLine},
    {SH_KEYDIAGONAL, rules::HasBishopMovedAlongDiagonal},
    {SH_DONTLETBLACKQUEENCHECKTWICE, rules::HasQueenCheckedTwice},
    {SH_SAVEQUEENROOK, rules::IsLastQueenOrRookLost},
    {SH_DONTLOSEANYFIGURES, rules::AreFiguresLost},
    {SH_AREKINGSNEAR, rules::AreKingsTooFar},
    {SH_KEEPKINGNEARCORNER, rules::HasKingLeftCorner},
    {SH_KEEPKINGONTHEEDGE, rules::HasKingLeftEdge},
    {SH_KEEPKINGWITHINEXTEDGE, rules::HasKingLeftExtEdge},
    {SH_CAPTUREKNIGHT, rules::IsKnightOutOfReach},
    {SH_REDUCTIONTOGLOBREGPOS | SH_ZUGZWANGTRIANGLES, rules::IsHopelessByTables},
    {SH_SEASNAKE, rules::HasLeftPendulum},
    {SH_KEYWHITEFIGURE, rules::IsKeyFigureGone},
};

constexpr u32 MaskOfRules() {
    u32 mask = 0;
    for (const TReplyRule& rule : kReplyRules)
        mask |= rule.bit;
    return mask;
}

// Below it the mating move itself is next.
constexpr int kLeastHalfMoves = 3;

}  // namespace

bool rules::IsReplyLeftOut(TChessboard& child) {
    const u32 heur = child.Heur & MaskOfRules();
    if (heur == 0 || child.m_nMoves < kLeastHalfMoves)
        return false;
    CBlackReply reply(child);
    return std::any_of(
        std::begin(kReplyRules), std::end(kReplyRules), [heur, &reply](const TReplyRule& rule) {
            return (heur & rule.bit) != 0 && rule.isLeftOut(reply);
        });
}

}  // namespace quillmere

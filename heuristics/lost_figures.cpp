// SH_DONTLOSEANYFIGURES: white loses nothing on the way.
//
// A solution without sacrifices can do without all lines in which black takes something. By
// `LoseFiguresMode` a capture concerns the rule
//   - 0: if a figure was taken, and the figures left are fewer than those at the root less
//     `LoseFiguresAllowance` less one, so that one figure is always free to go;
//   - 1: if any figure or pawn was taken;
//   - 2: if a figure was taken, or a pawn one step from promotion.
// Then the reply is given up.
//
// Let through are a capture after which white mates at once, and the second half of an exchange: when
// white's move just before took a figure, the balance is even and nothing was lost.
//
// What is lost are sacrifices. The cost is a look at the captured man, and one mate test behind a
// capture.
#include "core/material.h"
#include "core/thread_context.h"
#include "heuristics/reply_rules.h"

#include <numeric>

namespace quillmere {
namespace {

// LoseFiguresMode
constexpr u8 kFiguresOnly = 0;
constexpr u8 kAllPawns = 1;
constexpr int kRankBeforePromotion = 6;
constexpr int kPawnsOfInitial = 4;  // place of the pawns in InitialWhiteCounts

bool IsLossOf(const CBlackReply& reply, u8 captured) {
    const THeuristicSettings& settings = reply.Settings();
    if (!IsFigure(captured)) {
        // For a pawn that was taken in passing the reply ends on the third rank.
        return settings.LoseFiguresMode == kAllPawns ||
               (settings.LoseFiguresMode != kFiguresOnly &&
                RankOf(reply.Move().to) == kRankBeforePromotion);
    }
    if (settings.LoseFiguresMode != kFiguresOnly)
        return true;
    const u8* initial = settings.InitialWhiteCounts;
    return CountWhiteFigures(reply.Child()) <
           std::accumulate(initial, initial + kPawnsOfInitial, 0) - settings.LoseFiguresAllowance -
               1;
}

bool IsExchange(const CBlackReply& reply) {
    const TChessboard* before = reply.WhiteNode();
    return before != nullptr && IsFigure(before->m_board[reply.BlackNode().m_lastMove.to]);
}

}  // namespace

bool rules::AreFiguresLost(CBlackReply& reply) {
    const u8 captured = reply.Captured();
    return captured != 0 && IsLossOf(reply, captured) && !IsExchange(reply) &&
           !reply.IsMatedAtOnce();
}

}  // namespace quillmere

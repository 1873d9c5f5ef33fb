// SH_KEYSQUARE: the square that decides.
//
// When black has just come to the key square, quietly or with a capture, white's captures there are
// tried earlier. The king's moves do not count, since it cannot be taken, and a pawn's only if the
// square lies near its king: elsewhere a pawn on it decides nothing. It is an order and nothing more:
// no move is left out. It costs a few comparisons a move.
#include "heuristics/key_square.h"

#include "core/geometry.h"
#include "core/thread_context.h"
#include "heuristics/rules.h"

namespace quillmere {
namespace {

constexpr int kNearKing = 3;

}  // namespace

int KeySquareBonus(const TChessboard& node, TMove move) {
    if (!AreRulesOn(node, SH_KEYSQUARE) || node.m_parent == nullptr || node.m_lastMove.IsNull())
        return 0;
    const int key = node.m_threadContext->heuristics.KeySquare;
    if (key >= kSquareCount || node.m_lastMove.to != key || move.to != key)
        return 0;
    const u8 mover = node.m_parent->m_board[node.m_lastMove.from];
    const bool isNear = KingDistance(key, node.BlackKingSquare()) <= kNearKing;
    const bool counts = mover != kBlackKing && (mover != kBlackPawn || isNear);
    return counts ? kKeySquareBonus : 0;
}

}  // namespace quillmere

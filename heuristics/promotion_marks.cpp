#include "heuristics/promotion_marks.h"

namespace quillmere {
namespace {

// The pawn's moves to promotion; 0 if a man stands in its way.
int MovesToPromotion(const u8* board, int square) {
    for (int ahead = square + 8; ahead < kSquareCount; ahead += 8) {
        if (board[ahead] != 0)
            return 0;
    }
    const int doubleStep = RankOf(square) == 1 ? 1 : 0;
    return 7 - RankOf(square) - doubleStep;
}

}  // namespace

bool IsPromotionAhead(const TChessboard& node) {
    if (node.m_counts[kWhitePawns] == 0)
        return false;
    const int moves = FullMovesOf(node.m_nMoves);
    for (int square = 8; square < SquareAt(0, 7); ++square) {
        if (node.m_board[square] != kWhitePawn)
            continue;
        const int needed = MovesToPromotion(node.m_board, square);
        if (needed != 0 && needed <= moves)
            return true;
    }
    return false;
}

void MarkPromotions(TChessboard& node) {
    node.m_searchFlags &= static_cast<u16>(~kSearchPromotionAhead);
    if (IsPromotionAhead(node))
        node.m_searchFlags |= kSearchPromotionAhead;
    if (node.m_parent != nullptr && !node.IsWhiteToMove() && node.m_lastMove.Promotion() != 0)
        node.m_searchFlags |= kSearchPromotionPassed;
}

}  // namespace quillmere

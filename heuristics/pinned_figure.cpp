#include "heuristics/pinned_figure.h"

#include "core/square_set.h"

namespace quillmere {

u8 PinnedByKeyFigure(const TChessboard& node, u8 square) {
    if (square >= kSquareCount || !IsWhite(node.m_board[square]))
        return kNoSquare;
    const int king = node.BlackKingSquare();
    if ((SliderAttacks(KindOf(node.m_board[square]) & kQueen, square, 0) & SetOf(king)) == 0)
        return kNoSquare;
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    const TSquareSet between = kSetTables.between[square][king];
    const TSquareSet men = (white | black) & between;
    const bool isPin = std::has_single_bit(men) && (men & black) != 0;
    return isPin ? static_cast<u8>(FirstOf(men)) : kNoSquare;
}

}  // namespace quillmere

// SH_DONTRECEDEBLACKKING: the white king does not walk away from the black one.
//
// Where white mates with the help of its king, the king comes nearer or waits at its distance; a
// step away only begins a walk that has to come back. Left out are white king moves that capture
// nothing and end farther from the black king, in king moves, than they began; castling is one of
// them if the king's step is. What is lost are compositions in which the king retreats to lose a
// move or to open a line, and the discovered mate by such a step. The test is two look-ups, before
// the move is made.
#include "core/geometry.h"
#include "heuristics/rules.h"

namespace quillmere {

bool rules::IsKingMoveLeftOut(const TChessboard& node, TMove move) {
    const int blackKing = node.BlackKingSquare();
    return node.m_board[move.from] == kWhiteKing && node.m_board[move.to] == 0 &&
           KingDistance(move.to, blackKing) > KingDistance(move.from, blackKing);
}

}  // namespace quillmere

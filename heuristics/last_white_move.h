// What white's last move did, read off a black node and its parent. The node must have a parent.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Queen, rook, bishop or knight of either colour.
constexpr bool IsFigureCode(u8 code) {
    return (code & (kQueen | kKnight)) != 0;
}

// The man that the move took; 0 for none.
inline u8 CapturedByWhite(const TChessboard& child) {
    const TMove move = child.m_lastMove;
    return move.enPassant != 0 ? kBlackPawn : child.m_parent->m_board[move.to];
}

// The man as it stood before the move: a pawn, if it promoted.
inline u8 MovedByWhite(const TChessboard& child) {
    return child.m_parent->m_board[child.m_lastMove.from];
}

}  // namespace quillmere

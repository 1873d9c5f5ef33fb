// The same position seen from the other side: white men become black and the ranks are mirrored.
//
// The search knows white as the attacker only, so a task in which black mates is solved on the
// swapped board. Files stay as they are, hence castling keeps its meaning. Swapping twice gives
// the position back.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

constexpr u8 SwapFigure(u8 figure) {
    return figure == 0 ? u8{0} : static_cast<u8>(figure ^ (kWhite | kBlack));
}
constexpr u8 SwapSquare(int square) {
    return static_cast<u8>(square ^ 56);
}
// Promotion kind, marks and the en passant byte stay.
constexpr TMove SwapMove(TMove move) {
    return TMove{SwapSquare(move.from), SwapSquare(move.to), move.flags, move.enPassant};
}

// A free-standing board with the swapped men, validated; nothing else is taken over. The men of
// `board` must be a legal position (ValidateBoard).
TChessboard SwapColours(const TChessboard& board);

}  // namespace quillmere

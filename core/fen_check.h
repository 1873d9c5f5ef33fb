// A strict reading of a FEN text that says precisely what is wrong with it.
//
// SetFromFENCode answers only yes or no, since a pasted text that is no FEN is simply something
// else. A text that a person meant as a FEN deserves the rank, the character and the reason.
#pragma once

#include "core/chessboard.h"

#include <string_view>

namespace quillmere {

enum class ESide : u8 { kNotSaid, kWhiteToMove, kBlackToMove };

// Checks the board, the fields behind it as far as they are given (side, castling, en passant,
// the two counters), and the position: kings, pawns, checks. Returns the side field. Throws
// ChessException on the first fault. The side that is not to move must not be in check; a text
// without a side field is checked only for both kings being attacked.
ESide CheckFEN(std::string_view text);

// The side that is not to move is not in check; throws ChessException otherwise. `board` is valid.
void CheckSideNotToMove(const TChessboard& board, bool isBlackToMove);

}  // namespace quillmere

// The black figure that a key white figure pins.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The only man between a white rook, bishop or queen on the square and the black king in its line,
// if it is black; kNoSquare for anything else, a square outside the board included.
u8 PinnedByKeyFigure(const TChessboard& node, u8 square);

}  // namespace quillmere

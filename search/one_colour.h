// One-colour play at the root: black's only figure is a bishop that white's men never need to meet.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// SH_ONECOLORPLAYPOSSIBLE is on, the task is long enough, and the bishops of the two sides, one each
// and black's only figure, stand on squares of opposite colours.
bool IsOneColourRoot(const TChessboard& root);

// The root without black's bishop, white bound to the squares that it cannot reach. `root` must
// satisfy IsOneColourRoot.
TChessboard OneColourRoot(const TChessboard& root);

}  // namespace quillmere

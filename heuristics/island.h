// Would the white king be shut in by black pawns if it walked to a square?
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// True if the white king, put on the square (a black pawn there is taken), stands on an island: the
// square is not attacked, and black can advance a pawn so that the king can go nowhere but on squares
// around that it may not leave any more. `file` and `rank` are 0..7. The king's way there is not
// looked at.
//
// Throws ChessException with "Error in CanWhiteKingBeCaughtOnAnIsland" if the square is neither empty
// nor holds a black pawn. The node, HeurParams included, and its thread are left as they were in every
// case. The node needs a thread context.
bool CanWhiteKingBeCaughtOnAnIsland(TChessboard& node, int file, int rank);

}  // namespace quillmere

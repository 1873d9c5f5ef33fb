// A double zugzwang in which black's only free man swings to and fro (SH_SEASNAKE), white's side.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// White's list of the plan. False: there is none, and the plain list is used. White is not in check.
bool SeaSnakeMoves(TChessboard& node, TMoveList& list);

// Of a white node: black's last move was a pawn capture that unblocked the position, so that the
// plan does not hold any more.
bool HasPawnCaptureUnblocked(const TChessboard& node);

}  // namespace quillmere

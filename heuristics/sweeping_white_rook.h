// The white rook sweeps along its first rank (SH_SWEEPINGWHITEROOK).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// White's last move took a rook to rank 2 or above for no reason that the rule knows. After any
// other move it may take the heuristic off the node, where black wins a figure for nothing.
bool HasRookStoppedSweeping(TChessboard& child);

}  // namespace quillmere

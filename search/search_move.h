// A move made as the nodes of the search make it, for lines that are rebuilt after the search.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Makes the move on a copy that has `parent` as its parent; `child` and `parent` must stay where they
// are while the child is used. The word of heuristics follows as it does in the nodes, so that what
// they found is found again. False if the move is illegal or no line of a mate.
bool MakeSearchMove(TChessboard& child, TChessboard& parent, TMove move);

}  // namespace quillmere

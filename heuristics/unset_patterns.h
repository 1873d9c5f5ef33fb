// Squares that a text left open.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Heuristics of the root's word that rest on a pattern, and whose squares nobody gave, get those that
// the pattern tests find: SH_SEASNAKE and SH_ZUGZWANGTRIANGLES. Where nothing is found, and for all
// others, nothing changes. The root has white to move, a thread context and a search context;
// HeurParams follows.
void FindUnsetPatterns(TChessboard& root);

}  // namespace quillmere

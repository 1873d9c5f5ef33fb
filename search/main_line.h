// The main line of a solved task, rebuilt by searching again.
//
// White plays the first move, in generation order, that mates in the fewest half-moves; black plays
// the defence that survives longest (search/best_defence.h). Nothing is taken from the proof itself:
// every move of the line was searched for in its place.
#pragma once

#include "core/chessboard.h"

#include <vector>

namespace quillmere {

// It needs a search without heuristics: a doubtful answer is taken for "not mated", which may cost
// the line its best moves, never its truth.

// The line from a node in which white to move mates within its m_nMoves, starting with `key`; or
// from a node in which black to move is mated within its m_nMoves (key is null then). Empty if the
// search was stopped.
std::vector<TMove> FindMainLine(TChessboard& root, const TMove* key);

}  // namespace quillmere

// Weakens the word of heuristics step by step, between the passes.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Takes one step down the ladder on `Heur`, `HeurParams` and the settings of the node's thread.
// Returns 0 when no step is left (then `Heur` is 0 and the passes with heuristics end), a positive
// value when the pass is to be run again, and a negative one when besides this pass was not in the
// plan.
int TryRelaxSpecialHeuristics(TChessboard& node);

struct TPlannedPasses {
    int relaxations = 0;
    int optional = 0;  // of them, those with a negative answer
};

// Walks the ladder to its end and puts everything back as it was. With untilEdgeRulesEnd it stops at
// the first step that leaves neither SH_KEEPKINGONTHEEDGE nor SH_ASSERTBLACKKINGSURROUNDED.
TPlannedPasses PlannedPasses(TChessboard& node, bool untilEdgeRulesEnd = false);

}  // namespace quillmere

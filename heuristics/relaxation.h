// Weakens the word of heuristics step by step, between the passes.
//
// Threads: every thread relaxes its own nodes and settings. One thing is shared: a sea snake that
// the ladder gives up makes the whole analysis exact (TSearchContext::isExact).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Takes one step down the ladder on `Heur`, `HeurParams` and the settings of the node's thread,
// which it must have. Returns 0 when no step is left (then `Heur` is 0 and the passes with
// heuristics end), a positive value when the pass is to be run again, and a negative one when
// besides this pass was not in the plan. `Heur` and `HeurParams` fit together behind it. Never
// fails.
int TryRelaxSpecialHeuristics(TChessboard& node);

}  // namespace quillmere

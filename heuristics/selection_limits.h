// How much work the selection of heuristics may take.
//
// Everything is counted in made moves, and the work of a pass is assumed by the length of the task and
// the mobility of both sides: nothing depends on a clock or on the machine.
#pragma once

#include "core/types.h"
#include "heuristics/selection_facts.h"

namespace quillmere {

struct TTrialLimits {
    u64 first = 0;   // of a trial in the first round; 0: nothing is tried
    u64 last = 0;    // of a trial in the last round
    u64 total = 0;   // of all trials together
    int factor = 4;  // from a round to the next
};

// Half-moves of a task from which on trials are made: shorter ones are solved in less time.
constexpr int kTrialHalfMoves = 11;

// Made moves that a pass without heuristics may take.
double AssumedPass(const TSelectionFacts& facts);

// A pass without heuristics can hardly be waited for.
bool IsOutOfReach(const TSelectionFacts& facts);

TTrialLimits TrialLimits(const TSelectionFacts& facts);

}  // namespace quillmere

// The way down the ladder before anything is searched: how many passes there will be, and which.
#pragma once

#include "core/chessboard.h"

#include <string>
#include <vector>

namespace quillmere {

struct TPlannedPasses {
    int relaxations = 0;
    int optional = 0;  // of them, those with a negative answer
};

// Walks the ladder to its end and puts everything back as it was: the node (and its parent, on
// which a node with black to move is relaxed), the settings of the thread, and what all threads
// share. With untilEdgeRulesEnd it stops behind the first step that leaves neither
// SH_KEEPKINGONTHEEDGE nor SH_ASSERTBLACKKINGSURROUNDED. No other thread may search the analysis
// meanwhile.
TPlannedPasses PlannedPasses(TChessboard& node, bool untilEdgeRulesEnd = false);

struct TPlannedPass {
    std::string heuristics;  // the word with its parameters, see HeuristicsText
    bool isOptional = false;
};

// The same walk, pass by pass. The first entry is the pass that the word of the node gives, the
// others stand behind a relaxation each; empty without heuristics.
std::vector<TPlannedPass> PlannedPath(TChessboard& node);

}  // namespace quillmere

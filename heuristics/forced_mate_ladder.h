// The part of the ladder that belongs to the search for forced mates (SH_FINDFORCEDMATE).
#pragma once

#include "core/chessboard.h"

#include <functional>
#include <string>

namespace quillmere {

// Starts the pass that goes before all others with FfmPreliminary: the word is kept in
// FfmSavedHeur, and the weaker rule of the extended edge stands in for SH_KEEPKINGONTHEEDGE and
// SH_ASSERTBLACKKINGSURROUNDED. Does nothing without that setting, or without SH_FINDFORCEDMATE.
void ApplyFfmPreliminary(TChessboard& node);

// One relaxation while SH_FINDFORCEDMATE is on, white to move; answers as TryRelaxSpecialHeuristics,
// below 0 where the time of the passes allowed one more. The end of the preliminary pass brings the
// kept word back, then the mode rises, a cycle that runs twice begins again, and at last the bit
// goes.
int TryRelaxFfm(TChessboard& node);

// A pass that ended so fast that one more, with a weaker rule, costs next to nothing: the analysis
// is younger than 1000 milliseconds. Near the limit, from 800 to 1200 milliseconds, `log` is handed
// a line that tells the decision, since the same problem may then be solved in another way on
// another day.
bool IsAdditionalRelaxationAccepted(u64 milliseconds,
                                    const std::function<void(const std::string& line)>& log);

}  // namespace quillmere

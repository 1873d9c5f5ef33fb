// The main line of a mate that a proof-number search proved.
#pragma once

#include "core/chessboard.h"
#include "search/proof_number.h"

#include <vector>

namespace quillmere {

// The key and black's longest defence at every turn, to mate; from black's longest defence for a
// root with black to move, without a key. The lengths are those that `search` knows; each defence
// that looks longest is asked for a shorter mate, within `madeMoves` for the whole line. As far as
// that goes the line is the longest (for a narrow proof: the longest that a narrow search shortens no
// more); behind it, the longest of the lines of the proof. Empty if it
// was stopped, or if a mate of the line was forgotten and not found again.
std::vector<TMove>
FindProofLine(CProofNumberSearch& search, TChessboard& root, const TMove* key, u64 madeMoves);

// The reply to `key` that such a line begins with; the null move if the key mates at once or none
// was found.
TMove FindProofDefence(CProofNumberSearch& search, TChessboard& root, TMove key, u64 madeMoves);

}  // namespace quillmere

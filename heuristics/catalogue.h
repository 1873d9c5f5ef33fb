// The catalogue of the heuristics in words.
#pragma once

#include "core/chessboard.h"

#include <string>

namespace quillmere {

// "SH_..." of one bit; "..." for anything else.
std::string HeuristicName(u32 bit);
// What stands in the brackets behind the name; empty for none.
std::string HeuristicParameterText(u32 bit, const TChessboard& node);
// The word of the node with its parameters.
std::string HeuristicsText(const TChessboard& node);
// The names of a word without parameters, joined by ", ".
std::string HeuristicNames(u32 heur);

}  // namespace quillmere

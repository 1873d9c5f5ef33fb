// Reads what stands in the brackets behind the name of a heuristic.
#pragma once

#include "heuristics/catalogue.h"
#include "heuristics/choice.h"

#include <string>
#include <vector>

namespace quillmere {

// Switches the entry on in the choice with these parameters and no others of its own. A parameter
// that two entries share (the relaxations and the corner squares of the edge rules, LessExceptions)
// goes back to its default only if no other entry that reads it is on. An empty parameter is none.
//
// Throws ChessException that names the parameter and the entry; the choice is then half changed.
void SwitchOnHeuristic(const THeuristicRow& row,
                       const std::vector<std::string>& parameters,
                       const TChessboard& node,
                       THeuristicChoice& choice);

// Takes the entry off the word; the blocked figures and OneColorMode go with theirs.
void SwitchOffHeuristic(const THeuristicRow& row, THeuristicChoice& choice);
// Makes the word 0; every parameter that a text carries goes back to its default.
void SwitchOffAllHeuristics(THeuristicChoice& choice);

}  // namespace quillmere

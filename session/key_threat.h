// What white threatens with a quiet key.
#pragma once

#include "problems/chess_problem.h"

#include <string>

namespace quillmere {

// The move that would mate after the key if black passed, within two half-moves fewer than the task
// has: "2.Qa8-h8#". Empty if the key checks, if nothing is threatened, if that is not decided
// within the node limit or before a stop of the problem, and if the key brought a king or rook to
// where it looks as if it might castle. A pause of the problem holds the search. On the calling
// thread, which needs the stack of the task. `halfMoves`: of the task.
std::string ThreatText(const TChessProblem& problem, TMove key, int halfMoves, u64 nodeLimit);

}  // namespace quillmere

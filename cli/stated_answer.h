// The answer that a file states for its problem, beside what was found.
#pragma once

#include "cli/task.h"
#include "problems/chess_problem.h"

#include <string>

namespace quillmere {

enum class EStatedAnswer {
    kAgrees,
    kOneFound,  // of several: that is all that a solve for the first key can say
    kDiffers,
    kNotCompared,
};

// A solve for all keys must find exactly the stated ones, one for the first key a stated one; a file
// that states that there is none is compared with a proof of it. Nothing is compared without a
// stated answer, or if the solve was not decided.
EStatedAnswer CompareStated(const TChessProblem& problem, const TTaskOutcome& outcome);

// "Qa7-f2": a move of the root.
std::string StatedMoveText(const TChessProblem& problem, TMove move);
// "Qa7-f2, Ke1-e2 (as found)".
std::string
StatedAnswerText(const TChessProblem& problem, EStatedAnswer comparison, ELanguage language);

}  // namespace quillmere

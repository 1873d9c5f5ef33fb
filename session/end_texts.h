// What is told when a solve has ended. Pure functions of what came out.
#pragma once

#include "core/messages.h"
#include "core/types.h"

#include <string>
#include <vector>

namespace quillmere {

struct TSolutionText {
    std::string move;    // "1.Qa1-a8"
    std::string threat;  // of a quiet key, "2.Qa8-h8"; empty for none
};

struct TEndOfSolve {
    int problemNumber = 0;
    int moves = 0;  // of the stipulation
    std::vector<TSolutionText> solutions;
    u64 milliseconds = 0;
    bool isStopped = false;
    bool isTimeLimitHit = false;  // that is why it was stopped
    // The search found out all that it was asked for. Without it and without a solution, one is not
    // ruled out.
    bool isProved = false;
    int stopAfterKeys = 0;  // solutions after which the search was to end; 0 for all
    // By the user's request, in a solve with heuristics
    bool wasRelaxationOff = false;
    bool wasFinalPassOff = false;
};

// "1.Qa1-a8", or "1.Qa1-a8 threat: 2.Qa8-h8".
std::string SolutionText(const TSolutionText& solution, ELanguage language);
// The answer for the status area and the log: the solutions, a line each, with the time behind the
// last; or that there is none.
std::string AnswerText(const TEndOfSolve& end, ELanguage language);
// The text of the box "Mate search result"; empty if none is shown: for one solution the answer
// itself is enough, and who stopped the search knows it.
std::string ResultBoxText(const TEndOfSolve& end, ELanguage language);
// The note where another problem is shown.
std::string EndNoteText(const TEndOfSolve& end, ELanguage language);

}  // namespace quillmere

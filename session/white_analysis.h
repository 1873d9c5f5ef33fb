// White to move inside the played line: does white mate within what is left, and with which move?
#pragma once

#include "core/messages.h"
#include "session/line_node.h"

#include <string>
#include <vector>

namespace quillmere {

struct TWhiteAnalysis {
    // Moves that force mate, the one found first in front. All of them if they were asked for and
    // the analysis was not stopped.
    std::vector<TMove> moves;
    std::vector<std::string> texts;  // of the moves, "Ng1-f3"
    bool isFromRegister = false;     // the first move was known
    bool isStopped = false;
    bool isTimeLimitHit = false;  // that is why it was stopped; set by whoever set the limit
    // Every move was decided: without a move there is no mate.
    bool isProved = false;
    u64 milliseconds = 0;
};

// Searches the current node of the problem, or the end of the line of the request, with white to
// move, on the calling thread, which needs SolveStackBytes of the problem's half-moves. The search
// is complete, without heuristics, and asks the register of the problem; positions of the played
// line may come again. Short mates, of up to three moves, are found first. A stop in the slot of the
// problem ends it. Throws ChessException if the line cannot be played.
TWhiteAnalysis AnalyseWhite(TChessProblem& problem, const TAnalysisRequest& request = {});

// What is told of it. isFinalPassOff: the pass without heuristics is switched off, so that the note
// about it belongs to the text.
std::string
WhiteAnalysisText(const TWhiteAnalysis& analysis, bool isFinalPassOff, ELanguage language);

}  // namespace quillmere

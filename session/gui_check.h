// Walks the main variant of a problem and asks at each turn whether the analysis inside the line
// finds the variant's moves: black's best defence after each move of white (GUICHECKBESTDEFENCE), and
// white's moves too (GUICHECK).
#pragma once

#include "problems/chess_problem.h"

#include <optional>
#include <string>

namespace quillmere {

// The analysis of the node where the problem stands (currentNode).
class ILineAnalysis {
public:
    virtual ~ILineAnalysis() = default;
    struct TFound {
        // Nothing where there is none: no mate for white, no reply for black.
        std::optional<TMove> move;
        bool isStopped = false;  // by the user or a limit: nothing can be said
    };
    virtual TFound FindDefence(TChessProblem& problem) = 0;
    virtual TFound FindWhiteMove(TChessProblem& problem) = 0;
};

// The problem asks for the walk, is a direct mate, and has a main variant of more than one move.
bool NeedsGuiCheck(const TChessProblem& problem);

struct TGuiCheckResult {
    std::string lines;  // for the log, whole
    bool isDifferent = false;
    bool isUndecided = false;
    std::string remark;  // of the first of them, one line
};

// The problem stands at its start, and does so again at the end.
TGuiCheckResult WalkMainVariant(TChessProblem& problem, ILineAnalysis& analysis);

// A move of the node as the log writes it; also one that the node does not have, which a file may
// state.
std::string MoveTextForLog(const TChessboard& node, TMove move);

}  // namespace quillmere

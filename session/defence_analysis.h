// Black to move inside the played line: is there a defence, or else which reply lasts longest?
#pragma once

#include "core/messages.h"
#include "session/line_node.h"

#include <string>
#include <vector>

namespace quillmere {

enum class EDefence {
    kNone,     // nothing was found before a stop
    kNoMoves,  // black has no legal move
    kRepeats,  // the position repeats an earlier one, which counts as a defence by itself
    kRefutes,  // the move holds: there is no mate in what is left
    kLoses,    // no reply holds, as far as was proved; the move looks best
};

struct TDefenceAnalysis {
    EDefence kind = EDefence::kNone;
    TMove move = {};
    std::string text;  // of the move, "Ke8-d7"
    // Moves that do the same: that hold too, or that last as long. Only if all were asked for.
    std::vector<TMove> equivalent;
    std::vector<std::string> equivalentTexts;
    bool isOnlyReply = false;  // black has no other legal move
    // All other replies are mated fast (kFastMateHalfMoves), and this one is not.
    bool isOnlySlowReply = false;
    bool isFromRegister = false;  // it was known
    bool isStopped = false;
    bool isTimeLimitHit = false;  // that is why it was stopped; set by whoever set the limit
    // kRefutes: white provably has no mate after it. kLoses: every reply is provably mated.
    bool isProved = false;
    int mateHalfMoves = 0;  // kLoses, proved: half-moves that white needs after the move
    u64 milliseconds = 0;
};

// A fast mate takes at most so many half-moves: mates in three.
constexpr int kFastMateHalfMoves = 5;

// Searches the current node of the problem, or the end of the line of the request, with black to
// move and at least two half-moves left, on the calling thread, which needs SolveStackBytes of the
// problem's half-moves. The search is complete, without heuristics, and asks the register of the
// problem. If the node itself repeats a position of the line, that is told and nothing is searched;
// else these positions may come again. A stop in the slot of the problem ends it. Throws ChessException if the line cannot be played.
TDefenceAnalysis AnalyseDefence(TChessProblem& problem, const TAnalysisRequest& request = {});

// What is told of it.
std::string DefenceAnalysisText(const TDefenceAnalysis& analysis, ELanguage language);

}  // namespace quillmere

// The automatic choice of heuristics: which assumptions fit this position?
//
// It is the largest single decision of a solve. A word that fits makes a hopeless search short, and a
// word that does not costs a pass that finds nothing. So what the board tells is only a guess, and
// what restricts the play is tried before it is chosen (heuristics/selection_trials.h).
//
// The choice writes words and settings and nothing else. Whether there is a mate is said by the
// passes; a trial that saw one has proved it, and the pass finds it in the register. The same
// position, task and options give the same word after the same work on any machine, as long as neither
// the register nor the table of the proof-number search is full.
#pragma once

#include "core/chessboard.h"
#include "heuristics/selection_record.h"

#include <vector>

namespace quillmere {

class CProofNumberSearch;

// Half-moves of a task from which on heuristics are chosen: a shorter one is never analysed.
constexpr int kSelectionHalfMoves = 4;

struct TSelectionRequest {
    int moveCount = 0;    // legal first moves
    int forcedMoves = 0;  // of them, those that check or threaten, by the sort
    // The first moves in the order in which they are tried; not owned, null for none: each trial
    // lists and sorts them itself.
    const TMoveList* firstMoves = nullptr;
    // Makes the trials of tasks of kProofRoot half-moves and more, search/proof_pass.h: what it learns
    // in one of them it keeps for the next and for the pass behind them. Not owned, null for trials that
    // are searched like a pass.
    CProofNumberSearch* proof = nullptr;
    // First moves that are decided already: those trials ask about the others.
    std::vector<TMove> decided = {};
};

// Chooses `Heur` and the parameters of the root, with white to move; it needs thread and search
// context, and is a root that nothing is searched on. Returns the position flags of the node, where
// the class of the position is noted. Tells what it did in `record`. A stop from outside ends the
// trials; then the word is what the board tells.
u16 SelectHeuristics(TChessboard& node, const TSelectionRequest& request, TSelectionRecord& record);
// Brings the record in line with a word that was changed since by the known settings of the position;
// `chosen` is the word as it was chosen.
void TellSettings(const TChessboard& node, u32 chosen, TSelectionRecord& record);
// The same choice for a caller who does not ask.
u16 SelectHeuristics(TChessboard& node, int moveCount, int forcedMoves);

}  // namespace quillmere

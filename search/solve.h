// One request on one position: which first moves force mate in n?
//
// This is the entry for the fronts of the program. It prepares the root, has the first moves tried
// in the order of SortWhiteMoves and of the user's indications in one pass after the other
// (search/root.h), and rebuilds the main line by searching again, with the help of the register. The
// calling thread needs a stack of SolveStackBytes(halfMoves); it is the searching thread, but for the
// passes where more than one thread is asked for.
#pragma once

#include "core/chessboard.h"
#include "core/search_context.h"
#include "core/verdict.h"
#include "heuristics/planned_passes.h"
#include "heuristics/selection_record.h"
#include "search/pass_record.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillmere {

class CMovesLog;
class IWarningSink;
struct TSortIndications;

// A first move that every defence but one fails against.
struct TTry {
    TMove move;
    TMove refutation;
};

struct TSolveRequest {
    // Half-moves of the task: odd for a mate, even for a mate-defence task.
    u16 halfMoves = 0;
    // Find every key (or every holding defence of a mate-defence task), not only the first.
    bool wantAllKeys = false;
    // Find also the first moves with exactly one refutation.
    bool wantTries = false;
    // Rebuild the main line of the first key, and find black's best defence to each key.
    bool wantMainLine = true;
    // The user's order of white's first moves; null for none.
    const TSortIndications* sortIndications = nullptr;
    // Empty the register of the context first. Without it what an earlier solve found is used too;
    // the answers are the same.
    bool clearRegister = true;
    // With wantAllKeys: the keys (or holding defences) after which the work ends all the same; 0 for
    // no such end.
    int stopAfterKeys = 0;
    // Threads over the first moves, 1 to 64. With one the work is the same in every run.
    int threads = 1;
    // The request may be answered by a wish for more threads; then nothing is searched. A restart
    // with the wished number, or without this, goes through.
    bool mayAskForThreads = false;
    // Made moves that the proof-number passes before all others may cost (search/proof_pass.h); 0 for
    // none. In tasks under kProofRoot there are none.
    u64 proofMoves = 0;
    // The word of heuristics with the parameters of its thread and context, for an odd or an even
    // task; null for none. Only these are read.
    const TChessboard* heuristics = nullptr;
    // The engine chooses the word itself, see heuristics/selection.h; of `heuristics` only the settings
    // that it does not choose are read then. A mate-defence task and one under kSelectionHalfMoves
    // are searched without a word.
    bool selectsHeuristics = false;
    // Takes what went wrong with the known settings of a composition; not owned, null for nobody.
    IWarningSink* warnings = nullptr;
    // No relaxation once a key is known.
    bool stopsRelaxingOnFirstSolution = false;
    // Half-moves of the search for quicker mates, in place of what the context and the heuristics say
    // (search/quick_mate.h); kQuickMateDepthUnset leaves it to them.
    i16 quickMateDepth = kQuickMateDepthUnset;
    // Nodes (as counted by the search context) after which the work ends; 0 for no limit. With one
    // thread the result under a node limit is the same in every run.
    u64 nodeLimit = 0;
    // Take the moves of the search for keys, by the number of the thread; not owned. None, or a null,
    // for no log.
    std::vector<CMovesLog*> movesLogs = {};
};

struct TSolveResult {
    // The legal first moves in the order in which they are tried.
    std::vector<TMove> firstMoves;
    // Of the task: with wantAllKeys the search may have found keys and still have been stopped;
    // then verdict is kProvedMate and isComplete is false.
    ESolveVerdict verdict = ESolveVerdict::kStopped;
    // Every first move that was asked for was decided.
    bool isComplete = false;
    // Odd tasks: the keys, in generation order. Even tasks: empty.
    std::vector<TMove> keys;
    // Black's best defence to the key of the same place; the null move where the key mates at once
    // or the search was stopped before it was found. Empty if the main line was not asked for.
    // Defences are told apart up to 13 half-moves (search/best_defence.h); to the first key it is
    // the reply of the main line, which tells them apart at any length.
    std::vector<TMove> bestDefences;
    // Even tasks: black's defences that hold, in generation order. Odd tasks: empty.
    std::vector<TMove> defences;
    std::vector<TTry> tries;
    // Best play from the root: the key and black's longest defence at every turn, to mate. Even
    // tasks with a mate: from black's longest defence. Empty if there is none or it was stopped. Of
    // a key that was proved under a word, the longest of the lines that the word looks at.
    std::vector<TMove> mainLine;
    // The passes as far as they were run; empty if there was no first move to try.
    std::vector<TPassRecord> passes;
    // Place in `passes` of the pass that proved the key of the same place.
    std::vector<int> keyPasses;
    // How the engine chose the word, if it was asked to.
    TSelectionRecord selection;
    // What was planned: each word of heuristics with its relaxations, and the pass without.
    std::vector<TPlannedPass> plannedPasses;
    // The pass without heuristics was left out on request, so that "no mate" could not be proved.
    bool isFinalPassOff = false;
    int threads = 1;  // that searched the first moves
    // Above 0: so many threads are wished for, 127 at most, and nothing was searched.
    int wishedThreads = 0;
    // The word lacks heuristics that the context requires, and nothing was searched.
    bool isMaskFailed = false;
    u64 nodes = 0;      // nodes of the search context, main line and best defences included
    u64 madeMoves = 0;  // every make-move of every kind
};

// Told by the searching threads, one at a time; must be quick and must not throw.
class ISolveObserver {
public:
    virtual ~ISolveObserver() = default;
    // Before a first move is searched: its number from 1, and how many there are.
    virtual void OnFirstMove(TMove /*move*/, int /*number*/, int /*count*/) {}
    // A key (or a holding defence) was found.
    virtual void OnKey(TMove /*move*/) {}
    // The keys are found; the tries or the main line are being worked out.
    virtual void OnAfterKeys() {}
};

// Solves the position of `board` (m_board only is read). `context` holds the stop slot, the node
// counter, the repetition bound and the register (which gets its size here); its counters are reset
// first. Stop from another thread by SetStop(context, kStopAll); a stop that stands at the start
// holds. Throws ChessException on an illegal position, before any search.
TSolveResult Solve(const TChessboard& board,
                   const TSolveRequest& request,
                   TSearchContext& context,
                   ISolveObserver* observer = nullptr);

// Stack that the search of so many half-moves needs, in bytes: at least 1 MiB.
std::size_t SolveStackBytes(int halfMoves);

}  // namespace quillmere

// One request on one position: which first moves force mate in n?
//
// This is the entry for the fronts of the program. It prepares the root, tries the first moves in
// the order of SortWhiteMoves and of the user's indications on one thread, and rebuilds the main
// line by searching again, with the help of the register. The calling thread is the searching
// thread; it needs a stack of SolveStackBytes(halfMoves).
#pragma once

#include "core/chessboard.h"
#include "core/search_context.h"
#include "core/verdict.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillmere {

class CMovesLog;
struct TSortIndications;

enum class ESolveVerdict {
    kProvedMate,    // proved: white forces mate
    kProvedNoMate,  // proved by a complete search: white does not
    kDoubt,         // no mate found, but lines were left out
    kStopped,       // stopped from outside before it was decided
    kLimit,         // the node or time limit was reached before it was decided
};

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
    // Nodes (as counted by the search context) after which the work ends; 0 for no limit. With one
    // thread the result under a node limit is the same in every run.
    u64 nodeLimit = 0;
    // Takes the moves of the search for keys; not owned, null for none.
    CMovesLog* movesLog = nullptr;
};

struct TSolveResult {
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
    // tasks with a mate: from black's longest defence. Empty if there is none or it was stopped.
    std::vector<TMove> mainLine;
    u64 nodes = 0;      // nodes of the search context, main line and best defences included
    u64 madeMoves = 0;  // every make-move of every kind
};

// Asked and told by the search on its own thread; must be quick and must not throw.
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

// The passes of a request: the first moves are searched under the word of heuristics, then again
// under weaker and weaker words, and at last without any.
//
// Pass 0 looks only at what is known; pass 1 runs with heuristics and is repeated after each
// relaxation (heuristics/relaxation.h); pass 2 leaves nothing out. A mate counts from any pass, "no
// mate" from pass 2 alone: under a word it may only mean that the solution breaks an assumption.
#pragma once

#include "core/chessboard.h"
#include "search/first_moves.h"

#include <vector>

namespace quillmere {

class CMovesLog;

constexpr int kMaxRootThreads = 64;

struct TRootRequest {
    // Begin with pass 1; otherwise, under heuristics, with pass 0.
    bool startsAtPassOne = true;
    // No relaxation once a solution is known.
    bool stopsRelaxingOnFirstSolution = false;
    // Moves logs by the number of the thread; a null, or none for a number, for no log.
    std::vector<CMovesLog*> movesLogs = {};
};

// How a request ended; what it found is in the first moves.
struct TRootResult {
    bool isMaskFailed = false;  // the word lacks heuristics that the context requires
    bool isStopped = false;     // from outside, or by a limit
    int threads = 1;            // that took part
};

// Work of a request besides that of the caller's thread.
struct TRootWork {
    u64 madeMoves = 0;
};

// Gives the root the word, and sets what follows from the position under the parameters of its thread:
// the blocked figures of the node, the material at the root and the marks of promotions.
void PrepareWord(TChessboard& root, u32 heur);

// Gives the node the word and the parameters of `given`, of its thread and of its context, as
// PrepareWord does.
void TakeHeuristics(TChessboard& root, const TChessboard& given);

// The passes on the calling thread, which needs SolveStackBytes(halfMoves) of stack. `root` is
// prepared (SetupAnalysisRoot, TakeHeuristics) and is not moved while the request runs.
TRootResult FindMateRoot(TChessboard& root, CFirstMoves& moves, const TRootRequest& request);

// The same on `threads` threads, at most kMaxRootThreads and not more than there are first moves. Below 2 as
// FindMateRoot. A thread that cannot be started is done without.
TRootResult FindMateThreaded(TChessboard& root,
                             CFirstMoves& moves,
                             const TRootRequest& request,
                             int threads,
                             TRootWork& work);

}  // namespace quillmere

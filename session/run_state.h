// The state of the solve of one problem: made at its first start, kept for what was found.
#pragma once

#include "core/move.h"
#include "problems/chess_problem.h"
#include "registers/aggregated_register.h"
#include "session/defence_analysis.h"
#include "session/run_engine.h"
#include "session/white_analysis.h"

#include <atomic>
#include <memory>
#include <vector>

namespace quillmere {

enum ESolveMode : int { kSolveNone = 0, kSolveFirst = 1, kSolveAll = 2 };

struct TRunState final : TProblemRun {
    ESolveMode solveMode = kSolveNone;
    u8 runThreads = 1;           // of this run, at most 255 asked for, at most 64 in use
    std::vector<TMove> results;  // the solutions found, in the squares of the problem's board
    TEngineOutcome outcome;      // of the last main solve
    // Of the last analysis of each kind inside the played line
    TWhiteAnalysis whiteAnalysis;
    TDefenceAnalysis defenceAnalysis;
    bool isMirrorRun = false;  // board and answer are mirrored
    std::atomic<bool> idle{true};
    bool safeModeForced = false;
    int schedulerLevelsInUse = 0;
    bool customSchedulerInUse = false;
    int multithreadingLevelsInUse = 0;
    int priority = -1;  // of the thread; -1 until set
    // The register of solved positions of this problem; null before a solve long enough for one.
    std::unique_ptr<TAggregatedTemporaryChessboardRegister> solved;
    u64 solvedLimitBytes = 0;  // that it was made for
};

// The state of the problem, made if it has none.
TRunState& RunStateOf(TChessProblem& problem);
// Null before the first start.
const TRunState* FindRunState(const TChessProblem& problem);

}  // namespace quillmere

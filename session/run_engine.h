// The engine entry of a session: one solve of one problem from its root, with everything that the
// problem and the options say about it.
#pragma once

#include "core/messages.h"
#include "problems/chess_problem.h"
#include "search/solve.h"
#include "session/services.h"

#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace quillmere {

struct TEngineRequest {
    bool allSolutions = false;
    // No boxes and no questions; every question takes its batch answer.
    bool isRegression = false;
    // A record of the solved-problems database may answer in place of a search.
    bool mayUseSolvedRecord = true;
    bool wantTries = false;
    bool wantMainLine = true;
    u64 nodeLimit = 0;                          // 0 for no limit
    i16 quickMateDepth = kQuickMateDepthUnset;  // as TSolveRequest::quickMateDepth
    // Replaces the word of heuristics of the problem: "off", or a text of heuristics. Empty or
    // "auto": the problem's own, and for one that has none the choice of the engine.
    std::string heuristics;
    // Beside the word: no relaxed passes; no pass without heuristics.
    bool noRelaxation = false;
    bool noFinalPass = false;
    u64 memoryBytes = 0;  // of the register; 0 for the limit of the options
    // Threads over the first moves, 1 to 64; 0 for the number that the problem forces, or else that
    // of the options. Only the latter may be changed by the engine, see RunEngine.
    int threads = 0;
    // Write moves logs, whatever the option LogMoves says.
    bool logMoves = false;
    ELanguage language = ELanguage::kEnglish;
    // Options, logs and records lie here; empty for nowhere.
    std::filesystem::path programFolder;
};

enum class EEngineEnd {
    kDone,        // the search came to its end
    kStopped,     // by the user or by a limit; results may be there
    kTooMany,     // more problems at once than there is room for
    kBadPosition  // there is no result that could be trusted; a fault was told
};

// Who listens to the search. Null for nobody. Called by the searching threads.
struct TEngineHooks {
    ISolveObserver* observer = nullptr;
    ISearchProgress* progress = nullptr;
};

struct TEngineOutcome {
    EEngineEnd end = EEngineEnd::kStopped;
    TSolveResult result;
    bool isTimeLimitHit = false;
    // The answers come from the database; the statistics of that solve are in `recordWhen`.
    bool isFromRecord = false;
    TSolvedWhen recordWhen;
    // The text of the first failure of the expected order of first moves; empty if it was as expected
    // or none was expected.
    std::string expectedSortFailure;
    // Wall time of the run without the time spent waiting for answers of the user.
    u64 milliseconds = 0;
    std::string faultText;
    std::exception_ptr fault;  // the same, to be thrown again
    // The search was allowed to find so many solutions only; 0 for no such end, and for a record.
    int stopAfterKeys = 0;
};

// Half-moves of a main solve: those of the stipulation, and the odd number below an even one.
u16 HalfMovesToSolve(const TChessProblem& problem);
// Threads of a run by the problem and the options: at least 1, at most kMaxRootThreads.
int ThreadsOfRun(const TChessProblem& problem, int asked);
// A search in pass 1 is taken as complete: quick mode is off, or the problem asks for it.
bool IsSafeModeForced(const TChessProblem& problem);
// Solutions after which a search for all of them ends, by the flags of the problem; 0 for none.
int StopAfterKeys(const TChessProblem& problem, bool allSolutions);

// Solves the problem from its root, in the squares of its board, and waits. The calling thread needs
// SolveStackBytes(HalfMovesToSolve(problem)) of stack. A stop that stands in the stop slot at the
// start holds.
//
// The engine may wish for another number of threads than the options give: that is asked of
// services.questions, and the solve starts anew with the number that was accepted. A number that the
// problem forces or the caller asked for stays.
//
// Proven results of at least kSolvedLeastHalfMoves go to the solved-problems database, but not those
// of a mirrored board.
//
// Throws ChessException: for a position or a setting that cannot be solved, before any search; for a
// register that contradicts itself (kRegisterIncoherent), after it.
TEngineOutcome RunEngine(TChessProblem& problem,
                         const TEngineRequest& request,
                         const TSessionServices& services,
                         const TEngineHooks& hooks = {});

}  // namespace quillmere

// Starts, watches, stops and ends solves: the commands behind a window's buttons, the command line
// and the batch run.
//
// One control serves the whole program. Each running solve has a session thread of its own with the
// stack that its length needs; several problems may be solved at the same time.
//
// Threads: StartSolve, and everything else that changes a problem (its line, its stipulation), belong to
// the one thread that owns the problem; problems may have different owners. StopSolve, PauseSolve,
// ResumeSolve, IsRunning, WaitUntilIdle, RunningCount, StatusText, Display and Displayed may be called by
// any thread at any time, but not by a session's own (so not out of a service), and not while the
// control is being made or destroyed. They speak of the session that runs when they take the lock, and
// never touch a later one of the same problem. A problem must outlive every call that names it.
//
// Locking: the collection's lock guards the sets of running problems and the sessions, the status lock the
// status text; both are leaves but for the stop slot of a problem, which is taken behind the former. A
// session is destroyed, which waits for its thread, with no lock held.
#pragma once

#include "problems/problem_collection.h"
#include "session/run_state.h"
#include "session/services.h"

#include <filesystem>
#include <memory>
#include <string>

namespace quillmere {

constexpr u32 kNoTimeLimit = 0xffffffff;

// What a front sets for all its solves.
struct TSessionSettings {
    ELanguage language = ELanguage::kEnglish;
    std::filesystem::path programFolder;
    // Every solve is stopped after so many seconds.
    u32 solvingTimeLimitSeconds = kNoTimeLimit;
    // A batch: nobody is asked, no boxes.
    bool regressionRunning = false;
};

// What one start may ask for besides what the problem and the options say.
struct TStartRequest {
    int threads = 0;  // 0 for the problem's own number, or that of the options
    bool mayUseSolvedRecord = true;
    bool wantTries = false;
    bool wantMainLine = true;
    u64 nodeLimit = 0;
    i16 quickMateDepth = kQuickMateDepthUnset;
    std::string heuristics;
    bool noRelaxation = false;
    bool noFinalPass = false;
    u64 memoryBytes = 0;
    bool logMoves = false;
    double seconds = 0;  // besides the limit of the settings; 0 for none
    // After the first key the line is solved on, move by move, until its end.
    bool wholeMainLine = false;
};

// Solves at the same time, over all problems.
constexpr int kMaxSolvesAtOnce = 64;

class CSolveControl {
public:
    CSolveControl(TProblemCollection& collection,
                  const TSessionServices& services,
                  const TSessionSettings& settings);
    // Stops what runs and waits for it.
    ~CSolveControl();
    CSolveControl(const CSolveControl&) = delete;
    CSolveControl& operator=(const CSolveControl&) = delete;

    // The problem that the user looks at; null before the first. The board shown is its currentNode.
    void Display(TChessProblem* problem);
    TChessProblem* Displayed() const;

    // Copies of what was given to the constructor. To be changed while nothing runs.
    TSessionSettings& Settings();
    // What the status area shows.
    std::string StatusText() const;
    int RunningCount() const;

    // The Start command on a problem. False if it was refused or there was nothing to do; the user was
    // told why.
    //
    // From the place where the user stands follows what is done: at the root the main solve; inside
    // the line of a problem with a stipulation the analysis of white's or of black's moves (then
    // allSolutions asks for every move that does it). What came out is in RunStateOf(problem).
    bool StartSolve(TChessProblem& problem, bool allSolutions, const TStartRequest& request = {});
    // The Stop command: returns when the session is idle. A paused session leaves without going on.
    // A message loop that was told to quit ends the wait early.
    void StopSolve(TChessProblem& problem);
    // Without effect on a session that is stopping, or that is not paused.
    void PauseSolve(TChessProblem& problem);
    void ResumeSolve(TChessProblem& problem);

    bool IsRunning(const TChessProblem& problem) const;
    // Waits for the end of the session. The outcome of a main solve is in RunStateOf(problem).outcome.
    void WaitUntilIdle(TChessProblem& problem);

private:
    struct TState;
    std::unique_ptr<TState> m_state;
};

}  // namespace quillmere

// The batch run ("regression test"): solves every problem of a collection in turn, checks each result
// against what the file states, and writes RegressionTest.log.
//
// It goes over the same sessions as a single solve, so that it tests what a user gets. A test is one
// problem in one pass: as it stands, or mirrored (session/mirror.h). The record of solved problems is
// never read here, because the search is what is tested.
//
// Several jobs solve as many problems side by side, each with its share of the memory. The lines of one
// test stay together then, and go to the log when the test has ended; with one job each goes as it
// occurs.
//
// Threads: the collection must not change during a run. Run works on threads of its own and waits for
// them; Stop may be called by any thread.
#pragma once

#include "problems/problem_collection.h"
#include "session/regression_result.h"
#include "session/services.h"
#include "session/solve_control.h"
#include "session/table_services.h"

#include <atomic>
#include <exception>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace quillmere {

constexpr u32 kQuickLimitSeconds = 64;

struct TRegressionRequest {
    bool isQuick = false;     // no solve takes longer than kQuickLimitSeconds
    bool withMirror = false;  // a mirror pass for each problem that has a mirror image
    bool wantAll = false;     // all solutions also where the file asks for the first only
    // The log of an earlier run is gone on with: what it tells as finished is not done again.
    bool isResumed = false;
    int jobs = 1;
    // As TEngineRequest::heuristics.
    std::string heuristics;
    int threads = 0;  // of each problem; 0 for its own number or that of the options
    i16 quickMateDepth = kQuickMateDepthUnset;  // as TSolveRequest::quickMateDepth
    u64 memoryBytes = 0;  // of the registers of all jobs together; 0 for the limit of the options
    u32 timeLimitSeconds = kNoTimeLimit;  // of each solve; the quick form may be stricter
    // Numbers of problems, both included.
    i32 first = std::numeric_limits<i32>::min();
    i32 last = std::numeric_limits<i32>::max();
    std::filesystem::path logFile;
};

struct TRegressionProgress {
    int done = 0;
    int total = 0;
    std::optional<u64> millisecondsLeft;  // nothing where it is not known
};

// Told by the threads of the run, one call at a time. May throw; that ends the run.
class IRegressionObserver {
public:
    virtual ~IRegressionObserver() = default;
    // Before a problem is solved, as a window shows it.
    virtual void OnProblem(TChessProblem& /*problem*/) {}
    // What went to the log, whole lines.
    virtual void OnLines(std::string_view /*lines*/) {}
    // Also for tests that an earlier run has finished.
    virtual void OnResult(const TTestResult& /*result*/) {}
    // Now and then.
    virtual void OnProgress(const TRegressionProgress& /*progress*/) {}
};

// What a run works with; all outlive it. None is null but for the observer.
struct TRegressionWiring {
    TProblemCollection& collection;
    // Those of the front. A run sets the limit and the flag, and gives both back.
    TSessionSettings& settings;
    TSessionServices services;
    ITableAvailability& tables;
    ITablebaseService& tablebase;
    IRegressionObserver* observer = nullptr;
};

// The problems of the request with their passes: none where no pass is due.
std::vector<std::pair<TChessProblem*, std::vector<int>>>
PlannedTests(const TProblemCollection& collection, const TRegressionRequest& request);

class CRegressionTest {
public:
    explicit CRegressionTest(const TRegressionWiring& wiring) : m_wiring(wiring) {}
    // Stops and waits.
    ~CRegressionTest();
    CRegressionTest(const CRegressionTest&) = delete;
    CRegressionTest& operator=(const CRegressionTest&) = delete;

    // The menu command: refuses while a problem is being solved, asks whether mirror images are wanted
    // too, makes way for a new log and starts the run on a thread. False if it was refused or called
    // off; the user was told why. Throws ChessException if the log cannot be made way for.
    bool StartRegressionTest(bool quick, const CSolveControl& control);
    // Waits for a run that StartRegressionTest started. What ended it early is thrown here.
    void Wait();

    // Runs and waits. `isStopWished` is asked now and then; null for never. Throws ChessException: on a
    // fault of the log, and kRegressionLogOfOtherFile before anything is solved.
    TRegressionSummary Run(const TRegressionRequest& request,
                           const std::function<bool()>& isStopWished = nullptr);
    // Stops what is being solved; the run ends. What was not finished is not told in the log.
    void Stop() { m_isStopWished.store(true); }

private:
    void RegressionThreadProc(bool withMirror, bool quick, const std::filesystem::path& logFile);

    TRegressionWiring m_wiring;
    std::atomic<bool> m_isStopWished{false};
    std::thread m_thread;
    std::exception_ptr m_failure;  // of m_thread
};

// A change of language: false during a run, and the user is told.
bool MayChangeLanguage(const TSessionSettings& settings, IQuestionService& questions);

}  // namespace quillmere

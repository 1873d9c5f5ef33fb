// One run of the batch from its plan to its summary: the jobs, the watcher, and the course of a test.
// For session/regression_test.cpp.
#pragma once

#include "session/expectation.h"
#include "session/gui_check.h"
#include "session/regression_lines.h"
#include "session/regression_log.h"
#include "session/regression_resume.h"
#include "session/regression_test.h"
#include "session/time_estimate.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace quillmere {

// The analysis inside the line through sessions, under the limits of the control.
class CSessionLineAnalysis final : public ILineAnalysis {
public:
    CSessionLineAnalysis(CSolveControl& control, u64 memoryBytes)
        : m_control(control), m_memoryBytes(memoryBytes) {}
    TFound FindDefence(TChessProblem& problem) override;
    TFound FindWhiteMove(TChessProblem& problem) override;

private:
    bool Analyse(TChessProblem& problem);

    CSolveControl& m_control;
    const u64 m_memoryBytes;
};

class CRegressionRun {
public:
    CRegressionRun(const TRegressionWiring& wiring,
                   const TRegressionRequest& request,
                   CRegressionLog& log,
                   TLoggedTests logged,
                   std::function<bool()> isStopWished);
    CRegressionRun(const CRegressionRun&) = delete;
    CRegressionRun& operator=(const CRegressionRun&) = delete;

    TRegressionSummary Run();

private:
    using TPlan = std::pair<TChessProblem*, std::vector<int>>;
    class CReport;

    // Jobs
    void Work();
    void Watch();
    const TPlan* NextPlan();
    bool IsStopping() const { return m_isStopping.load(std::memory_order_relaxed); }
    void Fail();

    // The course of a problem
    void RunProblem(const TPlan& plan);
    bool TakeFinished(const TPlan& plan, std::optional<int> pass, bool allSolutions);
    std::string SkipReason(const TPlan& plan) const;
    void Skip(const TPlan& plan, CReport& report, const std::string& reason);
    bool RunPass(TChessProblem& problem, int pass, bool allSolutions, CReport& report);
    std::optional<TEngineOutcome> Solve(TChessProblem& problem, bool allSolutions);
    void TellJudgement(const TJudgement& judgement, TTestResult& result, CReport& report);
    bool Walk(TChessProblem& problem, TTestResult& result, CReport& report);

    // Results, under m_mutex
    void TellLines(const std::string& lines);
    // One without a pass stands for all tests of the problem.
    void TellResult(const TTestResult& result, int halfMoves, int testsOfProblem);

    const TRegressionWiring& m_wiring;
    const TRegressionRequest& m_request;
    CRegressionLog& m_log;
    const TLoggedTests m_logged;
    const std::function<bool()> m_isStopWished;
    const std::vector<TPlan> m_plans;
    CSolveControl m_control;
    CSessionLineAnalysis m_analysis;
    std::atomic<bool> m_isStopping{false};

    // Locking: guards all below, the calls of the observer and of the table services; taken before
    // the lock of the log.
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_next = 0;
    int m_workers = 0;
    int m_total = 0;
    std::set<TChessProblem*> m_running;
    CTimeEstimate m_estimate;
    TRegressionSummary m_summary;
    std::exception_ptr m_failure;
};

}  // namespace quillmere

#include "session/regression_run.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/notation.h"
#include "core/platform/system_info.h"
#include "registers/register_limits.h"
#include "session/mirror.h"
#include "session/options.h"
#include "session/parked_line.h"
#include "session/requires.h"

#include <algorithm>
#include <chrono>

namespace quillmere {
namespace {

constexpr int kMillisecondsPerSecond = 1000;
// Between two looks of the watcher at a wish to stop, and between two tellings of progress.
constexpr std::chrono::milliseconds kWatchStep(50);
constexpr std::chrono::milliseconds kProgressStep(500);

int TestCount(const std::vector<int>& passes) {
    // A problem without a pass is told once, as skipped.
    return std::max(static_cast<int>(passes.size()), 1);
}

u64 LimitMilliseconds(const TSessionSettings& settings) {
    return settings.solvingTimeLimitSeconds == kNoTimeLimit
               ? 0
               : u64{settings.solvingTimeLimitSeconds} * kMillisecondsPerSecond;
}

// Each job gets an equal share.
u64 MemoryOfJob(const TRegressionRequest& request) {
    if (request.jobs == 1)
        return request.memoryBytes;
    const u64 bytes = request.memoryBytes != 0 ? request.memoryBytes
                                               : DefaultRegisterBytes(g_options, ReadSystemInfo());
    return std::max<u64>(bytes / static_cast<u64>(request.jobs), 1);
}

// Why the position cannot be solved; empty for a legal one.
std::string PositionFault(const TChessProblem& problem) {
    TChessboard copy = *problem.position;
    try {
        ValidateBoard(copy, false);
    } catch (const ChessException& fault) {
        return fault.what();
    }
    return {};
}

std::string EnglishText(EMessage id, i32 number) {
    return FormatMessage(id, ELanguage::kEnglish, {std::to_string(number)});
}

std::vector<TToldMove> ToldMoves(const TChessboard& board, const std::vector<TMove>& moves) {
    std::vector<TToldMove> told;
    told.reserve(moves.size());
    for (const TMove move : moves)
        told.push_back({MoveTextForLog(board, move), IsOnBoard(move) ? MoveToUci(move) : ""});
    return told;
}

std::vector<std::string> TextsOf(const std::vector<TToldMove>& moves) {
    std::vector<std::string> texts;
    texts.reserve(moves.size());
    for (const TToldMove& move : moves)
        texts.push_back(move.text);
    return texts;
}

// Frees the register of the problem: what it found is told, and a batch is long.
void ClearRegister(TChessProblem& problem) {
    RunStateOf(problem).solved.reset();
    problem.tempRegister = nullptr;
}

}  // namespace

bool CSessionLineAnalysis::Analyse(TChessProblem& problem) {
    TStartRequest start;
    start.memoryBytes = m_memoryBytes;
    if (!m_control.StartSolve(problem, false, start))
        return false;
    m_control.WaitUntilIdle(problem);
    return true;
}

ILineAnalysis::TFound CSessionLineAnalysis::FindDefence(TChessProblem& problem) {
    if (!Analyse(problem))
        return {std::nullopt, true};
    const TDefenceAnalysis& analysis = RunStateOf(problem).defenceAnalysis;
    if (analysis.isStopped || analysis.kind == EDefence::kNone)
        return {std::nullopt, true};
    const bool hasMove = analysis.kind == EDefence::kRefutes || analysis.kind == EDefence::kLoses;
    return {hasMove ? std::optional(analysis.move) : std::nullopt, false};
}

ILineAnalysis::TFound CSessionLineAnalysis::FindWhiteMove(TChessProblem& problem) {
    if (!Analyse(problem))
        return {std::nullopt, true};
    const TWhiteAnalysis& analysis = RunStateOf(problem).whiteAnalysis;
    if (analysis.isStopped || (analysis.moves.empty() && !analysis.isProved))
        return {std::nullopt, true};
    return {analysis.moves.empty() ? std::nullopt : std::optional(analysis.moves.front()), false};
}

// The lines of one test on their way to the log.
class CRegressionRun::CReport {
public:
    explicit CReport(CRegressionRun& run) : m_run(run) {}

    void Tell(std::string_view lines) {
        m_lines += lines;
        if (m_run.m_request.jobs == 1)
            Flush();
    }
    // The test has ended.
    void Flush() {
        if (!m_lines.empty())
            m_run.TellLines(m_lines);
        m_lines.clear();
    }
    // What is not told yet belongs to a test that will be done again.
    void Forget() { m_lines.clear(); }

private:
    CRegressionRun& m_run;
    std::string m_lines;
};

CRegressionRun::CRegressionRun(const TRegressionWiring& wiring,
                               const TRegressionRequest& request,
                               CRegressionLog& log,
                               TLoggedTests logged,
                               std::function<bool()> isStopWished)
    : m_wiring(wiring),
      m_request(request),
      m_log(log),
      m_logged(std::move(logged)),
      m_isStopWished(std::move(isStopWished)),
      m_plans(PlannedTests(wiring.collection, request)),
      m_control(wiring.collection, wiring.services, wiring.settings),
      m_analysis(m_control, MemoryOfJob(request)),
      m_estimate(request.jobs, LimitMilliseconds(wiring.settings)) {
    for (const auto& [problem, passes] : m_plans) {
        m_total += TestCount(passes);
        for (int i = 0; i < TestCount(passes); ++i)
            m_estimate.AddOpen(problem->maxHalfMoves);
    }
}

TRegressionSummary CRegressionRun::Run() {
    m_workers = m_request.jobs;
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(m_request.jobs));
    for (int i = 0; i < m_request.jobs; ++i)
        threads.emplace_back([this] { Work(); });
    Watch();
    for (std::thread& thread : threads)
        thread.join();
    m_wiring.tables.ReleaseUsed();
    if (m_failure)
        std::rethrow_exception(m_failure);
    m_summary.isInterrupted = IsStopping();
    return m_summary;
}

// Jobs

void CRegressionRun::Work() {
    try {
        while (const TPlan* plan = NextPlan())
            RunProblem(*plan);
    } catch (...) {
        Fail();
    }
    const std::lock_guard hold(m_mutex);
    --m_workers;
    m_changed.notify_all();
}

const CRegressionRun::TPlan* CRegressionRun::NextPlan() {
    const std::lock_guard hold(m_mutex);
    return IsStopping() || m_next == m_plans.size() ? nullptr : &m_plans[m_next++];
}

// Keeps the first fault; the other jobs stop.
void CRegressionRun::Fail() {
    const std::lock_guard hold(m_mutex);
    if (!m_failure)
        m_failure = std::current_exception();
    m_isStopping.store(true);
}

// Tells progress, and brings a wish to stop to the sessions. A session that started while the wish
// came is found at the next look.
void CRegressionRun::Watch() {
    auto toldAt = std::chrono::steady_clock::now();
    std::unique_lock lock(m_mutex);
    while (m_workers > 0) {
        if (m_isStopWished && m_isStopWished())
            m_isStopping.store(true);
        if (IsStopping()) {
            const std::set<TChessProblem*> running = m_running;
            lock.unlock();
            for (TChessProblem* problem : running)
                m_control.StopSolve(*problem);
            lock.lock();
        }
        const auto now = std::chrono::steady_clock::now();
        if (m_wiring.observer != nullptr && now - toldAt >= kProgressStep && !m_failure) {
            toldAt = now;
            try {
                m_wiring.observer->OnProgress(
                    {m_summary.Total(), m_total, m_estimate.MillisecondsLeft()});
            } catch (...) {
                m_failure = std::current_exception();
                m_isStopping.store(true);
            }
        }
        m_changed.wait_for(lock, kWatchStep, [this] { return m_workers == 0; });
    }
}

// The course of a problem

void CRegressionRun::RunProblem(const TPlan& plan) {
    const auto& [problem, passes] = plan;
    const CParkedLine parked(*problem);
    CReport report(*this);
    bool allSolutions = m_request.wantAll || problem->Has(kProblemAllSolutions);

    // Step 1. Nothing to be done
    const std::string reason = SkipReason(plan);
    const bool hasSkippingClause =
        !problem->requires_.empty() || problem->Has(kProblemRequiresSyzygy);
    if ((!reason.empty() || hasSkippingClause) && TakeFinished(plan, std::nullopt, allSolutions))
        return;
    if (!reason.empty()) {
        Skip(plan, report, reason);
        return;
    }
    std::vector<int> open;
    for (const int pass : passes) {
        if (!TakeFinished(plan, pass, allSolutions))
            open.push_back(pass);
    }
    if (open.empty())
        return;

    // Step 2. The clauses about tables
    {
        std::unique_lock lock(m_mutex);
        TClauseResult clauses = CheckTableClauses(*problem, allSolutions, m_wiring.tables);
        const std::string tableLines = clauses.lines;
        if (!clauses.isSkipped) {
            clauses = CheckTablebaseClauses(*problem, clauses.allSolutions, m_wiring.tablebase);
            clauses.lines = tableLines + clauses.lines;
        }
        allSolutions = clauses.allSolutions;
        if (!clauses.isSkipped && m_wiring.observer != nullptr)
            m_wiring.observer->OnProblem(*problem);
        lock.unlock();
        report.Tell(clauses.lines);
        if (clauses.isSkipped) {
            Skip(plan, report, clauses.reason);
            return;
        }
    }

    // Step 3. The passes
    for (const int pass : open) {
        if (IsStopping() || !RunPass(*problem, pass, allSolutions, report))
            return;
    }
    if (m_request.jobs == 1)
        m_wiring.tables.ReleaseUsed();
}

// Tells what an earlier run has finished. A test that was run for the first solution answers for no
// run for all, unless a clause brought that about.
bool CRegressionRun::TakeFinished(const TPlan& plan, std::optional<int> pass, bool allSolutions) {
    const TChessProblem& problem = *plan.first;
    const auto found = m_logged.find({problem.number, pass});
    if (found == m_logged.end())
        return false;
    const TLoggedTest& test = found->second;
    const bool hasClauseForAll =
        !problem.allSolutionsRequires.empty() || problem.Has(kProblemAllSolutionsRequiresSyzygy);
    if (test.hasResultLine && allSolutions != (test.result.mode == kSolveAll) && !hasClauseForAll)
        return false;
    const bool isWalkDue = test.result.verdict != ETestVerdict::kSkipped &&
                           test.result.verdict != ETestVerdict::kFaulty && NeedsGuiCheck(problem);
    if (isWalkDue && !test.isLineWalked)
        return false;
    TTestResult result = test.result;
    result.description = problem.description;
    result.halfMoves = problem.maxHalfMoves;
    TellResult(result, problem.maxHalfMoves, TestCount(plan.second));
    return true;
}

std::string CRegressionRun::SkipReason(const TPlan& plan) const {
    const TChessProblem& problem = *plan.first;
    if (problem.type == kSelfmate)
        return EnglishText(EMessage::kSelfmateRefused, problem.number);
    if (problem.type == kHelpmate)
        return EnglishText(EMessage::kHelpmateRefused, problem.number);
    if (problem.maxHalfMoves == kHalfMovesWithoutStipulation && problem.type == kNoStipulation)
        return "the problem has no stipulation";
    return plan.second.empty() ? "no pass is due: only the mirror image would be solved" : "";
}

void CRegressionRun::Skip(const TPlan& plan, CReport& report, const std::string& reason) {
    const TChessProblem& problem = *plan.first;
    report.Tell(EndLine(problem.number, std::nullopt, ETestEnd::kSkipped, reason));
    report.Flush();
    TTestResult result;
    result.number = problem.number;
    result.verdict = ETestVerdict::kSkipped;
    result.remark = OneLine(reason);
    result.description = problem.description;
    result.halfMoves = problem.maxHalfMoves;
    TellResult(result, problem.maxHalfMoves, TestCount(plan.second));
}

// False if the run is to end and the test was not finished.
bool CRegressionRun::RunPass(TChessProblem& problem, int pass, bool allSolutions, CReport& report) {
    std::optional<CMirroredProblem> mirrored;
    if (pass == 1)
        mirrored.emplace(problem);
    TTestResult result;
    result.number = problem.number;
    result.pass = pass;
    result.mode = allSolutions ? kSolveAll : kSolveFirst;
    result.description = problem.description;
    result.halfMoves = problem.maxHalfMoves;

    // Step 1. The solve
    TEngineOutcome outcome;
    outcome.faultText = PositionFault(problem);
    if (!outcome.faultText.empty()) {
        outcome.end = EEngineEnd::kBadPosition;
    } else {
        result.fen = GetFENCode(*problem.position);
        std::optional<TEngineOutcome> solved = Solve(problem, allSolutions);
        if (!solved) {
            report.Forget();
            ClearRegister(problem);
            return false;
        }
        outcome = std::move(*solved);
        const TRunState& state = RunStateOf(problem);
        if (outcome.end != EEngineEnd::kBadPosition) {
            result.threads = state.runThreads;
            result.solved = outcome.result.verdict;
        }
        result.milliseconds = outcome.milliseconds;
        result.isComplete = outcome.result.isComplete;
        result.nodes = outcome.result.nodes;
        result.madeMoves = outcome.result.madeMoves;
        if (state.solved != nullptr) {
            const TRegisterFigures figures = state.solved->Figures();
            result.registerElements = figures.elements;
            result.registerBytes = figures.bytesUsed;
        }
    }

    // Step 2. The comparison
    const TJudgement judgement = JudgeOutcome(StatementOf(problem, allSolutions), outcome);
    result.verdict = judgement.verdict;
    result.found = ToldMoves(*problem.position, judgement.found);
    result.expected = ToldMoves(*problem.position, judgement.expected);
    TellJudgement(judgement, result, report);

    // Step 3. The main variant
    const bool isFinished = result.verdict == ETestVerdict::kFaulty || !NeedsGuiCheck(problem) ||
                            Walk(problem, result, report);
    ClearRegister(problem);
    if (!isFinished) {
        report.Forget();
        return false;
    }
    report.Flush();
    TellResult(result, problem.maxHalfMoves, 1);
    return true;
}

// Nothing if the user stopped the run.
std::optional<TEngineOutcome> CRegressionRun::Solve(TChessProblem& problem, bool allSolutions) {
    TStartRequest start;
    start.threads = m_request.threads;
    start.mayUseSolvedRecord = false;
    start.wantMainLine = false;
    start.heuristics = m_request.heuristics;
    start.memoryBytes = MemoryOfJob(m_request);
    start.quickMateDepth = m_request.quickMateDepth;
    // The order of the first moves is known before the first node, and nothing else is asked.
    if (problem.Has(kProblemHasExpectedSort) && problem.Has(kProblemExpectedSortOnly))
        start.nodeLimit = 1;
    TEngineOutcome outcome;
    {
        const std::lock_guard hold(m_mutex);
        m_running.insert(&problem);
    }
    const bool isStarted = m_control.StartSolve(problem, allSolutions, start);
    if (isStarted)
        m_control.WaitUntilIdle(problem);
    {
        const std::lock_guard hold(m_mutex);
        m_running.erase(&problem);
    }
    const TRunState& state = RunStateOf(problem);
    if (isStarted || state.outcome.end == EEngineEnd::kTooMany) {
        outcome = state.outcome;
    } else {
        outcome.end = EEngineEnd::kBadPosition;
        outcome.faultText = "the solve could not be started";
    }
    const bool isUsersStop = outcome.end == EEngineEnd::kStopped && !outcome.isTimeLimitHit;
    return IsStopping() && isUsersStop ? std::nullopt : std::optional(std::move(outcome));
}

void CRegressionRun::TellJudgement(const TJudgement& judgement,
                                   TTestResult& result,
                                   CReport& report) {
    const TTestName name{result.mode, result.threads, result.number, *result.pass};
    const auto tellEnd = [&](ETestEnd end, std::string_view note) {
        result.remark = OneLine(std::string(note));
        report.Tell(EndLine(result.number, result.pass, end, result.remark));
    };
    switch (judgement.line) {
    case EResultLine::kOk:
        report.Tell(OkLine(name, result.milliseconds));
        break;
    case EResultLine::kFailedLists:
        report.Tell(FailedListsLines(name, TextsOf(result.found), TextsOf(result.expected)));
        break;
    case EResultLine::kFailedOrder:
        result.remark = OneLine(judgement.text);
        report.Tell(FailedOrderLine(name, judgement.text));
        break;
    case EResultLine::kOrderOk:
        report.Tell(OrderOkLine(name, result.milliseconds));
        break;
    case EResultLine::kProblem:
        report.Tell(ProblemLine(name, TextsOf(result.found), result.milliseconds));
        break;
    case EResultLine::kNone:
        if (judgement.verdict == ETestVerdict::kFaulty) {
            tellEnd(ETestEnd::kFaulty, judgement.text);
            break;
        }
        if (judgement.undecided == EUndecided::kTimeLimit)
            report.Tell(TimeLimitLine(m_wiring.settings.solvingTimeLimitSeconds));
        tellEnd(ETestEnd::kUndecided, UndecidedText(judgement.undecided));
        break;
    }
}

// False if the user stopped the run.
bool CRegressionRun::Walk(TChessProblem& problem, TTestResult& result, CReport& report) {
    {
        const std::lock_guard hold(m_mutex);
        m_running.insert(&problem);
    }
    const TGuiCheckResult walk = WalkMainVariant(problem, m_analysis);
    {
        const std::lock_guard hold(m_mutex);
        m_running.erase(&problem);
    }
    if (walk.isUndecided && IsStopping())
        return false;
    report.Tell(walk.lines);
    const ETestEnd end = walk.isDifferent   ? ETestEnd::kLineFailed
                         : walk.isUndecided ? ETestEnd::kLineUndecided
                                            : ETestEnd::kLineOk;
    report.Tell(EndLine(result.number,
                        result.pass,
                        end,
                        end == ETestEnd::kLineOk ? "the moves were found" : walk.remark));
    if (walk.isDifferent)
        result.verdict = ETestVerdict::kDifferent;
    else if (walk.isUndecided && result.verdict != ETestVerdict::kDifferent)
        result.verdict = ETestVerdict::kUndecided;
    if (result.remark.empty())
        result.remark = walk.remark;
    return true;
}

// Results

void CRegressionRun::TellLines(const std::string& lines) {
    const std::lock_guard hold(m_mutex);
    m_log.Write(lines);
    if (m_wiring.observer != nullptr)
        m_wiring.observer->OnLines(lines);
}

void CRegressionRun::TellResult(const TTestResult& result, int halfMoves, int testsOfProblem) {
    const std::lock_guard hold(m_mutex);
    ++m_summary.counts[static_cast<int>(result.verdict)];
    m_summary.fromLog += result.isFromLog ? 1 : 0;
    const bool wasSolved = !result.isFromLog && result.threads > 0;
    if (wasSolved)
        m_estimate.Finish(halfMoves, result.milliseconds);
    else
        m_estimate.Drop(halfMoves);
    for (int i = 1; !result.pass && i < testsOfProblem; ++i) {
        m_estimate.Drop(halfMoves);
        --m_total;
    }
    if (m_wiring.observer != nullptr)
        m_wiring.observer->OnResult(result);
}

}  // namespace quillmere

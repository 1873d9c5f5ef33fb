#include "session/run_engine.h"

#include "core/chess_exception.h"
#include "heuristics/relaxation_log.h"
#include "search/moves_log.h"
#include "search/proof_pass.h"
#include "search/root.h"
#include "search/sort_indication.h"
#include "session/options.h"
#include "session/problem_heuristics.h"
#include "session/problem_indications.h"
#include "session/problem_register.h"
#include "session/questions.h"
#include "session/run_state.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <mutex>
#include <utility>

namespace quillmere {
namespace {

using TClock = std::chrono::steady_clock;

// Keeps the warnings of the logs until the search is over: a searching thread must not wait for a
// user.
//
// Locking: guards the list, which every thread of the search may add to; a leaf.
class CKeptWarnings final : public IWarningSink {
public:
    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override {
        const std::lock_guard lock(m_mutex);
        m_warnings.push_back({title, text, values});
    }
    void Tell(IQuestionService* questions, ELanguage language) const {
        const std::lock_guard lock(m_mutex);
        for (const TWarning& warning : m_warnings) {
            if (questions != nullptr)
                questions->Tell(warning.title,
                                FormatMessage(warning.text, language, warning.values));
        }
    }

private:
    struct TWarning {
        EMessage title;
        EMessage text;
        std::vector<std::string> values;
    };
    mutable std::mutex m_mutex;
    std::vector<TWarning> m_warnings;
};

// The moves logs of the threads of a run.
class CRunLogs {
public:
    CRunLogs(const TChessProblem& problem, const TEngineRequest& request, int threads) {
        if ((!g_options.LogMoves && !request.logMoves) || request.programFolder.empty())
            return;
        for (int thread = 0; thread < threads; ++thread)
            m_logs.push_back(std::make_unique<CMovesLog>(
                MovesLogFile(request.programFolder, problem.number, thread), m_warnings));
    }
    std::vector<CMovesLog*> Logs() const {
        std::vector<CMovesLog*> logs;
        for (const auto& log : m_logs)
            logs.push_back(log.get());
        return logs;
    }
    const CKeptWarnings& Warnings() const { return m_warnings; }

private:
    CKeptWarnings m_warnings;
    std::vector<std::unique_ptr<CMovesLog>> m_logs;
};

class CEngineRun {
public:
    CEngineRun(TChessProblem& problem,
               const TEngineRequest& request,
               const TSessionServices& services,
               const TEngineHooks& hooks)
        : m_problem(problem),
          m_request(request),
          m_services(services),
          m_hooks(hooks),
          m_state(RunStateOf(problem)),
          m_halfMoves(HalfMovesToSolve(problem)) {}

    TEngineOutcome Run() {
        // Limits of precalculated data come here once there are any (globRegMB, kProblemNoGlobReg).

        // 1. The position, before anything is touched
        TChessboard root;
        InitBoard(root);
        std::memcpy(root.m_board, m_problem.position->m_board, sizeof root.m_board);
        SetupAnalysisRoot(root, m_halfMoves, true);

        // 2. Mode, word and order. Where the problem gives no word, the search chooses one.
        const bool isSafeMode = IsSafeModeForced(m_problem);
        const CProblemHeuristics heuristics(
            m_problem,
            root,
            {m_request.heuristics, isSafeMode, m_request.noRelaxation, m_request.noFinalPass});
        m_state.safeModeForced = isSafeMode;
        m_problem.isExact = isSafeMode;
        m_indications = BuildIndications(m_problem, g_options.UseMainVariantAsSortIndications);

        // 3. What is known, or else the search
        m_outcome.stopAfterKeys = StopAfterKeys(m_problem, m_request.allSolutions);
        if (!TakeFromRecord()) {
            Search(heuristics);
            m_outcome.milliseconds = Elapsed();
            Record();
        }
        m_outcome.milliseconds = Elapsed();
        return std::move(m_outcome);
    }

private:
    u64 Elapsed() const {
        const auto elapsed = TClock::now() - m_start - m_waited;
        return static_cast<u64>(
            std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
    }

    // The database

    bool MayUseRecord() const {
        return m_request.mayUseSolvedRecord && !m_request.programFolder.empty() &&
               !m_request.wantTries && !m_state.isMirrorRun && !m_problem.solvedRecord.disabled &&
               !m_problem.Has(kProblemHasExpectedSort);  // the order is only known to a search
    }

    bool TakeFromRecord() {
        TSolvedRecord& record = m_problem.solvedRecord;
        if (!MayUseRecord())
            return false;
        record.EnsureLoaded(m_request.programFolder);
        const bool isKnown = m_request.allSolutions ? record.HasAllSolutions(m_halfMoves)
                                                    : record.HasFirstSolution(m_halfMoves);
        if (!isKnown)
            return false;
        TSolveResult& result = m_outcome.result;
        if (m_request.allSolutions)
            result.keys = record.all;
        else if (record.isFirstFound)
            result.keys = {record.first};
        result.verdict =
            result.keys.empty() ? ESolveVerdict::kProvedNoMate : ESolveVerdict::kProvedMate;
        result.isComplete = true;
        result.threads = 0;
        m_outcome.isFromRecord = true;
        m_outcome.stopAfterKeys = 0;  // the list is complete
        m_outcome.recordWhen = m_request.allSolutions ? record.allWhen : record.firstWhen;
        m_outcome.end = EEngineEnd::kDone;
        return true;
    }

    // Only what is proved is kept. A stopped run counts where it had found what it was asked for.
    void Record() {
        const TSolveResult& result = m_outcome.result;
        if (m_halfMoves < kSolvedLeastHalfMoves || m_state.isMirrorRun ||
            m_request.programFolder.empty())
            return;
        const bool isStopped = m_outcome.end == EEngineEnd::kStopped;
        const auto duration = static_cast<i32>(
            std::min<u64>(m_outcome.milliseconds, std::numeric_limits<i32>::max()));
        TSolvedRecord& record = m_problem.solvedRecord;
        record.EnsureLoaded(m_request.programFolder);
        if (m_request.allSolutions) {
            if (!isStopped && AreAllKnown())
                record.RecordAll(result.keys, m_halfMoves, duration, m_request.programFolder);
            return;
        }
        const bool isMate = result.verdict == ESolveVerdict::kProvedMate;
        const bool isNone = result.verdict == ESolveVerdict::kProvedNoMate;
        if ((isMate && (!isStopped || result.threads > 1)) || (isNone && !isStopped))
            record.RecordFirst(isMate ? &result.keys.front() : nullptr,
                               m_halfMoves,
                               duration,
                               m_request.programFolder);
    }

    // Every other first move is refuted.
    bool AreAllKnown() const {
        const TSolveResult& result = m_outcome.result;
        const bool isDecided = result.verdict == ESolveVerdict::kProvedMate ||
                               result.verdict == ESolveVerdict::kProvedNoMate;
        const bool wasCut = m_outcome.stopAfterKeys > 0 &&
                            static_cast<int>(result.keys.size()) >= m_outcome.stopAfterKeys;
        return isDecided && result.isComplete && !wasCut;
    }

    // The search

    TSolveRequest SolveRequest(const CProblemHeuristics& heuristics) const {
        TSolveRequest solve;
        solve.halfMoves = m_halfMoves;
        solve.wantAllKeys = m_request.allSolutions;
        solve.wantTries = m_request.wantTries;
        solve.wantMainLine = m_request.wantMainLine;
        solve.sortIndications = &m_indications;
        solve.clearRegister = g_options.ClearRegisterOnStartSolving;
        solve.stopAfterKeys = m_outcome.stopAfterKeys;
        solve.threads = ThreadsOfRun(m_problem, m_request.threads);
        solve.mayAskForThreads = m_request.threads == 0 && m_problem.threads == kThreadsNotForced;
        solve.heuristics = heuristics.Node();
        solve.selectsHeuristics = heuristics.IsAutomatic();
        solve.proofMoves = heuristics.IsAutomatic() ? ProofMovesOf(m_halfMoves) : 0;
        solve.stopsRelaxingOnFirstSolution = m_problem.stopRelaxHeuristicsOnFirstSolution;
        solve.nodeLimit = m_request.nodeLimit;
        solve.quickMateDepth = m_request.quickMateDepth;
        return solve;
    }

    void Search(const CProblemHeuristics& heuristics) {
        TAggregatedTemporaryChessboardRegister* const solved =
            RegisterOf(m_problem, m_halfMoves, m_request.memoryBytes, m_request.programFolder);
        CRelaxationLog relaxationLog(m_request.programFolder);
        const CProblemInUse inUse(m_problem, solved, &relaxationLog, m_hooks.progress);
        TSolveRequest solve = SolveRequest(heuristics);
        SolveOnce(solve);
        if (const int wished = m_outcome.result.wishedThreads; wished > 0) {
            if (IsAccepted(wished))
                solve.threads = std::min(wished, kMaxRootThreads);
            solve.mayAskForThreads = false;
            SolveOnce(solve);
        }
        m_state.runThreads = static_cast<u8>(solve.threads);
        m_outcome.end = m_problem.stopKind.load(std::memory_order_relaxed) == kStopAll
                            ? EEngineEnd::kStopped
                            : EEngineEnd::kDone;
        CompareOrder();
        if (solved == nullptr)
            return;
        if (const u32 incoherent = solved->IncoherentElements(); incoherent != 0) {
            // Nothing that came from it may be used again.
            m_state.solved.reset();
            throw ChessException(EMessage::kRegisterIncoherent, {std::to_string(incoherent)});
        }
    }

    void SolveOnce(TSolveRequest solve) {
        CKeptWarnings warnings;
        const CRunLogs logs(m_problem, m_request, solve.threads);
        solve.movesLogs = logs.Logs();
        solve.warnings = &warnings;
        m_outcome.result = Solve(*m_problem.position, solve, m_problem, m_hooks.observer);
        if (m_request.isRegression)
            return;
        logs.Warnings().Tell(m_services.questions, m_request.language);
        warnings.Tell(m_services.questions, m_request.language);
    }

    // The time of the user is not that of the run.
    bool IsAccepted(int wishedThreads) {
        constexpr EMessage kQuestion = EMessage::kForceThreads;
        if (m_request.isRegression || m_services.questions == nullptr)
            return BatchAnswer(kQuestion) == EReply::kYes;
        const TClock::time_point asked = TClock::now();
        const std::string text =
            FormatMessage(kQuestion, m_request.language, {std::to_string(wishedThreads)});
        const EReply reply = m_services.questions->Ask(kQuestion, text);
        m_waited += TClock::now() - asked;
        return reply == EReply::kYes;
    }

    void CompareOrder() {
        if (!m_problem.Has(kProblemHasExpectedSort))
            return;
        TMoveList list;
        for (const TMove move : m_outcome.result.firstMoves)
            list.moves[list.count++] = move;
        MarkExpectedSortWhiteMoves(m_problem.expectedSortWhiteMoves, list);
        m_outcome.expectedSortFailure =
            CheckExpectedSortWhiteMoves(m_problem.expectedSortWhiteMoves, m_request.language);
    }

    TChessProblem& m_problem;
    const TEngineRequest& m_request;
    const TSessionServices& m_services;
    const TEngineHooks& m_hooks;
    TRunState& m_state;
    const u16 m_halfMoves;
    const TClock::time_point m_start = TClock::now();
    TClock::duration m_waited{};
    TSortIndications m_indications;
    TEngineOutcome m_outcome;
};

}  // namespace

u16 HalfMovesToSolve(const TChessProblem& problem) {
    return static_cast<u16>(std::max((problem.maxHalfMoves + 1) / 2 * 2 - 1, 1));
}

int ThreadsOfRun(const TChessProblem& problem, int asked) {
    int threads = g_options.threadCount;
    if (asked > 0)
        threads = asked;
    else if (problem.threads != kThreadsNotForced)
        threads = problem.threads;
    return std::clamp(threads, 1, kMaxRootThreads);
}

bool IsSafeModeForced(const TChessProblem& problem) {
    return !g_options.QuickMode || problem.Has(kProblemSafeMode);
}

int StopAfterKeys(const TChessProblem& problem, bool allSolutions) {
    if (!allSolutions)
        return 0;
    if (problem.Has(kProblemStopOnDual))
        return 2;
    if (problem.Has(kProblemStopOn3Sol))
        return 3;
    return problem.Has(kProblemStopOn4Sol) ? 4 : 0;
}

TEngineOutcome RunEngine(TChessProblem& problem,
                         const TEngineRequest& request,
                         const TSessionServices& services,
                         const TEngineHooks& hooks) {
    return CEngineRun(problem, request, services, hooks).Run();
}

}  // namespace quillmere

#include "session/solve_session.h"

#include "core/chess_exception.h"
#include "core/play_board.h"
#include "session/end_texts.h"
#include "session/engine_log.h"
#include "session/key_threat.h"
#include "session/levels_in_use.h"
#include "session/time_limit.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace quillmere {
namespace {

// Between two moves of a line that is solved to its end, so that the user sees each.
constexpr auto kLinePause = std::chrono::milliseconds(100);

// Ticks from its making to its end.
class CTicking {
public:
    CTicking(const TSessionServices& services, int id) : m_services(services), m_id(id) {
        services.tick->StartTick(id, [repaint = services.repaint] { repaint->Repaint(); });
    }
    ~CTicking() { m_services.tick->StopTick(m_id); }
    CTicking(const CTicking&) = delete;
    CTicking& operator=(const CTicking&) = delete;

private:
    const TSessionServices& m_services;
    int m_id;
};

std::string KeyText(const TChessProblem& problem, TMove key) {
    return NumberedLine({WriteMove(*problem.position, false, key)}, false);
}

}  // namespace

CSolveSession::CSolveSession(TSessionHost& host,
                             TChessProblem& problem,
                             EWork work,
                             bool allSolutions,
                             const TStartRequest& request)
    : m_host(host),
      m_problem(problem),
      m_work(work),
      m_allSolutions(allSolutions),
      m_request(request) {}

void CSolveSession::Start() {
    if (m_work != EWork::kMainSolve) {
        m_line = m_problem.PlayedMoves();
        m_lineEnd = *m_problem.currentNode;
    }
    try {
        m_thread = std::make_unique<CThreadWithStack>(SolveStackBytes(HalfMovesToSolve(m_problem)),
                                                      [this] { Run(); });
    } catch (const ChessException&) {
        End();
        throw;
    }
}

void CSolveSession::Run() {
    try {
        switch (m_work) {
        case EWork::kMainSolve:
            RunMain();
            break;
        case EWork::kWhiteMove:
            RunWhiteMove();
            break;
        case EWork::kDefence:
            RunDefence();
            break;
        }
    } catch (const ChessException& fault) {
        TellFault(fault.Text(m_host.settings.language), std::current_exception());
    } catch (const std::exception& fault) {
        TellFault(fault.what(), std::current_exception());
    }
    End();
}

// The main solve

void CSolveSession::RunMain() {
    TRunState& state = RunStateOf(m_problem);
    state.results.clear();
    state.outcome = {};
    state.safeModeForced = IsSafeModeForced(m_problem);
    // There is no scheduler yet, so that only levels which the problem forces are wanted.
    const bool areForced = m_problem.schedulerLevels != kLevelsNotForced;
    state.schedulerLevelsInUse = SchedulerLevelsFor(HalfMovesToSolve(m_problem),
                                                    m_problem.position->m_positionFlags,
                                                    areForced ? m_problem.schedulerLevels : 0);
    state.customSchedulerInUse = false;
    state.multithreadingLevelsInUse = 1;
    m_problem.solvedRecord.SetPosition(m_problem.position->m_board);

    const CTimeLimit limit(m_problem, Seconds());
    m_host.SetStatus(m_host.Text(EMessage::kInitialPositionCheck));
    m_host.services.repaint->Repaint();
    TEngineOutcome outcome = RunEngineWatched();
    outcome.isTimeLimitHit = limit.IsHit();
    TakeResults(std::move(outcome));
    m_host.services.repaint->Repaint();
    ShowMainEnd();
    if (m_request.wholeMainLine)
        PlayWholeLine();
}

TEngineOutcome CSolveSession::RunEngineWatched() {
    TRunState& state = RunStateOf(m_problem);
    TEngineRequest request;
    request.allSolutions = m_allSolutions;
    request.isRegression = m_host.settings.regressionRunning;
    request.mayUseSolvedRecord = m_request.mayUseSolvedRecord;
    request.wantTries = m_request.wantTries;
    request.wantMainLine = m_request.wantMainLine;
    request.nodeLimit = m_request.nodeLimit;
    request.quickMateDepth = m_request.quickMateDepth;
    request.heuristics = m_request.heuristics;
    request.noRelaxation = m_request.noRelaxation;
    request.noFinalPass = m_request.noFinalPass;
    request.memoryBytes = m_request.memoryBytes;
    request.threads = m_request.threads;
    request.logMoves = m_request.logMoves;
    request.language = m_host.settings.language;
    request.programFolder = m_host.settings.programFolder;
    TChessboard root = *m_problem.position;
    root.m_nMoves = HalfMovesToSolve(m_problem);
    CSessionProgress progress(m_host, root, state.safeModeForced, state.runThreads, m_isStopping);
    const CTicking ticking(m_host.services, m_problem.number);
    return RunEngine(m_problem, request, m_host.services, {&progress, &progress});
}

void CSolveSession::TakeResults(TEngineOutcome outcome) {
    TSolveResult& result = outcome.result;
    if (outcome.isTimeLimitHit && !m_isStopping && result.verdict == ESolveVerdict::kStopped) {
        // The search only knows of a stop.
        result.verdict = ESolveVerdict::kLimit;
        if (!result.passes.empty())
            result.passes.back().verdict = ESolveVerdict::kLimit;
    }
    TRunState& state = RunStateOf(m_problem);
    const std::lock_guard lock(m_host.collection.lock);
    state.results = result.keys;
    state.outcome = std::move(outcome);
    m_host.problemsBeingSolved.erase(m_problem.number);
}

void CSolveSession::ShowMainEnd() {
    const TEngineOutcome& outcome = RunStateOf(m_problem).outcome;
    const TSolveResult& result = outcome.result;
    const int halfMoves = HalfMovesToSolve(m_problem);
    TEndOfSolve end;
    end.problemNumber = m_problem.number;
    end.moves = (halfMoves + 1) / 2;
    end.milliseconds = outcome.milliseconds;
    end.isStopped = outcome.end == EEngineEnd::kStopped;
    end.isTimeLimitHit = outcome.isTimeLimitHit && !m_isStopping;
    end.isProved = result.isComplete && result.verdict != ESolveVerdict::kDoubt;
    end.stopAfterKeys = outcome.stopAfterKeys;
    const bool hadWord =
        !result.plannedPasses.empty() && !result.plannedPasses.front().heuristics.empty();
    end.wasRelaxationOff = hadWord && m_request.noRelaxation;
    end.wasFinalPassOff = result.isFinalPassOff;
    const bool wantsThreats = IsShown() && !m_host.settings.regressionRunning;
    for (const TMove key : result.keys) {
        // What is threatened may cost as much as the proof did.
        const std::string threat = wantsThreats && !WasStopped()
                                       ? ThreatText(m_problem, key, halfMoves, result.nodes)
                                       : "";
        end.solutions.push_back({KeyText(m_problem, key), threat});
    }
    const ELanguage language = m_host.settings.language;
    const std::string answer = AnswerText(end, language);
    LogEngineEnd(m_host.settings.programFolder, answer, end.isStopped);
    if (!IsShown()) {
        m_host.SetStatus(EndNoteText(end, language));
        return;
    }
    m_host.SetStatus(answer);
    PlayFirstKey();
    if (const std::string box = ResultBoxText(end, language); !box.empty())
        m_host.Tell(EMessage::kTitleMateSearchResult, box);
}

// So that the user can walk the solution. Nobody does in a batch.
void CSolveSession::PlayFirstKey() {
    const std::vector<TMove>& results = RunStateOf(m_problem).results;
    if (m_host.settings.regressionRunning || results.empty() ||
        m_problem.currentNode != m_problem.position.get())
        return;
    m_problem.PlayMove(results.front());
    m_host.services.repaint->Repaint();
}

void CSolveSession::PlayWholeLine() {
    if (m_problem.currentNode == m_problem.position.get())
        return;
    while (IsShown() && !WasStopped() && m_problem.currentNode->m_nMoves > 0) {
        std::this_thread::sleep_for(kLinePause);
        const TMove move = MoveForCurrentNode();
        if (WasStopped() || move.IsNull() || !m_problem.PlayMove(move))
            return;
        m_host.services.repaint->Repaint();
    }
}

TMove CSolveSession::MoveForCurrentNode() {
    TAnalysisRequest request;
    request.memoryBytes = m_request.memoryBytes;
    request.programFolder = m_host.settings.programFolder;
    if (!m_problem.currentNode->IsWhiteToMove())
        return AnalyseDefence(m_problem, request).move;
    const TWhiteAnalysis analysis = AnalyseWhite(m_problem, request);
    return analysis.moves.empty() ? TMove{} : analysis.moves.front();
}

// Inside the line

TAnalysisRequest CSolveSession::MakeAnalysisRequest(CSessionProgress& progress) const {
    TAnalysisRequest request;
    request.wantAll = m_allSolutions;
    request.line = m_line;
    request.memoryBytes = m_request.memoryBytes;
    request.programFolder = m_host.settings.programFolder;
    request.observer = &progress;
    request.progress = &progress;
    return request;
}

void CSolveSession::RunWhiteMove() {
    const CTimeLimit limit(m_problem, Seconds());
    CSessionProgress progress(m_host, m_lineEnd, false, 1, m_isStopping);
    const TAnalysisRequest request = MakeAnalysisRequest(progress);
    TWhiteAnalysis& analysis = RunStateOf(m_problem).whiteAnalysis;
    analysis = {};
    {
        const CTicking ticking(m_host.services, m_problem.number);
        analysis = AnalyseWhite(m_problem, request);
    }
    analysis.isTimeLimitHit = IsStoppedBy(limit);
    LeaveSolvingSet();
    TellAnalysis(EMessage::kTitleResultOfAnalysis,
                 WhiteAnalysisText(analysis, m_request.noFinalPass, m_host.settings.language),
                 m_host.Text(EMessage::kThreadCompleted, {std::to_string(m_problem.number)}));
}

void CSolveSession::RunDefence() {
    const CTimeLimit limit(m_problem, Seconds());
    CSessionProgress progress(m_host, m_lineEnd, false, 1, m_isStopping);
    const TAnalysisRequest request = MakeAnalysisRequest(progress);
    TDefenceAnalysis& analysis = RunStateOf(m_problem).defenceAnalysis;
    analysis = {};
    {
        const CTicking ticking(m_host.services, m_problem.number);
        analysis = AnalyseDefence(m_problem, request);
    }
    analysis.isTimeLimitHit = IsStoppedBy(limit);
    LeaveSolvingSet();
    TellAnalysis(
        analysis.kind == EDefence::kRepeats ? EMessage::kTitlePositionRepetition
                                            : EMessage::kTitleResultOfAnalysis,
        DefenceAnalysisText(analysis, m_host.settings.language),
        m_host.Text(EMessage::kDefenceThreadCompleted, {std::to_string(m_problem.number)}));
}

void CSolveSession::TellAnalysis(EMessage title, const std::string& text, const std::string& note) {
    m_host.services.repaint->Repaint();
    m_host.SetStatus(IsShown() ? text : note);
    if (IsShown() && !WasStopped())
        m_host.Tell(title, text);
}

// Ends

void CSolveSession::TellFault(const std::string& text, std::exception_ptr fault) {
    LeaveSolvingSet();
    if (m_work == EWork::kMainSolve) {
        TRunState& state = RunStateOf(m_problem);
        state.outcome = {};
        state.outcome.end = EEngineEnd::kBadPosition;
        state.outcome.faultText = text;
        state.outcome.fault = fault;
        state.results.clear();
    }
    const std::string number = std::to_string(m_problem.number);
    if (IsShown()) {
        m_host.SetStatus(text);
        m_host.Tell(EMessage::kTitleError, text);
        return;
    }
    m_host.SetStatus(m_host.Text(EMessage::kThreadCompletedWithError, {number}));
    m_host.Tell(EMessage::kTitleError, m_host.Text(EMessage::kThreadError, {number, text}));
}

void CSolveSession::LeaveSolvingSet() {
    const std::lock_guard lock(m_host.collection.lock);
    m_host.problemsBeingSolved.erase(m_problem.number);
}

// The last that the thread does: whoever waits may remove the problem as soon as the lock is free.
void CSolveSession::End() {
    const std::lock_guard lock(m_host.collection.lock);
    m_host.problemsBeingSolved.erase(m_problem.number);
    m_host.problemsWithPendingThreads.erase(m_problem.number);
    m_hasEnded = true;
    RunStateOf(m_problem).idle = true;
    m_host.sessionEnded.notify_all();
}

// Not by the user before.
bool CSolveSession::IsStoppedBy(const CTimeLimit& limit) const {
    return limit.IsHit() && !m_isStopping.load(std::memory_order_relaxed);
}

bool CSolveSession::WasStopped() const {
    return m_isStopping.load(std::memory_order_relaxed) ||
           m_problem.stopKind.load(std::memory_order_relaxed) == kStopAll;
}

// The shorter of both limits; 0 for none.
double CSolveSession::Seconds() const {
    const u32 ofAll = m_host.settings.solvingTimeLimitSeconds;
    if (ofAll == kNoTimeLimit)
        return m_request.seconds;
    return m_request.seconds > 0 ? std::min<double>(ofAll, m_request.seconds) : ofAll;
}

}  // namespace quillmere

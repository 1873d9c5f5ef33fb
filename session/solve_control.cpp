#include "session/solve_control.h"

#include "core/chess_exception.h"
#include "session/session_host.h"
#include "session/solve_session.h"

#include <chrono>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

// Between two looks into the message loop of a window that waits for a session.
constexpr auto kDispatchPause = std::chrono::milliseconds(10);

// Changes the stop slot only if it holds what it is expected to hold: a pause must never take the
// place of a stop.
void ChangeStop(TSearchContext& context, u8 from, u8 to) {
    const CStopSlotLock lock(context);
    if (context.stopKind.load(std::memory_order_relaxed) != from)
        return;
    context.stopThread.store(kAllThreads, std::memory_order_relaxed);
    context.stopKind.store(to, std::memory_order_relaxed);
}

// Nothing if there is nothing to do at this place of the line.
std::optional<EWork> WorkAtCurrentNode(const TChessProblem& problem) {
    const bool isInLine =
        problem.currentNode != problem.position.get() && problem.type != kNoStipulation;
    if (!isInLine)
        return EWork::kMainSolve;
    if (problem.currentNode->m_nMoves == 0)
        return std::nullopt;
    return problem.currentNode->IsWhiteToMove() ? EWork::kWhiteMove : EWork::kDefence;
}

}  // namespace

struct CSolveControl::TState : TSessionHost {
    using TSessionHost::TSessionHost;

    // With the lock of the collection. An ended session stays until somebody takes it away.
    std::map<const TChessProblem*, std::shared_ptr<CSolveSession>> sessions;

    // Null if there is none, or if it has ended. With the lock.
    std::shared_ptr<CSolveSession> RunningSession(const TChessProblem& problem) const {
        const auto place = sessions.find(&problem);
        return place == sessions.end() || place->second->HasEnded() ? nullptr : place->second;
    }
    bool IsRunning(const TChessProblem& problem) const {
        const std::lock_guard lock(collection.lock);
        return RunningSession(problem) != nullptr;
    }

    // Those that have ended, to be destroyed outside the lock.
    std::vector<std::shared_ptr<CSolveSession>> TakeEnded() {
        std::vector<std::shared_ptr<CSolveSession>> ended;
        for (auto place = sessions.begin(); place != sessions.end();) {
            if (!place->second->HasEnded()) {
                ++place;
                continue;
            }
            ended.push_back(std::move(place->second));
            place = sessions.erase(place);
        }
        return ended;
    }

    // The reason why the problem cannot be started now, told in `title` and the result; empty if it
    // can. The sets are entered then, the stop slot is free, and the session stands in the map: a
    // stop that finds it there must not be wiped out by its start. Takes the lock.
    std::string
    Enter(TChessProblem& problem, const std::shared_ptr<CSolveSession>& session, EMessage* title) {
        std::vector<std::shared_ptr<CSolveSession>> ended;
        const std::lock_guard lock(collection.lock);
        ended = TakeEnded();
        *title = EMessage::kTitleSessionInformation;
        if (problemsBeingSolved.contains(problem.number) ||
            problemsWithPendingThreads.contains(problem.number))
            return Text(EMessage::kSolvePending);
        if (problemsWithPendingThreads.size() >= kMaxSolvesAtOnce) {
            *title = EMessage::kTitleWarning;
            return Text(EMessage::kTooManyProblems);
        }
        problemsBeingSolved.insert(problem.number);
        problemsWithPendingThreads.insert(problem.number);
        RunStateOf(problem).idle = false;
        SetStop(problem, kStopNone);
        sessions[&problem] = session;
        return {};
    }

    std::string RefusalOfType(const TChessProblem& problem) const {
        const std::string number = std::to_string(problem.number);
        if (problem.type == kSelfmate)
            return Text(EMessage::kSelfmateRefused, {number});
        return problem.type == kHelpmate ? Text(EMessage::kHelpmateRefused, {number})
                                         : std::string();
    }

    // The state of a session that is about to begin.
    void PrepareMain(TChessProblem& problem, bool allSolutions, const TStartRequest& request) {
        TRunState& state = RunStateOf(problem);
        state.solveMode = allSolutions ? kSolveAll : kSolveFirst;
        state.runThreads = static_cast<u8>(ThreadsOfRun(problem, request.threads));
        if (!g_options.ClearRegisterOnStartSolving || state.solved == nullptr)
            return;
        SetStatus(Text(EMessage::kRemovingTemporaryDataAtStart));
        state.solved->Clear(0, false);
    }

    // The pause is cleared first, so that no thread goes on waiting. With the lock, so that it is this
    // session that is stopped, and not the next one of its problem.
    static void RequestStop(CSolveSession& session) {
        session.NoteStop();
        ChangeStop(session.Problem(), kStopPause, kStopNone);
        SetStop(session.Problem(), kStopAll);
    }
};

CSolveControl::CSolveControl(TProblemCollection& collection,
                             const TSessionServices& services,
                             const TSessionSettings& settings)
    : m_state(std::make_unique<TState>(collection, services, settings)) {}

CSolveControl::~CSolveControl() {
    std::map<const TChessProblem*, std::shared_ptr<CSolveSession>> sessions;
    std::vector<std::shared_ptr<CSolveSession>> ended;
    {
        const std::lock_guard lock(m_state->collection.lock);
        ended = m_state->TakeEnded();
        sessions.swap(m_state->sessions);
        for (const auto& [problem, session] : sessions)
            m_state->RequestStop(*session);
    }
    sessions.clear();  // waits for each
}

void CSolveControl::Display(TChessProblem* problem) {
    m_state->displayed = problem;
}

TChessProblem* CSolveControl::Displayed() const {
    return m_state->displayed;
}

TSessionSettings& CSolveControl::Settings() {
    return m_state->settings;
}

std::string CSolveControl::StatusText() const {
    const std::lock_guard lock(m_state->statusLock);
    return m_state->statusText;
}

int CSolveControl::RunningCount() const {
    const std::lock_guard lock(m_state->collection.lock);
    return static_cast<int>(m_state->problemsWithPendingThreads.size());
}

bool CSolveControl::StartSolve(TChessProblem& problem,
                               bool allSolutions,
                               const TStartRequest& request) {
    // 1. What cannot be started
    if (m_state->IsRunning(problem)) {
        m_state->Tell(EMessage::kTitleSessionInformation, m_state->Text(EMessage::kSolvePending));
        return false;
    }
    if (const std::string refusal = m_state->RefusalOfType(problem); !refusal.empty()) {
        m_state->Tell(EMessage::kTitleSessionInformation, refusal);
        return false;
    }
    const std::optional<EWork> work = WorkAtCurrentNode(problem);
    if (!work)
        return false;
    auto session = std::make_shared<CSolveSession>(*m_state, problem, *work, allSolutions, request);
    EMessage title = EMessage::kCount;
    if (const std::string refusal = m_state->Enter(problem, session, &title); !refusal.empty()) {
        if (title == EMessage::kTitleWarning) {
            TEngineOutcome& outcome = RunStateOf(problem).outcome;
            outcome = {};
            outcome.end = EEngineEnd::kTooMany;
        }
        m_state->Tell(title, refusal);
        return false;
    }

    // 2. From here on the problem belongs to the session
    if (*work == EWork::kMainSolve)
        m_state->PrepareMain(problem, allSolutions, request);
    try {
        session->Start();
    } catch (const ChessException& fault) {
        m_state->Tell(EMessage::kTitleError, fault.Text(m_state->settings.language));
        return false;
    }
    return true;
}

void CSolveControl::StopSolve(TChessProblem& problem) {
    std::shared_ptr<CSolveSession> session;  // may be the last: destroyed outside the lock
    std::unique_lock lock(m_state->collection.lock);
    session = m_state->RunningSession(problem);
    if (session == nullptr)
        return;
    m_state->RequestStop(*session);
    while (!session->HasEnded()) {
        lock.unlock();
        const bool goesOn = m_state->services.repaint->DispatchMessages();
        lock.lock();
        if (!goesOn)
            break;
        m_state->sessionEnded.wait_for(
            lock, kDispatchPause, [&session] { return session->HasEnded(); });
    }
    const bool isPending = !session->HasEnded();
    if (isPending)  // else the number may belong to the next session already
        m_state->problemsBeingSolved.erase(problem.number);
    lock.unlock();
    if (isPending)
        m_state->SetStatus(m_state->Text(EMessage::kStopPending));
}

void CSolveControl::PauseSolve(TChessProblem& problem) {
    const std::lock_guard lock(m_state->collection.lock);
    if (m_state->RunningSession(problem) != nullptr)
        ChangeStop(problem, kStopNone, kStopPause);
}

void CSolveControl::ResumeSolve(TChessProblem& problem) {
    const std::lock_guard lock(m_state->collection.lock);
    ChangeStop(problem, kStopPause, kStopNone);
}

bool CSolveControl::IsRunning(const TChessProblem& problem) const {
    return m_state->IsRunning(problem);
}

void CSolveControl::WaitUntilIdle(TChessProblem& problem) {
    std::shared_ptr<CSolveSession> session;  // may be the last: destroyed outside the lock
    std::unique_lock lock(m_state->collection.lock);
    const auto place = m_state->sessions.find(&problem);
    if (place == m_state->sessions.end())
        return;
    session = place->second;
    m_state->sessionEnded.wait(lock, [&session] { return session->HasEnded(); });
    // Another waiter may have taken it away, and the next session of the problem may stand there.
    const auto now = m_state->sessions.find(&problem);
    if (now != m_state->sessions.end() && now->second == session)
        m_state->sessions.erase(now);
}

}  // namespace quillmere

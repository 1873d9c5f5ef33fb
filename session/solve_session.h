// One session: the work of one Start command on a thread of its own.
#pragma once

#include "core/platform/thread.h"
#include "session/session_host.h"
#include "session/session_progress.h"

#include <atomic>
#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace quillmere {

class CTimeLimit;

enum class EWork {
    kMainSolve,  // the root of the problem
    kWhiteMove,  // white to move inside the line
    kDefence,    // black to move inside the line
};

class CSolveSession {
public:
    CSolveSession(TSessionHost& host,
                  TChessProblem& problem,
                  EWork work,
                  bool allSolutions,
                  const TStartRequest& request);
    CSolveSession(const CSolveSession&) = delete;
    CSolveSession& operator=(const CSolveSession&) = delete;

    // Copies the played line, which may be changed from then on, and starts the thread. Throws ChessException if it cannot be started; the session is over then.
    void Start();
    // From now on nothing is told of the progress, and the end counts as a stop by the user.
    void NoteStop() { m_isStopping.store(true, std::memory_order_relaxed); }
    TChessProblem& Problem() const { return m_problem; }
    // Under the lock of the collection. The thread may still be about to leave; the destructor waits.
    bool HasEnded() const { return m_hasEnded; }

private:
    void Run();
    void RunMain();
    TEngineOutcome RunEngineWatched();
    void TakeResults(TEngineOutcome outcome);
    void ShowMainEnd();
    void PlayFirstKey();
    void PlayWholeLine();
    // The move for the current node, found by an analysis that tells nothing; the null move for none.
    TMove MoveForCurrentNode();
    TAnalysisRequest MakeAnalysisRequest(CSessionProgress& progress) const;
    void RunWhiteMove();
    void RunDefence();
    void TellFault(const std::string& text, std::exception_ptr fault);
    void LeaveSolvingSet();
    void End();

    bool IsShown() const { return m_host.displayed.load() == &m_problem; }
    bool WasStopped() const;
    bool IsStoppedBy(const CTimeLimit& limit) const;
    double Seconds() const;
    void TellAnalysis(EMessage title, const std::string& text, const std::string& note);

    TSessionHost& m_host;
    TChessProblem& m_problem;
    const EWork m_work;
    const bool m_allSolutions;
    const TStartRequest m_request;
    // Inside the line: the moves of it, and its end, of which the board alone is read. The moves may be
    // taken back meanwhile.
    std::vector<TMove> m_line;
    TChessboard m_lineEnd{};
    std::atomic<bool> m_isStopping{false};
    bool m_hasEnded = false;
    std::unique_ptr<CThreadWithStack> m_thread;  // last: it uses all of the above
};

}  // namespace quillmere

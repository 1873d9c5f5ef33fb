#include "cli/task.h"

#include "cli/arguments.h"
#include "core/chess_exception.h"
#include "core/colour_swap.h"
#include "core/fen.h"
#include "core/platform/interrupt.h"
#include "core/platform/thread.h"
#include "core/platform/tick_count.h"
#include "core/thread_context.h"
#include "search/progress_line.h"
#include "search/proof_pass.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace quillmere {
namespace {

using TClock = std::chrono::steady_clock;

u64 MillisecondsSince(TClock::time_point start) {
    return static_cast<u64>(
        std::chrono::duration_cast<std::chrono::milliseconds>(TClock::now() - start).count());
}

// What the searching thread last told; relaxed, since it is only shown.
class CProgressRecord : public ISolveObserver {
public:
    void OnFirstMove(TMove move, int number, int count) override {
        // One store, so that the parts fit together: from, to, promotion, number, count.
        const u64 packed = static_cast<u64>(move.from) | static_cast<u64>(move.to) << 8 |
                           static_cast<u64>(move.Promotion()) << 16 |
                           static_cast<u64>(static_cast<u16>(number)) << 24 |
                           static_cast<u64>(static_cast<u16>(count)) << 40;
        m_packed.store(packed, std::memory_order_relaxed);
    }
    void OnAfterKeys() override { m_isAfterKeys.store(true, std::memory_order_relaxed); }

    TTaskProgress Read() const {
        const u64 packed = m_packed.load(std::memory_order_relaxed);
        TTaskProgress progress;
        progress.move =
            MakeMove(packed & 0xff, packed >> 8 & 0xff, static_cast<u8>(packed >> 16 & 0xff));
        progress.number = static_cast<int>(packed >> 24 & 0xffff);
        progress.count = static_cast<int>(packed >> 40 & 0xffff);
        progress.isAfterKeys = m_isAfterKeys.load(std::memory_order_relaxed);
        return progress;
    }

private:
    std::atomic<u64> m_packed{0};
    std::atomic<bool> m_isAfterKeys{false};
};

// The line of the search that was looked at last. A searching thread writes it a few times a second;
// one that finds another at it goes on without.
class CLineKeeper : public ISearchProgress {
public:
    explicit CLineKeeper(const CProgressRecord& record) : m_record(record) {}

    void OnPeriodicCheck(const TChessboard& node) override {
        const u64 now = TickCount();
        if (now < m_next.load(std::memory_order_relaxed))
            return;
        const std::unique_lock lock(m_mutex, std::try_to_lock);
        if (!lock.owns_lock())
            return;
        m_next.store(now + kMilliseconds, std::memory_order_relaxed);
        const TTaskProgress progress = m_record.Read();
        TProgressFigures figures;
        figures.movesDone = std::max(progress.number - 1, 0);
        figures.moveCount = progress.count;
        figures.nodes = node.m_searchContext->nodeCount.load(std::memory_order_relaxed);
        if (node.m_searchContext->tempRegister != nullptr) {
            figures.registerSize = node.m_searchContext->tempRegister->GetElementsIn();
            figures.registerDelta = i64{figures.registerSize} - m_lastSize;
            m_lastSize = figures.registerSize;
        }
        m_line = ProgressLine(node, figures);
    }

    std::string Line() const {
        const std::lock_guard lock(m_mutex);
        return m_line;
    }

private:
    static constexpr u64 kMilliseconds = 200;

    const CProgressRecord& m_record;
    std::atomic<u64> m_next{0};
    // Locking: guards the two below; a leaf.
    mutable std::mutex m_mutex;
    std::string m_line;
    i64 m_lastSize = 0;
};

// Looks at the clock and at Ctrl-C while the search runs, and stops it.
class CWatcher {
public:
    CWatcher(TSearchContext& context,
             const CProgressRecord& record,
             const CLineKeeper& lines,
             const TAggregatedTemporaryChessboardRegister* solved,
             bool isSwapped,
             double seconds,
             const TProgressCallback& progress)
        : m_context(context),
          m_record(record),
          m_lines(lines),
          m_solved(solved),
          m_isSwapped(isSwapped),
          m_seconds(seconds),
          m_progress(progress),
          m_thread([this] { Watch(); }) {}
    ~CWatcher() {
        {
            const std::lock_guard lock(m_mutex);
            m_isDone = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    CWatcher(const CWatcher&) = delete;
    CWatcher& operator=(const CWatcher&) = delete;

    bool IsTimeUp() const { return m_isTimeUp.load(std::memory_order_relaxed); }
    TClock::time_point Start() const { return m_start; }

private:
    static constexpr auto kLook = std::chrono::milliseconds(20);
    static constexpr u64 kTellMilliseconds = 250;

    void Watch() {
        u64 nextTelling = kTellMilliseconds;
        std::unique_lock lock(m_mutex);
        while (!m_wake.wait_for(lock, NextLook(), [this] { return m_isDone; })) {
            const u64 elapsed = MillisecondsSince(m_start);
            if (m_seconds > 0 && static_cast<double>(elapsed) >= m_seconds * 1000)
                m_isTimeUp.store(true, std::memory_order_relaxed);
            if (IsTimeUp() || WasInterrupted())
                SetStop(m_context, kStopAll);
            else if (m_progress && elapsed >= nextTelling) {
                Tell(elapsed);
                nextTelling = elapsed + kTellMilliseconds;
            }
        }
    }

    TClock::duration NextLook() const {
        if (m_seconds <= 0 || IsTimeUp())
            return kLook;
        const auto limit =
            std::chrono::duration_cast<TClock::duration>(std::chrono::duration<double>(m_seconds));
        const auto left = m_start + limit - TClock::now();
        return std::clamp<TClock::duration>(left, std::chrono::milliseconds(1), kLook);
    }

    void Tell(u64 elapsed) const {
        TTaskProgress progress = m_record.Read();
        // The line is in the squares of the search.
        if (m_isSwapped)
            progress.move = SwapMove(progress.move);
        else
            progress.line = m_lines.Line();
        progress.nodes = m_context.nodeCount.load(std::memory_order_relaxed);
        progress.milliseconds = elapsed;
        if (m_solved != nullptr)
            progress.registerFigures = m_solved->Figures();
        m_progress(progress);
    }

    TSearchContext& m_context;
    const CProgressRecord& m_record;
    const CLineKeeper& m_lines;
    const TAggregatedTemporaryChessboardRegister* m_solved;  // null for none
    bool m_isSwapped;
    double m_seconds;
    const TProgressCallback& m_progress;
    TClock::time_point m_start = TClock::now();
    std::atomic<bool> m_isTimeUp{false};
    // Locking: guards m_isDone; a leaf.
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isDone = false;
    std::thread m_thread;  // last: it uses all of the above
};

// The search was stopped by the clock, which is a limit; it only knows of a stop.
void TellLimit(TSolveResult& result) {
    result.verdict = ESolveVerdict::kLimit;
    if (!result.passes.empty())
        result.passes.back().verdict = ESolveVerdict::kLimit;
}

void SwapResult(TSolveResult& result) {
    for (std::vector<TMove>* moves :
         {&result.keys, &result.bestDefences, &result.defences, &result.mainLine}) {
        for (TMove& move : *moves)
            move = SwapMove(move);
    }
    for (TTry& attempt : result.tries)
        attempt = {SwapMove(attempt.move), SwapMove(attempt.refutation)};
}

}  // namespace

TPosition ReadPosition(const std::string& fen) {
    TPosition position;
    InitBoard(position.board);
    position.side = CheckFEN(fen);
    if (!SetFromFENCode(
            position.board, fen.c_str(), &position.castlingDenied, &position.enPassantGiven))
        throw ChessException(EMessage::kInternalFault, {fen});
    return position;
}

std::string WritePosition(const TPosition& position) {
    TChessboard board = position.board;
    TThreadContext thread(2);
    board.m_threadContext = &thread;
    board.m_nMoves = board.m_nRootMoves = position.IsBlackToMove() ? 2 : 1;
    thread.rootNode = &board;
    return GetFENCode(board);
}

TTask MakeTask(const TPosition& position, int halfMoves) {
    TTask task;
    task.position = position;
    task.halfMoves = static_cast<u16>(halfMoves);
    if (task.IsDefence() && !position.IsBlackToMove())
        throw CUsageException(EMessage::kUsageEvenForWhite, {std::to_string(halfMoves)});
    CheckSideNotToMove(position.board, position.IsBlackToMove());
    task.isSwapped = position.IsBlackToMove() && !task.IsDefence();
    task.board = task.isSwapped ? SwapColours(position.board) : position.board;
    return task;
}

TTaskOutcome
RunTask(const TTask& task, const TTaskRequest& request, const TProgressCallback& progress) {
    TSolveRequest solve;
    solve.halfMoves = task.halfMoves;
    solve.wantAllKeys = request.wantAllKeys;
    solve.wantTries = request.wantTries;
    solve.wantMainLine = request.wantMainLine;
    solve.nodeLimit = request.nodes;
    solve.movesLogs = request.movesLogs;
    solve.clearRegister = request.clearRegister;
    solve.threads = request.threads;
    solve.quickMateDepth = request.quickMateDepth;
    solve.heuristics = request.heuristics;
    solve.selectsHeuristics = request.selectsHeuristics;
    if (request.selectsHeuristics)
        solve.proofMoves = ProofMovesOf(solve.halfMoves);

    TTaskOutcome outcome;
    TSearchContext context;
    CProgressRecord record;
    CLineKeeper lines(record);
    if (progress)
        context.progress = &lines;
    TAggregatedTemporaryChessboardRegister* solved =
        request.solved == nullptr ? nullptr : request.solved->ForHalfMoves(task.halfMoves);
    context.tempRegister = solved;
    context.relaxationLog = request.relaxationLog;
    context.mayRelaxByTime = request.mayRelaxByTime;
    {
        const CWatcher watcher(
            context, record, lines, solved, task.isSwapped, request.seconds, progress);
        RunOnThreadWithStack(SolveStackBytes(task.halfMoves),
                             [&] { outcome.result = Solve(task.board, solve, context, &record); });
        outcome.milliseconds = MillisecondsSince(watcher.Start());
        if (outcome.result.verdict == ESolveVerdict::kStopped && !WasInterrupted() &&
            watcher.IsTimeUp())
            TellLimit(outcome.result);
    }
    outcome.isInterrupted = WasInterrupted();
    outcome.wereAllAsked = request.wantAllKeys || request.wantTries;
    if (solved != nullptr) {
        if (const u32 incoherent = solved->IncoherentElements(); incoherent != 0)
            throw ChessException(EMessage::kRegisterIncoherent, {std::to_string(incoherent)});
        outcome.registerFigures = solved->Figures();
    }
    if (task.isSwapped)
        SwapResult(outcome.result);
    return outcome;
}

std::vector<TWrittenMove> KeyLine(const TTask& task, const TSolveResult& result, std::size_t key) {
    std::vector<TMove> moves = {result.keys[key]};
    if (key < result.bestDefences.size() && !result.bestDefences[key].IsNull())
        moves.push_back(result.bestDefences[key]);
    return WriteLine(task.position.board, task.position.IsBlackToMove(), moves);
}

std::string_view TrialWord(ETrialOutcome outcome) {
    switch (outcome) {
    case ETrialOutcome::kMateSeen:
        return "mate";
    case ETrialOutcome::kFailed:
        return "failed";
    case ETrialOutcome::kProvedNone:
        return "no mate";
    case ETrialOutcome::kLimit:
        return "limit";
    case ETrialOutcome::kStopped:
        break;
    }
    return "stopped";
}

std::string_view VerdictWord(ESolveVerdict verdict) {
    switch (verdict) {
    case ESolveVerdict::kProvedMate:
        return "mate";
    case ESolveVerdict::kProvedNoMate:
        return "no mate";
    case ESolveVerdict::kDoubt:
        return "doubtful";
    case ESolveVerdict::kStopped:
        return "stopped";
    case ESolveVerdict::kLimit:
        return "limit";
    }
    return "doubtful";
}

}  // namespace quillmere

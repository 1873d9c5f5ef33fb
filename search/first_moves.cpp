#include "search/first_moves.h"

#include "core/thread_context.h"
#include "heuristics/catalogue.h"
#include "search/solve.h"

#include <algorithm>
#include <cassert>

namespace quillmere {

CFirstMoves::CFirstMoves(const TMoveList& list, const TWish& wish, ISolveObserver& observer)
    : m_list(list), m_wish(wish), m_observer(observer), m_undecided(list.count) {
    for (const TMove move : m_list) {
        TEntry entry;
        entry.move = move;
        m_entries.push_back(entry);
    }
    m_isDone.store(m_entries.empty(), std::memory_order_relaxed);
}

int CFirstMoves::SolutionCount() const {
    const std::lock_guard lock(m_mutex);
    return m_solutions;
}

void CFirstMoves::EndAll() {
    const std::lock_guard lock(m_mutex);
    CallOffAll();
}

int CFirstMoves::AddWorker(TThreadContext& thread) {
    const std::lock_guard lock(m_mutex);
    TWorker worker;
    worker.thread = &thread;
    worker.pass = m_leadPasses - 1;
    m_workers.push_back(worker);
    return static_cast<int>(m_workers.size()) - 1;
}

void CFirstMoves::RemoveWorker(int worker) {
    const std::lock_guard lock(m_mutex);
    m_workers[worker].thread = nullptr;
}

void CFirstMoves::CloseLeadPass() {
    const std::lock_guard lock(m_mutex);
    m_leadPasses = static_cast<int>(m_passes.size());
}

void CFirstMoves::EnterPass(int worker,
                            const TChessboard& root,
                            const std::string& name,
                            bool isUnderWord) {
    const std::lock_guard lock(m_mutex);
    const auto pass = static_cast<std::size_t>(++m_workers[worker].pass);
    if (pass < m_passes.size()) {
        assert(m_passes[pass].Heur == root.Heur && m_passes[pass].name == name);
        return;
    }
    TPassRecord record;
    record.name = name;
    record.isUnderWord = isUnderWord;
    record.pass = root.m_pass;
    record.Heur = root.Heur;
    record.settings = root.m_threadContext->heuristics;
    record.heuristics = HeuristicsText(root);
    m_passes.push_back(record);
}

bool CFirstMoves::LeavePass(int worker, u64 nodes, u64 madeMoves, u64 milliseconds) {
    const std::lock_guard lock(m_mutex);
    const int pass = m_workers[worker].pass;
    TPassRecord& record = m_passes[pass];
    record.nodes += nodes;
    record.madeMoves += madeMoves;
    record.milliseconds = std::max(record.milliseconds, milliseconds);
    for (std::size_t i = 0; i < m_workers.size(); ++i) {
        const bool isBehind = m_workers[i].thread != nullptr && m_workers[i].pass <= pass;
        if (isBehind && static_cast<int>(i) != worker)
            return false;
    }
    return true;
}

bool CFirstMoves::WantsRelaxation(int worker, bool stopsOnFirstSolution) {
    const std::lock_guard lock(m_mutex);
    const bool isWanted = m_solutions == 0 || (m_wish.solutions == 0 && !stopsOnFirstSolution);
    return m_relaxations.try_emplace(m_workers[worker].pass, isWanted).first->second;
}

bool CFirstMoves::Claim(int worker, TMove move) {
    const std::lock_guard lock(m_mutex);
    TEntry& entry = EntryOf(move);
    const int pass = m_workers[worker].pass;
    if (IsDone() || entry.isDecided || entry.claimedPass >= pass)
        return false;
    entry.claimedPass = pass;
    const auto index = static_cast<int>(&entry - m_entries.data());
    m_workers[worker].entry = index;
    m_observer.OnFirstMove(move, index + 1, m_list.count);
    return true;
}

bool CFirstMoves::Report(int worker, TMove move, TVerdict verdict, bool isComplete) {
    const std::lock_guard lock(m_mutex);
    TWorker& own = m_workers[worker];
    own.entry = -1;
    if (own.isCalledOff) {
        own.isCalledOff = false;
        // What this thread latched was the call; a stop from outside is seen again at the next move.
        if (!IsDone())
            own.thread->stopLevel.store(kThreadRuns, std::memory_order_relaxed);
        return false;
    }
    if (own.thread->stopLevel.load(std::memory_order_relaxed) >= kThreadStops)
        return false;
    TEntry& entry = EntryOf(move);
    assert(!entry.isDecided);
    if (verdict == kMate || (verdict == kNoMate && isComplete))
        DecideEntry(worker, entry, verdict == kMate);
    else
        entry.isDoubtful = true;
    return true;
}

void CFirstMoves::Decide(int worker, TMove move, TVerdict verdict) {
    assert(verdict == kMate || verdict == kNoMate);
    const std::lock_guard lock(m_mutex);
    TEntry& entry = EntryOf(move);
    if (!entry.isDecided)
        DecideEntry(worker, entry, verdict == kMate);
}

std::vector<CFirstMoves::TDecision> CFirstMoves::Decisions() const {
    const std::lock_guard lock(m_mutex);
    return {m_entries.begin(), m_entries.end()};
}

std::vector<TMove> CFirstMoves::DecidedMoves() const {
    const std::lock_guard lock(m_mutex);
    std::vector<TMove> moves;
    for (const TEntry& entry : m_entries) {
        if (entry.isDecided)
            moves.push_back(entry.move);
    }
    return moves;
}

std::vector<TPassRecord> CFirstMoves::Passes() const {
    const std::lock_guard lock(m_mutex);
    std::vector<TPassRecord> passes = m_passes;
    const auto isSolvedBy = [&](int pass) {
        return std::any_of(m_entries.begin(), m_entries.end(), [&](const TEntry& entry) {
            return entry.isDecided && entry.isMate && entry.passIndex <= pass;
        });
    };
    // Every move was decided by then; for black a defence that holds is enough.
    const auto isDecidedBy = [&](int pass) {
        const auto isDecided = [pass](const TEntry& entry) {
            return entry.isDecided && entry.passIndex <= pass;
        };
        return std::all_of(m_entries.begin(), m_entries.end(), isDecided) ||
               std::any_of(m_entries.begin(), m_entries.end(), [&](const TEntry& entry) {
                   return !m_wish.isWhite && IsSolution(entry) && isDecided(entry);
               });
    };
    // White has a mate from the pass on that finds the first; black is mated in the one that refutes
    // the last of its moves.
    const bool areAllMates = std::all_of(
        m_entries.begin(), m_entries.end(), [](const TEntry& entry) { return entry.isMate; });
    for (std::size_t i = 0; i < passes.size(); ++i) {
        const bool isLast = i + 1 == passes.size();
        const bool isMate = m_wish.isWhite ? isSolvedBy(static_cast<int>(i))
                                           : isLast && areAllMates && m_undecided == 0;
        if (isMate)
            passes[i].verdict = ESolveVerdict::kProvedMate;
        else if (isDecidedBy(static_cast<int>(i)))
            passes[i].verdict = ESolveVerdict::kProvedNoMate;
    }
    return passes;
}

CFirstMoves::TEntry& CFirstMoves::EntryOf(TMove move) {
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [move](const TEntry& e) {
        return MovesEqual(e.move, move);
    });
    assert(entry != m_entries.end());
    return *entry;
}

bool CFirstMoves::IsSolution(const TEntry& entry) const {
    return entry.isDecided && entry.isMate == m_wish.isWhite;
}

void CFirstMoves::DecideEntry(int worker, TEntry& entry, bool isMate) {
    entry.isDecided = true;
    entry.isMate = isMate;
    entry.isDoubtful = false;
    entry.passIndex = m_workers[worker].pass;
    --m_undecided;
    if (IsSolution(entry)) {
        ++m_solutions;
        m_observer.OnKey(entry.move);
    }
    const auto index = static_cast<int>(&entry - m_entries.data());
    for (TWorker& other : m_workers) {
        if (other.entry == index)
            CallOff(other);
    }
    const bool isEnough = m_wish.solutions != 0 && m_solutions >= m_wish.solutions;
    if (isEnough || m_undecided == 0)
        CallOffAll();
}

void CFirstMoves::CallOff(TWorker& worker) {
    if (worker.thread == nullptr || worker.entry < 0)
        return;
    worker.isCalledOff = true;
    worker.thread->stopLevel.store(kThreadStops, std::memory_order_relaxed);
}

void CFirstMoves::CallOffAll() {
    m_isDone.store(true, std::memory_order_release);
    for (TWorker& worker : m_workers)
        CallOff(worker);
}

}  // namespace quillmere

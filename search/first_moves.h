// The first moves of a request, shared by the threads that decide them.
//
// Each thread runs the passes of the request (search/root.h) by itself. In each pass it claims one
// first move after the other, so that no two threads search the same move in the same pass, and
// reports a verdict. A move is decided by a mate in any pass, or by "no mate" in a pass that left
// nothing out; until then every later pass takes it up again. Threads do not wait for each other: one
// that finds all moves of its pass claimed goes on to the next pass, and may then decide a move that
// another still searches under a stronger word; that search is called off.
//
// Locking: one mutex guards everything; a leaf, but for the observer, which is called under it and
// must not come back here. IsDone() is an atomic that is polled without it: a stale value costs one
// more move.
#pragma once

#include "core/chessboard.h"
#include "search/pass_record.h"

#include <atomic>
#include <map>
#include <mutex>
#include <vector>

namespace quillmere {

class ISolveObserver;

class CFirstMoves {
public:
    struct TWish {
        bool isWhite = true;  // white's moves are asked for mates, black's for defences that hold
        // Solutions after which the work ends; 0 for all of them.
        int solutions = 1;
    };

    // A move as it came out.
    struct TDecision {
        TMove move{};
        bool isDecided = false;
        bool isMate = false;
        bool isDoubtful = false;  // of an undecided move: a verdict was doubtful, or none was given
        int passIndex = -1;       // in Passes(), of the pass that decided it
    };

    // `list`: the legal moves in the order in which they are tried. The observer must outlive this.
    CFirstMoves(const TMoveList& list, const TWish& wish, ISolveObserver& observer);
    CFirstMoves(const CFirstMoves&) = delete;
    CFirstMoves& operator=(const CFirstMoves&) = delete;

    const TMoveList& List() const { return m_list; }

    // Nothing is left to do: enough solutions are known, or every move is decided, or EndAll().
    bool IsDone() const { return m_isDone.load(std::memory_order_acquire); }
    int SolutionCount() const;
    // Calls off every search. Not a stop from outside: the threads' own stop levels say so.
    void EndAll();

    // Threads

    // A thread takes part from here to RemoveWorker. Returns its number.
    int AddWorker(TThreadContext& thread);
    void RemoveWorker(int worker);

    // Passes, numbered from 0 as each thread meets them; all threads meet the same.

    // The thread is in its next pass; `root` and its thread carry word and settings. isUnderWord as in
    // the record.
    void EnterPass(int worker,
                   const TChessboard& root,
                   const std::string& name,
                   bool isUnderWord = true);
    // A pass that stood before the threads' own is over: whoever is added from now on begins behind it.
    void CloseLeadPass();
    // Counters of the pass go to its record. True if no thread is in this pass or before it any more.
    bool LeavePass(int worker, u64 nodes, u64 madeMoves, u64 milliseconds);

    // Is a weaker word wanted after the thread's pass: no solution is known, or all are wanted and
    // the first of them does not end the relaxation? The first thread to ask behind a pass settles
    // it for all: a solution may be found between two askings, and all must meet the same passes.
    bool WantsRelaxation(int worker, bool stopsOnFirstSolution);

    // The move may be searched by this thread in its pass. Tells the observer.
    bool Claim(int worker, TMove move);
    // The verdict of a claimed move, from a pass that left nothing out if isComplete. False if the
    // search was called off or stopped: the verdict is void then.
    bool Report(int worker, TMove move, TVerdict verdict, bool isComplete);
    // Decided without a search.
    void Decide(int worker, TMove move, TVerdict verdict);

    std::vector<TMove> DecidedMoves() const;

    // Results, after the threads have ended

    std::vector<TDecision> Decisions() const;
    // The verdicts of the passes are set, but for a stop, which the caller knows of.
    std::vector<TPassRecord> Passes() const;

private:
    struct TEntry : TDecision {
        int claimedPass = -1;
    };
    struct TWorker {
        TThreadContext* thread = nullptr;
        int pass = -1;
        int entry = -1;  // in m_entries, being searched
        bool isCalledOff = false;
    };

    TEntry& EntryOf(TMove move);
    bool IsSolution(const TEntry& entry) const;
    void DecideEntry(int worker, TEntry& entry, bool isMate);
    void CallOff(TWorker& worker);
    void CallOffAll();

    const TMoveList m_list;
    const TWish m_wish;
    ISolveObserver& m_observer;
    std::atomic<bool> m_isDone{false};

    mutable std::mutex m_mutex;
    std::vector<TEntry> m_entries;
    std::vector<TWorker> m_workers;
    std::vector<TPassRecord> m_passes;
    std::map<int, bool> m_relaxations;  // by pass: a weaker word is wanted behind it
    int m_leadPasses = 0;
    int m_solutions = 0;
    int m_undecided = 0;
};

}  // namespace quillmere

// Each thread goes through the passes by itself and claims first moves as it finds them free; nobody
// waits at the end of a pass. That costs no idle time where one first move takes longer than all
// others, and it is sound because a verdict carries its own licence: a mate counts from any pass, "no
// mate" only from one that left nothing out. All threads meet the same words in the same order, since
// the ladder hangs on the root alone, and whether to relax is settled once for all (CFirstMoves).
#include "search/root_passes.h"

#include "core/platform/tick_count.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/relaxation.h"
#include "registers/aggregated_register.h"
#include "search/first_move_search.h"
#include "search/moves_log.h"
#include "search/one_colour.h"
#include "search/pause.h"
#include "search/scan_pass.h"

#include <cassert>
#include <string>

namespace quillmere {
namespace {

// The register takes part in tasks that are long enough.
TAggregatedTemporaryChessboardRegister* RegisterOf(const TChessboard& root) {
    const TSearchContext& context = *root.m_searchContext;
    return root.m_nRootMoves >= context.registerRoot ? context.tempRegister : nullptr;
}

// The pass of one-colour play, before all others.
const std::string kOneColourPassName = "1o";

std::string NameOfPass(const TChessboard& root) {
    constexpr int kLetters = 26;
    if (root.m_pass != kPassHeuristics)
        return std::to_string(static_cast<int>(root.m_pass));
    const int count = root.m_threadContext->heuristics.RelaxationCount;
    const std::string letter(1, static_cast<char>('a' + count % kLetters));
    return "1" + letter + (count < kLetters ? "" : std::to_string(count / kLetters));
}

// One thread's way through the passes.
class CPasses {
public:
    CPasses(TChessboard& root, CFirstMoves& moves, const TRootRequest& request)
        : m_root(root),
          m_thread(*root.m_threadContext),
          m_moves(moves),
          m_request(request),
          m_worker(moves.AddWorker(m_thread)),
          m_order(moves.List()) {
        // Such a mode is entered here, behind the proof, and by nobody else.
        assert(root.OneColourMode() == kOneColourOff);
    }
    ~CPasses() { m_moves.RemoveWorker(m_worker); }
    CPasses(const CPasses&) = delete;
    CPasses& operator=(const CPasses&) = delete;

    void Run() {
        if (IsOneColourRoot(m_root) && !IsOver()) {
            m_root.m_pass = kPassHeuristics;
            RunPass(EKind::kOneColour);
        }
        int pass = m_request.startsAtPassOne ? kPassHeuristics : kPassScan;
        while (pass <= kPassComplete && !IsOver()) {
            // Step 1. Weaken the word, or give it up.
            if (pass == kPassComplete && m_root.Heur != 0 && Relax())
                pass = kPassHeuristics;
            // Step 2. Without a word there is one pass.
            if (m_root.Heur == 0)
                pass = kPassComplete;
            if (pass == kPassComplete && !m_thread.heuristics.RunPassWithoutHeuristics)
                return;
            // Step 3. Search, or only look.
            m_root.m_pass = static_cast<u8>(pass);
            RunPass(pass == kPassScan ? EKind::kScan : EKind::kSearch);
            ++pass;
        }
    }

private:
    enum class EKind {
        kOneColour,  // on the board without black's bishop; what mates there is proved on the whole one
        kScan,       // only what is known
        kSearch,
    };

    bool IsOver() const { return m_moves.IsDone() || IsStopped(m_root); }

    // False: no weaker word is left, and there is none now.
    bool Relax() {
        if (m_root.m_nRootMoves > 1 &&
            m_moves.WantsRelaxation(m_worker, m_request.stopsRelaxingOnFirstSolution) &&
            TryRelaxSpecialHeuristics(m_root) != 0)
            return true;
        SetHeur(m_root, 0);
        return false;
    }

    void RunPass(EKind kind) {
        const u64 startTick = TickCount();
        const u64 startNodes = NodesOf(m_root);
        const u64 startMoves = m_thread.madeMoves;
        m_thread.heuristics.ActiveHeur = m_root.Heur;
        if (m_thread.movesLog != nullptr)
            m_thread.movesLog->StartPass(
                static_cast<char>('a' + m_thread.heuristics.RelaxationCount));
        m_moves.EnterPass(m_worker,
                          m_root,
                          kind == EKind::kOneColour ? kOneColourPassName : NameOfPass(m_root),
                          kind == EKind::kSearch);
        TryFirstMoves(kind);
        const bool isLast = m_moves.LeavePass(m_worker,
                                              NodesOf(m_root) - startNodes,
                                              m_thread.madeMoves - startMoves,
                                              TickCount() - startTick);
        // What was doubtful under this word is not asked for again.
        if (isLast && m_root.Heur != 0 && RegisterOf(m_root) != nullptr)
            RegisterOf(m_root)->RemoveUnpinnedDoubtful();
    }

    static u64 NodesOf(const TChessboard& root) {
        const TThreadContext& thread = *root.m_threadContext;
        return thread.flushedNodes + thread.pendingNodes;
    }

    void TryFirstMoves(EKind kind) {
        for (TListState place{m_order.moves, m_order.count, 0}; place.index < m_order.count;
             ++place.index) {
            if (m_moves.IsDone() || CheckPause(m_root, place) != EPause::kRun)
                return;
            const TMove move = m_order[place.index];
            if (!m_moves.Claim(m_worker, move))
                continue;
            const TVerdict verdict = VerdictOf(kind, move);
            // The scan and the proof after one-colour play are exact, as is pass 2.
            const bool isComplete = kind != EKind::kSearch || m_root.m_pass >= kPassComplete;
            if (m_moves.Report(m_worker, move, verdict, isComplete) && verdict == kMate)
                CheckMateWithoutHeuristics(move);
        }
    }

    TVerdict VerdictOf(EKind kind, TMove move) {
        switch (kind) {
        case EKind::kOneColour:
            return TryOneColour(move);
        case EKind::kScan:
            return ScanFirstMove(m_root, move);
        case EKind::kSearch:
            break;
        }
        return SearchFirstMove(m_root, move);
    }

    // A mate on the reduced board proposes the move; the proof decides.
    TVerdict TryOneColour(TMove move) {
        TChessboard reduced = OneColourRoot(m_root);
        // The bishop is taken: that is no move of one-colour play.
        if (m_root.m_board[move.to] == kBlackBishop)
            return kDoubtful;
        m_thread.rootNode = &reduced;
        const TVerdict hint = SearchFirstMove(reduced, move);
        m_thread.rootNode = &m_root;
        if (hint != kMate || IsStopped(m_root))
            return kDoubtful;
        return ProveFirstMove(move);
    }

    // Without heuristics.
    TVerdict ProveFirstMove(TMove move) {
        const TChessboard root = m_root;
        SetHeur(m_root, 0);
        m_root.m_pass = kPassComplete;
        const TVerdict verdict = SearchFirstMove(m_root, move);
        m_root = root;
        return verdict;
    }

    // A rule that let a false mate through would be found here: debug builds prove each mate of a
    // pass with heuristics once more without them.
    void CheckMateWithoutHeuristics([[maybe_unused]] TMove move) {
#ifndef NDEBUG
        if (m_root.Heur == 0 || m_root.m_pass >= kPassComplete || m_thread.movesLog != nullptr)
            return;
        const TVerdict verdict = ProveFirstMove(move);
        assert((verdict == kMate || IsStopped(m_root)) && "a mate of a heuristic is a mate");
#endif
    }

    TChessboard& m_root;
    TThreadContext& m_thread;
    CFirstMoves& m_moves;
    const TRootRequest& m_request;
    const int m_worker;
    TMoveList m_order;  // manual control may turn it
};

}  // namespace

void RunPasses(TChessboard& root, CFirstMoves& moves, const TRootRequest& request) {
    CPasses(root, moves, request).Run();
}

}  // namespace quillmere

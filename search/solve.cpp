#include "search/solve.h"

#include "core/legality.h"
#include "core/make_move.h"
#include "core/thread_context.h"
#include "registers/aggregated_register.h"
#include "search/best_defence.h"
#include "search/main_line.h"
#include "search/mate_search.h"
#include "search/move_ordering.h"
#include "search/moves_log.h"
#include "search/pause.h"
#include "search/register_access.h"
#include "search/sort_indication.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>

namespace quillmere {
namespace {

// Two frames with a move list each stand on the stack for every two half-moves.
constexpr std::size_t kStackBytesPerHalfMove = 4096;
// Half-moves of the root from which on its list is sorted. Shorter tasks are over at once.
constexpr int kSortedRoot = 5;

constexpr std::size_t kStackFloorBytes = std::size_t{1} << 20;

class CSolver {
public:
    CSolver(const TChessboard& board,
            const TSolveRequest& request,
            TSearchContext& context,
            ISolveObserver* observer)
        : m_request(request),
          m_context(context),
          m_observer(observer != nullptr ? *observer : m_silent),
          m_thread(request.halfMoves) {
        InitBoard(m_root);
        std::memcpy(m_root.m_board, board.m_board, sizeof m_root.m_board);
        m_root.m_searchContext = &context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassComplete;
        SetupAnalysisRoot(m_root, request.halfMoves, true);
        m_thread.rootNode = &m_root;
        m_thread.moveMemory = m_memory.get();
        context.nodeLimit = request.nodeLimit;
        PrepareRegister();
    }

    TSolveResult Run() {
        m_firstMoves.count = GetLegalMoves(m_root, m_firstMoves.moves);
        SortFirstMoves();
        m_thread.movesLog = m_request.movesLog;
        m_result.verdict = SearchFirstMoves();
        m_thread.movesLog = nullptr;
        m_result.isComplete = !IsStopped(m_root);
        m_observer.OnAfterKeys();
        if (m_request.wantTries && m_root.IsWhiteToMove() && !IsStopped(m_root))
            m_result.isComplete = FindTries();
        if (m_request.wantMainLine && m_result.verdict == ESolveVerdict::kProvedMate &&
            !IsStopped(m_root)) {
            const bool hasKey = m_root.IsWhiteToMove();
            m_result.mainLine = FindMainLine(m_root, hasKey ? &m_result.keys.front() : nullptr);
        }
        if (m_request.wantMainLine)
            FindBestDefences();
        FlushNodeCount(m_root);
        m_result.nodes = m_context.nodeCount.load(std::memory_order_relaxed);
        m_result.madeMoves = m_thread.madeMoves;
        return m_result;
    }

private:
    // The verdict of one first move: of white's move, or of black's defence. Every repetition lies
    // inside its tree and is resolved there, since the root counts as no earlier position.
    TVerdict SearchFirstMove(TMove move) {
        TChessboard& child = m_thread.ChildSlot(m_root.m_nMoves);
        child = m_root;
        child.m_parent = &m_root;
        const bool isWhite = m_root.IsWhiteToMove();
        const int made = isWhite ? MakeWhiteMove(child, move) : MakeBlackMove(child, move, false);
        if (made != kMoveMade)
            return kNoMate;  // the list is legal, so white has no mating material left
        LogMove(child, move, !isWhite);
        const TVerdict verdict = isWhite ? CheckDefences(child) : FindMate(child, true);
        assert(verdict != kRepetition);
        if (!IsStopped(m_root))
            LogResult(child, verdict);
        return verdict;
    }

    // The one place where the register is cleared. A task too short for it leaves it alone.
    void PrepareRegister() {
        TAggregatedTemporaryChessboardRegister* store = m_context.tempRegister;
        if (store == nullptr || m_request.halfMoves < m_context.registerRoot)
            return;
        if (m_request.clearRegister)
            store->Clear(0, false);
        store->Resize(BucketsOfRoot(m_request.halfMoves), true);
    }

    // Keys are found sooner in a good order, and told in the order of generation.
    void SortFirstMoves() {
        m_listedMoves = m_firstMoves;
        if (!m_root.IsWhiteToMove() || m_request.halfMoves < kSortedRoot)
            return;
        // The list is legal, so nothing is dropped; a mate in one is only another key.
        int mateFound = 0;
        u8 quietCount = 0;
        u8 retry = 0;
        SortWhiteMoves(
            m_root, m_firstMoves.count, m_firstMoves.moves, &mateFound, &quietCount, false, &retry);
        for (TMove& move : m_firstMoves)
            move.enPassant = 0;  // the key of the sort
        if (m_request.sortIndications != nullptr)
            ApplySortIndications(m_root, m_firstMoves, *m_request.sortIndications);
    }

    // Puts moves of the root into the order of generation.
    void SortAsListed(std::vector<TMove>& moves) const {
        const auto place = [this](TMove move) {
            return std::find_if(m_listedMoves.begin(), m_listedMoves.end(), [move](TMove listed) {
                return MovesEqual(listed, move);
            });
        };
        std::sort(
            moves.begin(), moves.end(), [&place](TMove a, TMove b) { return place(a) < place(b); });
    }

    bool IsEnough() const {
        const bool isFound = !m_result.keys.empty() || !m_result.defences.empty();
        return isFound && !m_request.wantAllKeys && !m_request.wantTries;
    }

    ESolveVerdict SearchFirstMoves() {
        const bool isWhite = m_root.IsWhiteToMove();
        std::vector<TMove>& found = isWhite ? m_result.keys : m_result.defences;
        const TVerdict sought = isWhite ? kMate : kNoMate;
        bool isDoubtful = false;
        TListState place{m_firstMoves.moves, m_firstMoves.count, 0};
        for (; place.index < m_firstMoves.count && !IsEnough(); ++place.index) {
            const EPause pause = CheckPause(m_root, place);
            isDoubtful |= pause == EPause::kSkip;
            if (pause != EPause::kRun)
                break;
            const TMove move = m_firstMoves[place.index];
            m_observer.OnFirstMove(move, place.index + 1, m_firstMoves.count);
            const TVerdict verdict = SearchFirstMove(move);
            if (IsStopped(m_root))
                break;
            if (verdict == sought) {
                found.push_back(move);
                m_observer.OnKey(move);
            }
            isDoubtful |= verdict < 0;
        }
        SortAsListed(found);
        return VerdictOf(isWhite, !found.empty(), isDoubtful);
    }

    ESolveVerdict VerdictOf(bool isWhite, bool isFound, bool isDoubtful) const {
        if (isFound)
            return isWhite ? ESolveVerdict::kProvedMate : ESolveVerdict::kProvedNoMate;
        if (IsStopped(m_root))
            return m_context.isNodeLimitReached.load(std::memory_order_relaxed)
                       ? ESolveVerdict::kLimit
                       : ESolveVerdict::kStopped;
        if (isDoubtful)
            return ESolveVerdict::kDoubt;
        if (isWhite)
            return ESolveVerdict::kProvedNoMate;
        // Every defence fails; with none to try black is mated, or stalemated.
        const bool isStalemate = m_firstMoves.count == 0 && m_root.m_blackInCheck < 0;
        return isStalemate ? ESolveVerdict::kProvedNoMate : ESolveVerdict::kProvedMate;
    }

    void FindBestDefences() {
        for (const TMove key : m_result.keys) {
            const bool isTold = m_result.bestDefences.empty() && m_result.mainLine.size() > 1;
            m_result.bestDefences.push_back(isTold ? m_result.mainLine[1] : BestDefenceTo(key));
        }
    }

    TMove BestDefenceTo(TMove key) {
        TChessboard child = m_root;
        child.m_parent = &m_root;
        TMove defence{};
        if (!IsStopped(m_root) && MakeWhiteMove(child, key) == kMoveMade)
            GetBestDefence(child, &defence);  // leaves the null move if it is stopped
        return defence;
    }

    // Looks for first moves, other than keys, with exactly one refutation. False if stopped, or if a
    // first move stayed undecided.
    bool FindTries() {
        bool isComplete = true;
        for (const TMove move : m_listedMoves) {
            const bool isKey = std::any_of(m_result.keys.begin(),
                                           m_result.keys.end(),
                                           [move](TMove key) { return MovesEqual(key, move); });
            if (isKey)
                continue;
            std::vector<TMove> refutations;
            bool isDoubtful = false;
            if (!FindRefutations(move, refutations, &isDoubtful))
                return false;
            // A reply that may or may not refute leaves the move undecided.
            isComplete &= !isDoubtful || refutations.size() > 1;
            if (refutations.size() == 1 && !isDoubtful)
                m_result.tries.push_back(TTry{move, refutations.front()});
        }
        return isComplete;
    }

    // Does white mate against this legal reply with the moves it has left? After its last move it
    // has none, and any reply refutes.
    static TVerdict VerdictOfReply(TChessboard& child, TMove reply) {
        if (child.m_nMoves == 0)
            return kNoMate;
        TChessboard node = child;
        node.m_parent = &child;
        return MakeBlackMoveLegal(node, reply) == kMoveMade ? FindMate(node, true) : kNoMate;
    }

    // Up to two replies against which the first move does not mate; *isDoubtful if it is not known
    // of a reply. False if stopped.
    bool FindRefutations(TMove move, std::vector<TMove>& refutations, bool* isDoubtful) {
        // Not a slot of the node stack: it must outlive the searches below it.
        TChessboard child = m_root;
        child.m_parent = &m_root;
        if (MakeWhiteMoveLegal(child, move) != kMoveMade)
            return true;
        TMoveList replies;
        replies.count = GetLegalMoves(child, replies.moves);
        for (const TMove reply : replies) {
            const TVerdict verdict = VerdictOfReply(child, reply);
            if (IsStopped(m_root))
                return false;
            if (verdict == kDoubtful)
                *isDoubtful = true;
            else if (verdict != kMate)
                refutations.push_back(reply);
            if (refutations.size() > 1)
                return true;
        }
        return true;
    }

    const TSolveRequest& m_request;
    TSearchContext& m_context;
    ISolveObserver m_silent;
    ISolveObserver& m_observer;
    std::unique_ptr<TMoveMemory> m_memory = std::make_unique<TMoveMemory>();
    TThreadContext m_thread;
    TChessboard m_root{};
    TMoveList m_firstMoves;   // in the order in which they are tried
    TMoveList m_listedMoves;  // the same in the order of generation
    TSolveResult m_result;
};

}  // namespace

TSolveResult Solve(const TChessboard& board,
                   const TSolveRequest& request,
                   TSearchContext& context,
                   ISolveObserver* observer) {
    return CSolver(board, request, context, observer).Run();
}

std::size_t SolveStackBytes(int halfMoves) {
    return std::max(kStackFloorBytes, static_cast<std::size_t>(halfMoves) * kStackBytesPerHalfMove);
}

}  // namespace quillmere

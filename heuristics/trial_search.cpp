#include "heuristics/trial_search.h"

#include "core/legality.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "registers/aggregated_register.h"
#include "search/first_move_search.h"
#include "search/pause.h"
#include "search/proof_number.h"
#include "search/root.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <memory>

namespace quillmere {
namespace {

// Made moves of a king trial: some hundredths of a second.
constexpr u64 kKingTrialWork = 100000;
// Moves of TryStrictKing: a king that may not move is mated soon, or not at all.
constexpr int kStrictKingMoves = 6;
constexpr u32 kKingWord = SH_KEEPKINGONTHEEDGE;
static_assert(kKingWord == 4 && SH_DONTLETPROMOTEDQUEENMOVE == 2048);

// Keeps what a trial changes in the records of its thread, and puts it back.
class CKeptThread {
public:
    explicit CKeptThread(TThreadContext& thread)
        : m_thread(thread),
          m_settings(thread.heuristics),
          m_rootNode(thread.rootNode),
          m_replay(thread.replay),
          m_whiteCaptured(thread.whiteCaptured),
          m_blackCaptured(thread.blackCaptured),
          m_movesLog(thread.movesLog),
          m_moveMemory(thread.moveMemory),
          m_workLimit(thread.workLimit),
          m_forbiddenKingSquares(thread.forbiddenKingSquares),
          m_isSafe(thread.isSafe),
          m_isPromotionSquareFree(thread.isPromotionSquareFree),
          m_isSaveEventSecond(thread.isSaveEventSecond),
          m_singleQueenSquare(thread.singleQueenSquare) {}
    ~CKeptThread() {
        m_thread.heuristics = m_settings;
        m_thread.rootNode = m_rootNode;
        m_thread.replay = m_replay;
        m_thread.whiteCaptured = m_whiteCaptured;
        m_thread.blackCaptured = m_blackCaptured;
        m_thread.movesLog = m_movesLog;
        m_thread.moveMemory = m_moveMemory;
        m_thread.workLimit = m_workLimit;
        m_thread.forbiddenKingSquares = m_forbiddenKingSquares;
        m_thread.isSafe = m_isSafe;
        m_thread.isPromotionSquareFree = m_isPromotionSquareFree;
        m_thread.isSaveEventSecond = m_isSaveEventSecond;
        m_thread.singleQueenSquare = m_singleQueenSquare;
        // A stop from outside stays; that of the limit was the trial's own.
        LiftWorkLimitStop(m_thread);
    }
    CKeptThread(const CKeptThread&) = delete;
    CKeptThread& operator=(const CKeptThread&) = delete;

private:
    TThreadContext& m_thread;
    const THeuristicSettings m_settings;
    TChessboard* const m_rootNode;
    const TReplay m_replay;
    const TCaptureList m_whiteCaptured;
    const TCaptureList m_blackCaptured;
    CMovesLog* const m_movesLog;
    TMoveMemory* const m_moveMemory;
    const u64 m_workLimit;
    const u64 m_forbiddenKingSquares;
    const bool m_isSafe;
    const bool m_isPromotionSquareFree;
    const bool m_isSaveEventSecond;
    const u8 m_singleQueenSquare;
};

u64 NodesOf(const TThreadContext& thread) {
    return thread.flushedNodes + thread.pendingNodes;
}

// One trial on a copy of the root.
class CTrial {
public:
    CTrial(const TChessboard& root, const TTrialRequest& request)
        : m_thread(*root.m_threadContext),
          m_request(request),
          m_kept(m_thread),
          m_memory(std::make_unique<TMoveMemory>()),
          m_root(root),
          m_startMoves(m_thread.madeMoves),
          m_startNodes(NodesOf(m_thread)) {
        assert(root.IsWhiteToMove() && root.m_parent == nullptr &&
               root.OneColourMode() == kOneColourOff);
        assert((request.halfMoves & 1) == 1 && request.halfMoves <= root.m_nMoves);
        m_thread.rootNode = &m_root;
        m_thread.movesLog = nullptr;
        m_thread.moveMemory = m_memory.get();
        m_thread.replay = TReplay{};
        m_thread.isSafe = true;
        // The limit of a proof-number search is its own.
        if (request.workLimit != kNoTrialLimit && request.proof == nullptr)
            m_thread.workLimit = std::min(m_thread.workLimit, m_startMoves + request.workLimit);
        m_root.m_nMoves = m_root.m_nRootMoves = static_cast<u16>(request.halfMoves);
        m_root.Heur = m_root.HeurParams = 0;
        m_root.m_pass = kPassComplete;
    }

    TTrialResult Run() {
        TMoveList list;
        if (m_request.proof == nullptr)
            list = ListFirstMoves();
        PrepareWord(m_root, m_request.heur);
        m_root.m_pass = m_request.heur != 0 ? kPassHeuristics : kPassComplete;
        if (m_request.proof == nullptr)
            TryMoves(list);
        else
            AskProof();
        m_result.madeMoves = m_thread.madeMoves - m_startMoves;
        m_result.nodes = NodesOf(m_thread) - m_startNodes;
        return m_result;
    }

private:
    TMoveList ListFirstMoves() {
        TMoveList list;
        if (m_request.firstMove.has_value()) {
            list.count = 1;
            list[0] = *m_request.firstMove;
        } else if (m_request.firstMoves != nullptr) {
            list = *m_request.firstMoves;
        } else {
            list.count = GetLegalMoves(m_root, list.moves);
            SortFirstMoves(m_root, list, nullptr);
        }
        return list;
    }

    void TryMoves(TMoveList& list) {
        bool areAllExact = true;
        for (TListState place{list.moves, list.count, 0}; place.index < list.count; ++place.index) {
            if (CheckPause(m_root, place) == EPause::kSkip) {
                areAllExact = false;
                break;
            }
            const TMove move = list[place.index];
            const TVerdict verdict =
                IsStopped(m_root) || IsWorkUsedUp(m_root) ? kNoMate : SearchFirstMove(m_root, move);
            if (IsStopped(m_root)) {
                m_result.verdict = VerdictOfStop();
                return;
            }
            ++m_result.triedMoves;
            if (verdict == kMate) {
                m_result.verdict = ETrialVerdict::kMate;
                m_result.mate = move;
                return;
            }
            areAllExact &= verdict == kNoMate;
        }
        m_result.verdict = areAllExact ? ETrialVerdict::kNoMate : ETrialVerdict::kDoubtful;
    }

    ETrialVerdict VerdictOfStop() const {
        return m_thread.stopLevel.load(std::memory_order_relaxed) == kThreadAtLimit
                   ? ETrialVerdict::kLimit
                   : ETrialVerdict::kStopped;
    }

    void AskProof() {
        const u64 limit = m_request.workLimit != kNoTrialLimit ? m_request.workLimit
                                                               : std::numeric_limits<u64>::max();
        const u64 left = std::numeric_limits<u64>::max() - m_thread.madeMoves;
        const TProofAnswer answer =
            m_request.proof->Search(m_root, std::min(limit, left), m_request.decided);
        if (IsStopped(m_root)) {
            m_result.verdict = VerdictOfStop();
        } else if (answer.isLimit) {
            m_result.verdict = ETrialVerdict::kLimit;
        } else if (answer.verdict == kMate) {
            m_result.verdict = ETrialVerdict::kMate;
            m_result.mate = answer.move;
        } else {
            m_result.verdict =
                answer.verdict == kNoMate ? ETrialVerdict::kNoMate : ETrialVerdict::kDoubtful;
        }
    }

    TThreadContext& m_thread;
    const TTrialRequest& m_request;
    const CKeptThread m_kept;
    const std::unique_ptr<TMoveMemory> m_memory;
    TChessboard m_root;
    const u64 m_startMoves;
    const u64 m_startNodes;
    TTrialResult m_result;
};

int HalfMovesOf(const TChessboard& node, int moves) {
    return std::clamp(2 * moves - 1, 1, static_cast<int>(node.m_nMoves));
}

bool IsMateSeen(TChessboard& node, u32 heur, int moves, u64 workLimit) {
    TTrialRequest request;
    request.heur = heur;
    request.halfMoves = HalfMovesOf(node, moves);
    request.workLimit = workLimit;
    return RunTrial(node, request).verdict == ETrialVerdict::kMate;
}

}  // namespace

TTrialResult RunTrial(TChessboard& root, const TTrialRequest& request) {
    return CTrial(root, request).Run();
}

void ForgetDoubts(TChessboard& root) {
    if (root.m_searchContext->tempRegister != nullptr)
        root.m_searchContext->tempRegister->RemoveUnpinnedDoubtful();
}

bool TryHeur(TChessboard& node, u32 mask, int moves, u64 workLimit) {
    return IsMateSeen(node, mask | (node.Heur & SH_KEYWHITEFIGURE), moves, workLimit);
}

bool TrySearch(TChessboard& node, int moves, u64 workLimit) {
    return IsMateSeen(node, node.Heur, moves, workLimit);
}

bool TryStrictKing(TChessboard& node, int moves) {
    return TryKing(node, true, true, false, std::min(moves, kStrictKingMoves));
}

bool TryKing(TChessboard& node, bool strict, bool exceptions, bool extraBit, int moves) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    const THeuristicSettings kept = settings;
    settings.StrictKingMove = strict;
    settings.KingMoveExceptions = exceptions;
    const u32 heur = kKingWord + (extraBit ? u32{SH_DONTLETPROMOTEDQUEENMOVE} : 0);
    const bool isMate = IsMateSeen(node, heur, moves, kKingTrialWork);
    settings = kept;
    return isMate;
}

}  // namespace quillmere

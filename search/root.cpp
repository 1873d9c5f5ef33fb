#include "search/root.h"

#include "core/chess_exception.h"
#include "core/platform/thread.h"
#include "core/thread_context.h"
#include "heuristics/blocked_list.h"
#include "heuristics/heur_params.h"
#include "heuristics/promotion_marks.h"
#include "search/mate_search.h"
#include "search/root_passes.h"
#include "search/solve.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

namespace quillmere {
namespace {

CMovesLog* LogOf(const TRootRequest& request, int thread) {
    const auto index = static_cast<std::size_t>(thread);
    return index < request.movesLogs.size() ? request.movesLogs[index] : nullptr;
}

bool LacksRequiredHeuristics(const TChessboard& root) {
    const u32 required = root.m_searchContext->requiredHeuristics;
    return (root.Heur & required) != required;
}

TRootResult ResultOf(const TChessboard& root, const CFirstMoves& moves, int threads) {
    TRootResult result;
    result.threads = threads;
    result.isStopped = !moves.IsDone() &&
                       root.m_searchContext->stopKind.load(std::memory_order_relaxed) == kStopAll;
    return result;
}

// A thread of the request with everything that belongs to it.
class CRootThread {
public:
    CRootThread(const TChessboard& root, int id, CMovesLog* log)
        : m_thread(root.m_nRootMoves, static_cast<i16>(id)) {
        const TThreadContext& main = *root.m_threadContext;
        m_thread.heuristics = main.heuristics;
        m_thread.whiteCaptured = main.whiteCaptured;
        m_thread.blackCaptured = main.blackCaptured;
        m_thread.forbiddenKingSquares = main.forbiddenKingSquares;
        m_thread.blockLevel = main.blockLevel;
        m_thread.isSaveEventSecond = main.isSaveEventSecond;
        m_thread.separatedSquares = main.separatedSquares;
        m_thread.separatedPassSquares = main.separatedPassSquares;
        m_thread.computeHeurParams = main.computeHeurParams;
        m_thread.moveMemory = m_memory.get();
        m_thread.movesLog = log;
        m_root = root;
        m_root.m_threadContext = &m_thread;
        m_thread.rootNode = &m_root;
    }
    CRootThread(const CRootThread&) = delete;
    CRootThread& operator=(const CRootThread&) = delete;

    // Throws ChessException if the thread cannot be started.
    void Start(CFirstMoves& moves, const TRootRequest& request) {
        m_runner = std::make_unique<CThreadWithStack>(SolveStackBytes(m_root.m_nRootMoves),
                                                      [this, &moves, &request] {
                                                          try {
                                                              RunPasses(m_root, moves, request);
                                                              FlushNodeCount(m_root);
                                                          } catch (...) {
                                                              moves.EndAll();
                                                              throw;
                                                          }
                                                      });
    }
    void Join() { m_runner->Join(); }
    u64 MadeMoves() const { return m_thread.madeMoves; }

private:
    std::unique_ptr<TMoveMemory> m_memory = std::make_unique<TMoveMemory>();
    TThreadContext m_thread;
    TChessboard m_root{};
    std::unique_ptr<CThreadWithStack> m_runner;  // last: it uses all of the above
};

}  // namespace

void TakeHeuristics(TChessboard& root, const TChessboard& given) {
    TSearchContext& context = *root.m_searchContext;
    const TSearchContext& from = *given.m_searchContext;
    root.m_threadContext->heuristics = given.m_threadContext->heuristics;
    if (&context != &from) {
        context.isExact = from.isExact.load();
        std::copy(std::begin(from.KeyDiagonalSquares),
                  std::end(from.KeyDiagonalSquares),
                  context.KeyDiagonalSquares);
        context.KeyLineFile = from.KeyLineFile;
        context.areColoursSwapped = from.areColoursSwapped;
        context.SeaSnakeOnlyAfter = from.SeaSnakeOnlyAfter;
        context.HasZugzwangPosition = from.HasZugzwangPosition;
        std::copy(
            std::begin(from.ZugzwangBoard), std::end(from.ZugzwangBoard), context.ZugzwangBoard);
        context.m_shLookForQuickerMateDepth = from.m_shLookForQuickerMateDepth;
    }
    PrepareWord(root, given.Heur);
}

void PrepareWord(TChessboard& root, u32 heur) {
    THeuristicSettings& settings = root.m_threadContext->heuristics;
    TrackBlockedFigures(root);
    constexpr ECount kKinds[] = {
        kWhiteQueens, kWhiteRooks, kWhiteBishops, kWhiteKnights, kWhitePawns};
    for (std::size_t i = 0; i < std::size(kKinds); ++i) {
        settings.InitialWhiteCounts[i] = root.m_counts[kKinds[i]];
        settings.InitialBlackCounts[i] = root.m_counts[kKinds[i] + 1];
    }
    SetHeur(root, heur);
    if (root.Heur != 0)
        MarkPromotions(root);
}

TRootResult FindMateRoot(TChessboard& root, CFirstMoves& moves, const TRootRequest& request) {
    TThreadContext& thread = *root.m_threadContext;
    if (LacksRequiredHeuristics(root)) {
        TRootResult result;
        result.isMaskFailed = true;
        return result;
    }
    thread.movesLog = LogOf(request, 0);
    RunPasses(root, moves, request);
    thread.movesLog = nullptr;
    return ResultOf(root, moves, 1);
}

TRootResult FindMateThreaded(TChessboard& root,
                             CFirstMoves& moves,
                             const TRootRequest& request,
                             int threads,
                             TRootWork& work) {
    threads = std::min({threads, kMaxRootThreads, moves.List().count});
    if (threads < 2 || LacksRequiredHeuristics(root))
        return FindMateRoot(root, moves, request);
    std::vector<std::unique_ptr<CRootThread>> group;
    group.reserve(static_cast<std::size_t>(threads));
    try {
        for (int i = 0; i < threads; ++i) {
            auto thread = std::make_unique<CRootThread>(root, i, LogOf(request, i));
            thread->Start(moves, request);
            group.push_back(std::move(thread));
        }
    } catch (const ChessException&) {
        // The threads that run share the work.
    } catch (const std::bad_alloc&) {
        // The same.
    }
    if (group.empty())
        return FindMateRoot(root, moves, request);
    std::exception_ptr failure;
    for (const auto& thread : group) {
        try {
            thread->Join();
        } catch (...) {
            failure = std::current_exception();
        }
        work.madeMoves += thread->MadeMoves();
    }
    if (failure)
        std::rethrow_exception(failure);
    return ResultOf(root, moves, static_cast<int>(group.size()));
}

}  // namespace quillmere

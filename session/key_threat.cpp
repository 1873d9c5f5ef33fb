#include "session/key_threat.h"

#include "core/play_board.h"
#include "core/rights.h"
#include "search/solve.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace quillmere {
namespace {

// A proof of a few nodes may well stand behind a threat that takes some more.
constexpr u64 kLeastNodes = 20'000;

// Between two looks at the stop slot of the problem.
constexpr auto kLook = std::chrono::milliseconds(10);

// The threat is searched for with a context of its own, to which stop, pause and resume of the problem
// are handed on. A thread does that: a short search may never tell its progress, and a paused one
// would not hear that it may go on.
//
// Locking: guards the end of the relay; the stop slot is taken behind it.
class CStopRelay {
public:
    CStopRelay(const TSearchContext& from, TSearchContext& to) : m_from(from), m_to(to) {
        HandOn();
        m_thread = std::thread([this] { Watch(); });
    }
    ~CStopRelay() {
        {
            const std::lock_guard lock(m_mutex);
            m_isDone = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    CStopRelay(const CStopRelay&) = delete;
    CStopRelay& operator=(const CStopRelay&) = delete;

private:
    void Watch() {
        std::unique_lock lock(m_mutex);
        while (!m_wake.wait_for(lock, kLook, [this] { return m_isDone; }))
            HandOn();
    }
    // The search stops itself at its limit of nodes: that stays.
    void HandOn() {
        const u8 kind = m_from.stopKind.load(std::memory_order_relaxed);
        const CStopSlotLock lock(m_to);
        if (m_to.stopKind.load(std::memory_order_relaxed) != kStopAll)
            m_to.stopKind.store(kind, std::memory_order_relaxed);
    }

    const TSearchContext& m_from;
    TSearchContext& m_to;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isDone = false;
    std::thread m_thread;  // last: it uses all of the above
};

// After the key the bare board is solved, on which a king or rook that came home by the key might
// castle. White's rights only ever shrink.
bool DoesBoardGiveCastlingBack(const TChessboard& played) {
    TChessboard bare = played;
    bare.m_parent = nullptr;
    bare.m_threadContext = nullptr;  // which knows another root
    return DerivedCastlingRights(bare) != DerivedCastlingRights(played);
}

}  // namespace

std::string ThreatText(const TChessProblem& problem, TMove key, int halfMoves, u64 nodeLimit) {
    constexpr int kTwoMoves = 3;
    if (halfMoves < kTwoMoves)
        return {};
    CPlayBoard board(*problem.position, false, 1);
    board.Play(key);
    if (board.IsInCheck() || DoesBoardGiveCastlingBack(board.Node()))
        return {};
    TSearchContext context;
    const CStopRelay relay(problem, context);
    TSolveRequest request;
    request.halfMoves = static_cast<u16>(halfMoves - 2);
    request.wantMainLine = false;
    request.nodeLimit = std::max(nodeLimit, kLeastNodes);
    const TChessboard after = board.Node();
    const TSolveResult result = Solve(after, request, context);
    if (result.keys.empty())
        return {};
    const TWrittenMove written = WriteMove(after, false, result.keys.front());
    return "2." + written.text + written.check;
}

}  // namespace quillmere

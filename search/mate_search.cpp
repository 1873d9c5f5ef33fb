#include "search/mate_search.h"

#include "core/direct_mates.h"
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/platform/tick_count.h"
#include "core/rights.h"
#include "search/node_hooks.h"
#include "search/pause.h"
#include "search/repetition.h"

#include <cassert>

namespace quillmere {
namespace {

// Thresholds, all in half-moves
constexpr int kRegisterRoot = 10;      // below it the root is solved faster than the register fills
constexpr int kRegisterLevel = 3;      // below it a look-up costs more than the search
constexpr int kCountedLevels = 4;      // nodes below it are counted
constexpr int kUnsortedLevels = 4;     // below it black's list is lazy and unsorted
constexpr int kPatternLevel = 16;      // above it, near the root, patterns are tried
constexpr int kUnavoidableLevel = 17;  // from it on, near the root, "mate is unavoidable" is asked
constexpr int kNearRoot = 10;          // plies from the root
constexpr int kUnblockPlies = 6;       // plies from the root up to which unblocking is tried
constexpr int kForcingLevel = 7;       // above it forcing situations are looked for

// Nodes are added to the shared counter in lots, to spare the atomic.
constexpr u32 kNodeLot = 256;

void CountNode(const TChessboard& node) {
    if (++node.m_threadContext->pendingNodes >= kNodeLot)
        FlushNodeCount(node);
}

// (level & 15) == 9, and the first of these levels only deep below the root: often enough for a
// display, seldom enough to cost nothing.
bool IsPeriodicLevel(const TChessboard& node) {
    return (node.m_nMoves & 15) == 9 && (node.m_nMoves == 9 || node.Ply() > 8);
}

void CheckPeriodically(const TChessboard& node) {
    if (node.m_searchContext->progress != nullptr)
        node.m_searchContext->progress->OnPeriodicCheck(node);
    node.m_threadContext->lastCheckTick = TickCount();
}

// White keeps to the squares of one colour.
bool IsOneColourOnly(const TChessboard& node) {
    return node.OneColourMode() == kOneColourParity1 || node.OneColourMode() == kOneColourParity0;
}

// What a node answers when it must leave: a stop makes every result void, and the latch says so; a
// manual skip leaves moves out.
TVerdict VerdictOfPause(EPause pause) {
    return pause == EPause::kStop ? kNoMate : kDoubtful;
}

// What a white node must not forget about moves that it did not search to the end. A tainted node
// never says an exact "no mate".
class CTaint {
public:
    // A move was left out by an assumption, or the list was replaced or cut by one.
    void LeftOut() { m_isTainted = true; }
    // A child's verdict that is no mate: everything but a proof taints. A repetition hands its
    // doubt up by the horizon.
    void Child(TVerdict verdict) { m_isTainted |= verdict < 0 && verdict != kRepetition; }
    bool IsTainted() const { return m_isTainted; }

private:
    bool m_isTainted = false;
};

// A pass that proves nothing negative while a heuristic is on: generators may have left moves out
// without a count.
bool IsHeuristicsDoubtful(const TChessboard& node) {
    return node.Heur != 0 && (node.m_pass >= kPassComplete || node.m_searchContext->isExact);
}

// Black promoted to a queen and white mates at once without taking on the promotion square: rook
// and bishop in place of the queen could neither avoid nor answer that mate.
void NoteMateAfterPromotion(const TChessboard& node, TMove mate) {
    if (node.m_lastMove.Promotion() == kQueen)
        node.m_threadContext->isPromotionSquareFree = mate.to != node.m_lastMove.to;
}

// "No mate" of a node that was not searched through. In one-colour play a black bishop is missing
// on the board, so that nothing negative is exact.
TVerdict NoMateOf(const TChessboard& node) {
    return node.OneColourMode() == kOneColourOff ? kNoMate : kDoubtful;
}

TVerdict FindMateAtLastMove(TChessboard& node) {
    TMove mate{};
    if (!FindMateInOne(node, &mate))
        return NoMateOf(node);
    NoteMateAfterPromotion(node, mate);
    return kMate;
}

// Step 7 of FindMate. Returns false if the sort met a mate.
bool ListWhiteMoves(TChessboard& node, TMoveList& list, CTaint& taint, bool& retry) {
    TReplay& replay = node.m_threadContext->replay;
    if (replay.flag != 0) {
        list.count = replay.count;
        for (int i = 0; i < list.count; ++i)
            list[i] = replay.list[i];
        replay.flag = 0;
        return true;
    }
    if (hooks::ReplaceWhiteMoves(node, list)) {
        taint.LeftOut();
        return true;
    }
    if (node.m_nMoves > kForcingLevel && hooks::GetForcingMoves(node, list))
        return true;
    list.count = node.m_whiteInCheck >= 0 ? GetWhiteEvasions(node, list.moves)
                                          : GetAllWhiteMoves(node, list.moves);
    if ((node.Heur & kHeurBlockBlackPawns) != 0)
        return true;
    const hooks::TWhiteSort sort = hooks::SortWhiteMoves(node, list);
    if (sort.isCut)
        taint.LeftOut();
    retry = sort.retry;
    return !sort.mateFound;
}

// Ends a line whose mate is thought to be unavoidable. It must be a complete black node, whatever
// made it look so.
TVerdict FinishMate(TChessboard& child) {
    return CheckDefences(child);
}

void StoreMate(const TChessboard& node) {
    if (!IsStopped(node) && MayUseRegister(node))
        hooks::Insert(node.m_nMoves, node, true);
}

}  // namespace

void FlushNodeCount(const TChessboard& node) {
    TThreadContext& thread = *node.m_threadContext;
    TSearchContext& context = *node.m_searchContext;
    const u64 total = context.nodeCount.fetch_add(thread.pendingNodes, std::memory_order_relaxed) +
                      thread.pendingNodes;
    thread.pendingNodes = 0;
    if (context.nodeLimit != 0 && total >= context.nodeLimit &&
        !context.isNodeLimitReached.exchange(true, std::memory_order_relaxed))
        SetStop(context, kStopAll);
}

bool MayUseRegister(const TChessboard& node) {
    return node.m_nRootMoves >= kRegisterRoot && node.m_nMoves >= kRegisterLevel &&
           !IsEnPassantPossible(node) && !HasLostCastlingRightAtHome(node);
}

TVerdict FindMate(TChessboard& node, bool useRegister) {
    TThreadContext& thread = *node.m_threadContext;
    const int level = node.m_nMoves;
    assert(node.IsWhiteToMove() && node.m_blackInCheck < 0);
    thread.ClearHorizon(level);

    // Step 1. Ask the endgame tables.
    if ((node.m_positionFlags & kPositionHasTables) != 0) {
        const TVerdict known = hooks::AskTables(node);
        if (known != kNothingKnown)
            return known;
    }

    // Step 2. Ask the register.
    if (useRegister && MayUseRegister(node)) {
        const TVerdict known = hooks::FindInRegister(level, node);
        if (known >= kDoubtful && (known != kDoubtful || node.m_pass < kPassComplete))
            return known;
    }

    // Step 3. Count the node; the last move is found without a list.
    if (level < kCountedLevels)
        CountNode(node);
    if (level == 1)
        return FindMateAtLastMove(node);

    // Step 4. Patterns that mate, near the root of a long task.
    if (level > kPatternLevel && node.Ply() < kNearRoot && node.BlackKingEdgeDistance() == 0 &&
        hooks::IsPatternPosition(node) && hooks::TryPatternMate(node) > 0)
        return kMate;

    // Step 5. Now and then the outside is asked and told.
    if (IsPeriodicLevel(node))
        CheckPeriodically(node);

    // Step 6. One-colour play.
    if (IsOneColourOnly(node) && node.m_counts[kWhiteKnights] != 0 &&
        !hooks::KnightsKeepColour(node) && hooks::TryOneColourMate(node))
        return kMate;

    // Step 7. Generate and order the moves.
    CTaint taint;
    const u8 replayFlag = thread.replay.flag;
    if (node.OneColourMode() != kOneColourOff)
        taint.LeftOut();
    TMoveList list;
    bool retry = false;
    if (!ListWhiteMoves(node, list, taint, retry)) {
        StoreMate(node);
        return kMate;
    }

    // Step 8. Split the node over threads.
    const TVerdict split = hooks::SplitNode(node, list);
    if (split != kNoSplit)
        return split;

    // Step 9 is the scheduler's; without one every move is searched here and now.

    // Step 10. Try the moves.
    TLevelState& state = thread.levels[level];
    state.list = list.moves;
    state.moveCount = static_cast<u16>(list.count);
    TChessboard& child = thread.ChildSlot(level);
    for (TListState place{list.moves, list.count, 0}; place.index < list.count; ++place.index) {
        // Step 10.1. Pause and stop.
        const EPause pause = CheckPause(node, place);
        if (pause != EPause::kRun)
            return VerdictOfPause(pause);
        const TMove move = list[place.index];

        // Step 10.2. King moves that an assumption leaves out.
        if (hooks::IsKingMoveLeftOut(node, move)) {
            taint.LeftOut();
            continue;
        }

        // Step 10.3. Make the move.
        child = node;
        child.m_parent = &node;
        const int made = MakeWhiteMove(child, move);
        if (made == kMoveLeftOut)
            taint.LeftOut();
        if (made != kMoveMade)
            continue;

        // Step 10.4. A move into a repetition proves nothing.
        int repeated = 0;
        if (IsRepetition(child, &repeated)) {
            RaiseHorizon(thread, level, repeated, false);
            continue;
        }

        // Step 10.5. Moves that the heuristics leave out.
        if (hooks::IsMoveLeftOut(child)) {
            taint.LeftOut();
            continue;
        }

        // Step 10.6. Tell where we are.
        state.moveIndex = static_cast<u16>(place.index);
        state.publicMoveIndex.store(state.moveIndex, std::memory_order_relaxed);

        // Step 10.7. Search the child.
        const bool isFinish = level >= kUnavoidableLevel && node.Ply() < kNearRoot &&
                              child.BlackKingEdgeDistance() == 0 && hooks::IsMateUnavoidable(child);
        const TVerdict verdict = isFinish ? FinishMate(child) : CheckDefences(child);
        if (IsStopped(node))
            return kNoMate;

        // Step 10.8. What a failure leaves behind.
        if (verdict <= 0) {
            taint.Child(verdict);
            if (verdict == kRepetition) {
                const TLevelState& below = thread.levels[level - 1];
                RaiseHorizon(thread, level, below.horizon, below.isHorizonDoubtful);
            }
            continue;
        }

        // Step 10.9. A mate.
        if (node.m_lastMove.Promotion() == kQueen && child.m_blackInCheck >= 0 &&
            !BlackHasEvasion(child))
            NoteMateAfterPromotion(node, move);
        StoreMate(node);
        return kMate;
    }

    // Step 11. The moves are used up. A stop makes everything void.
    TListState end{list.moves, list.count, list.count};
    const EPause pause = CheckPause(node, end);
    if (pause == EPause::kStop)
        return kNoMate;
    if (pause == EPause::kSkip)
        taint.LeftOut();
    const bool isDoubtful =
        taint.IsTainted() || state.isHorizonDoubtful || IsHeuristicsDoubtful(node);

    // Step 12. A result that depends on a repetition above this node is not stored.
    if (state.horizon > level) {
        state.isHorizonDoubtful = isDoubtful;
        return kRepetition;
    }

    // Step 13. Store. A horizon at or below this level lies inside this subtree: it is resolved.
    if (replayFlag <= 1 && MayUseRegister(node)) {
        if (isDoubtful)
            hooks::InsertDoubtful(level, node);
        else
            hooks::Insert(level, node, false);
    }

    // Step 14. A list that the sort had cut for a heuristic is run again in full.
    if (retry && hooks::TakeFullList(node))
        return FindMate(node, false);
    return isDoubtful ? kDoubtful : kNoMate;
}

namespace {

// Black's moves, a figure at a time below kUnsortedLevels: in the frequent case that the first
// defence refutes, the rest is never generated.
class CBlackMoves {
public:
    explicit CBlackMoves(TChessboard& node) : m_node(node) {}

    // Step 3 of CheckDefences. The verdict that ends the node, or kNothingKnown.
    TVerdict Start() {
        if (m_node.m_blackInCheck >= 0) {
            m_list.count = GetBlackEvasions(m_node, m_list.moves);
            m_nextSquare = kSquareCount;
        } else if (m_node.m_nMoves < kUnsortedLevels) {
            NextFigure();
        } else {
            m_list.count = GetAllBlackMoves(m_node, m_list.moves);
            m_nextSquare = kSquareCount;
        }
        if (m_node.m_nMoves < kUnsortedLevels)
            return kNothingKnown;
        const hooks::TBlackSort sort = hooks::SortBlackMoves(m_node, m_list);
        m_kingMovesFiltered = sort.kingMovesFiltered;
        return sort.verdict;
    }

    // Fills the list with the moves of the next figure that has any. In one-colour play the pass
    // is the last "figure": the bishop that was taken off always has a tempo to spare.
    bool NextFigure() {
        m_list.count = 0;
        while (m_list.count == 0) {
            m_nextSquare = NextFigureSquare(m_node.m_board, m_nextSquare, kBlack);
            if (m_nextSquare == kSquareCount)
                break;
            m_list.count = GetBlackMoves(m_node, m_nextSquare++, m_list.moves);
        }
        if (m_list.count == 0 && !m_isPassListed && m_node.OneColourMode() != kOneColourOff &&
            m_node.m_blackInCheck < 0) {
            m_isPassListed = true;
            const int king = m_node.BlackKingSquare();
            m_list[m_list.count++] = MakeMove(king, king);
        }
        return m_list.count != 0;
    }

    TMoveList& List() { return m_list; }
    bool KingMovesFiltered() const { return m_kingMovesFiltered; }
    bool IsLazy() const { return m_node.m_nMoves < kUnsortedLevels && m_node.m_blackInCheck < 0; }

private:
    TChessboard& m_node;
    TMoveList m_list;
    int m_nextSquare = 0;
    bool m_isPassListed = false;
    bool m_kingMovesFiltered = false;
};

// Step 7.6 of CheckDefences: the mate is looked for with one assumption more. A mate found so is a
// mate; otherwise the child stands as it was.
bool IsMateAssumed(TChessboard& child) {
    const u32 heur = child.Heur;
    const u32 heurParams = child.HeurParams;
    child.Heur |= kHeurNoUnblock;
    if (child.m_threadContext->computeHeurParams != nullptr)
        child.m_threadContext->computeHeurParams(child);
    const TVerdict verdict = FindMate(child, true);
    child.Heur = heur;
    child.HeurParams = heurParams;
    return verdict == kMate;
}

// Step 7.7 of CheckDefences: a white node answered that its result depends on a repetition. At or
// below this level it is resolved; above it, it is handed on.
TVerdict TakeRepetition(TThreadContext& thread, int level) {
    TLevelState& below = thread.levels[level - 1];
    if (below.horizon > level) {
        RaiseHorizon(thread, level, below.horizon, below.isHorizonDoubtful);
        return kRepetition;
    }
    const bool isDoubtful = below.isHorizonDoubtful;
    thread.ClearHorizon(level - 1);
    thread.ClearHorizon(level);
    return isDoubtful ? kDoubtful : kNoMate;
}

}  // namespace

TVerdict CheckDefences(TChessboard& node) {
    TThreadContext& thread = *node.m_threadContext;
    const int level = node.m_nMoves;
    assert(!node.IsWhiteToMove());
    thread.ClearHorizon(level);

    // Step 1. Wait while the thread is held.
    TListState notRotated;
    if (thread.stopLevel.load(std::memory_order_relaxed) != kThreadRuns) {
        const EPause pause = CheckPause(node, notRotated);
        if (pause != EPause::kRun)
            return VerdictOfPause(pause);
    }

    // Step 2. The end of the line.
    if (level == 0)
        return node.m_blackInCheck >= 0 && !BlackHasEvasion(node) ? kMate : kNoMate;

    // Step 3. Moves.
    CBlackMoves moves(node);
    const TVerdict sorted = moves.Start();
    if (sorted != kNothingKnown)
        return sorted;

    // Step 4. A single queen that hunts the king.
    if (level == node.m_nRootMoves - 1 && node.m_blackInCheck < 0)
        hooks::NoteSingleQueen(node);

    // Step 5, the pass of one-colour play, stands at the end of CBlackMoves.

    TLevelState& state = thread.levels[level];
    TChessboard& child = thread.ChildSlot(level);
    bool isAnyLegal = false;
    TMove dropped = MakeMove(0, 0);
    do {
        // Step 6. Store count and list of the level.
        TMoveList& list = moves.List();
        state.list = list.moves;
        state.moveCount = static_cast<u16>(list.count);

        // Step 7. Try the moves.
        for (TListState place{list.moves, list.count, 0}; place.index < list.count; ++place.index) {
            // Step 7.1. Pause and stop. A lazy list is only a part and is not rotated.
            const EPause pause =
                CheckPause(node, moves.IsLazy() ? notRotated : place, kBlackPauseMs);
            if (pause != EPause::kRun)
                return VerdictOfPause(pause);
            const TMove move = list[place.index];
            if (!dropped.IsNull() && move.from == dropped.from && move.to == dropped.to &&
                (move.Promotion() == kRook || move.Promotion() == kBishop))
                continue;

            // Steps 7.2 and 7.3. Make the move. A rule of thumb that white cannot mate any more,
            // or a move that an assumption leaves out, makes the node doubtful, never "no mate".
            child = node;
            child.m_parent = &node;
            const int made = MakeBlackMove(child, move, moves.KingMovesFiltered());
            if (made == kMoveIllegal)
                continue;
            if (made == kMateImpossible)
                return NoMateOf(node);
            if (made != kMoveMade)
                return kDoubtful;
            isAnyLegal = true;
            state.moveIndex = static_cast<u16>(place.index);
            state.publicMoveIndex.store(state.moveIndex, std::memory_order_relaxed);

            // A move into a repetition is a defence that holds.
            int repeated = 0;
            if (IsRepetition(child, &repeated)) {
                RaiseHorizon(thread, level, repeated, false);
                return kRepetition;
            }

            // Step 7.4. Bookkeeping of the heuristics; lines that they give up.
            hooks::UpdateHeuristics(child);
            if (hooks::IsReplyLeftOut(child))
                return kDoubtful;

            // Steps 7.5 and 7.6. Search the child; near the root of a long task first as if a
            // figure of black could not be unblocked.
            const bool isTried = level >= kUnavoidableLevel && node.Ply() <= kUnblockPlies &&
                                 hooks::ShouldTryUnblockFirst(child) && IsMateAssumed(child);
            const TVerdict verdict = isTried ? kMate : FindMate(child, true);
            if (IsStopped(node))
                return kNoMate;

            // Step 7.7. A defence that holds, or a doubt, ends the node.
            if (verdict == kRepetition)
                return TakeRepetition(thread, level);
            if (verdict <= 0)
                return verdict;

            // Step 7.8. The defence failed.
            hooks::CompareWithRegister(child);

            // Step 7.9. Promotion pruning: rook and bishop fail as the queen did. The knight, which
            // moves otherwise, is always tried.
            if (move.Promotion() == kQueen && thread.isPromotionSquareFree)
                dropped = move;
            thread.isPromotionSquareFree = false;
        }
    } while (moves.NextFigure());

    // Step 8. No defence is left: mate, unless black is stalemated.
    return isAnyLegal || node.m_blackInCheck >= 0 ? kMate : kNoMate;
}

}  // namespace quillmere

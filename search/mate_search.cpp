#include "search/mate_search.h"

#include "core/direct_mates.h"
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/material.h"
#include "core/move_generation.h"
#include "core/platform/tick_count.h"
#include "core/rights.h"
#include "heuristics/rules.h"
#include "search/forcing_moves.h"
#include "search/heuristic_fallback.h"
#include "search/move_ordering.h"
#include "search/moves_log.h"
#include "search/node_hooks.h"
#include "search/pause.h"
#include "search/quick_mate.h"
#include "search/refuted_moves.h"
#include "search/register_access.h"
#include "search/repetition.h"

#include <algorithm>
#include <cassert>

namespace quillmere {
namespace {

// The nodes come as twins: with kLogged they also write the moves log (search/moves_log.h). The
// public names choose the twin at the top; below it the recursion stays inside, so that a search
// without a log does not even ask for one.
template <bool kLogged>
TVerdict FindMateTwin(TChessboard& node, bool useRegister);
template <bool kLogged>
TVerdict CheckDefencesTwin(TChessboard& node);

bool IsLogged(const TChessboard& node) {
    return node.m_threadContext->movesLog != nullptr;
}

// The log calls of a twin; without a log there is nothing left of them.

template <bool kLogged>
void LogMoveIf(const TChessboard& child, TMove move) {
    if constexpr (kLogged)
        LogMove(child, move, child.IsWhiteToMove());
}

template <bool kLogged>
void LogResultIf(const TChessboard& child, TVerdict verdict) {
    if constexpr (kLogged)
        LogResult(child, verdict);
}

template <bool kLogged>
void NoteDoubtIf(TThreadContext& thread, u32 code, bool isFromRegister = false) {
    if constexpr (kLogged)
        thread.doubtCause = TDoubtCause{code, isFromRegister};
}

// What the register knew about the node.
template <bool kLogged>
void LogRegisterIf(const TChessboard& node, TVerdict known) {
    if (known == kDoubtful)
        NoteDoubtIf<kLogged>(*node.m_threadContext, node.m_nMoves, true);
    if constexpr (kLogged) {
        if (known == kMate)
            LogRegisterMate(node);
    }
}

// Thresholds, all in half-moves
constexpr int kCountedLevels = 4;      // nodes below it are counted
constexpr int kUnsortedLevels = 4;     // below it black's list is not sorted
constexpr int kLazyLevels = 8;         // below it black's list comes in parts
constexpr int kSortLevel = 7;          // below it sorting white's list costs what it gives
constexpr int kCheapLevel = 11;        // below it, and a little above, the lean sort will do
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
    return node.Heur != 0 && (node.m_pass >= kPassComplete || node.m_searchContext->isExact ||
                              node.m_threadContext->isSafe);
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

// The list is short enough, or white poor enough, for the lean sort.
bool IsListCheap(const TChessboard& node) {
    constexpr int kCheapFewFigures = 13;
    constexpr int kFewFigures = 4;
    const u8* c = node.m_counts;
    if (node.m_nMoves < kCheapLevel)
        return true;
    if (node.m_nMoves < kCheapFewFigures)
        return (node.m_positionFlags & kPositionManyReplies) == 0 &&
               c[kWhiteQueens] + c[kWhiteRooks] + c[kBlackBishops] < kFewFigures;
    return node.m_nMoves == kCheapFewFigures && (node.m_positionFlags & kPositionTied) != 0;
}

// Heuristics that want the full order, and where it is worth its price.
bool IsLeanSortEnough(const TChessboard& node) {
    constexpr u32 kFullOrderHeuristics = 0x800c4;
    constexpr int kShortLevel = 8;
    constexpr int kNearKings = 4;
    constexpr int kPoorSide = 3;
    const int nearKings =
        KingDistance(node.WhiteKingSquare(), node.BlackKingSquare()) <= kNearKings ? 1 : 0;
    return (node.Heur & kFullOrderHeuristics) == 0 || node.m_nMoves <= kShortLevel ||
           CountWhiteFigures(node) + nearKings <= kPoorSide;
}

// The order of white's list. Returns false if the sort met a mate.
bool SortListedMoves(TChessboard& node, TMoveList& list, bool& retry) {
    if (node.m_nMoves >= kSortLevel && IsListCheap(node) && IsLeanSortEnough(node)) {
        list.count = SortWhiteMovesLean(node, list.count, list.moves);
    } else if (node.m_nMoves >= kSortLevel) {
        int mateFound = 0;
        u8 quietCount = 0;
        u8 mayRetry = 0;
        list.count =
            SortWhiteMoves(node, list.count, list.moves, &mateFound, &quietCount, false, &mayRetry);
        retry = mayRetry != 0;
        if (mateFound != 0)
            return false;
    }
    BringRememberedForward(node, list.count, list.moves);
    return true;
}

// Moves that the sort ranks last may be left out. Below kSortLevel nothing is ranked.
void SkipWorstMoves(const TChessboard& node, TMoveList& list, CTaint& taint) {
    if (node.m_nMoves < kSortLevel)
        return;
    const int kept = CountWithoutWorst(node, list.count);
    if (kept < list.count)
        taint.LeftOut();
    list.count = kept;
}

// Step 7 of FindMate. Returns false if the sort met a mate.
bool ListWhiteMoves(TChessboard& node, TMoveList& list, CTaint& taint, bool& retry) {
    TReplay& replay = node.m_threadContext->replay;
    if (replay.flag != 0) {
        list.count = replay.count;
        for (int i = 0; i < list.count; ++i)
            list[i] = replay.list[i];
        replay.flag = 0;
        if (IsForcedListOn(node))
            taint.LeftOut();  // the node that shared its list out had cut it
        return true;
    }
    if (ReplaceWhiteMoves(node, list)) {
        taint.LeftOut();
    } else {
        if (node.m_nMoves > kForcingLevel && hooks::GetForcingMoves(node, list))
            return true;
        list.count = node.m_whiteInCheck >= 0 ? GetWhiteEvasions(node, list.moves)
                                              : GetAllWhiteMoves(node, list.moves);
    }
    if (IsForcedListOn(node)) {
        taint.LeftOut();
        list.count = KeepForcingMoves(node, list.count, list.moves);
    }
    if ((node.Heur & SH_USEBLOCKBLACKPAWNSLEVEL) != 0)
        return true;
    if (!SortListedMoves(node, list, retry))
        return false;
    SkipWorstMoves(node, list, taint);
    return true;
}

// Ends a line whose mate is thought to be unavoidable. It must be a complete black node, whatever
// made it look so.
template <bool kLogged>
TVerdict FinishMate(TChessboard& child) {
    return CheckDefencesTwin<kLogged>(child);
}

void StoreMateIf(const TChessboard& node) {
    if (MayUseRegister(node))
        StoreMate(node);
}

}  // namespace

void FlushNodeCount(const TChessboard& node) {
    TThreadContext& thread = *node.m_threadContext;
    TSearchContext& context = *node.m_searchContext;
    const u64 total = context.nodeCount.fetch_add(thread.pendingNodes, std::memory_order_relaxed) +
                      thread.pendingNodes;
    thread.flushedNodes += thread.pendingNodes;
    thread.pendingNodes = 0;
    if (context.nodeLimit != 0 && total >= context.nodeLimit &&
        !context.isNodeLimitReached.exchange(true, std::memory_order_relaxed))
        SetStop(context, kStopAll);
}

TVerdict FindMate(TChessboard& node, bool useRegister) {
    return IsLogged(node) ? FindMateTwin<true>(node, useRegister)
                          : FindMateTwin<false>(node, useRegister);
}

TVerdict CheckDefences(TChessboard& node) {
    return IsLogged(node) ? CheckDefencesTwin<true>(node) : CheckDefencesTwin<false>(node);
}

namespace {

template <bool kLogged>
TVerdict FindMateTwin(TChessboard& node, bool useRegister) {
    TThreadContext& thread = *node.m_threadContext;
    const int level = node.m_nMoves;
    assert(node.IsWhiteToMove() && node.m_blackInCheck < 0);
    thread.ClearHorizon(level);
    CutToForcedMate(node);

    // Step 1. Ask the endgame tables.
    if ((node.m_positionFlags & kPositionHasTables) != 0) {
        const TVerdict known = hooks::AskTables(node);
        if (known != kNothingKnown)
            return known;
    }

    // Step 2. Ask the register.
    if (useRegister && MayUseRegister(node)) {
        const TVerdict known = FindInRegister(node);
        if (known >= kDoubtful && (known != kDoubtful || node.m_pass < kPassComplete)) {
            LogRegisterIf<kLogged>(node, known);
            return known;
        }
    }

    // Step 3. Count the node; the last move is found without a list.
    if (level < kCountedLevels)
        CountNode(node);
    if (level == 1)
        return FindMateAtLastMove(node);
    if (IsWorkUsedUp(node))
        return kNoMate;

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

    // Look for a quicker mate, before there is a list.
    if (MayTryQuickMates(node)) {
        const TVerdict quick = TryQuickMates(node);
        if (IsStopped(node))
            return kNoMate;
        if (quick == kMate)
            return kMate;
    }
    if (MayFallBack(node)) {
        const bool isMate = MatesByFallback(node);
        if (IsStopped(node))
            return kNoMate;
        if (isMate)
            return kMate;
    }

    // Step 7. Generate and order the moves.
    CTaint taint;
    const u8 replayFlag = thread.replay.flag;
    if (node.OneColourMode() != kOneColourOff)
        taint.LeftOut();
    TMoveList list;
    bool retry = false;
    if (!ListWhiteMoves(node, list, taint, retry)) {
        StoreMateIf(node);
        return kMate;
    }
    if (list.count == 0 && IsForcedListOn(node)) {
        NoteDoubtIf<kLogged>(thread, SH_FINDFORCEDMATE);
        return kEndOfForced;
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
    CRefutedMoves refuted(node);
    if (level == kFilteredLevel)
        refuted.Start();
    for (TListState place{list.moves, list.count, 0}; place.index < list.count; ++place.index) {
        // Step 10.1. Pause and stop.
        const EPause pause = CheckPause(node, place);
        if (pause != EPause::kRun)
            return VerdictOfPause(pause);
        const TMove move = list[place.index];
        if (level == kFilteredLevel && refuted.Contains(move))
            continue;

        // Step 10.2. King moves that an assumption leaves out.
        if (IsKingMoveLeftOut(node, move)) {
            taint.LeftOut();
            NoteDoubtIf<kLogged>(thread, node.Heur);
            continue;
        }

        // Step 10.3. Make the move.
        child = node;
        child.m_parent = &node;
        const int made = MakeWhiteMove(child, move);
        if (made == kMoveLeftOut) {
            taint.LeftOut();
            NoteDoubtIf<kLogged>(thread, node.Heur);
        }
        if (made != kMoveMade)
            continue;
        if (child.m_blackInCheck < 0 && thread.quickSearch.isChecksOnly) {
            taint.LeftOut();
            continue;
        }
        UpdateAfterWhiteMove(child);
        LogMoveIf<kLogged>(child, move);

        // Step 10.4. A move into a repetition proves nothing.
        int repeated = 0;
        if (IsRepetition(child, &repeated)) {
            RaiseHorizon(thread, level, repeated, false);
            LogResultIf<kLogged>(child, kRepetition);
            continue;
        }

        // Step 10.5. Moves that the heuristics leave out.
        if (IsMoveLeftOut(child)) {
            taint.LeftOut();
            NoteDoubtIf<kLogged>(thread, child.Heur);
            LogResultIf<kLogged>(child, kDoubtful);
            continue;
        }

        // Step 10.6. Tell where we are.
        state.moveIndex = static_cast<u16>(place.index);
        state.publicMoveIndex.store(state.moveIndex, std::memory_order_relaxed);

        // Step 10.7. Search the child.
        const bool isFinish = level >= kUnavoidableLevel && node.Ply() < kNearRoot &&
                              child.BlackKingEdgeDistance() == 0 && hooks::IsMateUnavoidable(child);
        const TVerdict verdict =
            isFinish ? FinishMate<kLogged>(child) : CheckDefencesTwin<kLogged>(child);
        if (IsStopped(node))
            return kNoMate;
        LogResultIf<kLogged>(child, verdict);

        // Step 10.8. What a failure leaves behind.
        if (verdict <= 0) {
            if (level == kFilteredLevel)
                refuted.Learn();
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
        StoreMateIf(node);
        RememberMove(node, move);
        return kMate;
    }

    // Step 11. The moves are used up. A stop makes everything void.
    TListState end{list.moves, list.count, list.count};
    const EPause pause = CheckPause(node, end);
    if (pause == EPause::kStop)
        return kNoMate;
    if (pause == EPause::kSkip)
        taint.LeftOut();
    if (IsHeuristicsDoubtful(node))
        NoteDoubtIf<kLogged>(thread, node.Heur);
    const bool isDoubtful =
        taint.IsTainted() || state.isHorizonDoubtful || IsHeuristicsDoubtful(node);

    // Step 12. A result that depends on a repetition above this node is not stored.
    if (state.horizon > level) {
        state.isHorizonDoubtful = isDoubtful;
        return kRepetition;
    }

    // Step 13. Store. A horizon at or below this level lies inside this subtree: it is resolved.
    if (replayFlag <= 1 && MayUseRegister(node)) {
        if (!isDoubtful)
            StoreNoMate(node);
        else if (!thread.quickSearch.isChecksOnly)  // the doubt would be that of full lists
            StoreDoubtful(node);
    }

    // Step 14. A list that the sort had cut for a heuristic is run again in full.
    if (retry && TakeFullList(node))
        return FindMateTwin<kLogged>(node, false);
    return isDoubtful ? kDoubtful : kNoMate;
}

// Black's moves, in parts: in the frequent case that an early defence refutes, the rest is never
// generated. First come the moves that refuted in like nodes; then, below kUnsortedLevels, the moves
// of one figure after the other, and above it all others, in order. Near the root and in check the
// list is one part.
class CBlackMoves {
public:
    explicit CBlackMoves(TChessboard& node) : m_node(node) {}

    // Step 3 of CheckDefences. The verdict that ends the node, or kNothingKnown.
    TVerdict Start() {
        if (m_node.m_blackInCheck >= 0) {
            m_list.count = GetBlackEvasions(m_node, m_list.moves);
            m_nextSquare = kSquareCount;
            Sort();
        } else if (!IsLazy()) {
            ListRest();
        } else if (!ListRemembered()) {
            Next();
        }
        return m_verdict;
    }

    // The next part. False if there is none, or if a verdict was met that ends the node.
    bool Next() {
        m_list.count = 0;
        if (m_nextSquare < kSquareCount) {
            if (m_node.m_nMoves < kUnsortedLevels)
                ListNextFigure();
            else
                ListRest();
        }
        if (m_list.count == 0)
            ListPass();
        return m_list.count != 0 && m_verdict == kNothingKnown;
    }

    // Of the last part, after Next() answered false.
    TVerdict Verdict() const { return m_verdict; }

    TMoveList& List() { return m_list; }
    bool KingMovesFiltered() const { return m_kingMovesFiltered; }
    bool IsLazy() const { return m_node.m_nMoves < kLazyLevels && m_node.m_blackInCheck < 0; }

private:
    void ListRest() {
        m_list.count = GetAllBlackMoves(m_node, m_list.moves);
        m_list.count = DropListed();
        m_nextSquare = kSquareCount;
        Sort();
    }

    void ListNextFigure() {
        while (m_list.count == 0) {
            m_nextSquare = NextFigureSquare(m_node.m_board, m_nextSquare, kBlack);
            if (m_nextSquare == kSquareCount)
                break;
            m_list.count = GetBlackMoves(m_node, m_nextSquare++, m_list.moves);
            m_list.count = DropListed();
        }
    }

    // In one-colour play the pass comes last: the bishop that was taken off always has a tempo to
    // spare.
    void ListPass() {
        if (m_isPassListed || m_node.OneColourMode() == kOneColourOff || m_node.m_blackInCheck >= 0)
            return;
        m_isPassListed = true;
        const int king = m_node.BlackKingSquare();
        m_list[m_list.count++] = MakeMove(king, king);
    }

    // Checks are answered by few moves, so that they are worth an order even at the last levels.
    void Sort() {
        const int count = SortBlackMoves(m_node, m_list.count, m_list.moves);
        m_kingMovesFiltered = true;
        m_list.count = std::max(count, 0);
        if (count == kSortRefuted)
            m_verdict = kNoMate;
        else if (count < 0)
            m_verdict = count == kSortDoubtful ? kDoubtful : kRepetition;
    }

    // A lazy list begins with the moves that refuted in like nodes, as far as they are possible.
    bool ListRemembered() {
        TMove remembered[kRememberedMoves];
        const int count = GetRememberedMoves(m_node, remembered);
        m_list.count = 0;
        for (int i = 0; i < count; ++i) {
            if (!IsBlack(m_node.m_board[remembered[i].from]))
                continue;
            TMove moves[64];
            const int moveCount = GetBlackMoves(m_node, remembered[i].from, moves);
            if (std::any_of(moves, moves + moveCount, [&](TMove move) {
                    return MovesEqual(move, remembered[i]);
                }))
                m_list[m_list.count++] = m_listed[m_listedCount++] = remembered[i];
        }
        return m_list.count != 0;
    }

    // Of a figure's moves, those that did not stand in the list before.
    int DropListed() {
        const auto isListed = [this](TMove move) {
            return std::any_of(m_listed, m_listed + m_listedCount, [move](TMove listed) {
                return MovesEqual(listed, move);
            });
        };
        return static_cast<int>(std::remove_if(m_list.begin(), m_list.end(), isListed) -
                                m_list.begin());
    }

    TChessboard& m_node;
    TMoveList m_list;
    TMove m_listed[kRememberedMoves];
    int m_listedCount = 0;
    int m_nextSquare = 0;
    bool m_isPassListed = false;
    bool m_kingMovesFiltered = false;
    TVerdict m_verdict = kNothingKnown;
};

// Step 7.6 of CheckDefences: the mate is looked for with one assumption more. A mate found so is a
// mate; otherwise the child stands as it was.
template <bool kLogged>
bool IsMateAssumed(TChessboard& child) {
    const u32 heur = child.Heur;
    const u32 heurParams = child.HeurParams;
    child.Heur |= SH_DONTLETFIGUREUNBLOCK;
    if (child.m_threadContext->computeHeurParams != nullptr)
        child.m_threadContext->computeHeurParams(child);
    const TVerdict verdict = FindMateTwin<kLogged>(child, true);
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

template <bool kLogged>
TVerdict CheckDefencesTwin(TChessboard& node) {
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
        NoteSingleQueen(node);

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
            if (made != kMoveMade)
                NoteDoubtIf<kLogged>(thread,
                                     made == kMoveLeftOut ? node.Heur : static_cast<u32>(made));
            if (made == kMateImpossible)
                return NoMateOf(node);
            if (made != kMoveMade)
                return kDoubtful;
            LogMoveIf<kLogged>(child, move);
            isAnyLegal = true;
            state.moveIndex = static_cast<u16>(place.index);
            state.publicMoveIndex.store(state.moveIndex, std::memory_order_relaxed);

            // A move into a repetition is a defence that holds.
            int repeated = 0;
            if (IsRepetition(child, &repeated)) {
                RaiseHorizon(thread, level, repeated, false);
                LogResultIf<kLogged>(child, kRepetition);
                return kRepetition;
            }

            // Step 7.4. Bookkeeping of the heuristics; lines that they give up.
            UpdateAfterBlackMove(child);
            if (IsReplyLeftOut(child)) {
                NoteDoubtIf<kLogged>(thread, child.Heur);
                LogResultIf<kLogged>(child, kDoubtful);
                return kDoubtful;
            }

            // Steps 7.5 and 7.6. Search the child; near the root of a long task first as if a
            // figure of black could not be unblocked.
            const bool isTried = level >= kUnavoidableLevel && node.Ply() <= kUnblockPlies &&
                                 hooks::ShouldTryUnblockFirst(child) &&
                                 IsMateAssumed<kLogged>(child);
            const TVerdict verdict = isTried ? kMate : FindMateTwin<kLogged>(child, true);
            if (IsStopped(node))
                return kNoMate;
            LogResultIf<kLogged>(child, verdict);

            // Step 7.7. A defence that holds, or a doubt, ends the node.
            if (verdict == kRepetition)
                return TakeRepetition(thread, level);
            if (verdict <= 0) {
                RememberMove(node, move);
                return verdict;
            }

            // Step 7.8. The defence failed.
            CheckMateAgainstRegister(child);

            // Step 7.9. Promotion pruning: rook and bishop fail as the queen did. The knight, which
            // moves otherwise, is always tried.
            if (move.Promotion() == kQueen && thread.isPromotionSquareFree)
                dropped = move;
            thread.isPromotionSquareFree = false;
        }
    } while (moves.Next());
    if (moves.Verdict() != kNothingKnown)
        return moves.Verdict();

    // Step 8. No defence is left: mate, unless black is stalemated.
    return isAnyLegal || node.m_blackInCheck >= 0 ? kMate : kNoMate;
}

template TVerdict FindMateTwin<false>(TChessboard& node, bool useRegister);
template TVerdict FindMateTwin<true>(TChessboard& node, bool useRegister);
template TVerdict CheckDefencesTwin<false>(TChessboard& node);
template TVerdict CheckDefencesTwin<true>(TChessboard& node);

}  // namespace

}  // namespace quillmere

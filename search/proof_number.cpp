#include "search/proof_number.h"

#include "core/direct_mates.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/rules.h"
#include "search/forcing_moves.h"
#include "search/mate_search.h"
#include "search/move_ordering.h"
#include "search/pause.h"
#include "search/register_access.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace quillmere {
namespace {

// Half-moves from which FindMate takes over: there the filters of the last plies beat any tree.
constexpr int kLastMoves = 3;
// The outside is asked and told once in so many visits.
constexpr u64 kPeriod = 4096;
// Nodes go to the counter of the context once in so many visits.
constexpr u64 kCountPeriod = 256;
// The best child may overtake the second by this share before the node is looked at anew.
constexpr u32 kOvertakeDivisor = 4;
constexpr std::size_t kExpectedChildren = 64;

u32 Capped(u64 number) {
    return static_cast<u32>(std::min<u64>(number, kProofInfinity));
}

// While it lives, positions on the way count for nothing: a verdict belongs to position and depth.
class CNoRepetitions {
public:
    explicit CNoRepetitions(TSearchContext& context)
        : m_context(context), m_bound(context.repetitionBound) {
        context.repetitionBound = 0;
    }
    ~CNoRepetitions() { m_context.repetitionBound = m_bound; }
    CNoRepetitions(const CNoRepetitions&) = delete;
    CNoRepetitions& operator=(const CNoRepetitions&) = delete;

private:
    TSearchContext& m_context;
    const u16 m_bound;
};

// White proves a node with one child, black disproves it with one: the number that one child
// decides, and the one that all children bear together.
u32 OwnNumber(const TChessboard& node, TProofNumbers numbers) {
    return node.IsWhiteToMove() ? numbers.proof : numbers.disproof;
}
u32 OtherNumber(const TChessboard& node, TProofNumbers numbers) {
    return node.IsWhiteToMove() ? numbers.disproof : numbers.proof;
}
TProofNumbers NumbersOf(const TChessboard& node, u32 own, u32 other) {
    return node.IsWhiteToMove() ? TProofNumbers{own, other} : TProofNumbers{other, own};
}

// Tells in *isCut that the word left moves out.
int ListWhiteMoves(TChessboard& node, TMoveList& list, bool* isCut) {
    *isCut = ReplaceWhiteMoves(node, list);
    if (!*isCut)
        list.count = node.m_whiteInCheck >= 0 ? GetWhiteEvasions(node, list.moves)
                                              : GetAllWhiteMoves(node, list.moves);
    if (!IsForcedListOn(node))
        return list.count;
    *isCut = true;
    return KeepForcingMoves(node, list.count, list.moves);
}

int ListBlackMoves(TChessboard& node, TMove* list) {
    const int count =
        node.m_blackInCheck >= 0 ? GetBlackEvasions(node, list) : GetAllBlackMoves(node, list);
    return DropUnsafeKingSteps(node, count, list);
}

}  // namespace

CProofNumberSearch::CProofNumberSearch(TChessboard& root, std::size_t tableBytes)
    : m_thread(*root.m_threadContext), m_context(*root.m_searchContext), m_table(tableBytes) {
    const std::size_t levels = root.m_nMoves + std::size_t{1};
    m_nodes.resize(levels);
    m_children.reserve(levels * kExpectedChildren);
}

TProofAnswer CProofNumberSearch::Search(TChessboard& node,
                                        u64 madeMoves,
                                        const std::vector<TMove>& skipped,
                                        int width) {
    assert(node.m_nMoves < m_nodes.size() && node.OneColourMode() == kOneColourOff);
    const CNoRepetitions noRepetitions(m_context);
    m_limit = m_thread.madeMoves +
              std::min(madeMoves, std::numeric_limits<u64>::max() - m_thread.madeMoves);
    m_top = &node;
    m_skipped = &skipped;
    m_width = width;
    m_topMove = TMove{};
    m_isOver = false;
    m_hasLearned = false;
    m_children.clear();
    const TProofNumbers numbers = Visit(node, KeyOf(node), {kProofInfinity, kProofInfinity});
    TProofAnswer answer;
    answer.isLimit = !numbers.IsSettled();
    answer.move = answer.isLimit ? TMove{} : m_topMove;
    if (numbers.proof == 0) {
        answer.verdict = kMate;
        if (node.m_nMoves == node.m_nRootMoves)
            m_widthOfMate = width;
    } else if (numbers.disproof == 0 && node.Heur == 0 && m_width == 0 && !m_isAnythingLeftOut)
        answer.verdict = kNoMate;
    return answer;
}

int CProofNumberSearch::ShortestMate(const TChessboard& node) const {
    return m_table.ShortestMate(ProofKeyOf(node));
}

// Searches below the node until one of its numbers reaches its threshold, or the search is over.
TProofNumbers
CProofNumberSearch::Visit(TChessboard& node, const TProofKey& key, TProofNumbers thresholds) {
    const u64 startMoves = m_thread.madeMoves;
    TProofNumbers numbers;
    if (node.IsWhiteToMove() && node.m_nMoves <= kLastMoves && &node != m_top) {
        numbers = VisitLastMoves(node);
    } else {
        TFrame frame{m_children.size(), 0};
        if (!Expand(node, frame, &numbers))
            numbers = GoThrough(node, frame, thresholds);
        m_children.resize(frame.first);
    }
    if (IsStopped(node))
        m_isOver = true;
    // A search cut short has told the truth of what it settled only.
    if (!m_isOver || (numbers.proof == 0 && !IsStopped(node)))
        Keep(node, key, numbers, m_thread.madeMoves - startMoves);
    m_hasLearned = m_hasLearned || &node != m_top;
    return numbers;
}

TProofNumbers CProofNumberSearch::VisitLastMoves(TChessboard& node) {
    const TVerdict verdict = FindMate(node, false);
    if (IsStopped(node)) {
        m_isOver = true;
        return TProofNumbers{};
    }
    NoteLeftOut(node, verdict < 0);
    return verdict == kMate ? kProved : kDisproved;
}

TProofNumbers
CProofNumberSearch::GoThrough(TChessboard& node, const TFrame& frame, TProofNumbers thresholds) {
    for (;;) {
        const TStep step = NextStep(node, frame, thresholds);
        if (&node == m_top)
            m_topMove = m_children[frame.first + step.best].move;
        if (step.numbers.IsSettled() || step.numbers.proof >= thresholds.proof ||
            step.numbers.disproof >= thresholds.disproof || IsOver(node))
            return step.numbers;
        TChessboard& child = m_nodes[node.m_nMoves];
        const TChild best = m_children[frame.first + step.best];
        Make(node, child, best.move);
        const TProofNumbers numbers = Visit(child, best.key, step.thresholds);
        if (!m_isOver || numbers.proof == 0)
            m_children[frame.first + step.best].numbers = numbers;
        if (!m_isOver)
            TakeSettled(node, frame);
    }
}

// Of a node with all its children valued: the child with the least own number, of equal ones that
// with the least other number.
CProofNumberSearch::TStep CProofNumberSearch::NextStep(const TChessboard& node,
                                                       const TFrame& frame,
                                                       TProofNumbers thresholds) const {
    constexpr u32 kNone = kProofInfinity + 1;
    TStep step;
    u32 least = kNone;
    u32 second = kNone;
    u32 leastOther = kProofInfinity;
    u32 greatestOther = 0;
    u32 openCount = 0;
    for (std::size_t i = 0; i < frame.count; ++i) {
        const TProofNumbers numbers = m_children[frame.first + i].numbers;
        const u32 own = OwnNumber(node, numbers);
        const u32 other = OtherNumber(node, numbers);
        openCount += other != 0 ? 1 : 0;
        greatestOther = std::max(greatestOther, other);
        if (own < least || (own == least && other < leastOther)) {
            second = least;
            least = own;
            leastOther = other;
            step.best = i;
        } else {
            second = std::min(second, own);
        }
    }
    const u32 others = openCount == 0 ? 0 : openCount - 1;
    const u32 sum = Capped(u64{greatestOther} + others);
    step.numbers =
        NumbersOf(node, openCount == 0 ? kProofInfinity : least, least == 0 ? kProofInfinity : sum);
    const u32 ownThreshold =
        std::min(OwnNumber(node, thresholds), Capped(u64{second} + second / kOvertakeDivisor + 1));
    const u32 otherThreshold = OtherNumber(node, thresholds);
    step.thresholds =
        NumbersOf(node,
                  ownThreshold,
                  otherThreshold >= kProofInfinity ? kProofInfinity : otherThreshold - others);
    return step;
}

// What the search of one child settled of the others.
void CProofNumberSearch::TakeSettled(const TChessboard& node, const TFrame& frame) {
    for (std::size_t i = frame.first; i < frame.first + frame.count; ++i) {
        TChild& child = m_children[i];
        if (!child.numbers.IsSettled())
            m_table.FindSettled(child.key, node.m_nMoves - 1, &child.numbers);
    }
}

bool CProofNumberSearch::Expand(TChessboard& node, TFrame& frame, TProofNumbers* settled) {
    TMoveList list;
    bool isCut = false;
    list.count = node.IsWhiteToMove() ? ListWhiteMoves(node, list, &isCut)
                                      : ListBlackMoves(node, list.moves);
    NoteLeftOut(node, isCut);
    TChessboard& child = m_nodes[node.m_nMoves];
    bool isAnySkipped = false;
    for (const TMove move : list) {
        if (IsSkipped(node, move)) {
            isAnySkipped = true;
            continue;
        }
        const EMade made = Make(node, child, move);
        if (made == EMade::kNone)
            continue;
        TChild entry;
        entry.move = move;
        entry.numbers = kDisproved;
        if (made == EMade::kMade) {
            entry.key = KeyOf(child);
            if (!m_table.Find(entry.key, child.m_nMoves, &entry.numbers)) {
                entry.numbers = FirstNumbers(child);
                TProofNumbers hint;
                if (!entry.numbers.IsSettled() && m_table.FindHint(entry.key, &hint) &&
                    hint.proof > entry.numbers.proof)
                    entry.numbers = hint;
                if (entry.numbers.IsSettled())
                    Keep(child, entry.key, entry.numbers, 1);
            }
        }
        if (OwnNumber(node, entry.numbers) == 0) {
            *settled = entry.numbers;
            if (&node == m_top)
                m_topMove = move;
            return true;
        }
        m_children.push_back(entry);
        ++frame.count;
    }
    if (frame.count != 0)
        return false;
    // With its moves skipped black is not stalemated: none of the others, of which there are none,
    // holds.
    const bool isStalemate = node.m_blackInCheck < 0 && !isAnySkipped;
    *settled = node.IsWhiteToMove() || isStalemate ? kDisproved : kProved;
    return true;
}

// The numbers of a node that was never searched: what it takes at the least.
TProofNumbers CProofNumberSearch::FirstNumbers(TChessboard& child) {
    if (child.IsWhiteToMove()) {
        if (IsMateInOne(child))
            return kProved;
        return child.m_nMoves == 1 ? kDisproved : TProofNumbers{1, 1};
    }
    if (child.m_blackInCheck >= 0 && !BlackHasEvasion(child))
        return kProved;
    if (child.m_nMoves == 0)
        return kDisproved;
    // Every reply must be answered.
    TMoveList replies;
    replies.count = ListBlackMoves(child, replies.moves);
    if (m_width != 0)
        return NarrowNumbers(child, replies);
    return {static_cast<u32>(std::max(replies.count, 1)), 1};
}

// The same in a narrow search: replies that are mated at once need no answer any more, and too many
// of the others put the move out of the search.
TProofNumbers CProofNumberSearch::NarrowNumbers(TChessboard& child, TMoveList& replies) {
    int open = 0;
    TChessboard& answered = m_nodes[child.m_nMoves];
    for (const TMove reply : replies) {
        const EMade made = Make(child, answered, reply);
        if (made == EMade::kRefutes)
            return kDisproved;
        open += made == EMade::kMade && !IsMateInOne(answered) ? 1 : 0;
        if (open > m_width)
            return kDisproved;
    }
    return {static_cast<u32>(std::max(open, 1)), 1};
}

TProofKey CProofNumberSearch::KeyOf(const TChessboard& node) const {
    return ProofKeyOf(node).WithWidth(m_width);
}

CProofNumberSearch::EMade
CProofNumberSearch::Make(TChessboard& node, TChessboard& child, TMove move) {
    child = node;
    child.m_parent = &node;
    if (node.IsWhiteToMove()) {
        const int made = IsKingMoveLeftOut(node, move) ? kMoveLeftOut : MakeWhiteMove(child, move);
        NoteLeftOut(node, made == kMoveLeftOut);
        if (made != kMoveMade)
            return EMade::kNone;
        UpdateAfterWhiteMove(child);
        const bool isLeftOut = IsMoveLeftOut(child);
        NoteLeftOut(node, isLeftOut);
        return isLeftOut ? EMade::kNone : EMade::kMade;
    }
    const int made = MakeBlackMove(child, move, true);
    if (made == kMoveIllegal)
        return EMade::kNone;
    NoteLeftOut(node, made != kMoveMade && made != kMateImpossible);
    if (made != kMoveMade)
        return EMade::kRefutes;
    UpdateAfterBlackMove(child);
    if (!IsReplyLeftOut(child))
        return EMade::kMade;
    NoteLeftOut(node, true);
    return EMade::kRefutes;
}

void CProofNumberSearch::Keep(const TChessboard& node,
                              const TProofKey& key,
                              TProofNumbers numbers,
                              u64 work) {
    // Without its skipped moves it is another node.
    if (&node == m_top && !m_skipped->empty())
        return;
    m_table.Store(key, node.m_nMoves, numbers, work);
    if (numbers.proof == 0 && node.IsWhiteToMove() && MayUseRegister(node))
        StoreMate(node);
}

bool CProofNumberSearch::IsOver(TChessboard& node) {
    ++m_visits;
    ++m_thread.pendingNodes;
    if (m_visits % kCountPeriod == 0)
        FlushNodeCount(node);
    if (m_visits % kPeriod == 0 && m_context.progress != nullptr)
        m_context.progress->OnPeriodicCheck(node);
    TListState notRotated;
    // Before anything was learned a limit would be met at the same place again and again.
    m_isOver = m_isOver || (m_hasLearned && m_thread.madeMoves >= m_limit) ||
               CheckPause(node, notRotated, kBlackPauseMs) != EPause::kRun;
    return m_isOver;
}

// A node with a word has a key of its own, so that its doubts reach nobody who asks without.
void CProofNumberSearch::NoteLeftOut(const TChessboard& node, bool isLeftOut) {
    m_isAnythingLeftOut = m_isAnythingLeftOut || (isLeftOut && node.Heur == 0);
}

bool CProofNumberSearch::IsSkipped(const TChessboard& node, TMove move) const {
    return &node == m_top &&
           std::any_of(m_skipped->begin(), m_skipped->end(), [move](TMove skipped) {
               return MovesEqual(move, skipped);
           });
}

}  // namespace quillmere

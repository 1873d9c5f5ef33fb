#include "search/best_defence.h"

#include "core/direct_mates.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/thread_context.h"
#include "heuristics/rules.h"
#include "search/mate_search.h"
#include "search/pause.h"
#include "search/register_access.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <vector>

namespace quillmere {
namespace {

// From this many half-moves on a mate is searched for; below it the direct tests answer.
constexpr int kSearchedRound = 5;
// Below it nothing is stored in the register.
constexpr int kRegisterHalfMoves = 3;

// White, to move in `child`, mates within `halfMoves` (odd). Parent and last move stay, so that
// rights, en passant and repetition are judged by the whole line. The copy stands on the frame: the
// search below writes to the node stack from slot `halfMoves` down.
bool IsMatedWithin(const TChessboard& child, int halfMoves) {
    TChessboard test = child;
    test.m_nMoves = static_cast<u16>(halfMoves);
    if (halfMoves >= kSearchedRound)
        return FindMate(test, true) == kMate;
    return halfMoves == 1 ? IsMateInOne(test) : IsMateInTwo(test);
}

bool IsMatedByRegister(const TChessboard& child) {
    return MayUseRegister(child) && FindInRegister(child) > 0;
}

enum class EFate {
    kLost,     // mated in this round, or no legal move
    kHolds,    // not mated in this round
    kDecides,  // white cannot mate any more
};

// The legal moves of a black node, and those of them that are still in the contest.
class CDefences {
public:
    explicit CDefences(TChessboard& node) : m_node(node) {
        TMoveList list;
        list.count = node.m_blackInCheck >= 0 ? GetBlackEvasions(node, list.moves)
                                              : GetAllBlackMoves(node, list.moves);
        std::copy_if(list.begin(), list.end(), std::back_inserter(m_moves), [&node](TMove move) {
            return IsLegalMove(node, move);
        });
        if (node.OneColourMode() != kOneColourOff && node.m_blackInCheck < 0)
            m_moves.push_back(MakeMove(node.BlackKingSquare(), node.BlackKingSquare()));
        m_left.resize(m_moves.size());
        std::iota(m_left.begin(), m_left.end(), 0);
    }

    bool HasMoves() const { return !m_moves.empty(); }
    bool IsDecided() const { return m_left.size() <= 1; }
    TMove First() const { return m_moves[m_left.front()]; }
    TMove Last() const { return m_moves[m_left.back()]; }

    // One round in the order of the list; it ends as soon as one move is left. False if stopped.
    template <typename TTest>
    bool PlayRound(const TTest& isMated) {
        for (auto place = m_left.begin(); place != m_left.end() && !IsDecided();) {
            const EFate fate = FateOf(*place, isMated);
            if (IsStopped(m_node))
                return false;
            if (fate == EFate::kDecides) {
                m_left = {*place};
                return true;
            }
            place = fate == EFate::kLost ? m_left.erase(place) : std::next(place);
        }
        return true;
    }

    // The same to the end: *allLost if every move is lost, and the contest then stays as it was.
    template <typename TTest>
    bool PlayWholeRound(const TTest& isMated, bool* allLost) {
        std::vector<int> holding;
        for (const int index : m_left) {
            const EFate fate = FateOf(index, isMated);
            if (IsStopped(m_node))
                return false;
            if (fate != EFate::kLost)
                holding.push_back(index);
        }
        *allLost = holding.empty();
        if (!*allLost)
            m_left = std::move(holding);
        return true;
    }

    // A round of which only the last move that holds is wanted; else as PlayWholeRound.
    template <typename TTest>
    bool FindLastHolding(const TTest& isMated, bool* allLost) {
        *allLost = true;
        for (std::size_t i = m_left.size(); i-- > 0 && *allLost;) {
            const EFate fate = FateOf(m_left[i], isMated);
            if (IsStopped(m_node))
                return false;
            *allLost = fate == EFate::kLost;
            if (!*allLost)
                m_left = {m_left[i]};
        }
        return true;
    }

private:
    // A rule of thumb that white cannot mate any more proves nothing, and a move that an assumption
    // leaves out is not answered: both hold.
    template <typename TTest>
    EFate FateOf(int index, const TTest& isMated) {
        TChessboard child = m_node;
        child.m_parent = &m_node;
        switch (MakeBlackMove(child, m_moves[index], false)) {
        case kMoveIllegal:
            return EFate::kLost;
        case kMateImpossible:
            return EFate::kDecides;
        case kMoveMade:
            UpdateAfterBlackMove(child);
            return isMated(child) ? EFate::kLost : EFate::kHolds;
        default:
            return EFate::kHolds;
        }
    }

    TChessboard& m_node;
    std::vector<TMove> m_moves;
    std::vector<int> m_left;  // indices of m_moves, rising
};

auto RoundTest(int halfMoves) {
    return [halfMoves](const TChessboard& child) { return IsMatedWithin(child, halfMoves); };
}

}  // namespace

bool GetBestDefence(TChessboard& node, TMove* move) {
    CDefences defences(node);
    if (!defences.HasMoves()) {
        *move = TMove{};
        return !IsStopped(node);
    }
    const int limit = std::min(node.m_nMoves - 1, kMaxDefenceRound);
    for (int round = 1; round <= limit && !defences.IsDecided(); round += 2) {
        if (!defences.PlayRound(RoundTest(round)))
            return false;
    }
    if (!defences.IsDecided() && node.m_nMoves > kRegisterHalfMoves &&
        !defences.PlayRound(IsMatedByRegister))
        return false;
    if (IsStopped(node))
        return false;
    *move = defences.First();
    return true;
}

bool FindLongestDefence(TChessboard& node, TMove* defence, int* halfMoves) {
    CDefences defences(node);
    if (!defences.HasMoves())
        return false;
    const int limit = node.m_nMoves - 1;
    int round = 1;
    // Whatever is left after the last round but one needs the full length.
    for (bool allLost = false; round < limit; round += 2) {
        const bool isLastRound = round + 2 >= limit;
        const bool isPlayed = isLastRound ? defences.FindLastHolding(RoundTest(round), &allLost)
                                          : defences.PlayWholeRound(RoundTest(round), &allLost);
        if (!isPlayed)
            return false;
        if (allLost)
            break;
    }
    if (IsStopped(node))
        return false;
    *defence = defences.Last();
    *halfMoves = std::min(round, limit);
    return true;
}

}  // namespace quillmere

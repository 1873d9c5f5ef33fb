#include "search/repetition.h"

#include "core/rights.h"

#include <cstring>

namespace quillmere {
namespace {

// The move that led to the node was neither a pawn move nor a capture. Needs a parent.
bool IsReversible(const TChessboard& node) {
    const TMove move = node.m_lastMove;
    return move.IsNull() || (KindOf(node.m_board[move.to]) != kPawn && move.Promotion() == 0 &&
                             node.m_parent->m_board[move.to] == 0);
}

// The node two half-moves up, or null where the walk must end.
const TChessboard* TwoUp(const TChessboard& node) {
    const TChessboard* up = &node;
    for (int i = 0; i < 2; ++i) {
        if (up->m_parent == nullptr || !IsReversible(*up))
            return nullptr;
        up = up->m_parent;
    }
    return up;
}

bool HasEqualBoard(const TChessboard& a, const TChessboard& b) {
    for (int i = 0; i < kSquareCount; i += 8) {
        u64 wordA = 0;
        u64 wordB = 0;
        std::memcpy(&wordA, a.m_board + i, sizeof wordA);
        std::memcpy(&wordB, b.m_board + i, sizeof wordB);
        if (wordA != wordB)
            return false;
    }
    return true;
}

bool IsSamePosition(const TChessboard& child, const TChessboard& earlier) {
    return HasEqualBoard(child, earlier) && !IsEnPassantPossible(earlier) &&
           DerivedCastlingRights(child) == DerivedCastlingRights(earlier);
}

// The nearest node at least four half-moves above `child`, starting from `up` (two half-moves
// above it or more), that has its position. The root never counts: each of its moves is a question
// of its own ("does this move mate within n?"), and a line that mates by way of the root's position
// is an honest answer to it.
const TChessboard* FindEarlier(const TChessboard& child, const TChessboard* up) {
    while (up != nullptr) {
        up = TwoUp(*up);
        if (up != nullptr && up->m_parent != nullptr && IsSamePosition(child, *up))
            return up;
    }
    return nullptr;
}

// From this many half-moves on an earlier node is looked past, to a still older repetition: four
// half-moves up it is cheap, further up only with more left to save. Empirical.
constexpr int kDeepWalkNear = 14;
constexpr int kDeepWalkFar = 16;
constexpr int kNearHalfMoves = 4;

}  // namespace

bool IsRepetition(const TChessboard& child, int* level) {
    const int bound = child.m_searchContext->repetitionBound;
    if (bound == 0 || child.m_parent == nullptr || !IsReversible(child))
        return false;
    const TChessboard* up = TwoUp(child);
    const TChessboard* earlier = up == nullptr ? nullptr : FindEarlier(child, up);
    if (earlier == nullptr)
        return false;
    const int parentLevel = child.m_parent->m_nMoves;
    const bool isNear = earlier->m_nMoves - child.m_nMoves <= kNearHalfMoves;
    if ((parentLevel >= kDeepWalkNear && isNear) || parentLevel >= kDeepWalkFar) {
        for (const TChessboard* older = earlier; older != nullptr && older->m_nMoves <= bound;
             older = FindEarlier(child, older))
            earlier = older;
    }
    *level = earlier->m_nMoves;
    return earlier->m_nMoves <= bound;
}

}  // namespace quillmere

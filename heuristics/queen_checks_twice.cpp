// SH_DONTLETBLACKQUEENCHECKTWICE: the black queen checks once, not again and again.
//
// A queen that checks, and after white's answer checks again, is on the way to a perpetual check;
// the attack has let it out of hand. The second check in a row is given up, unless white can take the
// queen.
//
// Let through is a step to the next square when the queen stands on the edge, where it often just
// runs from the king. With the kings two squares apart or nearer and one white queen at most, where
// checks come of themselves, only the third check in a row is given up. The checker must be the queen
// that moved; in a double check she is one of the two, since she moved.
//
// What is lost are mates that walk through the checks. For replies that give no check by a queen the
// cost is a look at the check field.
#include "core/geometry.h"
#include "heuristics/reply_rules.h"

namespace quillmere {
namespace {

constexpr int kCloseKings = 2;

// Of a white node: the queen that moved last checks.
bool IsQueenCheck(const TChessboard& node) {
    const TMove move = node.m_lastMove;
    return node.m_whiteInCheck >= 0 && node.m_parent != nullptr && !move.IsNull() &&
           node.m_parent->m_board[move.from] == kBlackQueen &&
           (node.m_whiteInCheck == move.to || node.m_whiteInCheck == kDoubleCheck);
}

// The white node before also was in check by this queen.
bool IsQueenCheckAgain(const TChessboard& node) {
    if (!IsQueenCheck(node))
        return false;
    const TChessboard* before = node.m_parent->m_parent;
    return before != nullptr && (before->m_whiteInCheck == node.m_lastMove.from ||
                                 before->m_whiteInCheck == kDoubleCheck);
}

bool IsStepOnEdge(TMove move) {
    return EdgeDistance(move.to) == 0 && KingDistance(move.from, move.to) == 1;
}

bool AreChecksNatural(const TChessboard& node) {
    return node.m_counts[kWhiteQueens] <= 1 &&
           KingDistance(node.WhiteKingSquare(), node.BlackKingSquare()) <= kCloseKings;
}

}  // namespace

bool rules::HasQueenCheckedTwice(CBlackReply& reply) {
    const TChessboard& child = reply.Child();
    if (!IsQueenCheckAgain(child) || IsStepOnEdge(reply.Move()))
        return false;
    if (AreChecksNatural(child) && !IsQueenCheckAgain(*reply.WhiteNode()))
        return false;
    return !reply.CanBeTaken();
}

}  // namespace quillmere

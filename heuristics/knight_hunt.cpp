// SH_CAPTUREKNIGHT, the black half: white must still be able to catch the knight.
//
// Black has a knight besides its king, no pawn, and white mates only after it has won the knight or
// while the knight is tied. When white has at most one figure and cannot reach a knight in its moves
// but the last, which mates, the reply is given up.
//
// Let through are the positions in which white mates in spite of the knight: the black king in a
// corner, and the black king on the edge or next to it with the white king in opposition, two squares
// off on the same file or rank. Whether a man reaches a knight is asked generously: it is taken as
// standing still and the board as empty, and pawns count when they could promote first.
//
// What is lost are mates with the knight on the board, elsewhere. The cost is a look at the counters,
// and one walk over the board where they allow the rule.
#include "core/geometry.h"
#include "core/material.h"
#include "heuristics/reply_rules.h"

namespace quillmere {
namespace {

constexpr int kOpposition = 2;
constexpr int kPromotionRank = 7;

bool IsCorner(int square) {
    return kEdgeDistance[FileOf(square)] + kEdgeDistance[RankOf(square)] == 0;
}

bool IsHeldByOpposition(const TChessboard& node) {
    const int white = node.WhiteKingSquare();
    const int black = node.BlackKingSquare();
    return node.BlackKingEdgeDistance() <= 1 && (LineBit(white, black) & kRook) != 0 &&
           KingDistance(white, black) == kOpposition;
}

// A slider needs one move along a line of its kind, and two to anywhere it can ever stand.
bool CanSliderReach(u8 kind, int from, int to, int moves) {
    if ((LineBit(from, to) & kind) != 0)
        return true;
    return moves >= 2 && (kind != kBishop || SquareParity(from) == SquareParity(to));
}

// The white man takes what stands on the square within so many moves.
bool CanReach(u8 man, int from, int to, int moves) {
    switch (KindOf(man)) {
    case kKing:
        return KingDistance(from, to) <= moves;
    case kPawn:
        return RankOf(from) + moves > kPromotionRank ||
               (RankOf(to) > RankOf(from) && KingDistance(from, to) <= moves + 1);
    case kKnight:
        return IsKnightStep(from, to) || (moves >= 2 && KingDistance(from, to) <= 2 * moves);
    default:
        return CanSliderReach(KindOf(man), from, to, moves);
    }
}

bool CanAnyReach(const TChessboard& node, int knight, int moves) {
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 man = node.m_board[square];
        if (IsWhite(man) && CanReach(man, square, knight, moves))
            return true;
    }
    return false;
}

bool CanCatchKnight(const TChessboard& node) {
    const int moves = FullMovesOf(node.m_nMoves) - 1;
    for (int square = 0; square < kSquareCount; ++square) {
        if (node.m_board[square] == kBlackKnight && CanAnyReach(node, square, moves))
            return true;
    }
    return false;
}

}  // namespace

bool rules::IsKnightOutOfReach(CBlackReply& reply) {
    const TChessboard& child = reply.Child();
    return child.m_counts[kBlackKnights] != 0 && child.m_counts[kBlackPawns] == 0 &&
           CountWhiteFigures(child) <= 1 && !IsCorner(child.BlackKingSquare()) &&
           !IsHeldByOpposition(child) && !CanCatchKnight(child);
}

}  // namespace quillmere

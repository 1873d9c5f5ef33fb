// SH_3MOVESTOMATE: with three moves to go, is the black king confined enough?
//
// A white side without its queen and with at most one rook does not mate a king in three moves that
// has five or more squares to go to, unless it is already losing them. So, with five half-moves left,
// a reply is given up when the king was that free before its reply and still is. Freedom is counted
// by the squares that the king could step to; on the edge, where it has five neighbours at most, six
// are asked for, so that a king on the edge is never too free.
//
// Black pawns that could still promote change what the squares are worth; with one on the last ranks
// before promotion nothing is said. So it is with a white queen on the board, whose reach is too long
// for a count of squares, and with white figures beyond the lists, which promotions made.
//
// What is lost are mates by a promotion or a long check in the middle of the board; the attack tries
// another move there. The cost is one count of flights, two where the first finds the king free.
#include "core/geometry.h"
#include "core/move_generation.h"
#include "heuristics/reply_rules.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kHalfMovesOfThree = 5;
// Black moves twice in the five half-moves.
constexpr int kPromotionSteps = 2;
// Free squares that are too many, by the king's distance from the edge: empirical.
constexpr int kTooManyOnEdge = 6;
constexpr int kTooManyInside = 5;

bool IsKingTooFree(TChessboard& node) {
    const int tooMany = node.BlackKingEdgeDistance() == 0 ? kTooManyOnEdge : kTooManyInside;
    return kGeometry.kingCount[node.BlackKingSquare()] >= tooMany &&
           CountFlights(node, tooMany) >= tooMany;
}

bool MayBlackPromote(const TChessboard& node) {
    if (node.m_counts[kBlackPawns] == 0)
        return false;
    const u8* begin = node.m_board + SquareAt(0, 1);
    const u8* end = node.m_board + SquareAt(0, kPromotionSteps + 1);
    return std::find(begin, end, kBlackPawn) != end;
}

}  // namespace

bool rules::IsTooFreeForThreeMoves(CBlackReply& reply) {
    TChessboard& child = reply.Child();
    const u8* c = child.m_counts;
    return child.m_nMoves == kHalfMovesOfThree && child.m_figureListValid != 0 &&
           c[kWhiteQueens] == 0 && c[kWhiteRooks] <= 1 && !MayBlackPromote(child) &&
           IsKingTooFree(child) && IsKingTooFree(reply.BlackNode());
}

}  // namespace quillmere

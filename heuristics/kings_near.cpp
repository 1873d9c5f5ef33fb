// SH_AREKINGSNEAR: the white king must be able to come and help.
//
// Without a queen, or with a queen and pawns only, a mate needs the white king near the black one:
// two squares apart when the mating move is made. The white king has every move but the last for its
// way. A reply after which the way is longer is given up. Behind a promotion the board has changed
// too much, and nothing is said.
//
// A black pawn on the way that nothing guards gives one tempo: the king takes it in passing, and
// black has one man less to wait with. The black king is taken as standing still; it may come nearer,
// but only when it is driven.
//
// What is lost are mates by rooks alone and far-off discoveries. The cost is one look-up of a
// distance, and a walk over black's pawns where a single tempo is missing.
#include "core/attacks.h"
#include "core/geometry.h"
#include "heuristics/reply_rules.h"

namespace quillmere {
namespace {

// Distance of the kings at the mate.
constexpr int kMatingDistance = 2;

bool IsKingNeeded(const TChessboard& node) {
    const u8* c = node.m_counts;
    return c[kWhiteQueens] == 0 ||
           (c[kWhiteQueens] == 1 && c[kWhiteRooks] + c[kWhiteBishops] + c[kWhiteKnights] == 0);
}

bool CanTakePawnOnTheWay(const TChessboard& node) {
    const int from = node.WhiteKingSquare();
    const int to = node.BlackKingSquare();
    int left = node.m_counts[kBlackPawns];
    for (int square = 0; square < kSquareCount && left > 0; ++square) {
        if (node.m_board[square] != kBlackPawn)
            continue;
        --left;
        if (KingDistance(from, square) + KingDistance(square, to) == KingDistance(from, to) &&
            !IsAttackedByBlack(node, square))
            return true;
    }
    return false;
}

}  // namespace

bool rules::AreKingsTooFar(CBlackReply& reply) {
    const TChessboard& child = reply.Child();
    if (reply.Move().Promotion() != 0 || !IsKingNeeded(child))
        return false;
    const int reach = kMatingDistance + FullMovesOf(child.m_nMoves) - 1;
    const int distance = KingDistance(child.WhiteKingSquare(), child.BlackKingSquare());
    return distance > reach && (distance > reach + 1 || !CanTakePawnOnTheWay(child));
}

}  // namespace quillmere

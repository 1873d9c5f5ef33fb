// SH_ZUGZWANGTRIANGLES, white's list.
//
// In a mutual zugzwang with white to move the white king loses a move by walking a triangle: it
// takes three steps where two would do, while its figures hold what must be held. As long as the
// king stands on the triangle, white's list keeps two kinds of moves:
//   - king moves on the triangle. Two squares of it are given; it is they and every square that
//     neighbours both;
//   - moves of the figures that guard: those that attack a square next to the black king, or the
//     square in front of a black pawn. They may have to follow their charge.
// Pawn moves, castling and all other figures are left out, for they would spoil the zugzwang. What
// is lost are solutions that do anything else while the king is there. It costs a look at each
// figure for each guarded square.
#include "heuristics/zugzwang_triangles.h"

#include "core/geometry.h"
#include "core/move_generation.h"
#include "core/thread_context.h"
#include "heuristics/last_white_move.h"

namespace quillmere {
namespace {

bool IsOnTriangle(const u8* corners, int square) {
    return square == corners[0] || square == corners[1] ||
           (KingDistance(square, corners[0]) == 1 && KingDistance(square, corners[1]) == 1);
}

bool SeesSquare(const u8* board, int from, int to) {
    if ((Relation(from, to) & KindOf(board[from])) == 0)
        return false;
    return board[from] == kWhiteKnight || IsLineClear(board, from, to, LineStep(from, to));
}

bool IsGuard(const TChessboard& node, int from) {
    const u8* b = node.m_board;
    if (!IsWhite(b[from]) || !IsFigureCode(b[from]))
        return false;
    const int king = node.BlackKingSquare();
    for (int i = 0; i < kGeometry.kingCount[king]; ++i) {
        if (SeesSquare(b, from, kGeometry.kingTargets[king][i]))
            return true;
    }
    for (int square = 8; square < kSquareCount; ++square) {
        if (b[square] == kBlackPawn && SeesSquare(b, from, square - 8))
            return true;
    }
    return false;
}

// The king's steps on the triangle; castling is two squares wide.
int KingMovesOn(const TChessboard& node, const u8* corners, TMove* list) {
    const int king = node.WhiteKingSquare();
    const int all = GetKingMoves(node, king, list);
    int count = 0;
    for (int i = 0; i < all; ++i) {
        if (IsOnTriangle(corners, list[i].to) && KingDistance(king, list[i].to) == 1)
            list[count++] = list[i];
    }
    return count;
}

}  // namespace

bool TriangleMoves(const TChessboard& node, TMoveList& list) {
    const u8* corners = node.m_threadContext->heuristics.ZugzwangTriangleSquares;
    if (corners[0] >= kSquareCount || corners[1] >= kSquareCount ||
        !IsOnTriangle(corners, node.WhiteKingSquare()))
        return false;
    list.count = KingMovesOn(node, corners, list.moves);
    if (list.count == 0)
        return false;
    for (int square = 0; square < kSquareCount; ++square) {
        if (IsGuard(node, square))
            list.count += GetWhiteMoves(node, square, list.moves + list.count);
    }
    return true;
}

}  // namespace quillmere

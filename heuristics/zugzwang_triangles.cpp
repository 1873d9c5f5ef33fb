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
//
// The finder looks for a root in which losing a move may be the point: black could play very few
// safe moves if it were to move, white has a figure that can hold something, and the white king has
// a triangle of safe squares around it, free and attacked by no black man. Its own square and the
// farther of the two others are the corners. The king must not be a guard itself: no square next to
// the black king may be held by the white king alone. Of several triangles the one farthest from
// the black king is taken, where the walk disturbs least, then the lower squares.
#include "heuristics/zugzwang_triangles.h"

#include "core/geometry.h"
#include "core/move_generation.h"
#include "core/thread_context.h"
#include "heuristics/king_walk.h"
#include "heuristics/last_white_move.h"
#include "heuristics/standing_moves.h"

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

namespace {

// With more safe moves to choose from, black is hardly in zugzwang.
constexpr int kTiedMoves = 3;

// If it were black's turn.
bool IsBlackTied(TChessboard& node) {
    TChessboard black = WithBlackToMove(node);
    int count = 0;
    for (int square = 0; square < kSquareCount && count <= kTiedMoves; ++square) {
        TMove moves[kMoveListSize];
        if (IsBlack(black.m_board[square]))
            count += GetSafeBlackMoves(black, square, moves);
    }
    return count != 0 && count <= kTiedMoves;
}

bool HasGuard(const TChessboard& node) {
    for (int square = 0; square < kSquareCount; ++square) {
        if (IsGuard(node, square))
            return true;
    }
    return false;
}

// Taking the white king away leaves the black king no more squares than before.
bool IsKingNoGuard(const TChessboard& node) {
    TChessboard without = node;
    without.m_board[node.WhiteKingSquare()] = 0;
    const TSquareSet around = kSetTables.king[node.BlackKingSquare()];
    return (around & SafeForBlackKing(without) & ~SafeForBlackKing(node)) == 0;
}

// Free squares that no black man attacks.
TSquareSet CalmSquares(const TChessboard& node) {
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    return SafeForWhiteKing(node) & ~(white | black);
}

}  // namespace

bool FindZugzwangTriangle(TChessboard& node, u8 (&squares)[2]) {
    squares[0] = squares[1] = kNoSquare;
    if (!node.IsWhiteToMove() || node.m_whiteInCheck != kNotInCheck || !HasGuard(node) ||
        !IsKingNoGuard(node) || !IsBlackTied(node))
        return false;
    const int king = node.WhiteKingSquare();
    const TSquareSet around = kSetTables.king[king] & CalmSquares(node);
    int farthest = -1;
    ForEachSquare(around, [&](int square) {
        const int distance = KingDistance(square, node.BlackKingSquare());
        if ((kSetTables.king[square] & around) != 0 && distance > farthest) {
            farthest = distance;
            squares[0] = static_cast<u8>(king);
            squares[1] = static_cast<u8>(square);
        }
    });
    return farthest >= 0;
}

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

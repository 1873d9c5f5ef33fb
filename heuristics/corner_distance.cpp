// When the black king can be held near a corner.
//
// The squares that the black king could walk on while white stands still are gathered. If they all
// belong to one corner, white's men form a fence already, and the farthest of the squares gives the
// bound: in squares or in moves, whichever leaves fewer squares of a corner. There is no plan
//   - where the king may take a white man, which would open the fence;
//   - where a fence holds all but the last square of the corner's quarter of the board, which is a
//     king in the middle;
//   - where it cannot move, or can move along the edge only: the edge rules say that more sharply;
//   - where black has more than kFewFigures figures besides the king, as they would break the fence;
//   - where white has no figure: pawns and a king alone hold a fence for so long only as they stand.
#include "heuristics/corner_distance.h"

#include "core/material.h"
#include "heuristics/king_walk.h"
#include "heuristics/parameter_words.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kFewFigures = 1;
// Bounds beyond these leave the king the middle of the board.
constexpr int kWidestSquares = 4;
constexpr int kWidestMoves = 2;
static_assert(kWidestSquares <= kMaxCornerSquares && kWidestMoves <= kMaxCornerMoves);

bool IsEdgeSquare(int square) {
    return EdgeDistance(square) == 0;
}

// Squares of the board within the bound of one corner.
int SquaresWithin(int bound, int (*distance)(int)) {
    int count = 0;
    for (int file = 0; file < 4; ++file) {
        for (int rank = 0; rank < 4; ++rank)
            count += distance(SquareAt(file, rank)) <= bound ? 1 : 0;
    }
    return count;
}

bool IsOneCorner(TSquareSet region) {
    const int first = FirstOf(region);
    bool isOne = true;
    ForEachSquare(region, [&](int square) {
        isOne &= (FileOf(square) < 4) == (FileOf(first) < 4) &&
                 (RankOf(square) < 4) == (RankOf(first) < 4);
    });
    return isOne;
}

}  // namespace

int CornerDistanceInSquares(int square) {
    return kEdgeDistance[FileOf(square)] + kEdgeDistance[RankOf(square)];
}

int CornerDistanceInMoves(int square) {
    return std::max(kEdgeDistance[FileOf(square)], kEdgeDistance[RankOf(square)]);
}

i8 CornerDistance(const TChessboard& node) {
    if (CountBlackFigures(node) > kFewFigures || CountWhiteFigures(node) == 0)
        return 0;
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    const TSquareSet region = KingRegion(node.BlackKingSquare(), SafeForBlackKing(node));
    if ((region & white) != 0 || !IsOneCorner(region))
        return 0;
    int squares = 0;
    int moves = 0;
    bool isOnEdge = true;
    ForEachSquare(region, [&](int square) {
        squares = std::max(squares, CornerDistanceInSquares(square));
        moves = std::max(moves, CornerDistanceInMoves(square));
        isOnEdge &= IsEdgeSquare(square);
    });
    if (isOnEdge)
        return 0;
    const bool fitsSquares = squares <= kWidestSquares;
    const bool fitsMoves = moves <= kWidestMoves;
    if (fitsMoves && (!fitsSquares || SquaresWithin(moves, CornerDistanceInMoves) <
                                          SquaresWithin(squares, CornerDistanceInSquares)))
        return static_cast<i8>(-moves);
    return static_cast<i8>(fitsSquares ? squares : 0);
}

}  // namespace quillmere

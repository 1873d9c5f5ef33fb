// Castling and en passant rights, derived from the chain of parents.
//
// No field holds them: a node stays small, and a position that was reached by another route is
// judged by its own history. At the root the convention of problems holds: castling is possible
// where king and rook stand at home, and nothing can be captured en passant in the first move.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Home squares
constexpr int kSquareA1 = 0;
constexpr int kSquareC1 = 2;
constexpr int kSquareD1 = 3;
constexpr int kSquareE1 = 4;
constexpr int kSquareF1 = 5;
constexpr int kSquareG1 = 6;
constexpr int kSquareH1 = 7;
constexpr int kSquareA8 = 56;
constexpr int kSquareE8 = 60;
constexpr int kSquareH8 = 63;

// The right to castle, not the possibility: king and rook stand at home here and in the root of
// the game tree, and no move of the line went to either square. Testing destinations is enough: a
// figure that left and came back landed there, a captured rook was landed on, and a rook that
// stayed away fails the test of the board.
bool HasWhiteCastlingRight(const TChessboard& node, bool kingSide);
bool HasBlackCastlingRight(const TChessboard& node, bool kingSide);

// All four rights as bits: 1 white king's side, 2 white queen's side, 4 and 8 the same for black.
int DerivedCastlingRights(const TChessboard& node);

// The square of the pawn that may be captured en passant in this node, that is the destination of
// the last move if it was a double step; kNoSquare otherwise. Whether a pawn stands beside it is
// not asked.
int DoubleStepSquare(const TChessboard& node);

// The side to move has a pawn beside a pawn that just made its double step, so that an en passant
// capture is at least pseudo-legal. A key made of the 64 bytes cannot show this.
bool IsEnPassantPossible(const TChessboard& node);

// King and rook of one side stand at home, and the derived right is gone. A key made of the
// 64 bytes cannot show this either.
bool HasLostCastlingRightAtHome(const TChessboard& node);

}  // namespace quillmere

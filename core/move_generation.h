// Pseudo-legal moves, and the replies to a check.
//
// Legality is decided by the make-move, not here, except that the evasion lists hold no pinned
// figure; king moves in them are unfiltered. Whole-side lists scan the squares 0 to 63 upward.
// Every routine writes from list[0] and returns the number of moves written; a list needs room
// for kMoveListSize entries.
//
// Order inside one figure: the king south, south-west, south-east, north, north-west, north-east,
// west, east, short castling, long castling; the queen as a rook and then as a bishop; a promotion
// gives four entries in a row, queen, rook, bishop, knight.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

int GetRookMoves(const TChessboard& board, int square, TMove* list);
int GetBishopMoves(const TChessboard& board, int square, TMove* list);
int GetKnightMoves(const TChessboard& board, int square, TMove* list);
int GetPawnMoves(const TChessboard& board, int square, TMove* list);
int GetKingMoves(const TChessboard& board, int square, TMove* list);

// Moves of the figure of that colour on the square; 0 for an empty square or one of the other side.
int GetWhiteMoves(const TChessboard& board, int square, TMove* list);
int GetBlackMoves(const TChessboard& board, int square, TMove* list);

int GetAllWhiteMoves(const TChessboard& board, TMove* list);
int GetAllBlackMoves(const TChessboard& board, TMove* list);

// For a side in check: king moves, captures of the only checker, interpositions on the line of a
// distant slider, en passant captures of a checking pawn.
int GetWhiteEvasions(const TChessboard& board, TMove* list);
int GetBlackEvasions(const TChessboard& board, TMove* list);

// The mate test of the whole search: black is in check; is there any legal reply? Makes no move
// and stops at the first reply. The board is changed while it runs and restored before it returns.
bool BlackHasEvasion(TChessboard& board);

// Squares that the black king can step to, empty or held by white, that white does not attack
// with the king off the board. Stops counting at `limit`.
int CountFlights(TChessboard& board, int limit);

}  // namespace quillmere

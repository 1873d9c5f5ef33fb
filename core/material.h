// What is on the board: the few countings that rules rest on, each named so that nobody confuses
// them, and the material with which no mate is possible.
//
// "Figures" are the pieces but king and pawns. "Men" are all pieces, the king included.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Figures of a side: queens, rooks, bishops and knights.
inline int CountWhiteFigures(const TChessboard& board) {
    return board.m_counts[kWhiteQueens] + board.m_counts[kWhiteRooks] +
           board.m_counts[kWhiteBishops] + board.m_counts[kWhiteKnights];
}
inline int CountBlackFigures(const TChessboard& board) {
    return board.m_counts[kBlackQueens] + board.m_counts[kBlackRooks] +
           board.m_counts[kBlackBishops] + board.m_counts[kBlackKnights];
}
// Men of a side: figures, pawns and the king.
inline int CountWhiteMen(const TChessboard& board) {
    return CountWhiteFigures(board) + board.m_counts[kWhitePawns] + 1;
}
inline int CountBlackMen(const TChessboard& board) {
    return CountBlackFigures(board) + board.m_counts[kBlackPawns] + 1;
}
// Black men, pawns included, on the squares next to the black king.
int CountBlackMenAroundKing(const TChessboard& board);

// Black has nothing but its king.
inline bool IsBlackBare(const TChessboard& board) {
    return CountBlackFigures(board) + board.m_counts[kBlackPawns] == 0;
}

// All bishops of the colour on one colour of squares; true with none.
bool AreWhiteBishopsOnOneColour(const TChessboard& board);

// Black is bare and white has at most bishops, all on one colour of squares: no sequence of legal
// moves gives mate.
bool IsHopelessAgainstBareKing(const TChessboard& board);

// The bishop covers the corner in which a pawn of the file promotes: both have one colour.
bool IsPromotionCornerOfBishop(int pawnSquare, int bishopSquare);
// The black king stands on the corner, or is at least as near to it as white's pawn and king, so
// that it can shut the pawn out. White is not to move.
bool IsCornerReachable(const TChessboard& board, int pawnSquare);

// An upper bound of the moves that a side can have in any position reached from this one,
// promotions included. 218 for material that can come from the starting position, which is the
// known maximum; for more, a count by lines.
int UpperBoundOfWhiteMoves(const TChessboard& board);
int UpperBoundOfBlackMoves(const TChessboard& board);

}  // namespace quillmere

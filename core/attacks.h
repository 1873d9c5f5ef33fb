// Attack, check and pin tests, and the figures that can move to a square.
//
// Everything reads m_board, the figure counts, the king fields and, where they are valid, the
// white figure lists; nothing is written. White and black have separate entries because the
// attack is white's and the lists are white's only.
//
// The attack tests see the board as it stands. A caller that asks about a square behind the king
// takes the king off the board first.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

bool IsAttackedByWhite(const TChessboard& board, int square);
bool IsAttackedByBlack(const TChessboard& board, int square);
inline bool IsAttackedByWhite(const TChessboard& board, int file, int rank) {
    return IsAttackedByWhite(board, SquareAt(file, rank));
}
inline bool IsAttackedByBlack(const TChessboard& board, int file, int rank) {
    return IsAttackedByBlack(board, SquareAt(file, rank));
}

struct TAttacker {
    i8 file;
    i8 rank;
};

// The value of a check field for a king of the named colour on the square: kNotInCheck, the
// attacker's square, or kDoubleCheck for two or more. With `attackers` (room for 16) every
// attacker is listed and counted in *count; an adjacent enemy king counts as one.
i8 GetChecksOnWhiteKing(
    const TChessboard& board, int file, int rank, TAttacker* attackers, int* count);
i8 GetChecksOnBlackKing(
    const TChessboard& board, int file, int rank, TAttacker* attackers, int* count);

// The figure on the square stands on a line with its own king, nothing between, and the first
// figure behind it on that line is an enemy slider of the matching kind.
bool IsPinnedToWhiteKing(const TChessboard& board, int square);
bool IsPinnedToBlackKing(const TChessboard& board, int square);
inline bool IsPinnedToWhiteKing(const TChessboard& board, int file, int rank) {
    return IsPinnedToWhiteKing(board, SquareAt(file, rank));
}
inline bool IsPinnedToBlackKing(const TChessboard& board, int file, int rank) {
    return IsPinnedToBlackKing(board, SquareAt(file, rank));
}

// Squares of the own figures that capture on the square (pawns by their capture step; the king if
// it is adjacent, whether that is legal or not), in an order that is not told. A pinned figure is
// entered as its square + kPinnedMark. Returns the count; the list needs room for 16.
constexpr u8 kPinnedMark = 64;
int GetWhiteCapturers(const TChessboard& board, int file, int rank, u8* list);
int GetBlackCapturers(const TChessboard& board, int file, int rank, u8* list);
// The entry of lowest figure value, the first of equals; entries with kPinnedMark are passed
// over. kNoSquare if there is none.
u8 PickLeastValuable(const TChessboard& board, int count, const u8* list);
// The first black figure found that can take on the square and is not pinned (the king counts if
// the square is not attacked with the king off its own); its square goes to *out.
bool CanBlackCaptureSafely(const TChessboard& board, int file, int rank, u8* out);

// An unpinned black figure other than the king can move to this empty square.
bool CanBlackInterpose(const TChessboard& board, int square);

}  // namespace quillmere

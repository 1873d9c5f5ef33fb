// Upkeep of the white figure lists of a node. For the files of core/ only.
//
// The lists hold every white queen, rook, bishop and knight while m_figureListValid is 1. A second
// queen, a third rook or knight, or a second bishop of one colour of squares overflows them; from
// then on they mean nothing until a capture makes a rebuild possible.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Enters a white figure; an overflow of the kind clears m_figureListValid. Kings and pawns are
// passed over.
void EnterWhiteFigure(TChessboard& board, u8 figure, int square);

inline void ReplaceInPair(i8* pair, int from, int to) {
    if (pair[0] == from)
        pair[0] = static_cast<i8>(to);
    else
        pair[1] = static_cast<i8>(to);
}

// A figure of a valid list moved.
inline void MoveInFigureLists(TChessboard& board, u8 figure, int from, int to) {
    switch (figure) {
    case kWhiteQueen:
        board.m_whiteQueen = static_cast<i8>(to);
        break;
    case kWhiteRook:
        ReplaceInPair(board.m_whiteRooks, from, to);
        break;
    case kWhiteBishop:
        ReplaceInPair(board.m_whiteBishops, from, to);
        break;
    case kWhiteKnight:
        ReplaceInPair(board.m_whiteKnights, from, to);
        break;
    default:
        break;
    }
}

// The second slot moves into the first when the first is freed.
inline void RemoveFromPair(i8* pair, int square) {
    if (pair[0] == square)
        pair[0] = pair[1];
    pair[1] = -1;
}

// A figure of a valid list was captured.
inline void RemoveFromFigureLists(TChessboard& board, u8 figure, int square) {
    switch (figure) {
    case kWhiteQueen:
        board.m_whiteQueen = -1;
        break;
    case kWhiteRook:
        RemoveFromPair(board.m_whiteRooks, square);
        break;
    case kWhiteBishop:
        RemoveFromPair(board.m_whiteBishops, square);
        break;
    case kWhiteKnight:
        RemoveFromPair(board.m_whiteKnights, square);
        break;
    default:
        break;
    }
}

// After a capture with invalid lists: rebuilds them if the counts allow it.
inline void RebuildFigureLists(TChessboard& board) {
    const u8* c = board.m_counts;
    if (c[kWhiteQueens] < 2 && c[kWhiteRooks] < 3 && c[kWhiteBishops] < 3 && c[kWhiteKnights] < 3)
        IsFigureListValid(board);
}

}  // namespace quillmere

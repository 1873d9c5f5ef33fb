// A black bishop on squares that white's men keep off can neither capture nor be captured; it only has
// moves to spare. Without it black may pass at every turn, and the tree loses all of its moves.
//
// What is found so is a hint and no more: the bishop can still stand in the way of a man of its own
// side, guard a square that white's king wants, or take a pawn that stands on its colour. So each
// first move that mates on the reduced board is proved once more with the bishop on the board and
// without heuristics before it counts (search/root.cpp).
#include "search/one_colour.h"

#include "core/material.h"

#include <algorithm>
#include <cassert>

namespace quillmere {
namespace {

constexpr int kLongTask =
    13;  // half-moves; below it the search through the bishop's moves is cheap

int SquareOfOnly(const TChessboard& board, u8 figure) {
    const u8* const square = std::find(board.m_board, board.m_board + kSquareCount, figure);
    return static_cast<int>(square - board.m_board);
}

}  // namespace

bool IsOneColourRoot(const TChessboard& root) {
    const u8* c = root.m_counts;
    if ((root.Heur & SH_ONECOLORPLAYPOSSIBLE) == 0 || root.OneColourMode() != kOneColourOff ||
        root.m_nMoves < kLongTask || !root.IsWhiteToMove())
        return false;
    const bool isOnlyBishop = c[kBlackBishops] == 1 && c[kBlackQueens] == 0 &&
                              c[kBlackRooks] == 0 && c[kBlackKnights] == 0;
    return isOnlyBishop && c[kWhiteBishops] == 1 &&
           SquareParity(SquareOfOnly(root, kBlackBishop)) !=
               SquareParity(SquareOfOnly(root, kWhiteBishop));
}

TChessboard OneColourRoot(const TChessboard& root) {
    assert(IsOneColourRoot(root));
    TChessboard reduced = root;
    const int bishop = SquareOfOnly(root, kBlackBishop);
    reduced.m_board[bishop] = 0;
    --reduced.m_counts[kBlackBishops];
    for (i8& tracked : reduced.m_trackedFigures) {
        if (tracked == bishop)
            tracked = -1;
    }
    const u8 mode = SquareParity(bishop) == 1 ? kOneColourParity0 : kOneColourParity1;
    reduced.m_captureState = static_cast<u8>((reduced.m_captureState & ~kOneColourMask) | mode);
    return reduced;
}

}  // namespace quillmere

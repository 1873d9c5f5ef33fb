#include "core/colour_swap.h"

namespace quillmere {

TChessboard SwapColours(const TChessboard& board) {
    TChessboard swapped{};
    InitBoard(swapped);
    for (int square = 0; square < kSquareCount; ++square)
        swapped.m_board[SwapSquare(square)] = SwapFigure(board.m_board[square]);
    ValidateBoard(swapped, true);
    return swapped;
}

}  // namespace quillmere

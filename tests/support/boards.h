// Boards, squares and moves from short texts. The texts of the program are not used to set up the
// tests of what stands below them.
#pragma once

#include "core/chessboard.h"
#include "core/move.h"
#include "tests/support/bridge.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillmere::test {

// "e4"
inline int SquareOf(std::string_view text) {
    return SquareAt(text[0] - 'a', text[1] - '1');
}

inline std::string TextOfSquare(int square) {
    if (square < 0 || square >= kSquareCount)
        return std::to_string(square);
    return {static_cast<char>('a' + FileOf(square)), static_cast<char>('1' + RankOf(square))};
}

// "e2e4", "e7e8q"
inline TMove MoveOf(std::string_view text) {
    u8 promotion = 0;
    if (text.size() > 4) {
        promotion = text[4] == 'q'   ? kQueen
                    : text[4] == 'r' ? kRook
                    : text[4] == 'b' ? kBishop
                                     : kKnight;
    }
    return MakeMove(SquareOf(text.substr(0, 2)), SquareOf(text.substr(2, 2)), promotion);
}

inline std::string TextOfMove(TMove move) {
    return reference::ToText(bridge::ToPlain(move));
}

// "a1a2 a1b1", in the order of the list.
inline std::string TextOfMoves(const TMove* list, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : " ") + TextOfMove(list[i]);
    return text;
}

// The squares of the board part of a FEN code, nothing derived.
inline TChessboard FilledBoard(std::string_view fen) {
    TChessboard board;
    bridge::FillBoard(board, reference::FromFen(fen));
    return board;
}

// The same with all bookkeeping derived; a free-standing board with black to move.
inline TChessboard ValidBoard(std::string_view fen) {
    TChessboard board = FilledBoard(fen);
    ValidateBoard(board, true);
    return board;
}

}  // namespace quillmere::test

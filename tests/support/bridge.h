// The two worlds of the tests side by side: the judge's positions and moves, and the program's.
//
// Boards are filled square by square from the judge's letters, so that no reader of FEN codes
// stands between a case and what is tested.
#pragma once

#include "core/chessboard.h"
#include "core/move.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace quillmere::bridge {

inline u8 FigureOfLetter(char letter) {
    switch (letter) {
    case 'K':
        return kWhiteKing;
    case 'Q':
        return kWhiteQueen;
    case 'R':
        return kWhiteRook;
    case 'B':
        return kWhiteBishop;
    case 'N':
        return kWhiteKnight;
    case 'P':
        return kWhitePawn;
    case 'k':
        return kBlackKing;
    case 'q':
        return kBlackQueen;
    case 'r':
        return kBlackRook;
    case 'b':
        return kBlackBishop;
    case 'n':
        return kBlackKnight;
    case 'p':
        return kBlackPawn;
    default:
        return 0;
    }
}

// Squares only; the bookkeeping is derived by whoever prepares the root.
inline void FillBoard(TChessboard& board, const reference::TPosition& position) {
    InitBoard(board);
    for (int square = 0; square < kSquareCount; ++square) {
        board.m_board[square] = FigureOfLetter(position.squares[square]);
    }
}

inline reference::TPlainMove ToPlain(TMove move) {
    char promotion = 0;
    switch (move.Promotion()) {
    case kQueen:
        promotion = 'q';
        break;
    case kRook:
        promotion = 'r';
        break;
    case kBishop:
        promotion = 'b';
        break;
    case kKnight:
        promotion = 'n';
        break;
    default:
        break;
    }
    return {move.from, move.to, promotion};
}

// In order of squares, as the judge gives its lists.
inline std::vector<reference::TPlainMove> ToSortedPlain(const std::vector<TMove>& moves) {
    std::vector<reference::TPlainMove> plain;
    std::transform(moves.begin(), moves.end(), std::back_inserter(plain), ToPlain);
    std::sort(plain.begin(), plain.end());
    return plain;
}

// Runs built with a sanitizer are ten to thirty times slower; they take a part of the cases.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif
#else
constexpr bool kIsSanitized = false;
#endif

// A run with a sanitizer takes one case in twenty. So few say nothing about the share of mates among
// them, which is asked for in whole runs only.
constexpr int CasesOf(int cases) {
    return kIsSanitized ? std::max(1, cases / 20) : cases;
}

}  // namespace quillmere::bridge

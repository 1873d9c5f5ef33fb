// How many threads a long task would like to have for its first moves.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

struct TThreadQuestion {
    int halfMoves = 0;        // of the root
    int threads = 1;          // that the request was given
    int moves = 0;            // white's legal first moves
    int quietMoves = 0;       // of them, those that neither check nor threaten (SortWhiteMoves)
    int checks = 0;           // of them, those that check
    int processors = 1;       // logical processors of the machine
    bool hasFigures = false;  // there is more on the board than the two kings
    int blackKingMoves = 0;
    // White is not in check, and exactly one of its moves checks on the file or rank of a black rook
    // that sees the checking man.
    bool hasRookThreat = false;
};

// The question of a root with white to move: `list` holds its legal moves, `quietMoves` is told by the
// sort. Makes each move once.
TThreadQuestion AskForThreads(
    TChessboard& root, const TMoveList& list, int quietMoves, int threads, int processors);

// 0 if the threads at hand will do, else a number above `threads`, at most 127.
int WishedThreads(const TThreadQuestion& question);

}  // namespace quillmere

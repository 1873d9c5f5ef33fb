// A position with its stipulation, solved under limits, and what came out, in the user's own
// colours and squares.
#pragma once

#include "core/chessboard.h"
#include "core/fen_check.h"
#include "search/solve.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Longest task in moves and half-moves; half-moves are counted in 16 bits, and the search needs
// stack for each.
constexpr int kMaxFullMoves = 1000;
constexpr int kMaxHalfMoves = 2 * kMaxFullMoves;

struct TPosition {
    TChessboard board{};  // free-standing and valid
    ESide side = ESide::kNotSaid;
    bool castlingDenied = false;
    bool enPassantGiven = false;

    bool IsBlackToMove() const { return side == ESide::kBlackToMove; }
    // The FEN says something about castling or en passant that problems do not take over.
    bool NeedsCastlingNote() const { return castlingDenied || enPassantGiven; }
};

// Throws ChessException that names the fault.
TPosition ReadPosition(const std::string& fen);
// The FEN of the position with the derived rights.
std::string WritePosition(const TPosition& position);

struct TTask {
    TPosition position;
    u16 halfMoves = 0;
    // What the search gets: white mates, black defends. Colours are swapped if black mates.
    TChessboard board{};
    bool isSwapped = false;

    bool IsDefence() const { return halfMoves % 2 == 0; }
};

// The side field decides: black to move with an odd length means that black mates, with an even
// one that black defends. Throws CUsageException where white is to move and the length is even,
// ChessException where the side that is not to move is in check.
TTask MakeTask(const TPosition& position, int halfMoves);

struct TTaskRequest {
    bool wantAllKeys = false;
    bool wantTries = false;
    bool wantMainLine = true;
    double seconds = 0;  // 0 for no limit
    u64 nodes = 0;       // 0 for no limit
};

struct TTaskOutcome {
    TSolveResult result;  // moves in the user's colours and squares
    u64 milliseconds = 0;
    bool isInterrupted = false;
};

struct TTaskProgress {
    TMove move = {};  // in the user's squares
    int number = 0;   // of the first move, from 1; 0 before the first
    int count = 0;
    bool isAfterKeys = false;
    u64 nodes = 0;
    u64 milliseconds = 0;
};

// Called a few times a second, by a thread of its own.
using TProgressCallback = std::function<void(const TTaskProgress&)>;

// Solves on a thread with the stack that the length needs, and waits. The time limit and Ctrl-C
// stop the search; what is known then is in the outcome, with the verdict kLimit or kStopped.
TTaskOutcome
RunTask(const TTask& task, const TTaskRequest& request, const TProgressCallback& progress = {});

// "mate", "no mate", "doubtful", "stopped", "limit": the same in every language.
std::string_view VerdictWord(ESolveVerdict verdict);

}  // namespace quillmere

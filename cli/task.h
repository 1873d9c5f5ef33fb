// A position with its stipulation, solved under limits, and what came out, in the user's own
// colours and squares.
#pragma once

#include "core/chessboard.h"
#include "core/fen_check.h"
#include "core/play_board.h"
#include "heuristics/relaxation_log.h"
#include "search/moves_log.h"
#include "search/solve.h"
#include "session/task_register.h"

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
    bool wantMainLine = true;  // and the best defences
    double seconds = 0;        // 0 for no limit
    u64 nodes = 0;             // 0 for no limit
    // Solved positions; not owned, null for none. A task too short for a register leaves it alone.
    CTaskRegister* solved = nullptr;
    // Empty the register first; else what earlier tasks found is used, and the answers are the same.
    bool clearRegister = true;
    // Threads over the first moves, 1 to 64. With one the work is the same in every run.
    int threads = 1;
    // As TSolveRequest::quickMateDepth.
    i16 quickMateDepth = kQuickMateDepthUnset;
    // The word of heuristics; not owned, null for none.
    const TChessboard* heuristics = nullptr;
    // The engine chooses the word; the other settings are those of `heuristics`.
    bool selectsHeuristics = false;
    // Where the relaxations are told; not owned, null for nowhere.
    CRelaxationLog* relaxationLog = nullptr;
    // A pass more where the passes before it were fast; the work then hangs on the machine.
    bool mayRelaxByTime = false;
    // Of the search for keys, one for each thread; not owned. Their moves are those of the search:
    // with colours swapped if black mates.
    std::vector<CMovesLog*> movesLogs = {};
};

struct TTaskOutcome {
    TSolveResult result;  // moves in the user's colours and squares
    u64 milliseconds = 0;
    bool isInterrupted = false;
    // Every first move (or defence) was asked for, so that those which were found are all there are.
    bool wereAllAsked = false;
    // Of the register at the end, with what it held before; nothing if the task used none.
    std::optional<TRegisterFigures> registerFigures;
};

struct TTaskProgress {
    std::string line;  // of the search itself, as it told last; empty before it did
    TMove move = {};   // in the user's squares
    int number = 0;    // of the first move, from 1; 0 before the first
    int count = 0;
    bool isAfterKeys = false;
    u64 nodes = 0;
    u64 milliseconds = 0;
    std::optional<TRegisterFigures> registerFigures;  // nothing if the task uses none
};

// Called a few times a second, by a thread of its own.
using TProgressCallback = std::function<void(const TTaskProgress&)>;

// Solves on a thread with the stack that the length needs, and waits. The time limit and Ctrl-C
// stop the search; what is known then is in the outcome, with the verdict kLimit or kStopped.
// Throws ChessException (kRegisterIncoherent) if the register has contradicted itself, which only a
// wrong verdict can bring about: then no answer can be trusted.
TTaskOutcome
RunTask(const TTask& task, const TTaskRequest& request, const TProgressCallback& progress = {});

// The key of that place, and black's best defence to it where there is one and it was found.
std::vector<TWrittenMove> KeyLine(const TTask& task, const TSolveResult& result, std::size_t key);

// "mate", "failed", "no mate", "limit", "stopped": the same in every language.
std::string_view TrialWord(ETrialOutcome outcome);

// "mate", "no mate", "doubtful", "stopped", "limit": the same in every language.
std::string_view VerdictWord(ESolveVerdict verdict);

}  // namespace quillmere

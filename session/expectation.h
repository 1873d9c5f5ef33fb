// Compares what a solve found with what the problem states.
//
// In this order: the expected order of first moves; a problem that states nothing; the stated answer;
// the first move of the main variant, which must then be the only solution. Answers are compared as
// sets of moves.
//
// A solve that did not come to its end is neither right nor wrong, whatever it had found (but for a
// problem that only states the order of its first moves, which is known at the start); and the same
// goes for an answer out of the records of earlier solves, which would compare the record with the
// file and not the search. Where lines were left out and nothing was found, the problem is not solved
// either: that a solution was missed is then as likely as that there is none.
#pragma once

#include "core/move.h"
#include "problems/chess_problem.h"
#include "session/regression_result.h"
#include "session/run_engine.h"

#include <optional>
#include <string>
#include <vector>

namespace quillmere {

// What a problem states, in the squares of its board.
struct TStatement {
    bool isOrderStated = false;  // of first moves
    bool isOrderOnly = false;    // and the test ends with it
    bool isAnswerStated = false;
    std::vector<TMove> answer;
    // Where a main variant stands that begins with a move of white.
    std::optional<TMove> variantMove;
    bool areAllWanted = false;  // every solution was asked for, unless the problem stops earlier
};

TStatement StatementOf(const TChessProblem& problem, bool allSolutions = false);

// The line of result that the log gets.
enum class EResultLine { kNone, kOk, kFailedLists, kFailedOrder, kOrderOk, kProblem };
// Why there is none.
enum class EUndecided { kNone, kTimeLimit, kStopped, kFromRecord, kLinesLeftOut, kNotAllDecided };

struct TJudgement {
    ETestVerdict verdict = ETestVerdict::kUndecided;
    EResultLine line = EResultLine::kNone;
    EUndecided undecided = EUndecided::kNone;
    // Sorted by square, without repetitions.
    std::vector<TMove> found;
    std::vector<TMove> expected;
    std::string text;  // of the order, or of the fault
};

TJudgement JudgeOutcome(const TStatement& statement, const TEngineOutcome& outcome);

// "" for kNone; English, for the log.
std::string_view UndecidedText(EUndecided reason);

}  // namespace quillmere

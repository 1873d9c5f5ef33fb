#include "session/expectation.h"

#include <algorithm>
#include <tuple>

namespace quillmere {
namespace {

auto KeyOf(TMove move) {
    return std::tuple(move.from, move.to, move.Promotion());
}

std::vector<TMove> AsSet(std::vector<TMove> moves) {
    std::ranges::sort(moves, {}, KeyOf);
    moves.erase(std::unique(moves.begin(), moves.end(), MovesEqual), moves.end());
    return moves;
}

TJudgement Undecided(EUndecided reason) {
    TJudgement judgement;
    judgement.undecided = reason;
    return judgement;
}

EUndecided ReasonOfStop(const TEngineOutcome& outcome) {
    if (outcome.isTimeLimitHit)
        return EUndecided::kTimeLimit;
    return outcome.isFromRecord ? EUndecided::kFromRecord : EUndecided::kStopped;
}

// The moves that were found may not be all that there are.
bool MayMissSome(const TStatement& statement, const TEngineOutcome& outcome, std::size_t found) {
    const bool hasStoppedAsAsked =
        outcome.stopAfterKeys > 0 && found >= static_cast<std::size_t>(outcome.stopAfterKeys);
    return statement.areAllWanted && !outcome.result.isComplete && !hasStoppedAsAsked;
}

}  // namespace

TStatement StatementOf(const TChessProblem& problem, bool allSolutions) {
    TStatement statement;
    statement.areAllWanted = allSolutions;
    statement.isOrderStated = problem.Has(kProblemHasExpectedSort);
    statement.isOrderOnly = problem.Has(kProblemExpectedSortOnly);
    statement.isAnswerStated = problem.Has(kProblemHasAnswer);
    statement.answer = problem.answer;
    const TProblemVariant* main = FindMainVariant(problem.variants);
    if (main != nullptr && !main->doesBlackBegin && !main->moves.empty())
        statement.variantMove = main->moves.front().move;
    return statement;
}

TJudgement JudgeOutcome(const TStatement& statement, const TEngineOutcome& outcome) {
    TJudgement judgement;
    if (outcome.end == EEngineEnd::kBadPosition) {
        judgement.verdict = ETestVerdict::kFaulty;
        judgement.text = outcome.faultText;
        return judgement;
    }
    // The order is known before anything is searched.
    const bool isOrderEnough = statement.isOrderStated && statement.isOrderOnly &&
                               !outcome.result.firstMoves.empty() && !outcome.isFromRecord;
    const bool isDone = outcome.end == EEngineEnd::kDone && !outcome.isTimeLimitHit;
    if ((!isDone && !isOrderEnough) || outcome.isFromRecord)
        return Undecided(ReasonOfStop(outcome));

    // Step 1. The order of the first moves
    if (statement.isOrderStated && !outcome.expectedSortFailure.empty()) {
        judgement.verdict = ETestVerdict::kDifferent;
        judgement.line = EResultLine::kFailedOrder;
        judgement.text = outcome.expectedSortFailure;
        return judgement;
    }
    if (statement.isOrderStated && statement.isOrderOnly) {
        judgement.verdict = ETestVerdict::kAsExpected;
        judgement.line = EResultLine::kOrderOk;
        return judgement;
    }

    judgement.found = AsSet(outcome.result.keys);
    if (judgement.found.empty() && outcome.result.verdict != ESolveVerdict::kProvedNoMate)
        return Undecided(EUndecided::kLinesLeftOut);

    // Step 2. Nothing is stated
    if (!statement.isAnswerStated && !statement.variantMove) {
        judgement.verdict = ETestVerdict::kNotStated;
        judgement.line = EResultLine::kProblem;
        return judgement;
    }

    // Step 3. The answer; step 4. the main variant, whose first move is then the only one
    judgement.expected = AsSet(
        statement.isAnswerStated ? statement.answer : std::vector<TMove>{*statement.variantMove});
    const bool areFoundStated =
        std::ranges::includes(judgement.expected, judgement.found, {}, KeyOf, KeyOf);
    if (areFoundStated && MayMissSome(statement, outcome, judgement.found.size()))
        return Undecided(EUndecided::kNotAllDecided);
    const bool isSame = std::ranges::equal(judgement.found, judgement.expected, MovesEqual);
    judgement.verdict = isSame ? ETestVerdict::kAsExpected : ETestVerdict::kDifferent;
    judgement.line = isSame ? EResultLine::kOk : EResultLine::kFailedLists;
    return judgement;
}

std::string_view UndecidedText(EUndecided reason) {
    switch (reason) {
    case EUndecided::kNone:
        return "";
    case EUndecided::kTimeLimit:
        return "the solving time limit was hit";
    case EUndecided::kStopped:
        return "the solve was stopped";
    case EUndecided::kFromRecord:
        return "the answer comes from the solved problems";
    case EUndecided::kNotAllDecided:
        return "not every first move was decided";
    case EUndecided::kLinesLeftOut:
        break;
    }
    return "no solution was found, but lines were left out";
}

}  // namespace quillmere

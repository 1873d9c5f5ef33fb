#include "cli/stated_answer.h"

#include "core/notation.h"
#include "session/session_texts.h"

#include <algorithm>

namespace quillmere {
namespace {

bool Holds(const std::vector<TMove>& moves, TMove move) {
    return std::any_of(
        moves.begin(), moves.end(), [move](TMove other) { return MovesEqual(move, other); });
}

bool AreAllIn(const std::vector<TMove>& some, const std::vector<TMove>& all) {
    return std::all_of(some.begin(), some.end(), [&all](TMove move) { return Holds(all, move); });
}

EMessage MessageOf(EStatedAnswer comparison) {
    switch (comparison) {
    case EStatedAnswer::kAgrees:
        return EMessage::kStatedAgrees;
    case EStatedAnswer::kOneFound:
        return EMessage::kStatedOneFound;
    case EStatedAnswer::kDiffers:
        return EMessage::kStatedDiffers;
    case EStatedAnswer::kNotCompared:
        break;
    }
    return EMessage::kStatedNotCompared;
}

}  // namespace

EStatedAnswer CompareStated(const TChessProblem& problem, const TTaskOutcome& outcome) {
    const TSolveResult& result = outcome.result;
    if (!problem.Has(kProblemHasAnswer))
        return EStatedAnswer::kNotCompared;
    const bool isNone = result.verdict == ESolveVerdict::kProvedNoMate;
    if (!isNone && result.verdict != ESolveVerdict::kProvedMate)
        return EStatedAnswer::kNotCompared;
    // A found key that is not stated is a difference, whatever else is undecided.
    const bool isFoundStated = AreAllIn(result.keys, problem.answer);
    if (isFoundStated && outcome.wereAllAsked && !result.isComplete)
        return EStatedAnswer::kNotCompared;
    if (!isFoundStated)
        return EStatedAnswer::kDiffers;
    if (AreAllIn(problem.answer, result.keys))
        return EStatedAnswer::kAgrees;
    if (outcome.wereAllAsked || isNone)
        return EStatedAnswer::kDiffers;
    // The first key of several; or the solve ended at a number of keys that was asked for.
    return result.keys.size() == 1 ? EStatedAnswer::kOneFound : EStatedAnswer::kAgrees;
}

std::string StatedMoveText(const TChessProblem& problem, TMove move) {
    // A file may state what cannot be played.
    return problem.position->m_board[move.from] == 0 ? MoveToPlainText(move)
                                                     : MoveToText(*problem.position, move);
}

std::string
StatedAnswerText(const TChessProblem& problem, EStatedAnswer comparison, ELanguage language) {
    std::vector<std::string> moves;
    for (const TMove move : problem.answer)
        moves.push_back(StatedMoveText(problem, move));
    const std::string text =
        moves.empty() ? FormatMessage(EMessage::kNone, language) : JoinTexts(moves, ", ");
    return FormatMessage(MessageOf(comparison), language, {text});
}

}  // namespace quillmere

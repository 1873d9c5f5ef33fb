#include "session/end_texts.h"

#include "session/session_texts.h"

namespace quillmere {
namespace {

std::string NotesText(const TEndOfSolve& end, ELanguage language) {
    std::string notes;
    const auto add = [&](EMessage id) { notes += "\t* " + FormatMessage(id, language) + "\n"; };
    if (end.wasRelaxationOff)
        add(EMessage::kNoteNoRelaxation);
    if (end.wasFinalPassOff)
        add(EMessage::kNoteFinalPassSkipped);
    if (!end.isProved && !end.wasFinalPassOff)
        add(EMessage::kNoteNotDecided);
    return notes.empty() ? notes : FormatMessage(EMessage::kEndNote, language) + notes;
}

std::string NoSolutionText(const TEndOfSolve& end, ELanguage language) {
    return FormatMessage(EMessage::kNotFoundSolutions, language, {std::to_string(end.moves)}) +
           NotesText(end, language);
}

std::string SeveralText(const TEndOfSolve& end, ELanguage language) {
    const int count = static_cast<int>(end.solutions.size());
    const bool wasCut = end.stopAfterKeys > 0 && count >= end.stopAfterKeys;
    switch (wasCut ? end.stopAfterKeys : 0) {
    case 2:
        return FormatMessage(EMessage::kStoppedOnDual, language);
    case 3:
        return FormatMessage(EMessage::kStoppedOnThree, language);
    case 4:
        return FormatMessage(EMessage::kStoppedOnFour, language);
    default:
        return FormatMessage(EMessage::kMoreThanOneSolution, language, {std::to_string(count)});
    }
}

}  // namespace

std::string SolutionText(const TSolutionText& solution, ELanguage language) {
    if (solution.threat.empty())
        return solution.move;
    return solution.move + " " +
           FormatMessage(EMessage::kSolutionThreat, language, {solution.threat});
}

std::string AnswerText(const TEndOfSolve& end, ELanguage language) {
    if (end.solutions.empty())
        return end.isStopped ? StopText(end.isTimeLimitHit, language)
                             : NoSolutionText(end, language);
    std::vector<std::string> lines;
    for (const TSolutionText& solution : end.solutions)
        lines.push_back(SolutionText(solution, language));
    std::string text = FormatMessage(
        EMessage::kSolutionTime, language, {JoinTexts(lines, "\n"), SecondsText(end.milliseconds)});
    if (end.isStopped)
        text += StopMark(end.isTimeLimitHit, language);
    return text;
}

std::string ResultBoxText(const TEndOfSolve& end, ELanguage language) {
    if (end.solutions.size() > 1)
        return SeveralText(end, language);
    if (end.solutions.empty() && !end.isStopped)
        return NoSolutionText(end, language);
    return {};
}

std::string EndNoteText(const TEndOfSolve& end, ELanguage language) {
    const std::string number = std::to_string(end.problemNumber);
    const std::string completed = FormatMessage(EMessage::kThreadCompleted, language, {number});
    if (end.isStopped && end.solutions.empty())
        return StopText(end.isTimeLimitHit, language);
    if (end.solutions.empty())
        return completed + "\n" + FormatMessage(EMessage::kNoSolutionOfProblem, language, {number});
    return completed + "\n" +
           FormatMessage(EMessage::kSolutionsOfProblem,
                         language,
                         {std::to_string(end.solutions.size()), number});
}

}  // namespace quillmere

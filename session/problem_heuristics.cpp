#include "session/problem_heuristics.h"

#include "core/chess_exception.h"
#include "heuristics/catalogue.h"
#include "heuristics/conflicts.h"
#include "heuristics/heuristics_parser.h"

#include <string>
#include <vector>

namespace quillmere {
namespace {

// A text inside a text is told in English: a fault keeps ids for its own text only.
std::string EnglishText(EMessage id, const std::vector<std::string>& values) {
    return FormatMessage(id, ELanguage::kEnglish, values);
}

}  // namespace

CProblemHeuristics::CProblemHeuristics(const TChessProblem& problem,
                                       const TChessboard& root,
                                       const TProblemWord& word)
    : m_node(root) {
    m_context.isExact = word.isSafeMode;
    m_node.m_searchContext = &m_context;
    m_node.m_threadContext = &m_thread;
    m_thread.rootNode = &m_node;
    m_node.Heur = 0;
    if (word.text == kNoWord)
        return;
    const bool isOwn = word.text.empty() || word.text == kAutomaticWord;
    m_isAutomatic = isOwn && problem.heuristicOverrides.empty();
    m_thread.heuristics.LetRelaxHeuristics = !word.noRelaxation;
    m_thread.heuristics.RunPassWithoutHeuristics = !word.noFinalPass;
    if (m_isAutomatic)
        return;
    if (isOwn)
        ApplyOverrides(problem);
    else
        ParseHeuristics(m_node, word.text);
    if (isOwn && m_node.Heur == 0)
        return;
    const auto conflict =
        FindHeuristicConflict(m_node.Heur, m_thread.heuristics, m_context, m_node);
    if (conflict)
        throw ChessException(
            EMessage::kOverridesConflict,
            {std::to_string(problem.number), EnglishText(conflict->message, conflict->values)});
}

void CProblemHeuristics::ApplyOverrides(const TChessProblem& problem) {
    for (const auto& [bit, parameters] : problem.heuristicOverrides) {
        try {
            ApplyHeuristicOverride(m_node, bit, {parameters.begin(), parameters.end()});
        } catch (const ChessException& fault) {
            throw ChessException(
                EMessage::kOverrideFault,
                {std::to_string(problem.number), HeuristicName(bit), fault.what()});
        }
    }
}

}  // namespace quillmere

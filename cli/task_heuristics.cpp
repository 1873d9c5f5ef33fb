#include "cli/task_heuristics.h"

#include "cli/commands.h"
#include "heuristics/conflicts.h"
#include "heuristics/heuristics_parser.h"
#include "heuristics/unset_patterns.h"
#include "session/problem_heuristics.h"

namespace quillmere {

CTaskHeuristics::CTaskHeuristics(const TArguments& arguments,
                                 const TTask& task,
                                 const std::string& place)
    : m_node(task.board) {
    const std::string text = arguments.Value("--heuristics").value_or(std::string(kAutomaticWord));
    m_isGiven = text != kNoWord;
    m_isAutomatic = text == kAutomaticWord;
    for (const std::string_view option : {"--no-relax", "--no-final-pass"}) {
        if (!m_isGiven && arguments.Has(option))
            throw CUsageException(EMessage::kUsageNeedsHeuristics, {std::string(option)});
    }
    if (!m_isGiven)
        return;
    if (arguments.Has("--no-final-pass") && arguments.Has("--tries"))
        throw CUsageException(EMessage::kUsageTriesNeedFinalPass);
    m_context.areColoursSwapped = task.isSwapped;
    m_node.m_searchContext = &m_context;
    m_node.m_threadContext = &m_thread;
    m_node.m_nMoves = m_node.m_nRootMoves = task.halfMoves;
    m_thread.rootNode = &m_node;
    if (!m_isAutomatic)
        TakeText(text, place);
    m_thread.heuristics.LetRelaxHeuristics = !arguments.Has("--no-relax");
    m_thread.heuristics.RunPassWithoutHeuristics = !arguments.Has("--no-final-pass");
}

void CTaskHeuristics::TakeText(const std::string& text, const std::string& place) {
    ParseHeuristics(m_node, text);
    if (m_node.m_nMoves % 2 != 0)
        FindUnsetPatterns(m_node);
    const auto conflict =
        FindHeuristicConflict(m_node.Heur, m_thread.heuristics, m_context, m_node);
    if (!conflict)
        return;
    const ChessException fault(conflict->message, conflict->values);
    if (place.empty())
        throw fault;
    throw CPlacedException(place, fault);
}

}  // namespace quillmere

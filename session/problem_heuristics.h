// The word of heuristics under which a problem is solved.
#pragma once

#include "core/search_context.h"
#include "core/thread_context.h"
#include "problems/chess_problem.h"

#include <string>

namespace quillmere {

struct TProblemWord {
    std::string text;  // replaces the problem's own settings; "off" for no word, empty for the own
    bool isSafeMode = false;
    bool noRelaxation = false;
    bool noFinalPass = false;
};

// Holds the word and its parameters for one solve.
class CProblemHeuristics {
public:
    // `root` is the problem's root, prepared for the analysis. Throws ChessException: a fault of the
    // text, of a setting of the problem (kOverrideFault), or settings that do not go together
    // (kOverridesConflict).
    CProblemHeuristics(const TChessProblem& problem,
                       const TChessboard& root,
                       const TProblemWord& word);
    CProblemHeuristics(const CProblemHeuristics&) = delete;
    CProblemHeuristics& operator=(const CProblemHeuristics&) = delete;

    // For TSolveRequest::heuristics; null for no word.
    const TChessboard* Node() const { return m_node.Heur != 0 ? &m_node : nullptr; }

private:
    void ApplyOverrides(const TChessProblem& problem);

    TSearchContext m_context;
    TThreadContext m_thread{2};
    TChessboard m_node{};
};

}  // namespace quillmere

// The word of heuristics under which a problem is solved.
#pragma once

#include "core/search_context.h"
#include "core/thread_context.h"
#include "problems/chess_problem.h"

#include <string>
#include <string_view>

namespace quillmere {

// Texts in place of a word
constexpr std::string_view kNoWord = "off";
constexpr std::string_view kAutomaticWord = "auto";

struct TProblemWord {
    // Replaces the problem's own settings; kNoWord for no word. Empty, or kAutomaticWord: the own, and
    // for a problem that has none the choice of the engine.
    std::string text;
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
    const TChessboard* Node() const {
        return m_node.Heur != 0 || m_isAutomatic ? &m_node : nullptr;
    }
    // For TSolveRequest::selectsHeuristics.
    bool IsAutomatic() const { return m_isAutomatic; }

private:
    void ApplyOverrides(const TChessProblem& problem);

    bool m_isAutomatic = false;
    TSearchContext m_context;
    TThreadContext m_thread{2};
    TChessboard m_node{};
};

}  // namespace quillmere

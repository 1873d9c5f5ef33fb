// The word of heuristics that a call gives for its tasks.
#pragma once

#include "cli/arguments.h"
#include "cli/task.h"
#include "core/search_context.h"
#include "core/thread_context.h"

#include <string>

namespace quillmere {

// Of one task: the word and its parameters, checked against the task's board.
class CTaskHeuristics {
public:
    // Reads --heuristics ("auto" if it is not there), --no-relax and --no-final-pass, as far as the
    // command has them. Squares of the text are those of the
    // user's board. `place` is where the task stands in a list, empty outside of one. Throws
    // CUsageException, ChessException that names the place in the text, and what does not fit the
    // position as CPlacedException if there is a place.
    CTaskHeuristics(const TArguments& arguments, const TTask& task, const std::string& place);
    CTaskHeuristics(const CTaskHeuristics&) = delete;
    CTaskHeuristics& operator=(const CTaskHeuristics&) = delete;

    // Into the request of the task.
    void Give(TTaskRequest& request) const {
        request.heuristics = m_isGiven ? &m_node : nullptr;
        request.selectsHeuristics = m_isAutomatic;
    }

private:
    void TakeText(const std::string& text, const std::string& place);

    bool m_isGiven = false;
    bool m_isAutomatic = false;
    TSearchContext m_context;
    TThreadContext m_thread{2};
    TChessboard m_node{};
};

}  // namespace quillmere

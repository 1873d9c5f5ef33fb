// The choice while it is made: the word of the node with a reason for each bit.
#pragma once

#include "core/chessboard.h"
#include "core/thread_context.h"
#include "heuristics/selection.h"
#include "heuristics/selection_facts.h"
#include "heuristics/selection_record.h"
#include "heuristics/selection_trials.h"

#include <map>
#include <string>
#include <vector>

namespace quillmere {

// "SH_DONTLETKINGMOVE", or "SH_DONTLETFIGUREUNBLOCK(A7,B6)": one heuristic with its parameters as the
// text of a whole word has it.
std::string HeuristicTextOf(const TChessboard& root, u32 bit);

class CSelectionWork {
public:
    CSelectionWork(TChessboard& root,
                   const TSelectionFacts& facts,
                   const TSelectionRequest& request,
                   TSelectionRecord& record);
    CSelectionWork(const CSelectionWork&) = delete;
    CSelectionWork& operator=(const CSelectionWork&) = delete;

    TChessboard& Node() { return m_root; }
    THeuristicSettings& Settings() { return m_root.m_threadContext->heuristics; }
    const TSelectionFacts& Facts() const { return m_facts; }
    CSelectionTrials& Trials() { return m_trials; }

    bool Has(u32 bits) const { return (m_root.Heur & bits) != 0; }
    // The task is long enough for assumptions that a wrong pass must pay for.
    bool MayAssume() const;
    void TurnOn(u32 bit, EMessage reason, std::vector<std::string> values = {});
    void TurnOff(u32 bits);
    // The bit was turned on by somebody else.
    void Explain(u32 bit, EMessage reason, std::vector<std::string> values = {});
    // The word of the node was written by a candidate.
    void ExplainCandidate(EMessage reason, std::vector<std::string> values = {});

    // The figures of the block finder: looked for once, then put into the settings where a word needs
    // them. UseBlockedFigures answers whether there are any.
    void FindBlockedFigures();
    bool UseBlockedFigures();
    void ForgetBlockedFigures();

    // Writes the chosen word with its reasons into the record.
    void Tell();

private:
    struct TReason {
        EMessage text;
        std::vector<std::string> values;
    };

    TChessboard& m_root;
    TSelectionFacts m_facts;
    TSelectionRecord& m_record;
    CSelectionTrials m_trials;
    std::map<u32, TReason> m_reasons;
};

}  // namespace quillmere

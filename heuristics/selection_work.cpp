#include "heuristics/selection_work.h"

#include "heuristics/block_finder.h"
#include "heuristics/blocked_list.h"
#include "heuristics/catalogue.h"
#include "heuristics/choice.h"
#include "heuristics/heur_params.h"

namespace quillmere {

std::string HeuristicTextOf(const TChessboard& root, u32 bit) {
    TChessboard node = root;
    node.Heur = bit;
    node.m_pass = kPassComplete;  // so that nothing stands behind the list
    return HeuristicsText(node);
}

CSelectionWork::CSelectionWork(TChessboard& root,
                               const TSelectionFacts& facts,
                               const TSelectionRequest& request,
                               TSelectionRecord& record)
    : m_root(root), m_facts(facts), m_record(record), m_trials(root, request, m_facts, record) {}

bool CSelectionWork::MayAssume() const {
    return m_facts.halfMoves >= kTrialHalfMoves;
}

void CSelectionWork::TurnOn(u32 bit, EMessage reason, std::vector<std::string> values) {
    SetHeur(m_root, m_root.Heur | bit);
    Explain(bit, reason, std::move(values));
}

void CSelectionWork::TurnOff(u32 bits) {
    SetHeur(m_root, m_root.Heur & ~bits);
}

void CSelectionWork::Explain(u32 bit, EMessage reason, std::vector<std::string> values) {
    m_reasons[bit] = {reason, std::move(values)};
}

void CSelectionWork::ExplainCandidate(EMessage reason, std::vector<std::string> values) {
    constexpr u32 kOfCandidates = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE |
                                  SH_ASSERTBLACKKINGSURROUNDED | SH_FINDFORCEDMATE |
                                  SH_DONTLETFIGUREUNBLOCK | SH_DONTLOSEANYFIGURES |
                                  SH_DONTRECEDEBLACKKING | SH_KEEPKINGNEARCORNER;
    for (u32 bit = 1; bit != 0; bit <<= 1) {
        if ((m_root.Heur & bit & kOfCandidates) != 0)
            Explain(bit, reason, values);
    }
}

void CSelectionWork::FindBlockedFigures() {
    m_facts.blocked = quillmere::FindBlockedFigures(m_root);
}

bool CSelectionWork::UseBlockedFigures() {
    PutBlockedFigures(m_root, m_facts);
    return !m_facts.blocked.empty();
}

void CSelectionWork::ForgetBlockedFigures() {
    ClearBlockedFigures(Settings());
    TrackBlockedFigures(m_root);
}

void CSelectionWork::Tell() {
    for (u32 bit = 1; bit != 0; bit <<= 1) {
        if ((m_root.Heur & bit) == 0)
            continue;
        const TReason& reason = m_reasons.at(bit);
        m_record.heuristics.push_back(
            {bit, HeuristicTextOf(m_root, bit), reason.text, reason.values});
    }
}

}  // namespace quillmere

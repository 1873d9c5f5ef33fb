// The rungs of the search for forced mates.
//
// While SH_FINDFORCEDMATE is on, all relaxation is its own: the other rules stay as they are until
// the bit has gone. With the preliminary pass two rungs are there: the weaker edge rule first, then
// the word as it was chosen. The modes of forcing moves have no rungs, so the bit goes behind one
// pass.
//
// The rungs of the modes, when they come, may add one by the time that the passes took: what was
// refuted in less than a second may be asked again more generously. CRelaxationTimes measures it,
// once for all threads; what decides by it stands here.
#include "heuristics/forced_mate_ladder.h"

#include "core/thread_context.h"
#include "heuristics/heur_params.h"

namespace quillmere {
namespace {

// Milliseconds from the start of the analysis. Empirical: a wait that nobody notices.
constexpr u64 kAdditionalRelaxationLimit = 1000;
// Between these, both included, the decision is worth a line in the log.
constexpr u64 kNearLimitLow = 800;
constexpr u64 kNearLimitHigh = 1200;

}  // namespace

void ApplyFfmPreliminary(TChessboard& node) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    if (!settings.FfmPreliminary || (node.Heur & SH_FINDFORCEDMATE) == 0)
        return;
    settings.FfmSavedHeur = node.Heur;
    constexpr u32 kReplaced = SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED;
    SetHeur(node, (node.Heur & ~kReplaced) | SH_KEEPKINGWITHINEXTEDGE);
}

int TryRelaxFfm(TChessboard& node) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    if (settings.FfmPreliminary) {
        settings.FfmPreliminary = false;
        SetHeur(node, settings.FfmSavedHeur);
    } else {
        SetHeur(node, node.Heur & ~SH_FINDFORCEDMATE);
    }
    return node.Heur != 0 ? 1 : 0;
}

bool IsAdditionalRelaxationAccepted(u64 milliseconds,
                                    const std::function<void(const std::string& line)>& log) {
    const bool isAccepted = milliseconds < kAdditionalRelaxationLimit;
    if (milliseconds >= kNearLimitLow && milliseconds <= kNearLimitHigh) {
        log("Time dependent relaxation near the limit: calcTime=" + std::to_string(milliseconds) +
            " msec.; limit=" + std::to_string(kAdditionalRelaxationLimit) + " msec. " +
            (isAccepted ? "(additional relaxation accepted)" : "(additional relaxation refused)"));
    }
    return isAccepted;
}

}  // namespace quillmere

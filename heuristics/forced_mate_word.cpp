// Which of the other heuristics work while forced mates are looked for (FfmWithOther).
//
//    1  all of them
//    0  none: the word is cut to SH_FINDFORCEDMATE where a line begins
//   -1  near the end only: in the first moves white forces and nothing else is assumed, and the other
//       rules are in force once no more than half of the half-moves of the root are left. It hangs on
//       the half-moves alone, so that what is remembered of a position holds wherever it is met again.
//
// In the preliminary pass, and in the first round of a cycle that is run twice, all of them work
// whatever this setting says.
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/rules.h"

namespace quillmere {
namespace {

constexpr int kEndShare = 2;  // of the half-moves of the root, the last one in so many

// FfmWithOther, as it is in force in this pass.
int WithOther(const TChessboard& node) {
    const THeuristicSettings& settings = node.m_threadContext->heuristics;
    return settings.FfmCustom || settings.FfmPreliminary ? 1 : settings.FfmWithOther;
}

}  // namespace

bool rules::DoOthersRest(const TChessboard& node) {
    const int withOther = WithOther(node);
    return withOther == 0 || (withOther < 0 && node.m_nMoves * kEndShare > node.m_nRootMoves);
}

void rules::CutToForcedMate(TChessboard& node) {
    if ((node.Heur & ~SH_FINDFORCEDMATE) != 0 && WithOther(node) == 0)
        SetHeur(node, SH_FINDFORCEDMATE);
}

}  // namespace quillmere

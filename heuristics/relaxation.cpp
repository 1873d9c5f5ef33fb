#include "heuristics/relaxation.h"

namespace quillmere {

int TryRelaxSpecialHeuristics(TChessboard& node) {
    node.Heur = 0;
    node.HeurParams = 0;
    return 0;
}

TPlannedPasses PlannedPasses(TChessboard& /*node*/, bool /*untilEdgeRulesEnd*/) {
    return {};
}

}  // namespace quillmere

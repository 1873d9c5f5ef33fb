#include "heuristics/heur_params.h"

namespace quillmere {

void ComputeHeurParams(TChessboard& node) {
    node.HeurParams = 0;
}

}  // namespace quillmere

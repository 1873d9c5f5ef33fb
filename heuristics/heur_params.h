// The digest of the parameters in force, which stands beside the word in every node.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Writes HeurParams of the node from its `Heur`, its flags and the settings of its thread. Equal
// settings fold equal; the fold wraps at 32 bits, so that different ones may meet, which costs the
// register time only. Called after every write of `Heur`.
void ComputeHeurParams(TChessboard& node);

// Writes `Heur` and the digest.
inline void SetHeur(TChessboard& node, u32 heur) {
    node.Heur = heur;
    ComputeHeurParams(node);
}

}  // namespace quillmere

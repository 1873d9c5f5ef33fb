// Direct tests for the last plies: mate in one and mate in two.
//
// Both are complete: they use no register, no repetition test and no assumption, and they may be
// asked of a node with any number of half-moves left. White must be to move, and black not in
// check. The node must have a thread context.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// White mates with its next move. Only moves that can give check are made.
bool IsMateInOne(TChessboard& node);
// The same, and the mating move found goes to *mate, which is else left alone.
bool FindMateInOne(TChessboard& node, TMove* mate);

// Of a black node, black not in check, with a half-move left at least: if black passed, white would
// mate with its next move.
bool IsMateThreatened(TChessboard& node);

// White mates in at most two moves, whatever black does.
bool IsMateInTwo(TChessboard& node);

}  // namespace quillmere

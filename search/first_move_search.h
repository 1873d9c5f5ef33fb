// What the passes of a request and the trials before them do with a first move.
#pragma once

#include "core/chessboard.h"
#include "core/move.h"
#include "core/verdict.h"

namespace quillmere {

struct TSortIndications;

// Puts the legal first moves of a white root into the order in which they are tried: that of the
// sort and of the user's indications (null for none). Short tasks keep the order of generation, since
// they are over at once. Returns the number of quiet moves by the sort, 0 where nothing was sorted.
// The word of heuristics takes part in the sort as far as the root has one.
u8 SortFirstMoves(TChessboard& root, TMoveList& list, const TSortIndications* indications);

// The verdict of one legal first move, of white's move or of black's defence, under the word of the
// root. Every repetition lies inside its tree and is resolved there, since the root counts as no
// earlier position. Void after a stop.
TVerdict SearchFirstMove(TChessboard& root, TMove move);

}  // namespace quillmere

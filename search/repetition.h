// The repetition test, made on the child after each move of either side.
//
// A repetition never proves anything for the attack. A white move into one is left out: a shortest
// mate never repeats a position, so leaving it out is exact at every node at or above the repeated
// one, and only there. A black move into one is a defence that holds, for the same reason. What
// lies below the repeated node depends on it; the horizon of a level says how far up.
#pragma once

#include "core/search_context.h"
#include "core/thread_context.h"

namespace quillmere {

// An earlier node has the same position as `child`: the same 64 squares, the same derived castling
// rights, and no en passant capture possible in the earlier node. Its level (half-moves) goes to
// *level. The root of the game tree is no earlier node. Levels above the context's repetition bound
// do not count; a bound of 0 switches the test off.
bool IsRepetition(const TChessboard& child, int* level);

// Raises the horizon of a level; a doubt below it is handed up with it.
inline void RaiseHorizon(TThreadContext& thread, int level, int horizon, bool isDoubtful) {
    TLevelState& state = thread.levels[level];
    if (horizon > state.horizon)
        state.horizon = static_cast<u16>(horizon);
    state.isHorizonDoubtful |= isDoubtful;
}

}  // namespace quillmere

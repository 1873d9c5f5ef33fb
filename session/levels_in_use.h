// Levels of the scheduler that a solve may use.
#pragma once

#include "core/chessboard.h"

#include <algorithm>

namespace quillmere {

// Of a root of so many half-moves, with the position flags of the root: the wanted levels, but no
// more than leave fifteen half-moves below them, or seventeen where black is tied.
constexpr int SchedulerLevelsFor(int halfMoves, u16 positionFlags, int wantedLevels) {
    const int kept = (positionFlags & kPositionTied) != 0 ? 17 : 15;
    const int bound = halfMoves > kept ? (halfMoves - kept) / 2 : 0;
    return std::min(bound, wantedLevels);
}

}  // namespace quillmere

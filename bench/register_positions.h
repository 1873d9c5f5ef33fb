// Positions as the register of solved positions is asked about, for its benchmarks.
#pragma once

#include "registers/register_item.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillmere::bench {

// Different keys of white nodes of odd depth from 3 half-moves on, in the order of the walk; at least
// `count` of them, the same in every run. Kept for the next call.
//
// The walk goes through game trees as a proof that there is no mate does: from compositions in 4 moves
// and more, taken as tasks in 6, all white moves, and after each of them two replies of black, as one
// that fails and one that holds. The order of moves is random but seeded. It is no recording of the
// search: it asks no mate tests and cuts nothing, so that it meets more quiet positions.
const std::vector<TChessboardRegisterItem>& SolvePositions(std::size_t count);
// The same of one task only, up to `count`.
std::vector<TChessboardRegisterItem> TaskPositions(const std::string& fen, std::size_t count);

}  // namespace quillmere::bench

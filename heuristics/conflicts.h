// What a user may not ask of the heuristics.
#pragma once

#include "core/chessboard.h"
#include "core/messages.h"

#include <optional>
#include <string>
#include <vector>

namespace quillmere {

struct TSearchContext;

struct THeuristicConflict {
    EMessage message = EMessage::kCount;
    std::vector<std::string> values;
};

// The first thing wrong with a word and its parameters, nothing if they go together. The board is
// the root, for squares that must hold a figure; its own `Heur` and contexts are not looked at.
std::optional<THeuristicConflict> FindHeuristicConflict(u32 heur,
                                                        const THeuristicSettings& settings,
                                                        const TSearchContext& context,
                                                        const TChessboard& board);

}  // namespace quillmere

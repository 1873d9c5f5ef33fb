// The second stage of the selection, for positions with under eight figures in all.
#pragma once

#include "core/types.h"
#include "heuristics/selection_work.h"

namespace quillmere {

// Adds what fits a board with few figures. Returns the bits that it may have turned on and that the
// caller may take off again.
u32 SelectForSmallMaterial(CSelectionWork& work);

}  // namespace quillmere

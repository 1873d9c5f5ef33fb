// One thread's way through the passes of a request (search/root.h).
#pragma once

#include "search/root.h"

namespace quillmere {

// Runs the passes on the calling thread, which takes first moves as it finds them free, until nothing
// is left to do or it is stopped. `root` and the thread's settings are weakened on the way.
void RunPasses(TChessboard& root, CFirstMoves& moves, const TRootRequest& request);

}  // namespace quillmere

// Black figures that were to stay still and moved: white must answer them (`LessExceptions`).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The black move before freed a promoted or a blocked figure, was let through as an event, and
// white's last move does not answer it. Asked under SH_DONTLETPROMOTEDQUEENMOVE,
// SH_DONTLETPROMOTEDFIGUREMOVE or SH_DONTLETFIGUREUNBLOCK.
bool IsFreedFigureUnanswered(const TChessboard& child);

// In the white node before the last move a figure of the blocked list stood off its square: all
// moves of that node are given up. A figure that was freed by the event just before is left to
// IsFreedFigureUnanswered. Asked under SH_DONTLETFIGUREUNBLOCK.
bool HasBlockedFigureLeft(const TChessboard& child);

}  // namespace quillmere

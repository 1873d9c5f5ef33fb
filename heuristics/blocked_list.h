// The list of black figures that are taken not to move (SH_DONTLETFIGUREUNBLOCK).
//
// The list stands twice: in the settings of the thread, with the squares as they were given, and in
// every node, where entry i of m_trackedFigures follows entry i of the settings (-1 when captured).
// Whoever strikes a figure writes both here, so that the entries keep fitting.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// The node, a root, follows the list of the settings: the figures are where it says.
void TrackBlockedFigures(TChessboard& root);

// Strikes one entry, 0 .. BlockedFigureCount - 1; the entries behind it move up.
void StrikeBlockedEntry(TChessboard& node, int entry);

// Strikes the entry that moves most freely in the position of the node, the first of equals. False
// if the list is empty.
bool StrikeFreestBlockedFigure(TChessboard& node);

// Strikes the squares of PendingBlockRemovals and forgets them; squares that are not in the list
// are passed over.
void StrikePendingFigures(TChessboard& node);

// The settings had `before` in force when the node was made and lost entries since: takes the same
// entries out of the node.
void FollowStruckEntries(TChessboard& node, const THeuristicSettings& before);

}  // namespace quillmere

// What the position says to the steps of the ladder (heuristics/relaxation.cpp).
//
// All of them look at a node with white to move and leave it as it was. "Free" squares of the black
// king are those that it can step to: not held by black, not attacked by white.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

bool IsBlackKingInCorner(const TChessboard& node);

// The black king has at most `count` free squares.
bool HasFewFlights(TChessboard& node, int count);

// The key white figure pins the black figure of KeyWhiteFigurePinned to its king.
bool IsKeyPinStanding(const TChessboard& node);

// So many black men stand around their king that it hardly moves.
bool IsBlackKingWalledIn(const TChessboard& node);

// A strict rule for the black king should first be eased by exceptions.
bool SuitsKingMoveExceptions(TChessboard& node);

// The strict rule for the black king may give way to SH_ASSERTBLACKKINGSURROUNDED at once.
bool SuitsSwitchToSurrounded(const TChessboard& node);

// Figures may be lost as long as a pawn walks to its promotion unharmed.
bool SuitsLosingNoFigures(TChessboard& node);

// What comes in the place of SH_KEEPKINGONTHEEDGE, besides `others`, the word without it:
// SH_KEEPKINGWITHINEXTEDGE, SH_ASSERTBLACKKINGSURROUNDED, or 0.
struct TEdgeSuccessor {
    u32 heuristic = 0;
    // EdgeSquaresInclCorner is to be found anew.
    bool findsCornerSquares = false;
};
TEdgeSuccessor SuccessorOfEdge(TChessboard& node, u32 others);

// The black king stands on b2, b7, g2 or g7.
bool IsBlackKingOnCornerSquare(const TChessboard& node);

// Black moves nothing but its king, and that only to take.
bool IsClosedButForKingCaptures(TChessboard& node);

}  // namespace quillmere

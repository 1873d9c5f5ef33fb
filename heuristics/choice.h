// A word of heuristics with all its parameters, out of the four places where a node keeps them.
//
// A reader of texts works on a choice and stores it only when the whole text was good, so that a
// fault changes nothing.
#pragma once

#include "core/chessboard.h"
#include "core/heuristics.h"

#include <cstddef>

namespace quillmere {

struct THeuristicChoice {
    u32 heur = 0;
    // The task was turned round for a black mate: the squares here are those of the user, the other
    // way up than on the board.
    bool areColoursSwapped = false;
    u8 OneColorMode = kOneColourOff;
    THeuristicSettings settings;

    // Of the search context
    u8 KeyDiagonalSquares[2] = {kNoSquare, kNoSquare};
    u8 KeyLineFile = kNoSquare;
    std::size_t onlyAfterCount = 0;  // moves of SeaSnakeOnlyAfter; never written back
    // The position of SH_ZUGZWANG as on the board of the search, whatever the user sees.
    bool HasZugzwangPosition = false;
    u8 ZugzwangBoard[kSquareCount] = {};
};

// A square of the choice on the board, and the other way round; kNoSquare stays.
u8 TurnedSquare(const THeuristicChoice& choice, u8 square);
// The choice of the node; defaults for what it has no thread or search context for.
THeuristicChoice ChoiceOf(const TChessboard& node);

// Writes the choice to the node, its thread and its search context, both of which it must have,
// and brings HeurParams and the tracked figures in line.
void StoreChoice(TChessboard& node, const THeuristicChoice& choice);

// Adds a square to the blocked figures, once. False if there is no room.
bool AddBlockedFigure(THeuristicSettings& settings, u8 square);
void ClearBlockedFigures(THeuristicSettings& settings);

}  // namespace quillmere

// Families of random positions in which one side rule of the program decides.
//
// Each family is drawn so that a certain short cut of the search applies often and is nearly wrong:
// material that can hardly mate, a king with few flights, a promotion, castling, en passant,
// stalemate. An even draw would meet these cases once in a thousand positions.
#pragma once

#include "tests/support/random_positions.h"

#include <string_view>
#include <vector>

namespace quillmere::reference {

struct TFamily {
    std::string_view name;
    TPosition (*draw)(CRandom& random, bool isWhiteToMove);
    // Longest mate that the brute force follows easily here.
    int fullMoves;
    // Draws for DrawBeforeMate in place of `draw`, which must be quick there; it may give mates.
    TPosition (*drawMen)(CRandom& random, bool isWhiteToMove) = nullptr;
};

const std::vector<TFamily>& Families();
// A position of the family, white to move, from which a mate can be reached in `fullMoves` moves with
// black's help: a mate of the family, taken back move by move without captures. Where black has few
// moves it is often forced.
TPosition DrawBeforeMate(CRandom& random, const TFamily& family, int fullMoves);

// Takes back a move of the side that has just moved: a quiet move of a figure, or a pawn step.
// False, with the position unchanged, if no such move leads to a legal position or castling rights
// would have to be given back.
bool TakeBack(CRandom& random, TPosition& position);

// By name; throws std::invalid_argument if there is none.
const TFamily& FindFamily(std::string_view name);

}  // namespace quillmere::reference

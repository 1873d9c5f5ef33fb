// Random legal positions for the tests, the same with every compiler and library.
//
// Positions that are drawn evenly hold few mates. A recipe therefore says what men may stand where:
// the black king at the edge, white's king near it, black men around their king, pawns far ahead.
// The seed of a case is one number, so that a failing case can be drawn again alone.
#pragma once

#include "tests/support/random.h"
#include "tests/support/reference.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillmere::reference {

using CRandom = test::CRandom;

struct TRecipe {
    // Men besides the kings. A letter is drawn for each from the string, so that a letter standing
    // there twice comes twice as often.
    int whiteMen = 2;
    int blackMen = 0;
    std::string_view whiteLetters = "QRBNP";
    std::string_view blackLetters = "QRBNP";
    // Chances in percent
    int blackKingOnEdge = 50;
    int blackKingInCorner = 0;
    int kingsClose = 50;    // the white king within three squares of the black one
    int whiteMenClose = 0;  // for each white man: within three squares of the black king
    int blackMenClose = 0;  // for each black man: within two squares of its king
    int pawnsFarAhead = 0;  // for each pawn of white: on its sixth or seventh rank
    int blackPawnsFarAhead = 0;
    // The kings stand at home, and the first rook of a side in a corner of its home rank.
    bool isWhiteAtHome = false;
    bool isBlackAtHome = false;
    bool isWhiteToMove = true;
    // Eight pawns a side at most, promoted men counted with them. Needs 15 men or fewer a side.
    bool isMaterialOfGame = false;
};

// Men of one side, as capital letters without the king, that a game could have: no more than eight
// pawns, those counted that were promoted.
bool IsMaterialOfGame(std::string_view men);

// Draws until the position is legal and the side to move has a move.
TPosition RandomPosition(CRandom& random, const TRecipe& recipe);

// A recipe drawn at random for a number of men, kings included, that often gives a mate of about
// `fullMoves` moves: white stands better the fewer the moves.
TRecipe RandomMateRecipe(CRandom& random, int men, int fullMoves);

// A position of 3 to 32 men of any kind without regard to mates, either side to move, promoted men
// and castling included: for move generation.
TPosition RandomMelee(CRandom& random, int men);

// Pawns on their first rank beside enemy pawns that may capture them in passing, kings and a few
// figures around them; 6 to 12 men.
TPosition RandomEnPassantNest(CRandom& random, bool isWhiteToMove);

}  // namespace quillmere::reference

#include "tests/support/families.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace quillmere::reference {

namespace {

int Parity(int square) {
    return (square % 8 + square / 8) % 2;
}

template <typename TWanted>
TPosition
DrawWanted(CRandom& random, TRecipe (*makeRecipe)(CRandom&), bool isWhiteToMove, TWanted isWanted) {
    for (;;) {
        TRecipe recipe = makeRecipe(random);
        recipe.isWhiteToMove = isWhiteToMove;
        const TPosition position = RandomPosition(random, recipe);
        if (isWanted(position)) {
            return position;
        }
    }
}

bool IsAnyWanted(const TPosition&) {
    return true;
}

// The black king in or near a corner, its own men around it.
TRecipe CorneredRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.blackKingOnEdge = 95;
    recipe.blackKingInCorner = 70;
    recipe.kingsClose = 90;
    recipe.whiteMenClose = 60;
    recipe.blackMenClose = 80;
    recipe.blackMen = random.Between(1, 4);
    recipe.blackLetters = "PPPRBNQ";
    return recipe;
}

TRecipe OneMinorRecipe(CRandom& random) {
    TRecipe recipe = CorneredRecipe(random);
    recipe.whiteMen = 1;
    recipe.whiteLetters = "BN";
    return recipe;
}

TRecipe MinorAgainstOneRecipe(CRandom& random) {
    TRecipe recipe = OneMinorRecipe(random);
    recipe.blackMen = 1;
    return recipe;
}

TRecipe MinorAndPawnRecipe(CRandom& random) {
    TRecipe recipe = CorneredRecipe(random);
    recipe.whiteMen = random.Between(2, 3);
    recipe.whiteLetters = "BNPPP";
    recipe.pawnsFarAhead = 60;
    recipe.blackMen = random.Between(0, 3);
    return recipe;
}

TRecipe TwoKnightsRecipe(CRandom& random) {
    TRecipe recipe = CorneredRecipe(random);
    recipe.whiteMen = 2;
    recipe.whiteLetters = "N";
    recipe.blackMen = random.Between(0, 2);
    recipe.blackLetters = "PPRNBQ";
    return recipe;
}

TRecipe BishopsRecipe(CRandom& random) {
    TRecipe recipe = CorneredRecipe(random);
    recipe.whiteMen = random.Between(2, 3);
    recipe.whiteLetters = "B";
    recipe.blackMen = random.Between(0, 3);
    return recipe;
}

TRecipe PawnsOnlyRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.whiteMen = random.Between(1, 3);
    recipe.whiteLetters = "P";
    recipe.blackMen = random.Between(0, 3);
    recipe.blackLetters = "PPPPN";
    recipe.blackKingOnEdge = 80;
    recipe.kingsClose = 90;
    recipe.pawnsFarAhead = 85;
    recipe.blackMenClose = 70;
    return recipe;
}

TRecipe WrongCornerRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.whiteMen = random.Between(2, 3);
    recipe.whiteLetters = "BPP";
    recipe.blackMen = random.Between(0, 2);
    recipe.blackLetters = "PPN";
    recipe.blackKingOnEdge = 90;
    recipe.blackKingInCorner = 40;
    recipe.kingsClose = 90;
    recipe.pawnsFarAhead = 90;
    recipe.blackMenClose = 80;
    return recipe;
}

// The king off the edge, hemmed in by its own men, against one white figure and some pawns.
TRecipe HemmedInRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.whiteMen = random.Between(1, 4);
    recipe.whiteLetters = "RBNPP";
    recipe.blackMen = random.Between(4, 9);
    recipe.blackLetters = "PPPPPNBR";
    recipe.blackKingOnEdge = 0;
    recipe.kingsClose = 90;
    recipe.whiteMenClose = 80;
    recipe.blackMenClose = 95;
    return recipe;
}

TRecipe CastlingRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.isWhiteAtHome = true;
    recipe.whiteMen = random.Between(2, 5);
    recipe.whiteLetters = "QRBNPP";
    recipe.blackMen = random.Between(0, 3);
    recipe.blackLetters = "PPNB";
    recipe.blackKingOnEdge = 0;
    recipe.whiteMenClose = 70;
    recipe.blackMenClose = 80;
    recipe.blackPawnsFarAhead = 0;
    return recipe;
}

TRecipe BlackCastlingRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.isBlackAtHome = true;
    recipe.whiteMen = random.Between(2, 3);
    recipe.whiteLetters = "QRBNP";
    recipe.blackMen = random.Between(1, 4);
    recipe.blackLetters = "PPNB";
    recipe.kingsClose = 95;
    recipe.whiteMenClose = 80;
    recipe.blackMenClose = 80;
    recipe.pawnsFarAhead = 80;
    return recipe;
}

TRecipe BlackPromotionRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.whiteMen = random.Between(1, 3);
    recipe.whiteLetters = "QQRBN";
    recipe.blackMen = random.Between(1, 3);
    recipe.blackLetters = "PPPPN";
    recipe.blackKingOnEdge = 90;
    recipe.blackKingInCorner = 40;
    recipe.kingsClose = 90;
    recipe.whiteMenClose = 50;
    recipe.blackPawnsFarAhead = 100;
    return recipe;
}

TRecipe StalemateRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.whiteMen = random.Between(1, 3);
    recipe.whiteLetters = "QQRP";
    recipe.blackMen = random.Between(0, 2);
    recipe.blackLetters = "PPPB";
    recipe.blackKingOnEdge = 95;
    recipe.blackKingInCorner = 60;
    recipe.kingsClose = 95;
    recipe.whiteMenClose = 70;
    recipe.blackMenClose = 60;
    recipe.pawnsFarAhead = 70;
    return recipe;
}

TRecipe FewMenRecipe(CRandom& random) {
    TRecipe recipe;
    recipe.whiteMen = random.Between(1, 2);
    recipe.whiteLetters = "RRQBN";
    recipe.blackMen = random.Below(100) < 40 ? 1 : 0;
    recipe.blackLetters = "RBNP";
    recipe.blackKingOnEdge = 95;
    recipe.blackKingInCorner = 30;
    recipe.kingsClose = 95;
    return recipe;
}

TPosition DrawOneMinor(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, OneMinorRecipe, isWhiteToMove, IsAnyWanted);
}

TPosition DrawMinorAgainstOne(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, MinorAgainstOneRecipe, isWhiteToMove, IsAnyWanted);
}

TPosition DrawMinorAndPawn(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, MinorAndPawnRecipe, isWhiteToMove, IsAnyWanted);
}

TPosition DrawTwoKnights(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, TwoKnightsRecipe, isWhiteToMove, IsAnyWanted);
}

TPosition DrawBishopsOfOneColour(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, BishopsRecipe, isWhiteToMove, [](const TPosition& position) {
        bool isSeen[2] = {false, false};
        for (int square = 0; square < 64; ++square) {
            if (position.squares[square] == 'B') {
                isSeen[Parity(square)] = true;
            }
        }
        return !(isSeen[0] && isSeen[1]);
    });
}

TPosition DrawPawnsOnly(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, PawnsOnlyRecipe, isWhiteToMove, IsAnyWanted);
}

// Every white pawn is a rook's pawn, and there is exactly one bishop.
TPosition DrawWrongCorner(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, WrongCornerRecipe, isWhiteToMove, [](const TPosition& position) {
        int bishops = 0;
        int pawns = 0;
        for (int square = 0; square < 64; ++square) {
            bishops += position.squares[square] == 'B';
            if (position.squares[square] == 'P') {
                if (square % 8 != 0 && square % 8 != 7) {
                    return false;
                }
                ++pawns;
            }
        }
        return bishops == 1 && pawns > 0;
    });
}

// At most one white figure besides the pawns, and the black king off the edge.
bool HasOneFigureAgainstAFreeKing(const TPosition& position) {
    const int file = position.blackKing % 8;
    const int rank = position.blackKing / 8;
    return file > 0 && file < 7 && rank > 0 && rank < 7 &&
           std::count_if(std::begin(position.squares), std::end(position.squares), [](char man) {
               return man == 'R' || man == 'B' || man == 'N';
           }) <= 1;
}

TPosition DrawHemmedIn(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, HemmedInRecipe, isWhiteToMove, HasOneFigureAgainstAFreeKing);
}

// The same before black's men are put around their king.
TPosition DrawLoosely(CRandom& random) {
    return DrawWanted(
        random,
        [](CRandom& draw) {
            TRecipe recipe = HemmedInRecipe(draw);
            recipe.blackMen = draw.Between(0, 3);
            return recipe;
        },
        true,
        HasOneFigureAgainstAFreeKing);
}

std::string BlackMen(const TPosition& position) {
    std::string men;
    for (const char man : position.squares) {
        if (man >= 'a' && man <= 'z' && man != 'k') {
            men += static_cast<char>(man - 'a' + 'A');
        }
    }
    return men;
}

// Black to move in check by white's only figure.
TPosition DrawCheckOfOneFigure(CRandom& random) {
    for (;;) {
        const TPosition before = DrawLoosely(random);
        std::vector<TPosition> checks;
        for (const TPlainMove move : LegalMoves(before)) {
            const TPosition after = After(before, move);
            if (move.promotion == 0 && IsInCheck(after, false)) {
                checks.push_back(after);
            }
        }
        if (!checks.empty()) {
            return checks[static_cast<std::size_t>(random.Below(static_cast<int>(checks.size())))];
        }
    }
}

// A mate of the family: a check, and black men on all flights that are left. Drawn evenly, such
// mates are one in a thousand.
TPosition DrawHemmedInMate(CRandom& random, bool) {
    for (;;) {
        TPosition position = DrawCheckOfOneFigure(random);
        bool isHopeful = true;
        while (isHopeful && !IsMate(position)) {
            const TPlainMove reply = LegalMoves(position).front();
            isHopeful = reply.from == position.blackKing && position.squares[reply.to] == '.';
            const bool isPawnRank = reply.to >= 8 && reply.to < 56;
            position.squares[reply.to] = isPawnRank ? random.Letter("pppnnbrb") : 'n';
            isHopeful =
                isHopeful && IsLegalPosition(position) && IsMaterialOfGame(BlackMen(position));
        }
        if (isHopeful) {
            return position;
        }
    }
}

TPosition DrawCastling(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, CastlingRecipe, isWhiteToMove, [](const TPosition& position) {
        return position.blackKing / 8 <= 3;
    });
}

TPosition DrawBlackCastling(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, BlackCastlingRecipe, isWhiteToMove, IsAnyWanted);
}

bool IsEnPassant(const TPosition& position, TPlainMove move) {
    const char man = position.squares[move.from];
    return (man == 'P' || man == 'p') && move.from % 8 != move.to % 8 &&
           position.squares[move.to] == '.';
}

// A double step of white checks and can be taken in passing; or a double step of black can, with
// check.
bool HasEnPassantWithCheck(const TPosition& position) {
    const bool isWhite = position.isWhiteToMove;
    const int start = isWhite ? 8 : 48;
    const int step = isWhite ? 16 : -16;
    for (int from = start; from < start + 8; ++from) {
        if (position.squares[from] != (isWhite ? 'P' : 'p') ||
            position.squares[from + step / 2] != '.' || position.squares[from + step] != '.') {
            continue;
        }
        const TPosition stepped = After(
            position, {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(from + step), 0});
        if (IsInCheck(stepped, isWhite) || (isWhite && !IsInCheck(stepped, false))) {
            continue;
        }
        for (const TPlainMove capture : LegalMoves(stepped)) {
            if (IsEnPassant(stepped, capture) &&
                (isWhite || IsInCheck(After(stepped, capture), false))) {
                return true;
            }
        }
    }
    return false;
}

TPosition DrawEnPassantMen(CRandom& random, bool isWhiteToMove) {
    for (;;) {
        const TPosition position = RandomEnPassantNest(random, isWhiteToMove);
        const auto count = [&](char man) {
            return std::count(std::begin(position.squares), std::end(position.squares), man);
        };
        // White stands better, or there are no mates.
        if (count('q') + count('r') == 0 && count('Q') + count('R') > 0) {
            return position;
        }
    }
}

TPosition DrawEnPassant(CRandom& random, bool isWhiteToMove) {
    const bool wantsCheck = random.Chance(70);
    for (;;) {
        const TPosition position = DrawEnPassantMen(random, isWhiteToMove);
        if (!wantsCheck || HasEnPassantWithCheck(position)) {
            return position;
        }
    }
}

TPosition DrawBlackPromotion(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, BlackPromotionRecipe, isWhiteToMove, IsAnyWanted);
}

TPosition DrawStalemate(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, StalemateRecipe, isWhiteToMove, IsAnyWanted);
}

TPosition DrawFewMen(CRandom& random, bool isWhiteToMove) {
    return DrawWanted(random, FewMenRecipe, isWhiteToMove, IsAnyWanted);
}

}  // namespace

bool TakeBack(CRandom& random, TPosition& position) {
    const bool isWhite = !position.isWhiteToMove;
    std::vector<TPosition> earlier;
    TPosition reversed = position;
    reversed.isWhiteToMove = isWhite;
    for (const bool right : reversed.rights) {
        if (right) {
            return false;  // castling rights would have to be given back
        }
    }
    const auto add = [&](int from, int to) {
        TPosition before = reversed;
        std::swap(before.squares[from], before.squares[to]);
        before = FromFen(ToFen(before));
        if (IsLegalPosition(before)) {
            earlier.push_back(before);
        }
    };
    const char pawn = isWhite ? 'P' : 'p';
    const int back = isWhite ? -8 : 8;
    for (int square = 8; square < 56; ++square) {
        if (position.squares[square] != pawn) {
            continue;
        }
        const int before = square + back;
        if (before / 8 != 0 && before / 8 != 7 && position.squares[before] == '.') {
            add(square, before);
        }
    }
    // A figure may stand pinned after its move, so that the steps are not asked for their legality.
    for (const TPlainMove move : QuietSteps(reversed)) {
        if (position.squares[move.from] != pawn) {
            add(move.from, move.to);
        }
    }
    if (earlier.empty()) {
        return false;
    }
    position = earlier[static_cast<std::size_t>(random.Below(static_cast<int>(earlier.size())))];
    return true;
}

TPosition DrawBeforeMate(CRandom& random, const TFamily& family, int fullMoves) {
    const auto drawMen = family.drawMen != nullptr ? family.drawMen : family.draw;
    for (;;) {
        TPosition position = drawMen(random, false);
        // A drawn position has a move for the side that is next; the mate is found by white's
        // last move from it.
        for (int attempt = 0; attempt < 20 && !IsMate(position); ++attempt) {
            position = drawMen(random, false);
            std::vector<TPosition> mates;
            TPosition whiteNext = position;
            whiteNext.isWhiteToMove = true;
            if (!IsLegalPosition(whiteNext)) {
                continue;
            }
            for (const TPlainMove move : LegalMoves(whiteNext)) {
                const TPosition after = After(whiteNext, move);
                if (IsMate(after)) {
                    mates.push_back(after);
                }
            }
            if (!mates.empty()) {
                position =
                    mates[static_cast<std::size_t>(random.Below(static_cast<int>(mates.size())))];
            }
        }
        if (!IsMate(position)) {
            continue;
        }
        bool isTakenBack = true;
        for (int halfMove = 0; halfMove < 2 * fullMoves - 1 && isTakenBack; ++halfMove) {
            isTakenBack = TakeBack(random, position);
        }
        if (isTakenBack && HasLegalMove(position)) {
            return position;
        }
    }
}

const std::vector<TFamily>& Families() {
    static const std::vector<TFamily> families = {
        {"OneMinor", DrawOneMinor, 5},
        {"MinorAgainstOne", DrawMinorAgainstOne, 5},
        {"MinorAndPawn", DrawMinorAndPawn, 4},
        {"TwoKnights", DrawTwoKnights, 4},
        {"BishopsOfOneColour", DrawBishopsOfOneColour, 4},
        {"PawnsOnly", DrawPawnsOnly, 4},
        {"WrongCorner", DrawWrongCorner, 4},
        {"HemmedIn", DrawHemmedIn, 3, DrawHemmedInMate},
        {"Castling", DrawCastling, 3},
        {"BlackCastling", DrawBlackCastling, 3},
        {"EnPassant", DrawEnPassant, 3, DrawEnPassantMen},
        {"BlackPromotion", DrawBlackPromotion, 3},
        {"Stalemate", DrawStalemate, 3},
        {"FewMen", DrawFewMen, 5},
    };
    return families;
}

const TFamily& FindFamily(std::string_view name) {
    for (const TFamily& family : Families()) {
        if (family.name == name) {
            return family;
        }
    }
    throw std::invalid_argument("no family " + std::string(name));
}

}  // namespace quillmere::reference

#include "tests/support/random_positions.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace quillmere::reference {

namespace {

int Distance(int a, int b) {
    return std::max(std::abs(a % 8 - b % 8), std::abs(a / 8 - b / 8));
}

bool IsOnEdge(int square) {
    return square % 8 == 0 || square % 8 == 7 || square / 8 == 0 || square / 8 == 7;
}

bool IsCorner(int square) {
    return (square % 8 == 0 || square % 8 == 7) && (square / 8 == 0 || square / 8 == 7);
}

// Draws squares until one is free and wanted; gives up after a while, since there may be none.
template <typename TWanted>
int DrawSquare(CRandom& random, const TPosition& position, TWanted isWanted) {
    for (int attempt = 0; attempt < 400; ++attempt) {
        const int square = random.Below(64);
        if (position.squares[square] == '.' && isWanted(square)) {
            return square;
        }
    }
    return -1;
}

// The men of one side as capital letters.
std::string DrawMen(CRandom& random, const TRecipe& recipe, bool isWhite) {
    const bool isAtHome = isWhite ? recipe.isWhiteAtHome : recipe.isBlackAtHome;
    const std::string_view letters = isWhite ? recipe.whiteLetters : recipe.blackLetters;
    const int count = isWhite ? recipe.whiteMen : recipe.blackMen;
    std::string men;
    for (int failures = 0; static_cast<int>(men.size()) < count;) {
        const bool isFirstRook = isAtHome && men.empty();
        // The letters may not reach as far as so many men; the set of the game always does.
        constexpr std::string_view kFigures = "QRRBBNNP";
        men += isFirstRook ? 'R' : random.Letter(failures < 50 ? letters : kFigures);
        if (recipe.isMaterialOfGame && !IsMaterialOfGame(men)) {
            men.pop_back();
            ++failures;
        }
    }
    return men;
}

TPosition EmptyBoard() {
    return FromFen("8/8/8/8/8/8/8/8");
}

// The rights by the convention of problems follow from the board alone.
TPosition WithRights(const TPosition& position) {
    return FromFen(ToFen(position));
}

void PlaceBlackKing(CRandom& random, const TRecipe& recipe, TPosition& position) {
    int square = 60;
    if (!recipe.isBlackAtHome) {
        const bool isCorner = random.Chance(recipe.blackKingInCorner);
        const bool isEdge = random.Chance(recipe.blackKingOnEdge);
        square = DrawSquare(random, position, [&](int candidate) {
            return isCorner ? IsCorner(candidate) : (!isEdge || IsOnEdge(candidate));
        });
    }
    position.squares[square] = 'k';
    position.blackKing = static_cast<signed char>(square);
}

// False if the home square lies next to the black king.
bool PlaceWhiteKing(CRandom& random, const TRecipe& recipe, TPosition& position) {
    int square = 4;
    if (!recipe.isWhiteAtHome) {
        const bool isClose = random.Chance(recipe.kingsClose);
        square = DrawSquare(random, position, [&](int candidate) {
            const int distance = Distance(candidate, position.blackKing);
            return distance > 1 && (!isClose || distance <= 3);
        });
    }
    if (position.squares[square] != '.' || Distance(square, position.blackKing) < 2) {
        return false;
    }
    position.squares[square] = 'K';
    position.whiteKing = static_cast<signed char>(square);
    return true;
}

bool PlaceMan(CRandom& random, const TRecipe& recipe, TPosition& position, char man) {
    const bool isWhite = std::isupper(static_cast<unsigned char>(man)) != 0;
    const bool isPawn = man == 'P' || man == 'p';
    const bool isFarAhead =
        isPawn && random.Chance(isWhite ? recipe.pawnsFarAhead : recipe.blackPawnsFarAhead);
    const bool isClose = random.Chance(isWhite ? recipe.whiteMenClose : recipe.blackMenClose);
    const int reach = isWhite ? 3 : 2;
    const int square = DrawSquare(random, position, [&](int candidate) {
        const int rank = candidate / 8;
        if (isPawn && (rank == 0 || rank == 7)) {
            return false;
        }
        if (isFarAhead) {
            return isWhite ? rank >= 5 : rank <= 2;
        }
        return !isClose || Distance(candidate, position.blackKing) <= reach;
    });
    if (square < 0) {
        return false;
    }
    position.squares[square] = man;
    return true;
}

}  // namespace

bool IsMaterialOfGame(std::string_view men) {
    const auto count = [&](char letter) {
        return static_cast<int>(std::count(men.begin(), men.end(), letter));
    };
    const auto surplus = [&](char letter, int first) { return std::max(0, count(letter) - first); };
    return count('P') + surplus('Q', 1) + surplus('R', 2) + surplus('B', 2) + surplus('N', 2) <= 8;
}

TPosition RandomPosition(CRandom& random, const TRecipe& recipe) {
    for (;;) {
        TPosition position = EmptyBoard();
        position.isWhiteToMove = recipe.isWhiteToMove;
        PlaceBlackKing(random, recipe, position);
        bool isComplete = PlaceWhiteKing(random, recipe, position);
        for (const bool isWhite : {true, false}) {
            const bool isAtHome = isWhite ? recipe.isWhiteAtHome : recipe.isBlackAtHome;
            const std::string men = DrawMen(random, recipe, isWhite);
            for (std::size_t man = 0; man < men.size() && isComplete; ++man) {
                if (isAtHome && man == 0) {
                    const int corner = (isWhite ? 0 : 56) + (random.Chance(50) ? 7 : 0);
                    isComplete = position.squares[corner] == '.';
                    position.squares[corner] = isWhite ? 'R' : 'r';
                    continue;
                }
                const int lower = std::tolower(static_cast<unsigned char>(men[man]));
                isComplete = PlaceMan(
                    random, recipe, position, isWhite ? men[man] : static_cast<char>(lower));
            }
        }
        if (!isComplete) {
            continue;
        }
        position = WithRights(position);
        if (IsLegalPosition(position) && HasLegalMove(position)) {
            return position;
        }
    }
}

TRecipe RandomMateRecipe(CRandom& random, int men, int fullMoves) {
    TRecipe recipe;
    const int others = men - 2;
    // White has at least one man; the fewer the moves, the more of the men are white.
    int blackMen = 0;
    if (others > 1) {
        blackMen = random.Below(others - (fullMoves <= 2 && others > 2 ? 1 : 0));
    }
    recipe.blackMen = blackMen;
    recipe.whiteMen = others - blackMen;
    constexpr std::string_view kWhiteMixes[] = {
        "QRBNP", "QQR", "QRRP", "QRBN", "RRBN", "BBNNQ", "QPPP", "RPPN", "QNP", "QBP"};
    constexpr std::string_view kBlackMixes[] = {"QRBNP", "PPP", "RBNP", "NPP", "BP", "BNPP", "RQP"};
    recipe.whiteLetters = kWhiteMixes[random.Below(static_cast<int>(std::size(kWhiteMixes)))];
    recipe.blackLetters = kBlackMixes[random.Below(static_cast<int>(std::size(kBlackMixes)))];
    if (others - blackMen == 1) {
        recipe.whiteLetters = "QQRP";
    }
    recipe.blackKingOnEdge = fullMoves <= 2 ? 90 : 75;
    recipe.blackKingInCorner = fullMoves <= 2 ? 30 : 20;
    recipe.kingsClose = fullMoves <= 2 ? 90 : 75;
    recipe.whiteMenClose = fullMoves <= 2 ? 50 : 30;
    recipe.blackMenClose = 60;
    recipe.pawnsFarAhead = 70;
    recipe.blackPawnsFarAhead = random.Chance(20) ? 80 : 15;
    return recipe;
}

TPosition RandomMelee(CRandom& random, int men) {
    TRecipe recipe;
    const int others = men - 2;
    recipe.isMaterialOfGame = true;
    const int fewest = std::max(others / 3, others - 15);
    recipe.whiteMen = random.Between(fewest, others - fewest);
    recipe.blackMen = others - recipe.whiteMen;
    constexpr std::string_view kMixes[] = {
        "QRRBBNNPPPPPPPP", "PPPPPPPPPPN", "QQRRBBNN", "RRBBPPPP", "NNNPPPP", "QP"};
    recipe.whiteLetters = kMixes[random.Below(static_cast<int>(std::size(kMixes)))];
    recipe.blackLetters = kMixes[random.Below(static_cast<int>(std::size(kMixes)))];
    recipe.blackKingOnEdge = 0;
    recipe.kingsClose = random.Chance(50) ? 80 : 0;
    recipe.pawnsFarAhead = random.Chance(40) ? 60 : 0;
    recipe.blackPawnsFarAhead = random.Chance(40) ? 60 : 0;
    recipe.isWhiteAtHome = recipe.whiteMen > 0 && random.Chance(35);
    recipe.isBlackAtHome = recipe.blackMen > 0 && random.Chance(35);
    recipe.isWhiteToMove = random.Chance(50);
    return RandomPosition(random, recipe);
}

TPosition RandomEnPassantNest(CRandom& random, bool isWhiteToMove) {
    for (;;) {
        TPosition position = EmptyBoard();
        position.isWhiteToMove = isWhiteToMove;
        const int pairs = random.Between(1, 3);
        for (int pair = 0; pair < pairs; ++pair) {
            // The stepping pawn, and the one that waits beside the square where it will arrive.
            const bool isWhiteStep = random.Chance(50);
            const int file = random.Below(8);
            const int beside = file == 0 ? 1 : file == 7 ? 6 : file + (random.Chance(50) ? 1 : -1);
            position.squares[(isWhiteStep ? 8 : 48) + file] = isWhiteStep ? 'P' : 'p';
            position.squares[(isWhiteStep ? 24 : 32) + beside] = isWhiteStep ? 'p' : 'P';
        }
        // Kings near the ranks where the captures happen.
        const auto placeKing = [&](char king) {
            const bool isNear = random.Chance(60);
            const int square = DrawSquare(random, position, [&](int candidate) {
                const int rank = candidate / 8;
                return !isNear || (rank >= 2 && rank <= 5);
            });
            position.squares[square] = king;
            return static_cast<signed char>(square);
        };
        position.whiteKing = placeKing('K');
        position.blackKing = placeKing('k');
        const int figures = random.Between(1, 4);
        for (int figure = 0; figure < figures; ++figure) {
            const int square = DrawSquare(random, position, [](int) { return true; });
            position.squares[square] = random.Letter("QRBNqrbnRBrb");
        }
        position = WithRights(position);
        if (IsLegalPosition(position) && HasLegalMove(position)) {
            return position;
        }
    }
}

}  // namespace quillmere::reference

#include "heuristics/corner_distance.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;

TEST(CornerDistance, CountsSquaresAndMoves) {
    struct TCase {
        const char* square;
        int squares;
        int moves;
    };
    constexpr TCase kCases[] = {
        {"a1", 0, 0},
        {"h8", 0, 0},
        {"c2", 3, 2},
        {"b7", 2, 1},
        {"g6", 3, 2},
        {"d4", 6, 3},
        {"e1", 3, 3},
        {"h5", 3, 3},
        {"f3", 4, 2},
    };
    for (const TCase& c : kCases) {
        EXPECT_EQ(CornerDistanceInSquares(SquareOf(c.square)), c.squares) << c.square;
        EXPECT_EQ(CornerDistanceInMoves(SquareOf(c.square)), c.moves) << c.square;
    }
}

TEST(CornerDistance, BoundOfARoot) {
    struct TCase {
        const char* what;
        const char* fen;
        int bound;
    };
    constexpr TCase kCases[] = {
        // h8 and g7: four squares are within one move, six within two squares.
        {"two squares", "8/3N2kP/6Pp/7K/8/8/1P6/8", -1},
        {"no square off the edge", "k7/8/1K6/8/8/8/7B/8", 0},
        // a8 to c8, a7, b7, a6: six squares within two, nine within two moves.
        {"a triangle", "k2BB3/4K3/8/8/8/8/8/8", 2},
        {"a box and more", "k7/8/8/8/7R/8/8/1K2R3", 0},
        {"a box of nine", "k7/8/8/3R4/8/8/8/3RK3", -2},
        {"the king in the open", "8/8/8/3k4/8/8/8/R3K3", 0},
        {"the king can take its guard", "8/3N2kP/6P1/8/8/7K/1P6/8", 0},
        {"white has no figure", "k7/2P5/2K5/P7/8/8/8/8", 0},
        {"black has two figures", "nn6/3N2kP/6Pp/7K/8/8/1P6/8", 0},
        {"black has one figure", "n7/3N2kP/6Pp/7K/8/8/1P6/8", -1},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 9, 0);
        EXPECT_EQ(CornerDistance(board.Root()), c.bound) << c.what;
        EXPECT_EQ(board.Settings().NearCornerDistance, 0) << c.what;
    }
}

}  // namespace
}  // namespace quillmere

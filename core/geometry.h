// Tables of the geometry of the board: lines, distances, and the steps of knight and king.
//
// All are computed by the compiler. The line table answers in one look-up what every attack, pin
// and discovery test asks first: are two squares on a common line, and which kind of slider moves
// along it?
#pragma once

#include "core/types.h"

#include <array>

namespace quillmere {

// The eight directions in the order in which a king's moves are listed: south, south-west,
// south-east, north, north-west, north-east, west, east.
constexpr int kDirections = 8;
constexpr i8 kStep[kDirections] = {-8, -9, -7, 8, 7, 9, -1, 1};
constexpr i8 kFileStep[kDirections] = {0, -1, 1, 0, -1, 1, -1, 1};
constexpr i8 kRankStep[kDirections] = {-1, -1, -1, 1, 1, 1, 0, 0};
// The slider bit that moves in a direction: rook bit or bishop bit.
constexpr u8 kSliderBit[kDirections] = {
    kRook, kBishop, kBishop, kRook, kBishop, kBishop, kRook, kRook};

struct TGeometry {
    // Step from the first square towards the second; 0 where they share no line.
    std::array<std::array<i8, 64>, 64> lineStep{};
    // How two squares lie to each other, as the kind bits of the figures that attack one from the
    // other on an empty board: kRook or kBishop for a common line, kKnight for a knight's step, and
    // kKing besides for neighbours. A figure's code masked with it tells whether it may attack;
    // pawns, which look one way, have their own tests.
    std::array<std::array<u8, 64>, 64> relation{};
    // Moves of a king between two squares.
    std::array<std::array<u8, 64>, 64> distance{};
    // Squares from a square to the edge, by direction.
    std::array<std::array<u8, kDirections>, 64> rayLength{};
    // A knight's targets. Rows with fewer than eight are filled with their first target again, so
    // that "does a knight of this colour stand on one of them" is a plain test of eight bytes; a
    // list of moves uses the first knightCount entries.
    std::array<std::array<u8, 8>, 64> knightTargets{};
    std::array<u8, 64> knightCount{};
    // A king's targets in the order of kStep; the first kingCount entries.
    std::array<std::array<u8, 8>, 64> kingTargets{};
    std::array<u8, 64> kingCount{};
};

constexpr TGeometry MakeGeometry() {
    constexpr int kKnightFile[8] = {-1, 1, -2, 2, -2, 2, -1, 1};
    constexpr int kKnightRank[8] = {-2, -2, -1, -1, 1, 1, 2, 2};
    const auto isOnBoard = [](int file, int rank) {
        return file >= 0 && file < 8 && rank >= 0 && rank < 8;
    };
    TGeometry g;
    for (int square = 0; square < 64; ++square) {
        const int file = FileOf(square);
        const int rank = RankOf(square);
        for (int other = 0; other < 64; ++other) {
            const int df = FileOf(other) > file ? FileOf(other) - file : file - FileOf(other);
            const int dr = RankOf(other) > rank ? RankOf(other) - rank : rank - RankOf(other);
            g.distance[square][other] = static_cast<u8>(df > dr ? df : dr);
            if (df * dr == 2)
                g.relation[square][other] = kKnight;
            else if (g.distance[square][other] == 1)
                g.relation[square][other] = kKing;
        }
        for (int d = 0; d < kDirections; ++d) {
            int f = file + kFileStep[d];
            int r = rank + kRankStep[d];
            if (isOnBoard(f, r))
                g.kingTargets[square][g.kingCount[square]++] = static_cast<u8>(SquareAt(f, r));
            while (isOnBoard(f, r)) {
                g.lineStep[square][SquareAt(f, r)] = kStep[d];
                g.relation[square][SquareAt(f, r)] |= kSliderBit[d];
                ++g.rayLength[square][d];
                f += kFileStep[d];
                r += kRankStep[d];
            }
        }
        for (int k = 0; k < 8; ++k) {
            if (isOnBoard(file + kKnightFile[k], rank + kKnightRank[k]))
                g.knightTargets[square][g.knightCount[square]++] =
                    static_cast<u8>(SquareAt(file + kKnightFile[k], rank + kKnightRank[k]));
        }
        for (int k = g.knightCount[square]; k < 8; ++k)
            g.knightTargets[square][k] = g.knightTargets[square][0];
    }
    return g;
}

inline constexpr TGeometry kGeometry = MakeGeometry();

constexpr int LineStep(int from, int to) {
    return kGeometry.lineStep[from][to];
}
constexpr u8 Relation(int a, int b) {
    return kGeometry.relation[a][b];
}
// Slider bit of the common line: kRook, kBishop, or 0 where the squares share none.
constexpr u8 LineBit(int from, int to) {
    return Relation(from, to) & kQueen;
}
constexpr int KingDistance(int a, int b) {
    return kGeometry.distance[a][b];
}

constexpr bool IsKnightStep(int a, int b) {
    return (Relation(a, b) & kKnight) != 0;
}

// The first square at or behind `square` that holds a figure of the colour, kSquareCount if none.
inline int NextFigureSquare(const u8* board, int square, u8 colour) {
    while (square < kSquareCount && (board[square] & colour) == 0)
        ++square;
    return square;
}

// True if every square strictly between two squares of one line is empty. The squares must share
// a line whose step is given.
inline bool IsLineClear(const u8* board, int from, int to, int step) {
    for (int square = from + step; square != to; square += step) {
        if (board[square] != 0)
            return false;
    }
    return true;
}

}  // namespace quillmere

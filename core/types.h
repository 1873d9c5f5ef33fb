// Basic integer types, figure codes and squares, and the units of length of a line of play.
//
// A square is one byte 0..63, square = rank * 8 + file, with file a = 0 and rank 1 = 0, so a1 = 0,
// h1 = 7 and a8 = 56. A figure code is one byte: 0 is an empty square, bit 0x40 marks white,
// bit 0x80 black, and the low five bits give the kind. The queen is the rook bit plus the bishop
// bit, so that one mask finds every slider of a line.
#pragma once

#include <cstdint>

namespace quillmere {

using i8 = std::int8_t;
using i16 = std::int16_t;
using i32 = std::int32_t;
using i64 = std::int64_t;
using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

// Figure codes

constexpr u8 kWhite = 0x40;
constexpr u8 kBlack = 0x80;
constexpr u8 kKindMask = 0x1f;

constexpr u8 kKing = 1;
constexpr u8 kPawn = 2;
constexpr u8 kBishop = 4;
constexpr u8 kRook = 8;
constexpr u8 kQueen = kRook | kBishop;
constexpr u8 kKnight = 16;

constexpr u8 kWhiteKing = kWhite | kKing;
constexpr u8 kWhitePawn = kWhite | kPawn;
constexpr u8 kWhiteBishop = kWhite | kBishop;
constexpr u8 kWhiteRook = kWhite | kRook;
constexpr u8 kWhiteQueen = kWhite | kQueen;
constexpr u8 kWhiteKnight = kWhite | kKnight;
constexpr u8 kBlackKing = kBlack | kKing;
constexpr u8 kBlackPawn = kBlack | kPawn;
constexpr u8 kBlackBishop = kBlack | kBishop;
constexpr u8 kBlackRook = kBlack | kRook;
constexpr u8 kBlackQueen = kBlack | kQueen;
constexpr u8 kBlackKnight = kBlack | kKnight;

constexpr u8 KindOf(u8 figure) {
    return figure & kKindMask;
}
constexpr bool IsWhite(u8 figure) {
    return (figure & kWhite) != 0;
}
constexpr bool IsBlack(u8 figure) {
    return (figure & kBlack) != 0;
}

// Value of a figure in every exchange decision, indexed by kind.
constexpr u8 kFigureValues[32] = {0, 10, 1, 0, 3, 0, 0, 0, 5, 0, 0, 0, 9, 0, 0, 0,
                                  3, 0,  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

// The four kinds that a pawn may become, in the order in which every list holds them.
constexpr u8 kPromotionKinds[4] = {kQueen, kRook, kBishop, kKnight};

// Squares

constexpr int kSquareCount = 64;
constexpr u8 kNoSquare = 255;

constexpr int FileOf(int square) {
    return square & 7;
}
constexpr int RankOf(int square) {
    return square >> 3;
}
constexpr int SquareAt(int file, int rank) {
    return rank * 8 + file;
}
// 0 or 1; tells light squares from dark ones (a1 is 0).
constexpr int SquareParity(int square) {
    return (square / 8 + square) & 1;
}
// Distance of one coordinate (0..7) from the nearer edge.
constexpr u8 kEdgeDistance[8] = {0, 1, 2, 3, 3, 2, 1, 0};
// Distance of a square from the nearest edge, 0..3.
constexpr int EdgeDistance(int square) {
    const int file = kEdgeDistance[FileOf(square)];
    const int rank = kEdgeDistance[RankOf(square)];
    return file < rank ? file : rank;
}

// Units. Half-moves count single moves of either side, moves count pairs. These two functions are
// the only place where one becomes the other.

// Half-moves at the root of a mate in `fullMoves` (1 or more), white to move.
constexpr int HalfMovesOfMate(int fullMoves) {
    return 2 * fullMoves - 1;
}
// Moves that white still has in a node with `halfMoves` left, whoever is to move.
constexpr int FullMovesOf(int halfMoves) {
    return (halfMoves + 1) / 2;
}

}  // namespace quillmere

#include "core/material.h"

#include "core/geometry.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>

namespace quillmere {

int CountBlackMenAroundKing(const TChessboard& board) {
    const int king = board.BlackKingSquare();
    int count = 0;
    for (int i = 0; i < kGeometry.kingCount[king]; ++i) {
        if (IsBlack(board.m_board[kGeometry.kingTargets[king][i]]))
            ++count;
    }
    return count;
}

bool AreWhiteBishopsOnOneColour(const TChessboard& board) {
    bool isSeen[2] = {false, false};
    for (int square = 0; square < kSquareCount; ++square) {
        if (board.m_board[square] == kWhiteBishop)
            isSeen[SquareParity(square)] = true;
    }
    return !(isSeen[0] && isSeen[1]);
}

bool IsHopelessAgainstBareKing(const TChessboard& board) {
    const u8* counts = board.m_counts;
    if (counts[kWhiteQueens] + counts[kWhiteRooks] + counts[kWhiteKnights] + counts[kWhitePawns] !=
        0)
        return false;
    return counts[kWhiteBishops] < 2 || AreWhiteBishopsOnOneColour(board);
}

bool IsPromotionCornerOfBishop(int pawnSquare, int bishopSquare) {
    return SquareParity(SquareAt(FileOf(pawnSquare), 7)) == SquareParity(bishopSquare);
}

bool IsCornerReachable(const TChessboard& board, int pawnSquare) {
    const int corner = SquareAt(FileOf(pawnSquare), 7);
    const int blackWay = KingDistance(board.BlackKingSquare(), corner);
    const int pawnWay = 7 - RankOf(pawnSquare);
    const int whiteKingWay = KingDistance(board.WhiteKingSquare(), corner);
    return blackWay <= pawnWay && blackWay <= whiteKingWay;
}

namespace {

// The most moves that `sliders` sliders can have along lines of the given lengths. On a line of
// length n one slider has n - 1 moves; two or more have at most 2 (n - j), since every free square
// is reached from two sides at most. The sliders are spread to the best advantage.
template <std::size_t N>
int MostMovesAlong(const std::array<int, N>& lengths, int sliders) {
    std::array<int, 2 * N> gains{};
    for (std::size_t i = 0; i < N; ++i) {
        gains[2 * i] = lengths[i] - 1;
        gains[2 * i + 1] = std::max(0, lengths[i] - 3);
    }
    std::sort(gains.begin(), gains.end(), std::greater<>());
    int sum = 0;
    for (int i = 0; i < sliders && i < static_cast<int>(gains.size()); ++i)
        sum += gains[i];
    return sum;
}

constexpr std::array<int, 8> kStraightLines = {8, 8, 8, 8, 8, 8, 8, 8};
constexpr std::array<int, 15> kDiagonalLines = {8, 7, 7, 6, 6, 5, 5, 4, 4, 3, 3, 2, 2, 1, 1};

// Known maximum for the material of the game.
constexpr int kMostMovesOfGame = 218;

int UpperBoundOfMoves(int queens, int rooks, int bishops, int knights, int pawns) {
    const int surplus = std::max(0, queens - 1) + std::max(0, rooks - 2) +
                        std::max(0, bishops - 2) + std::max(0, knights - 2);
    if (surplus + pawns <= 8)
        return kMostMovesOfGame;
    int best = 0;
    for (int promoted = 0; promoted <= pawns; ++promoted) {
        const int straight = queens + rooks + promoted;
        const int diagonal = queens + bishops + promoted;
        const int left = pawns - promoted;
        // Three destinations a pawn, four kinds on the seventh rank, where only eight can stand.
        const int pawnMoves = 12 * std::min(left, 8) + 4 * std::max(0, left - 8);
        const int moves = 2 * MostMovesAlong(kStraightLines, straight) +
                          2 * MostMovesAlong(kDiagonalLines, diagonal) + 8 * knights + pawnMoves +
                          8 + 2;
        best = std::max(best, moves);
    }
    return best;
}

}  // namespace

int UpperBoundOfWhiteMoves(const TChessboard& board) {
    const u8* c = board.m_counts;
    return UpperBoundOfMoves(
        c[kWhiteQueens], c[kWhiteRooks], c[kWhiteBishops], c[kWhiteKnights], c[kWhitePawns]);
}

int UpperBoundOfBlackMoves(const TChessboard& board) {
    const u8* c = board.m_counts;
    return UpperBoundOfMoves(
        c[kBlackQueens], c[kBlackRooks], c[kBlackBishops], c[kBlackKnights], c[kBlackPawns]);
}

}  // namespace quillmere

#include "core/mate_impossible.h"

#include "core/direct_mates.h"
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/material.h"

#include <algorithm>

namespace quillmere {
namespace {

bool IsCorner(int square) {
    return kEdgeDistance[FileOf(square)] == 0 && kEdgeDistance[RankOf(square)] == 0;
}

// The rules that need no assumption. White has neither queen nor rook.
bool IsProvedImpossible(TChessboard& node) {
    const u8* c = node.m_counts;
    if (c[kWhitePawns] != 0)
        return false;
    const int bishops = c[kWhiteBishops];
    const int knights = c[kWhiteKnights];
    const int blackFigures = CountBlackFigures(node);
    if (bishops + knights == 0)
        return true;
    if (c[kBlackPawns] != 0)
        return false;
    const bool isOneMinor = bishops + knights == 1;
    if (blackFigures == 0) {
        if (isOneMinor || (knights == 0 && AreWhiteBishopsOnOneColour(node)))
            return true;
        return bishops == 0 && knights == 2 && !IsMateInOne(node);
    }
    return blackFigures == 1 && isOneMinor && !IsMateInOne(node);
}

bool IsTwoKnightsImprobable(TChessboard& node) {
    const u8* c = node.m_counts;
    if (c[kWhitePawns] + c[kBlackPawns] != 0 || CountBlackFigures(node) > 1)
        return false;
    if (node.BlackKingEdgeDistance() > 0)
        return true;
    const bool isCaptureNear =
        node.m_parent != nullptr && node.m_parent->m_parent != nullptr &&
        CountWhiteMen(node) + CountBlackMen(node) !=
            CountWhiteMen(*node.m_parent->m_parent) + CountBlackMen(*node.m_parent->m_parent);
    return !isCaptureNear && !IsMateInTwo(node);
}

bool IsOneBishopImprobable(const TChessboard& node) {
    const int king = node.BlackKingSquare();
    const int around = CountBlackMenAroundKing(node);
    constexpr int kSquareB8 = 57;
    constexpr int kSquareG8 = 62;
    return around == 0 || (around < 2 && !IsCorner(king) && king != kSquareB8 && king != kSquareG8);
}

bool IsOneKnightImprobable(const TChessboard& node) {
    const u8* c = node.m_counts;
    const int king = node.BlackKingSquare();
    if (!IsCorner(king) && CountBlackFigures(node) + c[kBlackPawns] < 2)
        return true;
    if (c[kBlackPawns] != 0)
        return false;
    const int shut = CountBlackMenAroundKing(node) + (EdgeDistance(king) == 0 ? 3 : 0) +
                     (IsCorner(king) ? 2 : 0);
    const int needed = KingDistance(node.WhiteKingSquare(), king) > 2 ? 5 : 4;
    return shut < needed;
}

bool IsImprobable(TChessboard& node) {
    const u8* c = node.m_counts;
    const int bishops = c[kWhiteBishops];
    const int knights = c[kWhiteKnights];
    if (bishops + knights == 0)
        return IsPawnEndHopeless(node);
    if (bishops == 0 && knights == 2)
        return IsTwoKnightsImprobable(node);
    if (c[kWhitePawns] != 0 || bishops + knights != 1)
        return false;
    return bishops == 1 ? IsOneBishopImprobable(node) : IsOneKnightImprobable(node);
}

}  // namespace

int TestMateImpossible(TChessboard& node, bool isCapture) {
    const u8* c = node.m_counts;
    // One half-move left is for the mate test alone.
    if (node.m_nMoves < 2 || (c[kWhiteQueens] | c[kWhiteRooks]) != 0)
        return kMoveMade;
    if (!isCapture && (node.m_searchFlags & (kSearchImpossiblePassed | kSearchWrongCorner)) != 0)
        return kMoveMade;
    if (c[kWhiteBishops] + c[kWhiteKnights] > 2 && c[kWhiteKnights] != 0)
        return kMoveMade;
    if (IsProvedImpossible(node))
        return kMateImpossible;
    if (node.Heur != 0 && node.m_pass < kPassComplete && IsImprobable(node))
        return kMateImpossibleAssumed;
    node.m_searchFlags |= kSearchImpossiblePassed;
    return kMoveMade;
}

bool IsPawnEndHopeless(const TChessboard& node) {
    const u8* c = node.m_counts;
    if (CountWhiteFigures(node) != 0 || c[kWhitePawns] != 1 || !IsBlackBare(node))
        return false;
    const u8* pawn = std::find(node.m_board, node.m_board + kSquareCount, kWhitePawn);
    const int rank = RankOf(static_cast<int>(pawn - node.m_board));
    const int movesToPromote = 7 - rank - (rank == 1 ? 1 : 0);
    return FullMovesOf(node.m_nMoves) < movesToPromote;
}

}  // namespace quillmere

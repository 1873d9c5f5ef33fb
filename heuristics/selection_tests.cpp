#include "heuristics/selection_tests.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/material.h"

#include <algorithm>

namespace quillmere {
namespace {

bool IsWhiteHeavy(u8 figure) {
    return figure == kWhiteQueen || figure == kWhiteRook;
}

bool IsHeavyAttacked(const TChessboard& node) {
    for (int square = 0; square < kSquareCount; ++square) {
        if (IsWhiteHeavy(node.m_board[square]) && IsAttackedByBlack(node, square))
            return true;
    }
    return false;
}

// Is `test` true behind one of black's moves, if it were to move?
template <class Test>
bool IsTrueAfterReply(TChessboard& root, Test test) {
    if (root.m_whiteInCheck != kNotInCheck)
        return false;
    TChessboard node = root;
    MakeNullMove(node);
    TMoveList replies;
    replies.count = GetLegalMoves(node, replies.moves);
    return std::any_of(replies.begin(), replies.end(), [&](TMove reply) {
        TChessboard child = node;
        child.m_parent = &node;
        return MakeBlackMoveLegal(child, reply) == kMoveMade && test(child, reply);
    });
}

}  // namespace

bool CanAttackHeavyFigures(TChessboard& root) {
    return IsHeavyAttacked(root) || IsTrueAfterReply(root, [](const TChessboard& child, TMove) {
               return IsHeavyAttacked(child);
           });
}

bool IsFortress(const TSelectionFacts& facts) {
    return (facts.classWord & (kClassClosed | kClassWalledKing)) != 0;
}

bool CanBlackPromote(const TChessboard& root, const TSelectionFacts& facts) {
    if (root.m_counts[kBlackPawns] == 0)
        return false;
    const int moves = facts.halfMoves / 2;
    for (int square = 0; square < kSquareCount; ++square) {
        if (root.m_board[square] != kBlackPawn || RankOf(square) > moves)
            continue;
        bool isFree = true;
        for (int ahead = square - 8; ahead >= 0; ahead -= 8)
            isFree &= !IsWhite(root.m_board[ahead]);
        if (isFree)
            return true;
    }
    return false;
}

bool CanQueenCheck(TChessboard& root) {
    if (root.m_counts[kBlackQueens] == 0)
        return false;
    const int king = root.WhiteKingSquare();
    return root.m_whiteInCheck != kNotInCheck ||
           IsTrueAfterReply(root, [king](const TChessboard& child, TMove reply) {
               return child.m_board[reply.to] == kBlackQueen && reply.Promotion() == 0 &&
                      (child.m_whiteInCheck != kNotInCheck || LineBit(reply.to, king) != 0);
           });
}

bool IsWhiteKingNeeded(const TChessboard& root, const TSelectionFacts& facts) {
    return facts.WhiteHeavy() <= 1 && facts.whiteFigures <= 2 && root.m_counts[kWhitePawns] <= 2;
}

bool NeedsItsFigures(const TChessboard& root, const TSelectionFacts& facts) {
    constexpr int kFew = 3;
    return facts.whiteFigures > 0 && facts.whiteFigures <= kFew && root.m_counts[kWhitePawns] <= 1;
}

bool IsWhiteFigureEnPrise(const TChessboard& root) {
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 figure = root.m_board[square];
        if (IsWhite(figure) && KindOf(figure) != kKing && KindOf(figure) != kPawn &&
            IsAttackedByBlack(root, square))
            return true;
    }
    return false;
}

}  // namespace quillmere

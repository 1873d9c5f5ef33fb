// Tests of the position for the ladder.
//
// They decide only which assumption is given up first, never a verdict: a wrong answer costs a pass
// that finds nothing. So they are rules of thumb, told by few conditions: how much room the black
// king has, what material is there, how near the kings are. They run once a pass, so they may make
// moves and need no speed.
#include "heuristics/relaxation_tests.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/king_zone.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/material.h"
#include "core/move_generation.h"
#include "core/thread_context.h"

#include <algorithm>
#include <bit>

namespace quillmere {
namespace {

constexpr int kCornerFlights = 3;  // squares around a king in a corner
constexpr int kNearEdge = 1;       // edge or the ring next to it

// A copy of the node in which black is to move. White must not be in check.
TChessboard WithBlackToMove(TChessboard& node) {
    TChessboard copy = node;
    MakeNullMove(copy);
    return copy;
}

// Black's legal moves if it were to move; none while white is in check, for then a pass of white is
// no position.
TMoveList RepliesOf(TChessboard& node) {
    TMoveList replies;
    if (node.m_whiteInCheck != kNotInCheck)
        return replies;
    TChessboard copy = WithBlackToMove(node);
    replies.count = GetLegalMoves(copy, replies.moves);
    return replies;
}

// The position behind a legal reply, with a thread context of its own.
class CReply {
public:
    CReply(TChessboard& node, TMove reply) : m_parent(WithBlackToMove(node)), m_child(m_parent) {
        m_child.m_parent = &m_parent;
        m_child.m_threadContext = &m_scratch;
        m_child.m_nMoves = kHalfMoves;
        MakeBlackMoveLegal(m_child, reply);
    }
    bool IsCheck() const { return m_child.m_whiteInCheck != kNotInCheck; }
    // White does not look at the square that was moved to, be it with a pinned figure.
    bool IsSafe(TMove reply) const { return !IsAttackedByWhite(m_child, reply.to); }

private:
    static constexpr u16 kHalfMoves = 2;
    TThreadContext m_scratch{kHalfMoves};
    TChessboard m_parent;
    TChessboard m_child;
};

// The kings two squares apart on a line, white with a queen alone against two figures and more, and
// the black king with a square to go to.
bool IsFacedByLoneQueen(TChessboard& node) {
    const int white = node.WhiteKingSquare();
    const int black = node.BlackKingSquare();
    return KingDistance(white, black) == 2 && LineBit(white, black) != 0 &&
           node.m_counts[kWhiteQueens] == 1 && CountWhiteFigures(node) == 1 &&
           CountBlackFigures(node) >= 2 && !HasFewFlights(node, 0);
}

// Two checks or more, one of them by a man that white cannot take.
bool HasSafeCheck(TChessboard& node, const TMoveList& replies) {
    int checks = 0;
    bool isOneSafe = false;
    for (const TMove reply : replies) {
        const CReply child(node, reply);
        checks += child.IsCheck() ? 1 : 0;
        isOneSafe |= child.IsCheck() && child.IsSafe(reply);
    }
    return checks >= 2 && isOneSafe;
}

// One single move brings a black rook next to its king, which has two squares at most.
bool HasOneRookMoveBesideKing(TChessboard& node, const TMoveList& replies) {
    const int king = node.BlackKingSquare();
    const auto count = std::count_if(replies.begin(), replies.end(), [&](TMove reply) {
        return node.m_board[reply.from] == kBlackRook && KingDistance(reply.to, king) == 1;
    });
    return count == 1 && HasFewFlights(node, 2);
}

int WorthOf(const TChessboard& node, u8 colour) {
    int worth = 0;
    for (const u8 figure : node.m_board) {
        if ((figure & colour) != 0 && KindOf(figure) != kKing && KindOf(figure) != kPawn)
            worth += kFigureValues[KindOf(figure)];
    }
    return worth;
}

// The pawn has moves, and none of them ends where black can take it.
bool IsHarmlessPawn(TChessboard& node, int square) {
    TMoveList moves;
    moves.count = GetWhiteMoves(node, square, moves.moves);
    int legal = 0;
    for (const TMove move : moves) {
        if (!IsLegalMove(node, move))
            continue;
        ++legal;
        if (IsAttackedByBlack(node, move.to))
            return false;
    }
    return legal > 0;
}

bool HasHarmlessPawn(TChessboard& node) {
    for (int square = 0; square < kSquareCount; ++square) {
        if (node.m_board[square] == kWhitePawn && IsHarmlessPawn(node, square))
            return true;
    }
    return false;
}

// White holds or attacks the square in front of a black pawn of the ranks 7 and 6.
bool CanStopBlackPawn(const TChessboard& node) {
    constexpr int kFirst = 40;  // a6
    constexpr int kLast = 55;   // h7
    for (int square = kFirst; square <= kLast; ++square) {
        const int ahead = square - 8;
        if (node.m_board[square] == kBlackPawn &&
            (IsWhite(node.m_board[ahead]) || IsAttackedByWhite(node, ahead)))
            return true;
    }
    return false;
}

// The white king is not shut in: it has a step that black does not cover.
bool HasWhiteKingRoom(TChessboard& node) {
    const int king = node.WhiteKingSquare();
    TMoveList moves;
    moves.count = GetKingMoves(node, king, moves.moves);
    return std::any_of(
        moves.begin(), moves.end(), [&](TMove move) { return IsLegalMove(node, move); });
}

// Few and minor white figures close to a king that a crowd leaves no room.
bool IsHeldByMinorFigures(TChessboard& node) {
    const int figures = CountWhiteFigures(node);
    return figures == 2 && node.m_counts[kWhiteQueens] + node.m_counts[kWhiteRooks] == 0 &&
           CountWhiteMen(node) + CountBlackMen(node) >= 5 && HasFewFlights(node, 2) &&
           KingDistance(node.WhiteKingSquare(), node.BlackKingSquare()) <= 2;
}

}  // namespace

bool IsBlackKingInCorner(const TChessboard& node) {
    return kGeometry.kingCount[node.BlackKingSquare()] == kCornerFlights;
}

bool HasFewFlights(TChessboard& node, int count) {
    return std::popcount(SafeKingSteps(node)) <= count;
}

bool IsKeyPinStanding(const TChessboard& node) {
    const THeuristicSettings& settings = node.m_threadContext->heuristics;
    const int key = settings.KeyWhiteFigureSquare;
    const int pinned = settings.KeyWhiteFigurePinned;
    const int king = node.BlackKingSquare();
    const u8* b = node.m_board;
    if (key >= kSquareCount || pinned >= kSquareCount || !IsWhite(b[key]) || !IsBlack(b[pinned]))
        return false;
    const int step = LineStep(key, pinned);
    return pinned != king && (LineBit(key, pinned) & KindOf(b[key])) != 0 &&
           step == LineStep(pinned, king) && IsLineClear(b, key, pinned, step) &&
           IsLineClear(b, pinned, king, step);
}

// All neighbour squares but one: 7 in the middle, 4 on an edge, 2 in a corner. With three white
// figures at most, who cover less, one man fewer is enough.
bool IsBlackKingWalledIn(const TChessboard& node) {
    const int wall = kGeometry.kingCount[node.BlackKingSquare()] - 1;
    const int men = CountBlackMenAroundKing(node);
    return men == wall || (men == wall - 1 && CountWhiteFigures(node) <= 3);
}

bool SuitsKingMoveExceptions(TChessboard& node) {
    if (IsFacedByLoneQueen(node) || IsBlackKingWalledIn(node))
        return true;
    const TMoveList replies = RepliesOf(node);
    return HasSafeCheck(node, replies) || HasOneRookMoveBesideKing(node, replies);
}

// White has two heavy figures and a bishop, no less than black all in all, and its king is not
// attacked.
bool SuitsSwitchToSurrounded(const TChessboard& node) {
    return (node.m_searchFlags & kSearchPromotionPassed) == 0 &&
           node.m_counts[kWhiteQueens] + node.m_counts[kWhiteRooks] == 2 &&
           node.m_counts[kWhiteBishops] > 0 && !IsAttackedByWhite(node, node.BlackKingSquare()) &&
           WorthOf(node, kWhite) >= WorthOf(node, kBlack);
}

bool SuitsLosingNoFigures(TChessboard& node) {
    return (node.m_searchFlags & kSearchPromotionAhead) != 0 &&
           (node.Heur & SH_ASSERTBLACKKINGSURROUNDED) != 0 &&
           node.m_counts[kWhiteQueens] + node.m_counts[kWhiteRooks] == 0 &&
           CountWhiteFigures(node) < 4 && HasHarmlessPawn(node);
}

TEdgeSuccessor SuccessorOfEdge(TChessboard& node, u32 others) {
    // 1. Pawns alone must promote first, and nothing of white stops black's: the king has time to
    // leave the edge, but hardly more.
    const bool isNearEdge = EdgeDistance(node.BlackKingSquare()) <= kNearEdge;
    if (isNearEdge && CountWhiteFigures(node) == 0 && !CanStopBlackPawn(node) &&
        HasWhiteKingRoom(node))
        return {SH_KEEPKINGWITHINEXTEDGE, true};
    if ((others & SH_KEEPKINGWITHINEXTEDGE) != 0)
        return {};
    // 2. Two minor figures beside their king hold it.
    if (IsHeldByMinorFigures(node))
        return {SH_ASSERTBLACKKINGSURROUNDED, false};
    // 3. A queen has come since.
    if (isNearEdge && (node.m_searchFlags & kSearchPromotionPassed) != 0 &&
        (others & SH_ASSERTBLACKKINGSURROUNDED) == 0)
        return {SH_KEEPKINGWITHINEXTEDGE, false};
    // 4. It has no room anyway.
    if (HasFewFlights(node, 1))
        return {SH_ASSERTBLACKKINGSURROUNDED, false};
    return {};
}

bool IsBlackKingOnCornerSquare(const TChessboard& node) {
    const int king = node.BlackKingSquare();
    return kEdgeDistance[FileOf(king)] == 1 && kEdgeDistance[RankOf(king)] == 1;
}

bool IsClosedButForKingCaptures(TChessboard& node) {
    if (node.m_whiteInCheck != kNotInCheck)
        return false;
    const TMoveList replies = RepliesOf(node);
    const int king = node.BlackKingSquare();
    return std::all_of(replies.begin(), replies.end(), [&](TMove reply) {
        return reply.from == king && node.m_board[reply.to] != 0;
    });
}

}  // namespace quillmere

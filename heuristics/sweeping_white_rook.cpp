// SH_SWEEPINGWHITEROOK.
//
// In a family of long problems a white rook waits on its first rank, sweeping to and fro until
// black runs out of moves, and goes up the board only to decide. The rule leaves out white rook
// moves to rank 2 or above while black has a figure, or while the rook is all that white has besides
// its pawns. Let through are
//   - moves along the edge on which the black king stands, from one square of it to another: there
//     the rook holds the king;
//   - quiet moves that threaten mate at once;
//   - captures of a pawn that could otherwise promote with the moves that are left: its way is free;
//   - moves that mate, as under every rule.
// A check alone is no reason: the rook could give it later.
//
// After any other white move the plan may be over: where black can take a white figure (no pawn)
// and white cannot take back, the heuristic is switched off for the subtree. That costs black's
// captures being made, once for each white move that is not among the last two.
#include "heuristics/sweeping_white_rook.h"

#include "core/attacks.h"
#include "core/direct_mates.h"
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/material.h"
#include "core/move_generation.h"
#include "heuristics/heur_params.h"
#include "heuristics/last_white_move.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kMatingHalfMoves = 2;  // black's reply and the mate
// With fewer left behind white's move no move of the subtree is screened any more: the last move is
// found without a list.
constexpr int kScreenedHalfMoves = 4;

// Both squares lie on an edge of the board that the king stands on.
bool AreOnEdgeOf(int king, int a, int b) {
    const auto isEdge = [](int coordinate) { return kEdgeDistance[coordinate] == 0; };
    const bool isRank =
        isEdge(RankOf(king)) && RankOf(a) == RankOf(king) && RankOf(b) == RankOf(king);
    const bool isFile =
        isEdge(FileOf(king)) && FileOf(a) == FileOf(king) && FileOf(b) == FileOf(king);
    return isRank || isFile;
}

// The square held a black pawn before the move, with a free way to promotion and the moves for it.
bool WasPawnToPromote(const TChessboard& child, int square) {
    const u8* b = child.m_parent->m_board;
    if (b[square] != kBlackPawn)
        return false;
    for (int ahead = square - 8; ahead >= 0; ahead -= 8) {
        if (b[ahead] != 0)
            return false;
    }
    const int doubleStep = RankOf(square) == 6 ? 1 : 0;
    return RankOf(square) - doubleStep <= child.m_nMoves / 2;
}

bool IsRookMoveOffPlan(TChessboard& child) {
    const TMove move = child.m_lastMove;
    if (MovedByWhite(child) != kWhiteRook || RankOf(move.to) == 0)
        return false;
    if (CountBlackFigures(child) == 0 && CountWhiteFigures(child) > 1)
        return false;
    if (AreOnEdgeOf(child.BlackKingSquare(), move.from, move.to) ||
        WasPawnToPromote(child, move.to))
        return false;
    return child.m_blackInCheck >= 0 || child.m_nMoves < kMatingHalfMoves ||
           !IsMateThreatened(child);
}

bool CanWhiteTakeBack(TChessboard& node, int square) {
    u8 capturers[16];
    const int count = GetWhiteCapturers(node, FileOf(square), RankOf(square), capturers);
    return std::any_of(capturers, capturers + count, [&](u8 entry) {
        const int from = entry & ~kPinnedMark;
        const bool isPromotion = node.m_board[from] == kWhitePawn && RankOf(square) == 7;
        TChessboard back = node;
        back.m_parent = &node;
        return MakeWhiteMoveFast(back, MakeMove(from, square, isPromotion ? kQueen : u8{0})) ==
               kMoveMade;
    });
}

bool IsFigureLost(TChessboard& child) {
    TMoveList replies;
    replies.count = child.m_blackInCheck >= 0 ? GetBlackEvasions(child, replies.moves)
                                              : GetAllBlackMoves(child, replies.moves);
    return std::any_of(replies.begin(), replies.end(), [&child](TMove reply) {
        if (!IsFigureCode(child.m_board[reply.to]))
            return false;
        TChessboard taken = child;
        taken.m_parent = &child;
        return MakeBlackMoveLegal(taken, reply) == kMoveMade && !CanWhiteTakeBack(taken, reply.to);
    });
}

}  // namespace

bool HasRookStoppedSweeping(TChessboard& child) {
    if (IsRookMoveOffPlan(child))
        return true;
    if (child.m_nMoves >= kScreenedHalfMoves && IsFigureLost(child))
        SetHeur(child, child.Heur & ~u32{SH_SWEEPINGWHITEROOK});
    return false;
}

}  // namespace quillmere

// Notes a white queen that hunts the king alone: near the root, right after a queen's move, the
// kings at a distance of two, white with no other figure and black with a single rook. Its square
// is where SH_SINGLEQUEENMATE would look the hunt up in precalculated data. There is no such data
// yet, so that the note is all there is to it, and nobody reads it.
#include "core/attacks.h"
#include "core/geometry.h"
#include "core/material.h"
#include "core/thread_context.h"
#include "heuristics/rules.h"

namespace quillmere {
namespace {

constexpr int kHuntingDistance = 2;

bool IsSingleQueenHunt(const TChessboard& node) {
    const u8* c = node.m_counts;
    return c[kWhiteQueens] == 1 && CountWhiteFigures(node) == 1 && c[kBlackRooks] == 1 &&
           CountBlackFigures(node) == 1 && node.m_board[node.m_lastMove.to] == kWhiteQueen &&
           node.m_lastMove.Promotion() == 0 &&
           KingDistance(node.WhiteKingSquare(), node.BlackKingSquare()) == kHuntingDistance;
}

}  // namespace

void NoteSingleQueen(TChessboard& node) {
    TThreadContext& thread = *node.m_threadContext;
    const int queen = node.m_lastMove.to;
    if ((node.Heur & SH_USEBLOCKBLACKPAWNSLEVEL) != 0 || thread.singleQueenSquare != kNoSquare ||
        node.m_parent == nullptr || !IsSingleQueenHunt(node))
        return;
    u8 capturer = 0;
    if (!CanBlackCaptureSafely(node, FileOf(queen), RankOf(queen), &capturer))
        thread.singleQueenSquare = static_cast<u8>(queen);
}

}  // namespace quillmere

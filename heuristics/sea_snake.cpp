// SH_SEASNAKE, white's list.
//
// Both sides are in zugzwang: black has one man that swings between two squares, and the white king
// must arrive with the right side to move. The plan rests on pawns that block each other; when black
// captures with a pawn out of that block, or takes a man out of it, the plan is void, and the node
// drops the heuristic.
//
// The generator of the king's way is not there yet: SeaSnakeMoves knows of no list, so that every
// node of the heuristic uses the plain one and nothing is left out.
#include "heuristics/sea_snake.h"

namespace quillmere {

bool SeaSnakeMoves(TChessboard& /*node*/, TMoveList& /*list*/) {
    return false;
}

bool HasPawnCaptureUnblocked(const TChessboard& node) {
    const TMove move = node.m_lastMove;
    if (node.m_parent == nullptr || move.IsNull() || FileOf(move.from) == FileOf(move.to))
        return false;
    const u8* before = node.m_parent->m_board;
    if (before[move.from] != kBlackPawn)
        return false;
    // The capturing pawn stood before a man, or the captured one was a pawn that did.
    const int captured = move.enPassant != 0 ? move.to + 8 : move.to;
    const bool wasBlocked = before[move.from - 8] != 0;
    const bool wasBlocker = before[captured] == kWhitePawn && before[captured + 8] != 0;
    return wasBlocked || wasBlocker;
}

}  // namespace quillmere

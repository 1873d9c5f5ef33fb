#include "core/legality.h"

#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/thread_context.h"

namespace quillmere {
namespace {

// Room for the one move that is made here, with either side to move.
constexpr u16 kScratchHalfMoves = 2;

bool IsLegal(TChessboard& node, TMove move, TThreadContext& scratch) {
    TChessboard child = node;
    child.m_parent = &node;
    child.m_threadContext = &scratch;
    child.m_nMoves = node.IsWhiteToMove() ? 1 : kScratchHalfMoves;
    const int made =
        node.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move) : MakeBlackMoveLegal(child, move);
    return made == kMoveMade;
}

}  // namespace

bool IsLegalMove(TChessboard& node, TMove move) {
    TThreadContext scratch(kScratchHalfMoves);
    return IsLegal(node, move, scratch);
}

int GetLegalMoves(TChessboard& node, TMove* list) {
    TThreadContext scratch(kScratchHalfMoves);
    const int count =
        node.IsWhiteToMove() ? GetAllWhiteMoves(node, list) : GetAllBlackMoves(node, list);
    int legal = 0;
    for (int i = 0; i < count; ++i) {
        if (IsLegal(node, list[i], scratch))
            list[legal++] = list[i];
    }
    return legal;
}

}  // namespace quillmere

#include "core/perft.h"

#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/thread_context.h"

namespace quillmere {
namespace {

template <bool kWhiteToMove>
u64 Count(TChessboard& node, int depth) {
    if (depth == 0)
        return 1;
    TMoveList list;
    list.count =
        kWhiteToMove ? GetAllWhiteMoves(node, list.moves) : GetAllBlackMoves(node, list.moves);
    TChessboard& child = node.m_threadContext->ChildSlot(node.m_nMoves);
    u64 total = 0;
    for (const TMove move : list) {
        child = node;
        child.m_parent = &node;
        const int made =
            kWhiteToMove ? MakeWhiteMoveLegal(child, move) : MakeBlackMoveLegal(child, move);
        if (made == kMoveMade)
            total += Count<!kWhiteToMove>(child, depth - 1);
    }
    return total;
}

}  // namespace

void SetupPerftRoot(TChessboard& root, bool whiteToMove, int depth) {
    const bool fits = ((depth & 1) != 0) == whiteToMove;
    SetupAnalysisRoot(root, static_cast<u16>(fits ? depth : depth + 1), true);
}

u64 Perft(TChessboard& root, int depth) {
    return root.IsWhiteToMove() ? Count<true>(root, depth) : Count<false>(root, depth);
}

}  // namespace quillmere

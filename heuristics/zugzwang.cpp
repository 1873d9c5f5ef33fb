// SH_ZUGZWANG, white's list.
//
// The plan of such a problem is one position: whenever white comes back to it with black to move,
// black must weaken itself. So where a white move leads to that position (`ZugzwangBoard`, squares
// only), it is the only one searched. Elsewhere the plain list is used: white is on its way. What is
// lost are solutions that pass by the position on purpose. A move is made on a copy only if its
// two squares already look like the stored ones.
#include "heuristics/zugzwang.h"

#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/search_context.h"

#include <algorithm>
#include <cstring>

namespace quillmere {
namespace {

bool LeadsTo(TChessboard& node, TMove move, const u8* stored) {
    const u8 arriving = move.Promotion() != 0 ? static_cast<u8>(kWhite | move.Promotion())
                                              : node.m_board[move.from];
    if (stored[move.from] != 0 || stored[move.to] != arriving)
        return false;
    TChessboard child = node;
    child.m_parent = &node;
    return MakeWhiteMoveFast(child, move) == kMoveMade &&
           std::memcmp(child.m_board, stored, kSquareCount) == 0;
}

}  // namespace

bool ZugzwangMoves(TChessboard& node, TMoveList& list) {
    const TSearchContext& context = *node.m_searchContext;
    if (!context.HasZugzwangPosition)
        return false;
    const int all = GetAllWhiteMoves(node, list.moves);
    const TMove* end = std::remove_if(list.moves, list.moves + all, [&](TMove move) {
        return !LeadsTo(node, move, context.ZugzwangBoard);
    });
    list.count = static_cast<int>(end - list.moves);
    return list.count != 0;
}

}  // namespace quillmere

#include "search/search_move.h"

#include "core/make_move.h"
#include "heuristics/rules.h"

namespace quillmere {

bool MakeSearchMove(TChessboard& child, TChessboard& parent, TMove move) {
    child = parent;
    child.m_parent = &parent;
    if (parent.IsWhiteToMove()) {
        if (MakeWhiteMove(child, move) != kMoveMade)
            return false;
        UpdateAfterWhiteMove(child);
        return true;
    }
    if (MakeBlackMove(child, move, false) != kMoveMade)
        return false;
    UpdateAfterBlackMove(child);
    return true;
}

}  // namespace quillmere

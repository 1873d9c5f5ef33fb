#include "heuristics/rules.h"

namespace quillmere {

bool rules::ReplaceWhiteMoves(TChessboard& /*node*/, TMoveList& /*list*/) {
    return false;
}

bool TakeFullList(TChessboard& /*node*/) {
    return false;
}

}  // namespace quillmere

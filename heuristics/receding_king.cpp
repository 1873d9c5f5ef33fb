#include "heuristics/rules.h"

namespace quillmere {

bool rules::IsKingMoveLeftOut(const TChessboard& /*node*/, TMove /*move*/) {
    return false;
}

}  // namespace quillmere

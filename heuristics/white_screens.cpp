#include "heuristics/rules.h"

namespace quillmere {

bool rules::IsMoveLeftOut(TChessboard& /*child*/) {
    return false;
}

}  // namespace quillmere

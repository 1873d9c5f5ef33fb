#include "heuristics/rules.h"

namespace quillmere {

void rules::UpdateAfterBlackMove(TChessboard& /*child*/) {}

}  // namespace quillmere

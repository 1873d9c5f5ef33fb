#include "heuristics/rules.h"

namespace quillmere {

void rules::UpdateAfterWhiteMove(TChessboard& /*child*/) {}

}  // namespace quillmere

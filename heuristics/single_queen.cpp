#include "heuristics/rules.h"

namespace quillmere {

void NoteSingleQueen(TChessboard& /*node*/) {}

}  // namespace quillmere

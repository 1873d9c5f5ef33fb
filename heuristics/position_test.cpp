#include "heuristics/rules.h"

namespace quillmere {

bool rules::IsReplyLeftOut(TChessboard& /*child*/) {
    return false;
}

}  // namespace quillmere

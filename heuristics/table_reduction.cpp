// SH_REDUCTIONTOGLOBREGPOS: a poorer position that is no mate tells of a richer one.
//
// Far from the end of a task with little material, men are taken off a copy until the position is one
// of the precalculated endings; when that is no mate even so, the reply would be given up. SH_ZUGZWANGTRIANGLES
// asks the same.
//
// There are no precalculated endings yet, so that nothing is ever known and no reply is given up.
#include "heuristics/reply_rules.h"

namespace quillmere {

bool rules::IsHopelessByTables(CBlackReply& /*reply*/) {
    return false;
}

}  // namespace quillmere

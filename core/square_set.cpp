#include "core/square_set.h"

namespace quillmere {

const TSetTables kSetTables = MakeSetTables();

}  // namespace quillmere

// What the commands that solve read alike from their arguments: the wishes for a task and its limits.
#pragma once

#include "cli/arguments.h"
#include "cli/task.h"

namespace quillmere {

// --all, --tries, --time, --nodes, as far as the command has them, and the option that decides
// whether each task starts with an empty register. Throws CUsageException.
TTaskRequest ReadTaskRequest(const TArguments& arguments);

// Bytes that registers of solved positions may use together: --memory, else as the options say. A
// limit beyond the memory of the machine would be none, so it is wrong usage: CUsageException.
u64 ReadMemoryBytes(const TArguments& arguments);

}  // namespace quillmere

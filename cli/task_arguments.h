// What the commands that solve read alike from their arguments: the wishes for a task and its limits.
#pragma once

#include "cli/arguments.h"
#include "cli/task.h"

namespace quillmere {

// --all, --tries, --time, --nodes, --quick-mate-depth, as far as the command has them, and the option that decides
// whether each task starts with an empty register. Throws CUsageException.
TTaskRequest ReadTaskRequest(const TArguments& arguments);

// Half-moves of the search for quicker mates: 2N - 1 of --quick-mate-depth N, 1 to 16; -1 without it.
// Throws CUsageException.
i16 ReadQuickMateDepth(const TArguments& arguments);

// Bytes that registers of solved positions may use together: --memory, else as the options say. A
// limit beyond the memory of the machine would be none, so it is wrong usage: CUsageException.
u64 ReadMemoryBytes(const TArguments& arguments);

// Threads over the first moves: --threads T, 1 to 64, else the logical processors of the machine.
// Throws CUsageException; for "T^L" with levels above 1 too, since there is one level only.
int ReadThreads(const TArguments& arguments);

}  // namespace quillmere

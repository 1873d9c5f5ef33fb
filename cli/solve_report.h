// What a solve tells besides its report for people.
#pragma once

#include "cli/exit_code.h"
#include "cli/json.h"
#include "cli/task.h"

namespace quillmere {

// The object of --json.
TJson SolveJson(const TTask& task, const TTaskOutcome& outcome);
EExitCode ExitCodeOfOutcome(const TTaskOutcome& outcome);

}  // namespace quillmere

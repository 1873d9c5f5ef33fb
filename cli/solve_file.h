// quillmere solve FILE.cp --problem N: a problem of a file, solved as a session solves it.
#pragma once

#include "cli/commands.h"

#include <string>

namespace quillmere {

// The argument is a file rather than a position: it ends in ".cp", or a file of that name exists.
bool NamesProblemFile(const std::string& argument);

EExitCode RunSolveFile(const TCommandCall& call, const std::string& file);

}  // namespace quillmere

// Writes .cp files (docs/cp-format.md has the form).
#pragma once

#include "problems/problem_collection.h"

#include <filesystem>
#include <string>

namespace quillmere {

// The whole collection as text, UTF-8, numbers ascending. Throws ChessException (kErrorSavingToFile)
// for a problem whose position cannot be written: one without any white figure.
std::string WriteProblems(const TProblemCollection& collection, bool withComments = true);
// One problem, from its number to "}" with the line end.
std::string WriteProblem(const TChessProblem& problem, bool withComments = true);
// The text of a new file in the language.
std::string DefaultProblemFile(ELanguage language);

}  // namespace quillmere

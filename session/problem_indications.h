// The order of white's first moves that a problem asks for: its own sort indications, and its
// variants where these shall steer the order too.
#pragma once

#include "problems/chess_problem.h"
#include "search/sort_indication.h"

namespace quillmere {

// Values of the option UseMainVariantAsSortIndications
constexpr int kNoVariantsAsIndications = 0;
constexpr int kMainVariantAsIndications = 1;
constexpr int kAllVariantsAsIndications = 2;

// The problem's own indications come first, then white's moves of the main variant, then those of
// the other variants, each under its move number; what is there already is not added again. The
// main variant counts where the option or the problem asks for it, the others by the option only.
TSortIndications BuildIndications(const TChessProblem& problem, int useVariants);

}  // namespace quillmere

// The clauses by which a problem of a collection asks for endgame tables before it is solved in a batch.
//
// A Requires clause names material by figure letters, "Qq" for a queen each: white's figures in
// capitals, black's in small letters, the kings left out. So that it can be asked for as a position
// is, a board is made of it: each letter on the next square from a2 onward, the white king on f8, the
// black one on h8.
#pragma once

#include "core/chessboard.h"
#include "problems/chess_problem.h"
#include "session/table_services.h"

#include <optional>
#include <string>

namespace quillmere {

// Nothing where the letters make no board: an unknown letter, a king, or more than there is room for.
std::optional<TChessboard> RequiresBoard(const std::string& letters);

struct TClauseResult {
    bool isSkipped = false;  // the problem must not be solved
    bool allSolutions = false;
    std::string lines;   // for the log, whole
    std::string reason;  // of the skip, one line
};

// Requires, then AllSolutionsRequires where all solutions are wanted: a miss of the first kind skips
// the problem, one of the second turns the run into one for the first solution.
TClauseResult
CheckTableClauses(const TChessProblem& problem, bool allSolutions, ITableAvailability& tables);

// RequiresSyzygy and AllSolutionsRequiresSyzygy, likewise. The service is asked for positions of at
// most seven men; of others the clauses say nothing.
TClauseResult
CheckTablebaseClauses(const TChessProblem& problem, bool allSolutions, ITablebaseService& service);

}  // namespace quillmere

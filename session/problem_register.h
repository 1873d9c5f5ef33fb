// The register of solved positions that belongs to a problem, and what else hangs on its search
// context while it is searched.
#pragma once

#include "problems/chess_problem.h"
#include "registers/aggregated_register.h"

#include <filesystem>

namespace quillmere {

// The register of the problem, made at the first call; a later limit that differs makes a new one.
// Null for an analysis of fewer than kRegisterRoot half-moves. memoryBytes 0 stands for the limit of
// the options.
TAggregatedTemporaryChessboardRegister* RegisterOf(TChessProblem& problem,
                                                   u16 rootHalfMoves,
                                                   u64 memoryBytes,
                                                   const std::filesystem::path& programFolder);

// Hangs these on the problem's search context, and takes them off again at the end.
class CProblemInUse {
public:
    CProblemInUse(TChessProblem& problem,
                  TAggregatedTemporaryChessboardRegister* solved,
                  CRelaxationLog* log,
                  ISearchProgress* progress);
    ~CProblemInUse();
    CProblemInUse(const CProblemInUse&) = delete;
    CProblemInUse& operator=(const CProblemInUse&) = delete;

private:
    TChessProblem& m_problem;
};

}  // namespace quillmere

#include "session/problem_register.h"

#include "core/platform/system_info.h"
#include "registers/register_limits.h"
#include "session/run_state.h"
#include "session/task_register.h"

namespace quillmere {

TAggregatedTemporaryChessboardRegister* RegisterOf(TChessProblem& problem,
                                                   u16 rootHalfMoves,
                                                   u64 memoryBytes,
                                                   const std::filesystem::path& programFolder) {
    if (rootHalfMoves < problem.registerRoot)
        return nullptr;
    TRunState& state = RunStateOf(problem);
    const u64 bytes =
        memoryBytes != 0 ? memoryBytes : DefaultRegisterBytes(g_options, ReadSystemInfo());
    if (state.solved == nullptr || state.solvedLimitBytes != bytes) {
        state.solved = std::make_unique<TAggregatedTemporaryChessboardRegister>(
            TaskRegisterSettings(bytes, programFolder));
        state.solvedLimitBytes = bytes;
    }
    return state.solved.get();
}

CProblemInUse::CProblemInUse(TChessProblem& problem,
                             TAggregatedTemporaryChessboardRegister* solved,
                             CRelaxationLog* log,
                             ISearchProgress* progress)
    : m_problem(problem) {
    problem.tempRegister = solved;
    problem.relaxationLog = log;
    problem.mayRelaxByTime = true;
    problem.progress = progress;
}

CProblemInUse::~CProblemInUse() {
    m_problem.tempRegister = nullptr;
    m_problem.relaxationLog = nullptr;
    m_problem.mayRelaxByTime = false;
    m_problem.progress = nullptr;
}

}  // namespace quillmere

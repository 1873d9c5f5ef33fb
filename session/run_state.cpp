#include "session/run_state.h"

namespace quillmere {

TRunState& RunStateOf(TChessProblem& problem) {
    if (problem.run == nullptr)
        problem.run = std::make_unique<TRunState>();
    return static_cast<TRunState&>(*problem.run);
}

const TRunState* FindRunState(const TChessProblem& problem) {
    return static_cast<const TRunState*>(problem.run.get());
}

}  // namespace quillmere

#include "cli/solve_report.h"

#include "cli/report.h"

namespace quillmere {

TJson SolveJson(const TTask& task, const TTaskOutcome& outcome) {
    const TSolveResult& result = outcome.result;
    TJson json = {{"schema", kSchema},
                  {"fen", WritePosition(task.position)},
                  {"halfMoves", task.halfMoves},
                  {"moves", FullMovesOfTask(task)},
                  {"verdict", VerdictWord(result.verdict)},
                  {"complete", result.isComplete}};
    AddResultJson(json, task, result);
    AddSelectionJson(json, result);
    AddPassesJson(json, result);
    json["nodes"] = result.nodes;
    json["madeMoves"] = result.madeMoves;
    json["ms"] = outcome.milliseconds;
    AddRegisterJson(json, outcome);
    json["threads"] = result.threads;
    return json;
}

EExitCode ExitCodeOfOutcome(const TTaskOutcome& outcome) {
    if (outcome.isInterrupted)
        return kExitInterrupted;
    switch (outcome.result.verdict) {
    case ESolveVerdict::kProvedMate:
        return kExitDone;
    case ESolveVerdict::kProvedNoMate:
        return kExitNoMate;
    case ESolveVerdict::kDoubt:
    case ESolveVerdict::kStopped:
    case ESolveVerdict::kLimit:
        break;
    }
    return kExitUndecided;
}

}  // namespace quillmere

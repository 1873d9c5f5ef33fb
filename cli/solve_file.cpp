#include "cli/solve_file.h"

#include "cli/collection_file.h"
#include "cli/console_services.h"
#include "cli/report.h"
#include "cli/solve_report.h"
#include "cli/stated_answer.h"
#include "cli/task_arguments.h"
#include "cli/task_log.h"
#include "core/platform/interrupt.h"
#include "session/options.h"
#include "session/problem_heuristics.h"
#include "session/session_texts.h"
#include "session/solve_control.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <limits>
#include <thread>

namespace quillmere {
namespace {

constexpr std::string_view kProblemFileSuffix = ".cp";
constexpr auto kLook = std::chrono::milliseconds(20);

// Half-moves that the call gives; nothing if it gives none.
std::optional<int> LengthOfCall(const TArguments& arguments) {
    const auto moves = arguments.Number("--moves", 1, kMaxFullMoves);
    const auto halfMoves = arguments.Number("--half-moves", 1, kMaxHalfMoves);
    if (halfMoves && *halfMoves % 2 == 0)
        throw CUsageException(EMessage::kUsageProblemOddLength, {std::to_string(*halfMoves)});
    if (moves && halfMoves && FullMovesOf(static_cast<int>(*halfMoves)) != *moves)
        throw CUsageException(EMessage::kUsageLengthsDiffer,
                              {std::to_string(*moves), std::to_string(*halfMoves)});
    if (halfMoves)
        return static_cast<int>(*halfMoves);
    if (moves)
        return HalfMovesOfMate(static_cast<int>(*moves));
    return std::nullopt;
}

// Only a problem without a stipulation takes its length from the call, and needs it.
void GiveLength(TChessProblem& problem, const TArguments& arguments) {
    const std::optional<int> halfMoves = LengthOfCall(arguments);
    const std::string number = std::to_string(problem.number);
    if (problem.type == kNoStipulation) {
        if (!halfMoves)
            throw CUsageException(EMessage::kUsageProblemNeedsLength, {number});
        problem.SetStipulation(kNoStipulation, static_cast<u16>(*halfMoves));
    } else if (halfMoves) {
        const char* const option = arguments.Has("--moves") ? "--moves" : "--half-moves";
        throw CUsageException(EMessage::kUsageProblemHasLength, {number, option});
    }
}

// The root of the problem as the report knows it. Throws ChessException on an illegal position.
TTask TaskOfProblem(const TChessProblem& problem) {
    TPosition position;
    InitBoard(position.board);
    std::memcpy(position.board.m_board, problem.position->m_board, sizeof position.board.m_board);
    ValidateBoard(position.board, true);
    position.side = ESide::kWhiteToMove;
    return MakeTask(position, HalfMovesToSolve(problem));
}

TStartRequest ReadStart(const TCommandCall& call) {
    const TArguments& arguments = call.arguments;
    TStartRequest start;
    start.heuristics = arguments.Value("--heuristics").value_or("");
    const bool hasWord = start.heuristics != kNoWord;
    for (const std::string_view option : {"--no-relax", "--no-final-pass"}) {
        if (!hasWord && arguments.Has(option))
            throw CUsageException(EMessage::kUsageNeedsHeuristics, {std::string(option)});
    }
    if (arguments.Has("--no-final-pass") && arguments.Has("--tries"))
        throw CUsageException(EMessage::kUsageTriesNeedFinalPass);
    const TTaskRequest wishes = ReadTaskRequest(arguments);
    start.wantTries = wishes.wantTries;
    start.seconds = wishes.seconds;
    start.nodeLimit = wishes.nodes;
    start.quickMateDepth = wishes.quickMateDepth;
    start.noRelaxation = arguments.Has("--no-relax");
    start.noFinalPass = arguments.Has("--no-final-pass");
    start.memoryBytes = ReadMemoryBytes(arguments);
    start.logMoves = WantsTaskLog(arguments, call.optionsFile.parent_path());
    if (arguments.Has("--threads"))
        start.threads = ReadThreads(arguments);
    else if (start.logMoves)
        start.threads = 1;  // a log is read from its first line to its last
    // Who asks about the search wants one.
    start.mayUseSolvedRecord = !arguments.Has("--explain") && !arguments.Has("--heuristics") &&
                               !arguments.Has("--nodes") && !arguments.Has("--quick-mate-depth") &&
                               !start.logMoves;
    return start;
}

// Runs the session; Ctrl-C stops it.
void Solve(TProblemCollection& collection,
           TChessProblem& problem,
           bool allSolutions,
           const TStartRequest& start,
           const TCommandCall& call) {
    CConsoleServices services(call.console);
    TSessionSettings settings;
    settings.language = call.console.Language();
    settings.programFolder = call.optionsFile.parent_path();
    CSolveControl control(collection, services.Services(), settings);
    CatchInterrupts();
    if (!control.StartSolve(problem, allSolutions, start))
        return;
    while (control.IsRunning(problem)) {
        if (WasInterrupted())
            control.StopSolve(problem);
        std::this_thread::sleep_for(kLook);
    }
    control.WaitUntilIdle(problem);
    call.console.Status("");
    if (const std::exception_ptr fault = RunStateOf(problem).outcome.fault)
        std::rethrow_exception(fault);
}

TTaskOutcome OutcomeOf(const TChessProblem& problem, const TStartRequest& start) {
    const TRunState& state = *FindRunState(problem);
    TTaskOutcome outcome;
    outcome.result = state.outcome.result;
    outcome.milliseconds = state.outcome.milliseconds;
    outcome.isInterrupted = WasInterrupted();
    // A search that ends with the second key, say, has not asked the moves behind it.
    const bool wasCut = state.outcome.stopAfterKeys > 0 &&
                        static_cast<int>(outcome.result.keys.size()) >= state.outcome.stopAfterKeys;
    outcome.wereAllAsked = (state.solveMode == kSolveAll && !wasCut) || start.wantTries;
    if (state.solved != nullptr)
        outcome.registerFigures = state.solved->Figures();
    return outcome;
}

// "2024-03-09".
std::string DateText(i32 date) {
    return fmt::format("{:04}-{:02}-{:02}", date / 10000, date / 100 % 100, date % 100);
}

void TellNotes(const TCommandCall& call, const TChessProblem& problem) {
    const TEngineOutcome& outcome = FindRunState(problem)->outcome;
    CConsole& console = call.console;
    if (problem.Has(kProblemMirrorOnly))
        console.Note(console.Text(EMessage::kProblemNotMirrored, {std::to_string(problem.number)}));
    if (outcome.isFromRecord)
        console.Note(console.Text(EMessage::kAnsweredFromRecord,
                                  {DateText(outcome.recordWhen.date),
                                   SecondsText(static_cast<u64>(outcome.recordWhen.durationMs))}));
    if (!outcome.expectedSortFailure.empty())
        console.Note(outcome.expectedSortFailure);
}

std::string JsonText(const TChessProblem& problem,
                     const TTask& task,
                     const TTaskOutcome& outcome,
                     EStatedAnswer stated) {
    TJson json = SolveJson(task, outcome);
    json["problem"] = problem.number;
    json["description"] = problem.description;
    json["stated"] = LineJson({});
    for (const TMove move : problem.answer)
        json["stated"].push_back(StatedMoveText(problem, move));
    json["agrees"] = stated != EStatedAnswer::kDiffers;
    if (stated == EStatedAnswer::kNotCompared)
        json["agrees"] = nullptr;
    json["fromRecord"] = FindRunState(problem)->outcome.isFromRecord;
    return JsonLine(json);
}

std::string FullReport(const TCommandCall& call,
                       const TChessProblem& problem,
                       const TTask& task,
                       const TTaskOutcome& outcome,
                       EStatedAnswer stated) {
    const CConsole& console = call.console;
    std::string report = problem.description.empty() ? "" : problem.description + "\n";
    report += StipulationText(console, task) + "\n\n";
    if (call.arguments.Has("--explain"))
        report += ExplainText(console, outcome.result) + "\n";
    report += ReportText(console, task, outcome);
    if (problem.Has(kProblemHasAnswer))
        report += ReportRow(console.Text(EMessage::kLabelStated),
                            StatedAnswerText(problem, stated, console.Language()));
    return report;
}

}  // namespace

bool NamesProblemFile(const std::string& argument) {
    std::error_code error;
    return argument.ends_with(kProblemFileSuffix) ||
           std::filesystem::is_regular_file(argument, error);
}

EExitCode RunSolveFile(const TCommandCall& call, const std::string& file) {
    // 1. The problem
    const TArguments& arguments = call.arguments;
    const auto number = arguments.Number(
        "--problem", std::numeric_limits<i32>::min(), std::numeric_limits<i32>::max());
    if (!number)
        throw CUsageException(EMessage::kUsageProblemMissing, {file});
    TProblemCollection collection;
    ReadCollection(arguments, call.console, file, collection);
    TChessProblem* const problem = collection.Find(static_cast<i32>(*number));
    if (problem == nullptr)
        throw ChessException(EMessage::kProblemNotInFile, {file, std::to_string(*number)});
    if (problem->type == kSelfmate || problem->type == kHelpmate)
        throw CPlacedException(file,
                               ChessException(problem->type == kSelfmate
                                                  ? EMessage::kSelfmateRefused
                                                  : EMessage::kHelpmateRefused,
                                              {std::to_string(*number)}));
    GiveLength(*problem, arguments);
    problem->GoToStart();
    const TStartRequest start = ReadStart(call);

    // 2. The solve
    TTask task;
    try {
        task = TaskOfProblem(*problem);
        Solve(collection,
              *problem,
              arguments.Has("--all") || problem->Has(kProblemAllSolutions),
              start,
              call);
    } catch (const CUsageException&) {
        throw;
    } catch (const ChessException& fault) {
        throw CPlacedException(file, fault);
    }

    // 3. What came out
    const TTaskOutcome outcome = OutcomeOf(*problem, start);
    const EStatedAnswer stated = CompareStated(*problem, outcome);
    TellNotes(call, *problem);
    call.console.Print(arguments.Has("--json") ? JsonText(*problem, task, outcome, stated)
                                               : FullReport(call, *problem, task, outcome, stated));
    return ExitCodeOfOutcome(outcome);
}

}  // namespace quillmere

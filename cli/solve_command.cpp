// quillmere solve: one position, one a line on standard input, or a problem of a file.
#include "cli/columns.h"
#include "cli/commands.h"
#include "cli/json.h"
#include "cli/report.h"
#include "cli/solve_file.h"
#include "cli/solve_report.h"
#include "cli/task_arguments.h"
#include "cli/task_heuristics.h"
#include "cli/task_log.h"
#include "core/platform/interrupt.h"
#include "core/text.h"

#include <iostream>
#include <memory>

namespace quillmere {
namespace {

// Half-moves of the task from --moves and --half-moves, which may both be given if they agree.
int ReadLength(const TArguments& arguments) {
    const auto moves = arguments.Number("--moves", 1, kMaxFullMoves);
    const auto halfMoves = arguments.Number("--half-moves", 1, kMaxHalfMoves);
    if (!moves && !halfMoves)
        throw CUsageException(EMessage::kUsageNoLength);
    if (moves && halfMoves && FullMovesOf(static_cast<int>(*halfMoves)) != *moves)
        throw CUsageException(EMessage::kUsageLengthsDiffer,
                              {std::to_string(*moves), std::to_string(*halfMoves)});
    return static_cast<int>(
        halfMoves.value_or(moves ? HalfMovesOfMate(static_cast<int>(*moves)) : 0));
}

struct TListedTask {
    TTask task;
    std::string place;  // in a list, for faults that come to light later; else empty
};

// The whole input is read and checked before anything is solved, so that a fault leaves standard
// output empty.
std::vector<TListedTask> ReadTasksFromInput(const CConsole& console, int halfMoves) {
    std::vector<TListedTask> tasks;
    std::string line;
    for (int number = 1; std::getline(std::cin, line); ++number) {
        const std::string text(StripBlanks(line));
        if (text.empty() || text.front() == '#')
            continue;
        const std::string place = console.Text(EMessage::kInputLine, {std::to_string(number)});
        try {
            tasks.push_back({MakeTask(ReadPosition(text), halfMoves), place});
        } catch (const ChessException& fault) {
            // Also a task that does not fit the length: a line of the input is bad, not the call.
            throw CPlacedException(place, fault);
        }
    }
    if (tasks.empty())
        throw ChessException(EMessage::kInputEmpty);
    return tasks;
}

}  // namespace

EExitCode RunSolve(const TCommandCall& call) {
    const TArguments& arguments = call.arguments;
    CConsole& console = call.console;
    const std::string text = JoinWords(arguments.positionals);
    if (NamesProblemFile(text))
        return RunSolveFile(call, text);
    if (arguments.Has("--problem"))
        throw CUsageException(EMessage::kUsageProblemNeedsFile);
    const int halfMoves = ReadLength(arguments);
    TTaskRequest request = ReadTaskRequest(arguments);
    request.threads = ReadThreads(arguments);
    const std::filesystem::path programFolder = call.optionsFile.parent_path();
    const bool wantsLog = WantsTaskLog(arguments, programFolder);
    // A log is read from its first line to its last, so one thread writes it unless more are asked
    // for.
    if (wantsLog && !arguments.Has("--threads"))
        request.threads = 1;
    CTaskRegister solved(ReadMemoryBytes(arguments), programFolder);
    request.solved = &solved;
    CRelaxationLog relaxationLog(programFolder);
    request.relaxationLog = &relaxationLog;
    request.mayRelaxByTime = true;
    if (request.wantTries && halfMoves % 2 == 0)
        throw CUsageException(EMessage::kUsageTriesInDefence);

    const bool isList = text == "-";
    const std::vector<TListedTask> tasks =
        isList ? ReadTasksFromInput(console, halfMoves)
               : std::vector<TListedTask>{{MakeTask(ReadPosition(text), halfMoves), {}}};

    std::vector<std::unique_ptr<CTaskHeuristics>> heuristics;
    for (const auto& [task, place] : tasks)
        heuristics.push_back(std::make_unique<CTaskHeuristics>(arguments, task, place));
    const bool isExplained = arguments.Has("--explain");

    CatchInterrupts();
    // The worst of several: interrupted, undecided, no mate, mate.
    EExitCode code = kExitDone;
    bool hasNoted = false;
    int number = 0;
    for (const TListedTask& listed : tasks) {
        const TTask& task = listed.task;
        heuristics[static_cast<std::size_t>(number)]->Give(request);
        if (task.position.NeedsCastlingNote() && !hasNoted) {
            console.Note(console.Text(EMessage::kCastlingNote));
            hasNoted = true;
        }
        CTaskLog log(wantsLog, programFolder, ++number, request.threads);
        request.movesLogs = log.Logs();
        const TTaskOutcome outcome = RunTask(task, request, ShowProgress(console, task));
        log.Tell(console);
        if (arguments.Has("--json")) {
            console.Print(JsonLine(SolveJson(task, outcome)));
        } else {
            std::string report = number == 1 ? "" : "\n";
            if (isList)
                report += WritePosition(task.position) + "\n";
            report += StipulationText(console, task) + "\n\n";
            if (isExplained)
                report += ExplainText(console, outcome.result) + "\n";
            console.Print(report + ReportText(console, task, outcome));
        }
        code = std::max(code, ExitCodeOfOutcome(outcome));
        if (outcome.isInterrupted)
            break;
    }
    return code;
}

}  // namespace quillmere

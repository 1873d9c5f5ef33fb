// quillmere batch: solves every problem of a collection and compares with what the file states.
#include "cli/collection_file.h"
#include "cli/commands.h"
#include "cli/json.h"
#include "cli/junit.h"
#include "cli/report.h"
#include "cli/task_arguments.h"
#include "core/platform/file_replace.h"
#include "core/platform/interrupt.h"
#include "session/options.h"
#include "session/questions.h"
#include "session/regression_log.h"
#include "session/regression_test.h"
#include "session/silent_services.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <tuple>

namespace quillmere {
namespace {

constexpr i64 kMaxJobs = kMaxSolvesAtOnce;
constexpr u64 kMillisecondsPerSecond = 1000;
constexpr u64 kSecondsPerMinute = 60;
constexpr u64 kSecondsPerHour = 3600;

// "1:02:03", or "2:03" below an hour. Rounded up, so that nothing left is told as no time.
std::string DurationText(u64 milliseconds) {
    const u64 seconds = (milliseconds + kMillisecondsPerSecond - 1) / kMillisecondsPerSecond;
    const u64 hours = seconds / kSecondsPerHour;
    const u64 minutes = seconds / kSecondsPerMinute % kSecondsPerMinute;
    return hours > 0 ? fmt::format("{}:{:02}:{:02}", hours, minutes, seconds % kSecondsPerMinute)
                     : fmt::format("{}:{:02}", minutes, seconds % kSecondsPerMinute);
}

std::string_view ComparisonWord(ETestVerdict verdict) {
    switch (verdict) {
    case ETestVerdict::kAsExpected:
        return "as expected";
    case ETestVerdict::kDifferent:
        return "different";
    case ETestVerdict::kNotStated:
        return "not stated";
    case ETestVerdict::kSkipped:
        return "skipped";
    case ETestVerdict::kFaulty:
        return "faulty";
    case ETestVerdict::kUndecided:
        break;
    }
    return "undecided";
}

TJson MovesJson(const std::vector<TToldMove>& moves) {
    TJson list = TJson::array();
    for (const TToldMove& move : moves) {
        TJson row = {{"move", move.text}};
        if (!move.uci.empty())
            row["uci"] = move.uci;
        list.push_back(std::move(row));
    }
    return list;
}

std::string JsonText(const TTestResult& result) {
    TJson json = {{"schema", kSchema},
                  {"problem", result.number},
                  {"pass", result.pass ? TJson(*result.pass) : TJson()},
                  {"description", result.description}};
    if (!result.fen.empty())
        json["fen"] = result.fen;
    const bool hasLength = result.halfMoves != kHalfMovesWithoutStipulation;
    json["halfMoves"] = hasLength ? TJson(result.halfMoves) : TJson();
    json["moves"] = hasLength ? TJson(FullMovesOf(result.halfMoves)) : TJson();
    if (result.mode != kSolveNone)
        json["mode"] = result.mode == kSolveAll ? "all" : "first";
    json["verdict"] = result.solved      ? VerdictWord(*result.solved)
                      : result.isFromLog ? "not known"
                                         : "not run";
    json["complete"] = result.isComplete;
    json["keys"] = MovesJson(result.found);
    json["expected"] = MovesJson(result.expected);
    json["comparison"] = ComparisonWord(result.verdict);
    json["remark"] = result.remark;
    json["resumed"] = result.isFromLog;
    json["threads"] = result.threads;
    json["nodes"] = result.nodes;
    json["madeMoves"] = result.madeMoves;
    json["ms"] = result.milliseconds;
    json["registerElements"] = result.registerElements;
    json["memoryMB"] = Megabytes(result.registerBytes);
    return JsonLine(json);
}

// Prints lines or objects as they come, and keeps the results for the report. The run calls it one
// call at a time while the command waits, so that the streams are used by one thread at a time.
class CBatchObserver final : public IRegressionObserver {
public:
    CBatchObserver(CConsole& console, bool isJson) : m_console(console), m_isJson(isJson) {}

    void OnLines(std::string_view lines) override {
        if (!m_isJson)
            m_console.Print(lines);
    }
    void OnResult(const TTestResult& result) override {
        if (m_isJson)
            m_console.Print(JsonText(result));
        m_results.push_back(result);
    }
    void OnProgress(const TRegressionProgress& progress) override {
        const std::vector<std::string> values = {std::to_string(progress.done),
                                                 std::to_string(progress.total)};
        m_console.Status(
            progress.millisecondsLeft
                ? m_console.Text(EMessage::kBatchProgress,
                                 {values[0], values[1], DurationText(*progress.millisecondsLeft)})
                : m_console.Text(EMessage::kBatchProgressUnknown, values));
    }
    // By number and pass, in whatever order they ended.
    std::vector<TTestResult> Results() const {
        std::vector<TTestResult> results = m_results;
        std::ranges::stable_sort(results, {}, [](const TTestResult& result) {
            return std::tuple(result.number, result.pass.value_or(0));
        });
        return results;
    }

private:
    CConsole& m_console;
    const bool m_isJson;
    std::vector<TTestResult> m_results;
};

// "7" or "3-7".
void ReadRange(const std::string& text, TRegressionRequest& request) {
    constexpr i64 kMost = std::numeric_limits<i32>::max();
    const std::size_t hyphen = text.find('-');
    try {
        const std::string_view view = text;
        request.first = static_cast<i32>(ReadNumber("--problem", view.substr(0, hyphen), 0, kMost));
        request.last = hyphen == std::string::npos
                           ? request.first
                           : static_cast<i32>(ReadNumber(
                                 "--problem", view.substr(hyphen + 1), request.first, kMost));
    } catch (const CUsageException&) {
        throw CUsageException(EMessage::kBatchBadRange, {text});
    }
}

TRegressionRequest ReadRequest(const TArguments& arguments) {
    TRegressionRequest request;
    request.isQuick = arguments.Has("--quick");
    request.withMirror = arguments.Has("--mirror");
    request.wantAll = arguments.Has("--all");
    request.heuristics = arguments.Value("--heuristics").value_or("");
    request.isResumed = arguments.Has("--resume");
    request.jobs = static_cast<int>(arguments.Number("--jobs", 1, kMaxJobs).value_or(1));
    request.threads = arguments.Has("--threads") ? ReadThreads(arguments) : 0;
    request.memoryBytes = arguments.Has("--memory") ? ReadMemoryBytes(arguments) : 0;
    request.quickMateDepth = ReadQuickMateDepth(arguments);
    request.timeLimitSeconds = static_cast<u32>(
        arguments.Number("--time", 1, kNoTimeLimit - 1).value_or(i64{kNoTimeLimit}));
    if (const auto range = arguments.Value("--problem"))
        ReadRange(*range, request);
    request.logFile = arguments.Value("--log").value_or(std::string(kRegressionLogName));
    return request;
}

void CheckPlan(const std::string& file,
               const TProblemCollection& problems,
               const TRegressionRequest& request) {
    if (!PlannedTests(problems, request).empty())
        return;
    if (request.first == request.last)
        throw ChessException(EMessage::kProblemNotInFile, {file, std::to_string(request.first)});
    throw ChessException(EMessage::kBatchNoProblems, {file});
}

bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(a, error);
    return !error && whole == std::filesystem::weakly_canonical(b, error) && !error;
}

// What is written must not take the place of what is read.
void CheckOutputs(const std::string& file,
                  const TRegressionRequest& request,
                  const std::optional<std::string>& report) {
    const auto refuse = [](std::string_view option, const std::string& name) {
        throw CUsageException(EMessage::kBatchSameFile, {std::string(option), name});
    };
    std::filesystem::path backup = request.logFile;
    backup += kRegressionBackupEnding;
    if (IsSameFile(request.logFile, file) || IsSameFile(backup, file))
        refuse("--log", request.logFile.string());
    if (report && (IsSameFile(*report, file) || IsSameFile(*report, request.logFile) ||
                   IsSameFile(*report, backup)))
        refuse("--junit", *report);
}

// What the log tells of was compared with the file as it was then.
void NoteChangeSinceLog(CConsole& console,
                        const std::string& file,
                        const TRegressionRequest& request) {
    std::error_code error;
    const auto logTime = std::filesystem::last_write_time(request.logFile, error);
    if (error)
        return;
    const auto fileTime = std::filesystem::last_write_time(file, error);
    if (!error && fileTime > logTime)
        console.Note(
            console.Text(EMessage::kBatchChangedSinceLog, {file, request.logFile.string()}));
}

void WriteReport(const std::string& report,
                 const std::string& suite,
                 const std::vector<TTestResult>& results) {
    if (const std::error_code error = ReplaceFileContent(report, JunitReport(suite, results)))
        throw ChessException(EMessage::kRegressionReportNotWritten, {report, error.message()});
}

void TellSummary(CConsole& console, const TRegressionSummary& summary) {
    if (summary.fromLog > 0)
        console.Note(
            console.Text(EMessage::kBatchFinishedBefore, {std::to_string(summary.fromLog)}));
    std::vector<std::string> values = {std::to_string(summary.Total())};
    using enum ETestVerdict;
    for (const ETestVerdict verdict :
         {kAsExpected, kDifferent, kNotStated, kUndecided, kSkipped, kFaulty})
        values.push_back(std::to_string(summary.Count(verdict)));
    console.Note(console.Text(EMessage::kBatchSummary, values));
    if (summary.isInterrupted)
        console.Note(console.Text(EMessage::kBatchInterrupted));
}

EExitCode ExitCodeOf(const TRegressionSummary& summary) {
    if (summary.isInterrupted)
        return kExitInterrupted;
    if (summary.Count(ETestVerdict::kDifferent) > 0)
        return kExitNoMate;
    const bool isOpen =
        summary.Count(ETestVerdict::kUndecided) > 0 || summary.Count(ETestVerdict::kFaulty) > 0;
    return isOpen ? kExitUndecided : kExitDone;
}

}  // namespace

EExitCode RunBatch(const TCommandCall& call) {
    CConsole& console = call.console;
    const std::string& file = call.arguments.positionals[0];
    TRegressionRequest request = ReadRequest(call.arguments);
    const std::optional<std::string> report = call.arguments.Value("--junit");
    CheckOutputs(file, request, report);
    TProblemCollection problems;
    ReadCollection(call.arguments, console, file, problems);
    CheckPlan(file, problems, request);
    request.jobs = std::min(request.jobs, static_cast<int>(problems.problems.size()));
    if (request.isResumed)
        NoteChangeSinceLog(console, file, request);

    TSessionSettings settings;
    settings.language = console.Language();
    settings.programFolder = call.optionsFile.parent_path();
    CSilentStatus status;
    CSilentRepaint repaint;
    CSilentTick tick;
    CBatchQuestions questions;
    CNoTables tables;
    CNoTablebase tablebase;
    CBatchObserver observer(console, call.arguments.Has("--json"));
    CRegressionTest test(
        {problems, settings, {&status, &repaint, &questions, &tick}, tables, tablebase, &observer});
    CatchInterrupts();
    const TRegressionSummary summary = test.Run(request, WasInterrupted);
    if (report)
        WriteReport(*report, std::filesystem::path(file).filename().string(), observer.Results());
    TellSummary(console, summary);
    return ExitCodeOf(summary);
}

}  // namespace quillmere

// quillmere epd: solves the positions of a file and compares them with what the file states.
#include "cli/columns.h"
#include "cli/commands.h"
#include "cli/epd_file.h"
#include "cli/json.h"
#include "cli/report.h"
#include "cli/task_arguments.h"
#include "cli/task_heuristics.h"
#include "cli/task_log.h"
#include "core/platform/interrupt.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <fmt/format.h>
#include <memory>
#include <mutex>
#include <thread>

namespace quillmere {
namespace {

constexpr i64 kMaxJobs = 256;

enum class EComparison { kAsExpected, kDifferent, kUndecided };

struct TSettings {
    TTaskRequest request;
    bool wantsShortest = false;
    bool isDeterministic = false;
    bool isJson = false;
    bool isDetailed = false;  // one position by its id: diagram and main line
    bool wantsLog = false;
    int jobs = 1;
    u64 memoryBytes = 0;  // of all jobs together
    std::filesystem::path programFolder;
};

// What came out for one position.
struct TRow {
    TTaskOutcome outcome;
    // Of the task one move shorter, where it was asked for and the mate was found.
    std::optional<ESolveVerdict> shorter;
    EComparison comparison = EComparison::kUndecided;
    std::string remark;  // why it is not as expected
    bool isSolved = false;
};

bool Holds(const std::vector<TMove>& moves, TMove move) {
    return std::ranges::any_of(moves, [&](TMove other) { return MovesEqual(move, other); });
}

// One key was searched: it must be one of the expected. All were: they must be the same moves.
bool AreKeysExpected(const std::vector<TMove>& keys,
                     const std::vector<TMove>& expected,
                     bool areAll) {
    const auto isExpected = [&](TMove key) { return Holds(expected, key); };
    return std::ranges::all_of(keys, isExpected) && (!areAll || keys.size() == expected.size());
}

std::string KeysText(const TEpdRecord& record, const std::vector<TMove>& keys) {
    const TPosition& position = record.task.position;
    std::string text;
    for (const TMove key : keys) {
        text += text.empty() ? "" : ",";
        text += WriteMove(position.board, position.IsBlackToMove(), key).text;
    }
    return text.empty() ? "-" : text;
}

void Compare(const CConsole& console, const TEpdRecord& record, bool areAll, TRow& row) {
    const TSolveResult& result = row.outcome.result;
    row.comparison = EComparison::kUndecided;
    if (result.verdict == ESolveVerdict::kProvedNoMate) {
        row.comparison = EComparison::kDifferent;
        row.remark = console.Text(EMessage::kEpdExpectedMate);
        return;
    }
    if (result.verdict != ESolveVerdict::kProvedMate)
        return;
    const bool isComplete = areAll && result.isComplete;
    if (!record.expectedKeys.empty() &&
        !AreKeysExpected(result.keys, record.expectedKeys, isComplete)) {
        row.comparison = EComparison::kDifferent;
        row.remark =
            console.Text(EMessage::kEpdExpectedMoves, {KeysText(record, record.expectedKeys)});
        return;
    }
    if (row.shorter == ESolveVerdict::kProvedMate) {
        row.comparison = EComparison::kDifferent;
        row.remark =
            console.Text(EMessage::kEpdShorter, {std::to_string(FullMovesOfTask(record.task) - 1)});
    } else if (row.shorter && *row.shorter != ESolveVerdict::kProvedNoMate) {
        row.remark = console.Text(EMessage::kEpdShorterUndecided);
    } else if (areAll && !result.isComplete) {
        row.remark = console.Text(EMessage::kNotAllTried);
    } else {
        row.comparison = EComparison::kAsExpected;
    }
}

// `number` is the place of the record in the list, from 1; `solved` is that of the worker.
TRow SolveRecord(CConsole& console,
                 const TEpdRecord& record,
                 int number,
                 const TSettings& settings,
                 const CTaskHeuristics& heuristics,
                 CTaskRegister& solved) {
    TRow row;
    const auto progress =
        settings.jobs == 1 ? ShowProgress(console, record.task) : TProgressCallback();
    CTaskLog log(settings.wantsLog, settings.programFolder, number);
    TTaskRequest request = settings.request;
    request.solved = &solved;
    request.movesLogs = log.Logs();
    heuristics.Give(request);
    row.outcome = RunTask(record.task, request, progress);
    log.Tell(console);
    if (settings.wantsShortest && row.outcome.result.verdict == ESolveVerdict::kProvedMate) {
        if (record.task.halfMoves == 1) {
            row.shorter = ESolveVerdict::kProvedNoMate;
        } else {
            const TTask task = MakeTask(record.task.position, record.task.halfMoves - 2);
            request.movesLogs.clear();
            request.wantAllKeys = false;
            request.wantMainLine = false;
            const TTaskOutcome outcome = RunTask(task, request, progress);
            row.shorter = outcome.result.verdict;
            row.outcome.result.nodes += outcome.result.nodes;
            row.outcome.result.madeMoves += outcome.result.madeMoves;
            row.outcome.milliseconds += outcome.milliseconds;
            row.outcome.isInterrupted |= outcome.isInterrupted;
        }
    }
    Compare(console, record, settings.request.wantAllKeys, row);
    row.isSolved = true;
    return row;
}

std::string LineText(const TEpdRecord& record,
                     const TRow& row,
                     const TSettings& settings,
                     std::size_t idWidth) {
    const TSolveResult& result = row.outcome.result;
    std::string text = fmt::format("{}{:<8}  {:>3}  {:<12}  {:>12}",
                                   PadRight(record.id, idWidth + 2),
                                   VerdictWord(result.verdict),
                                   FullMovesOfTask(record.task),
                                   KeysText(record, result.keys),
                                   result.nodes);
    if (!settings.isDeterministic)
        text += fmt::format("  {:>8}", row.outcome.milliseconds);
    if (!row.remark.empty())
        text += "  " + row.remark;
    return text + "\n";
}

std::string DetailedText(const CConsole& console, const TEpdRecord& record, const TRow& row) {
    std::string text = console.Bold(record.id) + "\n";
    for (const std::string_view name : {"c0", "c1"}) {
        if (const std::string_view comment = record.Operation(name); !comment.empty())
            text += std::string(comment) + "\n";
    }
    text += "\n" + Diagram(record.task.position.board) + "\n";
    text += StipulationText(console, record.task) + "\n\n";
    text += ReportText(console, record.task, row.outcome);
    if (!row.remark.empty())
        text += "\n" + row.remark + "\n";
    return text;
}

std::string JsonText(const TEpdRecord& record, const TRow& row, const TSettings& settings) {
    const TSolveResult& result = row.outcome.result;
    TJson json = {{"schema", kSchema},
                  {"id", record.id},
                  {"line", record.line},
                  {"fen", WritePosition(record.task.position)},
                  {"halfMoves", record.task.halfMoves},
                  {"moves", FullMovesOfTask(record.task)},
                  {"verdict", VerdictWord(result.verdict)},
                  {"complete", result.isComplete}};
    AddResultJson(json, record.task, result);
    AddSelectionJson(json, result);
    TJson expected = TJson::array();
    for (const TMove key : record.expectedKeys)
        expected.push_back(MoveJson(
            WriteMove(record.task.position.board, record.task.position.IsBlackToMove(), key)));
    json["expectedKeys"] = std::move(expected);
    if (row.shorter)
        json["shorter"] = VerdictWord(*row.shorter);
    json["comparison"] = row.comparison == EComparison::kAsExpected  ? "as expected"
                         : row.comparison == EComparison::kDifferent ? "different"
                                                                     : "undecided";
    TJson operations = TJson::object();
    for (const auto& [name, value] : record.otherOperations)
        operations[name] = value;
    json["operations"] = std::move(operations);
    json["nodes"] = result.nodes;
    json["madeMoves"] = result.madeMoves;
    if (!settings.isDeterministic) {
        json["ms"] = row.outcome.milliseconds;
        AddRegisterJson(json, row.outcome);
    }
    return JsonLine(json);
}

// Solves the records on several threads and hands each row over in the order of the file.
//
// Locking: m_mutex guards m_rows and m_failure; a leaf. m_next is only a ticket counter.
class CBatch {
public:
    CBatch(CConsole& console,
           const std::vector<TEpdRecord>& records,
           const std::vector<std::unique_ptr<CTaskHeuristics>>& heuristics,
           const TSettings& settings)
        : m_console(console),
          m_records(records),
          m_heuristics(heuristics),
          m_settings(settings),
          m_rows(records.size()) {
        for (int i = 0; i < settings.jobs; ++i)
            m_threads.emplace_back([this] { Work(); });
    }
    ~CBatch() {
        m_next.store(m_records.size());
        for (std::thread& thread : m_threads)
            thread.join();
    }
    CBatch(const CBatch&) = delete;
    CBatch& operator=(const CBatch&) = delete;

    // Waits until the row is there; nothing if it was not begun before an interrupt. What a worker
    // threw is thrown here.
    std::optional<TRow> Take(std::size_t index) {
        std::unique_lock lock(m_mutex);
        m_isReady.wait(lock, [&] {
            return m_rows[index].isSolved || m_failure || m_workersDone == m_threads.size();
        });
        if (m_failure)
            std::rethrow_exception(m_failure);
        return m_rows[index].isSolved ? std::optional(std::move(m_rows[index])) : std::nullopt;
    }

private:
    void Work() {
        try {
            CTaskRegister solved(m_settings.memoryBytes / static_cast<u64>(m_settings.jobs),
                                 m_settings.programFolder);
            while (!WasInterrupted()) {
                const std::size_t index = m_next.fetch_add(1);
                if (index >= m_records.size())
                    break;
                TRow row = SolveRecord(m_console,
                                       m_records[index],
                                       static_cast<int>(index) + 1,
                                       m_settings,
                                       *m_heuristics[index],
                                       solved);
                const std::lock_guard lock(m_mutex);
                m_rows[index] = std::move(row);
                m_isReady.notify_all();
            }
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            m_failure = std::current_exception();
        }
        const std::lock_guard lock(m_mutex);
        ++m_workersDone;
        m_isReady.notify_all();
    }

    CConsole& m_console;
    const std::vector<TEpdRecord>& m_records;
    const std::vector<std::unique_ptr<CTaskHeuristics>>& m_heuristics;
    const TSettings& m_settings;
    std::atomic<std::size_t> m_next{0};
    std::mutex m_mutex;
    std::condition_variable m_isReady;
    std::vector<TRow> m_rows;
    std::exception_ptr m_failure;
    std::size_t m_workersDone = 0;
    std::vector<std::thread> m_threads;
};

TSettings ReadSettings(const TArguments& arguments, const std::filesystem::path& programFolder) {
    TSettings settings;
    settings.programFolder = programFolder;
    settings.request = ReadTaskRequest(arguments);
    settings.memoryBytes = ReadMemoryBytes(arguments);
    settings.wantsLog = WantsTaskLog(arguments, programFolder);
    settings.isDetailed = arguments.Has("--id");
    settings.isJson = arguments.Has("--json");
    settings.wantsShortest = arguments.Has("--shortest");
    settings.isDeterministic = arguments.Has("--deterministic");
    settings.jobs = static_cast<int>(arguments.Number("--jobs", 1, kMaxJobs).value_or(1));
    // Which worker gets a position, and so what its register has seen, differs from run to run.
    settings.request.clearRegister |= settings.isDeterministic;
    settings.request.mayRelaxByTime = !settings.isDeterministic;
    // The main line costs a search of its own, so a list is solved without it.
    settings.request.wantMainLine = settings.isDetailed || settings.isJson;
    return settings;
}

std::vector<TEpdRecord> ReadRecords(const TArguments& arguments) {
    const std::string& file = arguments.positionals[0];
    std::vector<TEpdRecord> records = ReadEpdFile(file);
    if (const auto id = arguments.Value("--id")) {
        std::erase_if(records, [&](const TEpdRecord& record) { return record.id != *id; });
        if (records.empty())
            throw ChessException(EMessage::kEpdNoSuchId, {file, *id});
    }
    return records;
}

}  // namespace

EExitCode RunEpd(const TCommandCall& call) {
    CConsole& console = call.console;
    TSettings settings = ReadSettings(call.arguments, call.optionsFile.parent_path());
    const std::vector<TEpdRecord> records = ReadRecords(call.arguments);
    settings.jobs = std::min(settings.jobs, static_cast<int>(records.size()));
    std::size_t idWidth = 0;
    bool needsNote = false;
    for (const TEpdRecord& record : records) {
        idWidth = std::max(idWidth, DisplayWidth(record.id));
        needsNote |= record.task.position.NeedsCastlingNote();
    }
    if (needsNote)
        console.Note(console.Text(EMessage::kCastlingNote));

    // Words that do not fit come to light before anything is solved.
    std::vector<std::unique_ptr<CTaskHeuristics>> heuristics;
    for (const TEpdRecord& record : records)
        heuristics.push_back(std::make_unique<CTaskHeuristics>(call.arguments,
                                                               record.task,
                                                               call.arguments.positionals[0] + ":" +
                                                                   std::to_string(record.line)));

    CatchInterrupts();
    int counts[3] = {};
    int reported = 0;
    bool isInterrupted = false;
    {
        CBatch batch(console, records, heuristics, settings);
        for (std::size_t i = 0; i < records.size(); ++i) {
            const std::optional<TRow> row = batch.Take(i);
            if (!row) {
                isInterrupted = true;
                continue;
            }
            ++reported;
            ++counts[static_cast<int>(row->comparison)];
            isInterrupted |= row->outcome.isInterrupted;
            console.Print(settings.isJson       ? JsonText(records[i], *row, settings)
                          : settings.isDetailed ? DetailedText(console, records[i], *row)
                                                : LineText(records[i], *row, settings, idWidth));
        }
    }
    if (!settings.isDetailed)
        console.Note(console.Text(EMessage::kEpdSummary,
                                  {std::to_string(reported),
                                   std::to_string(counts[0]),
                                   std::to_string(counts[1]),
                                   std::to_string(counts[2])}));
    if (isInterrupted)
        return kExitInterrupted;
    if (counts[static_cast<int>(EComparison::kDifferent)] > 0)
        return kExitNoMate;
    return counts[static_cast<int>(EComparison::kUndecided)] > 0 ? kExitUndecided : kExitDone;
}

}  // namespace quillmere

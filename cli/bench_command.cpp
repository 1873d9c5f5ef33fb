// quillmere bench: a fixed suite on one thread, and its signature.
//
// The signature is the total of nodes and a digest of ids, verdicts and keys. It is the same for
// every compiler and its settings; whoever changes the search sees in the nodes whether it does
// more or less, and in the digest whether it answers otherwise. It must not hang on the machine, so
// every position begins with an empty register, and the suites stay far below any usual limit.
#include "cli/bench_suites.h"
#include "cli/commands.h"
#include "cli/epd_file.h"
#include "cli/json.h"
#include "cli/report.h"
#include "cli/task_arguments.h"
#include "core/platform/interrupt.h"
#include "session/session_texts.h"

#include <fmt/format.h>

namespace quillmere {
namespace {

constexpr std::string_view kDefaultSuite = "main";

// FNV-1a, 64 bits.
class CDigest {
public:
    void Add(std::string_view text) {
        for (const char c : text)
            m_value = (m_value ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    }
    std::string Text() const { return fmt::format("{:016x}", m_value); }

private:
    u64 m_value = 0xcbf29ce484222325;
};

u64 PerSecond(u64 count, u64 milliseconds) {
    return count * 1000 / std::max<u64>(milliseconds, 1);
}

}  // namespace

EExitCode RunBench(const TCommandCall& call) {
    const TArguments& arguments = call.arguments;
    CConsole& console = call.console;
    const std::string name = arguments.Value("--suite").value_or(std::string(kDefaultSuite));
    if (BenchSuite(name).empty())
        throw CUsageException(EMessage::kUsageChoice, {"--suite", name, BenchSuiteNames()});
    const bool isJson = arguments.Has("--json");
    const bool isSignatureOnly = arguments.Has("--signature");
    const std::vector<TEpdRecord> records = ReadEpdText(BenchSuite(name), name + ".epd");

    CTaskRegister solved(ReadMemoryBytes(arguments), call.optionsFile.parent_path());

    CatchInterrupts();
    // Every first move is decided, so that the effort does not hang on where the key stands.
    TTaskRequest request;
    request.wantAllKeys = true;
    request.wantMainLine = false;
    request.solved = &solved;
    CDigest digest;
    u64 nodes = 0;
    u64 madeMoves = 0;
    u64 milliseconds = 0;
    for (const TEpdRecord& record : records) {
        const TTaskOutcome outcome =
            RunTask(record.task, request, ShowProgress(console, record.task));
        if (outcome.isInterrupted)
            return kExitInterrupted;
        const TSolveResult& result = outcome.result;
        std::string keys;
        for (const TMove key : result.keys) {
            keys += keys.empty() ? "" : ",";
            keys += WriteMove(record.task.position.board, record.task.position.IsBlackToMove(), key)
                        .uci;
        }
        digest.Add(fmt::format("{} {} {}\n", record.id, VerdictWord(result.verdict), keys));
        nodes += result.nodes;
        madeMoves += result.madeMoves;
        milliseconds += outcome.milliseconds;
        if (isJson && !isSignatureOnly)
            console.Print(JsonLine({{"schema", kSchema},
                                    {"id", record.id},
                                    {"moves", FullMovesOfTask(record.task)},
                                    {"verdict", VerdictWord(result.verdict)},
                                    {"keys", keys},
                                    {"nodes", result.nodes},
                                    {"madeMoves", result.madeMoves},
                                    {"ms", outcome.milliseconds}}));
        else if (!isSignatureOnly)
            console.Print(fmt::format("{:<24}  {:<8}  {:>3}  {:<12}  {:>12}  {:>8}\n",
                                      record.id,
                                      VerdictWord(result.verdict),
                                      FullMovesOfTask(record.task),
                                      keys.empty() ? "-" : keys,
                                      result.nodes,
                                      outcome.milliseconds));
    }
    if (isJson)
        console.Print(JsonLine({{"schema", kSchema},
                                {"suite", name},
                                {"nodes", nodes},
                                {"digest", digest.Text()},
                                {"madeMoves", madeMoves},
                                {"ms", milliseconds}}));
    else
        console.Print(
            console.Text(EMessage::kBenchSignature, {std::to_string(nodes), digest.Text()}) + "\n");
    console.Note(console.Text(EMessage::kBenchSpeed,
                              {SecondsText(milliseconds),
                               std::to_string(PerSecond(nodes, milliseconds)),
                               std::to_string(PerSecond(madeMoves, milliseconds))}));
    return kExitDone;
}

}  // namespace quillmere

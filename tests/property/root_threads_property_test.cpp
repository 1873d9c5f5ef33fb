// The number of threads over the first moves changes no answer, and a stop at any moment leaves a
// register that tells the truth. Run under ThreadSanitizer too.
#include "cli/bench_suites.h"
#include "cli/epd_file.h"
#include "cli/task.h"
#include "core/platform/thread.h"
#include "search/solve.h"
#include "tests/support/random.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

// Thread tests cost a sanitizer much; the whole run is for the release build.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// Verdict and keys, as text.
std::string AnswerOf(const TSolveResult& result) {
    std::string text = std::to_string(static_cast<int>(result.verdict)) +
                       (result.isComplete ? " complete" : " incomplete");
    for (const TMove key : result.keys)
        text += " " + std::to_string(key.from) + "-" + std::to_string(key.to) + "=" +
                std::to_string(key.Promotion());
    return text;
}

TSolveResult SolveTask(const TTask& task,
                       int threads,
                       TSearchContext& context,
                       bool wantAllKeys = true,
                       const TChessboard* heuristics = nullptr) {
    TSolveRequest request;
    request.halfMoves = task.halfMoves;
    request.wantAllKeys = wantAllKeys;
    request.wantMainLine = false;
    request.threads = threads;
    request.heuristics = heuristics;
    TSolveResult result;
    RunOnThreadWithStack(SolveStackBytes(task.halfMoves),
                         [&] { result = Solve(task.board, request, context); });
    return result;
}

std::string AnswerWith(const TTask& task, int threads, const TChessboard* heuristics = nullptr) {
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{64} << 20));
    TSearchContext context;
    context.tempRegister = &store;
    const std::string answer = AnswerOf(SolveTask(task, threads, context, true, heuristics));
    EXPECT_EQ(store.IncoherentElements(), 0u);
    return answer;
}

// A word without parameters.
class CWord {
public:
    explicit CWord(u32 heur) {
        InitBoard(m_node);
        m_node.m_searchContext = &m_context;
        m_node.m_threadContext = &m_thread;
        m_node.Heur = heur;
    }
    const TChessboard* Node() const { return &m_node; }

private:
    TSearchContext m_context;
    TThreadContext m_thread{2};
    TChessboard m_node{};
};

TEST(RootThreads, Threads_DoNotChangeTheAnswer) {
    for (const std::string& name : {std::string("short"), std::string("main")}) {
        if (kIsSanitized && name == "main")
            continue;
        for (const TEpdRecord& record : ReadEpdText(BenchSuite(name), name)) {
            const std::string expected = AnswerWith(record.task, 1);
            for (const int threads : {2, 4})
                EXPECT_EQ(AnswerWith(record.task, threads), expected) << record.id << threads;
        }
    }
}

TEST(RootThreads, Threads_DoNotChangeTheAnswerUnderHeuristics) {
    const CWord word(SH_KEEPKINGONTHEEDGE | SH_DONTLOSEANYFIGURES | SH_AREKINGSNEAR |
                     SH_SWEEPINGWHITEROOK | SH_DONTLETBLACKQUEENCHECKTWICE);
    for (const TEpdRecord& record : ReadEpdText(BenchSuite("short"), "short")) {
        const std::string expected = AnswerWith(record.task, 1);
        for (const int threads : {1, 2, 4})
            EXPECT_EQ(AnswerWith(record.task, threads, word.Node()), expected)
                << record.id << " " << threads;
    }
}

// Tasks of the suites that are long enough to be stopped within, and short enough to be solved often.
struct TStoppedTask {
    TTask task;
    std::string id;
    std::string answer;
    u64 nodes = 0;
};

std::vector<TStoppedTask> TasksToStop() {
    constexpr u64 kLeastNodes = 3'000;
    constexpr u64 kMostNodes = 30'000;
    std::vector<TStoppedTask> tasks;
    for (const TEpdRecord& record : ReadEpdText(BenchSuite("main"), "main")) {
        TSearchContext context;
        context.nodeLimit = kMostNodes;
        TSolveRequest request;
        request.halfMoves = record.task.halfMoves;
        request.wantAllKeys = true;
        request.wantMainLine = false;
        request.nodeLimit = kMostNodes;
        const TSolveResult result = Solve(record.task.board, request, context);
        if (result.isComplete && result.nodes >= kLeastNodes)
            tasks.push_back({record.task, record.id, AnswerOf(result), result.nodes});
    }
    return tasks;
}

// The search is stopped somewhere, then the same position is solved with the same register.
TEST(RootThreads, StopAtAnyMoment_LeavesARegisterOfTruth) {
    const int stops = kIsSanitized ? 30 : 1000;
    const std::vector<TStoppedTask> tasks = TasksToStop();
    ASSERT_GE(tasks.size(), 4u);
    const CWord word(SH_KEEPKINGONTHEEDGE | SH_DONTLOSEANYFIGURES);
    test::CRandom random(20261121);
    int stopped = 0;
    for (int i = 0; i < stops; ++i) {
        const TStoppedTask& task = tasks[static_cast<std::size_t>(i) % tasks.size()];
        TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{16} << 20));
        TSearchContext context;
        context.tempRegister = &store;
        context.registerRoot = 5;
        const int threads = 1 + random.Below(4);
        // Nodes are told in lots; the questions behind them spread the moments between two lots.
        const auto nodes = static_cast<u64>(random.Below(static_cast<int>(task.nodes / 2)));
        int questions = random.Below(20'000);
        const TChessboard* heuristics = random.Chance(50) ? word.Node() : nullptr;
        std::atomic<bool> isDone{false};
        std::thread stopper([&] {
            while (!isDone.load() && (context.nodeCount.load() < nodes || --questions > 0)) {
            }
            SetStop(context, kStopAll);
        });
        const TSolveResult interrupted = SolveTask(task.task, threads, context, true, heuristics);
        isDone.store(true);
        stopper.join();
        stopped += interrupted.isComplete ? 0 : 1;
        SetStop(context, kStopNone);
        TSolveRequest request;
        request.halfMoves = task.task.halfMoves;
        request.wantAllKeys = true;
        request.wantMainLine = false;
        request.clearRegister = false;
        ASSERT_EQ(AnswerOf(Solve(task.task.board, request, context)), task.answer)
            << task.id << ", stop " << i;
        ASSERT_EQ(store.IncoherentElements(), 0u);
    }
    EXPECT_GT(stopped, 0) << "the stops must fall into the search";
    RecordProperty("stopped", stopped);
}

}  // namespace
}  // namespace quillmere

// Exhaustive proofs: that a composition in n moves has no mate in n - 1, and that its key is the
// only one. Nothing is cut by an assumption; the counters tell made moves a proof and a second.
#include "bench/bench_positions.h"
#include "search/solve.h"

#include <benchmark/benchmark.h>
#include <string>

namespace quillmere::bench {
namespace {

void Prove(benchmark::State& state, const TClassic& classic, int fullMoves, bool isMate) {
    const u16 halfMoves = static_cast<u16>(HalfMovesOfMate(fullMoves));
    CBenchRoot root(classic.fen, halfMoves);
    u64 made = 0;
    u64 nodes = 0;
    for (auto _ : state) {
        TSearchContext context;
        TSolveRequest request;
        request.halfMoves = halfMoves;
        request.wantAllKeys = true;
        request.wantMainLine = false;
        const TSolveResult result = Solve(root.Root(), request, context);
        const bool isAsTold = isMate ? result.verdict == ESolveVerdict::kProvedMate
                                     : result.verdict == ESolveVerdict::kProvedNoMate;
        if (!isAsTold || !result.isComplete)
            state.SkipWithError("wrong verdict");
        made = result.madeMoves;
        nodes = result.nodes;
    }
    state.counters["made"] = static_cast<double>(made);
    state.counters["nodes"] = static_cast<double>(nodes);
    state.counters["made/s"] =
        benchmark::Counter(static_cast<double>(made) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate);
}

const int kRegistered = [] {
    for (const int length : {4, 5}) {
        for (const TClassic& classic : ClassicsOfLength(length)) {
            const std::string name = classic.author + " " + classic.year + ", ";
            benchmark::RegisterBenchmark(
                (name + "no mate in " + std::to_string(length - 1)).c_str(),
                [classic, length](benchmark::State& state) {
                    Prove(state, classic, length - 1, false);
                })
                ->Unit(benchmark::kMillisecond);
            benchmark::RegisterBenchmark(
                (name + "all keys in " + std::to_string(length)).c_str(),
                [classic, length](benchmark::State& state) { Prove(state, classic, length, true); })
                ->Unit(benchmark::kMillisecond);
        }
    }
    return 0;
}();

}  // namespace
}  // namespace quillmere::bench

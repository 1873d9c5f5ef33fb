// The board's hot routines: made moves, the mate test, mate in one. Each run asserts its result.
#include "bench/bench_positions.h"
#include "core/direct_mates.h"
#include "core/move_generation.h"
#include "core/perft.h"

#include <benchmark/benchmark.h>
#include <string>

namespace quillmere::bench {
namespace {

constexpr const char* kStart = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";
constexpr const char* kManyMoves = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R";

// Full bookkeeping make-moves, no bulk counting; the rate is that of made moves, illegal ones
// included.
void BM_Perft(benchmark::State& state, const char* fen, int depth, u64 expected) {
    CBenchRoot root(fen, static_cast<u16>(depth + 1));
    SetupPerftRoot(root.Root(), true, depth);
    for (auto _ : state) {
        if (Perft(root.Root(), depth) != expected)
            state.SkipWithError("wrong count");
    }
    state.counters["made"] = benchmark::Counter(static_cast<double>(root.Thread().madeMoves),
                                                benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(BM_Perft, Start, kStart, 5, 4'865'609)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Perft, ManyMoves, kManyMoves, 4, 4'085'603)->Unit(benchmark::kMillisecond);

constexpr int kSample = 4096;

void BM_BlackHasEvasion(benchmark::State& state) {
    CSearchNodes sample(
        static_cast<int>(state.range(0)), CSearchNodes::EKind::kBlackInCheck, kSample);
    int evasions = -1;
    for (auto _ : state) {
        int found = 0;
        for (TChessboard* node : sample.Nodes())
            found += BlackHasEvasion(*node) ? 1 : 0;
        if (evasions >= 0 && found != evasions)
            state.SkipWithError("the answer changed");
        evasions = found;
    }
    state.SetItemsProcessed(state.iterations() * kSample);
    state.counters["evasions"] = evasions;
}
BENCHMARK(BM_BlackHasEvasion)->Arg(3)->Arg(4)->Arg(5)->Unit(benchmark::kMicrosecond);

void BM_IsMateInOne(benchmark::State& state) {
    CSearchNodes sample(
        static_cast<int>(state.range(0)), CSearchNodes::EKind::kWhiteLastMove, kSample);
    int mates = -1;
    for (auto _ : state) {
        int found = 0;
        for (TChessboard* node : sample.Nodes())
            found += IsMateInOne(*node) ? 1 : 0;
        if (mates >= 0 && found != mates)
            state.SkipWithError("the answer changed");
        mates = found;
    }
    state.SetItemsProcessed(state.iterations() * kSample);
    state.counters["mates"] = mates;
}
BENCHMARK(BM_IsMateInOne)->Arg(3)->Arg(4)->Arg(5)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmere::bench

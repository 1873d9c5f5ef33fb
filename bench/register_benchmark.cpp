// The register of solved positions: one look-up, and how even the prescribed hash is.
//
// The time is that of one look-up, reading the key and writing it into a node included. All keys are
// found. Counters: "longest" is the number of elements of the longest bucket, "spread" the variance of
// those numbers against that of an ideal hash, "sorted" the part of the buckets that are sorted.
#include "bench/bench_positions.h"
#include "bench/register_positions.h"
#include "registers/aggregated_register.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace quillmere::bench {
namespace {

constexpr u64 kGigabyte = u64{1} << 30;
constexpr u64 kLimitBytes = 16 * kGigabyte;
constexpr u16 kDepth = 5;

enum class EOrder {
    kAgain,     // a few keys again and again: the work alone, nothing waits for memory
    kWalk,      // all keys in the order in which they came: as a search asks
    kShuffled,  // all keys at random: every look-up finds its bucket out of the nearer caches
};

// A register that holds the first `elements` positions of the walk; the last one made is kept.
TAggregatedTemporaryChessboardRegister& FilledRegister(std::size_t elements, u32 buckets) {
    static std::unique_ptr<TAggregatedTemporaryChessboardRegister> filled;
    static std::size_t filledElements = 0;
    static u32 filledBuckets = 0;
    if (filled != nullptr && filledElements == elements && filledBuckets == buckets)
        return *filled;
    filled.reset();
    const auto& items = SolvePositions(elements);
    filled = std::make_unique<TAggregatedTemporaryChessboardRegister>(
        RegisterSettingsWithin(kLimitBytes));
    filled->Resize(buckets, true);
    for (std::size_t i = 0; i < elements; ++i)
        filled->InsertLoaded(kDepth, items[i], i % 4 == 0);
    filledElements = elements;
    filledBuckets = buckets;
    return *filled;
}

struct TBuckets {
    u32 longest = 0;
    double spread = 0;
    double sorted = 0;
};

TBuckets CountBuckets(const TRegisterCombinedMap& table) {
    TBuckets result;
    double sum = 0;
    double squares = 0;
    for (u32 i = 0; i < table.BucketCount(); ++i) {
        const TRegisterCombinedMap::TView view = table.View(i);
        result.longest = std::max(result.longest, view.count);
        result.sorted += view.isSorted ? 1 : 0;
        sum += view.count;
        squares += double{1} * view.count * view.count;
    }
    const double mean = sum / table.BucketCount();
    const double ideal = mean * (1 - 1.0 / table.BucketCount());
    result.spread = (squares / table.BucketCount() - mean * mean) / ideal;
    return result;
}

// One register for all threads of a case; each begins at another place of the keys.
struct TAsked {
    const TAggregatedTemporaryChessboardRegister* reg = nullptr;
    std::vector<TChessboardRegisterItem> keys;
};
TAsked g_asked;

void SetUpAsked(std::size_t elements, u32 buckets, EOrder order) {
    constexpr std::size_t kFew = 64;
    g_asked.reg = &FilledRegister(elements, buckets);
    const auto& items = SolvePositions(elements);
    g_asked.keys.assign(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(elements));
    std::mt19937_64 random(7);
    if (order != EOrder::kWalk)
        std::shuffle(g_asked.keys.begin(), g_asked.keys.end(), random);
    if (order == EOrder::kAgain)
        g_asked.keys.resize(std::min(kFew, elements));
}

void BM_LookUp(benchmark::State& state, std::size_t elements, u32 buckets, EOrder order) {
    if (state.thread_index() == 0)
        SetUpAsked(elements, buckets, order);
    TChessboard node;
    InitBoard(node);
    std::size_t place = 0;
    bool isStarted = false;
    u32 unknown = 0;
    for (auto _ : state) {
        // All threads wait for the set-up of the first one before they come here.
        if (!isStarted) {
            place = g_asked.keys.size() / 2 * static_cast<std::size_t>(state.thread_index());
            isStarted = true;
        }
        std::copy(std::begin(g_asked.keys[place].bytes),
                  std::end(g_asked.keys[place].bytes),
                  node.m_board);
        unknown += g_asked.reg->FindInRegister(kDepth, node, 0, 0) == kNothingKnown;
        if (++place == g_asked.keys.size())
            place = 0;
    }
    if (unknown != 0)
        state.SkipWithError("a verdict was lost");
    if (state.thread_index() == 0) {
        const TBuckets counted = CountBuckets(g_asked.reg->Table());
        state.counters["longest"] = counted.longest;
        state.counters["spread"] = counted.spread;
        state.counters["sorted"] = counted.sorted / buckets;
    }
}

// A sweep that finds nothing shallow enough; a register full of deep verdicts does 252 of them.
void BM_SweepInVain(benchmark::State& state) {
    constexpr std::size_t kElements = 1'000'000;
    auto& filled = FilledRegister(kElements, kBucketsLarge);
    u32 removed = 0;
    for (auto _ : state)
        removed += filled.RemoveNMovers(kDepth - 1);
    if (removed != 0)
        state.SkipWithError("a verdict was lost");
}
BENCHMARK(BM_SweepInVain)->Unit(benchmark::kMillisecond);

void BM_Hash(benchmark::State& state) {
    constexpr std::size_t kKeys = 4'096;
    const auto& items = SolvePositions(kKeys);
    std::size_t place = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Hash(items[place]));
        place = (place + 1) % kKeys;
    }
}
BENCHMARK(BM_Hash);

// How even the hash is within one task, whose positions have much in common: elements, and longest
// bucket and spread in the small and in the large table. The time is that of the inserts.
void BM_Spread(benchmark::State& state, const std::string& fen) {
    constexpr std::size_t kMost = 500'000;
    const auto items = TaskPositions(fen, kMost);
    for (auto _ : state) {
        for (const u32 buckets : {kBucketsSmall, kBucketsLarge}) {
            TAggregatedTemporaryChessboardRegister filled(RegisterSettingsWithin(kLimitBytes));
            filled.Resize(buckets, true);
            for (const TChessboardRegisterItem& item : items)
                filled.InsertLoaded(kDepth, item, true);
            const TBuckets counted = CountBuckets(filled.Table());
            const std::string size = std::to_string(buckets);
            state.counters["longest" + size] = counted.longest;
            state.counters["spread" + size] = counted.spread;
        }
    }
    state.counters["elements"] = static_cast<double>(items.size());
}

const int kSpreadRegistered = [] {
    for (const int length : {4, 5, 6}) {
        for (const TClassic& classic : ClassicsOfLength(length)) {
            const std::string name = "BM_Spread/" + classic.author + " " + classic.year;
            benchmark::RegisterBenchmark(
                name.c_str(),
                [fen = classic.fen](benchmark::State& state) { BM_Spread(state, fen); })
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return 0;
}();

const int kRegistered = [] {
    struct TOrder {
        EOrder order;
        const char* name;
    };
    constexpr std::size_t kMillion = 1'000'000;
    constexpr std::size_t kLarge = 10 * kMillion;
    for (const std::size_t elements : {kMillion / 10, kMillion, kLarge}) {
        for (const u32 buckets : {kBucketsSmall, kBucketsLarge}) {
            for (const TOrder order : {TOrder{EOrder::kAgain, "warm"},
                                       TOrder{EOrder::kWalk, "walk"},
                                       TOrder{EOrder::kShuffled, "cold"}}) {
                std::string name = elements == kLarge ? "BM_LookUpLarge/" : "BM_LookUp/";
                name += std::to_string(elements / 1'000) + "k/" + std::to_string(buckets) + "/" +
                        order.name;
                benchmark::RegisterBenchmark(name.c_str(),
                                             [=](benchmark::State& state) {
                                                 BM_LookUp(state, elements, buckets, order.order);
                                             })
                    ->Threads(1)
                    ->Threads(2);
            }
        }
    }
    return 0;
}();

}  // namespace
}  // namespace quillmere::bench

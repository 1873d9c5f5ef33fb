// Reading and writing a collection of 100,000 problems, a tenth of them with tags, a variant and sort
// indications.
//
// Counters: "fileMB" is the size of the text, "residentMB" what the process grew by with the
// collection in memory (the first run tells it; later ones reuse what was given back).
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace quillmere::bench {
namespace {

constexpr int kProblems = 100000;
constexpr double kMegabyte = 1e6;
constexpr double kPageBytes = 4096;

const char* const kPositions[] = {
    "8/8/8/8/8/3K4/8/k7",
    "8/8/8/3k4/8/3K4/4Q3/8",
    "r1bqkbnr/pppp1ppp/2n5/4p2Q/2B1P3/8/PPPP1PPP/RNB1K1NR",
    "7k/5Q2/8/5N2/8/8/8/K7",
    "4k3/8/8/8/8/8/4R3/R3K3",
};

std::string ProblemText(int number) {
    const std::string fen = kPositions[static_cast<std::size_t>(number) % std::size(kPositions)];
    const std::string name = std::to_string(number);
    if (number % 10 != 0)
        return name + " #" + std::to_string(number % 9 + 2) + "\n{\n\tDescription: Author " + name +
               ", Magazine, 1950\n\tFEN: " + fen + "\n\tAnswer: Qe2-e5\n}\n";
    return name +
           " #3 NoMirror AllSolutions THREADS 4^2 SAFEMODE Requires Qq\n//#TAGS\n"
           "//#sea snake\n//!VARIANTS\n//!{Main variant} 1. Kd2-d3[the key] Ka8-a7\n"
           "//!ENDVARIANTS\n//@SortIndications: 1.Kd3; ~Qa1-a2\n{\n\tDescription: Study " +
           name + " for mate, zażółć\n\tFEN: " + fen + "\n\tAnswer: Kd2-d3, 0-0\n}\n";
}

const std::string& FileText() {
    static const std::string text = [] {
        std::string all = "UTF-8\n\n";
        for (int number = 1; number <= kProblems; ++number)
            all += ProblemText(number);
        return all;
    }();
    return text;
}

// Resident memory of this process; 0 where the system does not tell it so.
double ResidentBytes() {
    double pages = 0;
    double resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * kPageBytes;
}

void BM_ReadProblems(benchmark::State& state) {
    const std::string& text = FileText();
    double growth = 0;
    for (auto _ : state) {
        const double before = ResidentBytes();
        auto collection = std::make_unique<TProblemCollection>();
        ReadProblems(text, *collection, {});
        growth = std::max(growth, ResidentBytes() - before);
        if (collection->problems.size() != kProblems)
            state.SkipWithError("problems are missing");
    }
    state.counters["fileMB"] = static_cast<double>(text.size()) / kMegabyte;
    state.counters["residentMB"] = growth / kMegabyte;
}
BENCHMARK(BM_ReadProblems)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_WriteProblems(benchmark::State& state) {
    TProblemCollection collection;
    ReadProblems(FileText(), collection, {});
    for (auto _ : state) {
        const std::string text = WriteProblems(collection);
        if (text.size() < FileText().size() / 2)
            state.SkipWithError("text is missing");
    }
}
BENCHMARK(BM_WriteProblems)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace quillmere::bench

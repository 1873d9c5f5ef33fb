// Runs the benchmarks. Those with "Large" in their names take minutes or many gigabytes, and run only
// when a filter asks for them.
#include <benchmark/benchmark.h>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<char*> arguments(argv, argv + argc);
    std::string notLarge = "--benchmark_filter=-Large";
    // The last one holds, so that a filter of the user's own does.
    arguments.insert(arguments.begin() + 1, notLarge.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

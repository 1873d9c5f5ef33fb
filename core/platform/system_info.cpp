#include "core/platform/system_info.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

#if defined(__linux__)
#include <sched.h>
#include <unistd.h>
#else
#error "The memory and the processors of this system have no reader yet."
#endif

namespace quillmere {
namespace {

constexpr const char* kProcessorFolder = "/sys/devices/system/cpu";
// Far above any machine; the mask is enlarged until the kernel's fits into it.
constexpr int kMostProcessors = 1 << 20;

std::optional<i64> ReadNumberFile(const std::filesystem::path& file) {
    std::ifstream in(file);
    i64 number = 0;
    if (in >> number) {
        return number;
    }
    return std::nullopt;
}

// Numbers of the processors in the affinity mask of the process; empty if it cannot be had.
std::vector<int> AllowedProcessors() {
    std::vector<int> processors;
    for (int size = CPU_SETSIZE; size <= kMostProcessors; size *= 2) {
        cpu_set_t* set = CPU_ALLOC(static_cast<std::size_t>(size));
        if (set == nullptr) {
            break;
        }
        const std::size_t bytes = CPU_ALLOC_SIZE(static_cast<std::size_t>(size));
        CPU_ZERO_S(bytes, set);
        const bool isRead = sched_getaffinity(0, bytes, set) == 0;
        for (int i = 0; isRead && i < size; ++i) {
            if (CPU_ISSET_S(static_cast<std::size_t>(i), bytes, set)) {
                processors.push_back(i);
            }
        }
        CPU_FREE(set);
        if (isRead) {
            break;
        }
    }
    return processors;
}

}  // namespace

int CountPhysicalCores(const std::filesystem::path& folder, const std::vector<int>& processors) {
    std::set<std::pair<i64, i64>> cores;
    int unknown = 0;
    for (const int processor : processors) {
        const auto topology = folder / ("cpu" + std::to_string(processor)) / "topology";
        const auto package = ReadNumberFile(topology / "physical_package_id");
        const auto core = ReadNumberFile(topology / "core_id");
        if (package && core) {
            cores.emplace(*package, *core);
        } else {
            ++unknown;
        }
    }
    return static_cast<int>(cores.size()) + unknown;
}

TSystemInfo ReadSystemInfo() {
    TSystemInfo info;
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageBytes > 0) {
        info.physicalMemoryBytes = static_cast<u64>(pages) * static_cast<u64>(pageBytes);
    }
    const std::vector<int> processors = AllowedProcessors();
    if (processors.empty()) {
        info.logicalProcessors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
        info.physicalCores = info.logicalProcessors;
    } else {
        info.logicalProcessors = static_cast<int>(processors.size());
        info.physicalCores = CountPhysicalCores(kProcessorFolder, processors);
    }
    return info;
}

}  // namespace quillmere

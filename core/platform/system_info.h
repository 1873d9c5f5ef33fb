// Memory and processors of the machine, as far as this process may use them.
//
// A plain record, so that a test or a front can put its own figures in its place.
#pragma once

#include "core/types.h"

#include <filesystem>
#include <vector>

namespace quillmere {

struct TSystemInfo {
    u64 physicalMemoryBytes = 0;  // all of the machine's, free or not
    int logicalProcessors = 1;    // those that the affinity mask of the process allows
    int physicalCores = 1;        // cores that those processors belong to
};

TSystemInfo ReadSystemInfo();

// Number of distinct cores among the processors, told by the files
// cpu<N>/topology/{physical_package_id,core_id} in `folder`. A processor of which nothing is told
// counts as a core of its own.
int CountPhysicalCores(const std::filesystem::path& folder, const std::vector<int>& processors);

}  // namespace quillmere

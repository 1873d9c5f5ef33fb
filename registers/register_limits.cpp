#include "registers/register_limits.h"

#include "registers/combined_map.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace quillmere {
namespace {

constexpr double kElementSpaceRatio = 0.73;
// A bucket word and a first container of eight elements.
constexpr u64 kFilledBucketBytes = 8 + 8 + 8 * sizeof(TRegisterElement) + kBlockOverheadBytes;
// Below it, tables are so small that empty places in the containers of sparse tables would be the
// larger part of what they use.
constexpr u64 kSmallLimitBytes = u64{64} << 20;
constexpr u32 kSmallFirstCapacity = 2;

}  // namespace

u64 DefaultRegisterBytes(const TOptions& options, const TSystemInfo& machine) {
    return std::min(machine.physicalMemoryBytes, options.tempRegLimitMegabytes << 20);
}

u64 ElementSpaceBytes(u64 limitBytes) {
    return static_cast<u64>(static_cast<double>(limitBytes) * kElementSpaceRatio);
}

u32 ElementLimitOf(u64 limitBytes) {
    constexpr u64 kMost = std::numeric_limits<u32>::max();
    return static_cast<u32>(std::min(ElementSpaceBytes(limitBytes) / kElementShareBytes, kMost));
}

u32 BucketsWithin(u32 nBuckets, u64 limitBytes) {
    nBuckets = std::bit_floor(std::max(nBuckets, 1U));
    while (nBuckets > 1 && nBuckets * kFilledBucketBytes > limitBytes / 2)
        nBuckets /= 2;
    return nBuckets;
}

u32 FirstLinearCapacity(u64 limitBytes) {
    return limitBytes < kSmallLimitBytes ? kSmallFirstCapacity : kLinearCapacity;
}

}  // namespace quillmere

// How much a register may hold, as functions of its memory limit.
//
// Two limits hold side by side: a number of elements, which is what the design reckons with, and
// the true bytes (registers/register_memory.h). Reaching either means full.
#pragma once

#include "core/platform/system_info.h"
#include "core/types.h"
#include "session/options.h"

namespace quillmere {

// Buckets of the hash tables
constexpr u32 kBucketsSmall = 16'384;
constexpr u32 kBucketsLarge = 524'288;
// Roots of fewer half-moves than this use kBucketsSmall.
constexpr u16 kLargeRootHalfMoves = 15;

constexpr u32 BucketsOfRoot(u16 rootHalfMoves) {
    return rootHalfMoves < kLargeRootHalfMoves ? kBucketsSmall : kBucketsLarge;
}

// An element with its share of containers.
constexpr u64 kElementShareBytes = 96;

// The limit that the options give: the megabytes of MaxMemRatioForTempReg, but never more than the
// machine has. Options that were never read give 0.
u64 DefaultRegisterBytes(const TOptions& options, const TSystemInfo& machine);

// 73 % of the limit, which is for elements, and that in elements. Never above 32 bits.
u64 ElementSpaceBytes(u64 limitBytes);
u32 ElementLimitOf(u64 limitBytes);

// Under a small limit a table takes fewer buckets than asked for: no more than would fill half of
// the limit with a first container each. Always a power of two, at least 1.
u32 BucketsWithin(u32 nBuckets, u64 limitBytes);

// Elements for which a linear bucket first reserves room: all eight, or two under a small limit.
u32 FirstLinearCapacity(u64 limitBytes);

}  // namespace quillmere

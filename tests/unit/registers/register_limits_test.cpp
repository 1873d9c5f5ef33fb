#include "registers/combined_map.h"
#include "registers/register_limits.h"

#include <bit>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr u64 kMegabyte = u64{1} << 20;

TEST(RegisterLimits, DefaultBytes_AreTheLesserOfOptionAndMachine) {
    TSystemInfo machine;
    machine.physicalMemoryBytes = 1000 * kMegabyte;
    TOptions options;
    options.MaxMemRatioForTempReg = 20;
    UpdateMemoryLimits(options, machine);
    EXPECT_EQ(DefaultRegisterBytes(options, machine), 200 * kMegabyte);
    options.tempRegLimitMegabytes = 5000;
    EXPECT_EQ(DefaultRegisterBytes(options, machine), 1000 * kMegabyte);
    options.MaxMemRatioForTempReg = 0;
    UpdateMemoryLimits(options, machine);
    EXPECT_EQ(DefaultRegisterBytes(options, machine), 0U);
}

TEST(RegisterLimits, Elements_AreNinetySixBytesOfSeventyThreePercent) {
    EXPECT_EQ(ElementSpaceBytes(100 * kMegabyte), 76'546'048U);
    EXPECT_EQ(ElementLimitOf(100 * kMegabyte), 797'354U);
    EXPECT_EQ(ElementSpaceBytes(1), 0U);
    EXPECT_EQ(ElementLimitOf(0), 0U);
}

TEST(RegisterLimits, Elements_StayWithin32Bits) {
    EXPECT_EQ(ElementLimitOf(u64{1} << 50), 0xffffffffU);
}

TEST(RegisterLimits, Buckets_FollowTheLengthOfTheRoot) {
    EXPECT_EQ(BucketsOfRoot(1), 16'384U);
    EXPECT_EQ(BucketsOfRoot(14), 16'384U);
    EXPECT_EQ(BucketsOfRoot(15), 524'288U);
    EXPECT_EQ(BucketsOfRoot(599), 524'288U);
}

TEST(RegisterLimits, Buckets_AreFewerUnderASmallLimit) {
    EXPECT_EQ(BucketsWithin(kBucketsLarge, 4096 * kMegabyte), kBucketsLarge);
    EXPECT_EQ(BucketsWithin(kBucketsSmall, 4096 * kMegabyte), kBucketsSmall);
    EXPECT_EQ(BucketsWithin(kBucketsLarge, 0), 1U);
    EXPECT_EQ(BucketsWithin(1, 0), 1U);
    for (u64 megabytes = 1; megabytes < 1024; megabytes *= 2) {
        const u32 buckets = BucketsWithin(kBucketsLarge, megabytes * kMegabyte);
        EXPECT_TRUE(std::has_single_bit(buckets)) << megabytes;
        EXPECT_LE(buckets * 8 * (sizeof(TRegisterElement) + 1), megabytes * kMegabyte / 2);
        EXPECT_GE(buckets, 256U) << megabytes;
    }
}

// The bits of the hash are cut by a mask, which no other number gives.
TEST(RegisterLimits, Buckets_AreAlwaysAPowerOfTwo) {
    EXPECT_EQ(BucketsWithin(0, kMegabyte), 1U);
    EXPECT_EQ(BucketsWithin(3, 4096 * kMegabyte), 2U);
    EXPECT_EQ(BucketsWithin(1'000, 4096 * kMegabyte), 512U);
}

TEST(RegisterLimits, FirstCapacity_IsSmallerUnderASmallLimit) {
    EXPECT_EQ(FirstLinearCapacity(1024 * kMegabyte), kLinearCapacity);
    EXPECT_EQ(FirstLinearCapacity(64 * kMegabyte), kLinearCapacity);
    EXPECT_EQ(FirstLinearCapacity(64 * kMegabyte - 1), 2U);
    EXPECT_EQ(FirstLinearCapacity(0), 2U);
}

}  // namespace
}  // namespace quillmere

#include "core/platform/system_info.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>

namespace quillmere {
namespace {

void WriteTopology(const std::filesystem::path& folder, int processor, int package, int core) {
    const auto topology = folder / ("cpu" + std::to_string(processor)) / "topology";
    std::filesystem::create_directories(topology);
    test::WriteFile(topology / "physical_package_id", std::to_string(package) + "\n");
    test::WriteFile(topology / "core_id", std::to_string(core) + "\n");
}

TEST(CountPhysicalCores, SiblingsOfACore_CountOnce) {
    const test::CTemporaryFolder folder;
    WriteTopology(folder.Path(), 0, 0, 0);
    WriteTopology(folder.Path(), 1, 0, 1);
    WriteTopology(folder.Path(), 2, 0, 0);
    WriteTopology(folder.Path(), 3, 0, 1);
    EXPECT_EQ(CountPhysicalCores(folder.Path(), {0, 1, 2, 3}), 2);
}

TEST(CountPhysicalCores, SameNumberInAnotherPackage_IsAnotherCore) {
    const test::CTemporaryFolder folder;
    WriteTopology(folder.Path(), 0, 0, 0);
    WriteTopology(folder.Path(), 1, 1, 0);
    EXPECT_EQ(CountPhysicalCores(folder.Path(), {0, 1}), 2);
}

TEST(CountPhysicalCores, ProcessorsNotAllowed_DoNotCount) {
    const test::CTemporaryFolder folder;
    for (int i = 0; i < 8; ++i) {
        WriteTopology(folder.Path(), i, 0, i);
    }
    EXPECT_EQ(CountPhysicalCores(folder.Path(), {2, 5}), 2);
}

TEST(CountPhysicalCores, UnknownProcessors_AreCoresOfTheirOwn) {
    const test::CTemporaryFolder folder;
    WriteTopology(folder.Path(), 0, 0, 0);
    EXPECT_EQ(CountPhysicalCores(folder.Path(), {0, 1, 2}), 3);
    EXPECT_EQ(CountPhysicalCores(folder.Path() / "missing", {0, 1}), 2);
}

TEST(ReadSystemInfo, ThisMachine_HasMemoryAndProcessors) {
    const TSystemInfo info = ReadSystemInfo();
    EXPECT_GT(info.physicalMemoryBytes, u64{16} << 20);
    EXPECT_GE(info.logicalProcessors, 1);
    EXPECT_GE(info.physicalCores, 1);
    EXPECT_LE(info.physicalCores, info.logicalProcessors);
}

TEST(ReadSystemInfo, AffinityMask_IsRespected) {
    cpu_set_t before;
    ASSERT_EQ(sched_getaffinity(0, sizeof(before), &before), 0);
    int first = 0;
    while (!CPU_ISSET(first, &before)) {
        ++first;
    }
    cpu_set_t single;
    CPU_ZERO(&single);
    CPU_SET(first, &single);
    ASSERT_EQ(sched_setaffinity(0, sizeof(single), &single), 0);
    const TSystemInfo info = ReadSystemInfo();
    ASSERT_EQ(sched_setaffinity(0, sizeof(before), &before), 0);
    EXPECT_EQ(info.logicalProcessors, 1);
    EXPECT_EQ(info.physicalCores, 1);
    EXPECT_EQ(ReadSystemInfo().logicalProcessors, CPU_COUNT(&before));
}

}  // namespace
}  // namespace quillmere

#include "core/relaxation_times.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

TEST(RelaxationTimes, FirstToArrive_FixesTheTime) {
    CRelaxationTimes times;
    times.Start(1000);
    EXPECT_EQ(times.Elapsed(3, 1500), 500U);
    EXPECT_EQ(times.Elapsed(3, 9000), 500U);
    EXPECT_EQ(times.Elapsed(255, 9000), 8000U);
    times.Start(9000);
    EXPECT_EQ(times.Elapsed(3, 9001), 1U);
}

TEST(RelaxationTimes, Restore_ForgetsWhatCameAfterSave) {
    CRelaxationTimes times;
    times.Start(0);
    times.Elapsed(0, 10);
    const auto kept = times.Save();
    times.Elapsed(1, 20);
    times.Restore(kept);
    EXPECT_EQ(times.Elapsed(0, 99), 10U);
    EXPECT_EQ(times.Elapsed(1, 99), 99U);
}

TEST(RelaxationTimes, ManyThreads_ReadOneTime) {
    constexpr int kThreads = 8;
    constexpr int kSlots = 256;
    CRelaxationTimes times;
    times.Start(0);
    std::vector<std::vector<u64>> seen(kThreads);
    {
        std::vector<std::jthread> threads;
        for (int id = 0; id < kThreads; ++id) {
            threads.emplace_back([&times, &mine = seen[static_cast<std::size_t>(id)], id] {
                for (int slot = 0; slot < kSlots; ++slot)
                    mine.push_back(times.Elapsed(static_cast<u8>(slot), static_cast<u64>(id) + 1));
            });
        }
    }
    for (const auto& mine : seen)
        EXPECT_EQ(mine, seen.front());
}

}  // namespace
}  // namespace quillmere

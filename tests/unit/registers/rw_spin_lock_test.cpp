#include "registers/rw_spin_lock.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

// What another thread sees of the lock at this moment.
bool IsHeldByOther(const TRWSpinLock& lock) {
    bool isHeld = true;
    std::thread([&] { isHeld = lock.IsHeldByThisThread(); }).join();
    return isHeld;
}

TEST(RWSpinLock, ExclusiveHolder_TakesItAgainAndIsFreeAfterAsManyReleases) {
    TRWSpinLock lock;
    lock.LockExclusive();
    lock.LockExclusive();
    lock.LockExclusive();
    lock.UnlockExclusive();
    EXPECT_TRUE(lock.IsHeldByThisThread());
    lock.UnlockExclusive();
    EXPECT_TRUE(lock.IsHeldByThisThread());
    lock.UnlockExclusive();
    EXPECT_FALSE(lock.IsHeldByThisThread());
    // Another thread gets it now; a hold too many would make this hang.
    std::thread([&] {
        const CExclusiveHold hold(lock);
        EXPECT_TRUE(lock.IsHeldByThisThread());
    }).join();
}

TEST(RWSpinLock, SharedRequestOfExclusiveHolder_Passes) {
    TRWSpinLock lock;
    const CExclusiveHold hold(lock);
    {
        const CSharedHold shared(lock);
        EXPECT_TRUE(lock.IsHeldByThisThread());
    }
    EXPECT_TRUE(lock.IsHeldByThisThread());
}

TEST(RWSpinLock, ExclusiveRequestOfExclusiveHolder_PassesInsideOfItsSharedOne) {
    TRWSpinLock lock;
    const CExclusiveHold outer(lock);
    const CSharedHold shared(lock);
    const CExclusiveHold inner(lock);
    EXPECT_TRUE(lock.IsHeldByThisThread());
}

TEST(RWSpinLock, Holder_IsOneThreadOnly) {
    TRWSpinLock lock;
    EXPECT_FALSE(lock.IsHeldByThisThread());
    const CExclusiveHold hold(lock);
    EXPECT_TRUE(lock.IsHeldByThisThread());
    EXPECT_FALSE(IsHeldByOther(lock));
}

TEST(RWSpinLock, SharedHolds_GoSideBySideOnTwoThreads) {
    TRWSpinLock lock;
    const CSharedHold hold(lock);
    EXPECT_FALSE(lock.IsHeldByThisThread());
    bool wasTaken = false;
    std::thread([&] {
        const CSharedHold other(lock);
        wasTaken = true;
    }).join();
    EXPECT_TRUE(wasTaken);
}

TEST(RWSpinLock, ThreadsThatWrite_ExcludeEachOther) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 5'000;
    TRWSpinLock lock;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                const CExclusiveHold hold(lock);
                const CExclusiveHold again(lock);
                ++count;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, kThreads * kRounds);
}

TEST(RWSpinLock, ThreadsThatRead_NeverSeeAHalfWrite) {
    constexpr int kRounds = 5'000;
    TRWSpinLock lock;
    int first = 0;
    int second = 0;
    int torn = 0;
    std::thread writer([&] {
        for (int round = 0; round < kRounds; ++round) {
            const CExclusiveHold hold(lock);
            ++first;
            ++second;
        }
    });
    std::thread otherReader([&] {
        for (int round = 0; round < kRounds; ++round) {
            const CSharedHold hold(lock);
            EXPECT_EQ(first, second);
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        const CSharedHold hold(lock);
        torn += static_cast<int>(first != second);
    }
    writer.join();
    otherReader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(first, kRounds);
}

}  // namespace
}  // namespace quillmere

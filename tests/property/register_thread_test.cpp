// Many threads at one register. What they may see at any moment is only what one of them told; what
// they leave behind adds up. Run under ThreadSanitizer too.
#include "tests/support/random.h"
#include "tests/support/register_audit.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

constexpr int kThreads = 8;

void RunThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&work, i] { work(i); });
    for (std::thread& thread : threads)
        thread.join();
}

std::vector<TChessboard> SomeBoards() {
    constexpr u32 kNumbered = 1'500;
    std::vector<TChessboard> boards =
        test::EqualHashBoards(kWhiteBishop, 1 << test::kEqualHashBits);
    for (u32 number = 1; number < kNumbered; ++number)
        boards.push_back(test::NumberedBoard(number));
    return boards;
}

// The one true length of a board's mate, and its doubtful depth under a setting.
u16 TrueMate(std::size_t board) {
    return static_cast<u16>(3 + 2 * (board % 8));
}
constexpr u16 kDeepestDoubt = 9;
constexpr u32 kSettings = 4;

class CThreadWalk {
public:
    explicit CThreadWalk(u64 memoryLimitBytes)
        : m_boards(SomeBoards()), m_register(test::QuietSettings(memoryLimitBytes)) {
        m_register.Resize(256, true);
    }

    void Insert(test::CRandom& random) {
        const std::size_t board = Board(random);
        const auto nMoves = static_cast<u16>(3 + 2 * random.Below(10));
        const auto setting = static_cast<u32>(random.Below(kSettings));
        const int kind = random.Below(100);
        if (kind < 50)
            m_register.InsertVerdict(nMoves, m_boards[board], nMoves >= TrueMate(board));
        else if (kind < 80)
            m_register.InsertDoubtfulResult(
                std::min(nMoves, kDeepestDoubt), m_boards[board], setting, 0, random.Chance(50));
        else if (kind < 84)
            m_register.PinDoubtful(setting, 0);
        else if (kind < 90)
            m_register.RemoveDoubtful(setting, 0);
        else if (kind < 94)
            m_store.Insert(nMoves, m_boards[board], nMoves >= TrueMate(board), TMove{});
        else if (kind < 95)
            m_register.EmptySomeDataWhenRegisterFull(random.Chance(30));
    }

    // Verdicts that nobody could have told.
    int CountLies(test::CRandom& random) {
        const std::size_t board = Board(random);
        const auto nMoves = static_cast<u16>(1 + 2 * random.Below(12));
        const auto setting = static_cast<u32>(random.Below(kSettings));
        const bool isMate = nMoves >= TrueMate(board);
        const auto isLie = [&](TVerdict verdict) {
            return (verdict == kMate && !isMate) || (verdict == kNoMate && isMate) ||
                   (verdict == kDoubtful && nMoves > kDeepestDoubt);
        };
        int lies = 0;
        lies += isLie(m_register.FindInRegister(nMoves, m_boards[board], setting, 0));
        lies += isLie(m_register.FindInRegisterQuicker(nMoves, 3, m_boards[board], setting, 0));
        lies += isLie(m_register.FindMove(nMoves, m_boards[board]));
        lies +=
            m_register.FindNotDoubtfulInRegister(99, nMoves, m_boards[board], setting, 0) == 1 &&
            nMoves > kDeepestDoubt;
        const int lowest = m_register.FindLowestMate(21, m_boards[board], setting, 0);
        lies += lowest > 1 && lowest < TrueMate(board);
        return lies;
    }

    TAggregatedTemporaryChessboardRegister& Register() { return m_register; }

private:
    std::size_t Board(test::CRandom& random) const {
        return static_cast<std::size_t>(random.Below(static_cast<int>(m_boards.size())));
    }

    std::vector<TChessboard> m_boards;
    TAggregatedTemporaryChessboardRegister m_register;
    TChessboardRegister<bool>& m_store = m_register;
};

void InsertAndAskOnAllThreads(CThreadWalk& walk, int rounds) {
    std::atomic<int> lies{0};
    RunThreads([&](int thread) {
        test::CRandom random(static_cast<u64>(thread) + 1);
        for (int round = 0; round < rounds; ++round) {
            walk.Insert(random);
            lies += walk.CountLies(random);
        }
    });
    EXPECT_EQ(lies, 0);
    test::ExpectRegisterAddsUp(walk.Register(), kSettings);
}

TEST(RegisterThread, EightThreads_InsertAndAskOneRegister) {
    CThreadWalk walk(64 * test::kMegabyte);
    InsertAndAskOnAllThreads(walk, 1'500);
    EXPECT_GT(walk.Register().TableElementsIn(), 1'000U);
}

TEST(RegisterThread, EightThreads_StandConstantEmptying) {
    constexpr u64 kVerySmall = 100 * 1024;
    CThreadWalk walk(kVerySmall);
    InsertAndAskOnAllThreads(walk, 1'500);
    EXPECT_FALSE(walk.Register().KeepsThreeMovers());
}

// Whoever changes everything shuts the look-ups out meanwhile.
TEST(RegisterThread, ClearAndResize_GoBesideLookUpsAndInserts) {
    constexpr int kRounds = 400;
    CThreadWalk walk(8 * test::kMegabyte);
    std::atomic<int> lies{0};
    RunThreads([&](int thread) {
        test::CRandom random(static_cast<u64>(thread) + 101);
        for (int round = 0; round < kRounds; ++round) {
            walk.Insert(random);
            lies += walk.CountLies(random);
            if (thread == 0 && round % 10 == 0)
                walk.Register().Clear(random.Between(-1, 1), true);
            if (thread == 1 && round % 10 == 0)
                walk.Register().Resize(u32{64} << random.Below(4), random.Chance(50));
        }
    });
    EXPECT_EQ(lies, 0);
    test::ExpectRegisterAddsUp(walk.Register(), kSettings);
}

// Readers and writers of a pair of numbers that are always equal, the writers through holds of
// every depth, a shared one of their own among them.
TEST(RWSpinLockThread, EightThreads_ReenterAndNeverSeeAHalfWrite) {
    constexpr int kRounds = 2'000;
    TRWSpinLock lock;
    int first = 0;
    int second = 0;
    std::atomic<int> torn{0};
    const std::function<void(int)> write = [&](int depth) {
        const CExclusiveHold hold(lock);
        const CSharedHold own(lock);
        if (depth > 0) {
            write(depth - 1);
            return;
        }
        ++first;
        torn += static_cast<int>(!lock.IsHeldByThisThread());
        ++second;
    };
    RunThreads([&](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            if ((thread + round) % 4 == 0) {
                write(round % 4);
                continue;
            }
            const CSharedHold hold(lock);
            torn += static_cast<int>(first != second || lock.IsHeldByThisThread());
        }
    });
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(first, kThreads * kRounds / 4);
    EXPECT_EQ(second, first);
}

// The shared hold outlives the exclusive one that let it in: the holder reads on, and a writer
// waits for it.
TEST(RWSpinLockThread, SharedHoldOfTheHolder_OutlivesTheExclusiveOne) {
    TRWSpinLock lock;
    int value = 0;
    lock.LockExclusive();
    lock.LockShared();
    value = 1;
    lock.UnlockExclusive();
    EXPECT_FALSE(lock.IsHeldByThisThread());
    std::thread writer([&] {
        const CExclusiveHold hold(lock);
        value = 2;
    });
    EXPECT_EQ(value, 1);
    lock.UnlockShared();
    writer.join();
    EXPECT_EQ(value, 2);
}

}  // namespace
}  // namespace quillmere
